// SPDX-License-Identifier: GPL-3.0-or-later
#include "dsp/nvx/InterpolatedFractionalDelay.h"

#include "support/Samples.h"

#include <gtest/gtest.h>

#include <vector>

namespace
{
using Samples::whiteNoise;

// From the signal alone, without a ring: f x[n - W - 1] + (1 - f) x[n - W - 2].
std::vector<float> expectedOutput (const std::vector<float>& x, int wholeDelay, double fraction)
{
    const auto at = [&x] (int index)
    { return index < 0 ? 0.0 : static_cast<double> (x[static_cast<std::size_t> (index)]); };

    std::vector<float> y;

    for (int n = 0; n < static_cast<int> (x.size()); ++n)
        y.push_back (
            static_cast<float> (fraction * at (n - wholeDelay - 1) + (1.0 - fraction) * at (n - wholeDelay - 2)));

    return y;
}

struct Delay
{
    int whole;
    double fraction;
};

// 9.16666 microseconds, split at the rates from 44.1 kHz to 16 times that.
std::vector<Delay> delays()
{
    std::vector<Delay> result { { 0, 0.0 }, { 0, 1.0 }, { 1, 0.5 }, { 5, 0.25 }, { 63, 0.7 } };

    for (const double rate : { 44100.0, 48000.0, 96000.0, 192000.0, 705600.0 })
    {
        const double samples = rate * 0.00000916666;
        const int whole = static_cast<int> (samples);
        result.push_back ({ whole, samples - whole });
    }

    return result;
}

class FractionalDelayOf : public testing::TestWithParam<Delay>
{
};

TEST_P (FractionalDelayOf, IsTheWeightedSumOfTwoNeighbours)
{
    const auto [whole, fraction] = GetParam();
    const auto noise = whiteNoise (1000, 0xf4ac);

    NVX::InterpolatedFractionalDelay delay;
    delay.rebuild (1, whole, fraction);
    auto samples = noise;
    delay.process (samples.data(), 1000, 0);
    EXPECT_EQ (samples, expectedOutput (noise, whole, fraction)); // the same double sum, so bit for bit
}

TEST_P (FractionalDelayOf, DoesNotDependOnTheBlockLength)
{
    const auto [whole, fraction] = GetParam();
    const auto noise = whiteNoise (1000, 0xb10c);

    NVX::InterpolatedFractionalDelay delay;
    delay.rebuild (1, whole, fraction);
    auto samples = noise;
    Samples::inBlocks (1000, { 1, 0, 7, 64, 2, 33 },
                       [&] (int done, int length) { delay.process (samples.data() + done, length, 0); });

    EXPECT_EQ (samples, expectedOutput (noise, whole, fraction));
}

INSTANTIATE_TEST_SUITE_P (Sizes, FractionalDelayOf, testing::ValuesIn (delays()));

TEST (InterpolatedFractionalDelay, AnImpulseAppearsTwiceWithTheTwoWeights)
{
    NVX::InterpolatedFractionalDelay delay;
    delay.rebuild (1, 2, 0.25);
    std::vector<float> samples { 1.0f, 0.0f, 0.0f, 0.0f, 0.0f, 0.0f, 0.0f, 0.0f };
    delay.process (samples.data(), 8, 0);
    EXPECT_EQ (samples, (std::vector<float> { 0.0f, 0.0f, 0.0f, 0.25f, 0.75f, 0.0f, 0.0f, 0.0f }));
}

TEST (InterpolatedFractionalDelay, RingHoldsTheWholeDelayAndTwoMore)
{
    NVX::InterpolatedFractionalDelay delay;
    delay.rebuild (2, 5, 0.25);
    EXPECT_EQ (delay.getNumRecords(), 2);
    EXPECT_EQ (delay.getWholeDelay(), 5);
    EXPECT_EQ (delay.getFraction(), 0.25);

    for (const auto& record : delay.records)
    {
        EXPECT_EQ (record.ring, std::vector<float> (7, 0.0f));
        EXPECT_EQ (record.position, 0);
    }

    float x = 3.0f;
    delay.process (&x, 1, 0); // advances before it writes
    EXPECT_EQ (delay.records[0].position, 1);
    EXPECT_EQ (delay.records[0].ring[1], 3.0f);
}

TEST (InterpolatedFractionalDelay, WeighsInDoubleAndRoundsOnce)
{
    NVX::InterpolatedFractionalDelay delay;
    delay.rebuild (1, 0, 0.1);
    std::vector<float> samples { 1.0f, 1.0f, 1.0f, 1.0f };
    delay.process (samples.data(), 4, 0);
    EXPECT_EQ (samples[2], 1.0f); // 0.1 + 0.9, where the float nearest to each would do as well
    EXPECT_EQ (samples[1], static_cast<float> (0.1));

    delay.rebuild (1, 0, 1.0 / 3.0);
    const auto noise = whiteNoise (4096, 0x0dd);
    auto result = noise;
    delay.process (result.data(), 4096, 0);
    int numToldApart = 0;

    for (std::size_t n = 2; n < noise.size(); ++n)
    {
        const auto third = static_cast<float> (1.0 / 3.0), twoThirds = static_cast<float> (2.0 / 3.0);
        const float inFloat = noise[n - 1] * third + noise[n - 2] * twoThirds;
        numToldApart += result[n] != inFloat ? 1 : 0;
    }

    EXPECT_GT (numToldApart, 0); // a sum in float would have rounded three times
    EXPECT_EQ (result, expectedOutput (noise, 0, 1.0 / 3.0));
}

TEST (InterpolatedFractionalDelay, KeepsChannelsApart)
{
    const auto left = whiteNoise (300, 1), right = whiteNoise (300, 2);
    NVX::InterpolatedFractionalDelay delay;
    delay.rebuild (2, 3, 0.4);
    auto l = left, r = right;
    float* channels[] = { l.data(), r.data() };
    delay.processAll (channels, 300);
    EXPECT_EQ (l, expectedOutput (left, 3, 0.4));
    EXPECT_EQ (r, expectedOutput (right, 3, 0.4));
}

TEST (InterpolatedFractionalDelay, RebuildStartsFromSilence)
{
    NVX::InterpolatedFractionalDelay delay;
    delay.rebuild (1, 3, 0.4);
    auto loud = std::vector<float> (20, 1.0f);
    delay.process (loud.data(), 20, 0);

    delay.rebuild (1, 3, 0.4);
    const auto noise = whiteNoise (50, 3);
    auto samples = noise;
    delay.process (samples.data(), 50, 0);
    EXPECT_EQ (samples, expectedOutput (noise, 3, 0.4));
}

TEST (InterpolatedFractionalDelay, SetSampleRateStoresTheValuesAndKeepsTheRecords)
{
    const auto noise = whiteNoise (50, 4);
    NVX::InterpolatedFractionalDelay delay;
    delay.rebuild (1, 3, 0.4);
    auto samples = noise;
    delay.process (samples.data(), 20, 0);
    delay.setSampleRate (4, 96000.0);
    EXPECT_EQ (delay.numChannels, 4);
    EXPECT_EQ (delay.sampleRate, 96000.0);
    EXPECT_EQ (delay.getNumRecords(), 1);
    delay.process (samples.data() + 20, 30, 0);
    EXPECT_EQ (samples, expectedOutput (noise, 3, 0.4));
}

TEST (InterpolatedFractionalDelay, LeavesChannelsWithoutARecordUntouched)
{
    const auto noise = whiteNoise (50, 5);
    auto samples = noise;
    NVX::InterpolatedFractionalDelay delay;
    delay.process (samples.data(), 50, 0); // before any rebuild
    EXPECT_EQ (samples, noise);

    delay.rebuild (2, 3, 0.4);

    for (const int channel : { -1, 2, 1000 })
    {
        delay.process (samples.data(), 50, channel);
        EXPECT_EQ (samples, noise);
    }

    delay.clear();
    EXPECT_EQ (delay.getNumRecords(), 0);
    delay.process (samples.data(), 50, 0);
    EXPECT_EQ (samples, noise);

    delay.rebuild (-2, -3, 0.4);
    EXPECT_EQ (delay.getNumRecords(), 0);
    EXPECT_EQ (delay.getWholeDelay(), 0);
}

} // namespace
