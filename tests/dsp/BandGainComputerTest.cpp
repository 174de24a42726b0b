// SPDX-License-Identifier: GPL-3.0-or-later
#include "dsp/BandCompressor.h"
#include "dsp/PlainSolver.h"
#include "support/Signals.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <limits>
#include <random>
#include <string>
#include <vector>

namespace
{
constexpr double fourDecibels = 1.5848931924611136;
constexpr float thirtyDecibels = 31.622776601683793f;

template <typename T>
bool same (T a, T b)
{
    return std::memcmp (&a, &b, sizeof (T)) == 0 || (std::isnan (a) && std::isnan (b));
}

/** Puts a band's circuit values where the settings would put them. */
void setCircuit (BandCompressor& band, int ratio, double attack, double recovery, bool automatic)
{
    band.transferTable = &DetectorCurves::forRatio (ratio);
    band.attackOhms = attack;
    band.recoveryOhms = recovery;
    band.autoRecovery = automatic;
    band.attackCoefficient = band.mainCapacitor.coefficient (attack);
    band.recoveryCoefficient = band.mainCapacitor.coefficient (recovery);
}

/** A band and the plain solver at the same settings. */
struct Pair
{
    Pair (double rate, int ratio, int attack, int recovery)
        : band (1), plain (rate, ratio, Plain::attackOhms[attack], Plain::recoveryOhms[recovery], recovery == 4)
    {
        band.prepare (rate, 1, 512);
        setCircuit (band, ratio, Plain::attackOhms[attack], Plain::recoveryOhms[recovery], recovery == 4);
    }

    /** Both over the same samples; the first sample that differs fails the test. */
    ::testing::AssertionResult run (const float* detector, const float* drive, int n)
    {
        std::vector<float> a (static_cast<std::size_t> (n)), b (a.size());
        band.computeGain (detector, drive, a.data(), n);
        plain.run (detector, drive, b.data(), n);

        for (int i = 0; i < n; ++i)
            if (! same (a[size_t (i)], b[size_t (i)]))
                return ::testing::AssertionFailure() << "sample " << i << ", detector " << detector[i] << ": gain "
                                                     << a[size_t (i)] << " against " << b[size_t (i)];

        return sameState();
    }

    ::testing::AssertionResult idle (int n)
    {
        band.idleAdvance (n);
        plain.idle (n);
        return sameState();
    }

    ::testing::AssertionResult sameState() const
    {
        if (! same (band.mainCapacitor.voltage, plain.capV))
            return ::testing::AssertionFailure() << "main " << band.mainCapacitor.voltage << " V, " << plain.capV;

        if (! same (band.auxCapacitor.voltage, plain.auxV))
            return ::testing::AssertionFailure() << "aux " << band.auxCapacitor.voltage << " V, " << plain.auxV;

        if (! same (band.lastGain, plain.lastGain))
            return ::testing::AssertionFailure() << "lastGain " << band.lastGain << ", " << plain.lastGain;

        if (! same (band.makeupSmooth, plain.s))
            return ::testing::AssertionFailure() << "make-up " << band.makeupSmooth << ", " << plain.s;

        if (! same (band.meterGain, plain.m))
            return ::testing::AssertionFailure() << "meter " << band.meterGain << ", " << plain.m;

        return ::testing::AssertionSuccess();
    }

    BandCompressor band;
    Plain::Solver plain;
};

std::vector<float> noise (int n, std::uint32_t seed, float amplitude)
{
    const auto buffer = Signals::whiteNoise (1, n, seed, amplitude);
    return { buffer.getReadPointer (0), buffer.getReadPointer (0) + n };
}

/** A curve with one value everywhere: the target voltage then does not depend on the gain. */
struct FlatCurve
{
    explicit FlatCurve (float volts) : entries (DetectorCurve::numEntries, volts) { curve.entries = entries.data(); }

    std::vector<float> entries;
    DetectorCurve curve = DetectorCurves::forRatio (0);
};

/** Runs a band on a detector of one value, at 30 dB of drive, and returns the last gain. */
float runConstant (BandCompressor& band, float detector, int n)
{
    const std::vector<float> in (512, detector), drive (512, thirtyDecibels);
    std::vector<float> out (512);
    int last = 0;

    for (int done = 0; done < n; done += last)
    {
        last = std::min (512, n - done);
        band.computeGain (in.data(), drive.data(), out.data(), last);
    }

    return out[static_cast<std::size_t> (last - 1)];
}

double dbOf (double gain) { return Signals::toDb (gain); }
} // namespace

// ---- construction and preparing --------------------------------------------------------------

