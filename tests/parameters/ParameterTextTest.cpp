// SPDX-License-Identifier: GPL-3.0-or-later
#include "ExpectedParameters.h"

#include <gtest/gtest.h>

#include <locale>
#include <random>
#include <sstream>

namespace
{
using Expected::Kind;

/** Texts of an instance's controls, both ways. */
struct Controls
{
    std::string text (int index, float x) const
    {
        return processor.getParameters()[index]->getText (x, 1024).toStdString();
    }
    float value (int index, const juce::String& typed) const
    {
        return processor.getParameters()[index]->getValueForText (typed);
    }

    CorvaneQ7AudioProcessor processor;
};

struct Typed
{
    const char* text;
    float value;
};

/** Texts typed into every control of a kind. */
template <std::size_t size>
void expectValues (Kind kind, const Typed (&rows)[size])
{
    const Controls controls;
    auto numControls = 0;

    for (const auto& expected : Expected::parameters)
    {
        if (expected.kind != kind)
            continue;

        ++numControls;

        for (const auto& row : rows)
            EXPECT_FLOAT_EQ (row.value, controls.value (expected.index, row.text))
                << expected.identifier << " from \"" << row.text << "\"";
    }

    EXPECT_GT (numControls, 0);
}

/** An unknown text on a control with a default of its own. */
void expectDefaults (Kind kind, std::initializer_list<const char*> texts)
{
    const Controls controls;
    auto numControls = 0;

    for (const auto& expected : Expected::parameters)
    {
        if (expected.kind != kind)
            continue;

        ++numControls;

        for (const auto* text : texts)
            EXPECT_EQ (expected.defaultValue, controls.value (expected.index, juce::String::fromUTF8 (text)))
                << expected.identifier << " from \"" << text << "\"";
    }

    EXPECT_GT (numControls, 0);
}
} // namespace

class ParameterText : public ::testing::TestWithParam<Expected::Parameter>
{
protected:
    Controls controls;
    const Expected::Parameter& expected = GetParam();
};

TEST_P (ParameterText, FollowsItsFormula)
{
    std::vector<float> points { 0.0f, 0.04f, 0.05f, 0.25f, 0.5f, 0.75f, 0.999f, 1.0f };

    constexpr auto seed = 0x7e47u;
    std::mt19937 random (seed);

    for (int i = 0; i < 200; ++i)
        points.push_back (static_cast<float> (random() >> 8) * 0x1p-24f);

    for (const auto x : points)
        EXPECT_EQ (Expected::textAt (expected.kind, x), controls.text (expected.index, x))
            << "x = " << x << ", seed " << seed;
}

TEST_P (ParameterText, OfASwitchTurnsAtOneHalf)
{
    if (expected.kind != Kind::onOff && expected.kind != Kind::bypass)
        return;

    const auto bypass = expected.kind == Kind::bypass;
    const auto below = std::nextafter (0.5f, 0.0f);
    EXPECT_EQ (bypass ? "Byp" : "On", controls.text (expected.index, 0.5f));
    EXPECT_EQ (bypass ? "In" : "Off", controls.text (expected.index, below));

    // The text says what a control of this value does.
    auto* parameter = controls.processor.getParameters()[expected.index];
    parameter->setValue (0.5f);
    EXPECT_EQ (1.0f, parameter->getValue());
    parameter->setValue (below);
    EXPECT_EQ (0.0f, parameter->getValue());
}

TEST_P (ParameterText, IsNotCutToTheLengthAskedFor)
{
    const auto* parameter = controls.processor.getParameters()[expected.index];

    for (const auto length : { 0, 1, 2, 100 })
        EXPECT_EQ (Expected::textAt (expected.kind, 1.0f), parameter->getText (1.0f, length).toStdString());
}

TEST_P (ParameterText, OfTheDefaultLeadsBackToTheDefault)
{
    const auto back = controls.value (expected.index, expected.defaultText);

    // 200 Hz and 5000 Hz are the rounded texts of defaults with six digits.
    if (expected.kind == Kind::lowXOver || expected.kind == Kind::highXOver)
        EXPECT_NEAR (expected.defaultValue, back, 1.0e-6f);
    else
        EXPECT_TRUE (Expected::sameBits (expected.defaultValue, back)) << back;
}

