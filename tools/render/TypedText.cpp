// SPDX-License-Identifier: GPL-3.0-or-later
#include "render/TypedText.h"

#include "render/NearestName.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <locale>
#include <sstream>

namespace
{
constexpr auto blanks = " \t\r";
}

std::string TypedText::trimmed (const std::string& text)
{
    const auto first = text.find_first_not_of (blanks);
    return first == std::string::npos ? std::string() : text.substr (first, text.find_last_not_of (blanks) - first + 1);
}

std::string TypedText::shortened (const std::string& text, std::size_t most)
{
    if (text.size() <= most)
        return text;

    const auto beginsCharacter = [&text] (std::size_t i)
    { return (static_cast<unsigned char> (text[i]) & 0xc0) != 0x80; };

    auto left = most / 2, right = text.size() - most / 2;

    while (left > 0 && ! beginsCharacter (left))
        --left;

    while (right < text.size() && ! beginsCharacter (right))
        ++right;

    return text.substr (0, left) + "..." + text.substr (right);
}

std::string TypedText::quoted (const std::string& text)
{
    constexpr std::size_t most = 64;
    return '"' + shortened (text, most) + '"';
}

std::optional<std::pair<std::string, std::string>> TypedText::splitAt (char sign, const std::string& text)
{
    const auto at = text.find (sign);

    if (at == std::string::npos)
        return std::nullopt;

    return std::pair (trimmed (text.substr (0, at)), trimmed (text.substr (at + 1)));
}

std::optional<std::int64_t> TypedText::wholeNumber (const std::string& text)
{
    std::int64_t value = 0;
    const auto* end = text.data() + text.size();
    const auto result = std::from_chars (text.data(), end, value);
    return result.ec == std::errc() && result.ptr == end ? std::optional (value) : std::nullopt;
}

std::optional<double> TypedText::number (const std::string& text)
{
    auto value = 0.0;
    std::istringstream stream (text);
    stream.imbue (std::locale::classic());
    stream >> std::noskipws >> value;

    const auto isAll = ! stream.fail() && stream.peek() == std::istringstream::traits_type::eof();
    return isAll && std::isfinite (value) ? std::optional (value) : std::nullopt;
}

std::optional<double> TypedText::numberWithUnit (const std::string& text, const std::string& unit)
{
    using NearestName::inSmallLetters;

    const auto all = trimmed (text);
    const auto numberLength = std::min (all.find_first_not_of ("+-.0123456789"), all.size());
    const auto rest = trimmed (all.substr (numberLength));

    if (! rest.empty() && inSmallLetters (rest) != inSmallLetters (unit))
        return std::nullopt;

    return number (all.substr (0, numberLength));
}

std::string TypedText::shortest (float value)
{
    constexpr int always = 9; // as many digits bring every float back
    std::string text;

    for (int digits = 1; digits <= always; ++digits)
    {
        std::ostringstream stream;
        stream.imbue (std::locale::classic());
        stream.precision (digits);
        stream << value;
        text = stream.str();

        const auto readAgain = number (text);

        if (readAgain && static_cast<float> (*readAgain) == value)
            break;
    }

    return text;
}
