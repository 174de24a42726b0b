// SPDX-License-Identifier: GPL-3.0-or-later
#include "dsp/CrossoverFilter.h"
#include "dsp/AnalyticResponse.h"
#include "support/Matchers.h"
#include "support/Samples.h"
#include "support/Signals.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <complex>
#include <limits>
#include <vector>

namespace
{
constexpr double twoPi = 6.283185307179586;

/** First-order low-pass or high-pass whose pole decays as the analogue one's would. */
std::complex<double> analytic (int type, double f, double corner, double rate)
{
    const auto p = std::exp (-twoPi * corner / rate);
    const auto delay = std::polar (1.0, -twoPi * f / rate);
    return type == 0 ? (1.0 - p) / (1.0 - p * delay) : 0.5 * (1.0 + p) * (1.0 - delay) / (1.0 - p * delay);
}

struct Bands
{
    juce::AudioBuffer<float> low, mid, high;
};

/** The split of the signal path, block by block: low by the filter, high by subtraction and the other filter, mid
        is the rest. */
struct Splitter
{
    Splitter (double rate, int channels, double lowHz, double highHz)
    {
        lowSplit.setResponse (lowHz, 1.0, 1.0, CrossoverFilter::lowPass);
        highSplit.setResponse (highHz, 1.0, 1.0, CrossoverFilter::highPass);
        lowSplit.prepare (rate, channels, 4096);
        highSplit.prepare (rate, channels, 4096);
    }

    Bands split (const juce::AudioBuffer<float>& input, const std::vector<int>& lengths)
    {
        Bands bands { input, input, input };
        Samples::inBlocks (input.getNumSamples(), lengths,
                           [&] (int done, int n)
                           {
                               const auto channels = input.getNumChannels();
                               juce::AudioBuffer<float> low (bands.low.getArrayOfWritePointers(), channels, done, n);
                               juce::AudioBuffer<float> mid (bands.mid.getArrayOfWritePointers(), channels, done, n);
                               juce::AudioBuffer<float> high (bands.high.getArrayOfWritePointers(), channels, done, n);

                               lowSplit.process (low.getArrayOfWritePointers(), n);

                               for (int c = 0; c < channels; ++c)
                               {
                                   for (int i = 0; i < n; ++i)
                                   {
                                       high.setSample (c, i, input.getSample (c, done + i) - low.getSample (c, i));
                                       mid.setSample (c, i, high.getSample (c, i));
                                   }
                               }

                               highSplit.process (high.getArrayOfWritePointers(), n);

                               for (int c = 0; c < channels; ++c)
                                   for (int i = 0; i < n; ++i)
                                       mid.setSample (c, i, mid.getSample (c, i) - high.getSample (c, i));
                           });

        return bands;
    }

    CrossoverFilter lowSplit { CrossoverFilter::lowPass };
    CrossoverFilter highSplit { CrossoverFilter::highPass };
};

::testing::AssertionResult addsUpTo (const Bands& bands, const juce::AudioBuffer<float>& input)
{
    auto sum = input;

    for (int c = 0; c < input.getNumChannels(); ++c)
        for (int i = 0; i < input.getNumSamples(); ++i)
            sum.setSample (c, i, bands.low.getSample (c, i) + bands.mid.getSample (c, i) + bands.high.getSample (c, i));

    return equalWithin (sum, input, 1.0e-6f); // two float subtractions and two additions of unit noise
}
} // namespace

TEST (CrossoverFilter, HasItsAnalyticResponse)
{
    for (const auto type : { 0, 1 })
    {
        for (const auto rate : { 44100.0, 96000.0, 384000.0 })
        {
            for (const auto corner : { 25.0, 200.0, 5000.0, 18000.0 })
            {
                constexpr int n = 1 << 16;
                CrossoverFilter filter (type);
                filter.setResponse (corner, 1.0, 1.0, type);
                filter.prepare (rate, 1, n);
                auto h = Signals::impulse (1, n, 0);
                filter.process (h.getArrayOfWritePointers(), n);

                for (const auto f : { 10.0, 200.0, 1000.0, 5000.0, 20000.0 })
                    EXPECT_LT (std::abs (Analytic::measured (h.getReadPointer (0), n, f, rate)
                                         - analytic (type, f, corner, rate)),
                               1.0e-6) // float output samples
                        << "type " << type << ", corner " << corner << ", " << f << " Hz at " << rate;
            }
        }
    }
}

