// SPDX-License-Identifier: GPL-3.0-or-later
#include "BenchSupport.h"

#include "dsp/OversamplerChannel.h"

namespace
{
using namespace BenchSupport;

/** Up and down again, one channel. Argument: factor. */
void OversamplerUpAndDown (benchmark::State& state)
{
    const auto factor = static_cast<int> (state.range (0));
    OversamplerChannel oversampler;
    oversampler.design (factor);

    auto host = programme (1, block);
    std::vector<float> high (static_cast<std::size_t> (block * factor));

    measure (state, block,
             [&]
             {
                 oversampler.up (host.getReadPointer (0), high.data(), block);
                 oversampler.down (high.data(), host.getWritePointer (0), block);
             });
}
} // namespace

BENCHMARK (OversamplerUpAndDown)->ArgName ("factor")->Arg (2)->Arg (3)->Arg (4)->Arg (8)->Arg (16);
