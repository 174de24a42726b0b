// SPDX-License-Identifier: GPL-3.0-or-later
// The bundles as hosts use them: found, instantiated, run, and giving the samples of the engine itself.
#include "support/BundleHost.h"
#include "support/Matchers.h"
#include "support/ProcessorHarness.h"
#include "support/Signals.h"

namespace
{
using namespace BundleHost;

/** The same through the engine, with no wrapper between. The framework's LV2 host restores what it finds when it
    instantiates, after the wrapper has prepared: so the engine, too, then reads its own session, which moves a
    crossover by 1e-5 Hz. */
juce::AudioBuffer<float> runEngine (const juce::AudioBuffer<float>& input, Format format)
{
    CorvaneQ7AudioProcessor processor;
    processor.setRateAndBufferSizeDetails (rate, blockLength);
    processor.prepareToPlay (rate, blockLength);

    if (format == Format::lv2)
    {
        juce::MemoryBlock session;
        processor.getStateInformation (session);
        processor.setStateInformation (session.getData(), static_cast<int> (session.getSize()));
    }

    return run (processor, input);
}

class BundleIn : public ::testing::TestWithParam<Format>
{
protected:
    void SetUp() override { ASSERT_NE (instance, nullptr); }

    std::unique_ptr<juce::AudioPluginFormat> format = makeFormat (GetParam());
    std::unique_ptr<juce::AudioPluginInstance> instance = instantiate (*format);
};
} // namespace

TEST_P (BundleIn, AHostRunsTheEngine)
{
    EXPECT_EQ (instance->getName(), "Corvane Q7");
    EXPECT_EQ (instance->getTotalNumInputChannels(), 2);
    EXPECT_EQ (instance->getTotalNumOutputChannels(), 2);
    EXPECT_FALSE (instance->acceptsMidi());
    EXPECT_FALSE (instance->producesMidi());

    instance->prepareToPlay (rate, blockLength);
    EXPECT_EQ (instance->getLatencySamples(), 0); // no oversampling by default

    const auto input = Signals::whiteNoise (2, 24000, 0xc0de, 0.5f);
    const auto output = run (*instance, input);

    EXPECT_TRUE (Signals::allFinite (output));
    EXPECT_GT (output.getMagnitude (0, output.getNumSamples()), 0.01f);
    EXPECT_TRUE (sameBits (output, runEngine (input, GetParam())));
    instance->releaseResources();
}

INSTANTIATE_TEST_SUITE_P (, BundleIn, ::testing::Values (Format::vst3, Format::lv2),
                          [] (const auto& param) { return param.param == Format::vst3 ? "Vst3" : "Lv2"; });

TEST (Vst3Bundle, ShowsItsFifteenPrograms)
{
    const auto format = makeFormat (Format::vst3);
    const auto instance = instantiate (*format);
    ASSERT_NE (instance, nullptr);
    ASSERT_EQ (instance->getNumPrograms(), FactoryPrograms::numPrograms);

    for (int i = 0; i < FactoryPrograms::numPrograms; ++i)
        EXPECT_EQ (instance->getProgramName (i), FactoryPrograms::name (i));
}

TEST (Bundles, RunTogetherInOneProcess)
{
    const auto vst3 = makeFormat (Format::vst3);
    const auto lv2 = makeFormat (Format::lv2);
    const auto first = instantiate (*vst3);
    const auto second = instantiate (*lv2);
    ASSERT_NE (first, nullptr);
    ASSERT_NE (second, nullptr);

    for (auto* instance : { first.get(), second.get() })
        instance->prepareToPlay (rate, blockLength);

    const auto input = Signals::whiteNoise (2, 4800, 0xfeed, 0.5f);
    EXPECT_TRUE (sameBits (run (*first, input), runEngine (input, Format::vst3)));
    EXPECT_TRUE (sameBits (run (*second, input), runEngine (input, Format::lv2)));
}
