// SPDX-License-Identifier: GPL-3.0-or-later
#include "lv2/ParameterTurtle.h"

#include "parameters/ParameterTable.h"

#include <algorithm>
#include <stdexcept>

namespace
{
using Parameter = juce::AudioProcessorParameterWithID;

struct ScalePoint
{
    float value;
    std::string label;
};

constexpr int uncut = 1024; // letters of a text, as many as the framework's wrapper asks for
constexpr auto unitName = "plug:Position";

[[noreturn]] void fail (const Parameter& parameter, const std::string& reason)
{
    throw std::runtime_error ("parameter " + parameter.paramID.toStdString() + ": " + reason);
}

ScalePoint pointAt (const Parameter& parameter, float value)
{
    const auto label = parameter.getText (value, uncut).toStdString();

    if (label.empty())
        fail (parameter, "has no text at " + Turtle::decimal (value));

    return { value, label };
}

/** Every position of a stepped control. */
std::vector<ScalePoint> allPositions (const Parameter& parameter)
{
    std::vector<ScalePoint> points;
    const auto last = parameter.getNumSteps() - 1;

    if (last < 1)
        fail (parameter, "has fewer than two steps");

    for (int i = 0; i <= last; ++i)
        points.push_back (pointAt (parameter, static_cast<float> (i) / static_cast<float> (last)));

    return points;
}

/** Round numbers within what controls of this unit can reach. */
std::vector<int> roundNumbers (const juce::String& unit)
{
    std::vector<int> numbers;

    if (unit == "dB")
        for (int db = -100; db <= 100; db += 5)
            numbers.push_back (db);
    else if (unit == "%")
        for (int percent = 0; percent <= 100; percent += 10)
            numbers.push_back (percent);
    else if (unit == "Hz")
        for (int decade = 10; decade <= 10000; decade *= 10)
            for (const auto step : { 1, 2, 5 })
                numbers.push_back (step * decade);

    return numbers;
}

/** The ends and the default of a continuous control, and round values between, of which each text appears once. */
std::vector<ScalePoint> tellingPositions (const Parameter& parameter)
{
    auto points = std::vector<ScalePoint> { pointAt (parameter, 0.0f), pointAt (parameter, 1.0f) };

    const auto addUnlessShown = [&points] (ScalePoint candidate)
    {
        if (std::none_of (points.begin(), points.end(),
                          [&] (const ScalePoint& point) { return point.label == candidate.label; }))
            points.push_back (std::move (candidate));
    };

    // At an end the default is that point itself; anywhere else its own text belongs to its exact value.
    addUnlessShown (pointAt (parameter, parameter.getDefaultValue()));

    const auto unit = juce::String (points[1].label).trimCharactersAtStart ("-0123456789.");
    const auto numbers = roundNumbers (unit);

    if (numbers.empty())
        fail (parameter, "reads \"" + points[1].label + "\", for which there are no round values");

    for (const auto number : numbers)
    {
        const auto value = parameter.getValueForText (juce::String (number) + unit);

        // Beyond an end some controls answer with a value outside, others with the end itself.
        if (value <= 0.0f || value >= 1.0f)
            continue;

        const auto point = pointAt (parameter, value);

        if (juce::String (point.label).getDoubleValue() != number)
            fail (parameter, "set to " + std::to_string (number) + " reads \"" + point.label + "\"");

        addUnlessShown (point);
    }

    std::sort (points.begin(), points.end(),
               [] (const ScalePoint& a, const ScalePoint& b) { return a.value < b.value; });
    return points;
}

Turtle::Node node (const ScalePoint& point)
{
    return { {},
             { { "a", Turtle::nodes ({ "lv2:ScalePoint" }) },
               { "rdfs:label", Turtle::nodes ({ Turtle::quoted (point.label) }) },
               { "rdf:value", Turtle::nodes ({ Turtle::decimal (point.value) }) } } };
}

/** What the positions from 0 to 1 read: all of them where they are few, otherwise the two ends. */
std::string reading (const Parameter& parameter, const std::vector<ScalePoint>& points)
{
    constexpr std::size_t few = 6;
    const auto ends = " from 0 (" + points.front().label + ") to 1 (" + points.back().label + ')';

    if (! parameter.isDiscrete())
        return "Any position" + ends;

    const auto positions = "One of " + std::to_string (points.size()) + " positions, evenly spaced";

    if (points.size() > few)
        return positions + ends;

    auto all = positions + " from 0 to 1: " + points.front().label;

    for (std::size_t i = 1; i < points.size(); ++i)
        all += ", " + points[i].label;

    return all;
}

/** What the control does and how its positions read: some hosts show the comment and leave the scale points out. */
std::string comment (const Parameter& parameter, const std::vector<ScalePoint>& points)
{
    const auto index = ParameterTable::indexOf (parameter.paramID.toRawUTF8());

    if (index < 0)
        fail (parameter, "stands in no row of the table of controls");

    return ParameterTable::rows[index].sentence + (' ' + reading (parameter, points))
           + ". Default: " + pointAt (parameter, parameter.getDefaultValue()).label + '.';
}
} // namespace

