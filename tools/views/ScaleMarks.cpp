// SPDX-License-Identifier: GPL-3.0-or-later
#include "views/ScaleMarks.h"

#include "editor/widgets/VertMeter.h"
#include "processor/CorvaneQ7AudioProcessor.h"

#include <juce_core/juce_core.h>

#include <algorithm>
#include <cmath>

namespace ScaleMarks
{
namespace
{
using namespace MainUILayout;

/** What the control calls a position, and what the panel prints there. */
struct Text
{
    juce::String value, label;
};

using Texts = std::vector<Text>;

Texts everyDecibel (int first, int last, int step, int labelEvery)
{
    Texts texts;

    for (int db = first; db <= last; db += step)
        texts.push_back ({ juce::String (db) + "dB", db % labelEvery == 0 ? juce::String (db) : juce::String() });

    return texts;
}

Texts gainTexts()
{
    Texts texts { { "auto", "AUTO" } };

    for (const auto& text : everyDecibel (0, 20, 1, 4))
        texts.push_back (text);

    return texts;
}

Texts frequencies (std::initializer_list<std::pair<const char*, const char*>> list)
{
    Texts texts;

    for (const auto& [hz, label] : list)
        texts.push_back ({ juce::String (hz) + "Hz", label });

    return texts;
}

const Texts ratioTexts { { "1.5:1", "1.5" }, { "2:1", "2" }, { "3:1", "3" }, { "4:1", "4" }, { "6:1", "6" } };
const Texts attackTexts { { "2uS", "2us" }, { "0.5mS", "0.5ms" }, { "2mS", "2ms" }, { "10mS", "10ms" } };
const Texts recoveryTexts {
    { "100mS", "100ms" }, { "400mS", "400ms" }, { "800mS", "800ms" }, { "1.5S", "1.5s" }, { "Auto", "AUTO" }
};
const Texts meterTexts { { "In", "IN" }, { "Control", "CTRL" }, { "Out", "OUT" } };

const Texts mixTexts { { "0%", "0" }, { "10%", {} }, { "20%", {} }, { "30%", {} }, { "40%", {} },    { "50%", "50" },
                       { "60%", {} }, { "70%", {} }, { "80%", {} }, { "90%", {} }, { "100%", "100" } };

/** What one band's knobs look like; the index is the control's within the band. */
struct BandKnob
{
    const char* identifier; // of the Low band
    const char* kind;
    BandPlace place;
    KnobTravel travel;
    const char* legend;
    Texts texts;
};

double degreesOf (const KnobTravel& travel, double normalised)
{
    const auto radians = travel.start + (travel.end - travel.start) * normalised;
    const auto degrees = juce::radiansToDegrees (radians);
    return degrees > 180.0 ? degrees - 360.0 : degrees;
}

std::vector<Mark> marksOf (const juce::AudioProcessorParameter& parameter, const KnobTravel& travel, const Texts& texts)
{
    std::vector<Mark> marks;

    for (const auto& text : texts)
    {
        const auto normalised = static_cast<double> (parameter.getValueForText (text.value));
        marks.push_back ({ normalised, degreesOf (travel, normalised), text.label });
    }

    return marks;
}

std::vector<MeterMark> meterMarks (bool isGainReduction, std::initializer_list<int> labelled,
                                   std::initializer_list<int> ticks)
{
    std::vector<MeterMark> marks;

    const auto add = [&] (int decibels, const juce::String& label)
    {
        const auto shown = isGainReduction ? -decibels : decibels;
        const auto gain = std::pow (10.0, shown * 0.05);
        const auto position =
            std::clamp (VertMeter::targetPosition (static_cast<float> (gain), isGainReduction), 0.0, 1.0);
        marks.push_back ({ static_cast<double> (decibels),
                           VertMeter::baseHeight * static_cast<double> (needleShare (static_cast<float> (position))),
                           label });
    };

    for (const auto decibels : labelled)
        add (decibels, decibels > 0 && ! isGainReduction ? "+" + juce::String (decibels) : juce::String (decibels));

    for (const auto decibels : ticks)
        add (decibels, {});

    return marks;
}

juce::var asVar (juce::Rectangle<int> area)
{
    auto* object = new juce::DynamicObject();
    object->setProperty ("x", area.getX());
    object->setProperty ("y", area.getY());
    object->setProperty ("w", area.getWidth());
    object->setProperty ("h", area.getHeight());
    return object;
}

/** Rounded, so that the text does not depend on the machine's last digit. */
double rounded (double x) { return std::round (x * 1.0e3) / 1.0e3; }
} // namespace

std::vector<Knob> knobsOf (CorvaneQ7AudioProcessor& processor)
{
    const BandKnob bandKnobs[] {
        { "LowRatio", "BigKnob", ratio, ratioTravel, "RATIO", ratioTexts },
        { "LowAttack", "BigKnob", attack, attackTravel, "ATTACK", attackTexts },
        { "LowRecovery", "BigKnob", recovery, recoveryTravel, "RECOVERY", recoveryTexts },
        { "LowGain", "MidKnob", gain, gainTravel, "GAIN", gainTexts() },
        { "LowThreshold", "MidKnob", threshold, thresholdTravel, "THRESHOLD", everyDecibel (-20, 10, 2, 10) },
        { "LowMeter", "SmallKnob", meterMode, meterModeTravel, "METER", meterTexts },
    };

    struct GlobalKnob
    {
        const char* identifier;
        const char* kind;
        Place place;
        KnobTravel travel;
        const char* legend;
        Texts texts;
    };

    const GlobalKnob globalKnobs[] {
        { "HPF", "MidKnob", highPass, continuousTravel, "HPF",
          frequencies ({ { "20", "OFF" },
                         { "30", "" },
                         { "40", "" },
                         { "50", "50" },
                         { "60", "" },
                         { "80", "" },
                         { "100", "100" },
                         { "150", "" },
                         { "200", "200" },
                         { "300", "" },
                         { "400", "" },
                         { "500", "500" } }) },
        { "Mix", "MidKnob", mix, continuousTravel, "MIX", mixTexts },
        { "MasterGain", "MidKnob", master, masterTravel, "MASTER", everyDecibel (-10, 20, 1, 5) },
        { "LowXOver", "SmallKnob", lowXOver, continuousTravel, "LOW / MID",
          frequencies ({ { "50", "50" },
                         { "100", "100" },
                         { "200", "200" },
                         { "500", "500" },
                         { "1000", "1k" },
                         { "2000", "2k" },
                         { "5000", "5k" } }) },
        { "HighXOver", "SmallKnob", highXOver, continuousTravel, "MID / HIGH",
          frequencies ({ { "200", "200" },
                         { "500", "500" },
                         { "1000", "1k" },
                         { "2000", "2k" },
                         { "5000", "5k" },
                         { "10000", "" },
                         { "12000", "12k" } }) },
    };

    std::vector<Knob> knobs;

    const auto add = [&] (int parameter, const char* kind, Place place, const KnobTravel& travel, const char* legend,
                          const Texts& texts)
    {
        knobs.push_back (
            { parameter, kind, place, travel, legend, marksOf (*processor.getParameters()[parameter], travel, texts) });
    };

    for (int band = 0; band < numBands; ++band)
        for (const auto& knob : bandKnobs)
            add (ParameterTable::indexOf (knob.identifier) + band * ParameterTable::numBandControls, knob.kind,
                 knob.place.of (band), knob.travel, knob.legend, knob.texts);

    for (const auto& knob : globalKnobs)
        add (ParameterTable::indexOf (knob.identifier), knob.kind, knob.place, knob.travel, knob.legend, knob.texts);

    return knobs;
}

std::vector<MeterMark> levelMarks()
{
    return meterMarks (false, { -12, -9, -6, -3, 0, 3, 6, 9, 12 },
                       { -11, -10, -8, -7, -5, -4, -2, -1, 1, 2, 4, 5, 7, 8, 10, 11 });
}

std::vector<MeterMark> gainReductionMarks()
{
    return meterMarks (true, { 0, 1, 2, 3, 4, 6, 8, 10, 15 }, { 5, 7, 9, 12 });
}

juce::String toJson (CorvaneQ7AudioProcessor& processor)
{
    auto* root = new juce::DynamicObject();
    const juce::var document (root);

    auto* panel = new juce::DynamicObject();
    panel->setProperty ("width", baseWidth);
    panel->setProperty ("height", baseHeight);
    root->setProperty ("panel", panel);

    juce::Array<juce::var> knobs;

    for (const auto& knob : knobsOf (processor))
    {
        auto entry = asVar (knob.place.in (baseWidth, baseHeight));
        auto* object = entry.getDynamicObject();
        object->setProperty ("parameter", ParameterTable::rows[knob.parameter].identifier);
        object->setProperty ("kind", knob.kind);
        object->setProperty ("legend", knob.legend);

        juce::Array<juce::var> marks;

        for (const auto& mark : knob.marks)
        {
            auto* markObject = new juce::DynamicObject();
            markObject->setProperty ("angle", rounded (mark.degrees));
            markObject->setProperty ("label", mark.label);
            markObject->setProperty ("major", mark.label.isNotEmpty());
            marks.add (markObject);
        }

        object->setProperty ("marks", marks);
        knobs.add (entry);
    }

    root->setProperty ("knobs", knobs);

    juce::Array<juce::var> rectangles;

    const auto addRectangle = [&] (const juce::String& name, juce::Rectangle<int> area)
    {
        auto entry = asVar (area);
        entry.getDynamicObject()->setProperty ("name", name);
        rectangles.add (entry);
    };

    const std::pair<const char*, BandPlace> bandRectangles[] {
        { "Meter", meter },           { "InButton", inButton },
        { "SoloButton", soloButton }, { "MidSideButton", midSideButton },
        { "InLamp", inLamp },         { "SoloLamp", soloLamp },
        { "MidLamp", midLamp },       { "SideLamp", sideLamp },
        { "SideLabel", sideLabel }
    };
    const char* const bandNames[] { "Low", "Mid", "High" };

    for (int band = 0; band < numBands; ++band)
    {
        for (const auto& [name, place] : bandRectangles)
            addRectangle (bandNames[band] + juce::String (name), place.of (band).in (baseWidth, baseHeight));

        addRectangle (bandNames[band] + juce::String ("MidLabel"), midLabelOf (band).in (baseWidth, baseHeight));
    }

    const std::pair<const char*, Place> fromLeft[] { { "BypassSwitch", bypassSwitch }, { "BypassLamp", bypassLamp },
                                                     { "NukeButton", nukeButton },     { "NiveauButton", niveauButton },
                                                     { "LinkButton", linkButton },     { "NukeLamp", nukeLamp },
                                                     { "NiveauLamp", niveauLamp },     { "LinkLamp", linkLamp } };
    const std::pair<const char*, Place> centred[] { { "MasterReadout", masterReadout },
                                                    { "MixReadout", mixReadout },
                                                    { "HighPassReadout", highPassReadout },
                                                    { "LowXOverDigits", lowXOverDigits },
                                                    { "HighXOverDigits", highXOverDigits } };

    for (const auto& [name, place] : fromLeft)
        addRectangle (name, place.in (baseWidth, baseHeight));

    for (const auto& [name, place] : centred)
        addRectangle (name, place.centredIn (baseWidth, baseHeight));

    root->setProperty ("rectangles", rectangles);

    const auto asArray = [] (const std::vector<MeterMark>& marks)
    {
        juce::Array<juce::var> array;

        for (const auto& mark : marks)
        {
            auto* object = new juce::DynamicObject();
            object->setProperty ("value", mark.decibels);
            object->setProperty ("label", mark.label);
            object->setProperty ("y", rounded (mark.y));
            object->setProperty ("major", mark.label.isNotEmpty());
            array.add (object);
        }

        return array;
    };

    auto* meters = new juce::DynamicObject();
    meters->setProperty ("width", VertMeter::baseWidth);
    meters->setProperty ("height", VertMeter::baseHeight);
    meters->setProperty ("level", asArray (levelMarks()));
    meters->setProperty ("gainReduction", asArray (gainReductionMarks()));
    root->setProperty ("meter", meters);

    return juce::JSON::toString (document, false, 6) + "\n";
}
} // namespace ScaleMarks
