// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "processor/CorvaneQ7AudioProcessor.h"

#include <functional>
#include <memory>
#include <vector>

class CorvaneQ7Editor;

/** Pictures of the editor in the states that are worth a look, painted without a window.

    A view is made the same each time: its processor is new, its meters stand where it sets them, and no timer runs while
    it is painted. What is left to the machine are the system's fonts and the user's options: useKnownFonts settles the
    first, a home folder of its own the second.

    Threads  message.
*/
namespace EditorViews
{
struct View
{
    juce::String name; // of the file, without an ending
    float zoom;
    int channels;
    std::function<void (CorvaneQ7AudioProcessor&)> prepare;
    std::function<void (CorvaneQ7Editor&)> arrange;
    bool needsScreen = false; // the framework places menus on a display: without one they cannot be shown
    float pixelScale = 1.0f;  // pixels for each of the editor's; 2 on a HiDPI screen
    bool isReference = false; // of the pictures that are kept and compared
};

std::vector<View> all();

struct Picture
{
    juce::Image image;
    std::vector<juce::Rectangle<int>> systemText; // in px of the image: what is written in the system's fonts
};

/** Paints a view; pixelScale multiplies its own. */
Picture take (const View&, float pixelScale = 1.0f);
inline juce::Image paint (const View& view, float pixelScale = 1.0f) { return take (view, pixelScale).image; }

/** Makes the framework see one font family alone, Liberation Sans (package fonts-liberation), for machines to write the
    same. Before the first text of the process; false where that family is not installed, and all fonts then count. */
bool useKnownFonts();

bool writePng (const juce::Image&, const juce::File&);
} // namespace EditorViews
