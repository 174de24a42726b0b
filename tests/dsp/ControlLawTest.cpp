// SPDX-License-Identifier: GPL-3.0-or-later
#include "dsp/ControlLaw.h"
#include "dsp/PlainSolver.h"
#include "support/Signals.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <limits>
#include <random>

namespace
{
bool sameBits (float a, float b) { return std::memcmp (&a, &b, sizeof (float)) == 0; }

/** The law in decibels with as much precision as there is. */
long double lawInDb (long double v)
{
    const auto slope = -0.74L * v - 2.0L * std::log (v + 0.6L) + 0.07L;
    const auto knee = std::log (std::exp ((v - 2.8L) * 4.9L * 0.6L) + 1.0L) / 0.6L;
    const auto d = slope - knee + 0.5L;
    return d / (1.0L + 1.1727025508880615L * std::max (d, 0.0L)) - 0.5L - 34.0L + 0.298L;
}

constexpr float inf = std::numeric_limits<float>::infinity();
} // namespace

TEST (ControlLaw, HasItsTellingValues)
{
    struct Point
    {
        float volts;
        double decibels;
    };
    const Point points[] = { { 0.1f, -33.702 }, { 1.0f, -35.320 }, { 2.0f, -37.175 }, { 3.0f, -40.130 },
                             { 4.0f, -45.572 }, { 6.0f, -57.526 }, { 8.0f, -69.336 }, { 10.0f, -81.034 } };

    for (const auto& point : points)
    {
        // The values are known to a thousandth of a decibel.
        EXPECT_NEAR (Signals::toDb (static_cast<double> (ControlLaw::compute (point.volts))), point.decibels, 0.001)
            << point.volts;
        EXPECT_NEAR (Signals::toDb (static_cast<double> (ControlLaw::shared() (point.volts))), point.decibels, 0.001)
            << point.volts << " by the table";
    }
}

TEST (ControlLaw, FollowsItsFormulaToTheLimitsOfFloat)
{
    // About eight float roundings of numbers around 40 (4e-6 each at most) and the power's own (0.05 ln 10 times 8e-5).
    for (int i = 0; i <= 1300; ++i)
    {
        const auto volts = static_cast<float> (i) * 0.01f;
        EXPECT_NEAR (Signals::toDb (static_cast<double> (ControlLaw::compute (volts))),
                     static_cast<double> (lawInDb (volts)), 2.0e-5)
            << volts;
    }
}

TEST (ControlLaw, IsFlatToTwoVoltsAndThenFallsBySixDecibelsAVolt)
{
    const auto db = [] (float v) { return Signals::toDb (static_cast<double> (ControlLaw::compute (v))); };
    EXPECT_LT (db (0.0f) - db (2.0f), 3.6);

    for (float v = 4.0f; v < 12.0f; v += 1.0f)
        EXPECT_NEAR (db (v) - db (v + 1.0f), 6.0, 0.3) << v;
}

TEST (ControlLaw, RoundsStepByStepInFloat)
{
    std::mt19937 random (0xc0);

    for (int i = 0; i < 100000; ++i)
    {
        const auto volts = static_cast<float> (random() * 0x1p-32 * 16.0 - 0.5);
        ASSERT_TRUE (sameBits (ControlLaw::compute (volts), Plain::controlLaw (volts))) << volts;
    }
}

TEST (ControlLaw, TableHoldsTheLawBitForBit)
{
    const auto& law = ControlLaw::shared();
    ASSERT_EQ (ControlLaw::numEntries, 32768);
    ASSERT_EQ (law.entries.size(), 32768u);

    for (std::size_t i = 1; i < law.entries.size(); ++i)
    {
        // 10 / 32768 is a power of two times ten, so the argument i * 10 / 32768 is exact in float up to 2^24.
        const auto volts = static_cast<float> (static_cast<double> (i) * 10.0 / 32768.0);
        ASSERT_TRUE (sameBits (law.entries[i], ControlLaw::compute (volts))) << i;
        ASSERT_TRUE (sameBits (law.entries[i], Plain::lawTable()[i])) << i;
    }
}

TEST (ControlLaw, TableBeginsWithAStoredConstant)
{
    EXPECT_TRUE (sameBits (ControlLaw::shared().entries[0], 0.020780690014362335f));

    // It is the law at 0, as a nearby machine rounded it: one unit of the last place of a float is 9e-8 of it.
    EXPECT_NEAR (static_cast<double> (ControlLaw::compute (0.0f)) / 0.020780690014362335, 1.0, 4.0e-7);
}

