// SPDX-License-Identifier: GPL-3.0-or-later
#include "render/ParameterDocs.h"

#include "parameters/ParameterTable.h"
#include "render/ControlFacts.h"
#include "render/PendingFile.h"
#include "render/TextFile.h"
#include "render/TypedText.h"

#include <sstream>

namespace
{
constexpr auto introduction =
    R"(<!-- Made by `corvane-render --write-parameter-docs docs/PARAMETERS.md --force`. Not to be edited. -->
# The controls

All NUMBER controls of Corvane Q7, in the order in which a host counts them. Neither the order nor an identifier ever
changes, for sessions keep controls by identifier and hosts keep automation by both.

- **Identifier**: the name in a session's state, in a settings text and on `corvane-render`'s command line, as in
  `corvane-render --set LowThreshold=-12dB --set Mix=80% in.wav out.wav`.
- **Takes**: the range of numbers and the texts that are shown; numbers may be typed with or without their unit.
- **Steps**: how many positions a host is told; a smooth control has as many as there are numbers, but the standalone
  program counts 1001 for each of the three frequencies.
- **Default**: where a host's reset goes, and where a control goes that a session does not hold; in brackets the
  normalised value.
- **New**: where the control stands in a new instance and in the program "Default". Gains and thresholds differ from
  their resets.
)";

constexpr auto scalesIntroduction = R"(
## From a normalised value to a setting

Hosts, sessions and automation hold every control as a number x from 0 to 1.

| Control | Setting at x |
|---|---|
)";

std::string code (const std::string& text) { return '`' + text + '`'; }

std::string takenBy (const ControlFacts& control)
{
    std::string all;

    if (control.form.takesNumbers())
    {
        for (const auto& word : control.form.words)
            all += code (word.text) + ", or ";

        return all + control.range() + ", such as " + code (control.form.example);
    }

    for (const auto& text : control.texts)
        all += (all.empty() ? "" : ", ") + code (text);

    return all;
}

std::string rowOf (const ControlFacts& control, const std::string& whenNew)
{
    return "| " + std::to_string (control.index) + " | " + control.name + " | " + code (control.identifier) + " | "
           + control.sentence + " | " + takenBy (control) + " | "
           + (control.numSteps ? std::to_string (*control.numSteps) : "smooth") + " | " + code (control.defaultText)
           + " (" + TypedText::shortest (control.defaultValue) + ") | " + code (whenNew) + " |\n";
}

std::string scaleOf (const ControlFacts& control)
{
    const auto isOfBand = ParameterTable::isBandControl (control.index);

    // The bands' controls are the same but for their defaults: once is enough.
    if (isOfBand && control.index >= ParameterTable::numBandControls)
        return {};

    const auto name = isOfBand ? control.name.substr (control.name.find (' ') + 1) + " of a band" : control.name;
    return "| " + name + " | " + control.form.mapping + " |\n";
}

std::string page (CorvaneQ7AudioProcessor& processor)
{
    constexpr const char* sections[] = { "The low band", "The mid band", "The high band", "The whole unit" };
    const auto controls = ControlFacts::ofAll (processor);
    std::ostringstream text;
    text << juce::String (introduction).replace ("NUMBER", juce::String (ParameterTable::numParameters));

    processor.activeSettings() = processor.programs.front();

    for (const auto& control : controls)
    {
        if (const auto section = control.index / ParameterTable::numBandControls;
            control.index % ParameterTable::numBandControls == 0 && section <= ParameterTable::numBands)
            text << "\n## " << sections[section]
                 << "\n\n| # | Name | Identifier | What it does | Takes | Steps | Default | New |\n"
                 << "|---|---|---|---|---|---|---|---|\n";

        text << rowOf (control, processor.getParameterText (control.index).toStdString());
    }

    text << scalesIntroduction;

    for (const auto& control : controls)
        text << scaleOf (control);

    return text.str();
}
} // namespace

void ParameterDocs::write (const std::filesystem::path& file, bool overwrite, CorvaneQ7AudioProcessor& processor)
{
    PendingFile pending (file, overwrite);
    TextFile::write (pending, page (processor));
    pending.commit();
}
