// SPDX-License-Identifier: GPL-3.0-or-later
#include "render/ParameterText.h"
#include "parameters/ParameterInfos.h"
#include "parameters/ParameterTable.h"
#include "processor/CorvaneQ7AudioProcessor.h"

#include <gtest/gtest.h>

namespace
{
class TypedParameterText : public testing::TestWithParam<int>
{
protected:
    CorvaneQ7AudioProcessor processor;
    const int index = GetParam();
    const juce::AudioProcessorParameter& parameter = *processor.getParameters()[index];
    const ParameterForm& form = ParameterTable::rows[index].form;

    static float typed (int i, const std::string& text) { return ParameterText::toNormalised (i, text); }
    float typed (const std::string& text) const { return typed (index, text); }

    std::string refusalOf (const std::string& text) const
    {
        try
        {
            typed (text);
        }
        catch (const TextError& error)
        {
            return error.what();
        }

        ADD_FAILURE() << text << " is taken";
        return {};
    }

    /** Every point of a control's grid; of a continuous one more points than its texts have. */
    std::vector<float> points() const
    {
        const auto steps = parameter.getNumSteps() == continuousSteps ? 20001 : parameter.getNumSteps();
        std::vector<float> all;

        for (int i = 0; i < steps; ++i)
            all.push_back (static_cast<float> (i) / static_cast<float> (steps - 1));

        return all;
    }
};

class TypedNumberText : public TypedParameterText
{
};

class TypedWord : public TypedParameterText
{
};

class TypedStepText : public TypedParameterText
{
};

template <typename Wanted>
std::vector<int> controlsWhere (Wanted&& wanted)
{
    std::vector<int> all;

    for (int i = 0; i < ParameterTable::numParameters; ++i)
        if (wanted (ParameterTable::rows[i].form))
            all.push_back (i);

    return all;
}

std::string nameOf (const testing::TestParamInfo<int>& info) { return ParameterTable::rows[info.param].identifier; }
} // namespace

TEST_P (TypedParameterText, GivesWhatAHostGetsFromEveryTextThatIsShown)
{
    for (const auto x : points())
    {
        const auto text = parameter.getText (x, 0);
        EXPECT_EQ (typed (text.toStdString()), parameter.getValueForText (text)) << text;
    }
}

TEST_P (TypedStepText, BringsEveryStepBack)
{
    for (const auto x : points())
        EXPECT_EQ (typed (parameter.getText (x, 0).toStdString()), x);
}

TEST_P (TypedWord, TakesWordsInAnyLettersWithBlanksAround)
{
    for (const auto& word : form.words)
    {
        const juce::String text (word.text);
        EXPECT_EQ (typed ((" \t" + text.toUpperCase() + "  ").toStdString()), word.normalised);
        EXPECT_EQ (typed (text.toLowerCase().toStdString()), word.normalised);
    }
}

TEST_P (TypedNumberText, TakesNumbersWithTheirUnitOrWithout)
{
    for (const auto number : { form.lowest, form.highest, (form.lowest + form.highest) / 2 })
    {
        const auto plain = std::to_string (number);
        const auto expected = parameter.getValueForText (plain + form.unit);

        for (const auto& text : { plain, plain + form.unit, " " + plain + " " + form.unit + " ", plain + ".0" })
            EXPECT_EQ (typed (text), expected) << text;

        EXPECT_EQ (typed (plain + juce::String (form.unit).toLowerCase().toStdString()), expected);
    }
}

TEST_P (TypedStepText, MovesANumberBetweenTwoStepsAsTheControlDoes)
{
    for (int i = 0; form.takesNumbers() && i <= 100; ++i)
    {
        const auto text = std::to_string (form.lowest + (form.highest - form.lowest) * 0.01 * i);
        EXPECT_EQ (typed (text), parameter.getValueForText (text)) << text;
    }

    EXPECT_EQ (form.step > 0, form.takesNumbers());
}

TEST_P (TypedNumberText, RefusesNumbersOutOfRangeAndNamesTheRange)
{
    const auto range = "from " + std::to_string (form.lowest) + " to " + std::to_string (form.highest);

    for (const auto& text : { std::to_string (form.lowest - 0.001), std::to_string (form.highest + 0.001),
                              std::to_string (form.highest * 1000) + form.unit })
        EXPECT_NE (refusalOf (text).find (range), std::string::npos) << refusalOf (text);
}

TEST_P (TypedParameterText, RefusesEverythingElseAndNamesItsWords)
{
    const std::vector<std::string> foreign { "",    " ",      "-",   "+",     ".",      "none",   "1e1",     "0x4",
                                             "4,5", "nan",    "inf", "4 dBu", "4 dB x", "1-2",    "1..2",    "5kHz",
                                             "--4", "On Off", "Mi",  "2:1x",  "10 0mS", "Bypass", "control!" };

    for (const auto& text : foreign)
    {
        const auto refusal = refusalOf (text);
        EXPECT_EQ (refusal.find (std::string (ParameterTable::rows[index].identifier) + " takes "), 0u) << refusal;
        EXPECT_NE (refusal.find ('"' + text + '"'), std::string::npos) << refusal;

        for (const auto& word : form.words)
            EXPECT_NE (refusal.find (word.text), std::string::npos) << refusal;
    }
}

TEST_P (TypedNumberText, KnowsTheRangeOfItsControl)
{
    // The ends of the scale, but that the lowest position may be a word; 1e-6 is some steps of float.
    EXPECT_NEAR (typed (std::to_string (form.highest)), 1.0, 1.0e-6);
    EXPECT_NEAR (typed (std::to_string (form.lowest)), form.words.empty() || form.step == 0 ? 0.0 : 1.0 / 21.0, 1.0e-6);
    EXPECT_EQ (typed (form.example), parameter.getValueForText (form.example));
}

INSTANTIATE_TEST_SUITE_P (Every, TypedParameterText, testing::Range (0, ParameterTable::numParameters), nameOf);

INSTANTIATE_TEST_SUITE_P (EveryOneOfThem, TypedNumberText,
                          testing::ValuesIn (controlsWhere ([] (const auto& form) { return form.takesNumbers(); })),
                          nameOf);

INSTANTIATE_TEST_SUITE_P (EveryOneOfThem, TypedWord,
                          testing::ValuesIn (controlsWhere ([] (const auto& form) { return ! form.words.empty(); })),
                          nameOf);

INSTANTIATE_TEST_SUITE_P (EveryOneOfThem, TypedStepText,
                          testing::ValuesIn (controlsWhere ([] (const auto& form)
                                                            { return form.step > 0 || ! form.takesNumbers(); })),
                          nameOf);

TEST (ParameterNames, AreFoundAsTheyStandAlone)
{
    const auto& names = ParameterText::identifiers();
    ASSERT_EQ (names.size(), std::size (ParameterTable::rows));

    for (std::size_t i = 0; i < names.size(); ++i)
        EXPECT_EQ (ParameterText::find (names[i], names), static_cast<int> (i));

    for (const auto* wrong : { "lowgain", "LowGain ", "LowGian", "Low Gain" })
    {
        try
        {
            ParameterText::find (wrong, names);
            ADD_FAILURE() << wrong << " is found";
        }
        catch (const TextError& error)
        {
            EXPECT_NE (std::string (error.what()).find ("did you mean \"LowGain\"?"), std::string::npos)
                << error.what();
        }
    }
}
