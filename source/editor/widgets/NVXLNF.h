// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <juce_gui_basics/juce_gui_basics.h>

/** How popup menus look, the same for every panel. Message thread. */
namespace PopupStyle
{
const juce::Colour highlight { 0xff626c77 };

/** Gives a look the menu's colours: see-through corners, and the highlight. */
void setColours (juce::LookAndFeel&);

/** A light sheet with rounded corners. */
void drawBackground (juce::Graphics&, int width, int height);

/** A row without a separator: shading of the highlight, tick or icon, text, arrow of a submenu. */
void drawRow (juce::Graphics&, juce::LookAndFeel&, const juce::Rectangle<int>& area, bool isActive, bool isHighlighted,
              bool isTicked, bool hasSubMenu, const juce::String& text, const juce::String& shortcutKeyText,
              const juce::Drawable* icon, const juce::Colour* textColour);
} // namespace PopupStyle

/** The look of the panels: nearly everything there is a picture, so what is left are the menus. The drawing of text
    buttons and combo boxes is there for panels to come; none has one now. */
class NVXLNF : public juce::LookAndFeel_V3
{
public:
    NVXLNF();

    void drawButtonBackground (juce::Graphics&, juce::Button&, const juce::Colour& backgroundColour, bool isOver,
                               bool isDown) override;
    void drawPopupMenuBackground (juce::Graphics&, int width, int height) override;
    void drawPopupMenuItem (juce::Graphics&, const juce::Rectangle<int>& area, bool isSeparator, bool isActive,
                            bool isHighlighted, bool isTicked, bool hasSubMenu, const juce::String& text,
                            const juce::String& shortcutKeyText, const juce::Drawable* icon,
                            const juce::Colour* textColour) override;
    void drawComboBox (juce::Graphics&, int width, int height, bool isButtonDown, int buttonX, int buttonY, int buttonW,
                       int buttonH, juce::ComboBox&) override;
    juce::Font getComboBoxFont (juce::ComboBox&) override;
};
