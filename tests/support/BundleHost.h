// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <juce_audio_processors/juce_audio_processors.h>

#include <gtest/gtest.h>

#include <cstdlib>
#include <functional>
#include <memory>

/** A small host for the built bundles: the framework's own VST3 and LV2 host classes. Stereo, 48 kHz, blocks of 512.

    Bundle and test share the C library's one random generator, so the noise floor is the same whenever it is seeded
    before a run. */
namespace BundleHost
{
constexpr double rate = 48000.0;
constexpr int blockLength = 512;
constexpr unsigned noiseSeed = 7;

enum class Format
{
    vst3,
    lv2
};

inline std::unique_ptr<juce::AudioPluginFormat> makeFormat (Format format)
{
    if (format == Format::vst3)
        return std::make_unique<juce::VST3PluginFormat>();

    // The LV2 format knows only what lies in the folders that it was shown.
    auto lv2 = std::make_unique<juce::LV2PluginFormat>();
    lv2->searchPathsForPlugins (juce::FileSearchPath (CORVANE_LV2_FOLDER), false, false);
    return lv2;
}

/** One instance of the bundle; the format must outlive it. */
inline std::unique_ptr<juce::AudioPluginInstance> instantiate (juce::AudioPluginFormat& format)
{
    const auto isVst3 = dynamic_cast<juce::VST3PluginFormat*> (&format) != nullptr;
    juce::OwnedArray<juce::PluginDescription> found;
    format.findAllTypesForFile (found, isVst3 ? CORVANE_VST3_BUNDLE : CORVANE_LV2_URI);

    if (found.size() != 1)
        return nullptr;

    juce::String error;
    auto instance = format.createInstanceFromDescription (*found[0], rate, blockLength, error);
    EXPECT_TRUE (error.isEmpty()) << error;

    if (instance != nullptr)
        instance->setRateAndBufferSizeDetails (rate, blockLength);

    return instance;
}

/** The input through a processor, bundle or engine, in blocks of 512; `beforeBlock` is told each block's index. */
inline juce::AudioBuffer<float> run (juce::AudioProcessor& processor, const juce::AudioBuffer<float>& input,
                                     const std::function<void (int)>& beforeBlock = {})
{
    juce::AudioBuffer<float> output (input);
    juce::MidiBuffer midi;
    std::srand (noiseSeed);
    int block = 0;

    for (int done = 0; done < output.getNumSamples(); done += blockLength)
    {
        if (beforeBlock)
            beforeBlock (block++);

        juce::AudioBuffer<float> piece (output.getArrayOfWritePointers(), 2, done,
                                        std::min (blockLength, output.getNumSamples() - done));
        processor.processBlock (piece, midi);
    }

    return output;
}

/** A hosted parameter by its name; null when there is none. */
inline juce::AudioProcessorParameter* parameterNamed (juce::AudioProcessor& processor, const juce::String& name)
{
    for (auto* parameter : processor.getParameters())
        if (parameter->getName (128) == name)
            return parameter;

    return nullptr;
}
} // namespace BundleHost
