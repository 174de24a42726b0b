// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <juce_gui_basics/juce_gui_basics.h>

#include <algorithm>

/** A hand on the mouse over a window on the screen. Events go the way of real ones, from the window's peer; the screen's
    pointer goes along, for menus ask where it is. Message thread. */
class Hand
{
public:
    explicit Hand (juce::Component& windowToUse) : window (&windowToUse) {}

    void moveTo (juce::Point<int> place)
    {
        at = place;
        juce::Desktop::setMousePosition (window->localPointToGlobal (place));
        send();
    }

    void press (int button = juce::ModifierKeys::leftButtonModifier, int keys = 0)
    {
        held = juce::ModifierKeys (button | keys);
        send();
    }

    void release()
    {
        held = held.withoutMouseButtons();
        send();
        held = {};
    }

    void click (juce::Point<int> place, int keys = 0)
    {
        moveTo (place);
        press (juce::ModifierKeys::leftButtonModifier, keys);
        release();
    }

    void wheel (float amount, bool isTrackpad)
    {
        if (auto* peer = window->getPeer())
            peer->handleMouseWheel (juce::MouseInputSource::InputSourceType::mouse, at.toFloat(), nextTime(),
                                    { 0.0f, amount, false, isTrackpad, false });
    }

    bool isHolding() const noexcept { return held.isAnyMouseButtonDown(); }

private:
    void send()
    {
        juce::ModifierKeys::currentModifiers = held;

        if (auto* peer = window->getPeer())
            peer->handleMouseEvent (juce::MouseInputSource::InputSourceType::mouse, at.toFloat(), held, 0.0f, 0.0f,
                                    nextTime());
    }

    /** Each event its own: the framework drops a wheel move of the same time as the last. */
    static juce::int64 nextTime()
    {
        static juce::int64 last = 0;
        return last = std::max (last + 1, juce::Time::currentTimeMillis());
    }

    juce::Component::SafePointer<juce::Component> window;
    juce::Point<int> at;
    juce::ModifierKeys held;
};
