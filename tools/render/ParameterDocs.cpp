// SPDX-License-Identifier: GPL-3.0-or-later
#include "render/ParameterDocs.h"

#include "parameters/ParameterTable.h"
#include "render/ControlFacts.h"
#include "render/PendingFile.h"
#include "render/TextFile.h"

#include <sstream>

namespace
{
/** What the controls do, a sentence each: the nine of a band, then those that the bands share. */
constexpr const char* sentences[] = {
    "Chooses what the band's meter shows: the level going in, the gain reduction, or the level coming out.",
    "Puts the band's compressor in; off lets the band through as it came.",
    "Mutes every band whose own Solo is off, as soon as one is on.",
    "Mid turns down the sum of the two channels alone and listens to the left one, Side turns down their difference "
    "and listens to the right one; Off turns down both sides alike and listens to both.",
    "Make-up behind the compressor; auto gives back what the band turned down on average over about two seconds.",
    "How hard the band holds down what is louder.",
    "Where the band begins to turn down: the lower, the more it compresses.",
    "How fast the band turns down; the labels are those of the unit's switch, not measured times.",
    "How fast the band comes back; Auto comes back fast after a short peak and slowly after a long loud passage.",

    "Share of the processed sound; the rest is the input, kept in time with it.",
    "Takes the lows out of what the detectors listen to, so that they cause less compression; the sound keeps them.",
    "Level of the processed sound behind the transformer, before Mix adds the input.",
    "Where the low band ends and the middle band begins.",
    "Where the middle band ends and the high band begins.",
    "Overdrives everything: detectors 20 dB more sensitive, 15 dB more make-up (but not at auto), and 20 dB more into "
    "the transformer.",
    "Tilts what the detectors listen to, 18 dB less at the bottom and 18 dB more at the top, so that the lows cause "
    "less compression.",
    "While it is on, moving a control of one band moves the same control of the other two; switching it on moves "
    "nothing.",
    "Fades to the input within a tenth of a second, in time with the processed sound.",
    "Level into the unit; the input that Mix adds is not changed.",
    "Level out of the unit, before Mix adds the input.",
};

static_assert (std::size (sentences)
               == ParameterTable::numParameters - (ParameterTable::numBands - 1) * ParameterTable::numBandControls);

const char* sentenceOf (int index) noexcept
{
    constexpr auto shared = ParameterTable::numBands * ParameterTable::numBandControls;
    return sentences[index < shared ? index % ParameterTable::numBandControls
                                    : index - shared + ParameterTable::numBandControls];
}

constexpr auto introduction =
    R"(<!-- Made by `corvane-render --write-parameter-docs docs/PARAMETERS.md --force`. Not to be edited. -->
# The controls

All 38 controls of Corvane Q7, in the order in which a host counts them. Neither the order nor an identifier ever
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
           + sentenceOf (control.index) + " | " + takenBy (control) + " | "
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
    text << introduction;

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
