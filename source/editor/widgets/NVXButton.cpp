// SPDX-License-Identifier: GPL-3.0-or-later
#include "editor/widgets/NVXButton.h"

#include "editor/widgets/AccessibleText.h"

#include <utility>

namespace
{
// The key within its picture. Rows of buttons stand closer than their pictures are high: outside of this, a click goes
// to what lies below, so that no button takes its neighbour's.
constexpr float keyLeft = 0.15f, keyRight = 0.82f, keyTop = 0.25f, keyBottom = 0.73f;
} // namespace

NVXButton::NVXButton (Assets::TwoStates images)
    : juce::Button (juce::String()), normalImage (std::move (images.off)), downImage (std::move (images.on))
{
    setClickingTogglesState (true);
}

bool NVXButton::hitTest (int x, int y)
{
    const auto fx = static_cast<float> (x) / static_cast<float> (getWidth());
    const auto fy = static_cast<float> (y) / static_cast<float> (getHeight());
    return keyLeft <= fx && fx <= keyRight && keyTop <= fy && fy <= keyBottom;
}

void NVXButton::paintButton (juce::Graphics& g, bool, bool isButtonDown)
{
    g.setColour (juce::Colours::black);
    g.drawImage (isButtonDown ? downImage : normalImage, getLocalBounds().toFloat());
}

void NVXButton::internalClickCallback (const juce::ModifierKeys& mods)
{
    if (mods.withoutMouseButtons().getRawFlags() == juce::ModifierKeys::altModifier && hasDefault)
    {
        setToggleState (defaultState, juce::sendNotificationSync);
        return;
    }

    if (! mods.isAnyModifierKeyDown())
        juce::Button::internalClickCallback (mods);
}

std::unique_ptr<juce::AccessibilityHandler> NVXButton::createAccessibilityHandler()
{
    return AccessibleText::handlerFor (
        *this, juce::AccessibilityRole::button, valueText,
        juce::AccessibilityActions().addAction (juce::AccessibilityActionType::press,
                                                [this] { internalClickCallback (juce::ModifierKeys()); }));
}
