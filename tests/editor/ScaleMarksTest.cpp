// SPDX-License-Identifier: GPL-3.0-or-later
// The printed scales against the controls themselves: a mark stands where the pointer stops.
#include "views/ScaleMarks.h"
#include "EditorFixture.h"
#include "ExpectedPanel.h"

#include <algorithm>
#include <cmath>
#include <map>
#include <set>

namespace
{
using namespace ExpectedPanel;

double degrees (double radians) { return radians * 180.0 / juce::MathConstants<double>::pi; }
double wrapped (double angle) { return angle - 360.0 * std::round (angle / 360.0); }

/** What a printed label stands for, as the control would write its beginning. */
juce::String meaningOf (const juce::String& label)
{
    if (label == "CTRL")
        return "control";

    if (label.endsWithChar ('k'))
        return juce::String (label.dropLastCharacters (1).getIntValue() * 1000) + "hz";

    return label.toLowerCase();
}

class PrintedScales : public EditorTest
{
protected:
    PrintedScales() : knobs (ScaleMarks::knobsOf (processor)) {}

    NVXSlider& knobOf (int parameter)
    {
        return *dynamic_cast<NVXSlider*> (panel().controlsOfParameter.at (parameter).front());
    }

    std::vector<ScaleMarks::Knob> knobs;
};
} // namespace

TEST_F (PrintedScales, BelongToAllKnobs)
{
    std::set<int> expected, found;

    for (const auto& knob : knobsOf (panel()))
        expected.insert (knob.parameter);

    for (const auto& knob : knobs)
    {
        EXPECT_TRUE (found.insert (knob.parameter).second) << knob.parameter;
        EXPECT_EQ (knobOf (knob.parameter).getBounds(), knob.place.in (1350, 675)) << knob.parameter;
        EXPECT_TRUE (juce::String (knob.legend).isNotEmpty());

        auto& widget = knobOf (knob.parameter);
        const juce::String kind (knob.kind);
        EXPECT_EQ (kind == "BigKnob", dynamic_cast<BigKnob*> (&widget) != nullptr);
        EXPECT_EQ (kind == "MidKnob", dynamic_cast<MidKnob*> (&widget) != nullptr);
        EXPECT_EQ (kind == "SmallKnob", dynamic_cast<SmallKnob*> (&widget) != nullptr);
    }

    EXPECT_EQ (expected, found);
}

TEST_F (PrintedScales, EveryMarkStandsWhereThePointerStops)
{
    for (const auto& knob : knobs)
        for (const auto& mark : knob.marks)
        {
            automate (knob.parameter, static_cast<float> (mark.normalised));
            panel().refresh();
            const auto painted = degrees (static_cast<double> (knobOf (knob.parameter).rotorAngle()));
            EXPECT_NEAR (0.0, wrapped (painted - mark.degrees), 0.05) << knob.parameter << " " << mark.label;
            EXPECT_TRUE (mark.degrees > -180.0 && mark.degrees <= 180.0);
        }
}

TEST_F (PrintedScales, EveryPositionOfASteppedKnobHasItsMark)
{
    for (const auto& [widget, travel, parameter] : knobsOf (panel()))
    {
        if (travel.step <= 0.0)
            continue;

        const auto index = parameter;
        const auto knob =
            std::find_if (knobs.begin(), knobs.end(), [index] (const auto& each) { return each.parameter == index; });
        const auto positions = static_cast<int> (std::lround (1.0 / travel.step)) + 1;
        ASSERT_EQ (static_cast<std::size_t> (positions), knob->marks.size()) << travel.name;

        for (int i = 0; i < positions; ++i)
        {
            const auto angle = travel.start + (travel.end - travel.start) * static_cast<float> (i * travel.step);
            EXPECT_NEAR (0.0, wrapped (degrees (angle) - knob->marks[static_cast<std::size_t> (i)].degrees), 0.05)
                << travel.name << " " << i;
        }
    }
}

TEST_F (PrintedScales, LabelsSayWhatTheControlSays)
{
    for (const auto& knob : knobs)
    {
        auto labels = 0;

        for (const auto& mark : knob.marks)
            if (mark.label.isNotEmpty())
            {
                const auto* parameter = processor.getParameters()[knob.parameter];
                const auto text = parameter->getText (static_cast<float> (mark.normalised), 64).toLowerCase();
                EXPECT_TRUE (text.startsWith (meaningOf (mark.label))) << mark.label << " at " << text;
                ++labels;
            }

        EXPECT_GE (labels, 3) << knob.parameter;
        EXPECT_TRUE (knob.marks.front().label.isNotEmpty()) << knob.parameter; // both ends can be read
        EXPECT_TRUE (knob.marks.back().label.isNotEmpty()) << knob.parameter;
        EXPECT_NEAR (0.0, knob.marks.front().normalised, 1.0e-6);
        EXPECT_NEAR (1.0, knob.marks.back().normalised, 1.0e-6);
    }
}

TEST_F (PrintedScales, AutoIsTheLowEndOfGain)
{
    for (const auto& knob : knobs)
        if (knob.parameter == 4 || knob.parameter == 13 || knob.parameter == 22)
        {
            EXPECT_EQ (juce::String ("AUTO"), knob.marks[0].label);
            EXPECT_NEAR (-150.0, knob.marks[0].degrees, 0.05); // 210 degrees
            EXPECT_EQ (juce::String ("0"), knob.marks[1].label);
            EXPECT_EQ (juce::String ("20"), knob.marks[21].label);
            EXPECT_NEAR (135.0, knob.marks[21].degrees, 0.05); // 495
        }
}

