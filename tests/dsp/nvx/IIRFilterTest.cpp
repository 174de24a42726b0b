// SPDX-License-Identifier: GPL-3.0-or-later
#include "dsp/nvx/IIRFilter.h"

#include "support/Samples.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <chrono>
#include <cmath>
#include <complex>
#include <limits>
#include <string>
#include <thread>
#include <vector>

namespace
{
using Samples::whiteNoise;

using Complex = std::complex<double>;

constexpr double pi = 3.141592653589793;

// An analogue second-order section with its cut-off at s = j: (n2 s^2 + n1 s + n0) / (d2 s^2 + d1 s + d0).
struct Analogue
{
    double n2, n1, n0, d2, d1, d0;

    Complex at (Complex s) const { return ((n2 * s + n1) * s + n0) / ((d2 * s + d1) * s + d0); }
};

Analogue prototype (int type, double q, double A)
{
    // A shelf's damping, from its slope: slope 1 gives sqrt (2), the steepest without an overshoot.
    const double shelfDamping = std::sqrt (A) * std::sqrt ((A + 1.0 / A) * (1.0 / q - 1.0) + 2.0);

    switch (type)
    {
        case 0: return { 1.0, 0.0, 0.0, 1.0, 1.0 / q, 1.0 };
        case 1: return { 0.0, 0.0, 1.0, 1.0, 1.0 / q, 1.0 };
        case 2: return { 1.0, A / q, 1.0, 1.0, 1.0 / (A * q), 1.0 };
        case 3: return { 1.0, -1.0 / q, 1.0, 1.0, 1.0 / q, 1.0 };
        case 4: return { 0.0, 1.0 / q, 0.0, 1.0, 1.0 / q, 1.0 };
        case 5: return { A, A * shelfDamping, A * A, A, shelfDamping, 1.0 };
        default: return { A * A, A * shelfDamping, A, 1.0, shelfDamping, A };
    }
}

using Five = std::array<double, 5>; // b0, b1, b2, a1, a2

// s = (1 - 1/z) / (1 + 1/z) / tan (pi cutoff / rate), multiplied out.
Five bilinear (const Analogue& h, double cutoff, double rate)
{
    const double c = 1.0 / std::tan (pi * cutoff / rate);
    const double a0 = h.d2 * c * c + h.d1 * c + h.d0;
    return { (h.n2 * c * c + h.n1 * c + h.n0) / a0, 2.0 * (h.n0 - h.n2 * c * c) / a0,
             (h.n2 * c * c - h.n1 * c + h.n0) / a0, 2.0 * (h.d0 - h.d2 * c * c) / a0,
             (h.d2 * c * c - h.d1 * c + h.d0) / a0 };
}

Five valuesOf (const NVX::BiquadCoefficients& c)
{
    return { static_cast<double> (c.b0), static_cast<double> (c.b1), static_cast<double> (c.b2),
             static_cast<double> (c.a1), static_cast<double> (c.a2) };
}

// The nearest float is at most 2^-24 of the value away; the 1e-14 covers the double arithmetic of both sides.
bool isRoundedToFloat (double stored, double exact)
{
    return std::fabs (stored - exact) <= std::ldexp (std::fabs (exact), -24) * 1.0001 + 1.0e-14;
}

void expectRounded (const NVX::BiquadCoefficients& stored, const Five& exact)
{
    const auto values = valuesOf (stored);

    for (std::size_t i = 0; i < values.size(); ++i)
        EXPECT_TRUE (isRoundedToFloat (values[i], exact[i]))
            << "coefficient " << i << " is " << values[i] << " and should be " << exact[i];
}

double rootInFloat (double gain) { return static_cast<double> (std::sqrt (static_cast<float> (gain))); }

std::vector<float> impulseResponse (NVX::IIRFilter& filter, int length)
{
    std::vector<float> h (static_cast<std::size_t> (length), 0.0f);
    h[0] = 1.0f;
    filter.process (h.data(), length, 0);
    return h;
}

Complex responseAt (const std::vector<float>& h, double frequency, double rate)
{
    const Complex zInverse = std::exp (Complex (0.0, -2.0 * pi * frequency / rate));
    Complex sum = 0.0;

    for (auto y = h.rbegin(); y != h.rend(); ++y)
        sum = static_cast<double> (*y) + zInverse * sum;

    return sum;
}

bool isGuarded (int type) { return type == 2 || type == 5 || type == 6; }

bool equal (const NVX::BiquadCoefficients& a, const NVX::BiquadCoefficients& b) { return valuesOf (a) == valuesOf (b); }

//==============================================================================
class IIRFilterOfType : public testing::TestWithParam<int>
{
};

TEST_P (IIRFilterOfType, CoefficientsAreTheBilinearTransformRoundedToFloat)
{
    for (const double rate : { 44100.0, 96000.0, 705600.0 })
        for (const double cutoff : { 3.0, 100.0, 1000.0, 12000.0, 20000.0 })
            for (const double q : { 0.3, 0.5, 1.0, 1.2 })
                for (const double gain : { 0.954992586021436, 0.9772372209558107, 1.1220184543019633, 2.0, 0.5 })
                {
                    SCOPED_TRACE (std::to_string (cutoff) + " Hz, Q " + std::to_string (q) + ", gain "
                                  + std::to_string (gain) + ", rate " + std::to_string (rate));
                    NVX::IIRFilter filter (GetParam(), cutoff, q, gain);
                    filter.setSampleRate (1, rate);
                    expectRounded (filter.coefficients,
                                   bilinear (prototype (GetParam(), q, rootInFloat (gain)), cutoff, rate));
                    EXPECT_TRUE (equal (filter.records[0].coefficients, filter.coefficients));
                }
}

TEST_P (IIRFilterOfType, ProcessedResponseIsThatOfTheAnalogueForm)
{
    for (const double rate : { 44100.0, 96000.0 })
        for (const double cutoff : { 1000.0, 12000.0 })
        {
            NVX::IIRFilter filter (GetParam(), cutoff, 0.7, 1.9953);
            filter.setSampleRate (1, rate);
            const auto h = impulseResponse (filter, 8192);
            const auto analogue = prototype (GetParam(), 0.7, std::sqrt (1.9953));

            for (const double frequency : { 0.0, 200.0, 1000.0, 5000.0, 12000.0, 20000.0, 0.5 * rate - 1.0 })
            {
                const auto measured = responseAt (h, frequency, rate);
                const auto expected =
                    analogue.at ({ 0.0, std::tan (pi * frequency / rate) / std::tan (pi * cutoff / rate) });

                // Float roundings of 6e-8 that poles this near to 1 raise by up to (rate / (2 pi cutoff))^2, 233.
                EXPECT_NEAR (measured.real(), expected.real(), 5.0e-5) << frequency << " Hz, cutoff " << cutoff;
                EXPECT_NEAR (measured.imag(), expected.imag(), 5.0e-5) << frequency << " Hz, cutoff " << cutoff;
            }
        }
}

TEST_P (IIRFilterOfType, OnlyPeakingAndShelvesLimitTheFrequencyToTwoHertz)
{
    constexpr double rate = 48000.0, q = 0.7, gain = 2.0;
    const auto atTwo = NVX::IIRFilter::design (GetParam(), 2.0, q, gain, rate);
    const auto atHalf = NVX::IIRFilter::design (GetParam(), 0.5, q, gain, rate);
    const auto above = NVX::IIRFilter::design (GetParam(), 3.0, q, gain, rate);

    EXPECT_EQ (equal (atHalf, atTwo), isGuarded (GetParam()));
    EXPECT_FALSE (equal (above, atTwo));

    const double used = isGuarded (GetParam()) ? 2.0 : 0.5;
    expectRounded (atHalf, bilinear (prototype (GetParam(), q, rootInFloat (gain)), used, rate));
}

TEST_P (IIRFilterOfType, KeepsChannelsApart)
{
    const auto left = whiteNoise (512, 0x1ef7), right = whiteNoise (512, 0x419b);
    NVX::IIRFilter filter (GetParam(), 1000.0, 0.7, 2.0), alone (GetParam(), 1000.0, 0.7, 2.0);
    filter.setSampleRate (2, 48000.0);
    alone.setSampleRate (1, 48000.0);

    auto l = left, r = right, expected = right;
    float* channels[] = { l.data(), r.data() };
    filter.processAll (channels, 512);
    alone.process (expected.data(), 512, 0);
    EXPECT_EQ (r, expected);
    EXPECT_NE (filter.records[0].s1, filter.records[1].s1);
}

TEST_P (IIRFilterOfType, SetSampleRateStartsAllChannelsFromSilence)
{
    NVX::IIRFilter filter (GetParam(), 1000.0, 0.7, 2.0);
    filter.setSampleRate (3, 48000.0);
    EXPECT_EQ (filter.getNumRecords(), 3);
    filter.records[1].s1 = filter.records[1].s2 = 1.0f;
    filter.records[1].active = false;

    filter.setSampleRate (2, 96000.0);
    EXPECT_EQ (filter.getNumRecords(), 2);
    EXPECT_EQ (filter.numChannels, 2);
    EXPECT_EQ (filter.sampleRate, 96000.0);
    EXPECT_TRUE (equal (filter.coefficients, NVX::IIRFilter::design (GetParam(), 1000.0, 0.7, 2.0, 96000.0)));

    for (const auto& record : filter.records)
    {
        EXPECT_EQ (record.s1, 0.0f);
        EXPECT_EQ (record.s2, 0.0f);
        EXPECT_TRUE (record.active);
    }
}

TEST_P (IIRFilterOfType, WithoutRecordsPassesTheSignalOn)
{
    const auto noise = whiteNoise (64, 0xc1ea);
    auto samples = noise;
    NVX::IIRFilter filter (GetParam(), 1000.0, 0.7, 2.0);
    filter.process (samples.data(), 64, 0); // before setSampleRate
    EXPECT_EQ (samples, noise);

    for (const int numChannels : { 0, -1 })
    {
        filter.setSampleRate (2, 48000.0);
        filter.setSampleRate (numChannels, 48000.0);
        EXPECT_EQ (filter.getNumRecords(), 0);
        filter.process (samples.data(), 64, 0);
        EXPECT_EQ (samples, noise);
    }

    filter.setSampleRate (2, 48000.0);
    filter.clear();
    EXPECT_EQ (filter.getNumRecords(), 0);
    filter.process (samples.data(), 64, 0);
    EXPECT_EQ (samples, noise);
}

TEST_P (IIRFilterOfType, LeavesChannelsOutOfRangeAlone)
{
    const auto noise = whiteNoise (64, 0x0042);
    NVX::IIRFilter filter (GetParam(), 1000.0, 0.7, 2.0);
    filter.setSampleRate (2, 48000.0);

    for (const int channel : { -1, 2, 1000 })
    {
        auto samples = noise;
        filter.setActive (channel, false);
        filter.process (samples.data(), 64, channel);
        EXPECT_EQ (samples, noise);
    }

    EXPECT_TRUE (filter.records[0].active);
    EXPECT_TRUE (filter.records[1].active);
}

TEST_P (IIRFilterOfType, ServesNoSingleSamplesAndNoDoubleState)
{
    NVX::IIRFilter filter (GetParam(), 1000.0, 0.7, 2.0);
    filter.setSampleRate (1, 48000.0);
    filter.records[0].s1 = 0.5f;
    const auto before = filter.records[0].coefficients;

    EXPECT_EQ (filter.tick (0, 0.375), 0.375);
    filter.setState ({ 1.0, 1.0 }, 0);
    filter.setCoefficients ({ 1.0, 2.0, 3.0, 4.0, 5.0, 6.0 }, 0);

    EXPECT_EQ (filter.getState (0), NVX::FilterState {});
    EXPECT_EQ (filter.getCoefficients (0), NVX::FilterCoefficients {});
    EXPECT_EQ (filter.records[0].s1, 0.5f);
    EXPECT_EQ (filter.records[0].s2, 0.0f);
    EXPECT_TRUE (equal (filter.records[0].coefficients, before));
}

INSTANTIATE_TEST_SUITE_P (AllTypes, IIRFilterOfType, testing::Range (0, 7));

//==============================================================================
double magnitudeAt (int type, double frequency, double q, double gain)
{
    NVX::IIRFilter filter (type, 6000.0, q, gain);
    filter.setSampleRate (1, 48000.0);
    return std::abs (responseAt (impulseResponse (filter, 8192), frequency, 48000.0));
}

constexpr double floatEnough = 2.0e-6; // float roundings, raised by poles at an eighth of the rate by less than 30

TEST (IIRFilter, LandmarksOfEachResponse)
{
    EXPECT_NEAR (magnitudeAt (0, 0.0, 0.8, 4.0), 0.0, floatEnough);
    EXPECT_NEAR (magnitudeAt (0, 6000.0, 0.8, 4.0), 0.8, floatEnough);
    EXPECT_NEAR (magnitudeAt (0, 24000.0, 0.8, 4.0), 1.0, floatEnough);

    EXPECT_NEAR (magnitudeAt (1, 0.0, 0.8, 4.0), 1.0, floatEnough);
    EXPECT_NEAR (magnitudeAt (1, 6000.0, 0.8, 4.0), 0.8, floatEnough);
    EXPECT_NEAR (magnitudeAt (1, 24000.0, 0.8, 4.0), 0.0, floatEnough);

    EXPECT_NEAR (magnitudeAt (2, 0.0, 0.8, 4.0), 1.0, floatEnough);
    EXPECT_NEAR (magnitudeAt (2, 6000.0, 0.8, 4.0), 4.0, 4.0 * floatEnough);
    EXPECT_NEAR (magnitudeAt (2, 24000.0, 0.8, 4.0), 1.0, floatEnough);

    for (const double frequency : { 0.0, 100.0, 3000.0, 6000.0, 20000.0 })
        EXPECT_NEAR (magnitudeAt (3, frequency, 0.8, 4.0), 1.0, floatEnough) << frequency << " Hz";

    EXPECT_NEAR (magnitudeAt (4, 0.0, 3.0, 4.0), 0.0, floatEnough);
    EXPECT_NEAR (magnitudeAt (4, 6000.0, 3.0, 4.0), 1.0, floatEnough);
    EXPECT_NEAR (magnitudeAt (4, 24000.0, 3.0, 4.0), 0.0, floatEnough);

    for (const double gain : { 0.25, 0.9, 1.1, 4.0 })
    {
        const double tolerance = std::max (1.0, gain) * floatEnough;
        EXPECT_NEAR (magnitudeAt (5, 0.0, 1.0, gain), gain, tolerance);
        EXPECT_NEAR (magnitudeAt (5, 6000.0, 1.0, gain), std::sqrt (gain), tolerance);
        EXPECT_NEAR (magnitudeAt (5, 24000.0, 1.0, gain), 1.0, tolerance);
        EXPECT_NEAR (magnitudeAt (6, 0.0, 1.0, gain), 1.0, tolerance);
        EXPECT_NEAR (magnitudeAt (6, 6000.0, 1.0, gain), std::sqrt (gain), tolerance);
        EXPECT_NEAR (magnitudeAt (6, 24000.0, 1.0, gain), gain, tolerance);
    }
}

TEST (IIRFilter, ShelfSlopeOneIsTheSteepestWithoutAnOvershoot)
{
    const auto highest = [] (double slope)
    {
        NVX::IIRFilter filter (6, 3000.0, slope, 4.0);
        filter.setSampleRate (1, 48000.0);
        const auto h = impulseResponse (filter, 2048);
        double largest = 0.0;

        for (double frequency = 3000.0; frequency <= 24000.0; frequency += 100.0)
            largest = std::max (largest, std::abs (responseAt (h, frequency, 48000.0)));

        return largest;
    };

    EXPECT_LT (highest (0.5), 4.0 + 1.0e-5); // float roundings of a gain of 4
    EXPECT_LT (highest (1.0), 4.0 + 1.0e-5);
    EXPECT_GT (highest (1.3), 4.0 + 1.0e-3);
}

TEST (IIRFilter, RootOfTheGainIsTakenInFloat)
{
    int numToldApart = 0;

    for (const int type : { 2, 5, 6 })
        for (double gain = 0.5; gain < 2.0; gain += 0.01)
        {
            const auto stored = NVX::IIRFilter::design (type, 3000.0, 0.7, gain, 48000.0);
            expectRounded (stored, bilinear (prototype (type, 0.7, rootInFloat (gain)), 3000.0, 48000.0));

            const auto inDouble = bilinear (prototype (type, 0.7, std::sqrt (gain)), 3000.0, 48000.0);
            const auto values = valuesOf (stored);

            for (std::size_t i = 0; i < values.size(); ++i)
                numToldApart += isRoundedToFloat (values[i], inDouble[i]) ? 0 : 1;
        }

    EXPECT_GT (numToldApart, 0) << "the gains of this test do not tell a float root from a double one";
}

TEST (IIRFilter, RootOfANegativeGainIsZero)
{
    for (const int type : { 5, 6 })
    {
        const auto c = NVX::IIRFilter::design (type, 3000.0, 0.5, -4.0, 48000.0);
        EXPECT_EQ (c.b0, 0.0f);
        EXPECT_EQ (c.b1, 0.0f);
        EXPECT_EQ (c.b2, 0.0f);
        EXPECT_TRUE (std::isfinite (c.a1)) << "type " << type;
        EXPECT_TRUE (equal (c, NVX::IIRFilter::design (type, 3000.0, 0.5, 0.0, 48000.0)));
    }
}

TEST (IIRFilter, AllPassLimitsItsQ)
{
    const auto allPass = [] (double q) { return NVX::IIRFilter::design (3, 1000.0, q, 1.0, 48000.0); };

    EXPECT_TRUE (equal (allPass (2000.0), allPass (1000.0)));
    EXPECT_FALSE (equal (allPass (500.0), allPass (1000.0)));

    EXPECT_TRUE (equal (allPass (0.0), allPass (0.00001)));
    EXPECT_TRUE (equal (allPass (-1.0), allPass (0.00001)));
    EXPECT_TRUE (equal (allPass (0.000009), allPass (0.00001)));
    EXPECT_FALSE (equal (allPass (0.00002), allPass (0.00001)));
}

TEST (IIRFilter, AllPassTurnsThePhaseHalfwayAtItsFrequency)
{
    NVX::IIRFilter filter (3, 6000.0, 0.8, 1.0);
    filter.setSampleRate (1, 48000.0);
    const auto response = responseAt (impulseResponse (filter, 8192), 6000.0, 48000.0);
    EXPECT_NEAR (response.real(), -1.0, floatEnough);
    EXPECT_NEAR (response.imag(), 0.0, floatEnough);
}

TEST (IIRFilter, ATypeWithoutARowPassesTheSignalOn)
{
    for (const int type : { -1, 7, 8, 9, 17 })
    {
        const auto noise = whiteNoise (64, 0x7e57);
        auto samples = noise;
        NVX::IIRFilter filter (type, 1000.0, 0.7, 2.0);
        filter.setSampleRate (1, 48000.0);
        filter.process (samples.data(), 64, 0);
        EXPECT_EQ (samples, noise) << "type " << type;
    }
}

//==============================================================================
class IIRFilterSteps : public testing::Test
{
protected:
    IIRFilterSteps() { filter.setSampleRate (1, 48000.0); }

