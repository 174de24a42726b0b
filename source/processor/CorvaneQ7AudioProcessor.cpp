// SPDX-License-Identifier: GPL-3.0-or-later
#include "processor/CorvaneQ7AudioProcessor.h"

namespace
{
/** Hosts choose a program right after they restored a state: within this time the state wins. */
constexpr std::uint32_t programShieldMs = 500;
} // namespace

CorvaneQ7AudioProcessor::CorvaneQ7AudioProcessor()
    : juce::AudioProcessor (BusesProperties()
                                .withInput ("Input", juce::AudioChannelSet::stereo(), true)
                                .withOutput ("Output", juce::AudioChannelSet::stereo(), true)),
      programs (FactoryPrograms::numPrograms, ChannelSettings (*this)),
      hostType (static_cast<int> (juce::PluginHostType().type))
{
    // Denormals are flushed on the constructing thread too, as the audio thread does around each block.
    juce::FloatVectorOperations::disableDenormalisedNumberSupport();

    activeSettings().calibrationGain = UserDefaults::calibrationGainFor (userDefaults.calibrationDb());
    oversamplingRequested = userDefaults.oversampling();
    uiZoom = static_cast<float> (userDefaults.uiZoom());
    setLatencySamples (latencyOf (oversamplingRequested));

    for (int i = 0; i < FactoryPrograms::numPrograms; ++i)
    {
        FactoryPrograms::fill (programs[static_cast<std::size_t> (i)], i);
        programNames[i] = FactoryPrograms::name (i);
    }
}

void CorvaneQ7AudioProcessor::prepareToPlay (double sampleRate, int estimatedSamplesPerBlock)
{
    maxBlockSize = juce::jmax (0, estimatedSamplesPerBlock);
    reconfigure (sampleRate);
}

void CorvaneQ7AudioProcessor::releaseResources()
{
    // VST3 hosts call this while they may still ask for a block.
    if (wrapperType == wrapperType_VST3)
        return;

    for (auto& group : bandGroups)
        group.compressor.release();
}

void CorvaneQ7AudioProcessor::setCurrentProgram (int index)
{
    currentProgram = juce::jlimit (0, FactoryPrograms::numPrograms - 1, index);

    // Unsigned differences stay right when the counter wraps; 0 means that no state was ever restored.
    if (lastStateRestoreMs != 0 && juce::Time::getMillisecondCounter() - lastStateRestoreMs < programShieldMs)
        return;

    activeSettings() = programs[static_cast<std::size_t> (currentProgram)];
    applySettings();
}

const juce::String CorvaneQ7AudioProcessor::getProgramName (int index)
{
    return index >= 0 && index < FactoryPrograms::numPrograms ? programNames[index] : juce::String();
}

void CorvaneQ7AudioProcessor::applySettings()
{
    const auto& settings = activeSettings();

    mixRamp.setTarget (settings.bypass.target < 0.5 ? settings.mix : 0.0);

    for (auto& group : bandGroups)
        group.compressor.applyBandSettings (settings);

    lowSplit.setResponse (settings.lowXOverHz, 1.0, 1.0, CrossoverFilter::lowPass);
    highSplit.setResponse (settings.highXOverHz, 1.0, 1.0, CrossoverFilter::highPass);
}

void CorvaneQ7AudioProcessor::setCalibration (double calibrationDb)
{
    activeSettings().calibrationGain = UserDefaults::calibrationGainFor (calibrationDb);
    applySettings();
}

void CorvaneQ7AudioProcessor::setOversampling (int factor)
{
    if (oversamplingRequested == factor)
        return;

    // Stored before the host hears of it: a host may prepare anew within the notice.
    oversamplingRequested = factor;

    if (latencyOf (factor) != getLatencySamples())
        setLatencySamples (latencyOf (factor));

    updateHostDisplay (ChangeDetails::getDefaultFlags().withNonParameterStateChanged (true));
}

// Sessions do not carry settings yet: this version hands out an empty state and takes none.

void CorvaneQ7AudioProcessor::getStateInformation (juce::MemoryBlock& destination) { destination.reset(); }

void CorvaneQ7AudioProcessor::setStateInformation (const void*, int)
{
    freshInstance = false;
    lastStateRestoreMs = juce::Time::getMillisecondCounter();
}
