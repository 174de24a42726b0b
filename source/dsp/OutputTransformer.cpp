// SPDX-License-Identifier: GPL-3.0-or-later
#include "dsp/OutputTransformer.h"

#include "dsp/VectorOps.h"

#include <algorithm>
#include <cmath>

OutputChannelState::OutputChannelState (double T) noexcept
    : integrateA (1.0 - std::exp (-T / 0.0025)), integrateB (1.0 - integrateA),
      differentiateA (1.0 - std::exp (-T / 0.0025)), differentiateB (1.0 - differentiateA)
{
}

void OutputTransformer::prepare (double T) noexcept
{
    envelopeA = 1.0 - std::exp (-T / 0.005);
    envelopeB = 1.0 - envelopeA;
    kneeScale = 90.0 * T;
    fluxWeight = 700.0 * T;
}

void OutputTransformer::process (float* channel, int numSamples, OutputChannelState& state) noexcept
{
    for (int done = 0; done < numSamples; done += chunkSize)
        processChunk (channel + done, std::min (chunkSize, numSamples - done), state);
}

void OutputTransformer::processChunk (float* channel, int n, OutputChannelState& state) noexcept
{
    VectorOps::convert (channel, x, n);

    // Integrate: the flux of the core.
    auto flux = state.flux;

    for (int i = 0; i < n; ++i)
    {
        flux = flux * state.integrateB + x[i];
        y[i] = flux;
    }

    state.flux = flux;

    // Level of signal and flux together.
    VectorOps::abs (x, x, n);
    VectorOps::multiplyByConstant (y, fluxWeight, level, n);
    VectorOps::abs (level, level, n);
    VectorOps::add (x, level, level, n);
    VectorOps::multiplyByConstant (level, envelopeA, level, n);

    auto envelope = state.envelope;

    for (int i = 0; i < n; ++i)
    {
        envelope = envelope * envelopeB + level[i];
        level[i] = envelope;
    }

    state.envelope = envelope;

    // Knee: a high level gives a small factor, which widens the straight part of the tanh.
    VectorOps::raiseTo (level, level, n, 0.001);
    VectorOps::fill (kneeScale, x, n);
    VectorOps::divideInto (level, x, level, n);

    // Saturate, with the offset that makes the even harmonics.
    VectorOps::multiply (y, level, z, n);
    VectorOps::addConstant (z, 0.002, z, n);
    VectorOps::tanh (z, z, n);
    VectorOps::subtractConstant (z, 0.002, z, n);
    VectorOps::divideInto (level, z, z, n);

    // Soft limit: never flat, it leans towards 1.4 times the flux less a constant.
    VectorOps::multiplyByConstant (y, 1.4, y, n);
    VectorOps::multiplyByConstant (z, 0.4, z, n);
    VectorOps::subtractFrom (z, y, y, n);

    // Differentiate.
    auto last = state.lastOut;

    for (int i = 0; i < n; ++i)
    {
        x[i] = y[i] - state.differentiateB * last;
        last = y[i];
    }

    state.lastOut = last;

    VectorOps::convert (x, channel, n);
}
