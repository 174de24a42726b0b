// SPDX-License-Identifier: GPL-3.0-or-later
// What the host is told about the latency is what a signal takes, on every way through.
#include "processor/CorvaneQ7AudioProcessor.h"
#include "support/Matchers.h"
#include "support/ProcessorHarness.h"
#include "support/Signals.h"

#include <gtest/gtest.h>

#include <cmath>

namespace
{
constexpr double rate = 44100.0;
constexpr int at = 17;

class Latency : public ::testing::TestWithParam<int>
{
protected:
    const int factor = GetParam();
    const int expected = factor == 1 ? 0 : 52;

    static int positionOfLargest (const juce::AudioBuffer<float>& buffer, int channel)
    {
        int position = 0;

        for (int i = 1; i < buffer.getNumSamples(); ++i)
            if (std::abs (buffer.getSample (channel, i)) > std::abs (buffer.getSample (channel, position)))
                position = i;

        return position;
    }

    juce::AudioBuffer<float> impulseThrough (bool bandsIn, double mix) const
    {
        ProcessorHarness harness (2, rate, 64, factor,
                                  [=] (ChannelSettings& settings)
                                  {
                                      settings.mix = mix;

                                      for (auto& band : settings.bands)
                                          band.in = bandsIn;
                                  });
        EXPECT_EQ (expected, harness->getLatencySamples());
        return harness.run (Signals::impulse (2, 200, at, 0.05f), { 64 });
    }
};
} // namespace

TEST_P (Latency, OfTheWetPath)
{
    for (const auto bandsIn : { false, true })
    {
        const auto output = impulseThrough (bandsIn, 1.0);

        for (int c = 0; c < 2; ++c)
        {
            EXPECT_EQ (at + expected, positionOfLargest (output, c)) << "bands " << bandsIn;
            EXPECT_GT (output.getSample (c, at + expected), 0.5f * 0.05f);
        }
    }
}

TEST_P (Latency, OfTheDryPath)
{
    const auto output = impulseThrough (true, 0.0);
    EXPECT_TRUE (sameBits (Signals::impulse (2, 200, at + expected, 0.05f), output));
}

TEST_P (Latency, OfAHalfMixWhereBothMeet)
{
    const auto wet = impulseThrough (false, 1.0), mixed = impulseThrough (false, 0.5);

    for (int c = 0; c < 2; ++c)
    {
        EXPECT_EQ (at + expected, positionOfLargest (mixed, c));

        // Half of each: two roundings of values below 0.05.
        EXPECT_NEAR (0.5f * wet.getSample (c, at + expected) + 0.025f, mixed.getSample (c, at + expected), 1.0e-8f);
    }
}

TEST_P (Latency, OfTheHostsBypass)
{
    ProcessorHarness harness (2, rate, 200, factor);
    auto buffer = Signals::impulse (2, 200, at, 0.05f);
    harness->processBlockBypassed (buffer, harness.midi);

    EXPECT_TRUE (sameBits (Signals::impulse (2, 200, at + expected, 0.05f), buffer));
}

TEST_P (Latency, HasTheSameOnBothSidesOfItsMiddleWhenOversampling)
{
    if (factor == 1)
    {
        const auto output = impulseThrough (false, 1.0);
        EXPECT_LT (output.getMagnitude (0, 0, at), 1.0e-9f)
            << "nothing comes before the impulse but the transformer's offset";
        return;
    }

    // Both filters are linear in phase: before the transformer the impulse is the same on both sides of 52. The
    // transformer itself is nearly transparent at this level (within half a percent of the peak).
    const auto output = impulseThrough (false, 1.0);
    const auto peak = output.getSample (0, at + 52);

    for (int k = 1; k <= at; ++k)
        EXPECT_NEAR (output.getSample (0, at + 52 - k), output.getSample (0, at + 52 + k), 0.005f * peak) << k;
}

INSTANTIATE_TEST_SUITE_P (AtFactor, Latency, ::testing::Range (1, 17), ::testing::PrintToStringParamName());
