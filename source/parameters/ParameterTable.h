// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "parameters/ParameterForm.h"

#include <array>
#include <memory>

class SettingsParameter;
struct ChannelSettings;

/** The controls in their fixed order: what each is called, what it does, how it is written, and which class it is of.

    The order is the host's index, the order of a session's attributes and the arithmetic of Link (a band's block of nine
    follows the previous band's): nothing may ever change in it, and what is new goes to the end.
*/
namespace ParameterTable
{
constexpr int numBandControls = 9; // of one band
constexpr int numBands = 3;
constexpr int numParameters = 38;

struct Row
{
    const char* identifier; // stored by sessions and hosts
    const char* name;       // what the host shows
    const char* sentence;   // what the control does, for people
    ParameterForm form;

    /** The object of this row, bound to a record. finiteSteps: the wrapper wants steps even of a frequency. */
    std::unique_ptr<SettingsParameter> (*make) (const Row&, ChannelSettings&, bool finiteSteps);
};

extern const Row (&rows)[numParameters];

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
} // namespace ParameterTable
