// SPDX-License-Identifier: GPL-3.0-or-later
#include "dsp/OutputTransformer.h"
#include "support/Matchers.h"
#include "support/Samples.h"
#include "support/Signals.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <vector>

namespace
{
/** The transformer sample by sample, with the C library's long-double tangent. */
struct Plain
{
    explicit Plain (double rate) : T (1.0 / rate) {}

    float tick (float input)
    {
        const auto leak = std::exp (-T / 0.0025); // of the integrator, and the differentiator's weight
        const auto follow = std::exp (-T / 0.005);
        const auto x = static_cast<double> (input);
        flux = flux * leak + x;
        envelope = envelope * follow + (std::abs (x) + std::abs (700.0 * T * flux)) * (1.0 - follow);
        const auto e = std::max (envelope, 0.001);
        const auto v = 90.0 * T / e;
        const auto z = (static_cast<double> (std::tanh (static_cast<long double> (flux * v + 0.002))) - 0.002) / v;
        const auto o = 1.4 * flux - 0.4 * z;
        const auto out = o - leak * lastOut;
        lastOut = o;
        largestV = std::max (largestV, v);
        return static_cast<float> (out);
    }

    double T, flux = 0.0, envelope = 0.0, lastOut = 0.0, largestV = 0.0;
};

struct Unit
{
    explicit Unit (double rate) : state (1.0 / rate) { transformer.prepare (1.0 / rate); }

    juce::AudioBuffer<float> run (juce::AudioBuffer<float> buffer, int blockLength)
    {
        Samples::inBlocks (buffer.getNumSamples(), { blockLength },
                           [&] (int done, int n) { transformer.process (buffer.getWritePointer (0, done), n, state); });

        return buffer;
    }

    OutputTransformer transformer;
    OutputChannelState state;
};

/** Total of the second to tenth harmonic over the fundamental, from whole periods in the second half. */
double distortion (const juce::AudioBuffer<float>& y, double rate, double f)
{
    const auto n = y.getNumSamples() / 2;
    const auto* samples = y.getReadPointer (0, n);
    auto sum = 0.0;

    for (int k = 2; k <= 10; ++k)
    {
        const auto a = k * f < rate / 2.0 ? Signals::amplitudeAt (samples, n, rate, k * f) : 0.0;
        sum += a * a;
    }

    return std::sqrt (sum) / Signals::amplitudeAt (samples, n, rate, f);
}
} // namespace

TEST (OutputTransformer, ComputesItsConstantsFromTheRate)
{
    for (const auto rate : { 44100.0, 96000.0, 768000.0 })
    {
        const auto T = 1.0 / rate;
        const Unit unit (rate);
        EXPECT_EQ (unit.transformer.envelopeA, 1.0 - std::exp (-T / 0.005));
        EXPECT_EQ (unit.transformer.envelopeB, 1.0 - unit.transformer.envelopeA);
        EXPECT_EQ (unit.transformer.kneeScale, 90.0 * T);
        EXPECT_EQ (unit.transformer.fluxWeight, 700.0 * T);
        EXPECT_EQ (unit.state.integrateA, 1.0 - std::exp (-T / 0.0025));
        EXPECT_EQ (unit.state.integrateB, 1.0 - unit.state.integrateA);
        EXPECT_EQ (unit.state.differentiateA, 1.0 - std::exp (-T / 0.0025));
        EXPECT_EQ (unit.state.differentiateB, 1.0 - unit.state.differentiateA);
        EXPECT_EQ (unit.state.envelope, 0.0);
        EXPECT_EQ (unit.state.flux, 0.0);
        EXPECT_EQ (unit.state.lastOut, 0.0);
    }
}

TEST (OutputTransformer, ChannelStateIsSevenDoubles) { EXPECT_EQ (sizeof (OutputChannelState), 7 * sizeof (double)); }

