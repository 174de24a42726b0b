// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <array>

class CorvaneQ7AudioProcessor;

/** The 38 controls in their fixed order. The order is the host's index, the order of a session's attributes and the
    arithmetic of Link (a band's block of nine follows the previous band's): nothing may ever change in it. */
namespace ParameterTable
{
constexpr int numBandControls = 9; // of one band
constexpr int numBands = 3;

struct Row
{
    const char* identifier; // stored by sessions and hosts
    const char* name;       // what the host shows
};

// clang-format off
constexpr Row rows[] {
    { "LowMeter", "Low Meter" },
    { "LowIn", "Low In" },
    { "LowSolo", "Low Solo" },
    { "LowMidSide", "Low Mid Side" },
    { "LowGain", "Low Gain" },
    { "LowRatio", "Low Ratio" },
    { "LowThreshold", "Low Threshold" },
    { "LowAttack", "Low Attack" },
    { "LowRecovery", "Low Recovery" },
    { "MidMeter", "Mid Meter" },
    { "MidIn", "Mid In" },
    { "MidSolo", "Mid Solo" },
    { "MidMidSide", "Mid Mid Side" },
    { "MidGain", "Mid Gain" },
    { "MidRatio", "Mid Ratio" },
    { "MidThreshold", "Mid Threshold" },
    { "MidAttack", "Mid Attack" },
    { "MidRecovery", "Mid Recovery" },
    { "HighMeter", "High Meter" },
    { "HighIn", "High In" },
    { "HighSolo", "High Solo" },
    { "HighMidSide", "High Mid Side" },
    { "HighGain", "High Gain" },
    { "HighRatio", "High Ratio" },
    { "HighThreshold", "High Threshold" },
    { "HighAttack", "High Attack" },
    { "HighRecovery", "High Recovery" },
    { "Mix", "Mix" },
    { "HPF", "HPF" },
    { "MasterGain", "Master Gain" },
    // Class-like as they look, the names of the two crossovers are what hosts know.
    { "LowXOver", "Low XOverParameter" },
    { "HighXOver", "High XOverParameter" },
    { "Nuke", "Nuke" },
    { "Niveau", "Niveau" },
    { "Link", "Link" },
    { "Bypass", "Bypass" },
    { "InLevel", "In Level" },
    { "OutLevel", "Out Level" }
};
// clang-format on

constexpr int numParameters = static_cast<int> (std::size (rows));
static_assert (numParameters == 38);

constexpr bool isBandControl (int index) noexcept { return index >= 0 && index < numBands * numBandControls; }

/** The same control of the other two bands, lowest index first. */
constexpr std::array<int, 2> siblingsOf (int index) noexcept
{
    const auto control = index % numBandControls;
    const auto band = index / numBandControls;
    const auto first = band == 0 ? 1 : 0;
    const auto second = band == 2 ? 1 : 2;
    return { first * numBandControls + control, second * numBandControls + control };
}

/** The index of an identifier, or -1. */
int indexOf (const char* identifier) noexcept;

/** Creates the objects in order, bound to the active record, and hands them to the processor. */
void addParametersTo (CorvaneQ7AudioProcessor& processor);
} // namespace ParameterTable
