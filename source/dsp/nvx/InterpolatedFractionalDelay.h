// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "dsp/nvx/Effect.h"

#include <vector>

namespace NVX
{

/** One channel of an InterpolatedFractionalDelay. */
struct FractionalDelayRecord
{
    std::vector<float> ring; // whole delay + 2 samples, which is also how long a sample stays in it
    int position = 0;        // where the latest sample stands
};

/** Delay with linear interpolation between two neighbouring samples.

    With W the whole delay and f the fraction, y[n] = f x[n - W - 1] + (1 - f) x[n - W - 2]: each
    sample is read as it is about to leave the ring and one step before. The delay at low frequencies
    is therefore W + 2 - f samples, not W + f.

    Shape    one channel of n samples, in place, float; the weighted sum is double, rounded once.
             The result does not depend on how the signal is cut into blocks.
    Rate     none of its own: whoever sizes the delay turns seconds into samples.
    Latency  W + 2 - f samples.
    Threads  rebuild, setSampleRate and clear: stopped. process and processAll: audio.
    Errors   none reported. A channel without a record passes undelayed.
*/
class InterpolatedFractionalDelay : public Effect
{
public:
    /** Makes numChannels records of silence, always anew. Allocates.
        newNumChannels becomes the channel count of processAll.  newWholeDelay: samples.
        newFraction: 0 to 1.  Negative counts are taken as 0. */
    void rebuild (int newNumChannels, int newWholeDelay, double newFraction);

    void clear() override { records.clear(); }
    void process (float* samples, int numSamples, int channel) noexcept override;

    int getWholeDelay() const noexcept { return wholeDelay; }
    double getFraction() const noexcept { return fraction; }
    int getNumRecords() const noexcept { return static_cast<int> (records.size()); }

    std::vector<FractionalDelayRecord> records;

private:
    int wholeDelay = 0;
    double fraction = 0.0;
    double oneMinusFraction = 1.0;
};

} // namespace NVX
