// SPDX-License-Identifier: GPL-3.0-or-later
// The stages of a block and their order, from the host's buffer to the output.
#include "NoiseStreams.h"
#include "ReferenceChain.h"

#include "processor/CorvaneQ7AudioProcessor.h"
#include "support/Matchers.h"
#include "support/ProcessorHarness.h"
#include "support/Signals.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <string>
#include <tuple>
#include <vector>

namespace
{
constexpr double rate = 44100.0;
constexpr int rampLength = 4410;

/** The bands as plain wires: what is left are the stages around them. */
void takeBandsOut (ChannelSettings& settings)
{
    for (auto& band : settings.bands)
        band.in = false;
}

void setAtRest (Setpoint& db, Setpoint& gain, double value)
{
    ChannelSettings::setDecibels (db, gain, value); // before the engine is built: it lands there
}

/** What the three bands hand to the sum, added up without rounding. */
double sumOfBands (const CorvaneQ7AudioProcessor& processor, int channel, int i)
{
    return static_cast<double> (processor.lowBuffer.getSample (channel, i)) + processor.midBuffer.getSample (channel, i)
           + processor.highBuffer.getSample (channel, i);
}

class BlockLoop : public ::testing::TestWithParam<std::tuple<int, int, bool>>
{
protected:
    const int channels = std::get<0> (GetParam());
    const int factor = std::get<1> (GetParam());
    const bool nuke = std::get<2> (GetParam());
    static constexpr int n = 700;

    juce::AudioBuffer<float> input = Signals::whiteNoise (channels, n, 0xb10c, 0.4f);
    SeededNoise noise { 0x2019 }, sameNoise { 0x2019 };

    void SetUp() override { RecordProperty ("seeds", "input 0xb10c, noise 0x2019"); }

    void configure (ChannelSettings& settings) const
    {
        settings.nuke = nuke;
        settings.bands[0].gainDb.setTarget (5.0);
        settings.bands[1].thresholdDb.setTarget (-12.0);
        settings.bands[2].in = false;
        settings.highXOverHz = 3000.0;
    }

    /** Ends when the harness's one block and the reference agree. */
    void expectEqual (ProcessorHarness& harness, ReferenceChain& reference)
    {
        harness->setNoiseSource (noise);
        const auto output = harness.run (input, { n });
        EXPECT_TRUE (sameBits (reference.run (input, sameNoise), output));
        EXPECT_EQ (static_cast<long> (channels) * n, noise.draws)
            << "one draw a sample and channel, at the host's rate";
    }
};

std::string labelOf (const ::testing::TestParamInfo<std::tuple<int, int, bool>>& info)
{
    return std::string (std::get<0> (info.param) == 1 ? "Mono" : "Stereo") + "Factor"
           + std::to_string (std::get<1> (info.param)) + (std::get<2> (info.param) ? "Nuke" : "");
}
} // namespace

TEST_P (BlockLoop, FullyWetIsTheChainOfItsStages)
{
    const auto settle = [this] (ChannelSettings& settings)
    {
        configure (settings);
        setAtRest (settings.inLevelDb, settings.inLevelLinear, 3.0);
        setAtRest (settings.outLevelDb, settings.outLevelLinear, -2.5);
        setAtRest (settings.masterGainDb, settings.masterGainLinear, 1.25);
    };

    ProcessorHarness harness (channels, rate, n, factor, settle);
    ReferenceChain reference (harness->activeSettings(), channels, rate, factor, n);
    expectEqual (harness, reference);
}

TEST_P (BlockLoop, APartlyDryMixAddsTheRawInputInTime)
{
    const auto settle = [this] (ChannelSettings& settings)
    {
        configure (settings);
        settings.mix = 0.3;
        setAtRest (settings.inLevelDb, settings.inLevelLinear, 6.0); // neither of these reaches the dry share
        setAtRest (settings.outLevelDb, settings.outLevelLinear, -6.0);
    };

    ProcessorHarness harness (channels, rate, n, factor, settle);
    ReferenceChain reference (harness->activeSettings(), channels, rate, factor, n);
    ASSERT_TRUE (reference.curves.dryNeeded);
    expectEqual (harness, reference);
}

