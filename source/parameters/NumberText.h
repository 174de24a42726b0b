// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <juce_core/juce_core.h>

#include <cmath>
#include <cstdint>
#include <limits>

/** Numbers as text and back, whatever the process's locale: hosts set one, and a decimal comma would lose a session.
    Any thread but audio (text allocates); toInt is for every thread. */
namespace NumberText
{
/** A number with this many decimals and a point. */
juce::String fixed (double value, int decimals);

/** A decibel value as controls show it: one decimal, then "dB" at once; "0.0dB" within 1e-6 of 0. */
juce::String decibels (double db);

/** The number that a text begins with, as the framework reads it (0 when there is none; "nan" and "inf" are numbers),
    but safe with exponents of any length, on which the framework's reader overflows. */
double leadingNumber (const juce::String& text);

/** The whole number that a text begins with, after blanks, as the C library's atoi reads it, but saturating. */
int leadingInteger (const juce::String& text) noexcept;

/** The whole part of a number, saturating; 0 for a NaN. A plain cast of what hosts may send is undefined. */
inline int toInt (double value) noexcept
{
    constexpr double lowest = std::numeric_limits<int>::min(), highest = std::numeric_limits<int>::max();

    if (std::isnan (value))
        return 0;

    return static_cast<int> (value < lowest ? lowest : (value > highest ? highest : value));
}
} // namespace NumberText
