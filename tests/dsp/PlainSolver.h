// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "dsp/DetectorCurves.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <vector>

/** The gain computer of a band a second time: one step after the other, with no thought for speed, so that the
    engine's can be held against it bit for bit. It shares the stored curves with the engine and nothing else. */
namespace Plain
{
constexpr int numEntries = 32768;
constexpr double restVoltage = 0.1;

constexpr double attackOhms[] = { 10.0, 70.0, 270.0, 1400.0 };
constexpr double recoveryOhms[] = { 8200.0, 39000.0, 82000.0, 180000.0, 3900.0 };

/** A rounding to float that no optimiser may take away. */
inline float rounded (double value)
{
    volatile float narrow = static_cast<float> (value);
    return narrow;
}

/** The gain element: volt to linear gain, in float but for one logarithm. */
inline float controlLaw (float v)
{
    const float a = (-0.74f * v + (-2.0f * std::log (v + 0.6f))) + 0.07f;
    const float b = ((v - 2.8f) * 4.9f) * 0.6f;
    const double wide = std::log (std::exp (static_cast<double> (b)) + 1.0) / -0.6000000238418579;
    const float c = rounded (wide + static_cast<double> (a));
    const float d = c + 0.5f;
    const float positive = d > 0.0f ? d : 0.0f;
    const float e = d / (positive * 1.1727025508880615f + 1.0f);
    const float w = ((e - 0.5f) - 34.0f) + 0.298f;

    return w > -100.0f ? std::pow (10.0f, w * 0.05f) : 0.0f;
}

inline const std::vector<float>& lawTable()
{
    static const std::vector<float> table = []
    {
        std::vector<float> entries (numEntries);
        entries[0] = 0.020780690014362335f;

        for (int i = 1; i < numEntries; ++i)
        {
            float volts = 10.0f - 0.0f;
            volts *= static_cast<float> (i);
            volts *= 0.000030517578125f;
            volts += 0.0f;
            entries[static_cast<std::size_t> (i)] = controlLaw (volts);
        }

        return entries;
    }();

    return table;
}

/** Two neighbouring entries mixed by the fraction of f, in float. */
inline float between (const float* entries, float f)
{
    const auto i = static_cast<int> (f);
    const float share = f - static_cast<float> (i);
    return (1.0f - share) * entries[i] + share * entries[i + 1];
}

inline float law (float v)
{
    const float f = (v - 0.0f) * 3276.800048828125f;
    const auto whole = std::trunc (f);
    return whole >= 0.0f && whole < 32767.0f ? between (lawTable().data(), f) : controlLaw (v);
}

inline float curve (const DetectorCurve& data, float x)
{
    const float f = (x - data.xMin) * data.indexScale;

    if (std::isnan (f) || std::trunc (f) < 1.0f)
        return data.entries[0];

    if (std::trunc (f) < 32767.0f)
        return between (data.entries, f);

    const float ratio = data.entries[32767] / data.entries[32766];
    const double power = std::pow (static_cast<double> (ratio), std::trunc (static_cast<double> (f)) - 32767.0);
    return rounded (static_cast<double> (data.entries[32767]) * power);
}

struct Solver
{
    /** At the state that preparing leaves: capacitors empty, first guess and make-up at 1. */
    Solver (double rate, int ratio, double attack, double recovery, bool automatic)
        : data (&DetectorCurves::forRatio (ratio)), autoRecovery (automatic)
    {
        const auto T = 1.0 / rate;
        attackCoefficient = T / (0.000022 * attack + T);
        recoveryCoefficient = T / (0.000022 * recovery + T);
        auxChargeCoefficient = T / (0.000125 * recovery + T);
        auxLeakCoefficient = T / (0.000125 * 68000.0 + T);
        meterA = 1.0 - std::exp (-T / 0.4);
        meterB = 1.0 - meterA;
        makeupA = 1.0 - std::exp (-0.5 * T);
        makeupB = 1.0 - makeupA;
    }

    void run (const float* detector, const float* drive, float* gainOut, int n)
    {
        for (int i = 0; i < n; ++i)
            gainOut[i] = sample (detector[i], drive[i]);
    }

    float sample (float detector, float drive)
    {
        double charged = capV, g = 0.0;

        if (! bandActive)
        {
            g = law (rounded (std::max (capV, restVoltage)));
        }
        else
        {
            auto guess = lastGain;
            int pass = 1;

            while (true)
            {
                ++evaluations;
                const auto x = rounded (static_cast<double> (detector) * guess * K);
                const double r = curve (*data, x);
                charged = capV;

                if (r > capV)
                    charged = capV + (r - capV) * attackCoefficient;

                g = law (rounded (std::max (charged, restVoltage)));

                if (pass >= mostPasses)
                    break;

                if (std::abs (g - guess) < 0.00000001)
                    break;

                guess = g;
                ++pass;
            }
        }

        lastGain = g;
        recover (charged);

        const auto a = autoMakeup ? 1.0 : 0.0;
        s = s * makeupB + ((g0 / g) * a + (1.0 - a)) * makeupA;
        const auto y = static_cast<double> (drive) * 1.5848931924611136 * s;
        m = meterA * g + m * meterB;
        return rounded (y * g);
    }

    void idle (int n)
    {
        for (int i = 0; i < n; ++i)
        {
            recover (capV);
            const double g = law (rounded (std::max (capV, restVoltage)));
            m = g * meterA + m * meterB;
            lastGain = 1.0;
            s = s * makeupB + makeupA;
        }
    }

    /** Both capacitors at the end of a sample, from their voltages at its start. */
    void recover (double charged)
    {
        const auto startV = capV, startAux = auxV;

        if (autoRecovery)
        {
            capV = charged + ((startAux + 0.1) - startV) * recoveryCoefficient;
            auxV =
                startAux + ((startV - 0.1) - startAux) * auxChargeCoefficient + (0.0 - startAux) * auxLeakCoefficient;
        }
        else
        {
            capV = charged + (0.1 - startV) * recoveryCoefficient;
            auxV = startAux + (0.0 - startAux) * auxLeakCoefficient;
        }
    }

    const DetectorCurve* data;
    bool autoRecovery, bandActive = true, autoMakeup = false;
    double attackCoefficient, recoveryCoefficient, auxChargeCoefficient, auxLeakCoefficient;
    double meterA, meterB, makeupA, makeupB;
    double K = 15.848931924611142;
    double g0 = law (0.1f);
    double capV = 0.0, auxV = 0.0, lastGain = 1.0, s = 1.0, m = law (0.1f);
    int mostPasses = 6;
    long evaluations = 0;
};
} // namespace Plain