TEST (BandGainComputer, IsConstructedAtItsDefaults)
{
    BandCompressor band (2);
    EXPECT_EQ (BandCompressor::floorVoltage, 0.1);
    EXPECT_EQ (band.mainCapacitor.capacitance, 0.000022);
    EXPECT_EQ (band.mainCapacitor.voltage, 0.1);
    EXPECT_EQ (band.auxCapacitor.capacitance, 0.000125);
    EXPECT_EQ (band.auxCapacitor.voltage, 0.0);
    EXPECT_EQ (band.attackOhms, 270.0);
    EXPECT_EQ (band.recoveryOhms, 71900.0);
    EXPECT_TRUE (band.autoRecovery);
    EXPECT_EQ (band.attackCoefficient, band.mainCapacitor.coefficient (270.0));
    EXPECT_EQ (band.recoveryCoefficient, band.mainCapacitor.coefficient (71900.0));
    EXPECT_EQ (band.auxLeakCoef, band.auxCapacitor.coefficient (68000.0));
    EXPECT_EQ (band.thresholdGain, 15.848931924611142);
    EXPECT_NEAR (dbOf (band.thresholdGain), 24.0, 1.0e-12);
    EXPECT_EQ (static_cast<float> (band.restGain), 0.0206490457f);
    EXPECT_EQ (band.restGain, static_cast<double> (Plain::law (0.1f)));
    EXPECT_EQ (band.meterGain, band.restGain);
    EXPECT_EQ (band.meterValue(), 1.0);
    EXPECT_FALSE (band.autoMakeup);

    // The curve of 1.5:1 with the resistors of 3:1 on record: nothing reads them.
    EXPECT_EQ (band.transferTable, &DetectorCurves::forRatio (0));
    EXPECT_EQ (band.ratioFeedbackOhms, 39000.0);
    EXPECT_EQ (band.ratioGroundOhms, 3300.0);
    EXPECT_EQ (band.ratioParallelOhms, 3042.553191489362);
}

TEST (BandGainComputer, SectionsStandAtTheirOwnResistances)
{
    EXPECT_EQ (BandCompressor (0).mainCapacitor.resistance, 82000.0);
    EXPECT_EQ (BandCompressor (0).auxCapacitor.resistance, 68000.0);
}

TEST (BandGainComputer, PreparingComputesEverythingFromTheRate)
{
    for (const auto rate : { 44100.0, 48000.0, 192000.0, 768000.0 })
    {
        BandCompressor band (0);
        band.mainCapacitor.voltage = 3.0;
        band.auxCapacitor.voltage = 2.0;
        band.lastGain = 0.5;
        band.makeupSmooth = 7.0;
        band.meterGain = 0.01;
        band.prepare (rate, 2, 64);

        const auto T = 1.0 / rate;
        EXPECT_EQ (band.attackCoefficient, T / (0.000022 * 270.0 + T));
        EXPECT_EQ (band.recoveryCoefficient, T / (0.000022 * 71900.0 + T));
        EXPECT_EQ (band.auxLeakCoef, T / (0.000125 * 68000.0 + T));

        // 1 - exp loses some digits of so small an exponent: compared to 1e-10 of the value by another formula.
        EXPECT_NEAR (band.meterA / -std::expm1 (-T / 0.4), 1.0, 1.0e-9);
        EXPECT_NEAR (band.makeupA / -std::expm1 (-T / 2.0), 1.0, 1.0e-9);
        EXPECT_EQ (band.meterB, 1.0 - band.meterA);
        EXPECT_EQ (band.makeupB, 1.0 - band.makeupA);

        EXPECT_EQ (band.mainCapacitor.voltage, 0.0) << "not the floor voltage";
        EXPECT_EQ (band.auxCapacitor.voltage, 0.0);
        EXPECT_EQ (band.lastGain, 1.0);
        EXPECT_EQ (band.makeupSmooth, 1.0);
        EXPECT_EQ (band.meterGain, 0.01) << "the meter runs on";
    }
}

TEST (BandGainComputer, AveragesTakeTheirTimeAtEveryRate)
{
    // Bit for bit by their formulas, also when a band is prepared again at another rate.
    BandCompressor band (0);

    for (const auto rate : { 48000.0, 192000.0, 44100.0 })
    {
        band.prepare (rate, 2, 64);
        const auto T = 1.0 / rate;
        EXPECT_EQ (1.0 - std::exp (-T / 0.4), band.meterA) << rate;
        EXPECT_EQ (1.0 - std::exp (-0.5 * T), band.makeupA) << rate;
    }

    // And in plain numbers: 63.2 % of a step after 0.4 s, and after 2 s.
    band.prepare (192000.0, 2, 64);
    EXPECT_NEAR (1.0 - std::exp (-1.0), 1.0 - std::pow (1.0 - band.meterA, 0.4 * 192000.0), 1.0e-9);
    EXPECT_NEAR (1.0 - std::exp (-1.0), 1.0 - std::pow (1.0 - band.makeupA, 2.0 * 192000.0), 1.0e-9);
}

TEST (BandGainComputer, RestGainIsNeverComputedAgain)
{
    BandCompressor band (0);
    band.restGain = 0.5;
    band.prepare (48000.0, 1, 64);
    EXPECT_EQ (band.restGain, 0.5);
}

TEST (BandGainComputer, RisesFromEmptyToRestAfterPreparing)
{
    Pair pair (48000.0, 2, 2, 2);
    pair.band.bandActive = pair.plain.bandActive = false;

    // 82 kilohm: 1.804 s. The voltage is read no lower than the floor, so the gain stands at rest all the time.
    const std::vector<float> drive (48000, thirtyDecibels), detector (48000, 0.0f);
    std::vector<float> gain (48000);
    pair.band.computeGain (detector.data(), drive.data(), gain.data(), 48000);
    EXPECT_NEAR (pair.band.mainCapacitor.voltage, 0.1 * (1.0 - std::exp (-1.0 / 1.804)), 1.0e-6);
    EXPECT_EQ (*std::min_element (gain.begin(), gain.end()), *std::max_element (gain.begin(), gain.end()));
    EXPECT_NEAR (dbOf (static_cast<double> (gain[0])), 0.298, 0.0005);
}

