// SPDX-License-Identifier: GPL-3.0-or-later
// Blocks as hosts send them on their bad days: empty, too long, too early, too late, in the middle of a rebuild.
#include "../processor/NoiseStreams.h"

#include "processor/CorvaneQ7AudioProcessor.h"
#include "support/Matchers.h"
#include "support/ProcessorHarness.h"
#include "support/Signals.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <vector>

namespace
{
constexpr double rate = 44100.0;

void halfMix (ChannelSettings& settings)
{
    settings.mix = 0.5;

    for (auto& band : settings.bands)
        band.thresholdDb.setTarget (-12.0);
}

/** Both of a host's calls for one block. */
enum Call
{
    process,
    bypass
};

void send (CorvaneQ7AudioProcessor& processor, juce::AudioBuffer<float>& buffer, Call call)
{
    juce::MidiBuffer midi;

    if (call == process)
        processor.processBlock (buffer, midi);
    else
        processor.processBlockBypassed (buffer, midi);
}

void expectPassedOn (CorvaneQ7AudioProcessor& processor, Call call)
{
    auto buffer = Signals::whiteNoise (2, 100, 1);
    const auto before = buffer;
    send (processor, buffer, call);
    EXPECT_TRUE (sameBits (before, buffer));
}
} // namespace

TEST (OddBlocks, ABlockWithoutSamplesOrChannelsIsLeftAsItCame)
{
    for (const auto factor : { 1, 4 })
    {
        SeededNoise noise (1);
        ProcessorHarness harness (2, rate, 64, factor);
        harness->setNoiseSource (noise);
        harness->activeSettings().mix = 0.5;
        harness->applySettings();

        for (const auto call : { process, bypass })
        {
            juce::AudioBuffer<float> noSamples (2, 0), noChannels (0, 64), nothing;
            send (*harness.processor, noSamples, call);
            send (*harness.processor, noChannels, call);
            send (*harness.processor, nothing, call);

            EXPECT_EQ (0, noSamples.getNumSamples());
            EXPECT_EQ (0, noChannels.getNumChannels());
        }

        EXPECT_EQ (0, noise.draws);
        EXPECT_EQ (4410, harness->mixRamp.remaining);
    }
}

TEST (OddBlocks, AnEmptyBlockDoesNotRebuildEither)
{
    ProcessorHarness harness (2, rate, 64, 1);
    harness->setOversampling (2);
    juce::AudioBuffer<float> empty (2, 0);
    harness.block (empty);

    EXPECT_EQ (1, harness->oversamplingCurrent);
}

TEST (OddBlocks, ASingleSampleIsABlock)
{
    for (const auto factor : { 1, 2, 16 })
    {
        ProcessorHarness single (1, rate, 1, factor, halfMix), whole (1, rate, 300, factor, halfMix);

        auto input = Signals::whiteNoise (1, 300, 2);
        juce::AudioBuffer<float> lead (input.getArrayOfWritePointers(), 1, 0, 300);

        // The first block is 60 samples in both; a block of more than the announced one sample is worked off in ones.
        EXPECT_TRUE (equalWithin (whole.run (lead, { 300 }), single.run (lead, { 60, 1 }), 1.0e-7f))
            << "equal but for the filters' guard against denormals at a block's end, 1e-8 of the circuit's signal";
    }
}

TEST (OddBlocks, ABlockLongerThanAnnouncedIsItsPiecesBitForBit)
{
    for (const auto factor : { 1, 2, 3 })
        for (const auto length : { 65, 128, 1000 })
        {
            ProcessorHarness pieces (2, rate, 64, factor, halfMix), whole (2, rate, 64, factor, halfMix);
            SeededNoise oneNoise (4), sameNoise (4);
            pieces->setNoiseSource (oneNoise);
            whole->setNoiseSource (sameNoise);
            const auto input = Signals::whiteNoise (2, 2000, 3);
            std::vector<int> cut;

            for (int left = length; left > 0; left -= 64)
                cut.push_back (std::min (left, 64));

            EXPECT_TRUE (sameBits (pieces.run (input, cut), whole.run (input, { length }))) << factor << ", " << length;
        }
}

