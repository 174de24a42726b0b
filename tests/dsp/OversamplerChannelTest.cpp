// SPDX-License-Identifier: GPL-3.0-or-later
#include "dsp/OversamplerChannel.h"
#include "dsp/AnalyticResponse.h"
#include "support/Samples.h"
#include "support/Signals.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <numeric>
#include <random>
#include <vector>

namespace
{
using Vector = std::vector<float>;

Vector noise (int n, std::uint32_t seed)
{
    const auto buffer = Signals::whiteNoise (1, n, seed);
    return { buffer.getReadPointer (0), buffer.getReadPointer (0) + n };
}

Vector up (OversamplerChannel& channel, const Vector& in)
{
    Vector out (in.size() * static_cast<std::size_t> (channel.factor));
    channel.up (in.data(), out.data(), static_cast<int> (in.size()));
    return out;
}

Vector down (OversamplerChannel& channel, const Vector& in)
{
    Vector out (in.size() / static_cast<std::size_t> (channel.factor));
    channel.down (in.data(), out.data(), static_cast<int> (out.size()));
    return out;
}

/** y[i] = sum of taps[k] x[i - k], in double, with silence before the first sample. */
std::vector<double> convolve (const Vector& taps, const Vector& x)
{
    std::vector<double> y (x.size());

    for (std::size_t i = 0; i < x.size(); ++i)
        for (std::size_t k = 0; k < taps.size() && k <= i; ++k)
            y[i] += static_cast<double> (taps[k]) * static_cast<double> (x[i - k]);

    return y;
}

bool sameBits (const Vector& a, const Vector& b)
{
    return a.size() == b.size() && std::memcmp (a.data(), b.data(), a.size() * sizeof (float)) == 0;
}

/** The cut-off relative to the high rate: 52 F taps' worth of transition below half the host rate. */
double cutoff (int factor)
{
    const auto taps = static_cast<double> (52 * factor + 1);
    return (1.0 - 4.0 * factor / taps) * 0.5 / factor;
}

class OversamplerAtFactor : public ::testing::TestWithParam<int>
{
protected:
    void SetUp() override { channel.design (factor); }

    const int factor = GetParam();
    OversamplerChannel channel;
};
} // namespace

INSTANTIATE_TEST_SUITE_P (AllFactors, OversamplerAtFactor, ::testing::Range (2, 17));

TEST (OversamplerChannel, HasItsTapCounts)
{
    struct Case
    {
        int factor, taps;
    };

    for (const auto& c : { Case { 2, 105 }, Case { 3, 157 }, Case { 4, 209 }, Case { 5, 261 }, Case { 7, 365 },
                           Case { 8, 417 }, Case { 16, 833 } })
    {
        OversamplerChannel channel;
        channel.design (c.factor);
        EXPECT_EQ (channel.tapCount, c.taps) << c.factor;
        EXPECT_EQ (channel.factor, c.factor);
        EXPECT_EQ (OversamplerChannel::designTaps (c.factor).size(), static_cast<std::size_t> (c.taps)) << c.factor;
    }
}

TEST (OversamplerChannel, BeginsWithoutAFilter)
{
    const OversamplerChannel channel;
    EXPECT_EQ (channel.factor, 1);
    EXPECT_EQ (channel.tapCount, 0);
}

TEST (OversamplerChannel, DesignForFactorOneLeavesNoFilter)
{
    OversamplerChannel channel;
    channel.design (4);
    channel.design (1);
    EXPECT_EQ (channel.factor, 1);
    EXPECT_EQ (channel.tapCount, 0);
}

TEST (OversamplerChannel, CutOffIsJustUnderTheHostsNyquist)
{
    // The formula at its three known numbers, and 0.462 of the host rate at every factor.
    EXPECT_DOUBLE_EQ (cutoff (2), 0.23095238095238096);
    EXPECT_DOUBLE_EQ (cutoff (4), 0.11543062200956938);
    EXPECT_DOUBLE_EQ (cutoff (8), 0.05770383693045564);

    for (int factor = 2; factor <= 16; ++factor)
    {
        EXPECT_LT (cutoff (factor) * factor, 0.462) << factor;
        EXPECT_GT (cutoff (factor) * factor, 0.461) << factor;
    }
}

