// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <chrono>
#include <cstdint>
#include <string>

/** How far a render is, on one line of a terminal that is written over again and again; nothing when the standard
    error output is no terminal. */
class ProgressLine
{
public:
    explicit ProgressLine (bool wanted);
    ~ProgressLine() { clear(); }

    /** What empties the line; no text when the standard error output is no terminal. */
    static std::string textToClear();

    /** Frames done and in all; -1 for all when nobody knows. Shows the beginning, the end, and what lies between now
        and then. */
    void show (std::int64_t done, std::int64_t inAll);

    /** Leaves an empty line for what is written next. */
    void clear();

    ProgressLine (const ProgressLine&) = delete;
    ProgressLine& operator= (const ProgressLine&) = delete;

private:
    using Clock = std::chrono::steady_clock;

    const bool active;
    bool visible = false;
    Clock::time_point next = Clock::now();
};
