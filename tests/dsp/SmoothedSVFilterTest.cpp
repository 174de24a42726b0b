// SPDX-License-Identifier: GPL-3.0-or-later
#include "dsp/SmoothedSVFilter.h"
#include "dsp/AnalyticResponse.h"
#include "support/Matchers.h"
#include "support/Samples.h"
#include "support/Signals.h"

#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <limits>
#include <vector>

namespace
{
constexpr int types[] = { SmoothedSVFilter::lowPass,  SmoothedSVFilter::highPass,  SmoothedSVFilter::bell,
                          SmoothedSVFilter::lowShelf, SmoothedSVFilter::highShelf, SmoothedSVFilter::bandPass,
                          SmoothedSVFilter::notch,    SmoothedSVFilter::peak };

Analytic::Complex analytic (int type, double f, double corner, double q, double gain, double rate)
{
    const auto s = Analytic::normalised (f, corner, rate);

    switch (type)
    {
        case 0: return Analytic::lowPass (s, q);
        case 1: return Analytic::highPass (s, q);
        case 2: return Analytic::bell (s, q, gain);
        case 3: return Analytic::lowShelf (s, q, gain);
        case 4: return Analytic::highShelf (s, q, gain);
        case 5: return Analytic::bandPass (s, q);
        case 6: return Analytic::notch (s, q);
        default: return Analytic::peak (s, q);
    }
}

using Values = std::array<double, 6>;

/** a1, a2, a3, m0, m1, m2 of the responses that the glides below go through. */
Values coefficients (int type, double corner, double q, double gain, double rate)
{
    const auto A = std::sqrt (gain);
    const auto t = std::tan (corner * 3.141592653589793 / rate);
    const auto k = type == 2 ? 1.0 / (q * A) : 1.0 / q;
    const auto g = type == 3 ? t / std::sqrt (A) : type == 4 ? t * std::sqrt (A) : t;
    const auto a1 = 1.0 / ((k + g) * g + 1.0);
    Values v { a1, g * a1, g * g * a1, 0.0, 0.0, 0.0 };

    switch (type)
    {
        case 0: v[5] = 1.0; break;
        case 1:
            v[3] = 1.0;
            v[4] = -k;
            v[5] = -1.0;
            break;
        case 2:
            v[3] = 1.0;
            v[4] = (A * A - 1.0) * k;
            break;
        case 3:
            v[3] = 1.0;
            v[4] = (A - 1.0) * k;
            v[5] = A * A - 1.0;
            break;
        case 4:
            v[3] = A * A;
            v[4] = (1.0 - A) * k * A;
            v[5] = 1.0 - A * A;
            break;
        case 5: v[4] = 1.0; break;
        case 6:
            v[3] = 1.0;
            v[4] = -k;
            break;
        case 7:
            v[3] = 1.0;
            v[4] = -k;
            v[5] = -2.0;
            break;
        default: break;
    }

    return v;
}

/** The filter once more, one sample at a time. */
struct Plain
{
    double s1 = 0.0, s2 = 0.0;

    double tick (const Values& v, double x)
    {
        const auto v3 = x - s2;
        const auto v1 = v[0] * s1 + v[1] * v3;
        const auto v2 = s2 + v[1] * s1 + v[2] * v3;
        s1 = 2.0 * v1 - s1;
        s2 = 2.0 * v2 - s2;
        return v[3] * x + v[4] * v1 + v[5] * v2;
    }
};

Values mixed (const Values& from, const Values& to, double share)
{
    Values v;

    for (std::size_t i = 0; i < v.size(); ++i)
        v[i] = from[i] + (to[i] - from[i]) * share;

    return v;
}

/** In place, in blocks of the given length. */
void runInBlocks (SmoothedSVFilter& filter, juce::AudioBuffer<float>& buffer, int blockLength)
{
    Samples::inBlocks (buffer.getNumSamples(), { blockLength },
                       [&] (int done, int n)
                       {
                           juce::AudioBuffer<float> piece (buffer.getArrayOfWritePointers(), buffer.getNumChannels(),
                                                           done, n);
                           filter.process (piece.getArrayOfWritePointers(), n);
                       });
}

class SmoothedSVFilterOfType : public ::testing::TestWithParam<int>
{
};
} // namespace

