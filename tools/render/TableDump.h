// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <filesystem>

/** Writes the tables that the engine works with, for plots and for comparison: bare numbers of 32-bit float, the low
    byte first, whatever the machine.

    Errors   RenderError with ExitStatus::output.
*/
namespace TableDump
{
/** The five detector curves one behind the other, 32768 entries each, from ratio 1.5:1 to 6:1. */
void writeCurves (const std::filesystem::path& file, bool overwrite);

/** The 32768 gains of the control law, at i * 10 / 32768 volt. */
void writeControlLaw (const std::filesystem::path& file, bool overwrite);

/** The taps of the oversampling filter for a factor of 2 and above: 52 factor + 1. */
void writeTaps (int factor, const std::filesystem::path& file, bool overwrite);
} // namespace TableDump
