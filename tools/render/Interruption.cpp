// SPDX-License-Identifier: GPL-3.0-or-later
#include "render/Interruption.h"

#include "render/RenderError.h"

#include <array>
#include <atomic>
#include <csignal>
#include <stdexcept>

#ifdef _WIN32
#include <io.h>
#include <process.h>
#else
#include <unistd.h>
#endif

namespace
{
using PathStart = const std::filesystem::path::value_type*;

constexpr std::size_t mostFiles = 8; // output, meters and two kinds of settings are what a render writes at once
std::array<std::atomic<PathStart>, mostFiles> unfinished {};
static_assert (std::atomic<PathStart>::is_always_lock_free, "a handler may wait for nobody");

std::string toSay;

#ifdef _WIN32
constexpr int heard[] = { SIGINT, SIGTERM };

void removeFile (PathStart path) { ::_wunlink (path); }
void say() { static_cast<void> (::_write (2, toSay.data(), static_cast<unsigned> (toSay.size()))); }
bool isClosedPipe (int) { return false; }
#else
// A limit on processor time is a request as well: the system repeats it, and kills in the end.
constexpr int heard[] = { SIGHUP, SIGINT, SIGQUIT, SIGPIPE, SIGTERM, SIGXCPU };

void removeFile (PathStart path) { ::unlink (path); }
bool isClosedPipe (int number) { return number == SIGPIPE; }

void say()
{
    // Nobody is left to be told that this failed.
    [[maybe_unused]] const auto written = ::write (STDERR_FILENO, toSay.data(), toSay.size());
}
#endif

void end (int number)
{
    static std::atomic_flag ending = ATOMIC_FLAG_INIT;

    // Of two requests the first one is answered.
    if (ending.test_and_set())
        return;

    for (const auto& file : unfinished)
        if (const auto* path = file.load())
            removeFile (path);

    if (! isClosedPipe (number))
        say();

    ::_exit (static_cast<int> (ExitStatus::signalled) + number);
}
} // namespace

void Interruption::listen (const std::string& complaint)
{
    toSay = complaint;

    for (const auto number : heard)
        if (std::signal (number, end) == SIG_IGN)
            std::signal (number, SIG_IGN);
}

void Interruption::stopListening()
{
    for (const auto number : heard)
    {
        const auto before = std::signal (number, isClosedPipe (number) ? SIG_DFL : SIG_IGN);

        if (before != end)
            std::signal (number, before);
    }
}

Interruption::UnfinishedFile::UnfinishedFile (const std::filesystem::path& path)
{
    for (; slot < mostFiles; ++slot)
        if (PathStart empty = nullptr; unfinished[slot].compare_exchange_strong (empty, path.c_str()))
            return;

    throw std::logic_error ("more files are written at once than was thought of");
}

Interruption::UnfinishedFile::~UnfinishedFile() { unfinished[slot].store (nullptr); }
