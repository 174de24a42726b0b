// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <juce_gui_basics/juce_gui_basics.h>

#include <functional>
#include <utility>

/** Tells screen readers the value of a widget that shows it by a picture. Message thread. */
namespace AccessibleText
{
/** A value that is read and never written. */
class Value final : public juce::AccessibilityTextValueInterface
{
public:
    explicit Value (std::function<juce::String()> textToUse) : text (std::move (textToUse)) {}

    bool isReadOnly() const override { return true; }
    juce::String getCurrentValueAsString() const override { return text ? text() : juce::String(); }
    void setValueAsString (const juce::String&) override {}

private:
    std::function<juce::String()> text;
};

inline std::unique_ptr<juce::AccessibilityHandler> handlerFor (juce::Component& component, juce::AccessibilityRole role,
                                                               std::function<juce::String()> text,
                                                               juce::AccessibilityActions actions = {})
{
    return std::make_unique<juce::AccessibilityHandler> (
        component, role, std::move (actions),
        juce::AccessibilityHandler::Interfaces { std::make_unique<Value> (std::move (text)) });
}
} // namespace AccessibleText
