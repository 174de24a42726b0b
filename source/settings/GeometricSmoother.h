// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <algorithm>
#include <cmath>
#include <cstdint>

/** A linear gain that moves to its target by equal ratios, so in equal steps of decibels.

    A ramp that starts from or goes to 0 uses 1e-6 in its place, which keeps the ratio finite: a gain sent to 0 comes
    to rest at 1e-6. The end of a ramp is not snapped to the target.

    Rate, threads: as LinearSmoother.
*/
struct GeometricSmoother
{
    std::uint16_t length = 100;  // steps of a whole ramp
    std::uint16_t remaining = 0; // steps left; 0 is at rest
    double current = 0.0;
    double target = 0.0;
    double ratio = 1.0; // multiplied per sample

    GeometricSmoother() = default;
    explicit GeometricSmoother (double value) noexcept : current (value), target (value) {}

    /** As LinearSmoother::setTarget, for a gain v of 0 or above. */
    void setTarget (double v) noexcept
    {
        if (std::abs (v - current) < 1.0e-6)
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
        constexpr double smallest = 1.0e-6; // -120 dB

        current = std::max (current, smallest);
        ratio = std::pow (std::max (target, smallest) / current, 1.0 / length);
        remaining = length;
    }

    void restAtTarget (std::uint16_t newLength) noexcept
    {
        length = newLength;
        current = target;
        remaining = 0;
    }

    void follow (const GeometricSmoother& other, bool exactly) noexcept
    {
        if (exactly)
            *this = other;
        else
            setTarget (other.target);
    }

    template <typename Sample>
    void fill (Sample* destination, int n) noexcept
    {
        const auto ramped = std::min (static_cast<int> (remaining), n);
        auto value = current;

        for (int i = 0; i < ramped; ++i)
        {
            value *= ratio;
            destination[i] = static_cast<Sample> (value);
        }

        current = value;
        remaining = static_cast<std::uint16_t> (remaining - ramped);
        std::fill (destination + ramped, destination + std::max (n, ramped), static_cast<Sample> (value));
    }
};
