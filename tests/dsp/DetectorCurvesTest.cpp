// SPDX-License-Identifier: GPL-3.0-or-later
#include "dsp/DetectorCurves.h"
#include "dsp/PlainSolver.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <random>

namespace
{
bool sameBits (float a, float b) { return std::memcmp (&a, &b, sizeof (float)) == 0; }

constexpr float inf = std::numeric_limits<float>::infinity();

struct Row
{
    double feedbackOhms, groundOhms, parallelOhms;
    float xMin, xMax, step, indexScale;
};

const Row rows[] = { { 10000.0, 68.0, 67.54072308303536, 0.1929820030927658f, 2.893939971923828f,
                       0.00008242669719038531f, 12131.9912109375f },
                     { 18000.0, 910.0, 866.2083553675303, 0.1929820030927658f, 1.7771600484848022f,
                       0.00004834527862840332f, 20684.54296875f },
                     { 39000.0, 3300.0, 3042.553191489362, 0.1929820030927658f, 1.069219946861267f,
                       0.000026740659450297244f, 37396.234375f },
                     { 47000.0, 10000.0, 8245.61403508772, 0.1929820030927658f, 0.72188800573349f,
                       0.000016140929801622406f, 61954.30078125f },
                     { 68000.0, 33000.0, 22217.821782178216, 0.1929820030927658f, 0.504010021686554f,
                       0.000009491821401752532f, 105353.859375f } };

constexpr int pointIndices[] = { 0, 2048, 3072, 4096, 8192, 16384, 24576, 32767 };

struct Point
{
    double x;
    float y;
};

const Point points[5][8] = { { { 0.1930, 0.10556f },
                               { 0.3618, 0.10650f },
                               { 0.4462, 0.22303f },
                               { 0.5306, 1.57806f },
                               { 0.8682, 2.66886f },
                               { 1.5435, 3.31654f },
                               { 2.2187, 3.64336f },
                               { 2.8939, 3.88630f } },
                             { { 0.1930, 0.10894f },
                               { 0.2920, 0.10790f },
                               { 0.3415, 0.13220f },
                               { 0.3910, 1.37622f },
                               { 0.5890, 2.50241f },
                               { 0.9851, 3.38151f },
                               { 1.3811, 4.01398f },
                               { 1.7771, 4.59558f } },
                             { { 0.1930, 0.11008f },
                               { 0.2477, 0.11459f },
                               { 0.2751, 0.19220f },
                               { 0.3025, 1.41474f },
                               { 0.4120, 2.40622f },
                               { 0.6311, 3.43390f },
                               { 0.8502, 4.40817f },
                               { 1.0692, 5.33222f } },
                             { { 0.1930, 0.11366f },
                               { 0.2260, 0.11283f },
                               { 0.2426, 0.12802f },
                               { 0.2591, 0.20717f },
                               { 0.3252, 2.07929f },
                               { 0.4574, 3.20945f },
                               { 0.5897, 4.61067f },
                               { 0.7219, 5.90445f } },
                             { { 0.1930, 0.11817f },
                               { 0.2124, 0.13446f },
                               { 0.2221, 0.16653f },
                               { 0.2319, 0.28223f },
                               { 0.2707, 1.77577f },
                               { 0.3485, 2.92835f },
                               { 0.4263, 4.77778f },
                               { 0.5040, 6.42998f } } };

class DetectorCurveOfRatio : public ::testing::TestWithParam<int>
{
protected:
    const int row = GetParam();
    const DetectorCurve& curve = DetectorCurves::forRatio (row);

    /** The input that stands at a place of the table, counted in entries. */
    float inputAt (double place) const
    {
        return static_cast<float> (static_cast<double> (curve.xMin) + place / static_cast<double> (curve.indexScale));
    }
};
} // namespace

INSTANTIATE_TEST_SUITE_P (AllRatios, DetectorCurveOfRatio, ::testing::Range (0, 5));

TEST (DetectorCurves, ThereIsOneForEachRatio)
{
    EXPECT_EQ (DetectorCurves::numCurves, 5);
    EXPECT_EQ (DetectorCurve::numEntries, 32768);
}

TEST_P (DetectorCurveOfRatio, HasItsRowOfTheTable)
{
    const auto& expected = rows[row];
    EXPECT_EQ (curve.feedbackOhms, expected.feedbackOhms);
    EXPECT_EQ (curve.groundOhms, expected.groundOhms);
    EXPECT_EQ (curve.parallelOhms, expected.parallelOhms);
    EXPECT_TRUE (sameBits (curve.xMin, expected.xMin));
    EXPECT_TRUE (sameBits (curve.xMax, expected.xMax));
    EXPECT_TRUE (sameBits (curve.step, expected.step));
    EXPECT_TRUE (sameBits (curve.indexScale, expected.indexScale));
}

