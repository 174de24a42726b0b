// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "assets/Assets.h"

#include <juce_gui_basics/juce_gui_basics.h>

#include <functional>

/** A push button of two pictures. It shows itself pressed while the mouse holds it; what the control's value is, the
    lamp beside it tells.

    A plain click flips the toggle state and tells the listeners. Alt-click sets the toggle state to the default, and
    any other click with a modifier does nothing. The toggle state follows the clicks and not the control, so an
    Alt-click acts when the two states differ, wherever the control stands.

    Threads  message.
*/
class NVXButton : public juce::Button
{
public:
    explicit NVXButton (Assets::TwoStates images);

    bool hasDefault = false;
    bool defaultState = false; // of the toggle, for the Alt-click

    /** What a screen reader says of the control: its value, and whether it is on. */
    std::function<juce::String()> valueText;

    bool hitTest (int x, int y) override;
    void paintButton (juce::Graphics&, bool isMouseOver, bool isButtonDown) override;
    std::unique_ptr<juce::AccessibilityHandler> createAccessibilityHandler() override;

protected:
    void internalClickCallback (const juce::ModifierKeys&) override;

    juce::Image normalImage, downImage;

private:
    JUCE_DECLARE_NON_COPYABLE_WITH_LEAK_DETECTOR (NVXButton)
};
