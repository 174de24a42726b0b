// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <string>

/** The programs as a person at a shell names them. */
namespace ProgramNames
{
/** The index for a number in digits, or for a name in large or small letters. For anything else a RenderError
        with ExitStatus::usage, which offers the name that comes nearest if one is near. */
int find (const std::string& numberOrName);

/** Number and name, a line each. */
std::string list();
} // namespace ProgramNames