TEST (OutputTransformer, AgreesWithThePlainForm)
{
    for (const auto rate : { 44100.0, 192000.0, 768000.0 })
    {
        for (const auto level : { 1.0e-6f, 1.0e-3f, 0.1f, 1.0f, 24.0f, 240.0f })
        {
            auto input = Signals::whiteNoise (1, 8000, 0xb0, level);

            for (int i = 0; i < 8000; ++i) // and something low, that saturates
                input.addSample (0, i, level * static_cast<float> (std::sin (2.0 * Signals::pi * 60.0 * i / rate)));

            Unit unit (rate);
            const auto output = unit.run (input, 777);
            Plain plain (rate);

            for (int i = 0; i < 8000; ++i)
            {
                // The flux is up to 2000 times the level, in double, and differentiated again: what the two tangents
                // and exponentials differ by leaves 1e-11 of the level, 2e-11 where the knee's gain is at its largest.
                // One unit of the float result may tip: 1.2e-7 of it.
                const auto expected = static_cast<double> (plain.tick (input.getSample (0, i)));
                ASSERT_NEAR (static_cast<double> (output.getSample (0, i)), expected,
                             std::abs (expected) * 1.2e-7 + 2.0e-11 + static_cast<double> (level) * 1.0e-11)
                    << i << " at " << rate << ", level " << level;
            }

            // The records end up in the same place: the recursions are those of the plain form to a few roundings.
            EXPECT_NEAR (unit.state.flux, plain.flux, (std::abs (plain.flux) + static_cast<double> (level)) * 1.0e-10);
            EXPECT_NEAR (unit.state.envelope, plain.envelope, plain.envelope * 1.0e-10);
            EXPECT_NEAR (unit.state.lastOut, plain.lastOut,
                         (std::abs (plain.lastOut) + static_cast<double> (level)) * 1.0e-9);
        }
    }
}

TEST (OutputTransformer, ChunkingChangesNoBit)
{
    const auto input = Signals::whiteNoise (1, 5000, 0xb1, 3.0f);
    const auto whole = Unit (48000.0).run (input, 5000);

    for (const auto length : { 1, 2, 31, 255, 256, 257, 1000 })
        EXPECT_TRUE (sameBits (whole, Unit (48000.0).run (input, length))) << length;
}

TEST (OutputTransformer, SilenceLeavesATinyConstant)
{
    const auto rate = 48000.0;
    const auto output = Unit (rate).run (Signals::silence (1, 4000), 500);

    // tanh (0.002) - 0.002 is -0.002^3 / 3; over v = 90 T / 0.001, times 0.4, through the differentiator's 1 - B.
    const auto v = 90.0 / rate / 0.001;
    const auto constant = 0.4 * (0.002 * 0.002 * 0.002 / 3.0) / v;
    EXPECT_NEAR (static_cast<double> (output.getSample (0, 0)) / constant, 1.0, 1.0e-4)
        << "the first sample has no past";

    const auto settled = constant * (1.0 - std::exp (-1.0 / rate / 0.0025));

    for (const auto i : { 1, 100, 3999 })
        EXPECT_NEAR (static_cast<double> (output.getSample (0, i)) / settled, 1.0, 1.0e-4) << i;

    EXPECT_GT (settled, 0.0);
    EXPECT_LT (settled, 1.0e-10);
}

TEST (OutputTransformer, IsTransparentForASmallOneKilohertzSine)
{
    // While the follower rests on its floor, v y stays small and the differentiator undoes the integrator.
    for (const auto rate : { 44100.0, 96000.0, 705600.0 })
    {
        const auto n = static_cast<int> (rate);
        const auto input = Signals::sine (1, n, rate, 1000.0, 1.0e-4);
        const auto output = Unit (rate).run (input, 4096);
        const auto gain = Signals::amplitudeAt (output.getReadPointer (0, n / 2), n / 2, rate, 1000.0) / 1.0e-4;
        EXPECT_NEAR (Signals::toDb (gain), 0.0, 0.01) << rate;
    }
}

TEST (OutputTransformer, LosesLittleOfALineLevelOneKilohertzSine)
{
    const auto rate = 48000.0;
    const auto output = Unit (rate).run (Signals::sine (1, 48000, rate, 1000.0, 1.0), 480);
    const auto gain = Signals::amplitudeAt (output.getReadPointer (0, 24000), 24000, rate, 1000.0);
    EXPECT_NEAR (Signals::toDb (gain), 0.0, 0.1);
}

TEST (OutputTransformer, SaturatesLowFrequenciesFirst)
{
    const auto rate = 48000.0;

    for (const auto level : { 1.0, 10.0 })
    {
        const auto low = distortion (Unit (rate).run (Signals::sine (1, 96000, rate, 50.0, level), 512), rate, 50.0);
        const auto high =
            distortion (Unit (rate).run (Signals::sine (1, 96000, rate, 5000.0, level), 512), rate, 5000.0);
        EXPECT_GT (low, 10.0 * high) << level;
    }
}

