// SPDX-License-Identifier: GPL-3.0-or-later
#include "processor/Vst3GainReduction.h"

#include <pluginterfaces/base/funknown.h>

#include <juce_audio_processors/format_types/pslextensions/ipslgainreduction.h>

#include <cstring>

class Vst3GainReduction::Report final : public Presonus::IGainReductionInfo
{
public:
    explicit Report (std::function<double()> source) : reductionInDb (std::move (source)) {}

    Steinberg::tresult PLUGIN_API queryInterface (const Steinberg::TUID id, void** object) override
    {
        const auto known = isSame (id, Presonus::IGainReductionInfo_iid) || isSame (id, Steinberg::FUnknown_iid);
        *object = known ? this : nullptr;
        return known ? Steinberg::kResultOk : Steinberg::kNoInterface;
    }

    // Counted by nobody: the processor owns it.
    Steinberg::uint32 PLUGIN_API addRef() override { return 1; }
    Steinberg::uint32 PLUGIN_API release() override { return 1; }

    double PLUGIN_API getGainReductionValueInDb() override { return reductionInDb(); }

    static bool isSame (const char* a, const Steinberg::TUID b) noexcept
    {
        return std::memcmp (a, b, sizeof (Steinberg::TUID)) == 0;
    }

private:
    const std::function<double()> reductionInDb;
};

Vst3GainReduction::Vst3GainReduction (std::function<double()> reductionInDb)
    : report (std::make_unique<Report> (std::move (reductionInDb)))
{
}

Vst3GainReduction::~Vst3GainReduction() = default;

bool Vst3GainReduction::query (const char* interfaceId, void** object)
{
    if (! Report::isSame (interfaceId, Presonus::IGainReductionInfo_iid))
        return false;

    *object = static_cast<Presonus::IGainReductionInfo*> (report.get());
    return true;
}
