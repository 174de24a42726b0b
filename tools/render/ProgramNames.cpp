// SPDX-License-Identifier: GPL-3.0-or-later
#include "render/ProgramNames.h"

#include "parameters/FactoryPrograms.h"
#include "render/RenderError.h"

#include <algorithm>
#include <numeric>
#include <sstream>
#include <vector>

namespace
{
std::string inSmallLetters (std::string text)
{
    // Letters of the names alone: what a locale adds to them must not change what is found.
    std::transform (text.begin(), text.end(), text.begin(),
                    [] (char c) { return c >= 'A' && c <= 'Z' ? static_cast<char> (c - 'A' + 'a') : c; });
    return text;
}

/** How many letters to put in, take out or change to make b of a. */
std::size_t editDistance (const std::string& a, const std::string& b)
{
    std::vector<std::size_t> row (b.size() + 1);
    std::iota (row.begin(), row.end(), std::size_t { 0 });

    for (std::size_t i = 0; i < a.size(); ++i)
    {
        auto diagonal = row[0];
        row[0] = i + 1;

        for (std::size_t j = 0; j < b.size(); ++j)
        {
            const auto changed = diagonal + (a[i] == b[j] ? 0 : 1);
            diagonal = row[j + 1];
            row[j + 1] = std::min ({ changed, row[j] + 1, diagonal + 1 });
        }
    }

    return row.back();
}

/** The name that is meant if a third of the letters may be wrong; otherwise an empty text. */
std::string nearestName (const std::string& wanted)
{
    std::string nearest;
    auto fewest = wanted.size() / 3 + 1;

    for (int i = 0; i < FactoryPrograms::numPrograms; ++i)
    {
        const auto distance = editDistance (inSmallLetters (wanted), inSmallLetters (FactoryPrograms::name (i)));

        if (distance < fewest)
        {
            fewest = distance;
            nearest = FactoryPrograms::name (i);
        }
    }

    return nearest;
}

bool isNumber (const std::string& text)
{
    return ! text.empty() && text.find_first_not_of ("0123456789") == std::string::npos;
}
} // namespace

int ProgramNames::find (const std::string& numberOrName)
{
    const auto last = std::to_string (FactoryPrograms::numPrograms - 1);

    for (int i = 0; i < FactoryPrograms::numPrograms; ++i)
        if (numberOrName == std::to_string (i)
            || inSmallLetters (numberOrName) == inSmallLetters (FactoryPrograms::name (i)))
            return i;

    if (isNumber (numberOrName))
        throw RenderError (ExitStatus::usage, "--program takes a number from 0 to " + last + ", not " + numberOrName
                                                  + "; --list-programs shows them");

    const auto nearest = nearestName (numberOrName);
    const auto offer = nearest.empty() ? std::string() : " did you mean \"" + nearest + "\"?";
    throw RenderError (ExitStatus::usage,
                       "no program is called \"" + numberOrName + "\";" + offer + " --list-programs shows them");
}

std::string ProgramNames::list()
{
    std::ostringstream text;

    for (int i = 0; i < FactoryPrograms::numPrograms; ++i)
    {
        text.width (2);
        text << i << "  " << FactoryPrograms::name (i) << '\n';
    }

    return text.str();
}