TEST (ControlLaw, TableEndsALittleUnderTenVolts)
{
    EXPECT_TRUE (sameBits (ControlLaw::shared().entries[32767], ControlLaw::compute (9.99969482421875f)));
    EXPECT_GT (ControlLaw::shared().entries[32767], ControlLaw::compute (10.0f));
}

TEST (ControlLaw, IndexScaleIsTheFloatNearestToEntriesPerVolt)
{
    EXPECT_TRUE (sameBits (ControlLaw::indexScale, 3276.8f));
    EXPECT_EQ (static_cast<double> (ControlLaw::indexScale), 3276.800048828125);
}

TEST (ControlLaw, InterpolatesBetweenEntriesInFloat)
{
    const auto& law = ControlLaw::shared();
    std::mt19937 random (0xc1);

    for (int i = 0; i < 200000; ++i)
    {
        const auto volts = static_cast<float> (random() * 0x1p-32 * 10.2); // some beyond the end
        ASSERT_TRUE (sameBits (law (volts), Plain::law (volts))) << volts;
    }

    // Half way between two entries, by hand: the index scale is exact enough for 16.5 entries to be 16.5.
    const float halfWay = 16.5f / 3276.800048828125f;
    EXPECT_NEAR (static_cast<double> (law (halfWay)),
                 0.5 * (static_cast<double> (law.entries[16]) + static_cast<double> (law.entries[17])), 2.0e-9);
}

TEST (ControlLaw, NeverRisesByMoreThanARounding)
{
    const auto& law = ControlLaw::shared();

    // Two float roundings of dB values near 40 to 80 may turn a flat stretch around: 8e-6 dB, 1e-6 of the gain.
    for (std::size_t i = 1; i < law.entries.size(); ++i)
        ASSERT_LE (law.entries[i], law.entries[i - 1] * (1.0f + 2.0e-6f)) << i;
}

TEST (ControlLaw, IsComputedDirectlyBeyondTheTable)
{
    const auto& law = ControlLaw::shared();

    // 9.9997 volts is index 32767, which has no right neighbour.
    for (const auto volts : { 9.9997f, 9.99999f, 10.0f, 10.5f, 11.0f, 12.0f, 12.5f, 13.0f })
        EXPECT_TRUE (sameBits (law (volts), Plain::controlLaw (volts))) << volts;

    EXPECT_LT (law (12.5f), law (10.0f));
    EXPECT_GT (law (12.5f), 0.0f);
}

TEST (ControlLaw, IsZeroAtMinusOneHundredDecibels)
{
    // The law reaches -100 dB near 13.3 volts.
    EXPECT_GT (lawInDb (13.1L), -100.0L);
    EXPECT_LT (lawInDb (13.4L), -100.0L);
    EXPECT_GT (ControlLaw::compute (13.1f), 0.0f);
    EXPECT_EQ (ControlLaw::compute (13.4f), 0.0f);
    EXPECT_EQ (ControlLaw::shared() (1000.0f), 0.0f);
}

TEST (ControlLaw, TakesArgumentsThatNoBandEverSends)
{
    const auto& law = ControlLaw::shared();

    // An overloaded capacitor: the gain is cut off, not wild.
    for (const auto volts : { 1.0e6f, 1.0e20f, std::numeric_limits<float>::max(), inf })
        EXPECT_EQ (law (volts), 0.0f) << volts;

    // What has no logarithm is not above -100 dB, so it gives no gain.
    for (const auto volts : { std::nanf (""), -inf, -1.0e20f, -5.0f })
        EXPECT_EQ (law (volts), 0.0f) << volts;

    // A hair below 0, the index still truncates to 0 and the first two entries are extended.
    const auto below = -0.0001f;
    EXPECT_TRUE (sameBits (law (below), Plain::law (below)));
    EXPECT_GT (law (below), law.entries[0]);

    // Further below, the law itself answers.
    EXPECT_TRUE (sameBits (law (-0.01f), Plain::controlLaw (-0.01f)));
}

TEST (ControlLaw, GivesTheRestGain)
{
    const auto rest = ControlLaw::shared() (0.1f);
    EXPECT_TRUE (sameBits (rest, 0.0206490457f)) << rest;
    EXPECT_NEAR (Signals::toDb (static_cast<double> (rest)), -33.702, 0.0005);

    // With the drive of 30 dB and the line amplifier's 4 dB: the unit is 0.298 dB hot, on purpose.
    EXPECT_NEAR (Signals::toDb (static_cast<double> (rest) * 31.622776601683793 * 1.5848931924611136), 0.298, 0.0005);
}

TEST (ControlLaw, IsOneTableForAllBands) { EXPECT_EQ (&ControlLaw::shared(), &ControlLaw::shared()); }
