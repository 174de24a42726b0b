// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <random>
#include <vector>

/** What a test of samples needs and nothing of the framework: so the filters' tests build where the filters do. */
namespace Samples
{
/** Uniform noise in -1 to 1, one channel. The same seed gives the same samples on every machine. */
inline std::vector<float> whiteNoise (int length, std::uint32_t seed)
{
    std::mt19937 generator (seed);
    std::vector<float> noise (static_cast<std::size_t> (length));

    for (auto& sample : noise)
        sample = static_cast<float> (static_cast<double> (generator()) / 2147483648.0 - 1.0);

    return noise;
}

/** Calls work (start, length) for block after block of these lengths, over and over, the last one cut to what is left
    of the total. */
template <typename Work>
void inBlocks (int total, const std::vector<int>& lengths, Work&& work)
{
    std::size_t next = 0;

    for (int done = 0; done < total;)
    {
        const auto length = std::min (lengths[next++ % lengths.size()], total - done);
        work (done, length);
        done += length;
    }
}
} // namespace Samples
