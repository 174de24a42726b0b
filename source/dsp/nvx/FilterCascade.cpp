// SPDX-License-Identifier: GPL-3.0-or-later
#include "dsp/nvx/FilterCascade.h"

#include "dsp/nvx/IIRFilter.h"
#include "dsp/nvx/OnePoleFilter.h"
#include "dsp/nvx/SVFilter.h"

#include <utility>

namespace NVX
{

namespace
{
std::unique_ptr<Filter> makeFilter (int type, double frequency, double q, double gain)
{
    switch (type)
    {
        case iirHighPass:
        case iirLowPass:
        case iirPeaking:
        case iirAllPass:
        case iirBandPass:
        case iirLowShelf:
        case iirHighShelf: return std::make_unique<IIRFilter> (type, frequency, q, gain);
        case onePoleHighPass: return std::make_unique<OnePoleFilter<onePoleHighPass>> (frequency);
        case onePoleLowPass: return std::make_unique<OnePoleFilter<onePoleLowPass>> (frequency);
        case svLowPass: return std::make_unique<SVFilter<svLowPass>> (frequency, q, gain);
        case svBandPass: return std::make_unique<SVFilter<svBandPass>> (frequency, q, gain);
        case svHighPass: return std::make_unique<SVFilter<svHighPass>> (frequency, q, gain);
        case svPeak: return std::make_unique<SVFilter<svPeak>> (frequency, q, gain);
        case svSilent: return std::make_unique<SVFilter<svSilent>> (frequency, q, gain);
        case svBell: return std::make_unique<SVFilter<svBell>> (frequency, q, gain);
        case svLowShelf: return std::make_unique<SVFilter<svLowShelf>> (frequency, q, gain);
        case svHighShelf: return std::make_unique<SVFilter<svHighShelf>> (frequency, q, gain);
        default: return nullptr;
    }
}
} // namespace

void FilterCascade::clearFilters()
{
    doubleFilters.clear();
    biquads.clear();
}

void FilterCascade::addFilter (int type, double filterFrequency, double filterQ, double filterGain)
{
    auto filter = makeFilter (type, filterFrequency, filterQ, filterGain);

    if (filter == nullptr)
        return;

    auto& list = type <= iirHighShelf ? biquads : doubleFilters;
    list.push_back (std::move (filter));
}

void FilterCascade::setSampleRate (int newNumChannels, double newSampleRate)
{
    Effect::setSampleRate (newNumChannels, newSampleRate);

    for (auto& filter : doubleFilters)
        filter->setSampleRate (newNumChannels, newSampleRate);

    for (auto& filter : biquads)
        filter->setSampleRate (newNumChannels, newSampleRate);

    ready = true;
}

void FilterCascade::clear()
{
    ready = false;

    for (auto& filter : doubleFilters)
        filter->clear();

    for (auto& filter : biquads)
        filter->clear();
}

void FilterCascade::process (float* samples, int numSamples, int channel) noexcept
{
    for (auto& filter : doubleFilters)
        filter->process (samples, numSamples, channel);

    for (auto& filter : biquads)
        filter->process (samples, numSamples, channel);
}

} // namespace NVX