TEST_P (DetectorCurveOfRatio, IsOneConsistentGrid)
{
    // The numbers of a row depend on one another; each is a float, so 1e-6 covers their roundings.
    EXPECT_NEAR (static_cast<double> (curve.step) * static_cast<double> (curve.indexScale), 1.0, 1.0e-6);
    EXPECT_NEAR ((static_cast<double> (curve.xMax) - static_cast<double> (curve.xMin))
                     / static_cast<double> (curve.step),
                 32768.0, 0.1);
    EXPECT_NEAR (curve.parallelOhms * (1.0 / curve.feedbackOhms + 1.0 / curve.groundOhms), 1.0, 1.0e-12);
}

TEST_P (DetectorCurveOfRatio, PassesThroughItsEightPoints)
{
    for (int i = 0; i < 8; ++i)
    {
        const auto entry = pointIndices[i];
        const auto& point = points[row][i];
        EXPECT_TRUE (sameBits (curve.entries[entry], point.y)) << "entry " << entry << ": " << curve.entries[entry];

        // The inputs are known to four decimals.
        const auto x = static_cast<double> (curve.xMin) + entry * static_cast<double> (curve.step);
        EXPECT_NEAR (x, point.x, 0.0000501) << "entry " << entry;

        // Read as the band reads it: the index may land a rounding beside the entry, where the slope is at most
        // a volt in 500 entries and an index of 32767 is a float to within 0.004.
        EXPECT_NEAR (static_cast<double> (curve (static_cast<float> (x))), static_cast<double> (point.y), 5.0e-5)
            << "entry " << entry;
    }
}

TEST_P (DetectorCurveOfRatio, HoldsSixSignificantDigits)
{
    for (int i = 0; i < DetectorCurve::numEntries; ++i)
    {
        char text[32];
        std::snprintf (text, sizeof (text), "%.6g", static_cast<double> (curve.entries[i]));
        ASSERT_TRUE (sameBits (std::strtof (text, nullptr), curve.entries[i])) << "entry " << i << " is not " << text;
    }
}

TEST_P (DetectorCurveOfRatio, IsAFlatFloorAKneeAndARisingShoulder)
{
    // The floor to the left of entry 2048 stays between its two points; from there on the curve only rises, but for
    // the very last step of curve 0.
    const auto low = std::min (points[row][0].y, points[row][1].y),
               high = std::max (points[row][0].y, points[row][1].y);

    for (int i = 0; i <= 2048; ++i)
    {
        ASSERT_GE (curve.entries[i], low) << i;
        ASSERT_LE (curve.entries[i], high) << i;
    }

    const auto lastRise = row == 0 ? 32766 : 32767;

    for (int i = 2049; i <= lastRise; ++i)
        ASSERT_GE (curve.entries[i], curve.entries[i - 1]) << i;

    EXPECT_GT (curve.entries[8192] - curve.entries[3072], 10.0f * (curve.entries[3072] - curve.entries[2048]));

    // Per entry, the shoulder's end rises more slowly than its beginning.
    EXPECT_LT ((curve.entries[32767] - curve.entries[24576]) / 8191.0f,
               (curve.entries[8192] - curve.entries[2048]) / 6144.0f);
}

TEST_P (DetectorCurveOfRatio, ReadsTheFloorForEverythingBelowTheSecondEntry)
{
    for (const auto x : { 0.0f, -0.0f, 0.1f, 0.1929f, curve.xMin, -0.2f, -1.0f, -1000.0f, -1.0e30f,
                          -std::numeric_limits<float>::max(), -inf })
        EXPECT_TRUE (sameBits (curve (x), curve.entries[0])) << x;

    // No interpolation before entry 1: truncation makes the index 0.
    EXPECT_TRUE (sameBits (curve (inputAt (0.5)), curve.entries[0]));
    EXPECT_TRUE (sameBits (curve (inputAt (0.99)), curve.entries[0]));
}

TEST_P (DetectorCurveOfRatio, InterpolatesInFloat)
{
    std::mt19937 random (0xd0u + static_cast<unsigned> (row));

    for (int i = 0; i < 100000; ++i)
    {
        const auto x = inputAt (random() * 0x1p-32 * 33500.0 - 300.0); // a little beyond both ends
        ASSERT_TRUE (sameBits (curve (x), Plain::curve (curve, x))) << x;
    }

    // By hand, three quarters on the way from entry 5000 to entry 5001, to the noise of the float index (5000 of
    // 2^23 / 8192) times the step between the entries.
    const auto step = static_cast<double> (curve.entries[5001]) - static_cast<double> (curve.entries[5000]);
    EXPECT_NEAR (static_cast<double> (curve (inputAt (5000.75))),
                 static_cast<double> (curve.entries[5000]) + 0.75 * step, 0.05 * std::abs (step) + 3.0e-7);
}

