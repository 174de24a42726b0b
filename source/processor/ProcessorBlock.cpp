// SPDX-License-Identifier: GPL-3.0-or-later
// The road of one block, from the host's call to the output.
#include "dsp/VectorOps.h"
#include "processor/CorvaneQ7AudioProcessor.h"

namespace
{
constexpr float ceiling = 24.0f;   // where the circuit clips, linear
constexpr float nukeDrive = 10.0f; // into the transformer, 20 dB
constexpr float nukeReturn = 0.1f;
constexpr float noiseAmplitude = 4.0e-05f; // in circuit units

/** Back from circuit units. A session may hold a calibration that lets nothing in: then nothing comes back, where the
    quotient would be no number. */
float returnGain (double calibrationGain) noexcept
{
    const auto gain = static_cast<float> (calibrationGain);
    return gain != 0.0f ? 1.0f / gain : 0.0f;
}

void clipToRails (float* samples, int n) noexcept { VectorOps::clip (samples, -ceiling, ceiling, samples, n); }
} // namespace

bool CorvaneQ7AudioProcessor::engineIsReady() const noexcept
{
    return maxBlockSize > 0 && bandGroups[0].compressor.isReady();
}

int CorvaneQ7AudioProcessor::numChannelsOf (const juce::AudioBuffer<float>& buffer) const noexcept
{
    return juce::jmin (getTotalNumInputChannels(), builtChannels, buffer.getNumChannels());
}

void CorvaneQ7AudioProcessor::clearOutputsWithoutInput (juce::AudioBuffer<float>& buffer) const
{
    const auto end = juce::jmin (getTotalNumOutputChannels(), buffer.getNumChannels());

    if (! buffer.hasBeenCleared())
        for (int c = getTotalNumInputChannels(); c < end; ++c)
            buffer.clear (c, 0, buffer.getNumSamples());
}

void CorvaneQ7AudioProcessor::processBlock (juce::AudioBuffer<float>& buffer, juce::MidiBuffer&)
{
    const juce::ScopedNoDenormals noDenormals;
    const auto numSamples = buffer.getNumSamples();

    if (numSamples < 1 || buffer.getNumChannels() < 1 || reconfiguring)
        return;

    hostBypasses = false;
    clearOutputsWithoutInput (buffer);
    rebuildIfAsked();

    if (! engineIsReady())
        return;

    followSettings();
    buffer.setNotClear();

    const auto numChannels = numChannelsOf (buffer);
    auto* const* channels = buffer.getArrayOfWritePointers();

    for (int done = 0; done < numSamples; done += maxBlockSize)
    {
        for (int c = 0; c < numChannels; ++c)
            piecePointers[static_cast<std::size_t> (c)] = channels[c] + done;

        processPiece (piecePointers.data(), numChannels, juce::jmin (maxBlockSize, numSamples - done));
    }

    endBlock (numSamples);
}