TEST (OddBlocks, ALongBlockFadesAndDriesAsItsPiecesDo)
{
    // The mix arrives at 0 within the block: from there on the pieces are the delayed input.
    for (const auto factor : { 1, 2 })
    {
        ProcessorHarness pieces (2, rate, 100, factor), whole (2, rate, 100, factor);
        const auto input = Signals::whiteNoise (2, 6000, 3);

        for (auto* harness : { &pieces, &whole })
        {
            (*harness)->activeSettings().bypass.setTarget (1.0);
            (*harness)->applySettings();
        }

        EXPECT_TRUE (sameBits (pieces.run (input, { 100 }), whole.run (input, { 6000 })));
        EXPECT_EQ (0, whole->mixRamp.remaining);
        EXPECT_EQ (pieces->activeSettings().lowGainReduction, whole->activeSettings().lowGainReduction);
    }
}

TEST (OddBlocks, LengthsMayVaryFromBlockToBlock)
{
    ProcessorHarness harness (2, rate, 512, 4, halfMix);
    const auto output = harness.run (Signals::whiteNoise (2, 4000, 5), { 512, 1, 3, 500, 2, 511, 1024, 64 });

    EXPECT_TRUE (Signals::allFinite (output));
    EXPECT_LT (output.getMagnitude (0, 4000), 4.0f);
    EXPECT_GT (output.getMagnitude (3900, 100), 0.1f);
}

TEST (OddBlocks, BeforeTheFirstPrepareABlockIsPassedOn)
{
    for (const auto call : { process, bypass })
        for (const auto factor : { 1, 4 })
        {
            CorvaneQ7AudioProcessor processor;
            processor.setOversampling (factor);
            expectPassedOn (processor, call);
            processor.setCurrentProgram (3);
            expectPassedOn (processor, call);
            EXPECT_EQ (1, processor.oversamplingCurrent) << "nothing is built without a rate";
        }
}

TEST (OddBlocks, AnAnnouncedLengthOfNothingPassesBlocksOn)
{
    for (const auto length : { 0, -1 })
        for (const auto call : { process, bypass })
        {
            CorvaneQ7AudioProcessor processor;
            processor.setRateAndBufferSizeDetails (rate, 0);
            processor.prepareToPlay (rate, length);
            EXPECT_EQ (0, processor.maxBlockSize);
            expectPassedOn (processor, call);

            processor.setOversampling (2);
            expectPassedOn (processor, call);

            processor.prepareToPlay (rate, 64);
            auto buffer = Signals::whiteNoise (2, 64, 1);
            send (processor, buffer, call);
            EXPECT_TRUE (Signals::allFinite (buffer));
            EXPECT_EQ (2, processor.oversamplingCurrent);
        }
}

TEST (OddBlocks, AfterReleasingABlockIsPassedOn)
{
    for (const auto factor : { 1, 2 })
    {
        ProcessorHarness harness (2, rate, 128, factor, halfMix);
        harness.run (Signals::whiteNoise (2, 500, 1), { 128 });
        harness->releaseResources();
        expectPassedOn (*harness.processor, process);
        expectPassedOn (*harness.processor, process);
    }
}

TEST (OddBlocks, AfterReleasingHostBypassStillIsTheDelay)
{
    ProcessorHarness harness (2, rate, 128, 2);
    harness->releaseResources();
    auto buffer = Signals::impulse (2, 128, 3);
    send (*harness.processor, buffer, bypass);

    EXPECT_TRUE (sameBits (Signals::impulse (2, 128, 55), buffer));
}

TEST (OddBlocks, PreparingAfterReleasingBringsTheSoundBack)
{
    const auto input = Signals::whiteNoise (2, 1000, 1, 0.3f);
    ProcessorHarness fresh (2, rate, 128, 2), again (2, rate, 128, 2);
    again->releaseResources();
    again->prepareToPlay (rate, 128);

    EXPECT_TRUE (sameBits (fresh.run (input, { 128 }), again.run (input, { 128 })));
}

TEST (OddBlocks, ReleasingWithoutAPrepareOrTwiceIsHarmless)
{
    CorvaneQ7AudioProcessor processor;
    processor.releaseResources();
    processor.releaseResources();
    expectPassedOn (processor, process);

    processor.setRateAndBufferSizeDetails (rate, 128);
    processor.prepareToPlay (rate, 128);
    processor.releaseResources();
    processor.releaseResources();
    expectPassedOn (processor, process);

    processor.prepareToPlay (rate, 128);
    auto buffer = Signals::whiteNoise (2, 128, 1);
    send (processor, buffer, process);
    EXPECT_TRUE (Signals::allFinite (buffer));
}