// ---- bit for bit against the plain solver ----------------------------------------------------

namespace
{
struct Settings
{
    int ratio, attack, recovery;
};

class SolverAtSettings : public ::testing::TestWithParam<int>
{
};

std::vector<float> programme (const std::string& kind, int n, std::uint32_t seed)
{
    auto x = noise (n, seed, 1.0f);

    for (int i = 0; i < n; ++i)
    {
        auto& v = x[static_cast<std::size_t> (i)];

        if (kind == "quiet")
            v *= 0.001f;
        else if (kind == "loud")
            v *= 24.0f;
        else if (kind == "overload")
            v *= 1.0e5f;
        else if (kind == "bursts")
            v *= (i / 300) % 3 == 0 ? 30.0f : 0.02f;
        else if (kind == "impulses")
            v = i % 97 == 0 ? v * 400.0f : 0.0f;
        else if (kind == "sine")
            v = static_cast<float> (3.0 * std::sin (i * 0.05));
        else if (kind == "silence")
            v = 0.0f;
    }

    return x;
}

const char* const kinds[] = { "quiet", "normal", "loud", "overload", "bursts", "impulses", "sine", "silence" };
} // namespace

/** The parameter counts ratio rows 0 to 4. */
INSTANTIATE_TEST_SUITE_P (AllRatios, SolverAtSettings, ::testing::Range (0, 5));

TEST_P (SolverAtSettings, GainIsThePlainSolversBitForBit)
{
    const int lengths[] = { 1, 7, 64, 300, 2, 126 }; // 500 a round
    std::vector<float> drive;

    for (int i = 0; i < 500; ++i)
        drive.push_back (thirtyDecibels * (1.0f + 0.001f * static_cast<float> (i)));

    std::uint32_t seed = 100u * static_cast<std::uint32_t> (GetParam());

    for (int attack = 0; attack < 4; ++attack)
    {
        for (int recovery = 0; recovery < 5; ++recovery)
        {
            for (const auto* kind : kinds)
            {
                Pair pair ((attack + recovery) % 2 == 0 ? 48000.0 : 176400.0, GetParam(), attack, recovery);
                pair.band.thresholdGain = pair.plain.K = attack % 2 == 0 ? 15.848931924611142 : 1.2345;
                pair.band.autoMakeup = pair.plain.autoMakeup = recovery % 2 == 0;
                const auto x = programme (kind, 500, ++seed);
                int done = 0;

                for (const auto n : lengths)
                {
                    ASSERT_TRUE (pair.run (x.data() + done, drive.data() + done, n))
                        << kind << ", attack " << attack << ", recovery " << recovery << ", seed " << seed;
                    done += n;
                }
            }
        }
    }
}

TEST_P (SolverAtSettings, ControlsMayChangeBetweenBlocks)
{
    Pair pair (96000.0, GetParam(), 0, 4);
    const std::vector<float> drive (256, 40.0f);
    std::mt19937 random (0xbeefu + static_cast<unsigned> (GetParam()));

    for (int block = 0; block < 300; ++block)
    {
        auto& band = pair.band;
        auto& plain = pair.plain;
        const auto rate = 96000.0, T = 1.0 / rate;

        if (block % 4 == 0)
            band.bandActive = plain.bandActive = random() % 4 != 0;

        if (block % 7 == 0)
            band.autoMakeup = plain.autoMakeup = random() % 2 == 0;

        if (block % 5 == 0)
        {
            const auto attack = random() % 4, recovery = random() % 5, ratio = random() % 5;
            setCircuit (band, static_cast<int> (ratio), Plain::attackOhms[attack], Plain::recoveryOhms[recovery],
                        recovery == 4);
            plain.data = &DetectorCurves::forRatio (static_cast<int> (ratio));
            plain.attackCoefficient = T / (0.000022 * Plain::attackOhms[attack] + T);
            plain.recoveryCoefficient = T / (0.000022 * Plain::recoveryOhms[recovery] + T);
            plain.auxChargeCoefficient = T / (0.000125 * Plain::recoveryOhms[recovery] + T);
            plain.autoRecovery = recovery == 4;
            band.thresholdGain = plain.K = std::pow (10.0, (random() % 40) * 0.05);
        }

        if (block % 11 == 10)
        {
            ASSERT_TRUE (pair.idle (static_cast<int> (random() % 300))) << "idle before block " << block;
        }

        const auto n = static_cast<int> (random() % 257);
        const auto x = noise (256, random(), block % 3 == 0 ? 20.0f : 0.3f);
        ASSERT_TRUE (pair.run (x.data(), drive.data(), n)) << "block " << block;
    }
}

TEST_P (SolverAtSettings, BlockLengthChangesNoBit)
{
    const auto x = noise (4000, 77, 10.0f);
    const std::vector<float> drive (4000, thirtyDecibels);
    std::vector<float> whole (4000), pieces (4000);

    Pair a (48000.0, GetParam(), 1, 4), b (48000.0, GetParam(), 1, 4);
    a.band.computeGain (x.data(), drive.data(), whole.data(), 4000);

    for (int done = 0, n = 1; done < 4000; done += n, n = std::min (n * 2 % 509 + 1, 4000 - done))
        b.band.computeGain (x.data() + done, drive.data() + done, pieces.data() + done, n);

    for (std::size_t i = 0; i < 4000; ++i)
        ASSERT_TRUE (same (whole[i], pieces[i])) << i;

    EXPECT_EQ (a.band.mainCapacitor.voltage, b.band.mainCapacitor.voltage);
    EXPECT_EQ (a.band.lastGain, b.band.lastGain);
}

