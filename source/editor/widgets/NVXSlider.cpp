// SPDX-License-Identifier: GPL-3.0-or-later
#include "editor/widgets/NVXSlider.h"

#include <cmath>
#include <utility>

namespace
{
constexpr int wheelMemoryMs = 500;    // a pause this long forgets the begun step
constexpr float fineWheel = 0.1f;     // Ctrl alone
constexpr float trackpadShare = 0.1f; // of the drag way, for one unit of wheel
} // namespace

NVXSlider::NVXSlider (Assets::KnobImages images)
    : juce::Slider (RotaryVerticalDrag, NoTextBox), background (std::move (images.background)),
      rotor (std::move (images.rotor)), top (std::move (images.top))
{
    setRange (0.0, 1.0, 0.0);
    onValueChange = [this] { stepPending = false; }; // called after the listeners
}

void NVXSlider::setTravel (const MainUILayout::KnobTravel& travel)
{
    setRange (0.0, 1.0, travel.step);
    rotaryStart = travel.start;
    rotaryEnd = travel.end;

    // The framework wants its copy of the angles above 0. It does not read it in this style; ours is what is painted.
    constexpr auto turn = juce::MathConstants<float>::twoPi;
    const auto lift = travel.start < 0.0f ? turn : 0.0f;
    setRotaryParameters (travel.start + lift, travel.end + lift, true);

    if (travel.dragPixels > 0)
        setMouseDragSensitivity (travel.dragPixels);
}

float NVXSlider::rotorAngle() const noexcept
{
    const auto proportion = (getValue() - getMinimum()) / (getMaximum() - getMinimum());
    return rotaryStart + (rotaryEnd - rotaryStart) * static_cast<float> (proportion);
}

void NVXSlider::paint (juce::Graphics& g)
{
    const auto area = getLocalBounds().toFloat();
    g.setColour (juce::Colours::black);
    g.drawImage (background, area);

    {
        const juce::Graphics::ScopedSaveState unturned (g);
        g.addTransform (
            juce::AffineTransform::rotation (rotorAngle(), area.getWidth() * 0.5f, area.getHeight() * 0.5f));
        g.drawImage (rotor, area);
    }

    g.setColour (juce::Colours::black);
    g.drawImage (top, area);
}

void NVXSlider::mouseWheelMove (const juce::MouseEvent& event, const juce::MouseWheelDetails& wheel)
{
    const auto isContinuous = getInterval() <= 0.0;

    if (isContinuous || ! wheel.isSmooth)
    {
        auto scaled = wheel;

        if (event.mods.getRawFlags() == juce::ModifierKeys::ctrlModifier)
        {
            scaled.deltaX *= fineWheel;
            scaled.deltaY *= fineWheel;
        }

        const juce::ScopedValueSetter<bool> moving (wheelMoving, true);
        juce::Slider::mouseWheelMove (event, scaled);
        return;
    }

    const auto direction = wheel.isReversed ? -1.0f : 1.0f;
    wheelAccumulator += static_cast<float> (getMouseDragSensitivity()) * wheel.deltaY * direction * trackpadShare;

    // Half a step and more is one; the sign is kept.
    const auto steps = std::round (wheelAccumulator);

    if (steps != 0.0f)
    {
        wheelAccumulator -= steps;
        const auto moved = getValue() + static_cast<double> (steps) * getInterval();
        const auto before = getValue();
        setValue (juce::jlimit (getMinimum(), getMaximum(), moved), juce::sendNotificationAsync);
        stepPending = stepPending || getValue() != before;
    }

    startTimer (wheelMemoryMs);
}

void NVXSlider::showValue (double value)
{
    if (! stepPending)
        setValue (value, juce::dontSendNotification);
}

void NVXSlider::timerCallback()
{
    stopTimer();
    wheelAccumulator = 0.0f;
}
