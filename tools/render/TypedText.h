// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <optional>
#include <stdexcept>
#include <string>
#include <utility>

/** Why a text is refused: a sentence that names what would be taken. Who reads a text knows where it stands. */
class TextError : public std::runtime_error
{
public:
    using std::runtime_error::runtime_error;
};

/** What people type, read in the same way in every language of the user. */
namespace TypedText
{
/** The text without blanks at its ends. */
std::string trimmed (const std::string& text);

/** The text, without its middle where it has more bytes than that; no character is cut in two. */
std::string shortened (const std::string& text, std::size_t most);

/** The text between quotation marks, as messages show it: shortened to what tells enough. */
std::string quoted (const std::string& text);

/** The two sides of the first sign, trimmed; empty when the sign is missing. */
std::optional<std::pair<std::string, std::string>> splitAt (char sign, const std::string& text);

/** A whole number in digits, with no sign but a minus; nothing else may stand in the text. */
std::optional<std::int64_t> wholeNumber (const std::string& text);

/** A finite number with a decimal point; nothing else may stand in the text. */
std::optional<double> number (const std::string& text);

/** A number that a unit may follow, in large or small letters and with or without a blank between. */
std::optional<double> numberWithUnit (const std::string& text, const std::string& unit);

/** The fewest digits that bring a number back as the same float. */
std::string shortest (float number);
} // namespace TypedText