void CorvaneQ7AudioProcessor::processPiece (float* const* channels, int numChannels, int numSamples)
{
    auto& settings = settingsSlots[audible.slot];
    auto& level = levels[audible.slot];
    auto* const* curves = controlBuffer.getArrayOfWritePointers();
    const auto mixStepsLeft = mixRamp.remaining;
    const auto mixTarget = mixRamp.target;

    // Fully dry: nothing but the delay, bit for bit.
    if (mixStepsLeft == 0 && mixTarget <= 0.0)
    {
        for (int c = 0; c < numChannels; ++c)
            dryDelay.process (channels[c], numSamples, c);

        updateMetersIdle (numSamples);
        return;
    }

    // 1  Dry copy, when the mix needs one.
    const auto dryNeeded = mixStepsLeft != 0 || mixTarget < 1.0;

    if (dryNeeded)
        keepDryCopy (channels, numChannels, numSamples);

    // 2, 3  Calibration, In Level, noise floor.
    level.in.fill (curves[inputCurve], numSamples);

    for (int c = 0; c < numChannels; ++c)
    {
        VectorOps::multiplyByConstant (channels[c], static_cast<float> (audible.calibrationGain), channels[c],
                                       numSamples);
        VectorOps::multiply (channels[c], curves[inputCurve], channels[c], numSamples);
        addNoise (channels[c], numSamples);
    }

    // 4 to 9  Up, bands, transformer, down.
    if (builtFactor < 2)
        processCore (channels, numSamples, numChannels, settings);
    else
        processOversampled (channels, numChannels, numSamples, settings);

    // 10  Master Gain over the calibration, Out Level.
    level.out.fill (curves[outputCurve], numSamples);
    level.master.fill (curves[masterCurve], numSamples);
    VectorOps::multiplyByConstant (curves[masterCurve], returnGain (audible.calibrationGain), curves[masterCurve],
                                   numSamples);

    for (int c = 0; c < numChannels; ++c)
    {
        VectorOps::multiply (channels[c], curves[masterCurve], channels[c], numSamples);
        VectorOps::multiply (channels[c], curves[outputCurve], channels[c], numSamples);
    }

    // 11  Wet share, plus the dry copy in step with the latency.
    if (dryNeeded)
        addDryCopy (channels, numChannels, numSamples);
}

void CorvaneQ7AudioProcessor::keepDryCopy (float* const* channels, int numChannels, int numSamples) noexcept
{
    auto* const* curves = controlBuffer.getArrayOfWritePointers();
    mixRamp.fill (curves[wetCurve], numSamples);

    for (int i = 0; i < numSamples; ++i)
        curves[dryCurve][i] = 1.0f - curves[wetCurve][i];

    for (int c = 0; c < numChannels; ++c)
        VectorOps::multiply (channels[c], curves[dryCurve], curves[numCurves + c], numSamples);
}

void CorvaneQ7AudioProcessor::addDryCopy (float* const* channels, int numChannels, int numSamples) noexcept
{
    auto* const* curves = controlBuffer.getArrayOfWritePointers();

    for (int c = 0; c < numChannels; ++c)
    {
        VectorOps::multiply (channels[c], curves[wetCurve], channels[c], numSamples);
        dryDelay.process (curves[numCurves + c], numSamples, c);
        VectorOps::add (channels[c], curves[numCurves + c], channels[c], numSamples);
    }
}

void CorvaneQ7AudioProcessor::addNoise (float* samples, int numSamples) noexcept
{
    constexpr float toUnit = 4.656612873077392578125e-10f; // 2^-31

    for (int i = 0; i < numSamples; ++i)
    {
        const auto u = static_cast<float> (noise->next()) * toUnit;
        samples[i] += ((u + u) - 1.0f) * noiseAmplitude;
    }
}

void CorvaneQ7AudioProcessor::processOversampled (float* const* channels, int numChannels, int numSamples,
                                                  ChannelSettings& settings)
{
    const auto internalSamples = builtFactor * numSamples;
    auto* const* work = workBuffer.getArrayOfWritePointers();

    for (int c = 0; c < numChannels; ++c)
        oversamplers[static_cast<std::size_t> (c)].up (channels[c], work[c], numSamples);

    processCore (work, internalSamples, numChannels, settings);

    for (int c = 0; c < numChannels; ++c)
    {
        clipToRails (work[c], internalSamples);
        oversamplers[static_cast<std::size_t> (c)].down (work[c], channels[c], numSamples);
    }
}

void CorvaneQ7AudioProcessor::processCore (float* const* channels, int numSamples, int numChannels,
                                           ChannelSettings& settings)
{
    splitBands (channels, numSamples, numChannels);
    processBands (numSamples, numChannels, settings);
    sumBandsIntoTransformer (channels, numSamples, numChannels, audible.nuke);
}

