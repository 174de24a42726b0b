// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "dsp/GlidingResponse.h"
#include "dsp/ScratchPool.h"
#include "dsp/VectorOps.h"

#include <array>
#include <cassert>
#include <cmath>
#include <vector>

/** What the filters with gliding coefficients share: a response that glides over 100 ms, a crossfade `mix` between the
    filtered and the unfiltered signal, and two doubles of state a channel.

    `Response` is the side that controls move, a GlidingResponse; `Tick` is the filter itself:
        static double tick (const double* coefficients, double& stateA, double& stateB, double x) noexcept;

    Shape    channels x n float samples, in place; state and coefficients are double, rounded to float at the end.
    Rate     the processing rate, host rate times oversampling factor, in Hz.
    Latency  none.
    Threads  process, setResponse and follow on audio; prepare and release when stopped.
    Errors   none reported; more samples than prepared for is a caller's fault, asserted in debug.
*/
template <typename Tick, typename Response>
class GlidingFilter : public Response
{
public:
    using Response::Response;

    using Response::mix;
    using Response::numCoefficients;
    using Response::ready;
    using Response::smoothers;

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

    /** Lands on the present response with no glide, makes the states and sizes the vectors. States of channels that stay
        are kept, so that the sound goes on; one that is no longer finite is cleared, so that a restart heals it.
        Stopped; allocates. */
    void prepare (double newRate, int numChannels, int maxSamples)
    {
        states.resize (static_cast<std::size_t> (numChannels));

        for (auto& state : states)
            if (! std::isfinite (state.a) || ! std::isfinite (state.b))
                state = {};

        Response::land (newRate);
        unfiltered.grow (numChannels + 2, maxSamples);

        for (auto& vector : glide)
            vector.assign (static_cast<std::size_t> (maxSamples), 0.0);
    }

    /** Gives the coefficient vectors back and is not ready until the next prepare. Stopped. */
    void release()
    {
        for (auto& vector : glide)
            std::vector<double>().swap (vector);

        ready = false;
    }

    std::vector<State> states; // one a channel

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

                samples[i] = static_cast<float> (Tick::tick (now, state.a, state.b, samples[i]));
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
                samples[i] = static_cast<float> (Tick::tick (now, state.a, state.b, samples[i]));

            states[static_cast<std::size_t> (c)] = state;
        }
    }

    std::array<std::vector<double>, static_cast<std::size_t> (numCoefficients)> glide; // per-sample coefficients
    ScratchPool unfiltered; // a share a channel, then mix, then 1 - mix
};