INSTANTIATE_TEST_SUITE_P (AllTypes, SmoothedSVFilterOfType, ::testing::ValuesIn (types));

TEST (SmoothedSVFilter, NumbersItsTypes)
{
    for (int i = 0; i < 8; ++i)
        EXPECT_EQ (types[i], i);
}

TEST_P (SmoothedSVFilterOfType, HasItsAnalyticResponse)
{
    struct Setting
    {
        double rate, corner, q, gain;
    };
    const Setting settings[] = { { 48000.0, 1000.0, 0.7, 2.0 },
                                 { 48000.0, 8000.0, 0.3, 7.943282347242816 },
                                 { 96000.0, 125.0, 0.3, 0.12589254117941673 },
                                 { 44100.0, 15000.0, 3.0, 0.25 } };

    for (const auto& setting : settings)
    {
        constexpr int n = 1 << 15;
        SmoothedSVFilter filter (GetParam());
        filter.setResponse (GetParam(), setting.corner, setting.q, setting.gain);
        filter.prepare (setting.rate, 1, n);

        auto h = Signals::impulse (1, n, 0);
        filter.process (h.getArrayOfWritePointers(), n);

        for (const auto f : { 30.0, 125.0, 500.0, 1000.0, 3000.0, 8000.0, 15000.0, 20000.0 })
        {
            // Each output sample is rounded to float: about 1e-7 of a response of at most 8.
            const auto expected = analytic (GetParam(), f, setting.corner, setting.q, setting.gain, setting.rate);
            const auto found = Analytic::measured (h.getReadPointer (0), n, f, setting.rate);
            EXPECT_LT (std::abs (found - expected), 3.0e-6) << f << " Hz, corner " << setting.corner << " Hz";
        }
    }
}

TEST (SmoothedSVFilter, HasTheGainsOfAShelfAtItsEndsAndItsCorner)
{
    // The tilt of the detector: 18 dB less at the bottom, 18 dB more at the top, half the decibels at the corner.
    const auto rate = 192000.0;
    constexpr int n = 1 << 17;
    SmoothedSVFilter low (SmoothedSVFilter::lowShelf), high (SmoothedSVFilter::highShelf);
    low.setResponse (3, 125.0, 0.3, 0.12589254117941673);
    high.setResponse (4, 8000.0, 0.3, 7.943282347242816);

    struct Point
    {
        double f, db;
    };

    for (auto* filter : { &low, &high })
    {
        filter->prepare (rate, 1, n);
        auto h = Signals::impulse (1, n, 0);
        filter->process (h.getArrayOfWritePointers(), n);

        const auto points = filter == &low
                                ? std::array<Point, 3> { { { 0.0, -18.0 }, { 125.0, -9.0 }, { 60000.0, 0.0 } } }
                                : std::array<Point, 3> { { { 0.0, 0.0 }, { 8000.0, 9.0 }, { 96000.0, 18.0 } } };

        for (const auto& point : points)
            EXPECT_NEAR (Signals::toDb (std::abs (Analytic::measured (h.getReadPointer (0), n, point.f, rate))),
                         point.db,
                         0.02)
                << point.f; // 60 kHz is not quite infinitely far from 125 Hz at so low a Q
    }
}

