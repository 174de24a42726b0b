// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "processor/CorvaneQ7AudioProcessor.h"

#include <functional>
#include <memory>
#include <vector>

class CorvaneQ7Editor;

/** Pictures of the editor in the states that are worth a look, painted without a screen.

    A view is made twice the same on a machine with the same fonts: its processor is new, its meters stand where it sets
    them, and no timer runs while it is painted.

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
};

std::vector<View> all();

/** Paints a view; pixelScale is the number of pixels for each of the editor's, 2 on a HiDPI screen. */
juce::Image paint (const View&, float pixelScale = 1.0f);
} // namespace EditorViews
