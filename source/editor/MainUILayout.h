// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "parameters/ParameterTable.h"

#include <juce_gui_basics/juce_gui_basics.h>

#include <array>

/** Where everything on the console front stands, and how its knobs turn: the one place for both.

    Places are fractions of the panel's size, so that a zoom is a new layout. The artwork's legends and scale marks are
    computed from the same figures (tools/views/ScaleMarks.h), so whoever moves a control makes the artwork anew.
*/
namespace MainUILayout
{
constexpr int baseWidth = 1350, baseHeight = 675; // px at 100 %
constexpr int numBands = ParameterTable::numBands;

/** A rectangle in fractions of the panel. */
struct Place
{
    float x, y, w, h;

    /** In whole pixels of a panel of that size. */
    juce::Rectangle<int> in (int width, int height) const noexcept
    {
        const auto panelWidth = static_cast<float> (width), panelHeight = static_cast<float> (height);
        return { juce::roundToInt (panelWidth * x), juce::roundToInt (panelHeight * y),
                 juce::roundToInt (panelWidth * w), juce::roundToInt (panelHeight * h) };
    }

    /** The same where x is the middle: readouts and digits stay centred on their knob. */
    juce::Rectangle<int> centredIn (int width, int height) const noexcept
    {
        const auto fromLeft = in (width, height);
        return fromLeft.withX (fromLeft.getX() - fromLeft.getWidth() / 2);
    }
};

/** A control that each band has, at its own x. */
struct BandPlace
{
    std::array<float, numBands> x;
    float y, w, h;

