// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <vector>

/** Up and down by a whole factor for one channel, with a linear-phase low-pass on each way.

    The filter is a Hamming-windowed sinc of 52 F + 1 taps at the high rate, cut off just under 0.462 of the host rate
    and normalised to unity at DC, so each way delays by 26 host samples at every factor: 52 for both. Both ways are
    polyphase: no product with an inserted zero is formed.

    Shape    up: n host samples in, n F out; down: n F in, n out, keeping the first sample of each group of F. Input
             and output may not overlap.
    Rate     any; the design is relative to it.
    Latency  26 host samples each way; none of the two exists at factor 1.
    Threads  design when stopped (or within a rebuild on audio, where it is allowed to allocate); up, down on audio.
    Errors   none reported.

    Each output sample is summed in one fixed order, so results do not depend on the block length.
*/
class OversamplerChannel
{
public:
    /** Taps of the low-pass for a factor of 2 and above: 52 F + 1 floats that sum to 1. */
    static std::vector<float> designTaps (int factor);

    /** Builds both filters for a factor of 1 and above and clears their history. */
    void design (int newFactor);

    void up (const float* in, float* out, int numHostSamples) noexcept;
    void down (const float* in, float* out, int numHostSamples) noexcept;

    int factor = 1;
    int tapCount = 0;

private:
    static constexpr int chunkSize = 64; // host samples a pass
    static constexpr int history = 53;   // host samples that a filter looks back, at most

    /** One phase of the filter: total[i] += sum over k of taps[k] * newest[i - k], added up from k = 0. */
    static void addPhase (const float* taps, int numTaps, const float* newest, float* total, int n) noexcept;

    void upChunk (const float* in, float* out, int n) noexcept;
    void downChunk (const float* in, float* out, int n) noexcept;

    int numTapsOf (int phase) const noexcept { return phase == 0 ? history : history - 1; }
    const float* tapsOf (int phase) const noexcept { return phaseTaps.data() + phase * history; }
    float* downLine (int q) noexcept { return downLines.data() + q * (history + chunkSize); }

    std::vector<float> phaseTaps; // F x history: tap k F + p stands at [p][k]
    std::vector<float> upLine;    // history, then the chunk
    std::vector<float> downLines; // the same for each of the F places within a group
};
