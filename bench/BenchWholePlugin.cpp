// SPDX-License-Identifier: GPL-3.0-or-later
#include "BenchSupport.h"

#include "support/ProcessorHarness.h"

namespace
{
using namespace BenchSupport;

/** processBlock as a host calls it, noise from the system's generator included. Arguments: factor, channels. */
void WholePlugin (benchmark::State& state)
{
    const auto factor = static_cast<int> (state.range (0));
    const auto channels = static_cast<int> (state.range (1));

    ProcessorHarness harness (channels, rate, block, factor);
    harness->setNoiseSource (NoiseSource::system());

    constexpr int numBlocks = 64;
    const auto input = programme (channels, numBlocks * block);
    juce::AudioBuffer<float> buffer (channels, block);
    int next = 0;

    measure (state, block,
             [&]
             {
                 for (int c = 0; c < channels; ++c)
                     buffer.copyFrom (c, 0, input, c, next * block, block);

                 harness.block (buffer);
                 benchmark::DoNotOptimize (buffer.getReadPointer (0));
                 next = (next + 1) % numBlocks;
             });
}

/** The fully dry path, as with the Bypass control. */
void FullyDry (benchmark::State& state)
{
    ProcessorHarness harness (2, rate, block, 2, [] (ChannelSettings& s) { s.bypass.setTarget (1.0); });
    auto buffer = programme (2, block);

    measure (state, block,
             [&]
             {
                 harness.block (buffer);
                 benchmark::DoNotOptimize (buffer.getReadPointer (0));
             });
}
} // namespace

BENCHMARK (WholePlugin)->ArgNames ({ "factor", "channels" })->ArgsProduct ({ { 1, 2, 4, 8, 16 }, { 1, 2 } });
BENCHMARK (FullyDry);
