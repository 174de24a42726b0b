// SPDX-License-Identifier: GPL-3.0-or-later
#include "render/Automation.h"

#include "render/NearestName.h"
#include "render/ParameterText.h"
#include "render/TextFile.h"

#include <algorithm>

namespace
{
bool namesTheColumns (const std::string& line)
{
    auto plain = NearestName::inSmallLetters (line);
    plain.erase (std::remove (plain.begin(), plain.end(), ' '), plain.end());
    return plain == "frame,identifier,value";
}

float normalisedFrom (int index, const std::string& text)
{
    constexpr auto mark = "n:";

    if (text.rfind (mark, 0) != 0)
        return ParameterText::toNormalised (index, text);

    const auto x = TypedText::number (TypedText::trimmed (text.substr (2)));

    if (! x || ! (*x >= 0.0 && *x <= 1.0))
        throw TextError ("a normalised value is a number from 0 to 1 behind \"n:\", not " + TypedText::quoted (text));

    return static_cast<float> (*x);
}
} // namespace

Automation::Automation (const std::filesystem::path& file)
{
    auto isFirst = true;

    TextFile::readLines (file,
                         [&] (const TextFile::Line& line)
                         {
                             if (! std::exchange (isFirst, false) || ! namesTheColumns (line.text))
                                 points.push_back (pointOf (line.text));
                         });

    std::stable_sort (points.begin(), points.end(), [] (auto& a, auto& b) { return a.frame < b.frame; });
}

Automation::Point Automation::pointOf (const std::string& line)
{
    const auto first = TypedText::splitAt (',', line);
    const auto second = first ? TypedText::splitAt (',', first->second) : std::nullopt;

    if (! second)
        throw TextError ("it is not of the form frame,identifier,value");

    const auto frame = TypedText::wholeNumber (first->first);

    if (! frame || *frame < 0)
        throw TextError ("a frame is a whole number from 0 up, not " + TypedText::quoted (first->first));

    const auto index = ParameterText::find (second->first, ParameterText::identifiers());
    return { *frame, { index, normalisedFrom (index, second->second) } };
}

void Automation::advanceTo (std::int64_t frame, CorvaneQ7AudioProcessor& processor)
{
    for (; nextFrame() <= frame; ++next)
        processor.setParameter (points[next].change.index, points[next].change.normalised);
}
