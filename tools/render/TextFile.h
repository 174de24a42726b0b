// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "render/PendingFile.h"

#include <filesystem>
#include <functional>
#include <string>

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

/** Hands on the lines of a file that hold something, one after the other: what stands behind a line that is refused is
    not read. A comment goes from a number sign to the end of its line.

    Errors: RenderError with ExitStatus::input; a TextError of `take` is given the names of file and line. */
void readLines (const std::filesystem::path& file, const std::function<void (const Line&)>& take);

/** Errors: RenderError with ExitStatus::output. The file takes its name when it is committed. */
void write (const PendingFile& file, const std::string& bytes);
} // namespace TextFile
