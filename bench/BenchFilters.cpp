// SPDX-License-Identifier: GPL-3.0-or-later
#include "BenchSupport.h"

#include "dsp/CrossoverFilter.h"
#include "dsp/SmoothedSVFilter.h"
#include "processor/RmsFollower.h"

namespace
{
using namespace BenchSupport;

template <typename Filter>
void runFilter (benchmark::State& state, Filter& filter)
{
    const juce::ScopedNoDenormals noDenormals;
    auto buffer = programme (2, block);

    measure (state, block, [&] { filter.process (buffer.getArrayOfWritePointers(), block); });
}

void CrossoverStereo (benchmark::State& state)
{
    CrossoverFilter filter (CrossoverFilter::lowPass);
    filter.prepare (rate, 2, block);
    runFilter (state, filter);
}

void DetectorShelfMono (benchmark::State& state)
{
    SmoothedSVFilter filter (SmoothedSVFilter::lowShelf);
    filter.setResponse (SmoothedSVFilter::lowShelf, 125.0, 0.3, 0.126);
    filter.prepare (rate, 1, block);
    runFilter (state, filter);
}

void MeterTapMono (benchmark::State& state)
{
    const auto buffer = programme (1, block);
    RmsFollower follower (rate);

    measure (state, block,
             [&]
             {
                 for (int i = 0; i < block; ++i)
                     benchmark::DoNotOptimize (follower.follow (buffer.getSample (0, i)));
             });
}
} // namespace

BENCHMARK (CrossoverStereo);
BENCHMARK (DetectorShelfMono);
BENCHMARK (MeterTapMono);
