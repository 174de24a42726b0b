// SPDX-License-Identifier: GPL-3.0-or-later
#include "dsp/nvx/Effect.h"

#include <gtest/gtest.h>

#include <vector>

namespace
{

struct Call
{
    float* samples;
    int numSamples, channel;

    bool operator== (const Call& other) const
    {
        return samples == other.samples && numSamples == other.numSamples && channel == other.channel;
    }
};

class CallRecorder : public NVX::Effect
{
public:
    void clear() override { calls.clear(); }
    void process (float* samples, int numSamples, int channel) noexcept override
    {
        calls.push_back ({ samples, numSamples, channel });
    }

    std::vector<Call> calls;
};

TEST (Effect, StartsAtOneChannelOf44100Hz)
{
    const CallRecorder effect;
    EXPECT_EQ (effect.sampleRate, 44100.0);
    EXPECT_EQ (effect.numChannels, 1);
}

TEST (Effect, SetSampleRateStoresBothValues)
{
    CallRecorder effect;
    effect.setSampleRate (6, 96000.0);
    EXPECT_EQ (effect.sampleRate, 96000.0);
    EXPECT_EQ (effect.numChannels, 6);
}

TEST (Effect, ProcessAllTakesTheChannelsInOrder)
{
    CallRecorder effect;
    effect.setSampleRate (3, 48000.0);

    float a[4] = {}, b[4] = {}, c[4] = {}, beyond[4] = {};
    float* channels[] = { a, b, c, beyond };
    effect.processAll (channels, 4);

    EXPECT_EQ (effect.calls, (std::vector<Call> { { a, 4, 0 }, { b, 4, 1 }, { c, 4, 2 } }));
}

TEST (Effect, ProcessAllOfNoChannelsProcessesNothing)
{
    for (const int numChannels : { 0, -1 })
    {
        CallRecorder effect;
        effect.setSampleRate (numChannels, 48000.0);
        effect.processAll (nullptr, 4);
        EXPECT_TRUE (effect.calls.empty()) << numChannels << " channels";
    }
}

} // namespace
