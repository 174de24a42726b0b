// SPDX-License-Identifier: GPL-3.0-or-later
#include "dsp/SmoothedSVFilter.h"

#include <algorithm>
#include <cmath>

void SVResponse::setResponse (int newType, double newFrequency, double newQ, double newGain) noexcept
{
    type = newType;
    frequency = newFrequency;
    q = newQ;
    gain = newGain;

    if (ready)
        glideTo (compute());
}

void SVResponse::land (double newRate) noexcept
{
    rate = newRate;
    landOn (compute(), newRate);
}

void SVResponse::follow (const SVResponse& plan, bool exactly) noexcept
{
    GlidingResponse::follow (plan, exactly);
    type = plan.type;
    frequency = plan.frequency;
    q = plan.q;
    gain = plan.gain;
    rate = plan.rate;
}

SVResponse::Coefficients SVResponse::compute() const noexcept
{
    // Above half the rate the formulas turn unstable; what a control can ask for at usual rates stays far below.
    const auto hz = std::min (frequency, 0.49 * rate);
    const auto t = std::tan (hz * 3.141592653589793 / rate);
    const auto A = std::sqrt (gain);
    auto g = t;
    auto k = 1.0 / q;
    double m0 = 0.0, m1 = 0.0, m2 = 0.0;

    switch (type)
    {
        case lowPass: m2 = 1.0; break;
        case bandPass: m1 = 1.0; break;
        case highPass:
            m0 = 1.0;
            m1 = -k;
            m2 = -1.0;
            break;
        case notch:
            m0 = 1.0;
            m1 = -k;
            break;
        case peak:
            m0 = 1.0;
            m1 = -k;
            m2 = -2.0;
            break;

        case bell:
            k = 1.0 / (q * A);
            m0 = 1.0;
            m1 = (A * A - 1.0) * k;
            break;

        case lowShelf:
            g = t / std::sqrt (A);
            m0 = 1.0;
            m1 = (A - 1.0) * k;
            m2 = A * A - 1.0;
            break;

        case highShelf:
            g = t * std::sqrt (A);
            m0 = A * A;
            m1 = (1.0 - A) * k * A;
            m2 = 1.0 - A * A;
            break;

        default: return {}; // an unknown type is silent, as in the filter library
    }

    const auto a1 = 1.0 / ((k + g) * g + 1.0);
    const auto a2 = g * a1;
    const auto a3 = g * a2;
    return { a1, a2, a3, m0, m1, m2 };
}
