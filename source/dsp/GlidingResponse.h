// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "settings/LinearSmoother.h"

#include <array>
#include <cstddef>

/** The side of a gliding filter that controls move: its coefficients on their way, and the crossfade in and out. The
    controls' side has one of its own to plan with; the audio path's is part of the filter.

    Rate     the processing rate, host rate times oversampling factor, in Hz: one step of a ramp a sample.
    Threads  the owner's.
*/
template <int numCoefficientsToUse>
struct GlidingResponse
{
    static constexpr int numCoefficients = numCoefficientsToUse;
    using Coefficients = std::array<double, static_cast<std::size_t> (numCoefficients)>;

    /** Takes what another side has: exactly, or as new targets for the ramps that run here. */
    void follow (const GlidingResponse& plan, bool exactly) noexcept
    {
        ready = plan.ready;
        mix.follow (plan.mix, exactly);

        for (std::size_t i = 0; i < smoothers.size(); ++i)
            smoothers[i].follow (plan.smoothers[i], exactly);
    }

    bool ready = false;         // until then a response is only stored
    LinearSmoother mix { 1.0 }; // 0 the filter is out, 1 it is in
    std::array<LinearSmoother, static_cast<std::size_t> (numCoefficients)> smoothers;

protected:
    void glideTo (const Coefficients& values) noexcept
    {
        for (std::size_t i = 0; i < smoothers.size(); ++i)
            smoothers[i].setTarget (values[i]);
    }

    /** Lands on a response, with the ramp length of a rate. */
    void landOn (const Coefficients& values, double newRate) noexcept
    {
        const auto length = rampLengthFor (newRate);
        glideTo (values);

        for (auto& smoother : smoothers)
            smoother.restAtTarget (length);

        mix.restAtTarget (length);
        ready = true;
    }
};
