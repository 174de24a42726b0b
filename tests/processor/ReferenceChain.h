// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "settings/ChannelSettings.h"

#include "dsp/BandCompressor.h"
#include "dsp/CrossoverFilter.h"
#include "dsp/OutputTransformer.h"
#include "dsp/OversamplerChannel.h"
#include "processor/NoiseSource.h"

#include <juce_audio_basics/juce_audio_basics.h>

#include <cmath>
#include <vector>

/** The road of a block written a second time, as plain loops over a whole signal: what the processor has to return,
    bit for bit.

    What is an object of its own (bands, crossovers, transformer, oversampling filters) is taken as it is. What stands
    here again is everything between them: gains and their roundings, noise, dry copy, sums, clips, and the order.
*/
class ReferenceChain
{
public:
    /** The per-sample controls of a run, one float a sample. */
    struct Curves
    {
        std::vector<float> wet, input, master, output;
        bool dryNeeded = false;
    };

    ReferenceChain (const ChannelSettings& settingsToUse, int numChannelsToUse, double rate, int factorToUse,
                    int numSamples)
        : settings (settingsToUse), numChannels (numChannelsToUse), factor (factorToUse), numHostSamples (numSamples)
    {
        const auto internalRate = rate * factor;
        const auto internalSamples = numSamples * factor;

        lowSplit.setResponse (settings.lowXOverHz, 1.0, 1.0, 0);
        highSplit.setResponse (settings.highXOverHz, 1.0, 1.0, 1);
        lowSplit.prepare (internalRate, numChannels, internalSamples);
        highSplit.prepare (internalRate, numChannels, internalSamples);

        for (auto& band : bands)
        {
            band.applyBandSettings (settings);
            band.prepare (internalRate, numChannels, internalSamples);
        }

        transformer.prepare (1.0 / internalRate);
        transformerStates.assign (static_cast<std::size_t> (numChannels), OutputChannelState (1.0 / internalRate));
        oversamplers.resize (static_cast<std::size_t> (numChannels));

        for (auto& oversampler : oversamplers)
            oversampler.design (factor);

        // Everything at rest, until a test says otherwise.
        const auto n = static_cast<std::size_t> (numSamples);
        curves.wet.assign (n, static_cast<float> (settings.mix));
        curves.input.assign (n, static_cast<float> (settings.inLevelLinear.target));
        curves.master.assign (n, static_cast<float> (settings.masterGainLinear.target));
        curves.output.assign (n, static_cast<float> (settings.outLevelLinear.target));
        curves.dryNeeded = settings.mix < 1.0;
    }

    /** Equal steps from one value to another, then the value that the last step reached. */
    static std::vector<float> steps (double from, double to, int numSteps, int numSamples)
    {
        std::vector<float> curve;
        auto value = from;

        for (int i = 0; i < numSamples; ++i)
        {
            if (i < numSteps)
                value += (to - from) / numSteps;

            curve.push_back (static_cast<float> (value));
        }

        return curve;
    }

    /** Equal ratios from one gain to another. */
    static std::vector<float> ratios (double from, double to, int numSteps, int numSamples)
    {
        std::vector<float> curve;
        auto value = from;

        for (int i = 0; i < numSamples; ++i)
        {
            if (i < numSteps)
                value *= std::pow (to / from, 1.0 / numSteps);

            curve.push_back (static_cast<float> (value));
        }

        return curve;
    }