TEST (OddBlocks, HostBypassHasTheLatencyThatTheHostWasToldFromItsFirstBlockOn)
{
    ProcessorHarness harness (2, rate, 128, 1);
    harness->setOversampling (8);

    auto impulse = Signals::impulse (2, 128, 0);
    send (*harness.processor, impulse, bypass);
    EXPECT_EQ (8, harness->oversamplingCurrent);
    EXPECT_EQ (0.0f, impulse.getSample (1, 0));
    EXPECT_EQ (1.0f, impulse.getSample (1, 52));

    harness->setOversampling (1);
    auto buffer = Signals::whiteNoise (2, 128, 6);
    const auto before = buffer;
    send (*harness.processor, buffer, bypass);
    EXPECT_EQ (1, harness->oversamplingCurrent);
    EXPECT_TRUE (sameBits (before, buffer)) << "the engine has no latency any more";
}

TEST (OddBlocks, ABlockThatArrivesDuringARebuildPassesUnchanged)
{
    for (const auto factor : { 1, 4 })
        for (const auto call : { process, bypass })
        {
            SeededNoise noise (1);
            ProcessorHarness harness (2, rate, 128, factor, halfMix);
            harness->setNoiseSource (noise);
            harness->activeSettings().midLevel = 0.125;
            harness->reconfiguring = true;
            expectPassedOn (*harness.processor, call); // without latency compensation

            EXPECT_EQ (0, noise.draws);
            EXPECT_EQ (0.125, harness->activeSettings().midLevel);

            juce::AudioBuffer<float> marked (2, 64);
            marked.clear();
            send (*harness.processor, marked, call);
            EXPECT_TRUE (marked.hasBeenCleared()) << "not even the mark is touched";
            harness->reconfiguring = false;
        }
}

TEST (OddBlocks, ABlockDuringARebuildDoesNotClearTheOutputsWithoutInput)
{
    CorvaneQ7AudioProcessor processor;
    processor.setBusesLayout ({ { juce::AudioChannelSet::mono() }, { juce::AudioChannelSet::stereo() } });
    processor.setRateAndBufferSizeDetails (rate, 128);
    processor.prepareToPlay (rate, 128);
    processor.reconfiguring = true;
    expectPassedOn (processor, process);
    processor.reconfiguring = false;
}

TEST (OddBlocks, ABufferOfOtherChannelsThanTheBusIsSafe)
{
    for (const auto factor : { 1, 2 })
    {
        ProcessorHarness harness (2, rate, 64, factor, halfMix);

        auto narrow = Signals::whiteNoise (1, 64, 1);
        harness.block (narrow);
        EXPECT_TRUE (Signals::allFinite (narrow));

        auto wide = Signals::whiteNoise (4, 64, 2);
        const auto before = wide;
        harness.block (wide);
        EXPECT_TRUE (Signals::allFinite (wide));

        for (int c = 2; c < 4; ++c)
            for (int i = 0; i < 64; ++i)
                EXPECT_EQ (before.getSample (c, i), wide.getSample (c, i)) << "beyond every bus";
    }
}

TEST (OddBlocks, ChannelPointersMayStandAnywhere)
{
    // Hosts align their buffers as they like.
    const auto input = Signals::whiteNoise (2, 300, 9, 0.5f);
    ProcessorHarness aligned (2, rate, 300, 2, halfMix), shifted (2, rate, 300, 2, halfMix);
    std::vector<float> left (310), right (310);
    std::copy_n (input.getReadPointer (0), 300, left.begin() + 1);
    std::copy_n (input.getReadPointer (1), 300, right.begin() + 3);
    float* pointers[] { left.data() + 1, right.data() + 3 };
    juce::AudioBuffer<float> buffer (pointers, 2, 300);
    shifted.block (buffer);

    EXPECT_TRUE (sameBits (aligned.run (input, { 300 }), buffer));
    EXPECT_EQ (0.0f, left[0] + left[301] + right[2] + right[303]) << "nothing is written beside the channels";
}

TEST (OddBlocks, RatesFromLowToHighAreTaken)
{
    for (const auto hostRate : { 8000.0, 11025.0, 22050.0, 32000.0, 44100.0, 96000.0, 192000.0, 384000.0 })
        for (const auto factor : { 1, 2 })
        {
            ProcessorHarness harness (2, hostRate, 256, factor, halfMix);
            const auto output = harness.run (Signals::whiteNoise (2, 4096, 11, 0.5f), { 256 });
            EXPECT_TRUE (Signals::allFinite (output)) << hostRate << ", " << factor;
            EXPECT_LT (output.getMagnitude (0, 4096), 4.0f) << hostRate << ", " << factor;
        }
}
