// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "processor/CorvaneQ7AudioProcessor.h"

#include <string>

/** The controls as a list, in their fixed order. */
namespace ParameterList
{
/** For a person to read: a line each, in columns, and below it what the control does. */
std::string plain (CorvaneQ7AudioProcessor& processor);

/** The same for programs to read. Keys keep their order. */
std::string json (CorvaneQ7AudioProcessor& processor);
} // namespace ParameterList
