// SPDX-License-Identifier: GPL-3.0-or-later
#include "dsp/nvx/InterpolatedFractionalDelay.h"

#include <algorithm>
#include <cstddef>

namespace NVX
{

void InterpolatedFractionalDelay::rebuild (int newNumChannels, int newWholeDelay, double newFraction)
{
    numChannels = std::max (0, newNumChannels);
    wholeDelay = std::max (0, newWholeDelay);
    fraction = newFraction;
    oneMinusFraction = 1.0 - newFraction;

    FractionalDelayRecord silent;
    silent.ring.assign (static_cast<std::size_t> (wholeDelay) + 2, 0.0f);
    records.assign (static_cast<std::size_t> (numChannels), silent);
}

void InterpolatedFractionalDelay::process (float* samples, int numSamples, int channel) noexcept
{
    if (static_cast<std::size_t> (channel) >= records.size()) // unsigned: catches a negative channel too
        return;

    auto& record = records[static_cast<std::size_t> (channel)];
    float* const ring = record.ring.data();
    const auto size = static_cast<int> (record.ring.size());
    const double ofYounger = fraction, ofOldest = oneMinusFraction;
    int position = record.position;

    const auto next = [size] (int index) { return index + 1 == size ? 0 : index + 1; };

    for (int i = 0; i < numSamples; ++i)
    {
        position = next (position);
        const auto oldest = static_cast<double> (ring[position]); // about to be overwritten
        const auto younger = static_cast<double> (ring[next (position)]);
        ring[position] = samples[i];
        samples[i] = static_cast<float> (younger * ofYounger + oldest * ofOldest);
    }

    record.position = position;
}

} // namespace NVX
