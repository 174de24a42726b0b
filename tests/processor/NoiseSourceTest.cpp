// SPDX-License-Identifier: GPL-3.0-or-later
#include "processor/NoiseSource.h"

#include <gtest/gtest.h>

#include <cstdlib>

TEST (NoiseSource, TheHeldOneStaysAtTheMiddle)
{
    auto& held = NoiseSource::held();

    for (int i = 0; i < 10; ++i)
        EXPECT_EQ (1 << 30, held.next());

    // What the block loop makes of it: exactly nothing.
    const auto u = static_cast<float> (held.next()) * 0x1p-31f;
    EXPECT_EQ (0.0f, ((u + u) - 1.0f) * 4.0e-05f);
}

TEST (NoiseSource, ThereIsOneOfEachKind)
{
    EXPECT_EQ (&NoiseSource::held(), &NoiseSource::held());
    EXPECT_EQ (&NoiseSource::system(), &NoiseSource::system());
    EXPECT_NE (&NoiseSource::system(), &NoiseSource::held());
}

TEST (NoiseSource, TheSystemsOneCoversItsRangeEvenly)
{
    auto& system = NoiseSource::system();
    std::srand (0x51ed);

    constexpr int draws = 20000;
    auto sum = 0.0;
    int inQuarter[4] = {};

    for (int i = 0; i < draws; ++i)
    {
        const auto value = system.next();
        ASSERT_GE (value, 0);
        sum += value * 0x1p-31;
        ++inQuarter[value >> 29];
    }

    // A uniform draw has a deviation of 0.29; five times its standard error for this many is 0.0102.
    EXPECT_NEAR (0.5, sum / draws, 0.0102);

    for (const auto count : inQuarter)
        EXPECT_NEAR (draws / 4, count, 310) << "five standard errors of a quarter";
}

TEST (NoiseSource, TheSystemsOneDrawsOnceFromTheSystem)
{
    if (RAND_MAX != 0x7fffffff)
        GTEST_SKIP() << "this C library draws fewer bits, which are moved up";

    std::srand (0x51ed);
    const int expected[] { std::rand(), std::rand(), std::rand() };

    std::srand (0x51ed);

    for (const auto value : expected)
        EXPECT_EQ (value, NoiseSource::system().next());
}