TEST (CrossoverFilter, PassesOneEndAndLosesThreeDecibelsAtTheCorner)
{
    constexpr int n = 1 << 16;
    const auto rate = 192000.0;

    for (const auto type : { 0, 1 })
    {
        CrossoverFilter filter (type);
        filter.setResponse (200.0, 1.0, 1.0, type);
        filter.prepare (rate, 1, n);
        auto h = Signals::impulse (1, n, 0);
        filter.process (h.getArrayOfWritePointers(), n);
        const auto db = [&] (double f)
        { return Signals::toDb (std::abs (Analytic::measured (h.getReadPointer (0), n, f, rate))); };

        EXPECT_NEAR (db (type == 0 ? 0.0 : rate / 2.0), 0.0, 1.0e-4);
        EXPECT_NEAR (db (200.0), -3.01, 0.05); // the matched pole is a hair off at a corner this low
        EXPECT_NEAR (db (type == 0 ? 4000.0 : 10.0), -26.0, 0.3) << "6 dB an octave";
    }
}

TEST (CrossoverFilter, UnknownTypePassesTheSignal)
{
    for (const auto type : { 2, -1, 7 })
    {
        CrossoverFilter filter (type);
        filter.setResponse (1000.0, 1.0, 1.0, type);
        filter.prepare (48000.0, 1, 256);
        const auto input = Signals::whiteNoise (1, 256, 0xa0);
        auto output = input;
        filter.process (output.getArrayOfWritePointers(), 256);
        EXPECT_TRUE (sameBits (input, output)) << type;
    }
}

TEST (CrossoverFilter, AResponseChangesTheTypeToo)
{
    const auto input = Signals::whiteNoise (1, 256, 0xa3);
    const auto run = [&] (CrossoverFilter& filter)
    {
        auto output = input;
        filter.process (output.getArrayOfWritePointers(), 256);
        return output;
    };

    for (const auto type : { 0, 1, 2 })
    {
        CrossoverFilter made (type), turned (type == 0 ? 1 : 0), running (type == 0 ? 1 : 0);
        made.setResponse (700.0, 1.0, 1.0, type);
        turned.setResponse (700.0, 1.0, 1.0, type);
        EXPECT_EQ (type, turned.type);
        made.prepare (48000.0, 1, 256);
        turned.prepare (48000.0, 1, 256);
        running.prepare (48000.0, 1, 256);
        running.setResponse (700.0, 1.0, 1.0, type);

        EXPECT_TRUE (sameBits (run (made), run (turned))) << type;

        for (std::size_t i = 0; i < made.smoothers.size(); ++i)
            EXPECT_EQ (made.smoothers[i].target, running.smoothers[i].target) << type << ", " << i;
    }
}

TEST (CrossoverFilter, StoresQAndGainAndReadsNeither)
{
    CrossoverFilter a (0), b (0);
    a.setResponse (700.0, 1.0, 1.0, 0);
    b.setResponse (700.0, 9.0, 0.1, 0);
    EXPECT_EQ (b.q, 9.0);
    EXPECT_EQ (b.gain, 0.1);
    EXPECT_EQ (b.frequency, 700.0);
    a.prepare (48000.0, 1, 256);
    b.prepare (48000.0, 1, 256);
    auto x = Signals::whiteNoise (1, 256, 0xa1);
    auto y = x;
    a.process (x.getArrayOfWritePointers(), 256);
    b.process (y.getArrayOfWritePointers(), 256);
    EXPECT_TRUE (sameBits (x, y));
}

TEST (CrossoverFilter, IsConstructedMixedIn)
{
    for (const auto type : { 0, 1 })
    {
        const CrossoverFilter filter (type);
        EXPECT_EQ (filter.type, type);
        EXPECT_EQ (filter.mix.target, 1.0);
        EXPECT_EQ (filter.mix.current, 1.0);
        EXPECT_FALSE (filter.ready);
    }
}

TEST (CrossoverFilter, GlidesOverATenthOfASecond)
{
    const auto rate = 16000.0;

    for (const auto type : { 0, 1 })
    {
        CrossoverFilter filter (type);
        filter.setResponse (100.0, 1.0, 1.0, type);
        filter.prepare (rate, 1, 128);
        filter.setResponse (3000.0, 1.0, 1.0, type);
        EXPECT_EQ (filter.smoothers[2].remaining, 1600);
        const auto input = Signals::whiteNoise (1, 3000, 0xa2);
        auto output = input;

        for (int done = 0; done < 3000; done += 100)
        {
            auto* channel = output.getWritePointer (0, done);
            filter.process (&channel, 100);
        }

        const auto p0 = std::exp (-twoPi * 100.0 / rate), p1 = std::exp (-twoPi * 3000.0 / rate);
        double y1 = 0.0, x1 = 0.0;

        for (int i = 0; i < 3000; ++i)
        {
            // All three coefficients are straight lines in p, so gliding them is gliding p.
            const auto p = p0 + (p1 - p0) * std::min (1.0, (i + 1) / 1600.0);
            const auto b0 = type == 0 ? 1.0 - p : 0.5 * (1.0 + p), b1 = type == 0 ? 0.0 : -0.5 * (1.0 + p);
            const auto x = static_cast<double> (input.getSample (0, i));
            const auto y = p * y1 + b1 * x1 + b0 * x;
            y1 = y;
            x1 = x;
            ASSERT_NEAR (static_cast<double> (output.getSample (0, i)), y, 5.0e-7) << i; // rounding to float
        }
    }
}

