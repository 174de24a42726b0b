// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <functional>
#include <memory>

/** What a VST3 host asks for to draw its own gain-reduction meter: the public-domain interface for it, answered from
    a function.

    Value    dB, 0 or negative.
    Threads  the host's message thread asks; the function must only read.
    Life     the host's reference does not keep it alive: it lives as long as the processor, as its controller does.
*/
class Vst3GainReduction
{
public:
    explicit Vst3GainReduction (std::function<double()> reductionInDb);
    ~Vst3GainReduction();

    /** Hands out the interface when `interfaceId` (16 bytes) names it. Returns whether it does. */
    bool query (const char* interfaceId, void** object);

private:
    class Report;
    std::unique_ptr<Report> report;
};