TEST (BandGainComputer, RunsSixPassesNeitherFiveNorSeven)
{
    // A full-scale burst into the steepest curve and the fastest attack does not converge: the sixth value stands.
    const auto x = noise (2000, 0x66, 24.0f);
    const std::vector<float> drive (2000, thirtyDecibels);

    Pair pair (48000.0, 4, 0, 4);
    ASSERT_TRUE (pair.run (x.data(), drive.data(), 2000));
    EXPECT_EQ (BandCompressor::maxPasses, 6);

    for (const auto passes : { 5, 7 })
    {
        Plain::Solver other (48000.0, 4, 10.0, 3900.0, true);
        other.mostPasses = passes;
        std::vector<float> gain (2000);
        other.run (x.data(), drive.data(), gain.data(), 2000);
        EXPECT_NE (other.capV, pair.band.mainCapacitor.voltage) << passes << " passes would go unnoticed";
    }
}

TEST (BandGainComputer, StopsEarlyOnceTheGainStandsStill)
{
    // At rest the second evaluation repeats the first; the plain solver counts what the test lets it do.
    Pair pair (48000.0, 2, 2, 2);
    const std::vector<float> silence (512, 0.0f), drive (512, thirtyDecibels);

    for (int i = 0; i < 400; ++i)
        ASSERT_TRUE (pair.run (silence.data(), drive.data(), 512));

    const auto before = pair.plain.evaluations;
    ASSERT_TRUE (pair.run (silence.data(), drive.data(), 512));
    EXPECT_EQ (pair.plain.evaluations - before, 512);
}

TEST (BandGainComputer, OverloadFarBeyondTheCurveLeavesTheCapacitorFinite)
{
    // The guess flips between no charge and an infinite one. The sixth pass is one without.
    for (int ratio = 0; ratio < 5; ++ratio)
    {
        for (const auto level : { 1.0e3f, 1.0e5f, 1.0e8f, 1.0e12f, 1.0e20f })
        {
            Pair pair (48000.0, ratio, 0, 4);
            const std::vector<float> in (512, level), drive (512, thirtyDecibels);

            for (int i = 0; i < 10; ++i)
                ASSERT_TRUE (pair.run (in.data(), drive.data(), 512)) << "ratio row " << ratio << ", level " << level;

            EXPECT_TRUE (std::isfinite (pair.band.mainCapacitor.voltage)) << "ratio row " << ratio << ", " << level;
            EXPECT_TRUE (std::isfinite (pair.band.auxCapacitor.voltage)) << "ratio row " << ratio << ", " << level;
            EXPECT_TRUE (std::isfinite (pair.band.makeupSmooth)) << "ratio row " << ratio << ", " << level;
        }
    }
}

TEST (BandGainComputer, ADetectorThatIsNotANumberLeavesTheCapacitorFinite)
{
    // A NaN reads the floor of the curve; an infinity flips like any overload, by way of infinity times a gain of 0.
    const auto inf = std::numeric_limits<float>::infinity();
    const std::vector<float> drive (256, thirtyDecibels);

    for (int ratio = 0; ratio < 5; ++ratio)
    {
        for (const auto poison : { std::nanf (""), inf, -inf, std::numeric_limits<float>::max() })
        {
            Pair pair (48000.0, ratio, 0, 4);
            auto x = noise (256, 0x71, 1.0f);
            x[40] = x[41] = x[200] = poison;
            ASSERT_TRUE (pair.run (x.data(), drive.data(), 256)) << "ratio row " << ratio << ", " << poison;
            EXPECT_TRUE (std::isfinite (pair.band.mainCapacitor.voltage)) << "ratio row " << ratio << ", " << poison;
            EXPECT_TRUE (std::isfinite (pair.band.meterGain)) << "ratio row " << ratio << ", " << poison;
        }
    }
}

TEST (BandGainComputer, AnEmptyBlockChangesNothing)
{
    Pair pair (48000.0, 2, 2, 4);
    const auto x = noise (100, 5, 5.0f);
    const std::vector<float> drive (100, thirtyDecibels);
    ASSERT_TRUE (pair.run (x.data(), drive.data(), 100));
    const auto lastGain = pair.band.lastGain;
    pair.band.computeGain (x.data(), drive.data(), nullptr, 0);
    pair.band.idleAdvance (0);
    EXPECT_TRUE (pair.sameState());
    EXPECT_EQ (pair.band.lastGain, lastGain) << "an idle stretch of no samples is none";
}

// ---- what charges and what does not ----------------------------------------------------------

