// SPDX-License-Identifier: GPL-3.0-or-later
#include "render/ProgressLine.h"

#include <cstdio>

#ifdef _WIN32
#include <io.h>
#else
#include <unistd.h>
#endif

namespace
{
constexpr std::chrono::milliseconds interval (100); // calm to the eye, and no cost to the render

bool isTerminal (std::FILE* stream) noexcept
{
#ifdef _WIN32
    return _isatty (_fileno (stream)) != 0;
#else
    return isatty (fileno (stream)) != 0;
#endif
}
} // namespace

std::string ProgressLine::textToClear()
{
    constexpr int longest = 40;
    return isTerminal (stderr) ? '\r' + std::string (longest, ' ') + '\r' : std::string();
}

ProgressLine::ProgressLine (bool wanted) : active (wanted && isTerminal (stderr)) {}

void ProgressLine::show (std::int64_t done, std::int64_t inAll)
{
    const auto isEnd = done == inAll;

    if (! active || (Clock::now() < next && ! isEnd))
        return;

    next = Clock::now() + interval;
    visible = true;

    if (inAll > 0)
        std::fprintf (stderr, "\rrendering: %3d %%", static_cast<int> (100 * done / inAll));
    else
        std::fprintf (stderr, "\rrendering: %lld frames", static_cast<long long> (done));
}

void ProgressLine::clear()
{
    if (visible)
        std::fputs (textToClear().c_str(), stderr);

    visible = false;
}