TEST_P (DetectorCurveOfRatio, IsContinuousWhereTheTableEnds)
{
    const auto last = static_cast<double> (curve.entries[32767]);

    // Two entries' worth of slope on either side of the end.
    for (const auto place : { 32765.5, 32766.0, 32766.5, 32766.9, 32767.0, 32767.5, 32768.0 })
        EXPECT_NEAR (static_cast<double> (curve (inputAt (place))), last, 4.0e-4) << place;
}

TEST_P (DetectorCurveOfRatio, GoesOnByTheRatioOfItsLastEntries)
{
    const float ratio = curve.entries[32767] / curve.entries[32766]; // rounded to float

    for (const auto place : { 32767.2, 32768.4, 32800.0, 33000.9, 40000.1, 65000.0, 100000.0, 250000.0 })
    {
        const auto x = inputAt (place);
        const float position = (x - curve.xMin) * curve.indexScale;
        const auto steps = static_cast<long> (position) - 32767; // whole steps: the fraction is dropped

        // The power by multiplying, in long double: the engine's own pow is good to a double, the result is a float.
        long double expected = static_cast<long double> (curve.entries[32767]);

        for (long i = 0; i < steps; ++i)
            expected *= static_cast<long double> (ratio);

        EXPECT_NEAR (static_cast<double> (static_cast<long double> (curve (x)) / expected), 1.0, 1.0e-7) << place;
        EXPECT_TRUE (sameBits (curve (x), Plain::curve (curve, x))) << place;
    }
}

TEST_P (DetectorCurveOfRatio, DropsTheFractionBeyondTheEnd)
{
    // Two inputs within the same entry read alike.
    const auto early = inputAt (40000.25), late = inputAt (40000.75);
    ASSERT_LT (early, late);
    EXPECT_TRUE (sameBits (curve (early), curve (late)));
}

TEST_P (DetectorCurveOfRatio, FallsBeyondItsEndForTheFirstRatioAndRisesForTheOthers)
{
    const auto last = curve.entries[32767];
    EXPECT_EQ (last < curve.entries[32766], row == 0);

    for (const auto factor : { 1.2f, 2.0f, 5.0f, 50.0f })
    {
        if (row == 0)
            EXPECT_LT (curve (curve.xMax * factor), last) << factor;
        else
            EXPECT_GT (curve (curve.xMax * factor), last) << factor;
    }
}

TEST_P (DetectorCurveOfRatio, SurvivesFarOverload)
{
    // From about 20000 volts on the index no longer fits 31 bits; a wrapped one would read the floor or memory.
    for (const auto x :
         { 2.0e4f, 1.0e5f, 2.0e5f, 4.0e5f, 1.0e6f, 1.0e9f, 1.0e15f, 1.0e30f, std::numeric_limits<float>::max(), inf })
    {
        const auto y = curve (x);
        EXPECT_TRUE (sameBits (y, Plain::curve (curve, x))) << x;

        if (row == 0)
        {
            EXPECT_GE (y, 0.0f) << x;
            EXPECT_LT (y, curve.entries[0]) << x;
        }
        else
        {
            EXPECT_GT (y, 1.0e30f) << x;
        }
    }
}

TEST_P (DetectorCurveOfRatio, ReadsTheFloorForANan)
{
    EXPECT_TRUE (sameBits (curve (std::nanf ("")), curve.entries[0]));
}

TEST (DetectorCurves, HigherRatiosStartLowerAndRiseFurther)
{
    for (int row = 1; row < DetectorCurves::numCurves; ++row)
    {
        const auto& lower = DetectorCurves::forRatio (row - 1);
        const auto& higher = DetectorCurves::forRatio (row);
        EXPECT_LT (higher.xMax, lower.xMax);
        EXPECT_GT (higher.entries[32767], lower.entries[32767]);

        // The same input charges higher, anywhere on the shoulder of the higher ratio.
        for (int i = 8192; i < 32767; i += 512)
        {
            const auto x = higher.xMin + static_cast<float> (i) * higher.step;
            EXPECT_GT (higher (x), lower (x)) << "ratio row " << row << ", entry " << i;
        }
    }
}
