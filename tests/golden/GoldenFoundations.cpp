// SPDX-License-Identifier: GPL-3.0-or-later
// What the engine stands on and does not make itself: functions of the C library at the arguments that designs use, and
// the tables that are made with them when a process starts.
#include "golden/GoldenFoundations.h"

#include "dsp/ControlLaw.h"
#include "dsp/DetectorCurves.h"
#include "golden/GoldenHash.h"

#include <cmath>

GoldenResult GoldenFoundations::libraryFunctions()
{
    constexpr double pi = 3.141592653589793;
    GoldenHash hash;

    for (const auto rate : { 44100.0, 48000.0, 96000.0, 192000.0 })
    {
        for (int factor = 1; factor <= 16; ++factor)
        {
            const auto T = 1.0 / (factor * rate);

            for (const auto seconds : { 0.0025, 0.005, 0.4, 1.2, 2.0 })
                hash.add (std::exp (-T / seconds));

            for (auto hz = 20.0; hz < 20000.0; hz *= 1.37)
            {
                hash.add (std::exp (hz * (-2.0 * pi) * T));
                hash.add (std::tan (hz * pi * T));
            }
        }
    }

    for (int step = -400; step <= 240; ++step)
        hash.add (std::pow (10.0, (step * 0.25) * 0.05));

    for (int i = 1; i <= 1000; ++i)
    {
        hash.add (std::log10 (i * 0.05));
        hash.add (std::pow (10.0, i * 0.001 * 1.778151250383644));
        hash.add (std::sin (i * 0.37));
        hash.add (std::cos (i * 0.37));
        hash.add (std::pow (0.999f, static_cast<float> (i)));
    }

    return { hash.value(), 0, {} };
}

GoldenResult GoldenFoundations::controlLaw()
{
    GoldenHash hash;

    for (const auto entry : ControlLaw::shared().entries)
        hash.add (entry);

    return { hash.value(), 0, {} };
}

GoldenResult GoldenFoundations::detectorCurves()
{
    GoldenHash hash;

    for (int row = 0; row < DetectorCurves::numCurves; ++row)
    {
        const auto& curve = DetectorCurves::forRatio (row);
        hash.add (curve.xMin);
        hash.add (curve.xMax);
        hash.add (curve.step);
        hash.add (curve.indexScale);

        for (int i = 0; i < DetectorCurve::numEntries; ++i)
            hash.add (curve.entries[i]);

        // Beyond the end, where a power goes on.
        for (int i = 1; i < 100; ++i)
            hash.add (curve (curve.xMax * (1.0f + 0.01f * static_cast<float> (i))));
    }

    return { hash.value(), 0, {} };
}
