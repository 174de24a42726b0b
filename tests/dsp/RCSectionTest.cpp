// SPDX-License-Identifier: GPL-3.0-or-later
#include "dsp/RCSection.h"
#include "dsp/PlainSolver.h"

#include <gtest/gtest.h>

#include <cmath>

TEST (RCSection, StepsByBackwardEuler)
{
    for (const auto rate : { 44100.0, 48000.0, 96000.0, 192000.0, 768000.0 })
    {
        RCSection section (0.000022, 82000.0, 0.1);
        section.prepare (rate);
        const auto T = 1.0 / rate;

        for (const auto ohms : { 10.0, 70.0, 270.0, 1400.0, 8200.0, 39000.0, 82000.0, 180000.0, 3900.0, 68000.0 })
            EXPECT_EQ (section.coefficient (ohms), T / (0.000022 * ohms + T)) << ohms << " ohm at " << rate;
    }
}

TEST (RCSection, NeverOvershootsHoweverShortItsTimeConstant)
{
    RCSection section (0.000022, 82000.0, 0.1);
    section.prepare (8000.0);

    // A forward step would be T / RC = 125 % at 10 ohm and a low enough rate; the backward one stays below 1.
    EXPECT_LT (section.coefficient (10.0), 1.0);
    EXPECT_LT (section.coefficient (0.001), 1.0);
    EXPECT_EQ (section.coefficient (0.0), 1.0);
}

TEST (RCSection, KeepsTheLastResistanceAndItsCoefficient)
{
    RCSection section (0.000022, 82000.0, 0.1);
    section.prepare (48000.0);
    const auto first = section.coefficient (270.0);

    // The capacitance is changed behind its back: the same resistance is answered from memory, another one is not.
    section.capacitance = 0.001;
    EXPECT_EQ (section.coefficient (270.0), first);
    EXPECT_NE (section.coefficient (271.0), first);
    EXPECT_EQ (section.resistance, 271.0);

    const auto T = 1.0 / 48000.0;
    EXPECT_EQ (section.coefficient (270.0), T / (0.001 * 270.0 + T)) << "only one entry is kept";
}

TEST (RCSection, ForgetsTheCoefficientOfAnotherRate)
{
    RCSection section (0.000022, 82000.0, 0.1);
    section.prepare (48000.0);
    const auto slow = section.coefficient (270.0);
    section.prepare (96000.0);

    const auto T = 1.0 / 96000.0;
    EXPECT_EQ (section.coefficient (270.0), T / (0.000022 * 270.0 + T));
    EXPECT_LT (section.coefficient (270.0), slow);
    EXPECT_EQ (section.rate, 96000.0);
    EXPECT_EQ (section.T, T);
}

TEST (RCSection, PreparingDischargesIt)
{
    RCSection section (0.000022, 82000.0, 0.1);
    EXPECT_EQ (section.voltage, 0.1);
    section.voltage = 3.0;
    section.prepare (48000.0);
    EXPECT_EQ (section.voltage, 0.0);
}

TEST (RCSection, ChargesToSixtyThreePercentInOneTimeConstant)
{
    struct Case
    {
        double ohms, farad, milliseconds;
    };

    // The time constants of the four attacks, the five recoveries, and of the auxiliary capacitor's charge and leak.
    const Case cases[] = { { 10.0, 0.000022, 0.22 },      { 70.0, 0.000022, 1.54 },       { 270.0, 0.000022, 5.94 },
                           { 1400.0, 0.000022, 30.8 },    { 8200.0, 0.000022, 180.4 },    { 39000.0, 0.000022, 858.0 },
                           { 82000.0, 0.000022, 1804.0 }, { 180000.0, 0.000022, 3960.0 }, { 3900.0, 0.000022, 85.8 },
                           { 3900.0, 0.000125, 487.5 },   { 68000.0, 0.000125, 8500.0 } };
    const auto rate = 192000.0;

    for (const auto& c : cases)
    {
        EXPECT_NEAR (c.ohms * c.farad * 1000.0, c.milliseconds, 1.0e-9);

        RCSection section (c.farad, c.ohms, 0.0);
        section.prepare (rate);
        const auto coefficient = section.coefficient (c.ohms);
        const auto steps = static_cast<int> (std::lround (c.milliseconds * 0.001 * rate));
        double volts = 0.0;

        for (int i = 0; i < steps; ++i)
            volts += (1.0 - volts) * coefficient;

        // A backward step is off by about T / (2 RC) of the remaining e^-1, and n rounds by one half.
        EXPECT_NEAR (volts, 1.0 - std::exp (-1.0), 0.4 / steps) << c.ohms << " ohm";
    }
}
