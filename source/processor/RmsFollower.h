// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cmath>

/** Running root mean square of one channel, without a square root in the loop.

    Each step is one Newton step of a square root towards the mean of the squares: rms += (p / rms - rms) * c, with
    c = (1 - exp (-1 / (rate * 0.4 s))) / 2. The half is the Newton step's own. It starts at its floor, so the first
    loud sample throws it up; that is how the meter of the unit behaves.

    Rate     the processing rate in Hz.
    Range    squares are floored at 1e-5, so rms never reaches 0 and a silent signal reads 0.00316.
    Threads  audio; made anew when stopped.
*/
struct RmsFollower
{
    explicit RmsFollower (double rate) noexcept : coefficient ((1.0 - std::exp (-1.0 / (rate * timeConstant))) * 0.5) {}

    /** Takes one sample and returns the running root mean square. */
    double follow (float sample) noexcept
    {
        auto square = static_cast<double> (sample) * static_cast<double> (sample);

        if (square <= floor)
            square = floor;

        rms = (square / rms - rms) * coefficient + rms;
        return rms;
    }

    static constexpr double timeConstant = 0.4; // seconds
    static constexpr double floor = 0.00001;    // of the squares

    double coefficient;
    double rms = 0.00001;
};