TEST_P (ParameterText, ThatIsNoTextAtAllIsSafe)
{
    // Nothing typed: 0 for what reads numbers, the default for rows, off for switches, "Off" for Mid Side.
    auto wanted = expected.defaultValue;

    switch (expected.kind)
    {
        case Kind::level: wanted = 0.5f; break;
        case Kind::master: wanted = 1.0f / 3.0f; break;
        case Kind::gain: wanted = 1.0f / 21.0f; break;
        case Kind::threshold: wanted = 20.0f / 30.0f; break;
        case Kind::mix:
        case Kind::onOff:
        case Kind::bypass: wanted = 0.0f; break;
        default: break;
    }

    for (const auto* text : { "", " ", "abc", "?", "dB", "%" })
        EXPECT_FLOAT_EQ (wanted, controls.value (expected.index, text)) << "\"" << text << "\"";
}

TEST_P (ParameterText, IsTheSameInACountryWithADecimalComma)
{
    struct Comma : std::numpunct<char>
    {
        char do_decimal_point() const override { return ','; }
        char do_thousands_sep() const override { return '.'; }
        std::string do_grouping() const override { return "\3"; }
    };

    std::vector<std::string> before, during;
    std::vector<float> valuesBefore, valuesDuring;
    const auto collect = [&] (std::vector<std::string>& texts, std::vector<float>& values)
    {
        for (int i = 0; i <= 100; ++i)
        {
            texts.push_back (controls.text (expected.index, static_cast<float> (i) * 0.01f));
            values.push_back (controls.value (expected.index, texts.back()));
        }
    };

    collect (before, valuesBefore);

    const auto old = std::locale::global (std::locale (std::locale::classic(), new Comma));
    std::ostringstream proof;
    proof << 1234.5;
    collect (during, valuesDuring);
    std::locale::global (old);

    ASSERT_EQ ("1.234,5", proof.str()); // or the locale was not the one meant
    EXPECT_EQ (before, during);
    EXPECT_EQ (valuesBefore, valuesDuring);
}

INSTANTIATE_TEST_SUITE_P (All, ParameterText, ::testing::ValuesIn (Expected::parameters),
                          [] (const auto& row) { return std::string (row.param.identifier); });

TEST (ParameterTexts, OfEachGridPointLeadBackToIt)
{
    const Controls controls;
    auto numPoints = 0;

    for (const auto& expected : Expected::parameters)
    {
        if (expected.steps == Expected::continuous)
            continue;

        for (int i = 0; i < expected.steps; ++i, ++numPoints)
        {
            const auto x = static_cast<float> (static_cast<double> (i) / (expected.steps - 1));
            const auto back = controls.value (expected.index, controls.text (expected.index, x));
            EXPECT_TRUE (Expected::sameBits (x, back))
                << expected.identifier << ", step " << i << ": " << x << " against " << back;
        }
    }

    // Three bands with 3 + 2 + 2 + 3 + 22 + 5 + 16 + 4 + 5 steps, and four switches.
    EXPECT_EQ (3 * 62 + 4 * 2, numPoints);
}

TEST (ParameterTexts, OfAContinuousControlLeadBackToWithinWhatTheyShow)
{
    const Controls controls;
    auto numControls = 0;

    for (const auto& expected : Expected::parameters)
    {
        if (expected.steps != Expected::continuous)
            continue;

        ++numControls;

        // Half of the last digit shown, a whole one for Mix, which is cut; and what a float loses of 12 kHz or 20 dB.
        const auto within =
            expected.kind == Kind::mix ? 0.010001 : (Expected::isFrequency (expected.kind) ? 0.51 : 0.05001);

        for (int i = 0; i <= 50; ++i)
        {
            const auto x = static_cast<float> (i) / 50.0f;
            const auto back = controls.value (expected.index, controls.text (expected.index, x));
            EXPECT_NEAR (Expected::valueAt (expected.kind, x), Expected::valueAt (expected.kind, back), within)
                << expected.identifier << ", x = " << x;
        }
    }

    EXPECT_EQ (7, numControls);
}