    /** The whole signal as one block from the start. */
    juce::AudioBuffer<float> run (const juce::AudioBuffer<float>& input, NoiseSource& noise)
    {
        const juce::ScopedNoDenormals flushed;
        const auto n = numHostSamples;
        const auto calibration = static_cast<float> (settings.calibrationGain);
        juce::AudioBuffer<float> signal (numChannels, n);

        for (int c = 0; c < numChannels; ++c)
            for (int i = 0; i < n; ++i)
                signal.setSample (c, i,
                                  input.getSample (c, i) * calibration * curves.input[static_cast<std::size_t> (i)]);

        for (int c = 0; c < numChannels; ++c)
            for (int i = 0; i < n; ++i)
            {
                const auto u = static_cast<float> (noise.next()) * 0x1p-31f;
                const auto centred = (u + u) - 1.0f;
                signal.setSample (c, i, signal.getSample (c, i) + centred * 4e-05f);
            }

        if (factor < 2)
        {
            core (signal, n);
        }
        else
        {
            juce::AudioBuffer<float> work (numChannels, n * factor);

            for (int c = 0; c < numChannels; ++c)
                oversamplers[static_cast<std::size_t> (c)].up (signal.getReadPointer (c), work.getWritePointer (c), n);

            core (work, n * factor);

            for (int c = 0; c < numChannels; ++c)
            {
                clip (work, c, n * factor);
                oversamplers[static_cast<std::size_t> (c)].down (work.getReadPointer (c), signal.getWritePointer (c),
                                                                 n);
            }
        }

        const auto delay = factor < 2 ? 0 : 52;

        for (int c = 0; c < numChannels; ++c)
            for (int i = 0; i < n; ++i)
            {
                const auto at = static_cast<std::size_t> (i);
                const auto master = curves.master[at] * (1.0f / calibration);
                auto x = signal.getSample (c, i) * master * curves.output[at];

                if (curves.dryNeeded)
                {
                    // The dry share is taken when the sample comes in; it waits in the delay already scaled.
                    const auto dry = i < delay ? 0.0f
                                               : input.getSample (c, i - delay)
                                                     * (1.0f - curves.wet[static_cast<std::size_t> (i - delay)]);
                    x = x * curves.wet[at] + dry;
                }

                signal.setSample (c, i, x);
            }

        return signal;
    }

    Curves curves;

private:
    static void clip (juce::AudioBuffer<float>& signal, int channel, int n)
    {
        for (int i = 0; i < n; ++i)
            signal.setSample (channel, i, juce::jlimit (-24.0f, 24.0f, signal.getSample (channel, i)));
    }

    void core (juce::AudioBuffer<float>& x, int m)
    {
        juce::AudioBuffer<float> low (x), high (x), mid (x);
        lowSplit.process (low.getArrayOfWritePointers(), m);

        for (int c = 0; c < numChannels; ++c)
            for (int i = 0; i < m; ++i)
            {
                const auto rest = x.getSample (c, i) - low.getSample (c, i);
                high.setSample (c, i, rest);
                mid.setSample (c, i, rest);
            }

        highSplit.process (high.getArrayOfWritePointers(), m);

        for (int c = 0; c < numChannels; ++c)
            for (int i = 0; i < m; ++i)
                mid.setSample (c, i, mid.getSample (c, i) - high.getSample (c, i));

        bands[0].process (low.getArrayOfWritePointers(), m);
        bands[1].process (mid.getArrayOfWritePointers(), m);
        bands[2].process (high.getArrayOfWritePointers(), m);

        for (int c = 0; c < numChannels; ++c)
        {
            for (int i = 0; i < m; ++i)
                x.setSample (c, i, high.getSample (c, i) + (low.getSample (c, i) + mid.getSample (c, i)));

            clip (x, c, m);

            if (settings.nuke)
                for (int i = 0; i < m; ++i)
                    x.setSample (c, i, x.getSample (c, i) * 10.0f);

            transformer.process (x.getWritePointer (c), m, transformerStates[static_cast<std::size_t> (c)]);

            if (settings.nuke)
                for (int i = 0; i < m; ++i)
                    x.setSample (c, i, x.getSample (c, i) * 0.1f);
        }
    }

    ChannelSettings settings;
    int numChannels, factor, numHostSamples;
    BandCompressor bands[3] { BandCompressor (0), BandCompressor (1), BandCompressor (2) };
    CrossoverFilter lowSplit { 0 }, highSplit { 1 };
    OutputTransformer transformer;
    std::vector<OutputChannelState> transformerStates;
    std::vector<OversamplerChannel> oversamplers;
};
