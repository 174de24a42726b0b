// SPDX-License-Identifier: GPL-3.0-or-later
// The two ways around the effect: the host's own bypass, which switches, and the Bypass control, which fades.
#include "NoiseStreams.h"

#include "processor/CorvaneQ7AudioProcessor.h"
#include "support/Matchers.h"
#include "support/ProcessorHarness.h"
#include "support/Signals.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <utility>

namespace
{
constexpr double rate = 44100.0;

void bypassBlock (ProcessorHarness& harness, juce::AudioBuffer<float>& buffer)
{
    harness->processBlockBypassed (buffer, harness.midi);
}

int positionOfLargest (const juce::AudioBuffer<float>& buffer, int channel)
{
    int position = 0;

    for (int i = 0; i < buffer.getNumSamples(); ++i)
        if (std::abs (buffer.getSample (channel, i)) > std::abs (buffer.getSample (channel, position)))
            position = i;

    return position;
}

class HostBypass : public ::testing::TestWithParam<int>
{
protected:
    const int factor = GetParam();
    const int latency = factor > 1 ? 52 : 0;
};
} // namespace

TEST_P (HostBypass, IsTheInputInTimeWithTheWetPath)
{
    constexpr int n = 256, at = 40;

    ProcessorHarness wet (2, rate, n, factor);
    const auto processed = wet.run (Signals::impulse (2, n, at, 0.1f), { n });

    ProcessorHarness harness (2, rate, n, factor);
    auto bypassed = Signals::impulse (2, n, at, 0.1f);
    bypassBlock (harness, bypassed);

    for (int c = 0; c < 2; ++c)
    {
        EXPECT_EQ (at + latency, positionOfLargest (processed, c));
        EXPECT_EQ (at + latency, positionOfLargest (bypassed, c));
        EXPECT_EQ (0.1f, bypassed.getSample (c, at + latency));
        EXPECT_EQ (0.1f, bypassed.getMagnitude (c, 0, n));
    }

    EXPECT_EQ (latency, harness->getLatencySamples());
}

TEST_P (HostBypass, MovesTheSamplesBitForBitInBlocksOfAnyLength)
{
    constexpr int n = 900;
    ProcessorHarness harness (2, rate, 64, factor);
    const auto input = Signals::whiteNoise (2, n, 0xb1, 5.0f);
    auto output = input;

    Samples::inBlocks (n, { 1, 64, 200 }, // the last is longer than announced
                       [&] (int done, int length)
                       {
                           juce::AudioBuffer<float> piece (output.getArrayOfWritePointers(), 2, done, length);
                           bypassBlock (harness, piece);
                       });

    for (int c = 0; c < 2; ++c)
        for (int i = 0; i < n; ++i)
            ASSERT_EQ (i < latency ? 0.0f : input.getSample (c, i - latency), output.getSample (c, i))
                << c << ", " << i;
}

TEST_P (HostBypass, ContinuesTheDelayOfAFullyDryMix)
{
    constexpr int n = 128;
    ProcessorHarness harness (1, rate, n, factor, [] (ChannelSettings& settings) { settings.mix = 0.0; });
    auto first = Signals::whiteNoise (1, n, 1);
    const auto input = first;
    harness.block (first);

    auto second = Signals::silence (1, n);
    bypassBlock (harness, second);

    for (int i = 0; i < n; ++i)
        EXPECT_EQ (i < latency ? input.getSample (0, n - latency + i) : 0.0f, second.getSample (0, i)) << i;
}

TEST_P (HostBypass, DrawsNoNoiseAndClearsTheMark)
{
    SeededNoise noise (1);
    ProcessorHarness harness (2, rate, 64, factor);
    harness->setNoiseSource (noise);

    juce::AudioBuffer<float> buffer (2, 64);
    buffer.clear();
    bypassBlock (harness, buffer);

    EXPECT_EQ (0, noise.draws);
    EXPECT_FALSE (buffer.hasBeenCleared());
    EXPECT_EQ (0.0f, buffer.getMagnitude (0, 64));
}

TEST_P (HostBypass, LetsTheMetersDecay)
{
    ProcessorHarness harness (
        1, rate, 512, factor,
        [] (ChannelSettings& settings)
        {
            for (auto& band : settings.bands)
            {
                band.meter = ChannelSettings::meterIn;
                band.thresholdDb.setTarget (-20.0);
                band.recovery = 0; // a fixed one, 0.18 s: the automatic one would hold the reduction for seconds
            }
        });

    const auto loud = Signals::whiteNoise (1, 4410, 2, 1.0f);
    harness.run (loud, { 512 });

    const auto& settings = harness->activeSettings();
    const auto level = settings.midLevel, reduction = settings.midGainReduction;
    ASSERT_GT (level, 0.5);
    ASSERT_LT (reduction, 0.95);

    auto buffer = Signals::silence (1, 512);

    for (int block = 0; block < 86; ++block) // one second
        bypassBlock (harness, buffer);

    // 1.2 s for a factor of e. The decay of a sample is rounded to float first: half of 2^-24, once for each sample.
    const auto rounding = 86.0 * 512.0 * factor * 0x1p-25;
    EXPECT_NEAR (level * std::exp (-(86 * 512 / rate) / 1.2), settings.midLevel, level * rounding);
    EXPECT_GT (settings.midGainReduction, reduction);
    EXPECT_LT (settings.midGainReduction, 1.001);
}

INSTANTIATE_TEST_SUITE_P (Factor, HostBypass, ::testing::Values (1, 2, 5, 16), ::testing::PrintToStringParamName());

// ---- the Bypass control ----------------------------------------------------------------------

