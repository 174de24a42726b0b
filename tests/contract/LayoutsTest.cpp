// SPDX-License-Identifier: GPL-3.0-or-later
// Every layout that a host may choose: the inputs are processed, what has no input is silent, nothing faults.
#include "processor/CorvaneQ7AudioProcessor.h"
#include "support/Matchers.h"
#include "support/ProcessorHarness.h"
#include "support/Signals.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <memory>
#include <ostream>
#include <string>

namespace
{
constexpr double rate = 48000.0;
constexpr int n = 200;

struct Layout
{
    std::string name;
    juce::AudioChannelSet input, output;
};

void PrintTo (const Layout& layout, std::ostream* stream) { *stream << layout.name; }

using Set = juce::AudioChannelSet;

// clang-format off
const Layout layouts[] = {
    { "Mono", Set::mono(), Set::mono() },
    { "Stereo", Set::stereo(), Set::stereo() },
    { "MonoToStereo", Set::mono(), Set::stereo() },
    { "NothingToStereo", Set::disabled(), Set::stereo() },
    { "NothingToMono", Set::disabled(), Set::mono() },
    { "StereoToMono", Set::stereo(), Set::mono() },
    { "StereoToNothing", Set::stereo(), Set::disabled() },
    { "FivePointOne", Set::create5point1(), Set::create5point1() },
    { "StereoToFivePointOne", Set::stereo(), Set::create5point1() },
    { "TwelveDiscrete", Set::discreteChannels (12), Set::discreteChannels (12) },
    { "DiscretePair", Set::discreteChannels (2), Set::discreteChannels (2) },
    { "DiscreteThreeToFive", Set::discreteChannels (3), Set::discreteChannels (5) }
};
// clang-format on

class Layouts : public ::testing::TestWithParam<Layout>
{
protected:
    const int inputs = GetParam().input.size();
    const int outputs = GetParam().output.size();
    const int channels = std::max (inputs, outputs);

    /** A processor with its bands out and the noise held, so that each channel stands for itself. */
    std::unique_ptr<CorvaneQ7AudioProcessor> prepared (int factor, double mix) const
    {
        auto processor = std::make_unique<CorvaneQ7AudioProcessor>();
        EXPECT_TRUE (processor->setBusesLayout ({ { GetParam().input }, { GetParam().output } }));
        EXPECT_EQ (inputs, processor->getTotalNumInputChannels());
        EXPECT_EQ (outputs, processor->getTotalNumOutputChannels());

        for (auto& band : processor->activeSettings().bands)
            band.in = false;

        processor->activeSettings().mix = mix;
        processor->setNoiseSource (NoiseSource::held());
        processor->setOversampling (factor);
        processor->applySettings();
        processor->setRateAndBufferSizeDetails (rate, n);
        processor->prepareToPlay (rate, n);
        return processor;
    }

    juce::MidiBuffer midi;
};
} // namespace

TEST_P (Layouts, EachInputIsProcessedForItself)
{
    for (const auto factor : { 1, 2 })
        for (const auto mix : { 1.0, 0.5 })
        {
            const auto processor = prepared (factor, mix);
            auto buffer = Signals::whiteNoise (channels, n, 0x1a, 0.4f);
            const auto input = buffer;
            processor->processBlock (buffer, midi);

            for (int c = 0; c < inputs; ++c)
            {
                ProcessorHarness mono (1, rate, n, factor,
                                       [mix] (ChannelSettings& settings)
                                       {
                                           settings.mix = mix;

                                           for (auto& band : settings.bands)
                                               band.in = false;
                                       });
                juce::AudioBuffer<float> one (1, n), output (1, n);
                one.copyFrom (0, 0, input, c, 0, n);
                output.copyFrom (0, 0, buffer, c, 0, n);
                EXPECT_TRUE (sameBits (mono.run (one, { n }), output)) << "channel " << c << ", factor " << factor;
            }
        }
}

