// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <juce_core/juce_core.h>

#include <chrono>
#include <thread>

namespace juce
{
// The framework's own, which it declares in no header. Linux.
bool dispatchNextMessageOnSystemQueue (bool returnIfNoPendingMessages);
} // namespace juce

/** Runs timers, events of the screen and asynchronous calls for so many milliseconds. Message thread. */
inline void pumpMessages (int milliseconds)
{
    using Clock = std::chrono::steady_clock;
    const auto end = Clock::now() + std::chrono::milliseconds (milliseconds);

    do
    {
        if (! juce::dispatchNextMessageOnSystemQueue (true))
            std::this_thread::sleep_for (std::chrono::microseconds (500));
    } while (Clock::now() < end);
}

/** The same until a condition holds; false if it does not within a minute. */
template <typename Condition>
bool pumpMessagesUntil (Condition condition)
{
    constexpr auto patience = std::chrono::minutes (1);
    const auto end = std::chrono::steady_clock::now() + patience;

    while (! condition() && std::chrono::steady_clock::now() < end)
        pumpMessages (1);

    return condition();
}