TEST_P (OversamplerAtFactor, TapsAreTheWindowedSinc)
{
    const auto taps = OversamplerChannel::designTaps (factor);
    const auto n = 52 * factor + 1, centre = 26 * factor;
    const auto pi = 3.14159265358979323846L;
    const auto r = static_cast<long double> (cutoff (factor));
    std::vector<long double> expected;
    long double sum = 0.0L;

    for (int i = 0; i < n; ++i)
    {
        const auto phase = pi * static_cast<long double> (i - centre);
        const auto sinc = i == centre ? 2.0L * r : std::sin (2.0L * r * phase) / phase;
        const auto window = 0.54L - 0.46L * std::cos (2.0L * pi * i / (n - 1));
        expected.push_back (sinc * window);
        sum += expected.back();
    }

    for (int i = 0; i < n; ++i)
    {
        // The sine's argument grows to 150, so a double loses 1e-14 of the largest tap; then the rounding to float.
        const auto tap = static_cast<double> (expected[static_cast<std::size_t> (i)] / sum);
        ASSERT_NEAR (static_cast<double> (taps[static_cast<std::size_t> (i)]), tap, std::abs (tap) * 6.1e-8 + 1.0e-14)
            << i;
    }
}

TEST_P (OversamplerAtFactor, TapsSumToOneAndAreSymmetric)
{
    const auto taps = OversamplerChannel::designTaps (factor);
    const auto sum = std::accumulate (taps.begin(), taps.end(), 0.0);

    // Each tap is rounded to float, at random: 3e-8 of a tap, and the taps' magnitudes add up to a few.
    EXPECT_NEAR (sum, 1.0, 1.0e-7);

    for (std::size_t i = 0; i < taps.size(); ++i)
        ASSERT_NEAR (static_cast<double> (taps[i]), static_cast<double> (taps[taps.size() - 1 - i]),
                     std::abs (static_cast<double> (taps[i])) * 1.2e-7 + 1.0e-14)
            << i; // one float unit, as above

    EXPECT_EQ (std::max_element (taps.begin(), taps.end()) - taps.begin(), 26 * factor);

    // Each branch of the interpolator carries about its F-th of the whole. The passband of a Hamming window ripples by
    // 0.0022 in all, the images of DC among them.
    for (int phase = 0; phase < factor; ++phase)
    {
        auto branch = 0.0;

        for (std::size_t i = static_cast<std::size_t> (phase); i < taps.size(); i += static_cast<std::size_t> (factor))
            branch += static_cast<double> (taps[i]);

        EXPECT_NEAR (branch * factor, 1.0, 0.005) << "phase " << phase;
    }
}

TEST_P (OversamplerAtFactor, UpIsZeroStuffingAndAFilter)
{
    const auto x = noise (300, 0xe0);
    Vector stuffed (x.size() * static_cast<std::size_t> (factor), 0.0f);

    for (std::size_t i = 0; i < x.size(); ++i)
        stuffed[i * static_cast<std::size_t> (factor)] = x[i]; // the sample first, then the zeros

    const auto expected = convolve (OversamplerChannel::designTaps (factor), stuffed);
    const auto found = up (channel, x);
    ASSERT_EQ (found.size(), expected.size());

    // 53 float products and sums of terms whose magnitudes, times F, add up to at most 4: 53 x 6e-8 x 4 at the worst.
    for (std::size_t i = 0; i < found.size(); ++i)
        ASSERT_NEAR (static_cast<double> (found[i]), factor * expected[i], 1.3e-5) << i;
}

TEST_P (OversamplerAtFactor, DownIsAFilterThatKeepsTheFirstOfEachGroup)
{
    const auto x = noise (300 * factor, 0xe1);
    const auto expected = convolve (OversamplerChannel::designTaps (factor), x);
    const auto found = down (channel, x);
    ASSERT_EQ (found.size(), 300u);

    // 52 F + 1 float products whose magnitudes add up to less than 3, summed in F sums of 53: 70 roundings deep.
    for (std::size_t i = 0; i < found.size(); ++i)
        ASSERT_NEAR (static_cast<double> (found[i]), expected[i * static_cast<std::size_t> (factor)], 1.3e-5) << i;
}

