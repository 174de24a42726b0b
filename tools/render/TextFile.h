// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "render/PendingFile.h"

#include <filesystem>
#include <string>
#include <vector>

/** Small files, read and written as a whole. */
namespace TextFile
{
struct Line
{
    int number;       // from 1
    std::string text; // without its comment and the blanks around
};

/** All bytes of a file. Errors: RenderError with ExitStatus::input, also for a file of more bytes than `most`. */
std::string read (const std::filesystem::path& file, std::size_t most);

/** The lines of a file that hold something. A comment goes from a number sign to the end of its line. */
std::vector<Line> readLines (const std::filesystem::path& file);

/** Errors of a line: RenderError with ExitStatus::input that names file and line. */
[[noreturn]] void refuseLine (const std::filesystem::path& file, int number, const std::string& reason);

/** Errors: RenderError with ExitStatus::output. The file takes its name when it is committed. */
void write (const PendingFile& file, const std::string& bytes);
} // namespace TextFile