    constexpr Place of (int band) const noexcept { return { x[static_cast<size_t> (band)], y, w, h }; }
};

// clang-format off
//                                        Low      Mid      High       y        w        h
constexpr BandPlace threshold      { { 0.24f,   0.5733f, 0.9067f }, 0.3615f, 0.0533f, 0.1067f };
constexpr BandPlace gain           { { 0.1067f, 0.44f,   0.7733f }, 0.3615f, 0.0533f, 0.1067f };
constexpr BandPlace ratio          { { 0.2222f, 0.5556f, 0.8889f }, 0.1289f, 0.0889f, 0.1778f };
constexpr BandPlace attack         { { 0.0889f, 0.4222f, 0.7556f }, 0.5304f, 0.0889f, 0.1778f };
constexpr BandPlace recovery       { { 0.2222f, 0.5556f, 0.8889f }, 0.5304f, 0.0889f, 0.1778f };
constexpr BandPlace meterMode      { { 0.0148f, 0.3481f, 0.6815f }, 0.5793f, 0.04f,   0.08f   };
constexpr BandPlace inButton       { { 0.1148f, 0.4474f, 0.7807f }, 0.1111f, 0.063f,  0.08f   };
constexpr BandPlace soloButton     { { 0.1148f, 0.4474f, 0.7807f }, 0.1718f, 0.063f,  0.08f   };
constexpr BandPlace midSideButton  { { 0.1148f, 0.4474f, 0.7807f }, 0.2326f, 0.063f,  0.08f   };
constexpr BandPlace inLamp         { { 0.1007f, 0.4341f, 0.7674f }, 0.1304f, 0.0185f, 0.037f  };
constexpr BandPlace soloLamp       { { 0.1007f, 0.4341f, 0.7674f }, 0.1911f, 0.0185f, 0.037f  };
constexpr BandPlace midLamp        { { 0.1007f, 0.4341f, 0.7667f }, 0.2518f, 0.0185f, 0.037f  }; // High off the grid, as meant
constexpr BandPlace sideLamp       { { 0.1718f, 0.5052f, 0.8378f }, 0.2533f, 0.0185f, 0.037f  };
constexpr BandPlace midLabel       { { 0.0881f, 0.4237f, 0.7563f }, 0.2548f, 0.0185f, 0.0356f };
constexpr BandPlace sideLabel      { { 0.1822f, 0.5163f, 0.8482f }, 0.2548f, 0.0185f, 0.0356f };
constexpr BandPlace meter          { { 0.0141f, 0.3474f, 0.6807f }, 0.1037f, 0.043f,  0.3733f };
constexpr float lowMidLabelWidth = 0.0222f; // the Low band's "M" alone has a wider field

//                                  x        y        w        h
constexpr Place highPass        { 0.1985f, 0.8356f, 0.0533f, 0.1067f };
constexpr Place mix             { 0.4119f, 0.8356f, 0.0533f, 0.1067f };
constexpr Place master          { 0.5356f, 0.8356f, 0.0533f, 0.1067f };
constexpr Place lowXOver        { 0.3133f, 0.837f,  0.04f,   0.08f   };
constexpr Place highXOver       { 0.6467f, 0.837f,  0.04f,   0.08f   };
constexpr Place bypassSwitch    { 0.9215f, 0.843f,  0.0518f, 0.117f  };
constexpr Place bypassLamp      { 0.9222f, 0.9333f, 0.0185f, 0.037f  };
constexpr Place nukeButton      { 0.757f,  0.8f,    0.063f,  0.08f   };
constexpr Place niveauButton    { 0.757f,  0.8533f, 0.063f,  0.08f   };
constexpr Place linkButton      { 0.757f,  0.9067f, 0.063f,  0.08f   };
constexpr Place nukeLamp        { 0.7422f, 0.8222f, 0.0185f, 0.037f  };
constexpr Place niveauLamp      { 0.7422f, 0.8756f, 0.0185f, 0.037f  };
constexpr Place linkLamp        { 0.7422f, 0.9289f, 0.0185f, 0.037f  };

// Of these, x is the middle.
constexpr Place masterReadout   { 0.5622f, 0.7822f, 0.037f,  0.0356f };
constexpr Place mixReadout      { 0.4393f, 0.7822f, 0.037f,  0.0356f };
constexpr Place highPassReadout { 0.2252f, 0.7822f, 0.037f,  0.0356f };
constexpr Place lowXOverDigits  { 0.3333f, 0.9363f, 0.0444f, 0.0444f };
constexpr Place highXOverDigits { 0.6659f, 0.9363f, 0.043f,  0.0444f };

constexpr float digitHeight = 0.044444446f; // of the panel's height
constexpr float textHeight = 0.01925926f;

/** How a knob turns. Angles in radians, clockwise from straight up. */
struct KnobTravel
{
    double step;      // of the value, 0 to 1; 0 is continuous
    float start, end; // angles at value 0 and 1
    int dragPixels;   // for the whole way; 0 leaves the framework's default
};

constexpr KnobTravel ratioTravel      { 0.25,     5.235988f, 7.330383f, 80 };
constexpr KnobTravel attackTravel     { 0.3333,   5.497787f, 7.068583f, 60 };
constexpr KnobTravel recoveryTravel   { 0.25,     5.235988f, 7.330383f, 80 };
constexpr KnobTravel gainTravel       { 0.047619, 3.665192f, 8.639380f, 0 };
constexpr KnobTravel thresholdTravel  { 0.06666,  4.188790f, 8.115781f, 0 };
constexpr KnobTravel meterModeTravel  { 0.5,      5.235988f, 7.330383f, 50 };
constexpr KnobTravel masterTravel     { 0.0,      4.450590f, 8.377581f, 0 };
constexpr KnobTravel continuousTravel { 0.0,     -2.618f,    2.618f,    0 };
// clang-format on

/** The "M" label's place, with the Low band's wider field. */
constexpr Place midLabelOf (int band) noexcept
{
    auto place = midLabel.of (band);

    if (band == 0)
        place.w = lowMidLabelWidth;

    return place;
}

/** Needle height of a meter: share of its height from the top, for a position of 0 (bottom) to 1 (top). */
constexpr float needleShare (float position) noexcept { return 0.95f - 0.9f * position; }
} // namespace MainUILayout
