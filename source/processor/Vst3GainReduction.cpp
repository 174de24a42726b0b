// SPDX-License-Identifier: GPL-3.0-or-later
#include "processor/Vst3GainReduction.h"

#include <pluginterfaces/base/funknown.h>

#include <juce_audio_processors/format_types/pslextensions/ipslgainreduction.h>

#include <atomic>
#include <cstring>
#include <mutex>

class Vst3GainReduction::Report final : public Presonus::IGainReductionInfo
{
public:
    explicit Report (std::function<double()> reductionInDb) : source (std::move (reductionInDb)) {}

    Steinberg::tresult PLUGIN_API queryInterface (const Steinberg::TUID id, void** object) override
    {
        const auto known = isSame (id, Presonus::IGainReductionInfo_iid) || isSame (id, Steinberg::FUnknown_iid);
        *object = known ? this : nullptr;

        if (known)
            addRef();

        return known ? Steinberg::kResultOk : Steinberg::kNoInterface;
    }

    Steinberg::uint32 PLUGIN_API addRef() override { return ++references; }

    Steinberg::uint32 PLUGIN_API release() override
    {
        const auto left = --references;

        if (left == 0)
            delete this;

        return left;
    }

    double PLUGIN_API getGainReductionValueInDb() override
    {
        const std::lock_guard<std::mutex> lock (sourceLock);
        return source ? source() : 0.0;
    }

    /** Behind this the function is never called again: what it reads may go. */
    void detach()
    {
        const std::lock_guard<std::mutex> lock (sourceLock);
        source = nullptr;
    }

    static bool isSame (const char* a, const Steinberg::TUID b) noexcept
    {
        return std::memcmp (a, b, sizeof (Steinberg::TUID)) == 0;
    }

private:
    ~Report() = default; // by the last release alone

    std::mutex sourceLock; // a host may ask on one thread while the processor goes on another
    std::function<double()> source;
    std::atomic<Steinberg::uint32> references { 1 };
};

Vst3GainReduction::Vst3GainReduction (std::function<double()> reductionInDb)
    : report (new Report (std::move (reductionInDb)))
{
}

Vst3GainReduction::~Vst3GainReduction()
{
    report->detach();
    report->release();
}

bool Vst3GainReduction::query (const char* interfaceId, void** object)
{
    return Report::isSame (interfaceId, Presonus::IGainReductionInfo_iid)
           && report->queryInterface (interfaceId, object) == Steinberg::kResultOk;
}
