// SPDX-License-Identifier: GPL-3.0-or-later
#include "render/ParameterText.h"

#include "parameters/BandParameters.h"
#include "parameters/GlobalParameters.h"
#include "parameters/ParameterTable.h"
#include "render/NearestName.h"

#include <algorithm>

namespace
{
using ParameterText::Form;
using ParameterText::Kind;
using ParameterText::Word;

template <typename Values>
Form choice()
{
    Form form { Kind::choice };
    const auto last = static_cast<int> (std::size (Values::rows)) - 1;

    for (int row = 0; row <= last; ++row)
        form.words.push_back ({ Values::rows[row], static_cast<float> (static_cast<double> (row) / last) });

    form.mapping = "the nearest row, counted evenly from 0 to 1";
    return form;
}

Form twoWords (const char* off, const char* on)
{
    Form form { Kind::onOff, { { off, 0.0f }, { on, 1.0f } } };
    form.mapping = "the second from 0.5 up";
    return form;
}

template <typename Infos>
Form decibels (int lowest, const char* example, const char* mapping)
{
    Form form { Kind::decibels };
    form.unit = "dB";
    form.lowest = lowest;
    form.highest = static_cast<int> (Infos::minimum + Infos::range);
    form.step = static_cast<int> (Infos::grid);
    form.example = example;
    form.normalised = DoubleParameter<Infos>::toNormalised;
    form.mapping = mapping;
    return form;
}

Form midSide()
{
    Form form { Kind::choice, { { "Mid", 0.0f }, { "Off", 0.5f }, { "Side", 1.0f } } };
    form.mapping = "the nearest row, counted evenly from 0 to 1";
    return form;
}

Form gain()
{
    auto form = decibels<LowGainParameterInfos> (0, "4dB", "21 x - 1 dB, to the nearest whole number; -1 is auto");
    form.words = { { "auto", 0.0f } };
    return form;
}

Form threshold()
{
    return decibels<LowThresholdParameterInfos> (-20, "-12dB", "30 x - 20 dB, to the nearest even number");
}

Form mix()
{
    Form form { Kind::percent };
    form.unit = "%";
    form.highest = 100;
    form.example = "80%";
    form.normalised = [] (double percent) { return MixParameter::toNormalised (percent * 0.01); };
    form.mapping = "100 x %";
    return form;
}

template <typename Scale>
Form frequency (int lowest, int highest, const char* example, const char* mapping)
{
    Form form { Kind::frequency };
    form.unit = "Hz";
    form.lowest = lowest;
    form.highest = highest;
    form.example = example;
    form.normalised = [] (double hz) { return static_cast<float> (Scale::toNormalised (hz)); };
    form.mapping = mapping;
    return form;
}

Form highPass()
{
    auto form = frequency<HPFParameter::Scale> (20, 500, "100Hz", "20 * 10^(1.39794 x) Hz; below 20.01 Hz it is off");
    form.words = { { "OFF", 0.0f } };
    return form;
}

std::vector<Form> makeForms()
{
    std::vector<Form> forms;
    const auto onOff = twoWords ("Off", "On");

    // The order of the table: nine a band, then what the bands share.
    for (int band = 0; band < ParameterTable::numBands; ++band)
        for (const auto& form : { choice<MeterValues>(), onOff, onOff, midSide(), gain(), choice<RatioValues>(),
                                  threshold(), choice<AttackValues>(), choice<RecoveryValues>() })
            forms.push_back (form);

    forms.push_back (mix());
    forms.push_back (highPass());
    forms.push_back (decibels<MasterGainParameterInfos> (-10, "1.5dB", "30 x - 10 dB"));
    forms.push_back (frequency<LowXOverParameter::Scale> (50, 5000, "200Hz", "50 * 100^x Hz"));
    forms.push_back (frequency<HighXOverParameter::Scale> (200, 12000, "5000Hz", "200 * 60^x Hz"));
    forms.push_back (onOff); // Nuke
    forms.push_back (onOff); // Niveau
    forms.push_back (onOff); // Link
    forms.push_back (twoWords ("In", "Byp"));
    forms.push_back (decibels<InLevelParameterInfos> (-10, "-1.5dB", "20 x - 10 dB"));
    forms.push_back (decibels<OutLevelParameterInfos> (-10, "-1.5dB", "20 x - 10 dB"));

    jassert (forms.size() == static_cast<std::size_t> (ParameterTable::numParameters));
    return forms;
}

std::string listOf (const std::vector<Word>& words)
{
    std::string list = words.front().text;

    for (std::size_t i = 1; i < words.size(); ++i)
        list += (i + 1 < words.size() ? ", " : " or ") + std::string (words[i].text);

    return list;
}

const char* unitInWords (Kind kind) noexcept
{
    return kind == Kind::decibels ? "decibels" : kind == Kind::percent ? "a percentage" : "hertz";
}

std::string whatIsTaken (const Form& form)
{
    if (! form.takesNumbers())
        return listOf (form.words);

    const auto words = form.words.empty() ? std::string() : listOf (form.words) + ", or ";
    const auto steps = form.step > 0 ? " in steps of " + std::to_string (form.step) : std::string();

    return words + unitInWords (form.kind) + " from " + std::to_string (form.lowest) + " to "
           + std::to_string (form.highest) + steps + ", such as " + form.example;
}
} // namespace

const ParameterText::Form& ParameterText::formOf (int index)
{
    static const auto forms = makeForms();
    return forms[static_cast<std::size_t> (index)];
}

const char* ParameterText::nameOf (Kind kind) noexcept
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
    throw TextError ("no parameter is called \"" + name + "\";" + offer + " --list-parameters shows them");
}

float ParameterText::toNormalised (int index, const std::string& text)
{
    using NearestName::inSmallLetters;

    const auto& form = formOf (index);
    const auto wanted = inSmallLetters (TypedText::trimmed (text));

    for (const auto& word : form.words)
        if (wanted == inSmallLetters (word.text))
            return word.normalised;

    if (form.takesNumbers())
        if (const auto number = TypedText::numberWithUnit (text, form.unit))
            if (*number >= form.lowest && *number <= form.highest)
                return form.normalised (*number);

    throw TextError (std::string (ParameterTable::rows[index].identifier) + " takes " + whatIsTaken (form) + ", not \""
                     + text + '"');
}