TEST_P (Layouts, OutputsWithoutAnInputAreSilent)
{
    for (const auto mix : { 1.0, 0.0 })
    {
        const auto processor = prepared (2, mix);
        auto buffer = Signals::whiteNoise (channels, n, 0x1b);
        processor->processBlock (buffer, midi);

        for (int c = inputs; c < outputs; ++c)
            EXPECT_EQ (0.0f, buffer.getMagnitude (c, 0, n)) << c;
    }

    const auto processor = prepared (2, 1.0);
    auto buffer = Signals::whiteNoise (channels, n, 0x1c);
    processor->processBlockBypassed (buffer, midi);

    for (int c = inputs; c < outputs; ++c)
        EXPECT_EQ (0.0f, buffer.getMagnitude (c, 0, n)) << "bypassed, " << c;
}

TEST_P (Layouts, EveryPathIsSafe)
{
    for (const auto factor : { 1, 3 })
    {
        CorvaneQ7AudioProcessor processor;
        ASSERT_TRUE (processor.setBusesLayout ({ { GetParam().input }, { GetParam().output } }));
        processor.setOversampling (factor);
        processor.setRateAndBufferSizeDetails (rate, n);
        processor.prepareToPlay (rate, n);

        for (int mode = 0; mode < 3; ++mode)
        {
            auto& settings = processor.activeSettings();

            for (auto& band : settings.bands)
            {
                band.meter = mode;
                band.midSide = 0.5 * mode;
            }

            settings.mix = 0.4 * mode;
            settings.hpfHz = 100.0;
            processor.applySettings();

            auto buffer = Signals::whiteNoise (channels, 3 * n, 0x1d + static_cast<std::uint32_t> (mode));
            processor.processBlock (buffer, midi);
            processor.processBlockBypassed (buffer, midi);
            EXPECT_TRUE (Signals::allFinite (buffer));

            for (int b = 0; b < 3; ++b)
            {
                EXPECT_TRUE (std::isfinite (settings.level (b)));
                EXPECT_TRUE (std::isfinite (settings.gainReduction (b)));
            }
        }

        processor.releaseResources();
    }
}

INSTANTIATE_TEST_SUITE_P (All, Layouts, ::testing::ValuesIn (layouts),
                          [] (const auto& layout) { return layout.param.name; });

TEST (LayoutChange, ANewLayoutIsTakenByTheNextPrepare)
{
    CorvaneQ7AudioProcessor processor;
    processor.setNoiseSource (NoiseSource::held());
    processor.setOversampling (2);
    processor.setRateAndBufferSizeDetails (rate, n);
    juce::MidiBuffer midi;

    for (const auto& layout : { layouts[1], layouts[9], layouts[0], layouts[3], layouts[7] })
    {
        ASSERT_TRUE (processor.setBusesLayout ({ { layout.input }, { layout.output } }));
        processor.prepareToPlay (rate, n);

        EXPECT_EQ (static_cast<std::size_t> (layout.input.size()), processor.oversamplers.size());
        EXPECT_EQ (layout.input.size(), processor.dryDelay.getNumRecords());
        EXPECT_EQ (layout.input.size() + 5, processor.controlBuffer.getNumChannels());

        auto buffer = Signals::whiteNoise (std::max (layout.input.size(), layout.output.size()), n, 3, 0.3f);
        processor.processBlock (buffer, midi);
        EXPECT_TRUE (Signals::allFinite (buffer)) << layout.name;
    }
}

TEST (LayoutChange, ALayoutThatGrowsWithoutAPrepareIsSafe)
{
    CorvaneQ7AudioProcessor processor;
    processor.setBusesLayout ({ { juce::AudioChannelSet::mono() }, { juce::AudioChannelSet::mono() } });
    processor.setRateAndBufferSizeDetails (rate, n);
    processor.prepareToPlay (rate, n);
    processor.setBusesLayout (
        { { juce::AudioChannelSet::create5point1() }, { juce::AudioChannelSet::create5point1() } });

    auto buffer = Signals::whiteNoise (6, n, 3, 0.3f);
    juce::MidiBuffer midi;
    processor.processBlock (buffer, midi);
    EXPECT_TRUE (Signals::allFinite (buffer));
}
