// SPDX-License-Identifier: GPL-3.0-or-later
// The way of the settings into the engine: what is planned of a record, and how the audio path follows it.
#include "processor/CorvaneQ7AudioProcessor.h"

void CorvaneQ7AudioProcessor::applySettings()
{
    handOver.settingsChanged();
    planSettings();
}

void CorvaneQ7AudioProcessor::planSettings() noexcept
{
    handOver.planNewest ([this] (EngineControls& controls) { plan (controls); });
}

void CorvaneQ7AudioProcessor::plan (EngineControls& controls) noexcept
{
    const int slot = activeSlot;
    const ChannelSettings settings (settingsSlots[slot]); // one copy, so that all parts plan from the same values

    controls.audible = { slot, settings.nuke, settings.calibrationGain };
    controls.mixRamp.setTarget (settings.bypass.target < 0.5 ? settings.mix.load() : 0.0);

    for (int s = 0; s < 2; ++s)
        controls.levels[s].take (settingsSlots[s]);

    for (auto& band : controls.bands)
        band.applyBandSettings (settings);

    controls.lowSplit.setResponse (settings.lowXOverHz, 1.0, 1.0, CrossoverResponse::lowPass);
    controls.highSplit.setResponse (settings.highXOverHz, 1.0, 1.0, CrossoverResponse::highPass);
}

void CorvaneQ7AudioProcessor::followSettings() noexcept
{
    // What a thread found being planned, and left to whoever planned, is planned here at the latest.
    planSettings();
    followPlan();
}

void CorvaneQ7AudioProcessor::followPlan() noexcept
{
    const auto [controls, exact] = handOver.takePlan (mixRamp.length);

    if (controls == nullptr)
        return;

    mixRamp.follow (controls->mixRamp, exact);
    audible = controls->audible;

    for (int s = 0; s < 2; ++s)
        levels[s].follow (controls->levels[s], exact);

    for (int b = 0; b < numBands; ++b)
        bandGroups[b].compressor.follow (controls->bands[b], exact);

    lowSplit.follow (controls->lowSplit, exact);
    highSplit.follow (controls->highSplit, exact);
}

void CorvaneQ7AudioProcessor::tell (EngineControls& controls) const noexcept
{
    controls.mixRamp = mixRamp;
    controls.audible = audible;

    for (int s = 0; s < 2; ++s)
        controls.levels[s] = levels[s];

    for (int b = 0; b < numBands; ++b)
        controls.bands[b].follow (bandGroups[b].compressor, true);

    controls.lowSplit = lowSplit;
    controls.highSplit = highSplit;
}

void CorvaneQ7AudioProcessor::endBlock (int numSamples) noexcept
{
    handOver.blockEnds (numSamples, [this] (EngineControls& controls) { tell (controls); });
}