TEST_P (SmoothedSVFilterOfType, StaysBelowHalfTheRate)
{
    // The detector's 8 kHz shelf at a rate of 12 kHz: beyond half the rate the formula is unstable, so the corner is
    // held at 0.49 of it, and there its response is the analytic one again.
    const auto rate = 12000.0;
    constexpr int n = 1 << 14;

    for (const auto corner : { 5880.0, 5990.0, 8000.0, 12000.0 })
    {
        SmoothedSVFilter filter (GetParam());
        filter.setResponse (GetParam(), corner, 0.3, 7.943282347242816);
        filter.prepare (rate, 1, n);
        EXPECT_EQ (filter.frequency, corner) << "it is stored as given";
        auto h = Signals::impulse (1, n, 0);
        filter.process (h.getArrayOfWritePointers(), n);
        ASSERT_TRUE (Signals::allFinite (h)) << corner;

        for (const auto f : { 100.0, 1000.0, 4000.0, 5800.0 })
            EXPECT_LT (std::abs (Analytic::measured (h.getReadPointer (0), n, f, rate)
                                 - analytic (GetParam(), f, 0.49 * rate, 0.3, 7.943282347242816, rate)),
                       5.0e-6)
                << f << " Hz, corner " << corner << " Hz"; // float roundings, as above
    }

    // Just below the limit nothing is moved.
    SmoothedSVFilter below (GetParam());
    below.setResponse (GetParam(), 5800.0, 0.3, 2.0);
    below.prepare (rate, 1, n);
    EXPECT_NEAR (below.smoothers[0].current, coefficients (GetParam(), 5800.0, 0.3, 2.0, rate)[0], 1.0e-14);
}

TEST (SmoothedSVFilter, StartsWithItsOwnTypeAtOneKilohertz)
{
    for (const auto type : { 1, 3, 4 })
    {
        const SmoothedSVFilter filter (type);
        EXPECT_EQ (filter.type, type);
        EXPECT_EQ (filter.frequency, 1000.0);
        EXPECT_EQ (filter.q, 1.0);
        EXPECT_EQ (filter.gain, 1.0);
        EXPECT_FALSE (filter.ready);
    }
}

TEST (SmoothedSVFilter, OnlyStoresAResponseBeforeItIsReady)
{
    SmoothedSVFilter filter (SmoothedSVFilter::highPass);
    filter.setResponse (SmoothedSVFilter::bell, 300.0, 2.0, 3.0);
    EXPECT_EQ (filter.type, SmoothedSVFilter::bell);
    EXPECT_EQ (filter.frequency, 300.0);
    EXPECT_EQ (filter.q, 2.0);
    EXPECT_EQ (filter.gain, 3.0);

    for (const auto& smoother : filter.smoothers)
        EXPECT_EQ (smoother.target, 0.0);
}

TEST (SmoothedSVFilter, PreparingLandsOnTheResponseWithoutAGlide)
{
    SmoothedSVFilter filter (SmoothedSVFilter::highPass);
    filter.setResponse (1, 80.0, 1.0, 1.0);
    filter.mix.setTarget (0.0);
    filter.prepare (48000.0, 1, 64);
    EXPECT_TRUE (filter.ready);
    EXPECT_EQ (filter.rate, 48000.0);
    const auto expected = coefficients (1, 80.0, 1.0, 1.0, 48000.0);

    for (std::size_t i = 0; i < 6; ++i)
    {
        EXPECT_NEAR (filter.smoothers[i].current, expected[i], 1.0e-15) << i;
        EXPECT_EQ (filter.smoothers[i].remaining, 0) << i;
    }

    EXPECT_EQ (filter.mix.current, 0.0);
    EXPECT_EQ (filter.mix.remaining, 0);
    EXPECT_EQ (filter.mix.length, 4800);
}

TEST (SmoothedSVFilter, KeepsRampLengthsInSixteenBits)
{
    struct Case
    {
        double rate;
        int length;
    };

    // 100 ms of the rate; above 65535 samples it wraps.
    for (const auto& c : { Case { 8000.0, 800 }, Case { 44100.0, 4410 }, Case { 48000.0, 4800 }, Case { 96000.0, 9600 },
                           Case { 384000.0, 38400 }, Case { 705600.0, 70560 - 65536 }, Case { 768000.0, 11264 } })
    {
        SmoothedSVFilter filter (SmoothedSVFilter::highPass);
        filter.prepare (c.rate, 1, 16);
        EXPECT_EQ (filter.mix.length, c.length) << c.rate;

        for (const auto& smoother : filter.smoothers)
            EXPECT_EQ (smoother.length, c.length) << c.rate;

        // A new response takes that many samples.
        filter.setResponse (1, 500.0, 1.0, 1.0);
        EXPECT_EQ (filter.smoothers[0].remaining, c.length) << c.rate;
    }
}

