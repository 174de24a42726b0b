// SPDX-License-Identifier: GPL-3.0-or-later
#include "editor/widgets/NVXLNF.h"

#include <algorithm>

namespace
{
const juce::Colour sheet { 0xfffcfcfc };
const juce::Colour highlight { 0xff626c77 };
constexpr float cornerSize = 5.0f;
constexpr float shading = 0.4f; // how much lighter and darker the highlight's edges are

void shadeHighlight (juce::Graphics& g, juce::Rectangle<int> row, juce::Colour colour)
{
    if (row.getHeight() <= 0 || row.getWidth() <= 0)
        return;

    const auto inner = row.toFloat();
    g.setGradientFill (
        juce::ColourGradient (colour.brighter (shading), 0.0f, inner.getY(), colour, 0.0f, inner.getBottom(), false));
    g.fillRect (row);

    g.setColour (colour.darker (shading).withMultipliedAlpha (0.5f));
    g.fillRect (row.withHeight (1));
    g.fillRect (row.withTop (row.getBottom() - 1));
}

/** Where icon or tick lies: a square-like field at the row's left, with a margin of 3 px inside the row's own. */
juce::Rectangle<float> iconArea (const juce::Rectangle<int>& area)
{
    const auto inner = area.reduced (1);
    const auto width = std::min (inner.getWidth(), inner.getHeight() * 5 / 4) - 6;
    const auto height = inner.getHeight() - 6;
    return { static_cast<float> (area.getX() + 4), static_cast<float> (area.getY() + 4),
             static_cast<float> (width < 1 ? 0 : width), static_cast<float> (height < 1 ? 0 : height) };
}

/** A row without a separator: shading of the highlight, tick or icon, text, arrow of a submenu. */
void drawRow (juce::Graphics& g, juce::LookAndFeel& look, const juce::Rectangle<int>& area, bool isActive,
              bool isHighlighted, bool isTicked, bool hasSubMenu, const juce::String& text,
              const juce::String& shortcutKeyText, const juce::Drawable* icon, const juce::Colour* textColour)
{
    auto row = area.reduced (1);

    if (isHighlighted && isActive)
        shadeHighlight (g, row, look.findColour (juce::PopupMenu::highlightedBackgroundColourId));

    const auto plainColour = textColour != nullptr ? *textColour : look.findColour (juce::PopupMenu::textColourId);
    g.setColour (isHighlighted ? look.findColour (juce::PopupMenu::highlightedTextColourId) : plainColour);

    if (! isActive)
        g.setOpacity (0.3f);

    auto font = look.getPopupMenuFont();
    font.setHeight (std::max (0.1f, std::min (font.getHeight(), static_cast<float> (area.getHeight()) / 1.3f)));
    g.setFont (font);

    const auto mark = iconArea (area);
    row.removeFromLeft (row.getHeight() * 5 / 4);

    if (icon != nullptr)
    {
        icon->drawWithin (g, mark, juce::RectanglePlacement::centred | juce::RectanglePlacement::onlyReduceInSize,
                          1.0f);
    }
    else if (isTicked && ! mark.isEmpty())
    {
        const auto tick = look.getTickShape (1.0f);
        g.fillPath (tick, tick.getTransformToScaleToFit (mark, true));
    }

    if (hasSubMenu)
    {
        const auto arrowHeight = 0.6f * font.getHeight();
        const auto arrowWidth = 0.6f * arrowHeight;
        const auto left = static_cast<float> (row.removeFromRight (static_cast<int> (arrowHeight)).getX());
        const auto middle = static_cast<float> (area.getY()) + static_cast<float> (area.getHeight()) * 0.5f;

        juce::Path arrow;
        arrow.addTriangle (left, middle - arrowHeight * 0.5f, left, middle + arrowHeight * 0.5f, left + arrowWidth,
                           middle);
        g.fillPath (arrow);
    }

    row.removeFromRight (3);
    g.drawFittedText (text, row, juce::Justification::centredLeft, 1);

    if (shortcutKeyText.isNotEmpty())
    {
        g.setFont (font.withHeight (font.getHeight() * 0.75f).withHorizontalScale (0.95f));
        g.drawText (shortcutKeyText, row, juce::Justification::centredRight, true);
    }
}
} // namespace

