// SPDX-License-Identifier: GPL-3.0-or-later
#include "render/ProcessorSetup.h"

#include "parameters/ParameterTable.h"
#include "render/SettingsText.h"
#include "render/StateFile.h"

ProcessorSetup::ProcessorSetup (const RenderOptions& options, CorvaneQ7AudioProcessor& processorToSet)
    : processor (processorToSet)
{
    // Always told, for the processor starts with what the user's settings file says.
    processor.setOversampling (RenderOptions::defaultOversampling);
    processor.setCalibration (RenderOptions::defaultCalibrationDb);
    processor.uiZoom = static_cast<float> (RenderOptions::defaultZoom);

    useProgram (options.program);

    if (! options.state.empty())
        StateFile::restore (options.state, processor);

    if (! options.settingsText.empty())
        SettingsText::apply (options.settingsText, processor);

    for (const auto& change : options.changes)
        make (change);

    if (options.bypass)
        processor.setParameter (ParameterTable::indexOf ("Bypass"), 1.0f);

    if (options.oversampling)
        processor.setOversampling (*options.oversampling);

    if (options.calibrationDb)
        processor.setCalibration (*options.calibrationDb);
}

void ProcessorSetup::useProgram (int program)
{
    processor.activeSettings() = processor.programs[static_cast<std::size_t> (program)];
    processor.applySettings();
}

void ProcessorSetup::make (const ParameterChange& change)
{
    const auto meter = ParameterTable::indexOf ("LowMeter"); // of the other bands so many controls on

    processor.setParameter (change.index, change.normalised);

    if (! ParameterTable::isBandControl (change.index) || change.index % ParameterTable::numBandControls != meter)
        return;

    meterIsSet[static_cast<std::size_t> (change.index / ParameterTable::numBandControls)] = true;

    if (processor.activeSettings().link)
        meterIsSet.fill (true);
}

void ProcessorSetup::showLevels()
{
    for (std::size_t band = 0; band < meterIsSet.size(); ++band)
        if (! meterIsSet[band])
            processor.activeSettings().bands[band].meter = ChannelSettings::meterOut;
}
