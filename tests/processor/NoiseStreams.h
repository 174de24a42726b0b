// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "processor/NoiseSource.h"

#include <cstdint>
#include <random>
#include <utility>
#include <vector>

/** Draws like the system's generator does, from a seed: the same stream on every machine. */
class SeededNoise : public NoiseSource
{
public:
    explicit SeededNoise (std::uint32_t seed) : random (seed) {}

    std::int32_t next() noexcept override
    {
        ++draws;
        return static_cast<std::int32_t> (random() >> 1);
    }

    long draws = 0;

private:
    std::mt19937 random;
};

/** Gives a list of draws, over and over. */
class ListedNoise : public NoiseSource
{
public:
    explicit ListedNoise (std::vector<std::int32_t> values) : list (std::move (values)) {}

    std::int32_t next() noexcept override { return list[static_cast<std::size_t> (draws++) % list.size()]; }

    long draws = 0;

private:
    std::vector<std::int32_t> list;
};
