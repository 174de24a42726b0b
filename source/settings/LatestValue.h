// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <array>
#include <atomic>
#include <cstdint>

/** Hands the latest state of something from one thread to another, whole: the reader never sees half of one, neither
    side ever waits, and what is overwritten before it was read is skipped.

    Three copies change places: one that the writer fills, one that the reader looks at, one between them.

    Threads  back and publish on one thread at a time, take on one other.
*/
template <typename State>
class LatestValue
{
public:
    /** The copy to fill. What it holds is some older state. */
    State& back() noexcept { return copies[writing]; }

    /** Hands over what was filled. */
    void publish() noexcept { writing = between.exchange (writing | fresh, std::memory_order_acq_rel) & index; }

    /** The latest state when it is one not yet taken, otherwise a null pointer. It stays until the next call. */
    const State* take() noexcept
    {
        if ((between.load (std::memory_order_relaxed) & fresh) == 0)
            return nullptr;

        reading = between.exchange (reading, std::memory_order_acq_rel) & index;
        return &copies[reading];
    }

private:
    static constexpr std::uint32_t index = 3, fresh = 4;

    std::array<State, 3> copies {};
    std::uint32_t writing = 0, reading = 1;
    std::atomic<std::uint32_t> between { 2 };
};
