// SPDX-License-Identifier: GPL-3.0-or-later
#include "settings/LinearSmoother.h"

#include <gtest/gtest.h>

#include <array>
#include <cstdint>
#include <vector>

TEST (LinearSmoother, ANewOneRestsAtItsValue)
{
    const LinearSmoother smoother { 2.5 };

    EXPECT_EQ (100, smoother.length);
    EXPECT_EQ (0, smoother.remaining);
    EXPECT_EQ (2.5, smoother.current);
    EXPECT_EQ (2.5, smoother.target);

    const LinearSmoother plain;
    EXPECT_EQ (100, plain.length);
    EXPECT_EQ (0, plain.remaining);
    EXPECT_EQ (0.0, plain.current);
    EXPECT_EQ (0.0, plain.target);
}

TEST (LinearSmoother, GoesToItsTargetInEqualSteps)
{
    LinearSmoother smoother { 1.0 };
    smoother.length = 4;
    smoother.setTarget (3.0);

    EXPECT_EQ (4, smoother.remaining);
    EXPECT_EQ (3.0, smoother.target);
    EXPECT_EQ (1.0, smoother.current);
    EXPECT_EQ (0.5, smoother.step);

    std::array<float, 6> values {};
    smoother.fill (values.data(), 6);

    // The first value is one step on, not the starting value; halves are exact in binary.
    const std::array<float, 6> expected { 1.5f, 2.0f, 2.5f, 3.0f, 3.0f, 3.0f };
    EXPECT_EQ (expected, values);
    EXPECT_EQ (0, smoother.remaining);
}

TEST (LinearSmoother, GoesDownAsItGoesUp)
{
    LinearSmoother smoother { 1.0 };
    smoother.length = 4;
    smoother.setTarget (0.0);

    std::array<double, 5> values {};
    smoother.fill (values.data(), 5);

    const std::array<double, 5> expected { 0.75, 0.5, 0.25, 0.0, 0.0 };
    EXPECT_EQ (expected, values);
}

TEST (LinearSmoother, ACurveDoesNotDependOnTheBlocksItIsAskedIn)
{
    LinearSmoother atOnce { 0.0 }, inPieces { 0.0 };
    atOnce.length = inPieces.length = 37;
    atOnce.setTarget (0.7);
    inPieces.setTarget (0.7);

    std::vector<float> expected (60), values (60);
    atOnce.fill (expected.data(), 60);

    int done = 0;

    for (const auto n : { 1, 0, 7, 28, 2, 22 }) // the ramp ends within the fifth
    {
        inPieces.fill (values.data() + done, n);
        done += n;
    }

    ASSERT_EQ (60, done);
    EXPECT_EQ (expected, values);
    EXPECT_EQ (atOnce.current, inPieces.current);
}

TEST (LinearSmoother, AnEmptyBlockMovesNothing)
{
    LinearSmoother smoother { 0.0 };
    smoother.setTarget (1.0);

    float untouched = 7.0f;
    smoother.fill (&untouched, 0);

    EXPECT_EQ (7.0f, untouched);
    EXPECT_EQ (100, smoother.remaining);
    EXPECT_EQ (0.0, smoother.current);
}

TEST (LinearSmoother, TheEndOfARampIsNotSnappedToTheTarget)
{
    LinearSmoother smoother { 0.0 };
    smoother.length = 10;
    smoother.setTarget (1.0);

    std::array<double, 12> values {};
    smoother.fill (values.data(), 12);

    auto sumOfSteps = 0.0;

    for (int i = 0; i < 10; ++i)
        sumOfSteps += 0.1; // ten tenths are not 1 in binary

    ASSERT_NE (1.0, sumOfSteps);
    EXPECT_EQ (sumOfSteps, smoother.current);
    EXPECT_EQ (sumOfSteps, values[9]);
    EXPECT_EQ (sumOfSteps, values[11]);
    EXPECT_EQ (1.0, smoother.target);
    EXPECT_EQ (0, smoother.remaining);
}

