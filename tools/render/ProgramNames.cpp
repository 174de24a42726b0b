// SPDX-License-Identifier: GPL-3.0-or-later
#include "render/ProgramNames.h"

#include "parameters/FactoryPrograms.h"
#include "render/NearestName.h"
#include "render/RenderError.h"
#include "render/TypedText.h"

#include <sstream>
#include <vector>

namespace
{
std::vector<std::string> allNames()
{
    std::vector<std::string> names;

    for (int i = 0; i < FactoryPrograms::numPrograms; ++i)
        names.emplace_back (FactoryPrograms::name (i));

    return names;
}

bool isNumber (const std::string& text)
{
    return ! text.empty() && text.find_first_not_of ("0123456789") == std::string::npos;
}
} // namespace

int ProgramNames::find (const std::string& numberOrName)
{
    using NearestName::inSmallLetters;
    const auto last = std::to_string (FactoryPrograms::numPrograms - 1);

    for (int i = 0; i < FactoryPrograms::numPrograms; ++i)
        if (numberOrName == std::to_string (i)
            || inSmallLetters (numberOrName) == inSmallLetters (FactoryPrograms::name (i)))
            return i;

    if (isNumber (numberOrName))
        throw RenderError (ExitStatus::usage, "--program takes a number from 0 to " + last + ", not "
                                                  + TypedText::quoted (numberOrName) + "; --list-programs shows them");

    const auto nearest = NearestName::find (numberOrName, allNames());
    const auto offer = nearest.empty() ? std::string() : " did you mean \"" + nearest + "\"?";
    throw RenderError (ExitStatus::usage, "no program is called " + TypedText::quoted (numberOrName) + ';' + offer
                                              + " --list-programs shows them");
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