PopupLook::PopupLook()
{
    setColour (juce::PopupMenu::backgroundColourId, juce::Colour());
    setColour (juce::PopupMenu::highlightedBackgroundColourId, highlight);
}

void PopupLook::drawPopupMenuBackground (juce::Graphics& g, int width, int height)
{
    g.setColour (sheet);
    g.fillRoundedRectangle (0.0f, 0.0f, static_cast<float> (width), static_cast<float> (height), cornerSize);
}

void PopupLook::drawPopupMenuItem (juce::Graphics& g, const juce::Rectangle<int>& area, bool isSeparator, bool isActive,
                                   bool isHighlighted, bool isTicked, bool hasSubMenu, const juce::String& text,
                                   const juce::String& shortcutKeyText, const juce::Drawable* icon,
                                   const juce::Colour* textColour)
{
    if (isSeparator)
        LookAndFeel_V3::drawPopupMenuItem (g, area, true, isActive, isHighlighted, isTicked, hasSubMenu, text,
                                           shortcutKeyText, icon, textColour);
    else
        drawRow (g, *this, area, isActive, isHighlighted, isTicked, hasSubMenu, text, shortcutKeyText, icon,
                 textColour);
}

void PopupLook::preparePopupMenuWindow (juce::Component& menu) { menu.setOpaque (false); }

void PopupLook::releaseMenusIn (juce::Component* parent)
{
    if (parent == nullptr)
        return;

    for (auto* child : parent->getChildren())
        if (&child->getLookAndFeel() == this && child->getName() == "menu")
            child->setLookAndFeel (nullptr);
}

void NVXLNF::drawButtonBackground (juce::Graphics& g, juce::Button& button, const juce::Colour& backgroundColour,
                                   bool isOver, bool isDown)
{
    const auto area = button.getLocalBounds();

    if (area.isEmpty())
        return;

    const auto fill = isDown ? 0.5f : isOver ? 0.8f : 0.0f;
    g.setColour (backgroundColour.withMultipliedAlpha (fill));
    g.fillRect (area);

    auto isModal = false;

    for (const juce::Component* parent = &button; parent != nullptr; parent = parent->getParentComponent())
        isModal = isModal || parent->isCurrentlyModal (false);

    const auto outline = button.hasKeyboardFocus (true) ? 0.6f : isModal ? 0.1f : 0.5f;
    g.setColour (juce::Colours::white.withAlpha (outline));
    g.drawRect (area, 1);
}

void NVXLNF::drawComboBox (juce::Graphics& g, int width, int height, bool isButtonDown, int buttonX, int buttonY,
                           int buttonW, int buttonH, juce::ComboBox& box)
{
    const juce::Rectangle<int> area (0, 0, width, height);

    if (area.isEmpty())
        return;

    g.fillAll (box.findColour (juce::ComboBox::backgroundColourId));
    g.setColour (juce::Colours::white.withAlpha (isButtonDown ? 0.6f : 0.5f));
    g.drawRect (area, 1);

    const auto field = juce::Rectangle<int> (buttonX, buttonY, buttonW, buttonH).toFloat();
    const auto arrow = field.withSizeKeepingCentre (field.getHeight() * 0.4f, field.getHeight() * 0.24f);
    juce::Path triangle;
    triangle.addTriangle (arrow.getTopLeft(), arrow.getTopRight(), { arrow.getCentreX(), arrow.getBottom() });
    g.setColour (box.findColour (juce::ComboBox::arrowColourId));
    g.fillPath (triangle);
}

juce::Font NVXLNF::getComboBoxFont (juce::ComboBox& box)
{
    const auto height = std::min (10.0f, static_cast<float> (box.getHeight()) * 0.85f);
    return { juce::jlimit (0.1f, 10000.0f, height) };
}
