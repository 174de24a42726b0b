// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <algorithm>
#include <cmath>
#include <cstdint>

/** A value that moves to its target in equal steps.

    A ramp belongs to one thread at a time: the audio path advances its own, and what controls ask for reaches it whole,
    at the start of a block. A ramp's end is not snapped to the target: `current` keeps the sum of its steps, which may
    differ from `target` by rounding (about 1e-13 for a ramp from 1 to 0).

    Rate     one step a sample of the rate that the owner prepared it for; a whole ramp is 100 ms, kept in 16 bits,
             so the length wraps at rates of 655360 Hz and above.
    Threads  the owner's.
*/
struct LinearSmoother
{
    std::uint16_t length = 100;  // steps of a whole ramp
    std::uint16_t remaining = 0; // steps left; 0 is at rest
    double current = 0.0;
    double target = 0.0;
    double step = 0.0; // added per sample

    LinearSmoother() = default;
    explicit LinearSmoother (double value) noexcept : current (value), target (value) {}

    /** Starts a ramp of `length` steps to v. A v within 1e-6 of `current` is taken at once; a v that is already
        the target leaves a running ramp alone. */
    void setTarget (double v) noexcept
    {
        const auto distance = v - current;

        if (std::abs (distance) < 1.0e-6)
        {
            target = current = v;
            remaining = 0;
        }
        else if (target != v)
        {
            target = v;
            startRamp();
        }
    }

    /** From the present value to the target, in a whole ramp. */
    void startRamp() noexcept
    {
        step = (target - current) / length;
        remaining = length;
    }

    /** Lands on the target and takes a new ramp length in steps. */
    void restAtTarget (std::uint16_t newLength) noexcept
    {
        length = newLength;
        current = target;
        remaining = 0;
    }

    /** Takes another ramp's state: exactly, or its target alone, for a ramp of one's own from where this one stands. */
    void follow (const LinearSmoother& other, bool exactly) noexcept
    {
        if (exactly)
            *this = other;
        else
            setTarget (other.target);
    }

    /** The next n values, one a sample: the ramp while it lasts, then its last value. */
    template <typename Sample>
    void fill (Sample* destination, int n) noexcept
    {
        const auto ramped = std::min (static_cast<int> (remaining), n);
        auto value = current;

        for (int i = 0; i < ramped; ++i)
        {
            value += step;
            destination[i] = static_cast<Sample> (value);
        }

        current = value;
        remaining = static_cast<std::uint16_t> (remaining - ramped);
        std::fill (destination + ramped, destination + std::max (n, ramped), static_cast<Sample> (value));
    }
};

/** 100 ms of a rate in Hz, as the 16 bits of a smoother hold it: 4410 at 44100 Hz, 11264 at 768000 Hz. */
inline std::uint16_t rampLengthFor (double rate) noexcept
{
    const auto samples = rate * 0.1;
    const auto bounded = samples > 0.0 ? std::min (samples, 9.0e15) : 0.0; // a NaN rate gives 0
    return static_cast<std::uint16_t> (static_cast<std::uint64_t> (bounded) & 0xffffu);
}
