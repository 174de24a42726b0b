// SPDX-License-Identifier: GPL-3.0-or-later
// What the meters show: running levels before and behind a band, and their decay while no band runs.
#include "processor/CorvaneQ7AudioProcessor.h"
#include "settings/Decibels.h"

#include <algorithm>

double CorvaneQ7AudioProcessor::tap (std::vector<RmsFollower>& followers, double levelPeak, float* const* channels,
                                     int numSamples, int numChannels) const noexcept
{
    const auto share = numChannels > 0 ? 1.0 / numChannels : 0.0;

    for (int i = 0; i < numSamples; ++i)
    {
        auto sum = 0.0;

        for (int c = 0; c < numChannels; ++c)
            sum += followers[static_cast<std::size_t> (c)].follow (channels[c][i]) * share;

        levelPeak = juce::jmax (levelPeak * meterDecay, sum);
    }

    return levelPeak;
}

void CorvaneQ7AudioProcessor::updateMetersIdle (int numSamples) noexcept
{
    auto& settings = settingsSlots[audible.slot];
    const auto internalSamples = builtFactor * numSamples;

    // In float, from the whole block: the last digits differ from the audio path's decay per sample.
    const auto decay =
        static_cast<double> (std::pow (static_cast<float> (meterDecay), static_cast<float> (internalSamples)));

    for (int b = 0; b < numBands; ++b)
    {
        auto& group = bandGroups[b];
        const auto meter = settings.bands[b].meter;

        if (meter == ChannelSettings::meterIn)
        {
            group.inputPeak *= decay;
            settings.level (b) = group.inputPeak * levelScale;
        }

        group.compressor.idleAdvance (internalSamples);
        settings.gainReduction (b) = group.compressor.meterValue();

        if (meter == ChannelSettings::meterOut)
        {
            group.outputPeak *= decay;
            settings.level (b) = group.outputPeak * levelScale;
        }
    }
}

double CorvaneQ7AudioProcessor::deepestGainReductionDb() const noexcept
{
    const auto& settings = settingsSlots[activeSlot];

    if (hostBypasses || settings.bypass.target >= 0.5)
        return 0.0;

    const auto deepest =
        std::min<double> ({ settings.lowGainReduction, settings.midGainReduction, settings.highGainReduction });
    return std::isnan (deepest) ? 0.0 : std::min (0.0, Decibels::fromGain (deepest));
}

std::int32_t CorvaneQ7AudioProcessor::queryIEditController (const Steinberg::TUID interfaceId, void** object)
{
    if (gainReductionReport.query (interfaceId, object))
        return 0;

    *object = nullptr;
    return -1;
}