TEST_P (BlockLoop, MovingControlsFollowTheirRamps)
{
    ProcessorHarness harness (channels, rate, n, factor, [this] (ChannelSettings& settings) { configure (settings); });
    ReferenceChain reference (harness->activeSettings(), channels, rate, factor, n);

    auto& settings = harness->activeSettings();
    ChannelSettings::setDecibels (settings.inLevelDb, settings.inLevelLinear, 12.0);
    ChannelSettings::setDecibels (settings.outLevelDb, settings.outLevelLinear, -30.0);
    ChannelSettings::setDecibels (settings.masterGainDb, settings.masterGainLinear, 4.0);
    settings.mix = 0.2;
    harness->applySettings();

    reference.curves.input = ReferenceChain::ratios (1.0, std::pow (10.0, 12.0 * 0.05), rampLength, n);
    reference.curves.output = ReferenceChain::ratios (1.0, std::pow (10.0, -30.0 * 0.05), rampLength, n);
    reference.curves.master = ReferenceChain::ratios (1.0, std::pow (10.0, 4.0 * 0.05), rampLength, n);
    reference.curves.wet = ReferenceChain::steps (1.0, 0.2, rampLength, n);
    reference.curves.dryNeeded = true;
    expectEqual (harness, reference);
}

TEST_P (BlockLoop, ARampThatEndsWithinTheBlockHoldsItsLastValue)
{
    constexpr double slowRate = 1000.0; // where a ramp is shorter than the block
    constexpr int stepsLeft = 100;
    ProcessorHarness harness (channels, slowRate, n, factor, [this] (ChannelSettings& s) { configure (s); });
    ReferenceChain reference (harness->activeSettings(), channels, slowRate, factor, n);

    auto& settings = harness->activeSettings();
    ChannelSettings::setDecibels (settings.inLevelDb, settings.inLevelLinear, -9.0);
    settings.mix = 0.6;
    harness->applySettings();

    reference.curves.input = ReferenceChain::ratios (1.0, std::pow (10.0, -9.0 * 0.05), stepsLeft, n);
    reference.curves.wet = ReferenceChain::steps (1.0, 0.6, stepsLeft, n);
    reference.curves.dryNeeded = true;
    expectEqual (harness, reference);

    EXPECT_EQ (0, harness->mixRamp.remaining);
    EXPECT_EQ (0, harness->levels[0].in.remaining);
}

INSTANTIATE_TEST_SUITE_P (ChannelsFactorsNuke, BlockLoop,
                          ::testing::Combine (::testing::Values (1, 2), ::testing::Values (1, 2, 3, 4),
                                              ::testing::Bool()),
                          labelOf);

// ---- noise -----------------------------------------------------------------------------------

TEST (BlockLoopNoise, IsDrawnChannelByChannel)
{
    constexpr int n = 4;
    ListedNoise noise ({ 0, 1 << 30, 0x7fffffff, 1 << 29, 0x7fffffff, 0, 3 << 29, 1 << 30 });
    ProcessorHarness harness (2, rate, n, 1, takeBandsOut);
    harness->setNoiseSource (noise);
    harness.run (Signals::silence (2, n), { n });

    EXPECT_EQ (8, noise.draws);

    // q / 2^31, doubled, less 1, times 0.00004: in rising q from -0.00004 to +0.00004.
    const double expected[2][n] = { { -4.0e-5, 0.0, 4.0e-5, -2.0e-5 }, { 4.0e-5, -4.0e-5, 2.0e-5, 0.0 } };

    for (int c = 0; c < 2; ++c)
        for (int i = 0; i < n; ++i)
            EXPECT_NEAR (expected[c][i], sumOfBands (*harness.processor, c, i), 1.5e-11) // four float roundings of 4e-5
                << c << ", " << i;
}