TEST (ParameterTexts, TheLowestGainIsAuto)
{
    const Controls controls;

    for (const auto index : { Expected::lowGain, Expected::midGain, Expected::highGain })
    {
        EXPECT_EQ ("auto", controls.text (index, 0.04f));
        EXPECT_EQ ("0.0dB", controls.text (index, 0.05f));

        // The edge is 0 dB itself, 1/21 as a float: it is a gain, and the float before it is not.
        EXPECT_EQ ("0.0dB", controls.text (index, 0.04761905f));
        EXPECT_EQ ("auto", controls.text (index, std::nextafter (0.04761905f, 0.0f)));
        EXPECT_EQ ("20.0dB", controls.text (index, 1.0f));
    }
}

TEST (ParameterTexts, GainReadsWholeDecibels)
{
    expectValues (Kind::gain, { { "auto", 0.0f },
                                { "3.4dB", 4.0f / 21.0f },
                                { "3.4 dB", 4.0f / 21.0f },
                                { "2.5dB", 4.0f / 21.0f }, // halves go up
                                { "12", 13.0f / 21.0f },
                                { "-0.5", 1.0f / 21.0f },
                                { "-0.6dB", 0.0f },
                                { "-1.0dB", 0.0f },
                                { "-100dB", 0.0f },
                                { "20dB", 1.0f },
                                { "1e30", 1.0f },
                                { "AUTO", 1.0f / 21.0f }, // only the exact word; anything else reads as 0 dB
                                { "auto ", 1.0f / 21.0f },
                                { " auto", 1.0f / 21.0f } });
}

TEST (ParameterTexts, ThresholdReadsEvenDecibels)
{
    expectValues (Kind::threshold, { { "-5dB", 16.0f / 30.0f }, // -5 goes up to -4
                                     { "-5.1dB", 14.0f / 30.0f },
                                     { "3", 24.0f / 30.0f },
                                     { "2.9 dB", 22.0f / 30.0f },
                                     { "-20.0dB", 0.0f },
                                     { "-90", 0.0f },
                                     { "10dB", 1.0f },
                                     { "11dB", 1.0f } });
}

TEST (ParameterTexts, LevelsReadDecibels)
{
    expectValues (Kind::level, { { "3.5dB", 13.5f / 20.0f },
                                 { "-9.9dB", 0.1f / 20.0f },
                                 { "+2", 0.6f },
                                 { "  4 dB", 0.7f },
                                 { "10", 1.0f },
                                 { "99dB", 1.0f },
                                 { "-99dB", 0.0f },
                                 { "1e1dB", 1.0f } });
    expectValues (
        Kind::master,
        { { "20.0dB", 1.0f }, { "5dB", 0.5f }, { "-10dB", 0.0f }, { "-0.7", 9.3f / 30.0f }, { "1000", 1.0f } });
}

TEST (ParameterTexts, MixReadsPercent)
{
    expectValues (Kind::mix, { { "50%", 0.5f },
                               { "50", 0.5f },
                               { " 12.5 %", 0.125f },
                               { "150%", 1.0f },
                               { "-3%", 0.0f },
                               { "99%", 0.99f } });
}

TEST (ParameterTexts, MixIsCutToWholePercent)
{
    const Controls controls;
    EXPECT_EQ ("99%", controls.text (Expected::mix, 0.999f));
    EXPECT_EQ ("0%", controls.text (Expected::mix, 0.00999f));

    // The product is rounded to a float before it is cut: 0.29 as a float lies below 0.29, times 100 it is 29.
    EXPECT_EQ ("29%", controls.text (Expected::mix, 0.29f));
    EXPECT_EQ ("57%", controls.text (Expected::mix, 0.57f));

    // Limited here, as the value is.
    EXPECT_EQ ("100%", controls.text (Expected::mix, 1.5f));
    EXPECT_EQ ("0%", controls.text (Expected::mix, -0.5f));
    EXPECT_EQ ("100%", controls.text (Expected::mix, 3.0e38f));
}