TEST (BandGainComputer, OnlyPositiveSamplesCharge)
{
    auto x = noise (20000, 9, 24.0f);

    for (auto& v : x)
        v = -std::abs (v);

    const std::vector<float> drive (20000, thirtyDecibels), silence (20000, 0.0f);
    std::vector<float> fromNegative (20000), fromSilence (20000);

    for (int ratio = 0; ratio < 5; ++ratio)
    {
        Pair a (48000.0, ratio, 0, 0), b (48000.0, ratio, 0, 0);
        a.band.computeGain (x.data(), drive.data(), fromNegative.data(), 20000);
        b.band.computeGain (silence.data(), drive.data(), fromSilence.data(), 20000);
        EXPECT_EQ (fromNegative, fromSilence) << "ratio row " << ratio;
        EXPECT_EQ (a.band.mainCapacitor.voltage, b.band.mainCapacitor.voltage) << "ratio row " << ratio;

        // Turned around, the same samples compress.
        for (auto& v : x)
            v = -v;

        Pair c (48000.0, ratio, 0, 0);
        c.band.computeGain (x.data(), drive.data(), fromNegative.data(), 20000);
        EXPECT_GT (c.band.mainCapacitor.voltage, b.band.mainCapacitor.voltage + 0.5) << "ratio row " << ratio;

        for (auto& v : x)
            v = -v;
    }
}

TEST (BandGainComputer, SilenceSettlesByTheFloorOfTheCurve)
{
    for (int ratio = 0; ratio < 5; ++ratio)
    {
        for (int recovery = 0; recovery < 4; ++recovery)
        {
            BandCompressor band (0);
            band.prepare (48000.0, 1, 64);
            setCircuit (band, ratio, 270.0, Plain::recoveryOhms[recovery], false);
            runConstant (band, 0.0f, 48000 * 2);

            // The capacitor draws towards the floor of the curve through the attack resistor and towards 0.1 V
            // through the recovery resistor: a divider. The attack settles it within milliseconds.
            const auto floor = static_cast<double> (DetectorCurves::forRatio (ratio).entries[0]);
            const auto up = band.attackCoefficient, down = band.recoveryCoefficient;
            const auto settled = (floor * up + 0.1 * down) / (up + down);
            EXPECT_NEAR (band.mainCapacitor.voltage, settled, 1.0e-9) << "ratio row " << ratio;
            EXPECT_GT (band.mainCapacitor.voltage, 0.105) << "ratio row " << ratio;

            // A hair below the rest gain.
            EXPECT_LT (band.lastGain, band.restGain) << "ratio row " << ratio;
            EXPECT_GT (band.lastGain, band.restGain * 0.998) << "ratio row " << ratio;
        }
    }
}

TEST (BandGainComputer, ABandAtGainZeroRestsAtTheFloorOfItsCurveAndNotAtTheRestVoltage)
{
    // 3:1, attack row 2: 0.110 V and +0.292 dB, where the law at 0.1 V would give +0.298 dB.
    for (const auto recovery : { 2, 4 })
    {
        BandCompressor band (0);
        band.prepare (48000.0, 1, 64);
        setCircuit (band, 2, 270.0, Plain::recoveryOhms[recovery], recovery == 4);
        const auto gain = static_cast<double> (runConstant (band, 0.0f, 48000 * 20));
        EXPECT_NEAR (band.mainCapacitor.voltage, 0.110, 0.001) << "recovery row " << recovery;
        EXPECT_NEAR (dbOf (gain), 0.292, 0.001) << "recovery row " << recovery;
        EXPECT_EQ (static_cast<float> (thirtyDecibels * fourDecibels * band.lastGain), static_cast<float> (gain));
    }
}

TEST (BandGainComputer, AnInactiveBandIgnoresItsDetector)
{
    BandCompressor band (0);
    band.prepare (48000.0, 1, 64);
    setCircuit (band, 4, 10.0, 8200.0, false);
    runConstant (band, 1.0f, 4800);
    const auto charged = band.mainCapacitor.voltage;
    ASSERT_GT (charged, 1.0);
    band.bandActive = false;

    // One recovery time constant, 180.4 ms, with the detector still at full blast.
    runConstant (band, 1.0f, static_cast<int> (0.1804 * 48000.0));
    EXPECT_NEAR ((band.mainCapacitor.voltage - 0.1) / (charged - 0.1), std::exp (-1.0), 1.0e-4);
}

// ---- time constants --------------------------------------------------------------------------

TEST (BandGainComputer, EachAttackChargesWithItsTimeConstant)
{
    const double milliseconds[] = { 0.22, 1.54, 5.94, 30.8 };
    const FlatCurve target (3.0f);

    for (int attack = 0; attack < 4; ++attack)
    {
        for (const auto rate : { 48000.0, 768000.0 })
        {
            BandCompressor band (0);
            band.prepare (rate, 1, 64);
            setCircuit (band, 0, Plain::attackOhms[attack], 82000.0, false);
            band.transferTable = &target.curve;
            band.recoveryCoefficient = 0.0; // the attack alone
            const auto RC = milliseconds[attack] * 0.001;
            const auto n = std::max (1, static_cast<int> (std::lround (RC * rate)));
            runConstant (band, 1.0f, n);

            // A backward-Euler step leaves 1 / (1 + T / RC) of the distance: exact but for n roundings.
            const auto left = std::pow (1.0 + 1.0 / (rate * RC), -n);
            EXPECT_NEAR (band.mainCapacitor.voltage, 3.0 * (1.0 - left), 1.0e-10) << attack << " at " << rate;

            // And the curve it stands for: off by T / (2 RC) of e^-1, and by the rounding of n.
            EXPECT_NEAR (band.mainCapacitor.voltage / 3.0, 1.0 - std::exp (-1.0), 0.4 / n) << attack << " at " << rate;
        }
    }
}

