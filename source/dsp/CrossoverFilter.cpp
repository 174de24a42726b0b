// SPDX-License-Identifier: GPL-3.0-or-later
#include "dsp/CrossoverFilter.h"

CrossoverFilter::CrossoverFilter (int initialType) noexcept : type (initialType)
{
    const auto values = compute();

    for (std::size_t i = 0; i < smoothers.size(); ++i)
        smoothers[i] = LinearSmoother (values[i]);
}

void CrossoverFilter::setResponse (double newFrequency, double newQ, double newGain, int newType) noexcept
{
    frequency = newFrequency;
    q = newQ;
    gain = newGain;
    type = newType;

    if (ready)
        glideTo (compute());
}

void CrossoverFilter::prepare (double newRate, int numChannels, int maxSamples)
{
    rate = newRate;
    prepareFor (compute(), newRate, numChannels, maxSamples);
}

CrossoverFilter::Coefficients CrossoverFilter::compute() const noexcept
{
    const auto p = std::exp (frequency * -6.283185307179586 / rate);

    switch (type)
    {
        case lowPass: return { 1.0 - p, 0.0, p };
        case highPass: return { (p + 1.0) * 0.5, (p + 1.0) * -0.5, p };
        default: return { 1.0, 0.0, 0.0 };
    }
}