TEST (ParameterTexts, AWholePercentLeadsBackToItselfButForTwo)
{
    // 0.53 and 0.59 as floats, times 100 in float, lie just below 53 and 59 and are cut.
    const Controls controls;

    for (int percent = 0; percent <= 100; ++percent)
    {
        const auto shown = percent == 53 || percent == 59 ? percent - 1 : percent;
        const auto value = controls.value (Expected::mix, std::to_string (percent) + "%");
        EXPECT_FLOAT_EQ (static_cast<float> (percent) / 100.0f, value);
        EXPECT_EQ (std::to_string (shown) + "%", controls.text (Expected::mix, value));
    }
}

TEST (ParameterTexts, FrequenciesShowWholeHertz)
{
    const Controls controls;

    EXPECT_EQ ("OFF", controls.text (Expected::hpf, 0.0f));
    EXPECT_EQ ("500Hz", controls.text (Expected::hpf, 1.0f));
    EXPECT_EQ ("50Hz", controls.text (Expected::lowXOver, 0.0f)); // no "OFF" here
    EXPECT_EQ ("5000Hz", controls.text (Expected::lowXOver, 1.0f));
    EXPECT_EQ ("200Hz", controls.text (Expected::highXOver, 0.0f));
    EXPECT_EQ ("12000Hz", controls.text (Expected::highXOver, 1.0f));

    // 20.01 Hz lies at x = 0.000155: below it the filter is out.
    EXPECT_EQ ("OFF", controls.text (Expected::hpf, 0.000155f));
    EXPECT_EQ ("20Hz", controls.text (Expected::hpf, 0.000156f));

    // Beyond the range nothing is limited: 50 Hz times 100 and 100 again.
    EXPECT_EQ ("500000Hz", controls.text (Expected::lowXOver, 2.0f));
    EXPECT_EQ ("OFF", controls.text (Expected::hpf, -1.0f));
}

TEST (ParameterTexts, FrequenciesReadHertz)
{
    const auto hundred = static_cast<float> (std::log10 (5.0) / 1.3979400087);
    expectValues (Kind::highPass, { { "OFF", 0.0f },
                                    { "100Hz", hundred },
                                    { "100", hundred },
                                    { " 100 Hz ", hundred },
                                    { "100zH", hundred }, // the two letters go wherever they stand
                                    { "1e2Hz", hundred },
                                    { "20Hz", 0.0f },
                                    { "10Hz", static_cast<float> (std::log10 (0.5) / 1.3979400087) }, // limited nowhere
                                    { "5000Hz", static_cast<float> (std::log10 (250.0) / 1.3979400087) } });
    expectValues (Kind::lowXOver, { { "50Hz", 0.0f },
                                    { "500", 0.5f },
                                    { "5000Hz", 1.0f },
                                    { "5Hz", -0.5f },
                                    { "OFF", 0.30103f } }); // no number, and no position of this name
    expectValues (Kind::highXOver, { { "200Hz", 0.0f },
                                     { "12000Hz", 1.0f },
                                     { "1000Hz", static_cast<float> (std::log10 (5.0) / 1.778151250383644) } });
}

TEST (ParameterTexts, AFrequencyWhoseLogarithmIsNoNumberIsTheDefault)
{
    const auto texts = { "abc", "0Hz", "0", "-5Hz", "nan", "inf", "-inf", "1e400Hz", "off", "" };
    expectDefaults (Kind::highPass, texts);
    expectDefaults (Kind::lowXOver, texts);
    expectDefaults (Kind::highXOver, texts);
}

TEST (ParameterTexts, ATypedNoNumberIsTheDefaultOfADecibelControl)
{
    for (const auto kind : { Kind::gain, Kind::threshold, Kind::level, Kind::master, Kind::mix })
        expectDefaults (kind, { "nan", "NaN" });

    // Infinity is beyond the end of the range, and lands there.
    expectValues (Kind::level, { { "inf", 1.0f }, { "-inf", 0.0f }, { "1e400dB", 1.0f } });
    expectValues (Kind::gain, { { "inf", 1.0f }, { "-inf", 0.0f } });
    expectValues (Kind::threshold, { { "inf", 1.0f }, { "-inf", 0.0f } });
}