TEST (BandGainComputer, EachFixedRecoveryDischargesWithItsTimeConstant)
{
    const double milliseconds[] = { 180.4, 858.0, 1804.0, 3960.0 };

    for (int recovery = 0; recovery < 4; ++recovery)
    {
        const auto rate = 48000.0;
        BandCompressor band (0);
        band.prepare (rate, 1, 64);
        setCircuit (band, 0, 10.0, Plain::recoveryOhms[recovery], false);
        band.bandActive = false;
        band.mainCapacitor.voltage = 4.1;
        band.auxCapacitor.voltage = 2.0;
        const auto RC = milliseconds[recovery] * 0.001;
        const auto n = static_cast<int> (std::lround (RC * rate));
        runConstant (band, 0.0f, n);

        EXPECT_NEAR ((band.mainCapacitor.voltage - 0.1) / 4.0, std::pow (1.0 + 1.0 / (rate * RC), -n), 1.0e-9);
        EXPECT_NEAR ((band.mainCapacitor.voltage - 0.1) / 4.0, std::exp (-1.0), 1.0 / n) << recovery;

        // The auxiliary capacitor only leaks: 68 kilohm and 125 microfarad are 8.5 s.
        EXPECT_NEAR (band.auxCapacitor.voltage, 2.0 * std::exp (-RC / 8.5), 1.0e-5) << recovery;
    }
}

TEST (BandGainComputer, AutomaticRecoveryFollowsItsTwoCapacitors)
{
    const auto rate = 48000.0;
    BandCompressor band (0);
    band.prepare (rate, 1, 64);
    setCircuit (band, 0, 10.0, 3900.0, true);
    band.bandActive = false;
    band.mainCapacitor.voltage = 4.1;

    // The circuit as a differential equation, by the classical fourth-order method in steps far below 85.8 ms.
    long double v = 4.1L, aux = 0.0L;
    const auto dv = [] (long double V, long double A) { return (A + 0.1L - V) / 0.0858L; };
    const auto da = [] (long double V, long double A) { return ((V - 0.1L) - A) / 0.4875L - A / 8.5L; };
    const auto h = 0.0005L;

    for (int tenth = 1; tenth <= 20; ++tenth)
    {
        runConstant (band, 0.0f, 4800);

        for (int i = 0; i < 200; ++i)
        {
            const auto k1 = dv (v, aux), l1 = da (v, aux);
            const auto k2 = dv (v + h / 2 * k1, aux + h / 2 * l1), l2 = da (v + h / 2 * k1, aux + h / 2 * l1);
            const auto k3 = dv (v + h / 2 * k2, aux + h / 2 * l2), l3 = da (v + h / 2 * k2, aux + h / 2 * l2);
            const auto k4 = dv (v + h * k3, aux + h * l3), l4 = da (v + h * k3, aux + h * l3);
            v += h / 6 * (k1 + 2 * k2 + 2 * k3 + k4);
            aux += h / 6 * (l1 + 2 * l2 + 2 * l3 + l4);
        }

        // First-order steps of T = 21 microseconds against 85.8 ms: T / (2 RC) of 4 V, 0.0005 V.
        EXPECT_NEAR (band.mainCapacitor.voltage, static_cast<double> (v), 0.001) << tenth * 0.1 << " s";
        EXPECT_NEAR (band.auxCapacitor.voltage, static_cast<double> (aux), 0.001) << tenth * 0.1 << " s";
    }
}

TEST (BandGainComputer, AutomaticRecoveryIsFastAfterAPeakAndSlowAfterALongStretch)
{
    const FlatCurve target (3.0f);

    const auto leftAfter = [&target] (double heldSeconds)
    {
        BandCompressor band (0);
        band.prepare (48000.0, 1, 64);
        setCircuit (band, 0, 10.0, 3900.0, true);
        band.transferTable = &target.curve;
        runConstant (band, 1.0f, static_cast<int> (heldSeconds * 48000.0));
        const auto start = band.mainCapacitor.voltage;
        band.bandActive = false;
        runConstant (band, 0.0f, 48000 / 4);
        return (band.mainCapacitor.voltage - 0.1) / (start - 0.1);
    };

    EXPECT_LT (leftAfter (0.002), 0.2) << "a quarter of a second after a peak of 2 ms";
    EXPECT_GT (leftAfter (5.0), 0.7) << "a quarter of a second after 5 s of compression";
}

TEST (BandGainComputer, NothingHoldsTheVoltageAtTheFloor)
{
    // The limit is applied where the law is read; the capacitor itself may lie below.
    BandCompressor band (0);
    band.prepare (48000.0, 1, 64);
    setCircuit (band, 0, 270.0, 180000.0, false);
    band.bandActive = false;
    runConstant (band, 0.0f, 1);
    EXPECT_GT (band.mainCapacitor.voltage, 0.0);
    EXPECT_LT (band.mainCapacitor.voltage, 0.001);
    EXPECT_EQ (band.lastGain, band.restGain);
}

// ---- static curve ----------------------------------------------------------------------------