TEST (LinearSmoother, AChangeBelowAMillionthIsTakenAtOnce)
{
    LinearSmoother smoother { 0.5 };
    smoother.setTarget (0.5 + 0.9e-6);

    EXPECT_EQ (0.5 + 0.9e-6, smoother.current);
    EXPECT_EQ (0.5 + 0.9e-6, smoother.target);
    EXPECT_EQ (0, smoother.remaining);
}

TEST (LinearSmoother, AChangeAboveAMillionthIsARamp)
{
    LinearSmoother up { 0.5 }, down { 0.5 };
    up.setTarget (0.5 + 1.1e-6);
    down.setTarget (0.5 - 1.1e-6);

    EXPECT_EQ (100, up.remaining);
    EXPECT_EQ (0.5, up.current);
    EXPECT_EQ (100, down.remaining);
    EXPECT_EQ (0.5, down.current);
}

TEST (LinearSmoother, ATargetBesideThePresentValueStopsARunningRamp)
{
    LinearSmoother smoother { 0.0 };
    smoother.setTarget (1.0);

    std::array<float, 50> half {};
    smoother.fill (half.data(), 50);
    ASSERT_EQ (50, smoother.remaining);

    const auto beside = smoother.current + 0.5e-6;
    smoother.setTarget (beside);

    EXPECT_EQ (beside, smoother.current);
    EXPECT_EQ (beside, smoother.target);
    EXPECT_EQ (0, smoother.remaining);
}

TEST (LinearSmoother, TheSameTargetAgainLeavesARunningRampAlone)
{
    LinearSmoother smoother { 0.0 };
    smoother.setTarget (1.0);

    std::array<float, 30> values {};
    smoother.fill (values.data(), 30);

    const auto before = smoother;
    smoother.setTarget (1.0);

    EXPECT_EQ (70, smoother.remaining);
    EXPECT_EQ (before.current, smoother.current);
    EXPECT_EQ (before.step, smoother.step);
}

TEST (LinearSmoother, AnotherTargetDuringARampStartsAWholeRampFromWhereItStands)
{
    LinearSmoother smoother { 0.0 };
    smoother.length = 4;
    smoother.setTarget (1.0);

    std::array<float, 2> values {};
    smoother.fill (values.data(), 2);
    smoother.setTarget (0.0);

    EXPECT_EQ (4, smoother.remaining);
    EXPECT_EQ (0.5, smoother.current);
    EXPECT_EQ (-0.125, smoother.step);
}

TEST (LinearSmoother, RestingLandsOnTheTargetWithANewLength)
{
    LinearSmoother smoother { 0.0 };
    smoother.setTarget (1.0);
    smoother.restAtTarget (4410);

    EXPECT_EQ (4410, smoother.length);
    EXPECT_EQ (0, smoother.remaining);
    EXPECT_EQ (1.0, smoother.current);
    EXPECT_EQ (1.0, smoother.target);
}

TEST (LinearSmoother, ARampIsAHundredMillisecondsOfTheRate)
{
    EXPECT_EQ (4410, rampLengthFor (44100.0));
    EXPECT_EQ (4800, rampLengthFor (48000.0));
    EXPECT_EQ (8820, rampLengthFor (88200.0));
    EXPECT_EQ (9600, rampLengthFor (96000.0));
    EXPECT_EQ (19200, rampLengthFor (192000.0));
    EXPECT_EQ (1102, rampLengthFor (11025.0)) << "a part of a sample is cut off";
}

TEST (LinearSmoother, TheLengthHasSixteenBitsAndWraps)
{
    EXPECT_EQ (65535, rampLengthFor (655350.0));
    EXPECT_EQ (0, rampLengthFor (655360.0));
    EXPECT_EQ (5024, rampLengthFor (16 * 44100.0)) << "70560 - 65536: processing rate at factor 16";
    EXPECT_EQ (11264, rampLengthFor (16 * 48000.0));
}
