// SPDX-License-Identifier: GPL-3.0-or-later
#include "dsp/ScratchPool.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <utility>

namespace
{
/** Fills every vector with its own number and looks whether one ran into another. */
void expectSeparateAlignedVectors (ScratchPool& pool)
{
    for (int v = 0; v < pool.numVectors(); ++v)
    {
        EXPECT_EQ (reinterpret_cast<std::uintptr_t> (pool[v]) % 64, 0u) << v;
        std::fill (pool[v], pool[v] + pool.length(), static_cast<float> (v + 1));
    }

    for (int v = 0; v < pool.numVectors(); ++v)
        EXPECT_EQ (std::count (pool[v], pool[v] + pool.length(), static_cast<float> (v + 1)), pool.length()) << v;
}
} // namespace

TEST (ScratchPool, BeginsEmpty)
{
    const ScratchPool pool;
    EXPECT_EQ (pool.numVectors(), 0);
    EXPECT_EQ (pool.length(), 0);
}

TEST (ScratchPool, HandsOutAlignedVectorsThatDoNotOverlap)
{
    for (const auto length : { 1, 2, 15, 16, 17, 100, 512, 1023 })
    {
        for (const auto vectors : { 1, 2, 12, 18 })
        {
            ScratchPool pool;
            pool.grow (vectors, length);
            EXPECT_EQ (pool.numVectors(), vectors);
            EXPECT_EQ (pool.length(), length);
            expectSeparateAlignedVectors (pool);
        }
    }
}

TEST (ScratchPool, KeepsALargerPool)
{
    ScratchPool pool;
    pool.grow (12, 512);
    const auto* address = pool[3];
    pool[3][511] = 7.0f;

    for (const auto& smaller : { std::pair<int, int> { 12, 512 }, { 11, 512 }, { 12, 64 }, { 1, 1 }, { 0, 0 } })
    {
        pool.grow (smaller.first, smaller.second);
        EXPECT_EQ (pool.numVectors(), 12);
        EXPECT_EQ (pool.length(), 512);
        EXPECT_EQ (pool[3], address) << "not even moved";
        EXPECT_EQ (pool[3][511], 7.0f);
    }
}

TEST (ScratchPool, GrowsInEitherDirectionAndShrinksInNone)
{
    ScratchPool pool;
    pool.grow (12, 512);
    pool.grow (14, 64);
    EXPECT_EQ (pool.numVectors(), 14);
    EXPECT_EQ (pool.length(), 512);
    expectSeparateAlignedVectors (pool);

    pool.grow (3, 700);
    EXPECT_EQ (pool.numVectors(), 14);
    EXPECT_EQ (pool.length(), 700);
    expectSeparateAlignedVectors (pool);
}

TEST (ScratchPool, ReleaseGivesEverythingBackAndItGrowsAgain)
{
    ScratchPool pool;
    pool.grow (12, 512);
    pool.release();
    EXPECT_EQ (pool.numVectors(), 0);
    EXPECT_EQ (pool.length(), 0);
    pool.release(); // twice does no harm
    pool.grow (10, 33);
    EXPECT_EQ (pool.numVectors(), 10);
    EXPECT_EQ (pool.length(), 33);
    expectSeparateAlignedVectors (pool);
}
