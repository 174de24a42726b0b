// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <functional>

/** What a VST3 host asks for to draw its own gain-reduction meter: the public-domain interface for it, answered from
    a function.

    Value    dB, 0 or negative.
    Threads  any but audio; the function must only read.
    Life     counted like every VST3 interface: what a host holds stays, and reports 0 once the processor is gone.
*/
class Vst3GainReduction
{
public:
    explicit Vst3GainReduction (std::function<double()> reductionInDb);
    ~Vst3GainReduction();

    Vst3GainReduction (const Vst3GainReduction&) = delete;
    Vst3GainReduction& operator= (const Vst3GainReduction&) = delete;

    /** Hands out the interface, one reference with it, when `interfaceId` (16 bytes) names it. Returns whether it does. */
    bool query (const char* interfaceId, void** object);

private:
    class Report;
    Report* const report; // holds one of its references
};
