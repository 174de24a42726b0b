// SPDX-License-Identifier: GPL-3.0-or-later
#include "processor/CorvaneQ7AudioProcessor.h"

#include <pluginterfaces/base/smartpointer.h>
#include <pluginterfaces/vst/ivsteditcontroller.h>

#include <juce_audio_processors/format_types/pslextensions/ipslgainreduction.h>

#include <gtest/gtest.h>

#include <cmath>
#include <memory>

namespace
{
using namespace Steinberg;
using Report = IPtr<Presonus::IGainReductionInfo>;

/** As a host gets it: with a reference of its own. */
Report reportOf (CorvaneQ7AudioProcessor& processor)
{
    void* object = nullptr;
    processor.queryIEditController (Presonus::IGainReductionInfo_iid, &object);
    return owned (static_cast<Presonus::IGainReductionInfo*> (object));
}

/** References of an object, which only its answers tell. */
uint32 countOf (FUnknown& object)
{
    object.addRef();
    return object.release();
}
} // namespace

TEST (Vst3GainReduction, IsThatOfTheDeepestBandInDecibels)
{
    CorvaneQ7AudioProcessor processor;
    const auto report = reportOf (processor);
    ASSERT_NE (report.get(), nullptr);

    auto& settings = processor.activeSettings();
    settings.lowGainReduction = 0.9;
    settings.midGainReduction = 0.25;
    settings.highGainReduction = 0.5;
    EXPECT_NEAR (report->getGainReductionValueInDb(), 20.0 * std::log10 (0.25), 1.0e-9);
}

TEST (Vst3GainReduction, IsNeverAboveZero)
{
    CorvaneQ7AudioProcessor processor;
    auto& settings = processor.activeSettings();
    settings.lowGainReduction = settings.midGainReduction = settings.highGainReduction = 1.1;
    EXPECT_EQ (reportOf (processor)->getGainReductionValueInDb(), 0.0);
}

TEST (Vst3GainReduction, IsZeroWhileBypassed)
{
    CorvaneQ7AudioProcessor processor;
    processor.activeSettings().midGainReduction = 0.25;
    processor.activeSettings().bypass.setTarget (1.0);
    EXPECT_EQ (reportOf (processor)->getGainReductionValueInDb(), 0.0);
}

TEST (Vst3GainReduction, FollowsTheAudibleSlot)
{
    CorvaneQ7AudioProcessor processor;
    processor.settingsSlots[1].highGainReduction = 0.1;
    EXPECT_EQ (reportOf (processor)->getGainReductionValueInDb(), 0.0);
    processor.selectSlot (1);
    EXPECT_NEAR (reportOf (processor)->getGainReductionValueInDb(), -20.0, 1.0e-9);
}

TEST (Vst3GainReduction, OtherInterfacesAreNotOurs)
{
    CorvaneQ7AudioProcessor processor;
    void* object = &processor;
    EXPECT_NE (processor.queryIEditController (Vst::IEditController_iid, &object), kResultOk);
    EXPECT_EQ (object, nullptr);

    object = &processor;
    EXPECT_EQ (reportOf (processor)->queryInterface (Vst::IEditController_iid, &object), kNoInterface);
    EXPECT_EQ (object, nullptr);
}

TEST (Vst3GainReduction, CountsItsReferences)
{
    CorvaneQ7AudioProcessor processor;
    const auto report = reportOf (processor);
    EXPECT_EQ (countOf (*report), 2u); // the processor's and ours

    {
        const auto second = reportOf (processor);
        EXPECT_EQ (second.get(), report.get());
        EXPECT_EQ (countOf (*report), 3u);

        void* object = nullptr;
        ASSERT_EQ (report->queryInterface (FUnknown_iid, &object), kResultOk);
        const auto third = owned (static_cast<FUnknown*> (object));
        EXPECT_EQ (third.get(), report.get());
        EXPECT_EQ (countOf (*report), 4u);
    }

    EXPECT_EQ (countOf (*report), 2u);
}

// The address checker sees the read of what is gone, and the leak checker what nobody let go.
TEST (Vst3GainReduction, OutlivesTheProcessorAndThenReportsZero)
{
    auto processor = std::make_unique<CorvaneQ7AudioProcessor>();
    processor->activeSettings().midGainReduction = 0.25;
    const auto report = reportOf (*processor);
    EXPECT_LT (report->getGainReductionValueInDb(), -12.0);

    processor.reset();
    EXPECT_EQ (report->getGainReductionValueInDb(), 0.0);
    EXPECT_EQ (countOf (*report), 1u);
}
