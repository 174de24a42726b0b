// SPDX-License-Identifier: GPL-3.0-or-later
#include "editor/About.h"

#include "assets/Assets.h"
#include "editor/ProductLinks.h"

namespace
{
const juce::Colour strongText { 0xffffffff }, quietText { 0xaaffffff }, linkText { 0xccffffff };
const juce::Colour boxColour { 0xff454545 };
constexpr float cornerSize = 20.0f, textHeight = 15.0f;
} // namespace

About::About()
    : link (ProductLinks::brandHome, juce::URL (ProductLinks::brandHome)), background (Assets::aboutBackground()),
      brandMark (Assets::aboutBrand()), distributorMark (Assets::aboutDistributor())
{
    const juce::Font plain (textHeight, juce::Font::plain), bold (textHeight, juce::Font::bold);
    const auto left = juce::Justification::centredLeft, top = juce::Justification::topLeft;

    // The unit's own earlier name; whoever makes the box sets the present one.
    addText (title, "Corvane R40 v. 1.0.0", plain, left, quietText);
    addText (firstName, ProductLinks::programmer, bold, left, strongText);
    addText (firstRoles, "Programming\nGraphics\nCircuit modeling", plain, top, quietText);
    addText (secondName, ProductLinks::conceptAuthor, bold, left, strongText);
    addText (secondRoles, "Concept\nTest, Tuning", plain, top, quietText);

    link.setColour (juce::HyperlinkButton::textColourId, linkText);
    link.setTooltip (ProductLinks::brandHome);
    addAndMakeVisible (link);

    setTitle ("About");
    setHelpText ("Click to close");
    setSize (boxWidth, boxHeight);
}

void About::addText (juce::Label& label, const juce::String& text, const juce::Font& font,
                     juce::Justification justification, juce::Colour colour)
{
    label.setText (text, juce::dontSendNotification);
    label.setFont (font);
    label.setJustificationType (justification);
    label.setEditable (false, false, false);
    label.setColour (juce::Label::textColourId, colour);
    label.setInterceptsMouseClicks (false, false);
    addAndMakeVisible (label);
}

void About::resized()
{
    title.setBounds (168, 24, 150, 24);
    firstName.setBounds (168, 56, 264, 24);
    firstRoles.setBounds (176, 80, 150, 64);
    secondName.setBounds (168, 152, 240, 24);
    secondRoles.setBounds (176, 176, 150, 64);
    link.setBounds (getWidth() / 2 - 116, 272, 232, 24);
}

void About::paint (juce::Graphics& g)
{
    const auto box = getLocalBounds().toFloat();
    juce::Path outline;
    outline.addRoundedRectangle (box, cornerSize);
    g.reduceClipRegion (outline);

    g.fillAll (boxColour);
    g.setColour (juce::Colours::black);
    g.drawImage (background, box);
    g.drawImage (brandMark, { 29.0f, 81.0f, 90.0f, 36.0f });
    g.drawImage (distributorMark, { 5.0f, 177.0f, 138.0f, 32.0f });
}

void About::mouseUp (const juce::MouseEvent&) { setVisible (false); }

std::unique_ptr<juce::AccessibilityHandler> About::createAccessibilityHandler()
{
    return std::make_unique<juce::AccessibilityHandler> (
        *this, juce::AccessibilityRole::dialogWindow,
        juce::AccessibilityActions().addAction (juce::AccessibilityActionType::press, [this] { setVisible (false); }));
}
