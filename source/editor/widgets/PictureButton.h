// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "assets/Assets.h"
#include "editor/widgets/AccessibleText.h"

#include <juce_gui_basics/juce_gui_basics.h>

/** A lamp or key of two or three pictures: the last one shows it lit, chosen or pressed. Message thread. */
class PictureButton : public juce::ImageButton
{
public:
    explicit PictureButton (const Assets::TwoStates& images) { setPictures (images.off, {}, images.on); }
    explicit PictureButton (const Assets::KeyImages& images) { setPictures (images.normal, images.over, images.down); }

    /** True for a lamp or key that stays lit: screen readers then say "On" or "Off" with its title. */
    bool tellsState = false;

    std::unique_ptr<juce::AccessibilityHandler> createAccessibilityHandler() override
    {
        // A click as such, whatever keys the reader's user holds for it.
        const auto press = juce::AccessibilityActions().addAction (juce::AccessibilityActionType::press, [this]
                                                                   { internalClickCallback (juce::ModifierKeys()); });
        const auto state = [this] { return juce::String (! tellsState ? "" : getToggleState() ? "On" : "Off"); };
        return AccessibleText::handlerFor (*this, juce::AccessibilityRole::button, state, press);
    }

private:
    void setPictures (const juce::Image& normal, const juce::Image& over, const juce::Image& down)
    {
        constexpr auto opaque = 1.0f; // the framework paints nothing at an opacity of 0
        const auto noTint = juce::Colours::transparentBlack;
        setImages (false, true, true, normal, opaque, noTint, over, opaque, noTint, down, opaque, noTint);
    }

    JUCE_DECLARE_NON_COPYABLE_WITH_LEAK_DETECTOR (PictureButton)
};
