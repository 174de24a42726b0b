// SPDX-License-Identifier: GPL-3.0-or-later
// Gain reduction as a VST3 host asks for it: through the controller of the built bundle, with no host class between.
#include "support/Vst3Module.h"

#include <juce_audio_processors/format_types/pslextensions/ipslgainreduction.h>

#include <gtest/gtest.h>

#include <memory>

TEST (Vst3BundleGainReduction, IsAnsweredByTheControllerAndOutlivesIt)
{
    Vst3Module module (CORVANE_VST3_MODULE);
    auto instance = std::make_unique<Vst3Instance> (module);
    const auto report =
        Vst3Instance::query<Presonus::IGainReductionInfo> (*instance->controller, Presonus::IGainReductionInfo_iid);
    ASSERT_NE (report.get(), nullptr);
    EXPECT_EQ (report->getGainReductionValueInDb(), 0.0); // nothing has run

    EXPECT_EQ (report->addRef(), 3u); // the processor's, ours, and this one
    EXPECT_EQ (report->release(), 2u);

    instance.reset();
    EXPECT_EQ (report->getGainReductionValueInDb(), 0.0);
    EXPECT_EQ (report->addRef(), 2u);
    EXPECT_EQ (report->release(), 1u);
}