TEST (BlockLoopNoise, StaysWithinFourHundredThousandths)
{
    constexpr int n = 4096;
    SeededNoise noise (0x7e57);
    ProcessorHarness harness (1, rate, n, 1, takeBandsOut);
    harness->setNoiseSource (noise);
    harness.run (Signals::silence (1, n), { n });

    auto largest = 0.0, sum = 0.0;

    for (int i = 0; i < n; ++i)
    {
        largest = std::max (largest, std::abs (sumOfBands (*harness.processor, 0, i)));
        sum += sumOfBands (*harness.processor, 0, i);
    }

    EXPECT_LE (largest, 4.0e-5 * 1.000001);
    EXPECT_GT (largest, 3.99e-5) << "of 4096 uniform draws one is nearer to the end than that";
    EXPECT_NEAR (0.0, sum / n, 1.8e-6) << "five standard errors of a centred stream";
}

TEST (BlockLoopNoise, IsDrawnAtTheHostsRateWhenOversampling)
{
    SeededNoise noise (1);
    ProcessorHarness harness (2, rate, 64, 8);
    harness->setNoiseSource (noise);
    harness.run (Signals::silence (2, 64), { 64 });

    EXPECT_EQ (2 * 64, noise.draws);
}

TEST (BlockLoopNoise, GoesInOnSilenceAndOnABufferMarkedAsCleared)
{
    SeededNoise noise (1);
    ProcessorHarness harness (2, rate, 256, 1, takeBandsOut);
    harness->setNoiseSource (noise);

    juce::AudioBuffer<float> marked (2, 256);
    marked.clear();
    ASSERT_TRUE (marked.hasBeenCleared());
    harness.block (marked);

    EXPECT_FALSE (marked.hasBeenCleared());

    for (int c = 0; c < 2; ++c)
    {
        const auto peak = marked.getMagnitude (c, 0, 256);
        EXPECT_GT (peak, 2.0e-6f);
        EXPECT_LT (peak, 2.8e-6f) << "0.00004 over the calibration gain of 14.5, hardly changed by the transformer";
    }
}

TEST (BlockLoopNoise, ComesFromTheSystemUnlessAnotherSourceIsSet)
{
    const auto run = []
    {
        CorvaneQ7AudioProcessor processor;
        takeBandsOut (processor.activeSettings());
        processor.applySettings();
        processor.setRateAndBufferSizeDetails (rate, 64);
        processor.prepareToPlay (rate, 64);
        std::srand (99);
        auto buffer = Signals::silence (2, 64);
        juce::MidiBuffer midi;
        processor.processBlock (buffer, midi);
        return buffer;
    };

    const auto first = run();
    EXPECT_GT (first.getMagnitude (0, 64), 0.0f);
    EXPECT_TRUE (sameBits (first, run())) << "the same seed of the system's generator";
}

// ---- the rails -------------------------------------------------------------------------------

TEST (BlockLoopRails, TheSumOfTheBandsIsClippedInFrontOfTheTransformer)
{
    // The first sample alone: the transformer is at rest and the sum is the only thing that differs.
    const auto firstOutput = [] (float amplitude, bool nuke)
    {
        ProcessorHarness harness (1, rate, 16, 1,
                                  [nuke] (ChannelSettings& settings)
                                  {
                                      takeBandsOut (settings);
                                      settings.nuke = nuke;
                                  });
        return harness.run (Signals::impulse (1, 16, 0, amplitude), { 16 }).getSample (0, 0);
    };

    const auto rail = static_cast<float> (24.0 / 14.5075);

    for (const auto nuke : { false, true })
    {
        EXPECT_EQ (firstOutput (2.0f * rail, nuke), firstOutput (1.01f * rail, nuke)) << nuke;
        EXPECT_EQ (firstOutput (-2.0f * rail, nuke), firstOutput (-1.01f * rail, nuke)) << nuke;
        EXPECT_LT (firstOutput (0.98f * rail, nuke), firstOutput (1.01f * rail, nuke)) << nuke;
        EXPECT_GT (firstOutput (-0.98f * rail, nuke), firstOutput (-1.01f * rail, nuke)) << nuke;
    }
}

TEST (BlockLoopRails, TheClipSeesTheSumBeforeNukesDrive)
{
    // 12 and 20 lie below the rails of 24, ten times as much lies above: clipped after the drive they would be equal.
    const auto firstOutput = [] (double circuitLevel)
    {
        ProcessorHarness harness (1, rate, 16, 1,
                                  [] (ChannelSettings& settings)
                                  {
                                      takeBandsOut (settings);
                                      settings.nuke = true;
                                  });
        return harness.run (Signals::impulse (1, 16, 0, static_cast<float> (circuitLevel / 14.5075)), { 16 })
            .getSample (0, 0);
    };

    EXPECT_GT (firstOutput (20.0), 1.3f * firstOutput (12.0));
}

