// SPDX-License-Identifier: GPL-3.0-or-later
#include "parameters/NumberText.h"

#include <algorithm>
#include <iomanip>
#include <locale>
#include <sstream>

juce::String NumberText::fixed (double value, int decimals)
{
    std::ostringstream text;
    text.imbue (std::locale::classic());
    text << std::fixed << std::setprecision (decimals) << value;
    return juce::String (text.str());
}

juce::String NumberText::decibels (double db)
{
    return (std::abs (db) < 0.000001 ? juce::String ("0.0") : fixed (db, 1)) + "dB";
}

double NumberText::leadingNumber (const juce::String& text)
{
    constexpr int longestExponent = 6; // digits; far more than any double has

    const auto mark = text.indexOfAnyOf ("eE");
    const auto digits = mark + 1 + (juce::String ("+-").containsChar (text[mark + 1]) ? 1 : 0);
    const auto end = digits + text.substring (digits).initialSectionContainingOnly ("0123456789").length();

    if (mark < 0 || end - digits <= longestExponent)
        return text.getDoubleValue();

    return (text.substring (0, digits) + juce::String::repeatedString ("9", longestExponent)).getDoubleValue();
}

int NumberText::leadingInteger (const juce::String& text) noexcept
{
    auto at = text.getCharPointer().findEndOfWhitespace();
    const auto negative = *at == '-';

    if (*at == '-' || *at == '+')
        ++at;

    constexpr std::int64_t beyond = std::int64_t { 1 } << 40; // far outside an int: more digits change nothing
    std::int64_t value = 0;

    for (; at.isDigit(); ++at)
        value = std::min (value * 10 + (*at - '0'), beyond);

    return toInt (static_cast<double> (negative ? -value : value));
}