TEST (OutputTransformer, OffsetMakesEvenHarmonics)
{
    const auto rate = 48000.0;
    const auto output = Unit (rate).run (Signals::sine (1, 96000, rate, 50.0, 1.0), 512);
    const auto* tail = output.getReadPointer (0, 48000);

    // A curve symmetric to the origin would leave nothing at twice the frequency but float roundings.
    EXPECT_GT (Signals::amplitudeAt (tail, 48000, rate, 100.0), 1.0e-5);
    EXPECT_GT (Signals::amplitudeAt (tail, 48000, rate, 150.0), Signals::amplitudeAt (tail, 48000, rate, 100.0));
}

TEST (OutputTransformer, FloorOfTheFollowerBoundsTheKnee)
{
    const auto rate = 48000.0;
    Plain plain (rate);

    for (int i = 0; i < 1000; ++i)
        plain.tick (0.0f);

    EXPECT_DOUBLE_EQ (plain.largestV, 90.0 / rate / 0.001);

    // Below the floor the knee no longer moves with the level: the gain for a constant-knee sine of half the size is
    // the same. Far above it the follower lets the knee follow, and distortion stops depending on the level.
    const auto thd = [rate] (double level)
    { return distortion (Unit (rate).run (Signals::sine (1, 96000, rate, 50.0, level), 512), rate, 50.0); };

    EXPECT_GT (thd (0.0002), 1.5 * thd (0.0001)) << "a fixed curve distorts more with level";
    EXPECT_NEAR (thd (2.0) / thd (1.0), 1.0, 0.01) << "a knee that follows the level does not";
}

TEST (OutputTransformer, NearlyTheSameAtAnotherRate)
{
    // A smooth signal at two rates: all constants scale with T. The integrator is a sum, off by half a sample.
    const auto level = 1.0, f = 100.0;
    const auto slow = Unit (96000.0).run (Signals::sine (1, 96000, 96000.0, f, level), 512);
    const auto fast = Unit (384000.0).run (Signals::sine (1, 384000, 384000.0, f, level), 512);

    for (int k = 1; k <= 5; k += 2)
    {
        const auto a = Signals::amplitudeAt (slow.getReadPointer (0, 48000), 48000, 96000.0, k * f);
        const auto b = Signals::amplitudeAt (fast.getReadPointer (0, 192000), 192000, 384000.0, k * f);
        EXPECT_NEAR (Signals::toDb (a / b), 0.0, 0.1) << "harmonic " << k;
    }
}

TEST (OutputTransformer, ChannelsDoNotTouchEachOther)
{
    const auto rate = 48000.0;
    const auto a = Signals::whiteNoise (1, 2000, 0xb2, 2.0f), b = Signals::whiteNoise (1, 2000, 0xb3, 0.1f);

    OutputTransformer shared;
    shared.prepare (1.0 / rate);
    OutputChannelState stateA (1.0 / rate), stateB (1.0 / rate);
    auto x = a, y = b;

    for (int done = 0; done < 2000; done += 250)
    {
        shared.process (x.getWritePointer (0, done), 250, stateA);
        shared.process (y.getWritePointer (0, done), 250, stateB);
    }

    EXPECT_TRUE (sameBits (x, Unit (rate).run (a, 250)));
    EXPECT_TRUE (sameBits (y, Unit (rate).run (b, 250)));
}

TEST (OutputTransformer, AnEmptyBlockChangesNothing)
{
    Unit unit (48000.0);
    unit.run (Signals::whiteNoise (1, 100, 0xb4), 100);
    const auto before = unit.state;
    unit.transformer.process (nullptr, 0, unit.state);
    EXPECT_EQ (unit.state.flux, before.flux);
    EXPECT_EQ (unit.state.envelope, before.envelope);
    EXPECT_EQ (unit.state.lastOut, before.lastOut);
}

TEST (OutputTransformer, ANewStateHealsANan)
{
    const auto rate = 48000.0;
    Unit unit (rate);
    auto poison = Signals::silence (1, 10);
    poison.setSample (0, 3, std::nanf (""));
    EXPECT_FALSE (Signals::allFinite (unit.run (poison, 10)));
    EXPECT_FALSE (Signals::allFinite (unit.run (Signals::silence (1, 10), 10)));
    unit.state = OutputChannelState (1.0 / rate);
    EXPECT_TRUE (Signals::allFinite (unit.run (Signals::whiteNoise (1, 600, 0xb5), 100)));
}