TEST (BlockLoopRails, TheTransformersOutputIsClippedOnlyWhenOversampling)
{
    // A step out of silence against the rails: for a while the transformer's soft limit puts it above them.
    constexpr int n = 1000, step = 300;
    auto input = Signals::silence (1, n);

    for (int i = step; i < n; ++i)
        input.setSample (0, i, 2.0f);

    const auto plateau = [&] (int factor)
    {
        ProcessorHarness harness (1, rate, n, factor, takeBandsOut);
        const auto output = harness.run (input, { n });
        const auto edge = step + harness->getLatencySamples();
        std::vector<double> circuitLevels;

        for (int i = edge + 60; i < edge + 260; ++i) // past the ringing of the filters, 52 samples
            circuitLevels.push_back (output.getSample (0, i) * 14.5075);

        return circuitLevels;
    };

    for (const auto level : plateau (1))
        EXPECT_GT (level, 24.01);

    for (const auto factor : { 2, 4 })
        for (const auto level : plateau (factor))
            EXPECT_NEAR (24.0, level, 1.0e-4) << factor; // a filter of floats that sum to 1 within 1e-6
}

// ---- calibration -----------------------------------------------------------------------------

TEST (BlockLoopCalibration, AReferenceLevelMeetsTheBandsAtTheSameVoltage)
{
    for (int db = 16; db <= 24; ++db)
    {
        ProcessorHarness harness (1, rate, 8, 1, takeBandsOut);
        harness->setCalibration (db);
        harness.run (Signals::impulse (1, 8, 3, static_cast<float> (std::pow (10.0, -db / 20.0))), { 8 });

        EXPECT_NEAR (1.1523716865, sumOfBands (*harness.processor, 0, 3), 4.0e-7) << db; // roundings to float
    }
}

TEST (BlockLoopCalibration, AUnityChainReturnsTheInputLevelAtEverySetting)
{
    constexpr int n = 4410;
    const auto input = Signals::sine (1, n, rate, 1000.0, 0.0001); // far below where the transformer bends

    for (const auto db : { 16.0, 18.0, 22.0, 24.0 })
    {
        ProcessorHarness harness (1, rate, n, 1, takeBandsOut);
        harness->setCalibration (db);
        const auto output = harness.run (input, { n });
        const auto gain = Signals::amplitudeAt (output.getReadPointer (0, 441), 3969, rate, 1000.0)
                          / Signals::amplitudeAt (input.getReadPointer (0, 441), 3969, rate, 1000.0);

        EXPECT_NEAR (0.0, Signals::toDb (gain), 0.001) << db;
    }
}

TEST (BlockLoopCalibration, TheMasterGainStandsOverTheCalibration)
{
    constexpr int n = 64;

    for (const auto db : { 16.0, 24.0 })
    {
        ProcessorHarness harness (1, rate, n, 1,
                                  [] (ChannelSettings& settings)
                                  { setAtRest (settings.masterGainDb, settings.masterGainLinear, 6.0); });
        harness->setCalibration (db);
        harness.run (Signals::whiteNoise (1, n, 5), { n });

        const auto gain = static_cast<float> (std::pow (10.0, 0.3));
        const auto calibration = static_cast<float> (harness->activeSettings().calibrationGain);

        for (const auto i : { 0, n - 1 })
            EXPECT_EQ (gain * (1.0f / calibration), harness->controlBuffer.getSample (2, i)) << db;
    }
}

// ---- fully dry and the dry delay -------------------------------------------------------------

namespace
{
class DryPath : public ::testing::TestWithParam<int>
{
protected:
    const int factor = GetParam();
    const int latency = factor > 1 ? 52 : 0;
};

/** With latency, so that there is something to feed. */
class DryDelay : public ::testing::TestWithParam<int>
{
};

juce::AudioBuffer<float> delayed (const juce::AudioBuffer<float>& input, int samples)
{
    auto output = Signals::silence (input.getNumChannels(), input.getNumSamples());

    for (int c = 0; c < input.getNumChannels(); ++c)
        for (int i = samples; i < input.getNumSamples(); ++i)
            output.setSample (c, i, input.getSample (c, i - samples));

    return output;
}
} // namespace

