// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "dsp/nvx/Filter.h"

#include <algorithm>
#include <cstddef>
#include <vector>

namespace NVX
{

/** One channel of a one-pole filter. */
struct OnePoleRecord
{
    double T = 0.0; // seconds per sample
    double a = 0.0;
    double oneMinusA = 0.0;
    double y = 0.0;
};

/** First-order filter, N 7 high-pass or 8 low-pass: an RC section stepped by the backward Euler rule.

    With RC = 1 / (2 pi frequency) and T the sample period, a = T / (RC + T), and the capacitor's
    voltage is y = (1 - a) y + a x. The low-pass returns y, the high-pass x - y, so the two of one
    frequency add up to the input. Unlike a bilinear section it does not reach 0 at half the rate.
    It has neither Q nor gain; both fields stand at 1.

    Shape    one channel of n samples, in place, float; state and coefficients are double.
             The result does not depend on how the signal is cut into blocks.
    Rate     any, in Hz.
    Latency  none.
    Threads  setSampleRate, clear and the setters: stopped. process and tick: audio.
*/
template <int N>
class OnePoleFilter : public Filter
{
    static_assert (N == onePoleHighPass || N == onePoleLowPass, "the one-pole responses are 7 and 8");

public:
    explicit OnePoleFilter (double responseFrequency) noexcept : Filter (N, responseFrequency, 1.0, 1.0) {}

    /** Allocates. A rate of 0 channels leaves no records. */
    void setSampleRate (int newNumChannels, double newSampleRate) override
    {
        Filter::setSampleRate (newNumChannels, newSampleRate);

        constexpr double pi = 3.141592653589793;

        OnePoleRecord fresh;
        fresh.T = 1.0 / sampleRate;
        fresh.a = fresh.T / (1.0 / (2.0 * pi * frequency) + fresh.T);
        fresh.oneMinusA = 1.0 - fresh.a;
        records.assign (static_cast<std::size_t> (std::max (0, numChannels)), fresh);
    }

    void clear() override { records.clear(); }

    /** Goes through the virtual tick for each sample, so a class that overrides tick alone is a whole filter. */
    void process (float* samples, int numSamples, int channel) noexcept override
    {
        if (! hasRecord (channel))
            return;

        for (int i = 0; i < numSamples; ++i)
            samples[i] = static_cast<float> (tick (channel, static_cast<double> (samples[i])));
    }

    double tick (int channel, double x) noexcept override
    {
        if (! hasRecord (channel))
            return x;

        auto& r = at (channel);
        r.y = r.oneMinusA * r.y + r.a * x;

        if constexpr (N == onePoleLowPass)
            return r.y;
        else
            return x - r.y;
    }

    FilterState getState (int channel) const noexcept override
    {
        if (! hasRecord (channel))
            return {};

        return { at (channel).y, 0.0 };
    }

    void setState (const FilterState& state, int channel) noexcept override
    {
        if (hasRecord (channel))
            at (channel).y = state[0];
    }

    FilterCoefficients getCoefficients (int channel) const noexcept override
    {
        if (! hasRecord (channel))
            return {};

        return { at (channel).a, at (channel).oneMinusA, 0.0, 0.0, 0.0, 0.0 };
    }

    /** Takes the first two values; they need not add up to 1. */
    void setCoefficients (const FilterCoefficients& values, int channel) noexcept override
    {
        if (! hasRecord (channel))
            return;

        at (channel).a = values[0];
        at (channel).oneMinusA = values[1];
    }

    int getNumRecords() const noexcept override { return static_cast<int> (records.size()); }

    std::vector<OnePoleRecord> records;

private:
    // Unsigned, so that a negative channel is out of range by the same comparison.
    bool hasRecord (int channel) const noexcept { return static_cast<std::size_t> (channel) < records.size(); }
    OnePoleRecord& at (int channel) noexcept { return records[static_cast<std::size_t> (channel)]; }
    const OnePoleRecord& at (int channel) const noexcept { return records[static_cast<std::size_t> (channel)]; }
};

} // namespace NVX
