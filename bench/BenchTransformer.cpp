// SPDX-License-Identifier: GPL-3.0-or-later
#include "BenchSupport.h"

#include "dsp/OutputTransformer.h"
#include "dsp/VectorOps.h"

namespace
{
using namespace BenchSupport;

void TransformerMono (benchmark::State& state)
{
    const juce::ScopedNoDenormals noDenormals;
    OutputTransformer transformer;
    transformer.prepare (1.0 / rate);
    OutputChannelState channel (1.0 / rate);
    const auto signal = programme (1, block);
    juce::AudioBuffer<float> buffer (1, block);

    measure (state, block,
             [&]
             {
                 buffer.copyFrom (0, 0, signal, 0, 0, block);
                 transformer.process (buffer.getWritePointer (0), block, channel);
             });
}

void Tanh (benchmark::State& state)
{
    std::vector<double> source (block), result (block);

    for (std::size_t i = 0; i < source.size(); ++i)
        source[i] = -3.0 + 6.0 * static_cast<double> (i) / block;

    measure (state, block,
             [&]
             {
                 VectorOps::tanh (source.data(), result.data(), block);
                 benchmark::DoNotOptimize (result.data());
             });
}
} // namespace

BENCHMARK (TransformerMono);
BENCHMARK (Tanh);