TEST_P (SmoothedSVFilterOfType, GlidesOverATenthOfASecond)
{
    const auto rate = 16000.0;
    const auto type = GetParam();
    SmoothedSVFilter filter (type);
    filter.setResponse (type, 200.0, 0.7, 0.5);
    filter.prepare (rate, 1, 100);
    const auto input = Signals::whiteNoise (1, 3000, 0x91);
    auto output = input;

    // At rest first, then 1600 samples of glide, then at rest again.
    juce::AudioBuffer<float> head (output.getArrayOfWritePointers(), 1, 0, 500);
    runInBlocks (filter, head, 100);
    filter.setResponse (type, 3000.0, 1.4, 4.0);
    juce::AudioBuffer<float> tail (output.getArrayOfWritePointers(), 1, 500, 2500);
    runInBlocks (filter, tail, 93);

    const auto from = coefficients (type, 200.0, 0.7, 0.5, rate), to = coefficients (type, 3000.0, 1.4, 4.0, rate);
    Plain plain;

    for (int i = 0; i < 3000; ++i)
    {
        const auto share = std::min (1.0, std::max (0, i - 499) / 1600.0);
        const auto expected = plain.tick (mixed (from, to, share), static_cast<double> (input.getSample (0, i)));

        // The sum of up to 1600 steps is off by 1e-13; the rest is the rounding to float of values of a few units.
        ASSERT_NEAR (static_cast<double> (output.getSample (0, i)), expected, 1.0e-6) << i;
    }
}

TEST (SmoothedSVFilter, ANewResponseInTheMiddleOfAGlideStartsFromWhereItIs)
{
    const auto rate = 16000.0;
    SmoothedSVFilter filter (SmoothedSVFilter::lowPass);
    filter.setResponse (0, 200.0, 0.7, 1.0);
    filter.prepare (rate, 1, 800);
    filter.setResponse (0, 3000.0, 0.7, 1.0);
    auto noise = Signals::whiteNoise (1, 800, 0x92);
    filter.process (noise.getArrayOfWritePointers(), 800);

    const auto from = coefficients (0, 200.0, 0.7, 1.0, rate), to = coefficients (0, 3000.0, 0.7, 1.0, rate);
    EXPECT_EQ (filter.smoothers[0].remaining, 800);
    EXPECT_NEAR (filter.smoothers[0].current, 0.5 * (from[0] + to[0]), 1.0e-12);

    filter.setResponse (0, 200.0, 0.7, 1.0);
    EXPECT_EQ (filter.smoothers[0].remaining, 1600);
    EXPECT_NEAR (filter.smoothers[0].current, 0.5 * (from[0] + to[0]), 1.0e-12);
}

TEST (SmoothedSVFilter, FadesInAndOutOverATenthOfASecond)
{
    const auto rate = 16000.0;
    SmoothedSVFilter filter (SmoothedSVFilter::highPass);
    filter.setResponse (1, 1000.0, 1.0, 1.0);
    filter.mix.setTarget (0.0);
    filter.prepare (rate, 1, 128);

    const auto input = Signals::whiteNoise (1, 8000, 0x93);
    auto output = input;
    const auto block = [&] (int begin, int end)
    {
        juce::AudioBuffer<float> piece (output.getArrayOfWritePointers(), 1, begin, end - begin);
        runInBlocks (filter, piece, 128);
    };

    block (0, 1000);
    filter.mix.setTarget (1.0);
    block (1000, 4000);
    filter.mix.setTarget (0.0);
    block (4000, 8000);

    const auto values = coefficients (1, 1000.0, 1.0, 1.0, rate);
    Plain plain;

    for (int i = 0; i < 8000; ++i)
    {
        const auto x = static_cast<double> (input.getSample (0, i));
        const auto mix = i < 1000   ? 0.0
                         : i < 4000 ? std::min (1.0, (i - 999) / 1600.0)
                                    : std::max (0.0, 1.0 - (i - 3999) / 1600.0);

        // It runs while it is in or on its way; the fade's end falls into a block, whose rest it still filters, which
        // no longer sounds.
        const auto expected = i < 1000 || i >= 4000 + 1664 ? x : mix * plain.tick (values, x) + (1.0 - mix) * x;
        ASSERT_NEAR (static_cast<double> (output.getSample (0, i)), expected, 1.0e-6) << i; // float roundings
    }
}

