// SPDX-License-Identifier: GPL-3.0-or-later
#include "dsp/ControlLaw.h"

#include <algorithm>
#include <cmath>

float ControlLaw::compute (float v) noexcept
{
    const float a = -0.74f * v + (-2.0f * std::log (v + 0.6f)) + 0.07f;
    const float b = (v - 2.8f) * 4.9f * 0.6f;

    // The knee: a soft step of slope, the one part in double.
    const double knee = std::log (std::exp (static_cast<double> (b)) + 1.0) / -0.6000000238418579;
    const float c = static_cast<float> (knee + static_cast<double> (a));

    const float d = c + 0.5f;
    const float e = d / (std::max (d, 0.0f) * 1.1727025508880615f + 1.0f);
    const float decibels = e - 0.5f - 34.0f + 0.298f;

    return decibels > -100.0f ? std::pow (10.0f, decibels * 0.05f) : 0.0f;
}

ControlLaw::ControlLaw()
{
    entries[0] = 0.020780690014362335f; // the law at 0, as the unit's table holds it

    for (int i = 1; i < numEntries; ++i)
        entries[static_cast<std::size_t> (i)] =
            compute ((10.0f - 0.0f) * static_cast<float> (i) * 0.000030517578125f + 0.0f);
}

const ControlLaw& ControlLaw::shared()
{
    static const ControlLaw law;
    return law;
}
