// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

/** One capacitor and the step of a backward-Euler charge through a resistor: T / (C R + T).

    Units    capacitance in farad, resistance in ohm, rate in Hz, T in seconds, voltage in volt.
    Threads  audio; prepare when stopped.
*/
struct RCSection
{
    RCSection (double capacitanceFarad, double resistanceOhms, double startVoltage) noexcept
        : capacitance (capacitanceFarad), resistance (resistanceOhms), voltage (startVoltage)
    {
        setRate (44100.0);
    }

    /** The step's share of the way to the voltage behind the resistor, 0 to 1. */
    static double coefficientOf (double farad, double ohms, double T) noexcept { return T / (farad * ohms + T); }

    /** Takes a new processing rate, drops the kept result and discharges the capacitor. Stopped. */
    void prepare (double newRate) noexcept
    {
        setRate (newRate);
        voltage = 0.0;
    }

    double coefficient (double ohms) noexcept
    {
        if (ohms != cachedOhms)
        {
            cachedOhms = resistance = ohms;
            cachedCoefficient = coefficientOf (capacitance, ohms, T);
        }

        return cachedCoefficient;
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
