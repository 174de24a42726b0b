// SPDX-License-Identifier: GPL-3.0-or-later
// The same input in blocks of any length is the same output, bit for bit: automation, bounces and live playing agree.
#include "../processor/NoiseStreams.h"

#include "processor/CorvaneQ7AudioProcessor.h"
#include "support/Matchers.h"
#include "support/ProcessorHarness.h"
#include "support/Signals.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <functional>
#include <memory>
#include <ostream>
#include <random>
#include <string>
#include <vector>

namespace
{
constexpr double rate = 44100.0;
constexpr int longest = 1000;

std::vector<int> randomLengths (std::uint32_t seed)
{
    std::mt19937 random (seed);
    std::vector<int> lengths;

    for (int i = 0; i < 50; ++i)
        lengths.push_back (1 + static_cast<int> (random() % longest));

    return lengths;
}

struct Case
{
    std::string name;
    std::function<void (ChannelSettings&)> configure;
};

void PrintTo (const Case& setting, std::ostream* stream) { *stream << setting.name; }

using MakeNoise = std::function<std::unique_ptr<NoiseSource>()>;

std::unique_ptr<NoiseSource> noiseAt (std::int32_t draw)
{
    return std::make_unique<ListedNoise> (std::vector<std::int32_t> { draw });
}

/** Ends in agreement when every cut of the input gives the output of the uncut one. The first samples are one block
        in every cut: there the filters of the oversampling fade in from nothing, and states that small are guarded
        against denormals at a block's end (see the last test). */
void expectIndependence (const juce::AudioBuffer<float>& input, int factor, const Case& setting,
                         const MakeNoise& makeNoise)
{
    const auto run = [&] (const std::vector<int>& lengths)
    {
        const auto noise = makeNoise();
        ProcessorHarness harness (input.getNumChannels(), rate, longest, factor, setting.configure);
        harness->setNoiseSource (*noise);

        constexpr int fadeIn = 60;
        auto output = input;
        auto* const* channels = output.getArrayOfWritePointers();
        juce::AudioBuffer<float> start (channels, output.getNumChannels(), 0, fadeIn);
        harness.block (start);

        juce::AudioBuffer<float> rest (channels, output.getNumChannels(), fadeIn, output.getNumSamples() - fadeIn);
        const auto processed = harness.run (rest, lengths);

        for (int c = 0; c < output.getNumChannels(); ++c)
            rest.copyFrom (c, 0, processed, c, 0, processed.getNumSamples());

        return output;
    };

    const auto reference = run ({ longest });
    ASSERT_TRUE (Signals::allFinite (reference));
    ASSERT_GT (reference.getMagnitude (0, reference.getNumSamples()), 0.05f) << "a loud signal, or nothing is compared";

    EXPECT_TRUE (sameBits (reference, run ({ 1 }))) << setting.name << ", blocks of 1";
    EXPECT_TRUE (sameBits (reference, run ({ 7 }))) << setting.name << ", blocks of 7";
    EXPECT_TRUE (sameBits (reference, run ({ 64 }))) << setting.name << ", blocks of 64";
    EXPECT_TRUE (sameBits (reference, run (randomLengths (0xcafe)))) << setting.name << ", random blocks, seed 0xcafe";
}

void loudBands (ChannelSettings& settings)
{
    for (auto& band : settings.bands)
        band.thresholdDb.setTarget (-15.0);
}

const Case plain { "plain", loudBands };

// clang-format off
const Case cases[] = {
    plain,
    { "Default", [] (ChannelSettings&) {} },
    { "Nuke", [] (ChannelSettings& settings) { loudBands (settings); settings.nuke = true; } },
    { "MidSide",
      [] (ChannelSettings& settings)
      {
          loudBands (settings);
          settings.bands[0].midSide = 0.0;
          settings.bands[1].midSide = 1.0;
          settings.bands[2].midSide = 0.2;
      } },
    { "HighPass", [] (ChannelSettings& settings) { loudBands (settings); settings.hpfHz = 120.0; } },
    { "AutoMakeup",
      [] (ChannelSettings& settings)
      {
          loudBands (settings);
          for (auto& band : settings.bands)
              band.gainDb.setTarget (-1.0);
      } },
    { "WithoutNiveau", [] (ChannelSettings& settings) { loudBands (settings); settings.niveau = false; } },
    { "HalfMix", [] (ChannelSettings& settings) { loudBands (settings); settings.mix = 0.5; } },
    { "OneBandOutOneSolo",
      [] (ChannelSettings& settings)
      {
          loudBands (settings);
          settings.bands[0].in = false;
          settings.bands[0].solo = true;
          settings.bands[1].solo = true;
      } },
    { "FastAndHard",
      [] (ChannelSettings& settings)
      {
          for (auto& band : settings.bands)
          {
              band.thresholdDb.setTarget (-20.0);
              band.ratio = 4;
              band.attack = 0;
              band.recovery = 0;
          }
      } }
};
// clang-format on

class BlockSizeIndependenceOf : public ::testing::TestWithParam<Case>
{
};

class BlockSizeIndependenceAtFactor : public ::testing::TestWithParam<int>
{
protected:
    // Short at the high factors: sixteen times as many samples run inside.
    const int n = std::max (700, 4800 / GetParam());
};
} // namespace

TEST_P (BlockSizeIndependenceOf, HoldsInStereoWithHeldNoise)
{
    expectIndependence (Signals::whiteNoise (2, 3000, 0x10d, 0.8f), 1, GetParam(), [] { return noiseAt (1 << 30); });
}

