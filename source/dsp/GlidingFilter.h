// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "dsp/ScratchPool.h"
#include "dsp/VectorOps.h"
#include "settings/LinearSmoother.h"

#include <array>
#include <cassert>
#include <cmath>
#include <vector>

/** What the filters with gliding coefficients share: the glide of each coefficient over 100 ms, a crossfade `mix`
    between the filtered and the unfiltered signal, and two doubles of state a channel.

    A `Response` gives the filter itself:
        static constexpr int numCoefficients;
        static double tick (const double* coefficients, double& stateA, double& stateB, double x) noexcept;

    Shape    channels x n float samples, in place; state and coefficients are double, rounded to float at the end.
    Rate     the processing rate, host rate times oversampling factor, in Hz.
    Latency  none.
    Threads  glideTo and mix.setTarget on any: they move smoother targets and nothing else. process on audio.
             prepare and release when stopped.
    Errors   none reported; more samples than prepared for is a caller's fault, asserted in debug.
*/
template <typename Response>
class GlidingFilter
{
public:
    static constexpr int numCoefficients = Response::numCoefficients;
    using Coefficients = std::array<double, numCoefficients>;

    struct State
    {
        double a = 0.0, b = 0.0;
    };

    void process (float* const* channels, int numSamples) noexcept
    {
        const auto numChannels = static_cast<int> (states.size());
        const auto fading = mix.remaining != 0;
        auto gliding = false;

        for (const auto& smoother : smoothers)
            gliding = gliding || smoother.remaining != 0;

        assert (! ready || numSamples <= unfiltered.length());

        if (fading)
            keepUnfilteredShare (channels, numChannels, numSamples);

        if (fading || mix.target >= 0.5)
        {
            if (gliding)
                filterGliding (channels, numChannels, numSamples);
            else
                filterResting (channels, numChannels, numSamples);
        }

        if (fading)
            addUnfilteredShare (channels, numChannels, numSamples);

        for (auto& state : states)
        {
            zeroIfTiny (state.a);
            zeroIfTiny (state.b);
        }
    }

    bool ready = false;         // set by prepare
    LinearSmoother mix { 1.0 }; // 0 the filter is out, 1 it is in
    std::array<LinearSmoother, static_cast<std::size_t> (numCoefficients)> smoothers;
    std::vector<State> states; // one a channel

protected:
    /** Makes the states, lands every smoother, sizes the vectors. States of channels that stay are kept, so
        that the sound goes on; one that is no longer finite is cleared, so that a restart heals it. */
    void prepareFor (const Coefficients& values, double newRate, int numChannels, int maxSamples)
    {
        states.resize (static_cast<std::size_t> (numChannels));

        for (auto& state : states)
            if (! std::isfinite (state.a) || ! std::isfinite (state.b))
                state = {};

        const auto length = rampLengthFor (newRate);
        glideTo (values);

        for (auto& smoother : smoothers)
            smoother.restAtTarget (length);

        mix.restAtTarget (length);
        unfiltered.grow (numChannels + 2, maxSamples);

        for (auto& vector : glide)
            vector.assign (static_cast<std::size_t> (maxSamples), 0.0);

        ready = true;
    }

    void glideTo (const Coefficients& values) noexcept
    {
        for (std::size_t i = 0; i < smoothers.size(); ++i)
            smoothers[i].setTarget (values[i]);
    }

    /** Gives the coefficient vectors back and is not ready until the next prepare. */
    void releaseVectors()
    {
        for (auto& vector : glide)
            std::vector<double>().swap (vector);

        ready = false;
    }

private:
    static void zeroIfTiny (double& value) noexcept
    {
        if (std::abs (value) < 2.2250738585072014e-308) // the smallest normal double
            value = 0.0;
    }

    void keepUnfilteredShare (float* const* channels, int numChannels, int n) noexcept
    {
        auto* in = unfiltered[numChannels];
        auto* out = unfiltered[numChannels + 1];

        mix.fill (in, n);

        for (int i = 0; i < n; ++i)
            out[i] = 1.0f - in[i];

        for (int c = 0; c < numChannels; ++c)
            VectorOps::multiply (channels[c], out, unfiltered[c], n);
    }

    void addUnfilteredShare (float* const* channels, int numChannels, int n) noexcept
    {
        for (int c = 0; c < numChannels; ++c)
            VectorOps::multiplyAdd (channels[c], unfiltered[numChannels], unfiltered[c], channels[c], n);
    }

    void filterGliding (float* const* channels, int numChannels, int n) noexcept
    {
        for (std::size_t k = 0; k < smoothers.size(); ++k)
            smoothers[k].fill (glide[k].data(), n);

        for (int c = 0; c < numChannels; ++c)
        {
            auto* samples = channels[c];
            auto state = states[static_cast<std::size_t> (c)];

            for (int i = 0; i < n; ++i)
            {
                double now[numCoefficients];

                for (std::size_t k = 0; k < smoothers.size(); ++k)
                    now[k] = glide[k][static_cast<std::size_t> (i)];

                samples[i] = static_cast<float> (Response::tick (now, state.a, state.b, samples[i]));
            }

            states[static_cast<std::size_t> (c)] = state;
        }
    }

    void filterResting (float* const* channels, int numChannels, int n) noexcept
    {
        double now[numCoefficients];

        for (std::size_t k = 0; k < smoothers.size(); ++k)
            now[k] = smoothers[k].current;

        for (int c = 0; c < numChannels; ++c)
        {
            auto* samples = channels[c];
            auto state = states[static_cast<std::size_t> (c)];

            for (int i = 0; i < n; ++i)
                samples[i] = static_cast<float> (Response::tick (now, state.a, state.b, samples[i]));

            states[static_cast<std::size_t> (c)] = state;
        }
    }

    std::array<std::vector<double>, static_cast<std::size_t> (numCoefficients)> glide; // per-sample coefficients
    ScratchPool unfiltered; // a share a channel, then mix, then 1 - mix
};
