// SPDX-License-Identifier: GPL-3.0-or-later
#include "BenchSupport.h"

#include "support/ProcessorHarness.h"

namespace
{
using namespace BenchSupport;

/** A band that was set up by a processor at factor 1; one frame is one sample at the processing rate. */
struct Band
{
    explicit Band (const std::function<void (ChannelSettings&)>& configure = {})
        : harness (2, rate, block, 1, configure), signal (programme (2, block, 4.0f)), buffer (2, block)
    {
    }

    BandCompressor& compressor() { return harness->bandGroups[1].compressor; }

    void refill()
    {
        for (int c = 0; c < 2; ++c)
            buffer.copyFrom (c, 0, signal, c, 0, block);
    }

    ProcessorHarness harness;
    juce::AudioBuffer<float> signal, buffer;
    const juce::ScopedNoDenormals noDenormals;
};

void BandWhole (benchmark::State& state)
{
    Band band;

    measure (state, block,
             [&]
             {
                 band.refill();
                 band.compressor().process (band.buffer.getArrayOfWritePointers(), block);
             });
}

void BandPaths (benchmark::State& state)
{
    Band band;

    measure (state, block,
             [&]
             {
                 band.refill();
                 band.compressor().makePaths (band.buffer.getArrayOfWritePointers(), block);
             });
}

void BandSolver (benchmark::State& state)
{
    Band band;
    std::vector<float> drive (block, 31.6f), gain (block);
    const auto* detector = band.signal.getReadPointer (0);

    measure (state, block,
             [&]
             {
                 band.compressor().computeGain (detector, drive.data(), gain.data(), block);
                 benchmark::DoNotOptimize (gain.data());
             });
}

void BandMidSide (benchmark::State& state)
{
    Band band ([] (ChannelSettings& s) { s.bands[1].midSide = 1.0; });

    measure (state, block,
             [&]
             {
                 band.refill();
                 band.compressor().process (band.buffer.getArrayOfWritePointers(), block);
             });
}

void BandIdle (benchmark::State& state)
{
    Band band;

    measure (state, block, [&] { band.compressor().idleAdvance (block); });
}
} // namespace

BENCHMARK (BandWhole);
BENCHMARK (BandPaths);
BENCHMARK (BandSolver);
BENCHMARK (BandMidSide);
BENCHMARK (BandIdle);