TEST (CrossoverFilter, ThreeBandsAddBackToTheInput)
{
    struct Case
    {
        double rate, low, high;
    };

    // Ordinary, equal, crossed over, and near half the rate.
    for (const auto& c :
         { Case { 44100.0, 200.0, 5000.0 }, Case { 48000.0, 1000.0, 1000.0 }, Case { 96000.0, 9000.0, 80.0 },
           Case { 44100.0, 21500.0, 22000.0 }, Case { 705600.0, 25.0, 19000.0 } })
    {
        Splitter splitter (c.rate, 2, c.low, c.high);
        const auto noise = Signals::whiteNoise (2, 4096, 0x51ed);
        EXPECT_TRUE (addsUpTo (splitter.split (noise, { 1, 63, 64, 3968 }), noise)) << c.low << " / " << c.high;
    }
}

TEST (CrossoverFilter, ThreeBandsAddBackWhileTheCornersGlide)
{
    Splitter splitter (48000.0, 2, 200.0, 5000.0);
    const auto noise = Signals::whiteNoise (2, 4096, 0xa3);
    EXPECT_TRUE (addsUpTo (splitter.split (noise, { 64 }), noise));

    splitter.lowSplit.setResponse (6000.0, 1.0, 1.0, 0);
    splitter.highSplit.setResponse (300.0, 1.0, 1.0, 1);
    ASSERT_NE (splitter.lowSplit.smoothers[2].remaining, 0);
    const auto bands = splitter.split (noise, { 1, 100, 7 });
    EXPECT_NE (splitter.lowSplit.smoothers[2].remaining, 0) << "the glide outlasts the noise";
    EXPECT_TRUE (addsUpTo (bands, noise));

    // It is a real glide: the low band moved.
    Splitter resting (48000.0, 2, 200.0, 5000.0);
    EXPECT_FALSE (equalWithin (bands.low, resting.split (noise, { 64 }).low, 0.01f));
}

TEST (CrossoverFilter, BandsAreWhatTheirNamesSay)
{
    Splitter splitter (48000.0, 1, 200.0, 5000.0);

    struct Case
    {
        double f;
        int band;
    };

    for (const auto& c : { Case { 40.0, 0 }, Case { 1000.0, 1 }, Case { 20000.0, 2 } })
    {
        const auto bands = splitter.split (Signals::sine (1, 48000, 48000.0, c.f, 1.0), { 512 });
        const double level[] = { Signals::rms (bands.low, 0, 24000, 48000), Signals::rms (bands.mid, 0, 24000, 48000),
                                 Signals::rms (bands.high, 0, 24000, 48000) };
        EXPECT_EQ (std::max_element (level, level + 3) - level, c.band) << c.f;
    }
}

TEST (CrossoverFilter, ACornerNearHalfTheRatePassesNearlyEverything)
{
    Splitter splitter (44100.0, 1, 22000.0, 22000.0);
    const auto p = std::exp (-twoPi * 22000.0 / 44100.0);
    ASSERT_LT (p, 0.05);
    const auto noise = Signals::whiteNoise (1, 4096, 0xa4);
    EXPECT_TRUE (equalWithin (splitter.split (noise, { 512 }).low, noise, static_cast<float> (2.0 * p)));
}

TEST (CrossoverFilter, BlockLengthChangesNoBit)
{
    const auto noise = Signals::whiteNoise (2, 6000, 0xa5);

    const auto run = [&noise] (int length)
    {
        Splitter splitter (16000.0, 2, 200.0, 5000.0);
        splitter.lowSplit.setResponse (900.0, 1.0, 1.0, 0);
        splitter.highSplit.setResponse (2000.0, 1.0, 1.0, 1);
        return splitter.split (noise, { length });
    };

    const auto whole = run (4096);

    for (const auto length : { 1, 13, 512, 1601 })
    {
        const auto pieces = run (length);
        EXPECT_TRUE (sameBits (whole.low, pieces.low)) << length;
        EXPECT_TRUE (sameBits (whole.mid, pieces.mid)) << length;
        EXPECT_TRUE (sameBits (whole.high, pieces.high)) << length;
    }
}

