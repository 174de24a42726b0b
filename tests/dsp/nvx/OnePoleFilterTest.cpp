// SPDX-License-Identifier: GPL-3.0-or-later
#include "dsp/nvx/OnePoleFilter.h"

#include "support/Samples.h"

#include <gtest/gtest.h>

#include <cmath>
#include <complex>
#include <memory>
#include <vector>

namespace
{
using Samples::whiteNoise;

using Complex = std::complex<double>;

constexpr double pi = 3.141592653589793;

std::unique_ptr<NVX::Filter> makeFilter (int type, double frequency)
{
    if (type == 7)
        return std::make_unique<NVX::OnePoleFilter<7>> (frequency);

    return std::make_unique<NVX::OnePoleFilter<8>> (frequency);
}

// An RC section whose derivative is taken as the backward difference, s = (1 - 1/z) / T.
Complex expectedResponse (int type, double frequency, double cutoff, double rate)
{
    const Complex s = (1.0 - std::exp (Complex (0.0, -2.0 * pi * frequency / rate))) * rate;
    const Complex sRC = s / (2.0 * pi * cutoff);
    return type == 8 ? 1.0 / (1.0 + sRC) : sRC / (1.0 + sRC);
}

Complex measuredResponse (NVX::Filter& filter, double cutoff, double frequency, double rate)
{
    const Complex step = std::exp (Complex (0.0, -2.0 * pi * frequency / rate));
    const int length = 100 + static_cast<int> (40.0 * rate / (2.0 * pi * cutoff)); // 40 time constants: 1e-17
    Complex sum = 0.0, turn = 1.0;

    for (int i = 0; i < length; ++i, turn *= step)
        sum += turn * filter.tick (0, i == 0 ? 1.0 : 0.0);

    return sum;
}

class OnePoleOfType : public testing::TestWithParam<int>
{
};

TEST_P (OnePoleOfType, ResponseIsThatOfTheBackwardEulerSection)
{
    for (const double rate : { 44100.0, 192000.0 })
        for (const double cutoff : { 20.0, 1000.0, 15000.0 })
            for (const double frequency : { 0.0, 20.0, 500.0, 1000.0, 7000.0, 15000.0, 0.5 * rate })
            {
                auto filter = makeFilter (GetParam(), cutoff);
                filter->setSampleRate (1, rate);
                const auto measured = measuredResponse (*filter, cutoff, frequency, rate);
                const auto expected = expectedResponse (GetParam(), frequency, cutoff, rate);

                // double roundings over the impulse response
                EXPECT_NEAR (measured.real(), expected.real(), 1.0e-11) << frequency << " Hz, cutoff " << cutoff;
                EXPECT_NEAR (measured.imag(), expected.imag(), 1.0e-11) << frequency << " Hz, cutoff " << cutoff;
            }
}

TEST_P (OnePoleOfType, CoefficientsFollowFromTheTimeConstant)
{
    // 2 pi frequency = rate / 3, so RC is 3 sample periods and a one part in four.
    auto filter = makeFilter (GetParam(), 48000.0 / (6.0 * pi));
    filter->setSampleRate (1, 48000.0);
    const auto values = filter->getCoefficients (0);

    EXPECT_NEAR (values[0], 0.25, 1.0e-15); // a few double roundings
    EXPECT_EQ (values[1], 1.0 - values[0]);

    for (std::size_t i = 2; i < values.size(); ++i)
        EXPECT_EQ (values[i], 0.0);
}

TEST_P (OnePoleOfType, HasNeitherQNorGain)
{
    auto filter = makeFilter (GetParam(), 1000.0);
    EXPECT_EQ (filter->q, 1.0);
    EXPECT_EQ (filter->gain, 1.0);

    auto changed = makeFilter (GetParam(), 1000.0);
    changed->q = 7.0;
    changed->gain = 0.1;
    filter->setSampleRate (1, 48000.0);
    changed->setSampleRate (1, 48000.0);
    EXPECT_EQ (changed->getCoefficients (0), filter->getCoefficients (0));
}

TEST_P (OnePoleOfType, ProcessIsTickRoundedToFloat)
{
    auto byBlock = makeFilter (GetParam(), 300.0), bySample = makeFilter (GetParam(), 300.0);
    byBlock->setSampleRate (1, 44100.0);
    bySample->setSampleRate (1, 44100.0);

    const auto noise = whiteNoise (2048, 0x0e9);
    auto samples = noise;
    byBlock->process (samples.data(), 2048, 0);

    for (std::size_t i = 0; i < noise.size(); ++i)
        ASSERT_EQ (samples[i], static_cast<float> (bySample->tick (0, static_cast<double> (noise[i])))) << "at " << i;
}

TEST_P (OnePoleOfType, DoesNotDependOnTheBlockLength)
{
    const auto noise = whiteNoise (4096, 0xb10c);
    auto whole = noise, pieces = noise;

    auto filter = makeFilter (GetParam(), 300.0);
    filter->setSampleRate (1, 44100.0);
    filter->process (whole.data(), 4096, 0);

    filter->setSampleRate (1, 44100.0);
    Samples::inBlocks (4096, { 1, 0, 63, 64, 7, 512, 2 },
                       [&] (int done, int length) { filter->process (pieces.data() + done, length, 0); });

    EXPECT_EQ (pieces, whole);
}

TEST_P (OnePoleOfType, KeepsChannelsApart)
{
    const auto left = whiteNoise (512, 0x1ef7), right = whiteNoise (512, 0x419b);
    auto filter = makeFilter (GetParam(), 1000.0), alone = makeFilter (GetParam(), 1000.0);
    filter->setSampleRate (2, 48000.0);
    alone->setSampleRate (1, 48000.0);

    auto l = left, r = right, expected = right;
    float* channels[] = { l.data(), r.data() };
    filter->processAll (channels, 512);
    alone->process (expected.data(), 512, 0);
    EXPECT_EQ (r, expected);
    EXPECT_NE (filter->getState (0), filter->getState (1));
}

TEST_P (OnePoleOfType, StateIsTheCapacitorAndZero)
{
    auto filter = makeFilter (GetParam(), 1000.0);
    filter->setSampleRate (2, 48000.0);
    filter->setState ({ 0.5, 99.0 }, 1);
    EXPECT_EQ (filter->getState (1), (NVX::FilterState { 0.5, 0.0 }));
    EXPECT_EQ (filter->getState (0), (NVX::FilterState { 0.0, 0.0 }));

    filter->setSampleRate (2, 48000.0);
    EXPECT_EQ (filter->getState (1), (NVX::FilterState { 0.0, 0.0 }));
}

TEST_P (OnePoleOfType, CoefficientsAreTwo)
{
    auto filter = makeFilter (GetParam(), 1000.0);
    filter->setSampleRate (1, 48000.0);
    filter->setCoefficients ({ 0.25, 0.5, 3.0, 4.0, 5.0, 6.0 }, 0);
    EXPECT_EQ (filter->getCoefficients (0), (NVX::FilterCoefficients { 0.25, 0.5, 0.0, 0.0, 0.0, 0.0 }));

    // y = 0.5 y + 0.25 x: exact in binary
    filter->setState ({ 1.0, 0.0 }, 0);
    EXPECT_EQ (filter->tick (0, 1.0), GetParam() == 8 ? 0.75 : 0.25);
    EXPECT_EQ (filter->getState (0)[0], 0.75);
}

TEST_P (OnePoleOfType, WithoutRecordsPassesTheSignalOn)
{
    const auto noise = whiteNoise (64, 0xc1ea);
    auto samples = noise;
    auto filter = makeFilter (GetParam(), 1000.0);
    filter->process (samples.data(), 64, 0); // before setSampleRate
    EXPECT_EQ (samples, noise);

    for (const int numChannels : { 0, -1 })
    {
        filter->setSampleRate (2, 48000.0);
        EXPECT_EQ (filter->getNumRecords(), 2);
        filter->setSampleRate (numChannels, 48000.0);
        EXPECT_EQ (filter->getNumRecords(), 0);
        filter->process (samples.data(), 64, 0);
        EXPECT_EQ (samples, noise);
    }

    filter->setSampleRate (2, 48000.0);
    filter->clear();
    EXPECT_EQ (filter->getNumRecords(), 0);
    filter->process (samples.data(), 64, 0);
    EXPECT_EQ (samples, noise);
}

TEST_P (OnePoleOfType, LeavesChannelsOutOfRangeAlone)
{
    const auto noise = whiteNoise (64, 0x0042);
    auto filter = makeFilter (GetParam(), 1000.0);
    filter->setSampleRate (2, 48000.0);
    const auto coefficients = filter->getCoefficients (1);

    for (const int channel : { -1, 2, 1000 })
    {
        auto samples = noise;
        filter->process (samples.data(), 64, channel);
        EXPECT_EQ (samples, noise);
        EXPECT_EQ (filter->tick (channel, 0.25), 0.25);

        filter->setState ({ 1.0, 1.0 }, channel);
        filter->setCoefficients ({ 1.0, 1.0, 1.0, 1.0, 1.0, 1.0 }, channel);
        EXPECT_EQ (filter->getState (channel), NVX::FilterState {});
        EXPECT_EQ (filter->getCoefficients (channel), NVX::FilterCoefficients {});
    }

    EXPECT_EQ (filter->getState (1), NVX::FilterState {});
    EXPECT_EQ (filter->getCoefficients (1), coefficients);
}

INSTANTIATE_TEST_SUITE_P (BothTypes, OnePoleOfType, testing::Values (7, 8));

TEST (OnePoleFilter, HighAndLowPassAddUpToTheInput)
{
    NVX::OnePoleFilter<7> high (700.0);
    NVX::OnePoleFilter<8> low (700.0);
    high.setSampleRate (1, 48000.0);
    low.setSampleRate (1, 48000.0);

    for (const float x : whiteNoise (1024, 0xadd))
    {
        const double sum = high.tick (0, static_cast<double> (x)) + low.tick (0, static_cast<double> (x));
        ASSERT_NEAR (sum, static_cast<double> (x), 1.0e-15); // one subtraction and one addition in double
    }
}

TEST (OnePoleFilter, RecordHoldsTheSamplePeriod)
{
    NVX::OnePoleFilter<8> filter (700.0);
    filter.setSampleRate (1, 32000.0);
    EXPECT_EQ (filter.records[0].T, 1.0 / 32000.0);
}

class Doubling : public NVX::OnePoleFilter<8>
{
public:
    using NVX::OnePoleFilter<8>::OnePoleFilter;
    double tick (int, double x) noexcept override { return 2.0 * x; }
};

TEST (OnePoleFilter, ProcessGoesThroughAnOverriddenTick)
{
    Doubling filter (700.0);
    filter.setSampleRate (1, 48000.0);
    std::vector<float> samples { 0.25f, -1.0f, 3.0f };
    filter.process (samples.data(), 3, 0);
    EXPECT_EQ (samples, (std::vector<float> { 0.5f, -2.0f, 6.0f }));
}

} // namespace