// ---- meters ------------------------------------------------------------------------------------
namespace
{
/** Where a needle comes to rest for a reading, in px of a meter of 252. */
double restingHeight (float value, bool isGainReduction)
{
    static std::uint32_t now;
    now = 0;
    VertMeter meter;
    meter.millisecondCounter = []() noexcept { return std::uint32_t { now }; };
    meter.lastTime = 0;

    for (int i = 0; i < 400; ++i)
    {
        now += 50;
        meter.update (value, isGainReduction);
    }

    return 252.0 * (0.95 - 0.9 * meter.position);
}
} // namespace

TEST (MeterScales, LevelMarksStandWhereTheNeedleRests)
{
    std::set<int> values;

    for (const auto& mark : ScaleMarks::levelMarks())
    {
        const auto position = (mark.decibels + 12.0) / 24.0 * 0.8 + 0.1;
        EXPECT_NEAR (252.0 * (0.95 - 0.9 * position), mark.y, 0.01) << mark.decibels;
        EXPECT_NEAR (restingHeight (static_cast<float> (std::pow (10.0, mark.decibels * 0.05)), false), mark.y, 0.01);
        values.insert (static_cast<int> (mark.decibels));

        EXPECT_TRUE (mark.label.isEmpty() || mark.label.getIntValue() == static_cast<int> (mark.decibels));
    }

    for (const auto value : { -12, -6, 0, 6, 12 })
        EXPECT_EQ (1u, values.count (value)) << value;
}

TEST (MeterScales, GainReductionMarksStandWhereTheNeedleRests)
{
    std::set<int> values;

    for (const auto& mark : ScaleMarks::gainReductionMarks())
    {
        const auto gain = std::pow (10.0, -mark.decibels * 0.05);
        const auto position = std::clamp (std::min (gain * -1.3 + 1.19, 1.0) * 0.9 + 0.05, 0.0, 1.0);
        EXPECT_NEAR (252.0 * (0.95 - 0.9 * position), mark.y, 0.01) << mark.decibels;
        EXPECT_NEAR (restingHeight (static_cast<float> (gain), true), mark.y, 0.01) << mark.decibels;
        values.insert (static_cast<int> (mark.decibels));

        EXPECT_TRUE (mark.label.isEmpty() || mark.label.getIntValue() == static_cast<int> (mark.decibels));
    }

    for (const auto value : { 0, 3, 6, 10 })
        EXPECT_EQ (1u, values.count (value)) << value;
}

// ---- the file that the artwork is drawn from ---------------------------------------------------
TEST_F (PrintedScales, TheArtworksFileIsTheirs)
{
    const juce::File file (CORVANE_ARTWORK_JSON);
    ASSERT_TRUE (file.existsAsFile());
    EXPECT_TRUE (file.loadFileAsString() == ScaleMarks::toJson (processor).replace ("\r\n", "\n"))
        << "write it anew with: corvane-views --geometry, then make the artwork";
}

TEST_F (PrintedScales, TheFileHasEveryControlsRectangle)
{
    const auto document = juce::JSON::parse (ScaleMarks::toJson (processor));
    std::map<juce::String, juce::Rectangle<int>> found;

    for (const auto& entry : *document["rectangles"].getArray())
        found[entry["name"].toString()] = { entry["x"], entry["y"], entry["w"], entry["h"] };

    const std::pair<const char*, const char*> bandNamesInFile[] {
        { "Level meter", "Meter" },      { "In button", "InButton" },
        { "Solo button", "SoloButton" }, { "Mid/side button", "MidSideButton" },
        { "In lamp", "InLamp" },         { "Solo lamp", "SoloLamp" },
        { "M lamp", "MidLamp" },         { "S lamp", "SideLamp" },
        { "S label", "SideLabel" },      { "M label", "MidLabel" }
    };

    for (const auto& row : bandControls())
        for (const auto& [name, inFile] : bandNamesInFile)
            if (std::string (row.name) == name)
            {
                for (int i = 0; i < numBands; ++i)
                    EXPECT_EQ (row.get (band (i))->getBounds(), found[juce::String (bandNames[i]) + inFile]) << name;
            }

    const std::pair<const char*, const char*> globalNamesInFile[] { { "Bypass button", "BypassSwitch" },
                                                                    { "Bypass lamp", "BypassLamp" },
                                                                    { "Nuke button", "NukeButton" },
                                                                    { "Niveau button", "NiveauButton" },
                                                                    { "Link button", "LinkButton" },
                                                                    { "Nuke lamp", "NukeLamp" },
                                                                    { "Niveau lamp", "NiveauLamp" },
                                                                    { "Link lamp", "LinkLamp" },
                                                                    { "Master readout", "MasterReadout" },
                                                                    { "Mix readout", "MixReadout" },
                                                                    { "High-pass readout", "HighPassReadout" },
                                                                    { "Low crossover digits", "LowXOverDigits" },
                                                                    { "High crossover digits", "HighXOverDigits" } };

    for (const auto& row : globalControls())
        for (const auto& [name, inFile] : globalNamesInFile)
            if (std::string (row.name) == name)
            {
                EXPECT_EQ (row.atBase, found[inFile]) << name;
            }

    EXPECT_EQ (30u + 13u, found.size());
}