TEST (CrossoverFilter, KeepsItsStateOverPrepareButNotAPoisonedOne)
{
    CrossoverFilter filter (0);
    filter.prepare (48000.0, 2, 64);
    auto noise = Signals::whiteNoise (2, 64, 0xa6);
    filter.process (noise.getArrayOfWritePointers(), 64);
    const auto y1 = filter.states[0].a, x1 = filter.states[0].b;
    ASSERT_NE (y1, 0.0);
    filter.states[1].a = std::nan ("");

    filter.prepare (96000.0, 3, 128);
    ASSERT_EQ (filter.states.size(), 3u);
    EXPECT_EQ (filter.states[0].a, y1);
    EXPECT_EQ (filter.states[0].b, x1);
    EXPECT_EQ (filter.states[1].a, 0.0);
    EXPECT_EQ (filter.states[2].a, 0.0);
}

TEST (CrossoverFilter, ZeroesStatesBelowTheNormalRange)
{
    CrossoverFilter filter (0);
    filter.prepare (48000.0, 1, 16);
    float sample = 0.0f;
    float* channel = &sample;
    filter.states[0] = { 1.0e-308, -1.0e-309 };
    filter.process (&channel, 0); // every block, even an empty one
    EXPECT_EQ (filter.states[0].a, 0.0);
    EXPECT_EQ (filter.states[0].b, 0.0);

    filter.states[0] = { 3.0e-308, -3.0e-308 };
    filter.process (&channel, 0);
    EXPECT_EQ (filter.states[0].a, 3.0e-308);
    EXPECT_EQ (filter.states[0].b, -3.0e-308);
}

TEST (CrossoverFilter, KeepsRampLengthsInSixteenBits)
{
    struct Case
    {
        double rate;
        int length;
    };

    for (const auto& c : { Case { 44100.0, 4410 }, Case { 768000.0, 11264 } })
    {
        CrossoverFilter filter (1);
        filter.prepare (c.rate, 1, 16);
        EXPECT_EQ (filter.mix.length, c.length);
        EXPECT_EQ (filter.mix.remaining, 0);

        for (const auto& smoother : filter.smoothers)
        {
            EXPECT_EQ (smoother.length, c.length);
            EXPECT_EQ (smoother.remaining, 0) << "preparing lands without a glide";
            EXPECT_EQ (smoother.current, smoother.target);
        }
    }
}

TEST (CrossoverFilter, OnlyStoresAResponseBeforeItIsReady)
{
    CrossoverFilter filter (0);
    const auto before = filter.smoothers[2].target;
    filter.setResponse (4000.0, 1.0, 1.0, 0);
    EXPECT_EQ (filter.smoothers[2].target, before);
    filter.prepare (48000.0, 1, 16);
    EXPECT_NEAR (filter.smoothers[2].current, std::exp (-twoPi * 4000.0 / 48000.0), 1.0e-15);
}

TEST (CrossoverFilter, RunsWithNoChannels)
{
    CrossoverFilter filter (0);
    filter.prepare (48000.0, 0, 64);
    filter.process (nullptr, 64);
    EXPECT_TRUE (filter.states.empty());
}

TEST (CrossoverFilter, FadesWithItsMix)
{
    // Nothing in the plug-in moves it, but it is the scheme that it shares with the detector's filters.
    CrossoverFilter filter (0);
    filter.setResponse (500.0, 1.0, 1.0, 0);
    filter.prepare (16000.0, 1, 2000);
    filter.mix.setTarget (0.0);
    const auto input = Signals::whiteNoise (1, 2000, 0xa7);
    auto output = input;
    filter.process (output.getArrayOfWritePointers(), 2000);
    const auto p = std::exp (-twoPi * 500.0 / 16000.0);
    double y = 0.0;

    for (int i = 0; i < 2000; ++i)
    {
        const auto x = static_cast<double> (input.getSample (0, i));
        y = p * y + (1.0 - p) * x;
        const auto mix = std::max (0.0, 1.0 - (i + 1) / 1600.0);
        ASSERT_NEAR (static_cast<double> (output.getSample (0, i)), mix * y + (1.0 - mix) * x, 5.0e-7) << i;
    }

    auto after = input;
    filter.process (after.getArrayOfWritePointers(), 2000);
    EXPECT_TRUE (sameBits (after, input));
}
