// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "processor/CorvaneQ7AudioProcessor.h"
#include "support/Samples.h"

#include <functional>
#include <memory>
#include <vector>

/** A processor as a host would run it, with the noise floor held at its middle unless a test wants it. */
struct ProcessorHarness
{
    /** Settings are changed by `configure` before the engine is built, so that they stand settled. */
    ProcessorHarness (int channels, double rate, int maxBlock, int factor = 1,
                      const std::function<void (ChannelSettings&)>& configure = {})
        : processor (std::make_unique<CorvaneQ7AudioProcessor>())
    {
        const auto set = channels == 1 ? juce::AudioChannelSet::mono() : juce::AudioChannelSet::stereo();
        processor->setBusesLayout ({ { set }, { set } });
        processor->setRateAndBufferSizeDetails (rate, maxBlock);
        processor->setNoiseSource (NoiseSource::held());
        processor->setOversampling (factor);

        if (configure)
            configure (processor->activeSettings());

        processor->applySettings();
        processor->prepareToPlay (rate, maxBlock);
    }

    /** As the next block would find it: what was set is followed first. */
    CorvaneQ7AudioProcessor* operator->() noexcept
    {
        if (processor->maxBlockSize > 0)
            processor->followSettings();

        return processor.get();
    }

    /** One block, in place. */
    void block (juce::AudioBuffer<float>& buffer) { processor->processBlock (buffer, midi); }

    /** The input in blocks of the given lengths, over and over, the last one cut to what is left. */
    juce::AudioBuffer<float> run (const juce::AudioBuffer<float>& input, const std::vector<int>& lengths)
    {
        juce::AudioBuffer<float> output (input);

        Samples::inBlocks (output.getNumSamples(), lengths,
                           [&] (int done, int n)
                           {
                               juce::AudioBuffer<float> piece (output.getArrayOfWritePointers(),
                                                               output.getNumChannels(), done, n);
                               block (piece);
                           });

        return output;
    }

    std::unique_ptr<CorvaneQ7AudioProcessor> processor;
    juce::MidiBuffer midi;
};
