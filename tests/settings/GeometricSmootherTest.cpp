// SPDX-License-Identifier: GPL-3.0-or-later
#include "settings/GeometricSmoother.h"

#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <vector>

namespace
{
constexpr double smallest = 1.0e-6; // what stands for a gain of 0 in a ramp
}

TEST (GeometricSmoother, ANewOneRestsAtItsValue)
{
    const GeometricSmoother smoother { 0.25 };

    EXPECT_EQ (100, smoother.length);
    EXPECT_EQ (0, smoother.remaining);
    EXPECT_EQ (0.25, smoother.current);
    EXPECT_EQ (0.25, smoother.target);
}

TEST (GeometricSmoother, GoesToItsTargetByEqualRatios)
{
    GeometricSmoother smoother { 1.0 };
    smoother.length = 4;
    smoother.setTarget (16.0);

    EXPECT_EQ (4, smoother.remaining);
    EXPECT_EQ (1.0, smoother.current);
    EXPECT_DOUBLE_EQ (2.0, smoother.ratio);

    std::array<float, 6> values {};
    smoother.fill (values.data(), 6);

    const std::array<float, 6> expected { 2.0f, 4.0f, 8.0f, 16.0f, 16.0f, 16.0f };

    for (std::size_t i = 0; i < 6; ++i)
        EXPECT_FLOAT_EQ (expected[i], values[i]) << i;

    EXPECT_EQ (0, smoother.remaining);
}

TEST (GeometricSmoother, HalfWayIsTheGeometricMean)
{
    GeometricSmoother smoother { 0.1 };
    smoother.setTarget (10.0);

    std::array<double, 50> values {};
    smoother.fill (values.data(), 50);

    EXPECT_NEAR (1.0, smoother.current, 1.0e-12); // fifty roundings of 1e-16
}

TEST (GeometricSmoother, ACurveDoesNotDependOnTheBlocksItIsAskedIn)
{
    GeometricSmoother atOnce { 0.3 }, inPieces { 0.3 };
    atOnce.length = inPieces.length = 37;
    atOnce.setTarget (3.0);
    inPieces.setTarget (3.0);

    std::vector<float> expected (60), values (60);
    atOnce.fill (expected.data(), 60);

    int done = 0;

    for (const auto n : { 1, 0, 7, 28, 2, 22 })
    {
        inPieces.fill (values.data() + done, n);
        done += n;
    }

    ASSERT_EQ (60, done);
    EXPECT_EQ (expected, values);
    EXPECT_EQ (atOnce.current, inPieces.current);
}

TEST (GeometricSmoother, TheEndOfARampIsNotSnappedToTheTarget)
{
    GeometricSmoother smoother { 1.0 };
    smoother.length = 7;
    smoother.setTarget (3.0);

    std::array<double, 9> values {};
    smoother.fill (values.data(), 9);

    auto product = 1.0;
    const auto ratio = std::pow (3.0, 1.0 / 7.0);

    for (int i = 0; i < 7; ++i)
        product *= ratio;

    ASSERT_NE (3.0, product) << "this ramp would not show a snap";
    EXPECT_EQ (product, smoother.current);
    EXPECT_EQ (product, values[8]);
    EXPECT_EQ (3.0, smoother.target);
}

TEST (GeometricSmoother, AGainSentToZeroComesToRestAtAMillionth)
{
    GeometricSmoother smoother { 1.0 };
    smoother.setTarget (0.0);

    EXPECT_EQ (0.0, smoother.target);
    EXPECT_EQ (100, smoother.remaining);

    std::array<double, 150> values {};
    smoother.fill (values.data(), 150);

    EXPECT_NEAR (smallest, smoother.current, 1.0e-17); // a hundred relative roundings of 1e-16
    EXPECT_EQ (smoother.current, values[149]);
    EXPECT_EQ (0.0, smoother.target);
    EXPECT_EQ (0, smoother.remaining);
}

TEST (GeometricSmoother, AGainThatStartsFromZeroStartsFromAMillionth)
{
    GeometricSmoother smoother { 0.0 };
    smoother.setTarget (1.0);

    EXPECT_EQ (smallest, smoother.current);
    EXPECT_NEAR (std::pow (1.0e6, 0.01), smoother.ratio, 1.0e-14);

    std::array<double, 100> values {};
    smoother.fill (values.data(), 100);
    EXPECT_NEAR (1.0, smoother.current, 1.0e-12);
}

TEST (GeometricSmoother, AChangeBelowAMillionthIsTakenAtOnce)
{
    GeometricSmoother smoother { 0.5 };
    smoother.setTarget (0.5 - 0.9e-6);

    EXPECT_EQ (0.5 - 0.9e-6, smoother.current);
    EXPECT_EQ (0.5 - 0.9e-6, smoother.target);
    EXPECT_EQ (0, smoother.remaining);

    GeometricSmoother tiny { 0.5e-6 };
    tiny.setTarget (0.0);
    EXPECT_EQ (0.0, tiny.current);
    EXPECT_EQ (0, tiny.remaining);
}

TEST (GeometricSmoother, AChangeAboveAMillionthIsARamp)
{
    GeometricSmoother smoother { 0.5 };
    smoother.setTarget (0.5 + 1.1e-6);

    EXPECT_EQ (100, smoother.remaining);
    EXPECT_EQ (0.5, smoother.current);
}

TEST (GeometricSmoother, ATargetBesideThePresentValueStopsARunningRamp)
{
    GeometricSmoother smoother { 1.0 };
    smoother.setTarget (4.0);

    std::array<float, 50> half {};
    smoother.fill (half.data(), 50);
    const auto beside = smoother.current + 0.5e-6;
    smoother.setTarget (beside);

    EXPECT_EQ (beside, smoother.current);
    EXPECT_EQ (beside, smoother.target);
    EXPECT_EQ (0, smoother.remaining);
}

TEST (GeometricSmoother, TheSameTargetAgainLeavesARunningRampAlone)
{
    GeometricSmoother smoother { 1.0 };
    smoother.setTarget (4.0);

    std::array<float, 30> values {};
    smoother.fill (values.data(), 30);

    const auto before = smoother;
    smoother.setTarget (4.0);

    EXPECT_EQ (70, smoother.remaining);
    EXPECT_EQ (before.current, smoother.current);
    EXPECT_EQ (before.ratio, smoother.ratio);
}

TEST (GeometricSmoother, AnotherTargetDuringARampStartsAWholeRampFromWhereItStands)
{
    GeometricSmoother smoother { 1.0 };
    smoother.length = 4;
    smoother.setTarget (16.0);

    std::array<float, 2> values {};
    smoother.fill (values.data(), 2);
    smoother.setTarget (0.25);

    EXPECT_EQ (4, smoother.remaining);
    EXPECT_NEAR (4.0, smoother.current, 1.0e-14);
    EXPECT_NEAR (0.5, smoother.ratio, 1.0e-14);
}

TEST (GeometricSmoother, RestingLandsOnTheTargetWithANewLength)
{
    GeometricSmoother smoother { 1.0 };
    smoother.setTarget (0.0);
    smoother.restAtTarget (19200);

    EXPECT_EQ (19200, smoother.length);
    EXPECT_EQ (0, smoother.remaining);
    EXPECT_EQ (0.0, smoother.current) << "a rest at 0 is 0, not the floor of a ramp";
}
