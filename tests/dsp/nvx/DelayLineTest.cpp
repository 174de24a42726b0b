// SPDX-License-Identifier: GPL-3.0-or-later
#include "dsp/nvx/DelayLine.h"

#include "support/Samples.h"

#include <gtest/gtest.h>

#include <tuple>
#include <vector>

namespace
{
using Samples::whiteNoise;

// What a delay is: that many zeros, then the signal.
std::vector<float> delayed (const std::vector<float>& signal, int delay)
{
    std::vector<float> result (static_cast<std::size_t> (delay), 0.0f);
    result.insert (result.end(), signal.begin(), signal.end());
    result.resize (signal.size());
    return result;
}

std::vector<float> inBlocks (NVX::DelayLine& line, std::vector<float> samples, const std::vector<int>& lengths)
{
    Samples::inBlocks (static_cast<int> (samples.size()), lengths,
                       [&] (int done, int length) { line.process (samples.data() + done, length, 0); });
    return samples;
}

constexpr int oversamplingDelay = 52; // what the plug-in's dry signal waits for

class DelayLineInBlocks : public testing::TestWithParam<std::tuple<int, std::vector<int>>>
{
};

TEST_P (DelayLineInBlocks, IsAnExactDelay)
{
    const auto [delay, lengths] = GetParam();
    const auto noise = whiteNoise (5000, 0xde1a);

    NVX::DelayLine line;
    line.rebuild (1, delay);
    EXPECT_EQ (inBlocks (line, noise, lengths), delayed (noise, delay));
}

const std::vector<int> blockLengths[] = { { 1 },
                                          { 2 },
                                          { 5 },
                                          { 51 },
                                          { 52 },
                                          { 53 },
                                          { 512 },
                                          { 5000 },
                                          { 103, 104, 105 },
                                          { 1, 0, 52, 13, 480, 51, 0, 53, 2, 104 } };

INSTANTIATE_TEST_SUITE_P (ShorterEqualLongerAndMixed, DelayLineInBlocks,
                          testing::Combine (testing::Values (0, 1, 2, 3, 7, oversamplingDelay, 1000),
                                            testing::ValuesIn (blockLengths)));

TEST (DelayLine, ABlockAsLongAsTheDelayIsReplacedByTheOneBefore)
{
    NVX::DelayLine line;
    line.rebuild (1, oversamplingDelay);

    const auto first = whiteNoise (oversamplingDelay, 1), second = whiteNoise (oversamplingDelay, 2);
    auto block = first;
    line.process (block.data(), oversamplingDelay, 0);
    EXPECT_EQ (block, std::vector<float> (oversamplingDelay, 0.0f));

    block = second;
    line.process (block.data(), oversamplingDelay, 0);
    EXPECT_EQ (block, first);
}

TEST (DelayLine, ZeroDelayPassesTheSignalUntouched)
{
    NVX::DelayLine line;
    EXPECT_TRUE (line.rebuild (2, 0));
    EXPECT_EQ (line.getDelaySamples(), 0);
    EXPECT_EQ (line.getNumRecords(), 2);

    const auto noise = whiteNoise (256, 3);
    auto samples = noise;
    line.process (samples.data(), 256, 1);
    EXPECT_EQ (samples, noise);
}

TEST (DelayLine, StartsWithSilenceAfterARebuild)
{
    NVX::DelayLine line;
    line.rebuild (1, 30);
    auto loud = std::vector<float> (200, 1.0f);
    line.process (loud.data(), 200, 0);

    EXPECT_TRUE (line.rebuild (1, oversamplingDelay));
    auto samples = std::vector<float> (200, 1.0f);
    line.process (samples.data(), 200, 0);

    for (std::size_t i = 0; i < samples.size(); ++i)
        ASSERT_EQ (samples[i], i < oversamplingDelay ? 0.0f : 1.0f) << "at " << i;
}

TEST (DelayLine, RebuildsOnlyWhenChannelsOrDelayChange)
{
    NVX::DelayLine line;
    EXPECT_FALSE (line.rebuild (0, 0)); // which is how it is born
    EXPECT_TRUE (line.rebuild (2, 10));
    EXPECT_FALSE (line.rebuild (2, 10));
    EXPECT_TRUE (line.rebuild (3, 10));
    EXPECT_EQ (line.getNumRecords(), 3);
    EXPECT_TRUE (line.rebuild (3, 11));
    EXPECT_EQ (line.getDelaySamples(), 11);
    EXPECT_TRUE (line.rebuild (3, 0));
    EXPECT_FALSE (line.rebuild (3, 0));
    EXPECT_TRUE (line.rebuild (0, 0));
    EXPECT_EQ (line.getNumRecords(), 0);
}

TEST (DelayLine, ARebuildThatChangesNothingKeepsTheSoundInTheLine)
{
    const auto noise = whiteNoise (100, 4);
    NVX::DelayLine line;
    line.rebuild (1, 10);
    auto samples = noise;
    line.process (samples.data(), 50, 0);
    EXPECT_FALSE (line.rebuild (1, 10));
    line.process (samples.data() + 50, 50, 0);
    EXPECT_EQ (samples, delayed (noise, 10));
}

TEST (DelayLine, NegativeNumbersCountAsZero)
{
    NVX::DelayLine line;
    EXPECT_TRUE (line.rebuild (1, -5));
    EXPECT_EQ (line.getDelaySamples(), 0);
    EXPECT_TRUE (line.rebuild (-1, 5));
    EXPECT_EQ (line.getNumRecords(), 0);
    EXPECT_EQ (line.numChannels, 0);
}

TEST (DelayLine, SetSampleRateStoresTheValuesAndKeepsTheRecords)
{
    const auto noise = whiteNoise (100, 5);
    NVX::DelayLine line;
    line.rebuild (2, 10);
    auto samples = noise;
    line.process (samples.data(), 50, 0);

    line.setSampleRate (4, 96000.0);
    EXPECT_EQ (line.numChannels, 4);
    EXPECT_EQ (line.sampleRate, 96000.0);
    EXPECT_EQ (line.getNumRecords(), 2);
    EXPECT_EQ (line.getDelaySamples(), 10);

    line.process (samples.data() + 50, 50, 0);
    EXPECT_EQ (samples, delayed (noise, 10));
}

TEST (DelayLine, ClearDestroysTheRecordsAndTheNextRebuildMakesThemAnew)
{
    const auto noise = whiteNoise (100, 6);
    NVX::DelayLine line;
    line.rebuild (1, 10);
    auto samples = noise;
    line.process (samples.data(), 100, 0);

    line.clear();
    EXPECT_EQ (line.getNumRecords(), 0);
    samples = noise;
    line.process (samples.data(), 100, 0);
    EXPECT_EQ (samples, noise);

    EXPECT_TRUE (line.rebuild (1, 10));
    line.process (samples.data(), 100, 0);
    EXPECT_EQ (samples, delayed (noise, 10));
}

TEST (DelayLine, KeepsChannelsApart)
{
    const auto left = whiteNoise (400, 7), right = whiteNoise (400, 8);
    NVX::DelayLine line;
    line.rebuild (2, oversamplingDelay);

    auto l = left, r = right;

    // Channel 0 in one piece, channel 1 in two: each keeps its own place in its ring.
    line.process (l.data(), 400, 0);
    line.process (r.data(), 33, 1);
    line.process (r.data() + 33, 367, 1);
    EXPECT_EQ (l, delayed (left, oversamplingDelay));
    EXPECT_EQ (r, delayed (right, oversamplingDelay));
}

TEST (DelayLine, ProcessAllTakesTheChannelsOfTheRebuild)
{
    const auto left = whiteNoise (400, 7), right = whiteNoise (400, 8);
    NVX::DelayLine line;
    line.rebuild (2, oversamplingDelay);

    auto l = left, r = right;
    float* channels[] = { l.data(), r.data() };
    line.processAll (channels, 400);
    EXPECT_EQ (l, delayed (left, oversamplingDelay));
    EXPECT_EQ (r, delayed (right, oversamplingDelay));
}

TEST (DelayLine, LeavesChannelsOutOfRangeUntouched)
{
    const auto noise = whiteNoise (100, 9);
    NVX::DelayLine line;

    auto samples = noise;
    line.process (samples.data(), 100, 0); // before any rebuild
    EXPECT_EQ (samples, noise);

    line.rebuild (2, 10);

    for (const int channel : { -1, 2, 1000 })
    {
        line.process (samples.data(), 100, channel);
        EXPECT_EQ (samples, noise);
    }
}

TEST (DelayLine, ARecordWithoutMemoryPassesTheSignalOn)
{
    const auto noise = whiteNoise (100, 10);
    NVX::DelayLine line;
    line.rebuild (2, 10);
    line.records[0].ring.reset();

    auto samples = noise;
    line.process (samples.data(), 100, 0);
    EXPECT_EQ (samples, noise);
    line.process (samples.data(), 100, 1);
    EXPECT_EQ (samples, delayed (noise, 10));
}

} // namespace
