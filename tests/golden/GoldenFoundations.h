// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "golden/GoldenCases.h"

/** Hashes of what the engine stands on: where one of these differs, another library made another table, and the rows
    of the engine that follow from it are no fault of the engine. */
namespace GoldenFoundations
{
GoldenResult libraryFunctions();
GoldenResult controlLaw();
GoldenResult detectorCurves();
} // namespace GoldenFoundations
