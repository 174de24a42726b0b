// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <juce_gui_basics/juce_gui_basics.h>

/** The box with version and credits. A click anywhere but on the link closes it. Fixed in size at every zoom.
    Threads: message. */
class About : public juce::Component
{
public:
    static constexpr int boxWidth = 450, boxHeight = 300; // px, at every zoom

    About();

    void paint (juce::Graphics&) override;
    void resized() override;
    void mouseUp (const juce::MouseEvent&) override;
    std::unique_ptr<juce::AccessibilityHandler> createAccessibilityHandler() override;

    juce::Label title, firstName, firstRoles, secondName, secondRoles;
    juce::HyperlinkButton link;

private:
    void addText (juce::Label&, const juce::String& text, const juce::Font&, juce::Justification, juce::Colour);

    juce::Image background, brandMark, distributorMark;

    JUCE_DECLARE_NON_COPYABLE_WITH_LEAK_DETECTOR (About)
};
