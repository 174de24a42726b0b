// SPDX-License-Identifier: GPL-3.0-or-later
#include "processor/CorvaneQ7AudioProcessor.h"

#include "parameters/ParameterTable.h"
#include "parameters/SettingsParameter.h"

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

    const auto defaults = UserDefaults::read();
    activeSettings().calibrationGain = UserDefaults::calibrationGainFor (defaults.calibrationDb);
    oversamplingRequested = defaults.oversampling;
    uiZoom = static_cast<float> (defaults.uiZoom);
    setLatencySamples (latencyOf (oversamplingRequested));

    for (int i = 0; i < FactoryPrograms::numPrograms; ++i)
    {
        FactoryPrograms::fill (programs[static_cast<std::size_t> (i)], i);
        programNames[i] = FactoryPrograms::name (i);
    }

    // Some wrappers want a number of steps even for a continuous control.
    const auto finiteSteps = wrapperType == wrapperType_AAX || wrapperType == wrapperType_Standalone;

    for (const auto& row : ParameterTable::rows)
        addParameter (row.make (row, activeSettings(), finiteSteps).release());
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

    // Unsigned differences stay right when the counter wraps. A fresh instance has had no state to shield.
    if (! freshInstance && millisecondCounter() - lastStateRestoreMs.load() < programShieldMs)
        return;

    activeSettings() = programs[static_cast<std::size_t> (currentProgram)];
    applySettings();
}

const juce::String CorvaneQ7AudioProcessor::getProgramName (int index)
{
    return index >= 0 && index < FactoryPrograms::numPrograms ? programNames[index] : juce::String();
}

void CorvaneQ7AudioProcessor::rebindParameters()
{
    for (auto* parameter : getParameters())
        if (auto* view = dynamic_cast<SettingsParameter*> (parameter))
            view->bind (activeSettings());
}

void CorvaneQ7AudioProcessor::selectSlot (int slot)
{
    activeSlot = slot == 1 ? 1 : 0;
    rebindParameters();
    applySettings();
    updateHostDisplay();
}

void CorvaneQ7AudioProcessor::copyToOtherSlot() { settingsSlots[(activeSlot + 1) % 2] = activeSettings(); }

void CorvaneQ7AudioProcessor::setCalibration (double calibrationDb)
{
    activeSettings().calibrationGain = UserDefaults::calibrationGainFor (calibrationDb);
    applySettings();
}

void CorvaneQ7AudioProcessor::setOversampling (int factor)
{
    if (oversamplingRequested != factor)
        changeOversampling (factor);
}

void CorvaneQ7AudioProcessor::changeOversampling (int factor)
{
    // Stored before the host hears of it: a host may prepare anew within the notice.
    oversamplingRequested = factor;

    if (latencyOf (factor) != getLatencySamples())
        setLatencySamples (latencyOf (factor));

    updateHostDisplay (ChangeDetails::getDefaultFlags().withNonParameterStateChanged (true));
}
