// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "render/RenderJob.h"

#include <string>

/** A few lines on a render for a person to read: levels in and out, gain reduction of the bands, speed. */
std::string summaryOf (const RenderResult& result);
