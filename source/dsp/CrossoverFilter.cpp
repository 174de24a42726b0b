// SPDX-License-Identifier: GPL-3.0-or-later
#include "dsp/CrossoverFilter.h"

CrossoverResponse::CrossoverResponse (int initialType) noexcept : type (initialType)
{
    const auto values = compute();

    for (std::size_t i = 0; i < smoothers.size(); ++i)
        smoothers[i] = LinearSmoother (values[i]);
}

void CrossoverResponse::setResponse (double newFrequency, double newQ, double newGain, int newType) noexcept
{
    frequency = newFrequency;
    q = newQ;
    gain = newGain;
    type = newType;

    if (ready)
        glideTo (compute());
}

void CrossoverResponse::land (double newRate) noexcept
{
    rate = newRate;
    landOn (compute(), newRate);
}

void CrossoverResponse::follow (const CrossoverResponse& plan, bool exactly) noexcept
{
    GlidingResponse::follow (plan, exactly);
    type = plan.type;
    frequency = plan.frequency;
    q = plan.q;
    gain = plan.gain;
    rate = plan.rate;
}

CrossoverResponse::Coefficients CrossoverResponse::compute() const noexcept
{
    const auto p = std::exp (frequency * -6.283185307179586 / rate);

    switch (type)
    {
        case lowPass: return { 1.0 - p, 0.0, p };
        case highPass: return { (p + 1.0) * 0.5, (p + 1.0) * -0.5, p };
        default: return { 1.0, 0.0, 0.0 };
    }
}
