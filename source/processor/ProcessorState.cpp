// SPDX-License-Identifier: GPL-3.0-or-later
// What a host's session keeps, and how it comes back.
#include "parameters/ParameterTable.h"
#include "processor/CorvaneQ7AudioProcessor.h"

void CorvaneQ7AudioProcessor::getStateInformation (juce::MemoryBlock& destination)
{
    std::array<float, ParameterTable::numParameters> values;

    for (int i = 0; i < ParameterTable::numParameters; ++i)
        values[static_cast<std::size_t> (i)] = getParameter (i);

    // The standalone program keeps its last state by itself: a fresh one must not freeze the user's defaults.
    std::optional<PluginState::Options> options;

    if (wrapperType != wrapperType_Standalone || ! freshInstance)
        options = PluginState::Options { UserDefaults::calibrationDbFor (activeSettings().calibrationGain),
                                         oversamplingRequested, static_cast<double> (uiZoom) };

    destination = PluginState::write (values.data(), options);
}

void CorvaneQ7AudioProcessor::setStateInformation (const void* data, int sizeInBytes)
{
    freshInstance = false;

    if (const PluginState::Reader state (data, sizeInBytes); state.isValid())
    {
        // In ascending order, each by the road of a control change. Link is restored late, so a link that was on
        // carries the high band's values to all three.
        for (int i = 0; i < ParameterTable::numParameters; ++i)
        {
            const auto stored = state.number (ParameterTable::rows[i].identifier);
            setParameter (i, stored.has_value() ? static_cast<float> (*stored) : getParameterDefaultValue (i));
        }

        if (! state.isPreset())
            restoreOptions (state);
    }

    // After a failure too: a host's choice of a program right after this must not overwrite what is here.
    lastStateRestoreMs = millisecondCounter();
}

void CorvaneQ7AudioProcessor::restoreOptions (const PluginState::Reader& state)
{
    const auto defaults = UserDefaults::read();

    const auto calibrationDb = state.number ("Calibration").value_or (defaults.calibrationDb);
    const auto calibrationGain = UserDefaults::calibrationGainFor (calibrationDb);

    // Levels are taken as they stand, but what is no number, or would carry samples out of the audio path's range (from
    // 239 dBu), is no level.
    constexpr double highestGain = 1.0e12;

    if (! std::isnan (calibrationDb) && calibrationGain <= highestGain)
    {
        activeSettings().calibrationGain = calibrationGain;
        applySettings();
    }

    const auto factor = state.integer ("Oversampling").value_or (defaults.oversampling);

    if (factor != oversamplingRequested)
        changeOversampling (factor);

    uiZoom = static_cast<float> (state.number ("UIZoom").value_or (defaults.uiZoom));
}
