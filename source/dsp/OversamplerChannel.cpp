// SPDX-License-Identifier: GPL-3.0-or-later
#include "dsp/OversamplerChannel.h"

#include "dsp/VectorLoop.h"
#include "dsp/VectorOps.h"

#include <algorithm>
#include <cmath>

std::vector<float> OversamplerChannel::designTaps (int factor)
{
    constexpr double pi = 3.141592653589793;
    const auto numTaps = (52 * factor) | 1;
    const auto cutoff = ((factor * -4.0) / numTaps + 1.0) * 0.5 / factor; // of the high rate
    const auto centre = (numTaps - 1) / 2;

    std::vector<double> taps (static_cast<std::size_t> (numTaps));
    auto sum = 0.0;

    for (int i = 0; i < numTaps; ++i)
    {
        const auto t = i - centre;
        const auto sinc = t == 0 ? 2.0 * cutoff : std::sin (2.0 * pi * cutoff * t) / (pi * t);
        const auto hamming = 0.54 - 0.46 * std::cos (2.0 * pi * i / (numTaps - 1));
        taps[static_cast<std::size_t> (i)] = sinc * hamming;
        sum += sinc * hamming;
    }

    std::vector<float> result (taps.size());
    std::transform (taps.begin(), taps.end(), result.begin(),
                    [sum] (double tap) { return static_cast<float> (tap / sum); });
    return result;
}

void OversamplerChannel::design (int newFactor)
{
    factor = newFactor;
    phaseTaps.clear();
    upLine.clear();
    downLines.clear();
    tapCount = 0;

    if (factor < 2)
        return;

    const auto taps = designTaps (factor);
    tapCount = static_cast<int> (taps.size());

    phaseTaps.assign (static_cast<std::size_t> (factor * history), 0.0f);

    for (int i = 0; i < tapCount; ++i)
        phaseTaps[static_cast<std::size_t> ((i % factor) * history + i / factor)] = taps[static_cast<std::size_t> (i)];

    upLine.assign (history + chunkSize, 0.0f);
    downLines.assign (static_cast<std::size_t> (factor * (history + chunkSize)), 0.0f);
}

void OversamplerChannel::addPhase (const float* taps, int numTaps, const float* newest, float* total, int n) noexcept
{
    alignas (64) float sum[chunkSize];
    std::fill (sum, sum + n, 0.0f);

    for (int k = 0; k < numTaps; ++k)
    {
        const auto tap = taps[k];
        const auto* x = newest - k;

        CORVANE_INDEPENDENT_PASSES
        for (int i = 0; i < n; ++i)
            sum[i] += tap * x[i];
    }

    VectorOps::add (total, sum, total, n);
}

void OversamplerChannel::up (const float* in, float* out, int numHostSamples) noexcept
{
    for (int done = 0; done < numHostSamples; done += chunkSize)
        upChunk (in + done, out + done * factor, std::min (chunkSize, numHostSamples - done));
}

void OversamplerChannel::down (const float* in, float* out, int numHostSamples) noexcept
{
    for (int done = 0; done < numHostSamples; done += chunkSize)
        downChunk (in + done * factor, out + done, std::min (chunkSize, numHostSamples - done));
}

void OversamplerChannel::upChunk (const float* in, float* out, int n) noexcept
{
    auto* line = upLine.data();
    std::copy (in, in + n, line + history);

    const auto gain = static_cast<float> (factor); // makes up for the zeros between the samples

    for (int phase = 0; phase < factor; ++phase)
    {
        alignas (64) float sum[chunkSize] = {};
        addPhase (tapsOf (phase), numTapsOf (phase), line + history, sum, n);

        for (int i = 0; i < n; ++i)
            out[i * factor + phase] = sum[i] * gain;
    }

    std::copy (line + n, line + n + history, line);
}

void OversamplerChannel::downChunk (const float* in, float* out, int n) noexcept
{
    alignas (64) float sum[chunkSize] = {};

    for (int q = 0; q < factor; ++q)
    {
        auto* newest = downLine (q) + history;

        for (int i = 0; i < n; ++i)
            newest[i] = in[i * factor + q];
    }

    addPhase (tapsOf (0), numTapsOf (0), downLine (0) + history, sum, n);

    // The sample that lies `phase` high-rate steps before a group's first one is place F - phase of the group before.
    for (int phase = 1; phase < factor; ++phase)
        addPhase (tapsOf (phase), numTapsOf (phase), downLine (factor - phase) + history - 1, sum, n);

    for (int q = 0; q < factor; ++q)
        std::copy (downLine (q) + n, downLine (q) + n + history, downLine (q));

    std::copy (sum, sum + n, out);
}
