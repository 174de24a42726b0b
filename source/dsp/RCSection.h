// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

/** One capacitor and the step of a backward-Euler charge through a resistor: T / (C R + T).

    Units    capacitance in farad, resistance in ohm, rate in Hz, T in seconds, voltage in volt.
    Threads  coefficient on any: it keeps the last resistance and its result with no lock, so when two threads ask at
             the same time one may get the other's answer, which lasts until its next call.
*/
struct RCSection
{
    RCSection (double capacitanceFarad, double resistanceOhms, double startVoltage) noexcept
        : capacitance (capacitanceFarad), resistance (resistanceOhms), voltage (startVoltage)
    {
        setRate (44100.0);
    }

    /** Takes a new processing rate, drops the kept result and discharges the capacitor. Stopped. */
    void prepare (double newRate) noexcept
    {
        setRate (newRate);
        voltage = 0.0;
    }

    double coefficient (double ohms) noexcept
    {
        if (ohms == cachedOhms)
            return cachedCoefficient;

        // What is returned was computed here, whatever another control's thread keeps meanwhile.
        const auto result = T / (capacitance * ohms + T);
        cachedCoefficient = result;
        cachedOhms = resistance = ohms;
        return result;
    }

    double capacitance, resistance;
    double rate = 0.0, T = 0.0;
    double voltage;

private:
    void setRate (double newRate) noexcept
    {
        rate = newRate;
        T = 1.0 / newRate;
        cachedOhms = -1.0;
    }

    double cachedOhms = -1.0, cachedCoefficient = 0.0;
};
