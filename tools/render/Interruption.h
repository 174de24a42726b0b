// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <filesystem>
#include <string>

/** Signals that ask the program to end, and the files that must not stay behind then.

    The handler itself takes these files away and ends the program, with nothing but what a handler may do. So a signal
    is heard in every phase at once: while a long file is read as well as between two blocks.
*/
namespace Interruption
{
/** Ends the program with ExitStatus::signalled when somebody asks for it, and says `complaint` on the standard error
    output; a closed pipe ends it in silence, as it does other programs. What the program was started to ignore, as
    by nohup, stays ignored. */
void listen (const std::string& complaint);

/** What is left to do is done at once and shall not be left half done: signals are ignored from here on, but for a
    closed pipe, which has its usual meaning again. */
void stopListening();

/** While it lives, its file goes when a signal ends the program. The file need not exist. The path must stay where it
    is in memory, and as it is. */
class UnfinishedFile
{
public:
    explicit UnfinishedFile (const std::filesystem::path& path);
    ~UnfinishedFile();

    UnfinishedFile (const UnfinishedFile&) = delete;
    UnfinishedFile& operator= (const UnfinishedFile&) = delete;

private:
    std::size_t slot = 0;
};
} // namespace Interruption
