// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <juce_graphics/juce_graphics.h>

/** Pictures and the digits' face, from the program's own data; nothing is read from disk.

    Every picture holds twice the pixels that it covers at 100 %. Decoded pictures are shared by all editors of a
    process. README.md beside this file lists each one's size and role.

    Threads  message.
*/
namespace Assets
{
/** Layers of a knob, from the panel upwards; the rotor alone turns. */
struct KnobImages
{
    juce::Image background, rotor, top;
};

KnobImages bigKnob();
KnobImages midKnob();
KnobImages smallKnob();

/** A button or lamp at rest, and pressed or lit. */
struct TwoStates
{
    juce::Image off, on;
};

TwoStates linkButton();
TwoStates niveauButton();
TwoStates nukeButton();
TwoStates midSideButton();
TwoStates soloButton();
TwoStates bandInButton();
TwoStates bypassSwitch();
TwoStates greenLamp();
TwoStates redLamp();
TwoStates yellowLamp();
TwoStates barLogo();
TwoStates barMenu();

/** A key of the toolbar: at rest, under the mouse, and pressed or chosen. */
struct KeyImages
{
    juce::Image normal, over, down;
};

KeyImages settingsKey();
KeyImages slotAKey();
KeyImages slotBKey();
KeyImages copyAToBKey();
KeyImages copyBToAKey();

juce::Image front();
juce::Image meterScale();
juce::Image meterGlass();
juce::Image aboutBackground();
juce::Image aboutBrand();
juce::Image aboutDistributor();

/** The face of the crossovers' digits. */
juce::Typeface::Ptr segment7();
} // namespace Assets