namespace
{
/** Where a constant detector value holds the capacitor: charge and discharge balance. Found by halving. */
double settledGain (const BandCompressor& band, double detector)
{
    const auto charge = [&] (double volts)
    {
        // The gain of a sample depends on the charged voltage, which depends on the gain: halve that one, too.
        double low = volts, high = volts + 7.0;

        for (int i = 0; i < 60; ++i)
        {
            const auto charged = 0.5 * (low + high);
            const auto g = static_cast<double> (Plain::law (static_cast<float> (std::max (charged, 0.1))));
            const auto r = static_cast<double> (
                Plain::curve (*band.transferTable, static_cast<float> (detector * g * band.thresholdGain)));
            const auto reached = volts + std::max (r - volts, 0.0) * band.attackCoefficient;
            (reached > charged ? low : high) = charged;
        }

        return low - volts;
    };

    double low = 0.1, high = 7.0;

    for (int i = 0; i < 60; ++i)
    {
        const auto volts = 0.5 * (low + high);
        (charge (volts) > (volts - 0.1) * band.recoveryCoefficient ? low : high) = volts;
    }

    return static_cast<double> (Plain::law (static_cast<float> (low + charge (low))));
}
} // namespace

TEST (BandGainComputer, SettlesWhereChargeAndDischargeBalance)
{
    for (int ratio = 0; ratio < 5; ++ratio)
    {
        for (const auto level : { 0.3f, 1.0f, 2.0f, 4.0f, 8.0f })
        {
            BandCompressor band (0);
            band.prepare (48000.0, 1, 64);
            setCircuit (band, ratio, 1400.0, 82000.0, false);
            runConstant (band, level, 48000 * 2);

            // The solver may stop 1e-8 of linear gain early, on gains of 1e-3 and more: well below 0.001 dB; the
            // curve's entries of six digits add steps of their own.
            EXPECT_NEAR (dbOf (band.lastGain), dbOf (settledGain (band, static_cast<double> (level))), 0.002)
                << "ratio row " << ratio << ", detector " << level;
        }
    }
}

TEST (BandGainComputer, HigherRatiosCompressTheLoudMore)
{
    double previous = 0.0;

    for (int ratio = 0; ratio < 5; ++ratio)
    {
        BandCompressor band (0);
        band.prepare (48000.0, 1, 64);
        setCircuit (band, ratio, 1400.0, 82000.0, false);
        const auto quiet = dbOf (static_cast<double> (runConstant (band, 0.01f, 24000)));
        const auto loud = dbOf (static_cast<double> (runConstant (band, 8.0f, 48000)));
        const auto reduction = quiet - loud;
        EXPECT_GT (reduction, previous + 1.0) << "ratio row " << ratio;
        EXPECT_NEAR (quiet, 0.295, 0.01) << "below the knee nothing is compressed; ratio row " << ratio;
        previous = reduction;
    }
}

TEST (BandGainComputer, AStepFarBeyondTheCurveIsHardlyCompressedButARiseThroughItIs)
{
    // The solver's guess flips between no charge and far too much of it, and six passes end on none. A signal that
    // has grown through the curve finds the capacitor charged already, and the same level settles.
    BandCompressor step (0), rise (0);

    for (auto* band : { &step, &rise })
    {
        band->prepare (48000.0, 1, 64);
        setCircuit (*band, 4, 1400.0, 82000.0, false);
    }

    runConstant (step, 16.0f, 48000);
    EXPECT_GT (dbOf (step.lastGain / step.restGain), -0.1);

    for (auto level = 0.1f; level < 16.0f; level *= 1.01f)
        runConstant (rise, level, 480);

    runConstant (rise, 16.0f, 48000);
    EXPECT_NEAR (dbOf (rise.lastGain), dbOf (settledGain (rise, 16.0)), 0.002);
    EXPECT_LT (dbOf (rise.lastGain / rise.restGain), -20.0);
}

// ---- make-up, drive, meter -------------------------------------------------------------------

TEST (BandGainComputer, OutputIsDriveTimesFourDecibelsTimesMakeupTimesGain)
{
    BandCompressor band (0);
    band.prepare (48000.0, 1, 64);
    band.bandActive = false;
    const float detector[3] = {};
    const float drive[] = { 31.622776601683793f, 1.0f, 0.0f };
    float gain[3];
    band.computeGain (detector, drive, gain, 3);
    EXPECT_NEAR (dbOf (static_cast<double> (gain[0])), 30.0 + 4.0 - 33.702, 0.0005);
    EXPECT_NEAR (dbOf (static_cast<double> (gain[1])), 4.0 - 33.702, 0.0005);
    EXPECT_EQ (gain[2], 0.0f);
}

TEST (BandGainComputer, AutomaticMakeupTakesTwoSeconds)
{
    const auto rate = 48000.0;
    BandCompressor band (0);
    band.prepare (rate, 1, 64);
    setCircuit (band, 0, 270.0, 82000.0, false);
    band.bandActive = false;
    band.recoveryCoefficient = 0.0;
    band.mainCapacitor.voltage = 5.0; // held there: one gain throughout
    band.autoMakeup = true;
    const auto g = static_cast<double> (Plain::law (5.0f));
    const auto wanted = band.restGain / g;
    runConstant (band, 0.0f, static_cast<int> (2.0 * rate));

    // Its coefficient is exact, so only the rounding of 96000 steps is left.
    EXPECT_NEAR (band.makeupSmooth, 1.0 + (wanted - 1.0) * (1.0 - std::exp (-1.0)), 1.0e-6);

    // In the end the gain is that of a band at rest again.
    const auto settled = runConstant (band, 0.0f, static_cast<int> (30.0 * rate));
    EXPECT_NEAR (dbOf (static_cast<double> (settled)), 0.298, 0.001);
}

