// SPDX-License-Identifier: GPL-3.0-or-later
// The bundles as hosts use them: found, instantiated, run, and giving the samples of the engine itself.
#include "support/Matchers.h"
#include "support/ProcessorHarness.h"
#include "support/Signals.h"

#include <juce_audio_processors/juce_audio_processors.h>

#include <gtest/gtest.h>

#include <cstdlib>

namespace
{
constexpr double rate = 48000.0;
constexpr int blockLength = 512;
constexpr unsigned noiseSeed = 7;

std::unique_ptr<juce::AudioPluginInstance> instantiate (juce::AudioPluginFormat& format, const juce::String& identifier)
{
    juce::OwnedArray<juce::PluginDescription> found;
    format.findAllTypesForFile (found, identifier);

    if (found.size() != 1)
        return nullptr;

    juce::String error;
    auto instance = format.createInstanceFromDescription (*found[0], rate, blockLength, error);
    EXPECT_TRUE (error.isEmpty()) << error;
    return instance;
}

juce::AudioBuffer<float> runInstance (juce::AudioPluginInstance& instance, const juce::AudioBuffer<float>& input)
{
    juce::AudioBuffer<float> output (input);
    juce::MidiBuffer midi;
    std::srand (noiseSeed);

    for (int done = 0; done < output.getNumSamples(); done += blockLength)
    {
        juce::AudioBuffer<float> piece (output.getArrayOfWritePointers(), 2, done,
                                        std::min (blockLength, output.getNumSamples() - done));
        instance.processBlock (piece, midi);
    }

    return output;
}

/** The same through the engine, with no wrapper between; bundle and test draw from the C library's one generator. */
juce::AudioBuffer<float> runEngine (const juce::AudioBuffer<float>& input)
{
    CorvaneQ7AudioProcessor processor;
    processor.setRateAndBufferSizeDetails (rate, blockLength);
    processor.prepareToPlay (rate, blockLength);

    juce::AudioBuffer<float> output (input);
    juce::MidiBuffer midi;
    std::srand (noiseSeed);

    for (int done = 0; done < output.getNumSamples(); done += blockLength)
    {
        juce::AudioBuffer<float> piece (output.getArrayOfWritePointers(), 2, done,
                                        std::min (blockLength, output.getNumSamples() - done));
        processor.processBlock (piece, midi);
    }

    return output;
}

void expectEngineInside (juce::AudioPluginInstance& instance)
{
    EXPECT_EQ (instance.getName(), "Corvane Q7");
    EXPECT_EQ (instance.getTotalNumInputChannels(), 2);
    EXPECT_EQ (instance.getTotalNumOutputChannels(), 2);
    EXPECT_FALSE (instance.acceptsMidi());
    EXPECT_FALSE (instance.producesMidi());

    instance.setRateAndBufferSizeDetails (rate, blockLength);
    instance.prepareToPlay (rate, blockLength);
    EXPECT_EQ (instance.getLatencySamples(), 0); // no oversampling by default

    const auto input = Signals::whiteNoise (2, 24000, 0xc0de, 0.5f);
    const auto output = runInstance (instance, input);

    EXPECT_TRUE (Signals::allFinite (output));
    EXPECT_GT (output.getMagnitude (0, output.getNumSamples()), 0.01f);
    EXPECT_TRUE (sameBits (output, runEngine (input)));
    instance.releaseResources();
}
} // namespace

TEST (Vst3Bundle, RunsTheEngineInAHost)
{
    juce::VST3PluginFormat format;
    const auto instance = instantiate (format, CORVANE_VST3_BUNDLE);
    ASSERT_NE (instance, nullptr);
    expectEngineInside (*instance);
}

TEST (Vst3Bundle, ShowsItsFifteenPrograms)
{
    juce::VST3PluginFormat format;
    const auto instance = instantiate (format, CORVANE_VST3_BUNDLE);
    ASSERT_NE (instance, nullptr);
    ASSERT_EQ (instance->getNumPrograms(), FactoryPrograms::numPrograms);

    for (int i = 0; i < FactoryPrograms::numPrograms; ++i)
        EXPECT_EQ (instance->getProgramName (i), FactoryPrograms::name (i));
}

TEST (Lv2Bundle, RunsTheEngineInAHost)
{
    juce::LV2PluginFormat format;
    const auto found = format.searchPathsForPlugins (juce::FileSearchPath (CORVANE_LV2_FOLDER), false, false);
    ASSERT_TRUE (found.contains (CORVANE_LV2_URI));

    const auto instance = instantiate (format, CORVANE_LV2_URI);
    ASSERT_NE (instance, nullptr);
    expectEngineInside (*instance);
}

TEST (Bundles, RunTogetherInOneProcess)
{
    juce::VST3PluginFormat vst3;
    juce::LV2PluginFormat lv2;
    lv2.searchPathsForPlugins (juce::FileSearchPath (CORVANE_LV2_FOLDER), false, false);

    const auto first = instantiate (vst3, CORVANE_VST3_BUNDLE);
    const auto second = instantiate (lv2, CORVANE_LV2_URI);
    ASSERT_NE (first, nullptr);
    ASSERT_NE (second, nullptr);

    for (auto* instance : { first.get(), second.get() })
    {
        instance->setRateAndBufferSizeDetails (rate, blockLength);
        instance->prepareToPlay (rate, blockLength);
    }

    const auto input = Signals::whiteNoise (2, 4800, 0xfeed, 0.5f);
    const auto expected = runEngine (input);
    EXPECT_TRUE (sameBits (runInstance (*first, input), expected));
    EXPECT_TRUE (sameBits (runInstance (*second, input), expected));
}