TEST_P (DryPath, FullyDryIsTheDelayedInputBitForBit)
{
    constexpr int n = 1000;
    SeededNoise noise (1);
    ProcessorHarness harness (2, rate, 128, factor,
                              [] (ChannelSettings& settings)
                              {
                                  settings.mix = 0.0;
                                  setAtRest (settings.inLevelDb, settings.inLevelLinear, 12.0);
                                  setAtRest (settings.outLevelDb, settings.outLevelLinear, -12.0);
                              });
    harness->setNoiseSource (noise);

    auto input = Signals::whiteNoise (2, n, 0xd7, 3.0f);
    input.setSample (0, 7, 1.0e-41f); // moved, not computed: a denormal and a zero's sign come through
    input.setSample (1, 8, -0.0f);
    input.setSample (1, 9, 1.0e30f);

    EXPECT_TRUE (sameBits (delayed (input, latency), harness.run (input, { 1, 17, 128, 64 })));
    EXPECT_EQ (0, noise.draws) << "no noise in the dry path";
}

TEST_P (DryPath, AHalfMixOfSilencedWetIsTheScaledInputInTime)
{
    constexpr int n = 600;
    ProcessorHarness harness (2, rate, n, factor,
                              [] (ChannelSettings& settings)
                              {
                                  settings.mix = 0.25;
                                  setAtRest (settings.outLevelDb, settings.outLevelLinear, -100.0);
                              });

    const auto input = Signals::whiteNoise (2, n, 0xd8);
    auto expected = delayed (input, latency);
    expected.applyGain (0.75f);

    EXPECT_TRUE (equalWithin (expected, harness.run (input, { n }), 0.0f));
}

TEST_P (DryDelay, IsNotFedWhileTheMixIsFullyWet)
{
    constexpr int n = 512;
    ProcessorHarness harness (1, rate, n, GetParam(),
                              [] (ChannelSettings& settings)
                              {
                                  settings.mix = 0.0;
                                  setAtRest (settings.outLevelDb, settings.outLevelLinear, -100.0);
                              });

    // The delay is left with the last of this, counted up so that its order shows.
    auto old = Signals::silence (1, n);

    for (int i = 0; i < n; ++i)
        old.setSample (0, i, static_cast<float> (i));

    harness.run (old, { n });

    const auto moveMixTo = [&] (double mix)
    {
        harness->activeSettings().mix = mix;
        harness->applySettings();
        harness->mixRamp.restAtTarget (rampLength);
    };

    moveMixTo (1.0);
    harness.run (Signals::whiteNoise (1, n, 3), { n });

    moveMixTo (0.5);
    const auto input = Signals::whiteNoise (1, n, 4);
    const auto output = harness.run (input, { n });

    for (int i = 0; i < 52; ++i)
        EXPECT_EQ (static_cast<float> (n - 52 + i), output.getSample (0, i)) << "the delay's old content, " << i;

    for (int i = 52; i < n; ++i)
        ASSERT_EQ (0.5f * input.getSample (0, i - 52), output.getSample (0, i)) << i;
}

TEST_P (DryPath, AFullyWetBlockMakesNoDryCopy)
{
    constexpr int n = 64;
    ProcessorHarness harness (2, rate, n, factor);

    for (const auto channel : { 0, 1, 5, 6 })
        juce::FloatVectorOperations::fill (harness->controlBuffer.getWritePointer (channel), 123.0f, n);

    const auto input = Signals::whiteNoise (2, n, 6);
    harness.run (input, { n });

    for (const auto channel : { 0, 1, 5, 6 })
        for (int i = 0; i < n; ++i)
            ASSERT_EQ (123.0f, harness->controlBuffer.getSample (channel, i)) << channel;

    harness->activeSettings().mix = 0.5;
    harness->applySettings();
    harness.run (input, { n });

    // The wet curve, the dry curve, and behind the five curves a dry copy of each channel (here already delayed).
    const auto wet = harness->controlBuffer.getSample (0, 10);
    EXPECT_EQ (static_cast<float> (ReferenceChain::steps (1.0, 0.5, rampLength, n)[10]), wet);
    EXPECT_EQ (1.0f - wet, harness->controlBuffer.getSample (1, 10));
    EXPECT_EQ (latency == 0 ? input.getSample (1, 10) * (1.0f - wet) : 0.0f, harness->controlBuffer.getSample (6, 10));
}

