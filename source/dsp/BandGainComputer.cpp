// SPDX-License-Identifier: GPL-3.0-or-later
// The heart of a band: detector vector in, gain vector out.
#include "dsp/BandCompressor.h"

#include <algorithm>
#include <cmath>

namespace
{
constexpr double fourDecibels = 1.5848931924611136; // fixed gain behind the gain element
constexpr double solverTolerance = 0.00000001;      // of the linear gain

struct Voltages
{
    double main, aux;
};

/** Both recovery branches use the voltages from the start of the sample; `charged` is the main capacitor after
    the attack branch. In auto mode it discharges quickly, but only down to the auxiliary one, which follows
    slowly: short peaks recover fast, sustained compression slowly. */
struct Recovery
{
    bool automatic;
    double recoveryCoefficient, auxChargeCoef, auxLeakCoef;

    Voltages step (double charged, double capV, double auxV) const noexcept
    {
        constexpr auto rest = BandCompressor::floorVoltage;

        if (automatic)
            return { charged + ((auxV + rest) - capV) * recoveryCoefficient,
                     auxV + ((capV - rest) - auxV) * auxChargeCoef + (0.0 - auxV) * auxLeakCoef };

        return { charged + (rest - capV) * recoveryCoefficient, auxV + (0.0 - auxV) * auxLeakCoef };
    }
};

inline double gainAt (const ControlLaw& law, double volts) noexcept
{
    return law (static_cast<float> (std::max (volts, BandCompressor::floorVoltage)));
}
} // namespace

void BandCompressor::computeGain (const float* detector, const float* drive, float* gainOut, int numSamples) noexcept
{
    // What a control may change is read once a block.
    const auto& curve = *transferTable;
    const auto active = bandActive;
    const auto K = thresholdGain;
    const auto attack = attackCoefficient;
    const auto makeup = autoMakeup ? 1.0 : 0.0;
    const Recovery recovery { autoRecovery, recoveryCoefficient, auxCapacitor.coefficient (recoveryOhms), auxLeakCoef };

    auto capV = mainCapacitor.voltage;
    auto auxV = auxCapacitor.voltage;
    auto last = lastGain;
    auto s = makeupSmooth;
    auto m = meterGain;

    for (int n = 0; n < numSamples; ++n)
    {
        auto charged = capV;
        double g;

        if (! active)
        {
            g = gainAt (law, capV);
        }
        else
        {
            // The detector hears the signal behind the gain element, so this sample's gain depends on itself.
            auto guess = last;

            for (int pass = 1;; ++pass)
            {
                const auto x = static_cast<float> (static_cast<double> (detector[n]) * guess * K);
                const auto r = static_cast<double> (curve (x));

                charged = capV;

                if (r > capV)
                    charged = capV + (r - capV) * attack; // a capacitor only charges towards r

                g = gainAt (law, charged);

                if (pass >= maxPasses || std::abs (g - guess) < solverTolerance)
                    break;

                guess = g;
            }
        }

        last = g;

        const auto next = recovery.step (charged, capV, auxV);
        capV = next.main;
        auxV = next.aux;

        s = s * makeupB + ((restGain / g) * makeup + (1.0 - makeup)) * makeupA;
        const auto y = static_cast<double> (drive[n]) * fourDecibels * s;
        gainOut[n] = static_cast<float> (y * g);
        m = meterA * g + m * meterB;
    }

    mainCapacitor.voltage = capV;
    auxCapacitor.voltage = auxV;
    lastGain = last;
    makeupSmooth = s;
    meterGain = m;
}

void BandCompressor::idleAdvance (int numSamples) noexcept
{
    const Recovery recovery { autoRecovery, recoveryCoefficient, auxCapacitor.coefficient (recoveryOhms), auxLeakCoef };

    auto capV = mainCapacitor.voltage;
    auto auxV = auxCapacitor.voltage;
    auto s = makeupSmooth;
    auto m = meterGain;

    for (int n = 0; n < numSamples; ++n)
    {
        const auto next = recovery.step (capV, capV, auxV);
        capV = next.main;
        auxV = next.aux;
        m = gainAt (law, capV) * meterA + m * meterB;
        s = s * makeupB + makeupA;
    }

    if (numSamples > 0)
        lastGain = 1.0; // not the last gain, on purpose: the solver starts afresh

    mainCapacitor.voltage = capV;
    auxCapacitor.voltage = auxV;
    makeupSmooth = s;
    meterGain = m;
}