namespace
{
void setBypass (ProcessorHarness& harness, double value)
{
    harness->activeSettings().bypass.setTarget (value);
    harness->applySettings();
}
} // namespace

TEST (BypassControl, TurnsTheWetTargetToZeroFromOneHalfOn)
{
    ProcessorHarness harness (1, rate, 64, 1, [] (ChannelSettings& settings) { settings.mix = 0.7; });

    for (const auto& [bypass, wet] :
         { std::pair { 0.0, 0.7 }, { 0.49, 0.7 }, { 0.5, 0.0 }, { 1.0, 0.0 }, { 0.2, 0.7 } })
    {
        setBypass (harness, bypass);
        EXPECT_EQ (wet, harness->mixRamp.target) << bypass;
    }
}

TEST (BypassControl, FadesOverATenthOfASecond)
{
    for (const auto hostRate : { 44100.0, 48000.0 })
    {
        const auto length = static_cast<int> (hostRate / 10.0);
        ProcessorHarness harness (
            1, hostRate, length, 1,
            [] (ChannelSettings& settings)
            { ChannelSettings::setDecibels (settings.outLevelDb, settings.outLevelLinear, -100.0); });

        setBypass (harness, 1.0);
        EXPECT_EQ (length, harness->mixRamp.remaining);

        auto ones = Signals::silence (1, length);
        juce::FloatVectorOperations::fill (ones.getWritePointer (0), 1.0f, length);
        const auto output = harness.run (ones, { 100 });

        // Without a wet signal the output is the dry share: it grows by the same step each sample.
        for (int i = 0; i < length; ++i)
            ASSERT_NEAR ((i + 1.0) / length, output.getSample (0, i), 1.2e-7) << i; // roundings of wet and 1 - wet

        EXPECT_EQ (0, harness->mixRamp.remaining);
    }
}

TEST (BypassControl, EndsInTheDelayedInputBitForBitAndDrawsNoMoreNoise)
{
    for (const auto factor : { 1, 4 })
    {
        const auto latency = factor > 1 ? 52 : 0;
        constexpr int length = 4410, n = length + 1000;
        SeededNoise noise (3);
        ProcessorHarness harness (2, rate, 441, factor);
        harness->setNoiseSource (noise);
        setBypass (harness, 1.0);

        const auto input = Signals::whiteNoise (2, n, 0xfade, 0.5f);
        const auto output = harness.run (input, { 441 });

        EXPECT_EQ (2 * length, noise.draws) << "the ramp ends at the end of its tenth block";

        // The delay's content of the ramp is still scaled: whole samples come out one latency later.
        for (int c = 0; c < 2; ++c)
            for (int i = length + latency; i < n; ++i)
                ASSERT_EQ (input.getSample (c, i - latency), output.getSample (c, i)) << factor << ", " << i;
    }
}

TEST (BypassControl, StaysInTimeWhileItFades)
{
    // Bands out and low level: wet and dry are the same signal, so a fade between them must not be heard at all.
    constexpr int settled = 4000, n = settled + 5200;

    for (const auto factor : { 1, 2, 8 })
    {
        const auto latency = factor > 1 ? 52 : 0;
        ProcessorHarness harness (1, rate, 400, factor,
                                  [] (ChannelSettings& settings)
                                  {
                                      for (auto& band : settings.bands)
                                          band.in = false;

                                      settings.mix = 0.999; // so that the dry delay is in use from the start
                                  });

        const auto input = Signals::sine (1, n, rate, 3000.0, 0.001);
        auto output = input;
        juce::AudioBuffer<float> before (output.getArrayOfWritePointers(), 1, 0, settled);
        juce::AudioBuffer<float> fading (output.getArrayOfWritePointers(), 1, settled, n - settled);
        before.copyFrom (0, 0, harness.run (before, { 400 }), 0, 0, settled);
        setBypass (harness, 1.0);
        fading.copyFrom (0, 0, harness.run (fading, { 400 }), 0, 0, n - settled);

        // The filters' passband ripple and the transformer's own colour come to 1 %; one sample of misplacement
        // would be 43 % of the amplitude.
        for (int i = settled; i < n; ++i)
            ASSERT_NEAR (input.getSample (0, i - latency), output.getSample (0, i), 0.001 * 0.02)
                << factor << ", " << i;
    }
}

TEST (BypassControl, GoesTheSameWayBack)
{
    ProcessorHarness harness (1, rate, 441, 1, [] (ChannelSettings& settings) { settings.mix = 0.7; });
    setBypass (harness, 1.0);
    harness.run (Signals::whiteNoise (1, 5000, 1), { 441 });
    ASSERT_EQ (0, harness->mixRamp.remaining);

    setBypass (harness, 0.0);
    EXPECT_EQ (0.7, harness->mixRamp.target);
    EXPECT_EQ (4410, harness->mixRamp.remaining);

    harness.run (Signals::whiteNoise (1, 4410, 1), { 441 });
    EXPECT_EQ (0, harness->mixRamp.remaining);
    EXPECT_NEAR (0.7, harness->mixRamp.current, 1.0e-12); // the sum of 4410 steps
}

TEST (BypassControl, IsTheSamePathAsAMixOfZero)
{
    const auto input = Signals::whiteNoise (2, 6000, 0xabc, 0.5f);
    ProcessorHarness bypassed (2, rate, 300, 2), dry (2, rate, 300, 2);
    setBypass (bypassed, 1.0);
    dry->activeSettings().mix = 0.0;
    dry->applySettings();

    EXPECT_TRUE (sameBits (dry.run (input, { 300 }), bypassed.run (input, { 300 })));
}
