// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <string>
#include <vector>

/** Names as people write them. */
namespace NearestName
{
/** The text with small letters for A to Z, whatever the user's language would make of them. */
std::string inSmallLetters (std::string text);

/** Characters of the longest text that is compared: the search takes their square, and no name of ours is as long. */
constexpr std::size_t longest = 64;

/** The name that was probably meant: the nearest one if a third of the letters may be wrong, whether they are large or
    small; otherwise an empty text. */
std::string find (const std::string& wanted, const std::vector<std::string>& names);
} // namespace NearestName