INSTANTIATE_TEST_SUITE_P (Factor, DryPath, ::testing::Values (1, 2, 4), ::testing::PrintToStringParamName());
INSTANTIATE_TEST_SUITE_P (Factor, DryDelay, ::testing::Values (2, 16), ::testing::PrintToStringParamName());

// ---- the entry -------------------------------------------------------------------------------

TEST (BlockLoopEntry, ACurveOfARestingControlIsItsValue)
{
    constexpr int n = 32;
    ProcessorHarness harness (1, rate, n, 1,
                              [] (ChannelSettings& settings)
                              {
                                  setAtRest (settings.inLevelDb, settings.inLevelLinear, 5.0);
                                  setAtRest (settings.outLevelDb, settings.outLevelLinear, -7.0);
                              });
    harness.run (Signals::whiteNoise (1, n, 6), { n });

    for (const auto i : { 0, 13, n - 1 })
    {
        EXPECT_EQ (static_cast<float> (std::pow (10.0, 0.25)), harness->controlBuffer.getSample (3, i));
        EXPECT_EQ (static_cast<float> (std::pow (10.0, -0.35)), harness->controlBuffer.getSample (4, i));
    }
}

TEST (BlockLoopEntry, ChannelsBeyondTheInputsAreCleared)
{
    CorvaneQ7AudioProcessor processor;
    ASSERT_TRUE (processor.setBusesLayout ({ { juce::AudioChannelSet::mono() }, { juce::AudioChannelSet::stereo() } }));
    processor.setRateAndBufferSizeDetails (rate, 64);
    processor.prepareToPlay (rate, 64);

    auto buffer = Signals::whiteNoise (2, 64, 7);
    juce::MidiBuffer midi;
    processor.processBlock (buffer, midi);

    EXPECT_GT (buffer.getMagnitude (0, 0, 64), 0.0f);
    EXPECT_EQ (0.0f, buffer.getMagnitude (1, 0, 64));
}

TEST (BlockLoopEntry, ABufferMarkedAsClearedIsNotClearedAgain)
{
    // The mark vouches for the content, so an output without an input stays as it is, and costs nothing.
    CorvaneQ7AudioProcessor processor;
    ASSERT_TRUE (processor.setBusesLayout ({ { juce::AudioChannelSet::mono() }, { juce::AudioChannelSet::stereo() } }));
    processor.setRateAndBufferSizeDetails (rate, 8);
    processor.prepareToPlay (rate, 8);

    float left[8] = {}, right[8] = {};
    float* channels[] { left, right };
    juce::AudioBuffer<float> buffer (channels, 2, 8);
    buffer.clear();
    right[3] = 0.5f;
    ASSERT_TRUE (buffer.hasBeenCleared());

    juce::MidiBuffer midi;
    processor.processBlock (buffer, midi);
    EXPECT_EQ (0.5f, right[3]);
    EXPECT_FALSE (buffer.hasBeenCleared());
}

TEST (BlockLoopEntry, TheThreeBandsAddBackToTheCalibratedInput)
{
    constexpr int n = 2000;
    ProcessorHarness harness (2, rate, n, 1, takeBandsOut);
    const auto input = Signals::whiteNoise (2, n, 0xadd, 0.5f);
    const auto calibration = static_cast<float> (harness->activeSettings().calibrationGain);
    harness.run (input, { n });

    for (int c = 0; c < 2; ++c)
        for (int i = 0; i < n; ++i)
            ASSERT_NEAR (input.getSample (c, i) * calibration, sumOfBands (*harness.processor, c, i), 2.0e-6)
                << "three float subtractions of values up to 8, " << c << ", " << i;
}