TEST_P (OversamplerAtFactor, ErrorsOfTheSumsAreTheirRoundingsAlone)
{
    // The bounds above are for the worst case; the roundings of noise add up by their squares.
    const auto x = noise (2000 * factor, 0xe2);
    const auto expected = convolve (OversamplerChannel::designTaps (factor), x);
    const auto found = down (channel, x);
    auto sum = 0.0;

    for (std::size_t i = 0; i < found.size(); ++i)
        sum += std::pow (static_cast<double> (found[i]) - expected[i * static_cast<std::size_t> (factor)], 2.0);

    EXPECT_LT (std::sqrt (sum / static_cast<double> (found.size())), 2.0e-7);
}

TEST_P (OversamplerAtFactor, EachFilterDelaysByTwentySixHostSamples)
{
    Vector impulse (128, 0.0f);
    impulse[0] = 1.0f;
    const auto high = up (channel, impulse);
    EXPECT_EQ (std::max_element (high.begin(), high.end()) - high.begin(), 26 * factor);

    // Down alone: an impulse on the first place of a group.
    OversamplerChannel second;
    second.design (factor);
    Vector highImpulse (static_cast<std::size_t> (128 * factor), 0.0f);
    highImpulse[0] = 1.0f;
    const auto low = down (second, highImpulse);
    EXPECT_EQ (std::max_element (low.begin(), low.end()) - low.begin(), 26);
}

TEST_P (OversamplerAtFactor, TheChainDelaysByFiftyTwoHostSamples)
{
    for (const auto position : { 0, 1, 37 })
    {
        channel.design (factor);
        Vector impulse (200, 0.0f);
        impulse[static_cast<std::size_t> (position)] = 1.0f;
        const auto out = down (channel, up (channel, impulse));
        EXPECT_EQ (std::max_element (out.begin(), out.end()) - out.begin(), position + 52);

        // Linear phase: symmetric around the peak, to the roundings of floats of unit size.
        const auto peak = static_cast<std::size_t> (position + 52);

        for (std::size_t k = 1; k <= 52; ++k)
            ASSERT_NEAR (out[peak - k], out[peak + k], 1.0e-6f) << k;

        // And nothing after 104 samples: both filters are finite.
        for (auto i = static_cast<std::size_t> (position) + 105; i < out.size(); ++i)
            ASSERT_EQ (out[i], 0.0f) << i;
    }
}

TEST_P (OversamplerAtFactor, PassesDcAtUnity)
{
    const auto high = up (channel, Vector (300, 1.0f));

    // The images of DC that the Hamming window leaves show as a ripple of each branch.
    for (std::size_t i = 60u * static_cast<std::size_t> (factor); i < high.size(); ++i)
        ASSERT_NEAR (high[i], 1.0f, 0.005f) << i;

    // The decimator averages the ripple away: the taps sum to 1 within 1e-7, products of two such sums, and the images
    // meet the stop band a second time.
    const auto out = down (channel, high);

    for (std::size_t i = 110; i < out.size(); ++i)
        ASSERT_NEAR (out[i], 1.0f, 2.0e-5f) << i;
}

TEST_P (OversamplerAtFactor, KeepsThePassbandAndRejectsTheStopBand)
{
    const auto taps = OversamplerChannel::designTaps (factor);
    const auto n = static_cast<int> (taps.size());
    const auto gainDb = [&] (double ofHostRate) {
        return Signals::toDb (std::abs (Analytic::measured (taps.data(), n, ofHostRate, static_cast<double> (factor))));
    };

    for (const auto f : { 0.0, 0.02268, 0.1, 0.2, 0.3, 0.4, 0.42 })
        EXPECT_NEAR (gainDb (f), 0.0, 0.03) << f; // the Hamming ripple of 0.0022 is 0.02 dB

    EXPECT_NEAR (gainDb (cutoff (factor) * factor), -6.0, 0.1) << "a windowed sinc is halved at its cut-off";

    // The transition ends at the host's Nyquist frequency; from there on the window's side lobes stay below -50 dB.
    EXPECT_LT (gainDb (0.5), -40.0);

    for (auto f = 0.505; f <= factor / 2.0; f += 0.00731)
        ASSERT_LT (gainDb (f), -50.0) << f;
}