TEST (SmoothedSVFilter, ThatIsOutTouchesNeitherSignalNorState)
{
    SmoothedSVFilter filter (SmoothedSVFilter::lowPass);
    filter.prepare (48000.0, 1, 256);
    auto noise = Signals::whiteNoise (1, 256, 0x94);
    filter.process (noise.getArrayOfWritePointers(), 256);
    const auto state = filter.states[0];
    ASSERT_NE (state.a, 0.0);

    // Out at once: the fade is over.
    filter.mix = LinearSmoother (0.0);
    const auto input = Signals::whiteNoise (1, 256, 0x95);
    auto output = input;
    filter.process (output.getArrayOfWritePointers(), 256);
    EXPECT_TRUE (sameBits (input, output));
    EXPECT_EQ (filter.states[0].a, state.a);
    EXPECT_EQ (filter.states[0].b, state.b);

    // And it goes on from there.
    filter.mix = LinearSmoother (1.0);
    auto again = input;
    filter.process (again.getArrayOfWritePointers(), 256);
    const auto values = coefficients (0, 1000.0, 1.0, 1.0, 48000.0);
    Plain plain { state.a, state.b };

    for (int i = 0; i < 256; ++i)
        ASSERT_NEAR (again.getSample (0, i), plain.tick (values, input.getSample (0, i)), 1.0e-6); // float rounding
}

TEST (SmoothedSVFilter, IsInFromAMixOfOneHalfOn)
{
    for (const auto mix : { 0.0, 0.49, 0.5, 1.0 })
    {
        SmoothedSVFilter filter (SmoothedSVFilter::lowPass);
        filter.prepare (48000.0, 1, 64);
        filter.mix = LinearSmoother (mix); // at rest there
        const auto input = Signals::whiteNoise (1, 64, 0x96);
        auto output = input;
        filter.process (output.getArrayOfWritePointers(), 64);
        EXPECT_EQ (static_cast<bool> (sameBits (input, output)), mix < 0.5) << mix;
    }
}

TEST (SmoothedSVFilter, KeepsItsStateOverPrepare)
{
    SmoothedSVFilter filter (SmoothedSVFilter::lowPass);
    filter.prepare (48000.0, 2, 256);
    auto noise = Signals::whiteNoise (2, 256, 0x97);
    filter.process (noise.getArrayOfWritePointers(), 256);
    const auto first = filter.states[0], second = filter.states[1];

    filter.prepare (96000.0, 2, 512);
    EXPECT_EQ (filter.states[0].a, first.a);
    EXPECT_EQ (filter.states[1].b, second.b);

    // Exactly as many records as channels: more begin at zero, fewer drop the last.
    filter.prepare (96000.0, 3, 512);
    ASSERT_EQ (filter.states.size(), 3u);
    EXPECT_EQ (filter.states[0].a, first.a);
    EXPECT_EQ (filter.states[2].a, 0.0);
    EXPECT_EQ (filter.states[2].b, 0.0);
    filter.prepare (96000.0, 1, 512);
    ASSERT_EQ (filter.states.size(), 1u);
    EXPECT_EQ (filter.states[0].b, first.b);
}