TEST (BandGainComputer, WithoutAutomaticMakeupTheFactorReturnsToOne)
{
    const auto rate = 48000.0;
    BandCompressor band (0);
    band.prepare (rate, 1, 64);
    band.bandActive = false;
    band.makeupSmooth = 9.0;
    runConstant (band, 0.0f, static_cast<int> (2.0 * rate));
    EXPECT_NEAR (band.makeupSmooth, 1.0 + 8.0 * std::exp (-1.0), 1.0e-6);
}

TEST (BandGainComputer, MeterAveragesTheGainOverFourTenthsOfASecond)
{
    const auto rate = 48000.0;
    BandCompressor band (0);
    band.prepare (rate, 1, 64);
    setCircuit (band, 0, 270.0, 82000.0, false);
    band.bandActive = false;
    band.recoveryCoefficient = 0.0;
    band.mainCapacitor.voltage = 4.0;
    const auto g = static_cast<double> (Plain::law (4.0f));
    runConstant (band, 0.0f, static_cast<int> (0.4 * rate));

    EXPECT_NEAR (band.meterGain, g + (band.restGain - g) * std::exp (-1.0), 1.0e-9);
    EXPECT_EQ (band.meterValue(), band.meterGain / band.restGain);
    EXPECT_LT (band.meterValue(), 1.0);

    runConstant (band, 0.0f, static_cast<int> (8.0 * rate));
    EXPECT_NEAR (dbOf (band.meterValue()), -45.572 + 33.702, 0.002);
}

// ---- idle ------------------------------------------------------------------------------------

TEST (BandGainComputer, IdleRelaxesTheCapacitorsAndTheMakeup)
{
    for (const auto recovery : { 0, 3, 4 })
    {
        Pair pair (96000.0, 2, 1, recovery);
        const auto x = noise (2000, 3, 24.0f);
        const std::vector<float> drive (2000, thirtyDecibels);
        pair.band.autoMakeup = pair.plain.autoMakeup = true;
        ASSERT_TRUE (pair.run (x.data(), drive.data(), 2000));
        ASSERT_GT (pair.band.mainCapacitor.voltage, 0.3);

        for (const auto n : { 1, 5, 512, 3000 })
        {
            ASSERT_TRUE (pair.idle (n)) << "recovery row " << recovery << ", " << n << " samples";
            EXPECT_EQ (pair.band.lastGain, 1.0) << "the solver starts afresh";
        }
    }
}

TEST (BandGainComputer, IdleHasTheTimeConstantsOfThePlayingBand)
{
    const auto rate = 48000.0;
    BandCompressor band (0);
    band.prepare (rate, 1, 64);
    setCircuit (band, 0, 270.0, 39000.0, false);
    band.mainCapacitor.voltage = 5.1;
    band.makeupSmooth = 5.0;
    band.autoMakeup = true; // idle make-up goes to 1 all the same
    band.idleAdvance (static_cast<int> (0.858 * rate));
    EXPECT_NEAR ((band.mainCapacitor.voltage - 0.1) / 5.0, std::exp (-1.0), 1.0e-4);
    EXPECT_NEAR (band.makeupSmooth, 1.0 + 4.0 * std::exp (-0.5 * 0.858), 1.0e-6);

    band.idleAdvance (static_cast<int> (30.0 * rate));
    EXPECT_NEAR (band.mainCapacitor.voltage, 0.1, 1.0e-9) << "no detector, so no floor of the curve";
    EXPECT_NEAR (band.meterValue(), 1.0, 1.0e-6);
}

TEST (BandGainComputer, TheFirstSampleAfterIdleStartsFromAGainOfOne)
{
    // A guess of 1 is far too high: the solver needs its passes to come down, and the result is its own.
    Pair pair (48000.0, 4, 0, 0);
    const std::vector<float> in (64, 0.7f), drive (64, thirtyDecibels);
    ASSERT_TRUE (pair.idle (48000));
    const auto before = pair.plain.evaluations;
    ASSERT_TRUE (pair.run (in.data(), drive.data(), 1));
    EXPECT_GT (pair.plain.evaluations - before, 2);
    ASSERT_TRUE (pair.run (in.data() + 1, drive.data(), 63));
}

// ---- a switch of ratio -----------------------------------------------------------------------

TEST (BandGainComputer, ASwitchOfRatioKeepsTheVoltage)
{
    BandCompressor band (0);
    band.prepare (48000.0, 1, 64);
    setCircuit (band, 0, 1400.0, 82000.0, false);
    const auto before = static_cast<double> (runConstant (band, 4.0f, 48000));
    const auto volts = band.mainCapacitor.voltage;

    setCircuit (band, 4, 1400.0, 82000.0, false);
    EXPECT_EQ (band.mainCapacitor.voltage, volts);

    // From there the attack takes over: at most the coefficient's share of the way in one sample, then ever on.
    const auto first = static_cast<double> (runConstant (band, 4.0f, 1));
    const auto later = static_cast<double> (runConstant (band, 4.0f, 48000));
    EXPECT_NEAR (dbOf (first), dbOf (before), 0.05);
    EXPECT_LT (dbOf (later), dbOf (before) - 2.0);
}
