// SPDX-License-Identifier: GPL-3.0-or-later
#include "processor/RmsFollower.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

TEST (RmsFollower, StartsAtItsFloorWithTheCoefficientOfItsRate)
{
    for (const auto rate : { 44100.0, 48000.0, 176400.0, 768000.0 })
    {
        const RmsFollower follower (rate);

        EXPECT_DOUBLE_EQ ((1.0 - std::exp (-1.0 / (rate * 0.4))) * 0.5, follower.coefficient) << rate;
        EXPECT_EQ (0.00001, follower.rms);
        EXPECT_EQ (0.00001, RmsFollower::floor);
    }
}

TEST (RmsFollower, TakesOneNewtonStepASample)
{
    RmsFollower follower (44100.0);
    const auto c = (1.0 - std::exp (-1.0 / (44100.0 * 0.4))) * 0.5;
    auto expected = 0.00001;

    for (const auto sample : { 0.5f, -0.25f, 0.125f, 0.0f, -1.0f, 0.001f })
    {
        auto p = static_cast<double> (sample) * sample;
        p = p <= 0.00001 ? 0.00001 : p;
        expected = (p / expected - expected) * c + expected;

        EXPECT_EQ (expected, follower.follow (sample)) << sample;
        EXPECT_EQ (expected, follower.rms);
    }
}

TEST (RmsFollower, TheFirstLoudSampleThrowsItUp)
{
    RmsFollower follower (44100.0);
    follower.follow (1.0f);

    // From 1e-5 one step of 2.8e-5 times 1 / 1e-5: far above the signal itself.
    EXPECT_NEAR (2.8344, follower.rms, 0.0001);
}

TEST (RmsFollower, SettlesAtTheRootOfTheMeanSquare)
{
    constexpr double rate = 44100.0;
    RmsFollower follower (rate);

    for (int i = 0; i < 6 * 44100; ++i)
        follower.follow (static_cast<float> (0.8 * std::sin (2.0 * 3.141592653589793 * 1000.0 * i / rate)));

    // Fifteen time constants of 0.4 s; what is left is a ripple at 2 kHz of 1 / (2 pi 2000 Hz 0.8 s), 1e-4 of it.
    EXPECT_NEAR (0.8 / std::sqrt (2.0), follower.rms, 1.2e-4);
}

TEST (RmsFollower, TheMeanSquareFollowsWithFourHundredMilliseconds)
{
    constexpr double rate = 48000.0;
    RmsFollower follower (rate);
    follower.rms = 1.0;

    for (int i = 0; i < 19200; ++i) // 0.4 s of a signal with half the power
        follower.follow (0.70710678f);

    // d (rms^2) = 2 c (p - rms^2): what is left of the distance after one time constant is 1 / e.
    EXPECT_NEAR (0.5 + 0.5 * std::exp (-1.0), follower.rms * follower.rms, 1.0e-5);
}

TEST (RmsFollower, SilenceSettlesAtTheRootOfTheFloor)
{
    RmsFollower follower (44100.0);

    for (int i = 0; i < 6 * 44100; ++i)
        follower.follow (0.0f);

    EXPECT_NEAR (std::sqrt (0.00001), follower.rms, 1.0e-9);
    EXPECT_NEAR (0.00316, follower.rms, 0.00001);
}

TEST (RmsFollower, TheFloorTakesTheSquareNotTheSample)
{
    RmsFollower below (44100.0), silent (44100.0), above (44100.0);
    below.follow (0.00316f); // squared 0.99856e-5
    silent.follow (0.0f);
    above.follow (0.0032f); // squared 1.024e-5

    EXPECT_EQ (silent.rms, below.rms);
    EXPECT_GT (above.rms, silent.rms);
}

TEST (RmsFollower, ANotANumberStaysUntilANewOneIsMade)
{
    RmsFollower follower (44100.0);
    follower.follow (std::numeric_limits<float>::quiet_NaN());

    for (int i = 0; i < 100; ++i)
        follower.follow (0.5f);

    EXPECT_TRUE (std::isnan (follower.rms));

    follower = RmsFollower (44100.0);
    EXPECT_TRUE (std::isfinite (follower.follow (0.5f)));
}