std::string ParameterTurtle::subjectName (const juce::AudioProcessorParameterWithID& parameter)
{
    return "plug:" + parameter.paramID.toStdString();
}

Turtle::Subject ParameterTurtle::positionUnit()
{
    Turtle::Subject unit { unitName, {} };
    unit.set ("a", Turtle::nodes ({ "units:Unit" }));
    unit.set ("rdfs:label", Turtle::nodes ({ Turtle::quoted ("position") }));
    unit.set ("rdfs:comment", Turtle::nodes ({ Turtle::quoted (
                                  "A position within a control's travel, from 0 to 1. It is not a number of dB, Hz or "
                                  "per cent: the labels of the scale points say what a position means.") }));
    unit.set ("units:render", Turtle::nodes ({ Turtle::quoted ("%f") }));
    return unit;
}

Turtle::Subject ParameterTurtle::describe (const juce::AudioProcessorParameterWithID& parameter)
{
    const auto identifier = parameter.paramID;
    const auto letters = juce::String ("abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ_");

    if (! identifier.containsOnly (letters + "0123456789") || ! letters.containsChar (identifier[0]))
        fail (parameter, "its identifier is no symbol: letters, digits and _, with no digit first");

    const auto points = parameter.isDiscrete() ? allPositions (parameter) : tellingPositions (parameter);
    const auto name = Turtle::quoted (parameter.getName (uncut).toStdString());

    Turtle::Subject subject { subjectName (parameter), {} };

    // What has port properties is a port in the vocabulary's terms, and hosts look for switches and enumerations there;
    // so it is called one, and has the symbol and the name that are then due. Hosts find audio and control ports by the
    // plug-in's list of ports, in which parameters do not appear.
    subject.set ("a", Turtle::nodes ({ "lv2:Parameter", "lv2:Port" }));
    subject.set ("lv2:symbol", Turtle::nodes ({ Turtle::quoted (identifier.toStdString()) }));
    subject.set ("lv2:name", Turtle::nodes ({ name }));
    subject.set ("rdfs:label", Turtle::nodes ({ name }));
    subject.set ("rdfs:comment", Turtle::nodes ({ Turtle::quoted (comment (parameter, points)) }));
    subject.set ("rdfs:range", Turtle::nodes ({ "atom:Float" }));
    subject.set ("lv2:default", Turtle::nodes ({ Turtle::decimal (parameter.getDefaultValue()) }));
    subject.set ("lv2:minimum", Turtle::nodes ({ Turtle::decimal (0.0f) }));
    subject.set ("lv2:maximum", Turtle::nodes ({ Turtle::decimal (1.0f) }));
    subject.set ("units:unit", Turtle::nodes ({ unitName }));

    if (parameter.isBoolean())
        subject.set ("lv2:portProperty", Turtle::nodes ({ "lv2:enumeration", "lv2:toggled" }));
    else if (parameter.isDiscrete())
        subject.set ("lv2:portProperty", Turtle::nodes ({ "lv2:enumeration" }));

    std::vector<Turtle::Node> pointNodes;
    std::transform (points.begin(), points.end(), std::back_inserter (pointNodes), node);
    subject.set ("lv2:scalePoint", std::move (pointNodes));
    return subject;
}
