// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <juce_gui_basics/juce_gui_basics.h>

/** How popup menus look, the same for every panel: a light sheet with see-through rounded corners, rows whose highlight
    is shaded. Message thread. */
class PopupLook : public juce::LookAndFeel_V3
{
public:
    PopupLook();

    void drawPopupMenuBackground (juce::Graphics&, int width, int height) override;
    void drawPopupMenuItem (juce::Graphics&, const juce::Rectangle<int>& area, bool isSeparator, bool isActive,
                            bool isHighlighted, bool isTicked, bool hasSubMenu, const juce::String& text,
                            const juce::String& shortcutKeyText, const juce::Drawable* icon,
                            const juce::Colour* textColour) override;

    /** A menu inside the editor needs no compositing screen to be see-through, and no frame. */
    void preparePopupMenuWindow (juce::Component& menu) override;
    void drawResizableFrame (juce::Graphics&, int, int, const juce::BorderSize<int>&) override {}

    /** Takes this look from the menus that are open within a component, before the look goes. */
    void releaseMenusIn (juce::Component* parent);
};

/** The look of the panels: nearly everything there is a picture, so what is left are the menus. The drawing of text
    buttons and combo boxes is there for panels to come; none has one now. */
class NVXLNF : public PopupLook
{
public:
    void drawButtonBackground (juce::Graphics&, juce::Button&, const juce::Colour& backgroundColour, bool isOver,
                               bool isDown) override;
    void drawComboBox (juce::Graphics&, int width, int height, bool isButtonDown, int buttonX, int buttonY, int buttonW,
                       int buttonH, juce::ComboBox&) override;
    juce::Font getComboBoxFont (juce::ComboBox&) override;
};
