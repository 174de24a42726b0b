// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "assets/Assets.h"
#include "editor/MainUILayout.h"

#include <juce_gui_basics/juce_gui_basics.h>

/** A knob of three pictures: what lies on the panel, the rotor, and light and shade above it. The rotor alone turns,
    so light and shadow stay.

    Dragging, double-click and snapping are the framework's. The wheel is refined: a trackpad's small moves add up to
    whole steps on a stepped knob, and Ctrl alone makes the wheel ten times finer on one without steps.

    Value    0 to 1, normalised.
    Angles   radians, clockwise from straight up.
    Threads  message.
*/
class NVXSlider : public juce::Slider, public juce::Timer
{
public:
    explicit NVXSlider (Assets::KnobImages images);

    /** Sets step, angles and drag way at once, in the slider and in the copy used for painting. */
    void setTravel (const MainUILayout::KnobTravel& travel);

    /** The rotor's angle at the present value. */
    float rotorAngle() const noexcept;

    /** Shows a value with no notification, unless a step of the user's own is still on its way to the listeners: what
        is shown then would be sent in its stead. */
    void showValue (double value);

    /** True while a wheel move changes the value. The framework wraps it in a drag, but hosts shall see no gesture. */
    bool isWheelMoving() const noexcept { return wheelMoving; }

    float wheelAccumulator = 0.0f; // steps not yet made, from a trackpad
    juce::Image background, rotor, top;
    float rotaryStart = -2.618f, rotaryEnd = 2.618f;

    void paint (juce::Graphics&) override;
    void mouseWheelMove (const juce::MouseEvent&, const juce::MouseWheelDetails&) override;
    void timerCallback() override;

private:
    bool wheelMoving = false;
    bool stepPending = false;

    JUCE_DECLARE_NON_COPYABLE_WITH_LEAK_DETECTOR (NVXSlider)
};
