// SPDX-License-Identifier: GPL-3.0-or-later
#include "render/ParameterList.h"

#include "render/ControlFacts.h"
#include "render/ParameterText.h"
#include "render/TypedText.h"

#include <nlohmann/json.hpp>

#include <algorithm>

namespace
{
using Row = std::vector<std::string>;

std::string joined (const std::vector<std::string>& texts)
{
    std::string all;

    for (const auto& text : texts)
        all += (all.empty() ? "" : ", ") + text;

    return all;
}

std::string textsOf (const ControlFacts& control)
{
    constexpr std::size_t most = 6; // more are a scale: its ends tell enough
    const auto& texts = control.texts;

    if (texts.size() <= most)
        return joined (texts);

    const auto numWords = control.form.words.size();
    const auto words = joined ({ texts.begin(), texts.begin() + static_cast<std::ptrdiff_t> (numWords) });
    return (words.empty() ? "" : words + ", ") + texts[numWords] + " to " + texts.back();
}

Row rowOf (const ControlFacts& control)
{
    return { std::to_string (control.index),
             control.identifier,
             control.name,
             ParameterText::nameOf (control.form.kind),
             control.range(),
             control.numSteps ? std::to_string (*control.numSteps) : "smooth",
             control.defaultText,
             TypedText::shortest (control.defaultValue),
             control.isMeta ? "yes" : "no",
             textsOf (control) };
}

std::vector<std::string> inColumns (const std::vector<Row>& rows)
{
    std::vector<std::size_t> widths (rows.front().size());

    for (const auto& row : rows)
        for (std::size_t i = 0; i < row.size(); ++i)
            widths[i] = std::max (widths[i], row[i].size());

    std::vector<std::string> lines;

    for (const auto& row : rows)
    {
        std::string line;

        for (std::size_t i = 0; i < row.size(); ++i)
            line += row[i] + std::string (widths[i] - row[i].size() + 2, ' ');

        lines.push_back (line.substr (0, line.find_last_not_of (' ') + 1));
    }

    return lines;
}

nlohmann::ordered_json rangeOf (const ParameterForm& form)
{
    if (! form.takesNumbers())
        return nullptr;

    return { { "lowest", form.lowest },
             { "highest", form.highest },
             { "step", form.step > 0 ? nlohmann::ordered_json (form.step) : nlohmann::ordered_json (nullptr) } };
}

nlohmann::ordered_json objectOf (const ControlFacts& control)
{
    nlohmann::ordered_json object;
    object["index"] = control.index;
    object["identifier"] = control.identifier;
    object["name"] = control.name;
    object["description"] = control.sentence;
    object["kind"] = ParameterText::nameOf (control.form.kind);
    object["unit"] = control.form.unit;
    object["range"] = rangeOf (control.form);
    object["steps"] = control.numSteps ? nlohmann::ordered_json (*control.numSteps) : nlohmann::ordered_json (nullptr);
    object["default"] = { { "normalised", *TypedText::number (TypedText::shortest (control.defaultValue)) },
                          { "text", control.defaultText } };
    object["texts"] = control.texts;
    object["meta"] = control.isMeta;
    return object;
}
} // namespace

std::string ParameterList::plain (CorvaneQ7AudioProcessor& processor)
{
    std::vector<Row> rows { { "#", "identifier", "name", "kind", "range", "steps", "default", "normalised", "meta",
                              "texts" } };

    const auto controls = ControlFacts::ofAll (processor);

    for (const auto& control : controls)
        rows.push_back (rowOf (control));

    const auto lines = inColumns (rows);
    auto all = lines.front() + '\n';

    for (std::size_t i = 0; i < controls.size(); ++i)
        all += lines[i + 1] + "\n    " + controls[i].sentence + '\n';

    return all;
}

std::string ParameterList::json (CorvaneQ7AudioProcessor& processor)
{
    auto list = nlohmann::ordered_json::array();

    for (const auto& control : ControlFacts::ofAll (processor))
        list.push_back (objectOf (control));

    constexpr int indent = 2;
    return nlohmann::ordered_json {
        { "plugin", "Corvane Q7" }, { "version", CORVANE_VERSION }, { "parameters", list }
    }.dump (indent)
           + '\n';
}
