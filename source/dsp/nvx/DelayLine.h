// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "dsp/nvx/Effect.h"

#include <memory>
#include <vector>

namespace NVX
{

/** One channel of a DelayLine: the last L samples, oldest at `position`. */
struct DelayLineRecord
{
    std::unique_ptr<float[]> ring; // null at L = 0, and when memory was refused
    int position = 0;
};

/** Delay by a whole number of samples.

    It keeps a dry signal in step with a wet one that has passed a linear-phase filter: nothing but
    moved samples, so the dry signal comes out bit for bit.

    Shape    one channel of n samples, in place, float; any n, shorter than the delay included.
    Rate     none of its own: the delay counts samples of whatever passes.
    Latency  getDelaySamples().
    Threads  rebuild, setSampleRate and clear: stopped. process and processAll: audio.
    Errors   none reported. A channel without a record, or without memory, passes undelayed.
*/
class DelayLine : public Effect
{
public:
    /** Makes numChannels records of the given length, all silence, when either differs from what there
        is; otherwise everything stays, the sound in the line included. Allocates.
        newNumChannels becomes the channel count of processAll. Negative numbers count as 0.
        Returns true if the records are new. */
    bool rebuild (int newNumChannels, int delaySamples);

    /** Destroys the records but not the delay length: the next rebuild makes them anew. */
    void clear() override { records.clear(); }

    void process (float* samples, int numSamples, int channel) noexcept override;

    int getDelaySamples() const noexcept { return delayLength; }
    int getNumRecords() const noexcept { return static_cast<int> (records.size()); }

    std::vector<DelayLineRecord> records;

private:
    int delayLength = 0; // the size of every ring: records and length change together, in rebuild
};

} // namespace NVX
