// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <juce_gui_basics/juce_gui_basics.h>

namespace juce
{
bool dispatchNextMessageOnSystemQueue (bool returnIfNoPendingMessages); // of the framework on Linux, in no header
}

/** Mouse events made by hand, for components that stand on no screen. Each has a time stamp of its own: the framework
    drops a wheel move whose time it has seen. */
namespace Mouse
{
constexpr int left = juce::ModifierKeys::leftButtonModifier;
constexpr int shift = juce::ModifierKeys::shiftModifier, ctrl = juce::ModifierKeys::ctrlModifier;
constexpr int alt = juce::ModifierKeys::altModifier, command = juce::ModifierKeys::commandModifier;

inline juce::MouseEvent event (juce::Component& component, juce::Point<float> at, int flags,
                               juce::Point<float> pressedAt, int clicks = 1, bool wasDragged = false)
{
    using Source = juce::MouseInputSource;
    static juce::int64 milliseconds = 0;
    const juce::Time now (milliseconds += 10);

    return { juce::Desktop::getInstance().getMainMouseSource(),
             at,
             juce::ModifierKeys (flags),
             Source::defaultPressure,
             Source::defaultOrientation,
             Source::defaultRotation,
             Source::defaultTiltX,
             Source::defaultTiltY,
             &component,
             &component,
             now,
             pressedAt,
             now,
             clicks,
             wasDragged };
}

inline juce::MouseEvent eventInMiddle (juce::Component& component, int flags)
{
    const auto middle = component.getLocalBounds().toFloat().getCentre();
    return event (component, middle, flags, middle);
}

inline void press (juce::Component& component, int flags = left)
{
    component.mouseDown (eventInMiddle (component, flags));
}

inline void release (juce::Component& component, int flags = left)
{
    component.mouseUp (eventInMiddle (component, flags));
}

/** Press and release in the middle; flags are those of the keyboard. */
inline void click (juce::Component& component, int flags = 0)
{
    press (component, flags | left);
    release (component, flags | left);
}

/** Moves the held mouse so many pixels up from the middle. */
inline void dragUp (juce::Component& component, float pixels)
{
    const auto middle = component.getLocalBounds().toFloat().getCentre();
    component.mouseDrag (event (component, middle.translated (0.0f, -pixels), left, middle, 1, true));
}

inline void doubleClick (juce::Component& component)
{
    const auto middle = component.getLocalBounds().toFloat().getCentre();
    component.mouseDoubleClick (event (component, middle, left, middle, 2));
}

struct Wheel
{
    float deltaY = 0.0f;
    bool isSmooth = false, isReversed = false;
    float deltaX = 0.0f;
};

inline void wheel (juce::Component& component, const Wheel& move, int flags = 0)
{
    juce::MouseWheelDetails details;
    details.deltaX = move.deltaX;
    details.deltaY = move.deltaY;
    details.isSmooth = move.isSmooth;
    details.isReversed = move.isReversed;
    details.isInertial = false;
    component.mouseWheelMove (eventInMiddle (component, flags), details);
}

/** Everything that waits in the message queue. */
inline void dispatchMessages()
{
    while (juce::dispatchNextMessageOnSystemQueue (true)) {}
}

inline void dispatchMessagesFor (int milliseconds)
{
    const auto end = juce::Time::getMillisecondCounter() + static_cast<juce::uint32> (milliseconds);

    while (juce::Time::getMillisecondCounter() < end)
    {
        dispatchMessages();
        juce::Thread::sleep (2);
    }
}
} // namespace Mouse
