// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "parameters/SettingsParameter.h"

/** A two-state control: on from one half. */
class OnOffParameter : public CorvaneQ7Param
{
public:
    /** Two steps in every wrapper: the last argument is the family's. */
    OnOffParameter (const juce::String& identifier, const juce::String& displayName, ChannelSettings& record, bool)
        : CorvaneQ7Param (identifier, displayName, record, true)
    {
    }

    int getNumSteps() const override { return 2; }
    juce::String getText (float x, int) const override { return x >= 0.5f ? "On" : "Off"; }
    float getValueForText (const juce::String& text) const override { return text.trim() == "On" ? 1.0f : 0.0f; }
};
