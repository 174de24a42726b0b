// SPDX-License-Identifier: GPL-3.0-or-later
#include "render/ParameterText.h"

#include "parameters/ParameterTable.h"
#include "render/NearestName.h"

#include <algorithm>

namespace
{
using Kind = ParameterForm::Kind;

std::string listOf (const ParameterForm::Words& words)
{
    std::string list = words[0].text;

    for (std::size_t i = 1; i < words.size(); ++i)
        list += (i + 1 < words.size() ? ", " : " or ") + std::string (words[i].text);

    return list;
}

const char* unitInWords (Kind kind) noexcept
{
    return kind == Kind::decibels ? "decibels" : kind == Kind::percent ? "a percentage" : "hertz";
}

std::string whatIsTaken (const ParameterForm& form)
{
    if (! form.takesNumbers())
        return listOf (form.words);

    const auto words = form.words.empty() ? std::string() : listOf (form.words) + ", or ";
    const auto steps = form.step > 0 ? " in steps of " + std::to_string (form.step) : std::string();

    return words + unitInWords (form.kind) + " from " + std::to_string (form.lowest) + " to "
           + std::to_string (form.highest) + steps + ", such as " + form.example;
}
} // namespace

const char* ParameterText::nameOf (ParameterForm::Kind kind) noexcept
{
    switch (kind)
    {
        case Kind::choice: return "choice";
        case Kind::onOff: return "switch";
        case Kind::decibels: return "decibels";
        case Kind::percent: return "percent";
        case Kind::frequency: return "frequency";
    }

    return "";
}

const std::vector<std::string>& ParameterText::identifiers()
{
    static const auto all = []
    {
        std::vector<std::string> list;

        for (const auto& row : ParameterTable::rows)
            list.emplace_back (row.identifier);

        return list;
    }();

    return all;
}

int ParameterText::find (const std::string& name, const std::vector<std::string>& names)
{
    const auto found = std::find (names.begin(), names.end(), name);

    if (found != names.end())
        return static_cast<int> (found - names.begin());

    const auto nearest = NearestName::find (name, names);
    const auto offer = nearest.empty() ? std::string() : " did you mean \"" + nearest + "\"?";
    throw TextError ("no parameter is called " + TypedText::quoted (name) + ';' + offer
                     + " --list-parameters shows them");
}

float ParameterText::toNormalised (int index, const std::string& text)
{
    using NearestName::inSmallLetters;

    const auto& form = ParameterTable::rows[index].form;
    const auto wanted = inSmallLetters (TypedText::trimmed (text));

    for (const auto& word : form.words)
        if (wanted == inSmallLetters (word.text))
            return word.normalised;

    if (form.takesNumbers())
        if (const auto number = TypedText::numberWithUnit (text, form.unit))
            if (*number >= form.lowest && *number <= form.highest)
                return form.normalised (*number);

    throw TextError (std::string (ParameterTable::rows[index].identifier) + " takes " + whatIsTaken (form) + ", not "
                     + TypedText::quoted (text));
}