    float processOne (float x)
    {
        filter.process (&x, 1, 0);
        return x;
    }

    NVX::IIRFilter filter { 0, 1000.0, 0.7, 1.0 };
};

TEST_F (IIRFilterSteps, FollowTheTransposedDirectForm)
{
    // Worked by hand; every value is a short binary fraction, so the result is exact.
    filter.records[0].coefficients = { 1.0f, 2.0f, 3.0f, 0.5f, 0.25f };
    EXPECT_EQ (processOne (1.0f), 1.0f);
    EXPECT_EQ (filter.records[0].s1, 1.5f);
    EXPECT_EQ (filter.records[0].s2, 2.75f);
    EXPECT_EQ (processOne (0.0f), 1.5f);
    EXPECT_EQ (filter.records[0].s1, 2.0f);
    EXPECT_EQ (filter.records[0].s2, -0.375f);
    EXPECT_EQ (processOne (-1.0f), 1.0f);
    EXPECT_EQ (filter.records[0].s1, -2.875f);
    EXPECT_EQ (filter.records[0].s2, -3.25f);
}

TEST_F (IIRFilterSteps, RoundEverySumToFloatFromLeftToRight)
{
    const float half = std::ldexp (1.0f, -24); // half the spacing of floats above 1: lost when added alone

    filter.records[0].coefficients = { 1.0f, half, 0.0f, -half, 0.0f };
    filter.records[0].s2 = 1.0f;
    EXPECT_EQ (processOne (1.0f), 1.0f);
    EXPECT_EQ (filter.records[0].s1, 1.0f); // (1 + half) + half; the halves first would give 1 + 2 half

    // The output that the states see is the rounded one.
    filter.records[0].coefficients = { 1.0f, 0.0f, 0.0f, 1.0f, 0.0f };
    filter.records[0].s1 = 1.5f * half;
    filter.records[0].s2 = 0.0f;
    EXPECT_EQ (processOne (1.0f), 1.0f + 2.0f * half);
    EXPECT_EQ (filter.records[0].s1, -(1.0f + 2.0f * half));
}

TEST_F (IIRFilterSteps, SetStatesNotAboveTheGuardToZeroAtTheEndOfABlock)
{
    constexpr float guard = 1.0e-8f;
    const float above = std::nextafter (guard, 1.0f);

    // b1 and b2 put the sample itself into the two states.
    for (const float sign : { 1.0f, -1.0f })
    {
        filter.records[0].coefficients = { 0.0f, 1.0f, 0.0f, 0.0f, 0.0f };
        filter.records[0].s1 = filter.records[0].s2 = 0.0f;
        processOne (sign * guard);
        EXPECT_EQ (filter.records[0].s1, 0.0f);
        processOne (sign * above);
        EXPECT_EQ (filter.records[0].s1, sign * above);

        filter.records[0].coefficients = { 0.0f, 0.0f, 1.0f, 0.0f, 0.0f };
        filter.records[0].s1 = filter.records[0].s2 = 0.0f;
        processOne (sign * guard);
        EXPECT_EQ (filter.records[0].s2, 0.0f);
        processOne (sign * above);
        EXPECT_EQ (filter.records[0].s2, sign * above);
    }
}

TEST_F (IIRFilterSteps, KeepSmallStatesInsideABlock)
{
    filter.records[0].coefficients = { 0.0f, 1.0f, 0.0f, 0.0f, 0.0f }; // one sample of delay
    float samples[] = { 1.0e-9f, 1.0e-9f, 1.0e-9f };
    filter.process (samples, 3, 0);
    EXPECT_EQ (samples[0], 0.0f);
    EXPECT_EQ (samples[1], 1.0e-9f);
    EXPECT_EQ (samples[2], 1.0e-9f);
    EXPECT_EQ (processOne (0.0f), 0.0f); // the guard took what was still in the state
}

TEST_F (IIRFilterSteps, RecoverFromAStateThatIsNotANumber)
{
    processOne (std::numeric_limits<float>::quiet_NaN());
    EXPECT_EQ (filter.records[0].s1, 0.0f);
    EXPECT_EQ (filter.records[0].s2, 0.0f);
    EXPECT_TRUE (std::isfinite (processOne (1.0f)));
}

TEST (IIRFilter, DiesAwayToExactZeros)
{
    NVX::IIRFilter filter (1, 1000.0, 0.7, 1.0);
    filter.setSampleRate (1, 48000.0);
    impulseResponse (filter, 64);

    const std::vector<float> silence (6400, 0.0f); // e^-598 of the impulse's tail
    auto tail = silence;
    filter.process (tail.data(), 6400, 0);
    EXPECT_NE (tail, silence);

    tail = silence;
    filter.process (tail.data(), 6400, 0);
    EXPECT_EQ (tail, silence);
    EXPECT_EQ (filter.records[0].s1, 0.0f);
    EXPECT_EQ (filter.records[0].s2, 0.0f);
}

//==============================================================================
TEST (IIRFilter, AnInactiveChannelIsSkippedUnchanged)
{
    const auto noise = whiteNoise (64, 0x5111);
    NVX::IIRFilter filter (6, 1000.0, 0.7, 2.0);
    filter.setSampleRate (2, 48000.0);
    filter.records[1].s1 = 0.5f;
    filter.records[1].s2 = 1.0e-9f; // not even the guard touches it
    filter.setActive (1, false);

    auto left = noise, right = noise;
    float* channels[] = { left.data(), right.data() };
    filter.processAll (channels, 64);
    EXPECT_NE (left, noise);
    EXPECT_EQ (right, noise);
    EXPECT_EQ (filter.records[1].s1, 0.5f);
    EXPECT_EQ (filter.records[1].s2, 1.0e-9f);

    filter.setActive (1, true);
    filter.process (right.data(), 64, 1);
    EXPECT_NE (right, noise);
}

TEST (IIRFilter, SetResponseReplacesCoefficientsAndKeepsStates)
{
    NVX::IIRFilter filter (6, 1000.0, 0.7, 2.0);
    filter.setSampleRate (2, 48000.0);
    filter.records[1].s1 = 0.5f;
    filter.setResponse (3000.0, 0.9, 0.5);

    EXPECT_EQ (filter.frequency, 3000.0);
    EXPECT_EQ (filter.q, 0.9);
    EXPECT_EQ (filter.gain, 0.5);
    EXPECT_EQ (filter.records[1].s1, 0.5f);

    const auto expected = NVX::IIRFilter::design (6, 3000.0, 0.9, 0.5, 48000.0);
    EXPECT_TRUE (equal (filter.coefficients, expected));
    EXPECT_TRUE (equal (filter.records[0].coefficients, expected));
    EXPECT_TRUE (equal (filter.records[1].coefficients, expected));
}

TEST (IIRFilter, WaitsForTheLockOfItsRecord)
{
    NVX::IIRFilter filter (6, 1000.0, 0.7, 2.0), free (6, 1000.0, 0.7, 2.0);
    filter.setSampleRate (1, 48000.0);
    free.setSampleRate (1, 48000.0);

    auto samples = whiteNoise (64, 0x10c), expected = samples;
    free.process (expected.data(), 64, 0);

    std::atomic<bool> started { false }, finished { false };
    filter.records[0].lock.lock();
    EXPECT_FALSE (filter.records[0].lock.tryLock());

    std::thread other (
        [&]
        {
            started = true;
            filter.process (samples.data(), 64, 0);
            finished = true;
        });

    while (! started)
        std::this_thread::yield();

    std::this_thread::sleep_for (std::chrono::milliseconds (20)); // far more than the 21 tries take
    EXPECT_FALSE (finished);

    filter.records[0].lock.unlock();
    other.join();
    EXPECT_EQ (samples, expected);
    EXPECT_TRUE (filter.records[0].lock.tryLock()); // and it was given back
    filter.records[0].lock.unlock();
}

TEST (IIRFilter, TakesNewResponsesWhileItRuns)
{
    NVX::IIRFilter filter (2, 1000.0, 0.7, 2.0);
    filter.setSampleRate (1, 48000.0);
    std::atomic<bool> done { false };

    std::thread control (
        [&]
        {
            for (int i = 0; i < 2000; ++i)
                filter.setResponse (500.0 + i, 0.7, i % 2 == 0 ? 2.0 : 0.5);

            done = true;
        });

    bool allFinite = true;

    while (! done)
    {
        auto samples = whiteNoise (64, 0x7ead);
        filter.process (samples.data(), 64, 0);

        for (const float y : samples)
            allFinite = allFinite && std::isfinite (y);
    }

    control.join();
    EXPECT_TRUE (allFinite);

    // Once its states have died away, it is the filter of the last response and nothing else.
    std::vector<float> silence (12800, 0.0f);
    filter.process (silence.data(), 12800, 0);

    NVX::IIRFilter last (2, 500.0 + 1999, 0.7, 0.5);
    last.setSampleRate (1, 48000.0);
    EXPECT_EQ (impulseResponse (filter, 256), impulseResponse (last, 256));
}

} // namespace
