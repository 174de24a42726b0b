// SPDX-License-Identifier: GPL-3.0-or-later
#include "parameters/GlobalParameters.h"

juce::String MixParameter::getText (float x, int) const
{
    // Truncated, and in float: 0.999 shows "99%".
    return juce::String (NumberText::toInt (std::clamp (x, 0.0f, 1.0f) * 100.0f)) + "%";
}

float MixParameter::getValueForText (const juce::String& text) const
{
    return finiteOrDefault (toNormalised (NumberText::leadingNumber (text.replace ("%", "")) * 0.01));
}

int HPFParameter::getNumSteps() const { return useFiniteSteps ? 1001 : continuousSteps; }

juce::String HPFParameter::getText (float x, int) const
{
    const auto hz = Scale::toHz (x);
    return hz < ChannelSettings::lowestHighPassHz ? juce::String ("OFF") : Scale::text (hz);
}

float HPFParameter::getValueForText (const juce::String& text) const
{
    return text == "OFF" ? 0.0f : finiteOrDefault (Scale::toPosition (Scale::hzFrom (text)));
}

void MasterGainParameter::store (float x) noexcept
{
    ChannelSettings::setDecibels (settings->masterGainDb, settings->masterGainLinear, toValue (x));
}

void InLevelParameter::store (float x) noexcept
{
    ChannelSettings::setDecibels (settings->inLevelDb, settings->inLevelLinear, toValue (x));
}

void OutLevelParameter::store (float x) noexcept
{
    ChannelSettings::setDecibels (settings->outLevelDb, settings->outLevelLinear, toValue (x));
}