TEST_P (OversamplerAtFactor, SinesOfTheHostRateHaveNoImages)
{
    const auto rate = 48000.0;
    const auto n = 4800;
    const auto sine = Signals::sine (1, n, rate, 1000.0, 1.0);
    const auto high = up (channel, Vector (sine.getReadPointer (0), sine.getReadPointer (0) + n));
    const auto* settled = high.data() + 2400 * factor;
    const auto length = 2400 * factor;

    EXPECT_NEAR (Signals::toDb (Signals::amplitudeAt (settled, length, rate * factor, 1000.0)), 0.0, 0.03);
    EXPECT_LT (Signals::toDb (Signals::amplitudeAt (settled, length, rate * factor, rate - 1000.0)), -50.0);
}

TEST_P (OversamplerAtFactor, AUnityChainReadsTheRippleOfItsPassband)
{
    // Both filters stand about 0.01 dB above unity at 1 kHz of 48 kHz: the Hamming window's ripple, not a wrong gain.
    const auto taps = OversamplerChannel::designTaps (factor);
    const auto once = Analytic::measured (taps.data(), static_cast<int> (taps.size()), 1000.0, 48000.0 * factor);
    const auto sine = Signals::sine (1, 4800, 48000.0, 1000.0, 1.0);
    const auto out = down (channel, up (channel, Vector (sine.getReadPointer (0), sine.getReadPointer (0) + 4800)));
    const auto db = Signals::toDb (Signals::amplitudeAt (out.data() + 2400, 2400, 48000.0, 1000.0));
    EXPECT_NEAR (db, 2.0 * Signals::toDb (std::abs (once)), 1.0e-3); // the images 50 dB down, aliased once more
    EXPECT_NEAR (db, 0.02, 0.004);
}

TEST_P (OversamplerAtFactor, BlockLengthChangesNoBit)
{
    const auto x = noise (700, 0xe3);
    const auto whole = up (channel, x);
    const auto wholeDown = down (channel, whole);

    for (const auto length : { 1, 2, 52, 53, 63, 64, 65, 129, 333 })
    {
        OversamplerChannel pieces;
        pieces.design (factor);
        Vector high (whole.size()), low (x.size());

        Samples::inBlocks (700, { length },
                           [&] (int done, int n)
                           {
                               pieces.up (x.data() + done, high.data() + done * factor, n);
                               pieces.down (high.data() + done * factor, low.data() + done, n);
                           });

        EXPECT_TRUE (sameBits (high, whole)) << length;
        EXPECT_TRUE (sameBits (low, wholeDown)) << length;
    }
}

TEST_P (OversamplerAtFactor, DesigningAgainClearsTheHistory)
{
    const auto x = noise (200, 0xe4);
    const auto first = down (channel, up (channel, x));
    const auto continued = down (channel, up (channel, x));
    EXPECT_FALSE (sameBits (first, continued)) << "history matters";

    channel.design (factor);
    EXPECT_TRUE (sameBits (first, down (channel, up (channel, x))));

    // Also by way of another factor.
    channel.design (factor == 16 ? 3 : factor + 1);
    up (channel, x);
    channel.design (factor);
    EXPECT_TRUE (sameBits (first, down (channel, up (channel, x))));
}

TEST_P (OversamplerAtFactor, AnEmptyBlockChangesNothing)
{
    const auto x = noise (100, 0xe5);
    OversamplerChannel other;
    other.design (factor);
    up (channel, x);
    up (other, x);
    other.up (nullptr, nullptr, 0);
    other.down (nullptr, nullptr, 0);
    EXPECT_TRUE (sameBits (up (channel, x), up (other, x)));
}