void CorvaneQ7AudioProcessor::splitBands (float* const* channels, int numSamples, int numChannels) noexcept
{
    auto* const* low = lowBuffer.getArrayOfWritePointers();
    auto* const* mid = midBuffer.getArrayOfWritePointers();
    auto* const* high = highBuffer.getArrayOfWritePointers();

    for (int c = 0; c < numChannels; ++c)
        VectorOps::copy (channels[c], low[c], numSamples);

    // A buffer with fewer channels than the bus leaves the rest of the engine silence, not an older block.
    for (int c = numChannels; c < builtChannels; ++c)
        for (auto* band : { low[c], mid[c], high[c] })
            VectorOps::clear (band, numSamples);

    lowSplit.process (low, numSamples);

    for (int c = 0; c < numChannels; ++c)
    {
        VectorOps::subtractFrom (low[c], channels[c], high[c], numSamples);
        VectorOps::copy (high[c], mid[c], numSamples);
    }

    highSplit.process (high, numSamples);

    for (int c = 0; c < numChannels; ++c)
        VectorOps::subtractFrom (high[c], mid[c], mid[c], numSamples);
}

void CorvaneQ7AudioProcessor::processBands (int numSamples, int numChannels, ChannelSettings& settings) noexcept
{
    juce::AudioBuffer<float>* const buffers[numBands] { &lowBuffer, &midBuffer, &highBuffer };

    for (int b = 0; b < numBands; ++b)
    {
        auto& group = bandGroups[b];
        auto* const* channels = buffers[b]->getArrayOfWritePointers();
        const auto meter = settings.bands[b].meter;

        if (meter == ChannelSettings::meterIn)
        {
            group.inputPeak = tap (group.inputFollowers, group.inputPeak, channels, numSamples, numChannels);
            settings.level (b) = group.inputPeak * levelScale;
        }
        else
        {
            group.inputPeak = 0.0;
        }

        group.compressor.process (channels, numSamples);
        settings.gainReduction (b) = group.compressor.meterValue();

        if (meter == ChannelSettings::meterOut)
        {
            group.outputPeak = tap (group.outputFollowers, group.outputPeak, channels, numSamples, numChannels);
            settings.level (b) = group.outputPeak * levelScale;
        }
        else
        {
            group.outputPeak = 0.0;
        }
    }
}

void CorvaneQ7AudioProcessor::sumBandsIntoTransformer (float* const* channels, int numSamples, int numChannels,
                                                       bool nuke) noexcept
{
    for (int c = 0; c < numChannels; ++c)
    {
        auto* x = channels[c];

        VectorOps::add (lowBuffer.getReadPointer (c), midBuffer.getReadPointer (c), x, numSamples);
        VectorOps::add (highBuffer.getReadPointer (c), x, x, numSamples);
        clipToRails (x, numSamples);

        if (nuke)
            VectorOps::multiplyByConstant (x, nukeDrive, x, numSamples);

        transformer.process (x, numSamples, transformerStates[static_cast<std::size_t> (c)]);

        if (nuke)
            VectorOps::multiplyByConstant (x, nukeReturn, x, numSamples);
    }
}

void CorvaneQ7AudioProcessor::processBlockBypassed (juce::AudioBuffer<float>& buffer, juce::MidiBuffer&)
{
    const juce::ScopedNoDenormals noDenormals;
    const auto numSamples = buffer.getNumSamples();

    if (numSamples < 1 || buffer.getNumChannels() < 1 || reconfiguring)
        return;

    hostBypasses = true;
    clearOutputsWithoutInput (buffer);

    // The delay must be the one that the host was told.
    rebuildIfAsked();

    if (maxBlockSize < 1)
        return;

    followSettings();
    buffer.setNotClear();

    for (int c = 0; c < numChannelsOf (buffer); ++c)
        dryDelay.process (buffer.getWritePointer (c), numSamples, c);

    updateMetersIdle (numSamples);
    endBlock (0); // no ramp moved
}