TEST (SmoothedSVFilter, PreparingHealsAStateThatIsNotFinite)
{
    for (const auto poison : { std::nan (""), std::numeric_limits<double>::infinity() })
    {
        SmoothedSVFilter filter (SmoothedSVFilter::lowPass);
        filter.prepare (48000.0, 2, 64);
        filter.states[0].a = poison;
        filter.states[0].b = 0.25;
        filter.states[1].b = 0.5;
        filter.prepare (48000.0, 2, 64);
        EXPECT_EQ (filter.states[0].a, 0.0);
        EXPECT_TRUE (std::isfinite (filter.states[0].b));
        EXPECT_EQ (filter.states[1].b, 0.5) << "a sound channel keeps its own";

        auto noise = Signals::whiteNoise (2, 64, 0x98);
        filter.process (noise.getArrayOfWritePointers(), 64);
        EXPECT_TRUE (Signals::allFinite (noise));
    }
}

TEST (SmoothedSVFilter, ZeroesStatesBelowTheNormalRangeEveryBlock)
{
    SmoothedSVFilter filter (SmoothedSVFilter::lowPass);
    filter.prepare (48000.0, 1, 16);
    filter.mix = LinearSmoother (0.0); // not even running
    float sample = 0.0f;
    float* channel = &sample;

    filter.states[0].a = 2.2250738585072009e-308; // the largest denormal
    filter.states[0].b = -1.0e-310;
    filter.process (&channel, 1);
    EXPECT_EQ (filter.states[0].a, 0.0);
    EXPECT_EQ (filter.states[0].b, 0.0);

    filter.states[0].a = -2.2250738585072014e-308; // the smallest normal number
    filter.states[0].b = 1.0e-300;
    filter.process (&channel, 1);
    EXPECT_EQ (filter.states[0].a, -2.2250738585072014e-308);
    EXPECT_EQ (filter.states[0].b, 1.0e-300);
}

TEST (SmoothedSVFilter, BlockLengthChangesNoBit)
{
    const auto input = Signals::whiteNoise (2, 5000, 0x99);

    const auto run = [&input] (int blockLength)
    {
        SmoothedSVFilter filter (SmoothedSVFilter::bell);
        filter.setResponse (2, 400.0, 1.0, 4.0);
        filter.mix.setTarget (0.0);
        filter.prepare (16000.0, 2, 5000);
        filter.setResponse (2, 2000.0, 1.0, 0.5);
        filter.mix.setTarget (1.0);
        auto output = input;
        runInBlocks (filter, output, blockLength);
        return output;
    };

    const auto whole = run (5000);

    for (const auto length : { 1, 7, 64, 1601 })
        EXPECT_TRUE (sameBits (whole, run (length))) << length;
}

TEST (SmoothedSVFilter, ReleaseMakesItUnreadyUntilTheNextPrepare)
{
    SmoothedSVFilter filter (SmoothedSVFilter::lowPass);
    filter.prepare (48000.0, 1, 64);
    filter.release();
    EXPECT_FALSE (filter.ready);

    const auto target = filter.smoothers[0].target;
    filter.setResponse (0, 5000.0, 1.0, 1.0);
    EXPECT_EQ (filter.smoothers[0].target, target) << "it only stores the response";

    filter.prepare (48000.0, 1, 64);
    EXPECT_TRUE (filter.ready);
    EXPECT_NEAR (filter.smoothers[0].current, coefficients (0, 5000.0, 1.0, 1.0, 48000.0)[0], 1.0e-15);
    auto noise = Signals::whiteNoise (1, 64, 0x9a);
    filter.process (noise.getArrayOfWritePointers(), 64);
    EXPECT_TRUE (Signals::allFinite (noise));
}

TEST (SmoothedSVFilter, AnEmptyBlockDoesNothing)
{
    SmoothedSVFilter filter (SmoothedSVFilter::lowPass);
    filter.prepare (48000.0, 1, 64);
    filter.setResponse (0, 5000.0, 1.0, 1.0);
    filter.mix.setTarget (0.0);
    float sample = 0.5f;
    float* channel = &sample;
    filter.process (&channel, 0);
    EXPECT_EQ (sample, 0.5f);
    EXPECT_EQ (filter.smoothers[0].remaining, 4800);
    EXPECT_EQ (filter.mix.remaining, 4800);
}