TEST (ParameterTexts, MidSideFindsItsWholeWords)
{
    expectValues (Kind::midSide, { { "Mid", 0.0f },
                                   { "mid", 0.0f },
                                   { "the MID one", 0.0f },
                                   { "Side", 1.0f },
                                   { "SIDE only", 1.0f },
                                   { "(side)", 1.0f },
                                   { "Mid Side", 0.0f }, // Mid is looked for first
                                   { "Side, Mid", 0.0f },
                                   { "Midway", 0.5f },
                                   { "amid", 0.5f },
                                   { "Sideways", 0.5f },
                                   { "inside", 0.5f },
                                   { "MidSide", 0.5f },
                                   { "Off", 0.5f },
                                   { "0", 0.5f },
                                   { "1.0", 0.5f } });
}

TEST (ParameterTexts, EnumerationsMatchTheirRowsExactly)
{
    expectValues (Kind::meter, { { "In", 0.0f }, { "Control", 0.5f }, { "Out", 1.0f } });
    expectValues (Kind::ratio,
                  { { "1.5:1", 0.0f }, { "2:1", 0.25f }, { "3:1", 0.5f }, { "4:1", 0.75f }, { "6:1", 1.0f } });
    expectValues (Kind::attack,
                  { { "2uS", 0.0f }, { "0.5mS", 1.0f / 3.0f }, { "2mS", 2.0f / 3.0f }, { "10mS", 1.0f } });
    expectValues (Kind::recovery,
                  { { "100mS", 0.0f }, { "400mS", 0.25f }, { "800mS", 0.5f }, { "1.5S", 0.75f }, { "Auto", 1.0f } });
}

TEST (ParameterTexts, AnUnknownRowIsTheDefault)
{
    expectDefaults (Kind::meter, { "in", "OUT", "Control ", " Out", "0", "2" });
    expectDefaults (Kind::ratio, { "5:1", "6 : 1", "6", "1" });
    expectDefaults (Kind::attack, { "2us", "2\xc2\xb5S", "10ms", "10 mS" }); // 2/3, not 0
    expectDefaults (Kind::recovery, { "auto", "AUTO", "1.5s", "100" });
}

TEST (ParameterTexts, SwitchesKnowOn)
{
    expectValues (Kind::onOff, { { "On", 1.0f },
                                 { " On ", 1.0f },
                                 { "\tOn\n", 1.0f },
                                 { "on", 0.0f },
                                 { "ON", 0.0f },
                                 { "Ona", 0.0f },
                                 { "1", 0.0f },
                                 { "true", 0.0f },
                                 { "Off", 0.0f } });
}

TEST (ParameterTexts, BypassKnowsItsFirstLetter)
{
    expectValues (Kind::bypass, { { "Byp", 1.0f },
                                  { "B", 1.0f },
                                  { "Bypassed", 1.0f },
                                  { "BAD", 1.0f },
                                  { "byp", 0.0f },
                                  { " Byp", 0.0f },
                                  { "In", 0.0f },
                                  { "On", 0.0f },
                                  { "1", 0.0f } });
}

TEST (ParameterTexts, ARowBeyondTheTableShowsNothing)
{
    const Controls controls;

    for (const auto& expected : Expected::parameters)
    {
        if (! Expected::isEnumeration (expected.kind))
            continue;

        for (const auto x : { 1.5f, 2.0f, 100.0f, 1.0e30f, -1.0f, -1.0e30f })
            EXPECT_EQ ("", controls.text (expected.index, x)) << expected.identifier << ", x = " << x;
    }
}

TEST (ParameterTexts, NoValueOfAHostCrashesAText)
{
    const Controls controls;
    constexpr auto infinity = std::numeric_limits<float>::infinity();

    for (const auto& expected : Expected::parameters)
        for (const auto x : { 1.0e30f, -1.0e30f, 3.4e38f, -3.4e38f, infinity, -infinity,
                              std::numeric_limits<float>::quiet_NaN(), 1.0e-45f })
            EXPECT_LT (controls.text (expected.index, x).size(), 64u) << expected.identifier << ", x = " << x;
}