TEST_P (BlockSizeIndependenceOf, HoldsInStereoWhenOversampling)
{
    expectIndependence (Signals::whiteNoise (2, 1500, 0x20d, 0.8f), 2, GetParam(), [] { return noiseAt (1 << 30); });
}

TEST_P (BlockSizeIndependenceOf, HoldsInMonoWithAStreamOfNoise)
{
    expectIndependence (Signals::whiteNoise (1, 3000, 0x30d, 0.8f), 1, GetParam(),
                        [] { return std::make_unique<SeededNoise> (0x5eed); });
}

INSTANTIATE_TEST_SUITE_P (Settings, BlockSizeIndependenceOf, ::testing::ValuesIn (cases),
                          [] (const auto& setting) { return setting.param.name; });

TEST_P (BlockSizeIndependenceAtFactor, HoldsInStereoWithHeldNoise)
{
    expectIndependence (Signals::whiteNoise (2, n, 0x40d, 0.8f), GetParam(), plain, [] { return noiseAt (1 << 30); });
}

TEST_P (BlockSizeIndependenceAtFactor, HoldsInStereoWithAConstantNoise)
{
    expectIndependence (Signals::whiteNoise (2, n, 0x50d, 0.8f), GetParam(), plain,
                        [] { return noiseAt (0x7ffffff0); });
}

TEST_P (BlockSizeIndependenceAtFactor, HoldsInMonoWithAStreamOfNoise)
{
    expectIndependence (Signals::whiteNoise (1, n, 0x60d, 0.8f), GetParam(), plain,
                        [] { return std::make_unique<SeededNoise> (0x5eed); });
}

INSTANTIATE_TEST_SUITE_P (All, BlockSizeIndependenceAtFactor, ::testing::Range (1, 17),
                          ::testing::PrintToStringParamName());

TEST (BlockSizeIndependence, AnnouncingAnotherLengthChangesNothing)
{
    const auto input = Signals::whiteNoise (2, 2000, 0x70d, 0.8f);
    ProcessorHarness announcedSmall (2, rate, 16, 2, loudBands), announcedLarge (2, rate, 4096, 2, loudBands);

    EXPECT_TRUE (sameBits (announcedLarge.run (input, { 16 }), announcedSmall.run (input, { 16 })));
}

TEST (BlockSizeIndependence, HoldsWhileControlsRamp)
{
    // Ramps count samples, not blocks: levels, mix and crossovers on their way give the same curve in any cut.
    // (The tap of a moved detector filter is the exception: it fades per block, and is left alone here.)
    const auto input = Signals::whiteNoise (2, 6000, 0x80d, 0.8f);

    const auto run = [&] (const std::vector<int>& lengths)
    {
        ProcessorHarness harness (2, rate, longest, 1, loudBands);
        auto& settings = harness->activeSettings();
        ChannelSettings::setDecibels (settings.inLevelDb, settings.inLevelLinear, 5.0);
        ChannelSettings::setDecibels (settings.outLevelDb, settings.outLevelLinear, -7.0);
        ChannelSettings::setDecibels (settings.masterGainDb, settings.masterGainLinear, 2.0);
        settings.mix = 0.3;
        settings.lowXOverHz = 500.0;
        settings.highXOverHz = 2000.0;
        harness->applySettings();
        return harness.run (input, lengths);
    };

    const auto reference = run ({ longest });
    EXPECT_TRUE (sameBits (reference, run ({ 1 })));
    EXPECT_TRUE (sameBits (reference, run ({ 63 })));
    EXPECT_TRUE (sameBits (reference, run (randomLengths (0xbead))));
}

TEST (BlockSizeIndependence, AStreamOfNoiseInStereoDependsOnTheCut)
{
    // It is drawn channel by channel within a block, so which draw meets which sample follows the block length.
    const auto input = Signals::whiteNoise (2, 1000, 0x90d, 0.5f);

    const auto run = [&] (int length)
    {
        SeededNoise noise (1);
        ProcessorHarness harness (2, rate, longest, 1);
        harness->setNoiseSource (noise);
        return harness.run (input, { length });
    };

    EXPECT_FALSE (sameBits (run (longest), run (10)));
    EXPECT_TRUE (equalWithin (run (longest), run (10), 3.0e-5f))
        << "two noises of 0.00004 / 14.5, and the gain of 2 dB";
}

namespace
{
/** The tone cascade's biquads set a state that is not above 1e-8 to 0 at the end of each block. */
constexpr float guardedState = 1.0e-8f;
} // namespace

TEST (BlockSizeIndependence, TheBiquadsGuardAgainstDenormalsIsTheOnlyDifference)
{
    // Noise alone: the states are small, some stand within 1e-8 of 0 just where a block ends.
    constexpr int n = 4000;
    const auto input = Signals::silence (1, n);

    const auto run = [&] (int length)
    {
        SeededNoise noise (0x5eed);
        ProcessorHarness harness (1, rate, longest, 1);
        harness->setNoiseSource (noise);
        return harness.run (input, { length });
    };

    const auto whole = run (longest), single = run (1);
    EXPECT_FALSE (sameBits (whole, single)) << "the guard acts";

    // A state that is dropped is one summand of the next sample, at most 1e-8 in each of two states of two biquads of
    // three bands; the shelves' poles lie so that what is dropped dies away within a few samples (a sum below 2), and
    // the bands' gain of 2.3 dB is 1.3. The output is the circuit's signal over 14.5.
    constexpr auto bound = 2.0f * 2.0f * 3.0f * 2.0f * 1.3f * guardedState / 14.5075f;
    EXPECT_TRUE (equalWithin (whole, single, bound));
    EXPECT_GT (whole.getMagnitude (0, n), 100.0f * bound) << "the noise is at -111 dB, the bound far below it";
}
