// SPDX-License-Identifier: GPL-3.0-or-later
#include "render/NearestName.h"

#include <algorithm>
#include <numeric>

namespace
{
/** How many letters to put in, take out, change or swap with their neighbour to make b of a. */
std::size_t editDistance (const std::string& a, const std::string& b)
{
    std::vector<std::size_t> beforeLast, last, row (b.size() + 1);
    std::iota (row.begin(), row.end(), std::size_t { 0 });

    for (std::size_t i = 1; i <= a.size(); ++i)
    {
        beforeLast = last;
        last = row;
        row[0] = i;

        for (std::size_t j = 1; j <= b.size(); ++j)
        {
            const auto changed = last[j - 1] + (a[i - 1] == b[j - 1] ? 0 : 1);
            row[j] = std::min ({ changed, last[j] + 1, row[j - 1] + 1 });

            if (i > 1 && j > 1 && a[i - 1] == b[j - 2] && a[i - 2] == b[j - 1])
                row[j] = std::min (row[j], beforeLast[j - 2] + 1);
        }
    }

    return row.back();
}
} // namespace

std::string NearestName::inSmallLetters (std::string text)
{
    std::transform (text.begin(), text.end(), text.begin(),
                    [] (char c) { return c >= 'A' && c <= 'Z' ? static_cast<char> (c - 'A' + 'a') : c; });
    return text;
}

std::string NearestName::find (const std::string& wanted, const std::vector<std::string>& names)
{
    if (wanted.size() > longest)
        return {};

    std::string nearest;
    auto fewest = wanted.size() / 3 + 1;

    for (const auto& name : names)
    {
        const auto distance = editDistance (inSmallLetters (wanted), inSmallLetters (name));

        if (distance < fewest)
        {
            fewest = distance;
            nearest = name;
        }
    }

    return nearest;
}
