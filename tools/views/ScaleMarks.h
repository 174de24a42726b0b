// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "editor/MainUILayout.h"

#include <vector>

class CorvaneQ7AudioProcessor;

/** The printed scales of the console front, computed from what the controls do.

    A mark is given by a text that the control itself understands ("-12dB", "auto", "2mS"). Its angle comes from the
    control's own conversion and from the knob's travel, so a mark cannot disagree with where the pointer stops. The
    artwork script reads the result as JSON (tools/artwork/front.json) and draws it; tests hold knobs, file and bitmap
    against it.

    Threads  message.
*/
namespace ScaleMarks
{
struct Mark
{
    double normalised;  // 0 to 1
    double degrees;     // clockwise from straight up, -180 to 180
    juce::String label; // empty for a plain tick
};

/** A knob of the front with its scale. */
struct Knob
{
    int parameter;    // index
    const char* kind; // class of the knob
    MainUILayout::Place place;
    MainUILayout::KnobTravel travel;
    const char* legend; // what the panel prints as the control's name
    std::vector<Mark> marks;
};

/** A mark of the meters: y in px at 100 %, from the top. */
struct MeterMark
{
    double decibels, y;
    juce::String label;
};

/** All 23 knobs: the bands' six each, then high-pass, mix, master and the two crossovers. */
std::vector<Knob> knobsOf (CorvaneQ7AudioProcessor& processor);

std::vector<MeterMark> levelMarks();
std::vector<MeterMark> gainReductionMarks();

/** Everything that the artwork needs, as JSON text. */
juce::String toJson (CorvaneQ7AudioProcessor& processor);
} // namespace ScaleMarks
