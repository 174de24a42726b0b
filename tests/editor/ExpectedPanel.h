// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "editor/MainUI.h"

#include <string>
#include <vector>

/** Where everything on the front has to stand and how the knobs have to turn, typed by hand and held against the
    code: nothing here reads the code's own table, so that a slip in either of the two shows. */
namespace ExpectedPanel
{
constexpr int numBands = 3, bandDistance = 9;
constexpr const char* bandNames[] { "Low", "Mid", "High" };

using Band = MainUI::BandWidgets;
using Base = juce::Rectangle<int>;

struct BandControl
{
    const char* name;
    juce::Component* (*get) (Band&);
    float x[numBands], y, w, h;
    Base lowAtBase;     // of the Low band at 1350 by 675
    int parameter = -1; // of the Low band
};

struct GlobalControl
{
    const char* name;
    juce::Component* (*get) (MainUI&);
    float x, y, w, h;
    bool xIsMiddle;
    Base atBase;
    int parameter = -1;
};

// clang-format off
inline const std::vector<BandControl>& bandControls()
{
    static const std::vector<BandControl> rows
    {
        { "Threshold knob", [] (Band& b) -> juce::Component* { return b.threshold.get(); },     { 0.24f,   0.5733f, 0.9067f }, 0.3615f, 0.0533f, 0.1067f, { 324, 244,  72,  72 }, 6 },
        { "Gain knob",      [] (Band& b) -> juce::Component* { return b.gain.get(); },          { 0.1067f, 0.44f,   0.7733f }, 0.3615f, 0.0533f, 0.1067f, { 144, 244,  72,  72 }, 4 },
        { "Ratio knob",     [] (Band& b) -> juce::Component* { return b.ratio.get(); },         { 0.2222f, 0.5556f, 0.8889f }, 0.1289f, 0.0889f, 0.1778f, { 300,  87, 120, 120 }, 5 },
        { "Attack knob",    [] (Band& b) -> juce::Component* { return b.attack.get(); },        { 0.0889f, 0.4222f, 0.7556f }, 0.5304f, 0.0889f, 0.1778f, { 120, 358, 120, 120 }, 7 },
        { "Recovery knob",  [] (Band& b) -> juce::Component* { return b.recovery.get(); },      { 0.2222f, 0.5556f, 0.8889f }, 0.5304f, 0.0889f, 0.1778f, { 300, 358, 120, 120 }, 8 },
        { "Meter mode",     [] (Band& b) -> juce::Component* { return b.meterMode.get(); },     { 0.0148f, 0.3481f, 0.6815f }, 0.5793f, 0.04f,   0.08f,   {  20, 391,  54,  54 }, 0 },
        { "In button",      [] (Band& b) -> juce::Component* { return b.inButton.get(); },      { 0.1148f, 0.4474f, 0.7807f }, 0.1111f, 0.063f,  0.08f,   { 155,  75,  85,  54 }, 1 },
        { "Solo button",    [] (Band& b) -> juce::Component* { return b.soloButton.get(); },    { 0.1148f, 0.4474f, 0.7807f }, 0.1718f, 0.063f,  0.08f,   { 155, 116,  85,  54 }, 2 },
        { "Mid/side button",[] (Band& b) -> juce::Component* { return b.midSideButton.get(); }, { 0.1148f, 0.4474f, 0.7807f }, 0.2326f, 0.063f,  0.08f,   { 155, 157,  85,  54 }, 3 },
        { "In lamp",        [] (Band& b) -> juce::Component* { return b.inLamp.get(); },        { 0.1007f, 0.4341f, 0.7674f }, 0.1304f, 0.0185f, 0.037f,  { 136,  88,  25,  25 } },
        { "Solo lamp",      [] (Band& b) -> juce::Component* { return b.soloLamp.get(); },      { 0.1007f, 0.4341f, 0.7674f }, 0.1911f, 0.0185f, 0.037f,  { 136, 129,  25,  25 } },
        { "M lamp",         [] (Band& b) -> juce::Component* { return b.midLamp.get(); },       { 0.1007f, 0.4341f, 0.7667f }, 0.2518f, 0.0185f, 0.037f,  { 136, 170,  25,  25 } },
        { "S lamp",         [] (Band& b) -> juce::Component* { return b.sideLamp.get(); },      { 0.1718f, 0.5052f, 0.8378f }, 0.2533f, 0.0185f, 0.037f,  { 232, 171,  25,  25 } },
        { "M label",        [] (Band& b) -> juce::Component* { return b.midLabel.get(); },      { 0.0881f, 0.4237f, 0.7563f }, 0.2548f, 0.0185f, 0.0356f, { 119, 172,  30,  24 } }, // Low is wider
        { "S label",        [] (Band& b) -> juce::Component* { return b.sideLabel.get(); },     { 0.1822f, 0.5163f, 0.8482f }, 0.2548f, 0.0185f, 0.0356f, { 246, 172,  25,  24 } },
        { "Level meter",    [] (Band& b) -> juce::Component* { return b.meter.get(); },         { 0.0141f, 0.3474f, 0.6807f }, 0.1037f, 0.043f,  0.3733f, {  19,  70,  58, 252 } },
    };
    return rows;
}

inline float widthOf (const BandControl& row, int band)
{
    return std::string (row.name) == "M label" && band == 0 ? 0.0222f : row.w;
}

inline const std::vector<GlobalControl>& globalControls()
{
    static const std::vector<GlobalControl> rows
    {
        { "High-pass knob",        [] (MainUI& p) -> juce::Component* { return p.highPass.get(); },        0.1985f, 0.8356f, 0.0533f, 0.1067f, false, {  268, 564, 72, 72 }, 28 },
        { "Mix knob",              [] (MainUI& p) -> juce::Component* { return p.mix.get(); },             0.4119f, 0.8356f, 0.0533f, 0.1067f, false, {  556, 564, 72, 72 }, 27 },
        { "Master knob",           [] (MainUI& p) -> juce::Component* { return p.master.get(); },          0.5356f, 0.8356f, 0.0533f, 0.1067f, false, {  723, 564, 72, 72 }, 29 },
        { "Low crossover knob",    [] (MainUI& p) -> juce::Component* { return p.lowXOver.get(); },        0.3133f, 0.837f,  0.04f,   0.08f,   false, {  423, 565, 54, 54 }, 30 },
        { "High crossover knob",   [] (MainUI& p) -> juce::Component* { return p.highXOver.get(); },       0.6467f, 0.837f,  0.04f,   0.08f,   false, {  873, 565, 54, 54 }, 31 },
        { "Bypass button",         [] (MainUI& p) -> juce::Component* { return p.bypassSwitch.get(); },    0.9215f, 0.843f,  0.0518f, 0.117f,  false, { 1244, 569, 70, 79 }, 35 },
        { "Bypass lamp",           [] (MainUI& p) -> juce::Component* { return p.bypassLamp.get(); },      0.9222f, 0.9333f, 0.0185f, 0.037f,  false, { 1245, 630, 25, 25 } },
        { "Nuke button",           [] (MainUI& p) -> juce::Component* { return p.nukeButton.get(); },      0.757f,  0.8f,    0.063f,  0.08f,   false, { 1022, 540, 85, 54 }, 32 },
        { "Niveau button",         [] (MainUI& p) -> juce::Component* { return p.niveauButton.get(); },    0.757f,  0.8533f, 0.063f,  0.08f,   false, { 1022, 576, 85, 54 }, 33 },
        { "Link button",           [] (MainUI& p) -> juce::Component* { return p.linkButton.get(); },      0.757f,  0.9067f, 0.063f,  0.08f,   false, { 1022, 612, 85, 54 }, 34 },
        { "Nuke lamp",             [] (MainUI& p) -> juce::Component* { return p.nukeLamp.get(); },        0.7422f, 0.8222f, 0.0185f, 0.037f,  false, { 1002, 555, 25, 25 } },
        { "Niveau lamp",           [] (MainUI& p) -> juce::Component* { return p.niveauLamp.get(); },      0.7422f, 0.8756f, 0.0185f, 0.037f,  false, { 1002, 591, 25, 25 } },
        { "Link lamp",             [] (MainUI& p) -> juce::Component* { return p.linkLamp.get(); },        0.7422f, 0.9289f, 0.0185f, 0.037f,  false, { 1002, 627, 25, 25 } },
        { "Master readout",        [] (MainUI& p) -> juce::Component* { return p.masterReadout.get(); },   0.5622f, 0.7822f, 0.037f,  0.0356f, true,  {  734, 528, 50, 24 } },
        { "Mix readout",           [] (MainUI& p) -> juce::Component* { return p.mixReadout.get(); },      0.4393f, 0.7822f, 0.037f,  0.0356f, true,  {  568, 528, 50, 24 } },
        { "High-pass readout",     [] (MainUI& p) -> juce::Component* { return p.highPassReadout.get(); }, 0.2252f, 0.7822f, 0.037f,  0.0356f, true,  {  279, 528, 50, 24 } },
        { "Low crossover digits",  [] (MainUI& p) -> juce::Component* { return p.lowXOverDigits.get(); },  0.3333f, 0.9363f, 0.0444f, 0.0444f, true,  {  420, 632, 60, 30 } },
        { "Low crossover ghost",   [] (MainUI& p) -> juce::Component* { return p.lowXOverGhost.get(); },   0.3333f, 0.9363f, 0.0444f, 0.0444f, true,  {  420, 632, 60, 30 } },
        { "High crossover digits", [] (MainUI& p) -> juce::Component* { return p.highXOverDigits.get(); }, 0.6659f, 0.9363f, 0.043f,  0.0444f, true,  {  870, 632, 58, 30 } },
        { "High crossover ghost",  [] (MainUI& p) -> juce::Component* { return p.highXOverGhost.get(); },  0.6659f, 0.9363f, 0.043f,  0.0444f, true,  {  870, 632, 58, 30 } },
    };
    return rows;
}

/** How a knob turns: step of the value, angles in radians, pixels of a full drag. */
struct Travel
{
    const char* name;
    double step;
    float start, end;
    int dragPixels;
};

constexpr int usualDragPixels = 250; // the framework's own

constexpr Travel ratio      { "Ratio",      0.25,     5.235988f, 7.330383f, 80 };
constexpr Travel attack     { "Attack",     0.3333,   5.497787f, 7.068583f, 60 };
constexpr Travel recovery   { "Recovery",   0.25,     5.235988f, 7.330383f, 80 };
constexpr Travel gain       { "Gain",       0.047619, 3.665192f, 8.639380f, usualDragPixels };
constexpr Travel threshold  { "Threshold",  0.06666,  4.188790f, 8.115781f, usualDragPixels };
constexpr Travel meterMode  { "Meter mode", 0.5,      5.235988f, 7.330383f, 50 };
constexpr Travel master     { "Master",     0.0,      4.450590f, 8.377581f, usualDragPixels };
constexpr Travel continuous { "Continuous", 0.0,     -2.618f,    2.618f,    usualDragPixels };
// clang-format on

struct Knob
{
    NVXSlider* knob;
    Travel travel;
    int parameter;
};

/** All 23. */
inline std::vector<Knob> knobsOf (MainUI& panel)
{
    std::vector<Knob> knobs;

    for (int i = 0; i < numBands; ++i)
    {
        auto& band = panel.bands[static_cast<std::size_t> (i)];
        const auto first = i * bandDistance;
        knobs.push_back ({ band.meterMode.get(), meterMode, first });
        knobs.push_back ({ band.gain.get(), gain, first + 4 });
        knobs.push_back ({ band.ratio.get(), ratio, first + 5 });
        knobs.push_back ({ band.threshold.get(), threshold, first + 6 });
        knobs.push_back ({ band.attack.get(), attack, first + 7 });
        knobs.push_back ({ band.recovery.get(), recovery, first + 8 });
    }

    knobs.push_back ({ panel.mix.get(), continuous, 27 });
    knobs.push_back ({ panel.highPass.get(), continuous, 28 });
    knobs.push_back ({ panel.master.get(), master, 29 });
    knobs.push_back ({ panel.lowXOver.get(), continuous, 30 });
    knobs.push_back ({ panel.highXOver.get(), continuous, 31 });
    return knobs;
}

/** The control of each parameter from 0 to 35. */
inline std::vector<juce::Component*> boundControls (MainUI& panel)
{
    std::vector<juce::Component*> controls (36, nullptr);

    for (const auto& row : bandControls())
        if (row.parameter >= 0)
            for (int i = 0; i < numBands; ++i)
                controls[static_cast<std::size_t> (row.parameter + i * bandDistance)] =
                    row.get (panel.bands[static_cast<std::size_t> (i)]);

    for (const auto& row : globalControls())
        if (row.parameter >= 0)
            controls[static_cast<std::size_t> (row.parameter)] = row.get (panel);

    return controls;
}
} // namespace ExpectedPanel
