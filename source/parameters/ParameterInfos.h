// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

/** Ranges and grids of the numeric controls: value = range * x + minimum, moved to the nearest point of the grid.

    minimum, range, grid   in the control's unit (dB; shares for Mid Side and Mix); a grid of 0 is none
    limitsInput            x is limited to 0 to 1 before it is mapped
    numSteps               what the host is told
    defaultValue           normalised
*/
constexpr int continuousSteps = 0x7fffffff;

struct LowThresholdParameterInfos
{
    static constexpr double minimum = -20.0, range = 30.0, grid = 2.0;
    static constexpr bool limitsInput = true;
    static constexpr int numSteps = 16;
    static constexpr double defaultValue = 1.0 / 3.0;
};

struct MidThresholdParameterInfos : LowThresholdParameterInfos
{
    static constexpr double defaultValue = 2.0 / 3.0;
};

struct HighThresholdParameterInfos : LowThresholdParameterInfos
{
    static constexpr double defaultValue = 3.0 / 5.0;
};

/** The lowest point, -1 dB, is no gain but the "auto" position. */
struct LowGainParameterInfos
{
    static constexpr double minimum = -1.0, range = 21.0, grid = 1.0;
    static constexpr bool limitsInput = true;
    static constexpr int numSteps = 22;
    static constexpr double defaultValue = 2.0 / 21.0;
};

struct HighMidGainParameterInfos : LowGainParameterInfos
{
    static constexpr double defaultValue = 4.0 / 21.0;
};

struct MidSideParameterInfos
{
    static constexpr double minimum = 0.0, range = 1.0, grid = 0.5;
    static constexpr bool limitsInput = true;
    static constexpr int numSteps = 3;
    static constexpr double defaultValue = 1.0 / 2.0;
};

struct MixParameterInfos
{
    static constexpr double minimum = 0.0, range = 1.0, grid = 0.0;
    static constexpr bool limitsInput = true;
    static constexpr int numSteps = continuousSteps;
    static constexpr double defaultValue = 1.0;
};

struct MasterGainParameterInfos
{
    static constexpr double minimum = -10.0, range = 30.0, grid = 0.0;
    static constexpr bool limitsInput = false;
    static constexpr int numSteps = continuousSteps;
    static constexpr double defaultValue = 1.0 / 3.0;
};

struct InLevelParameterInfos
{
    static constexpr double minimum = -10.0, range = 20.0, grid = 0.0;
    static constexpr bool limitsInput = false;
    static constexpr int numSteps = continuousSteps;
    static constexpr double defaultValue = 1.0 / 2.0;
};

struct OutLevelParameterInfos : InLevelParameterInfos
{
};

/** Ranges of the frequency controls: f = lowest * 10^(decades * x), in Hz, up to `highest`. */
struct HPFParameterInfos
{
    static constexpr double lowest = 20.0, highest = 500.0, decades = 1.3979400087;
    static constexpr double defaultValue = 0.0;
};

struct LowXOverParameterInfos
{
    static constexpr double lowest = 50.0, highest = 5000.0, decades = 2.0;
    static constexpr double defaultValue = 0.30103;
};

struct HighXOverParameterInfos
{
    static constexpr double lowest = 200.0, highest = 12000.0, decades = 1.778151250383644;
    static constexpr double defaultValue = 0.786176;
};
