// SPDX-License-Identifier: GPL-3.0-or-later
#include "dsp/nvx/DelayLine.h"

#include <algorithm>
#include <cstddef>
#include <new>

namespace NVX
{

bool DelayLine::rebuild (int newNumChannels, int delaySamples)
{
    const int wantedChannels = std::max (0, newNumChannels);
    const int wantedLength = std::max (0, delaySamples);

    numChannels = wantedChannels;

    if (wantedChannels == getNumRecords() && wantedLength == delayLength)
        return false;

    records.clear();
    records.resize (static_cast<std::size_t> (wantedChannels));
    delayLength = wantedLength;

    if (delayLength > 0)
        for (auto& record : records)
            record.ring.reset (new (std::nothrow) float[static_cast<std::size_t> (delayLength)]());

    return true;
}

/*  The ring holds exactly L samples, so the sample that is due out stands where the one that comes in
    must go: a delay of L is an exchange. It goes in stretches up to the ring's end, which makes the
    block length irrelevant.
*/
void DelayLine::process (float* samples, int numSamples, int channel) noexcept
{
    if (static_cast<std::size_t> (channel) >= records.size()) // unsigned: catches a negative channel too
        return;

    auto& record = records[static_cast<std::size_t> (channel)];
    float* const ring = record.ring.get();

    if (ring == nullptr)
        return;

    int position = record.position;

    while (numSamples > 0)
    {
        const int stretch = std::min (numSamples, delayLength - position);
        std::swap_ranges (samples, samples + stretch, ring + position);

        samples += stretch;
        numSamples -= stretch;
        position += stretch;

        if (position == delayLength)
            position = 0;
    }

    record.position = position;
}

} // namespace NVX
