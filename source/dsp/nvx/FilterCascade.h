// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "dsp/nvx/Filter.h"

#include <memory>
#include <vector>

namespace NVX
{

/** A chain of filters that gives a signal path a fixed frequency response.

    The double-precision filters (state-variable and one-pole) run first, in the order in which they
    were added, then the biquads in theirs, whatever the order between the two kinds. The response of
    the chain does not depend on it, its roundings do.

    Shape    one channel of n samples, in place, float. An empty chain changes nothing.
    Rate     that of its filters, in Hz; see there for the limits of a frequency.
    Latency  none.
    Threads  process and processAll: audio. The rest allocates or frees: stopped.
    Errors   none reported; a type without a filter adds nothing.
*/
class FilterCascade : public Effect
{
public:
    using FilterList = std::vector<std::unique_ptr<Filter>>;

    /** Deletes all filters. */
    void clearFilters();

    /** Appends a filter; it passes the signal on until the next setSampleRate.
        type: a FilterTypeValues, anything else adds nothing.  filterFrequency: Hz.  filterGain: linear.
        A one-pole filter has no use for Q and gain and takes 1 for both. */
    void addFilter (int type, double filterFrequency, double filterQ, double filterGain);

    /** Sets all filters up, each with zero state, and sets ready. */
    void setSampleRate (int newNumChannels, double newSampleRate) override;

    /** Clears ready and destroys the filters' records, but keeps the filters. */
    void clear() override;

    void process (float* samples, int numSamples, int channel) noexcept override;

    FilterList doubleFilters; // types 7 to 16: these run first
    FilterList biquads;       // types 0 to 6
    bool ready = false;
};

} // namespace NVX
