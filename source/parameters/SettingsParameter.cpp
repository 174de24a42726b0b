// SPDX-License-Identifier: GPL-3.0-or-later
#include "parameters/SettingsParameter.h"

#include "parameters/ParameterTable.h"

namespace
{
/** Identifiers are stored by hosts; the version hint orders them in one format and never changes. */
constexpr int versionHint = 1;
} // namespace

SettingsParameter::SettingsParameter (const juce::String& identifier, const juce::String& displayName,
                                      ChannelSettings& record)
    : juce::AudioProcessorParameterWithID (juce::ParameterID { identifier, versionHint }, displayName),
      settings (&record)
{
}

void SettingsParameter::setValue (float newValue)
{
    if (std::isfinite (newValue))
    {
        store (newValue);

        if (ParameterTable::isBandControl (getParameterIndex()))
            forwardLink (newValue);
    }

    settings->owner.applySettings();
}

void SettingsParameter::forwardLink (float newValue)
{
    const auto siblings = ParameterTable::siblingsOf (getParameterIndex());

    // The guard stops a sibling's own forward, so one change never spreads further. Link may go off, or the slot
    // change, while a sibling is told: the record is looked up anew for each.
    for (const auto sibling : siblings)
    {
        auto& record = *settings;

        if (! record.link)
            return;

        if (! record.linkGuard)
        {
            record.linkGuard = true;
            forwardTo (record, sibling, newValue);
            record.linkGuard = false;
        }
    }
}

void SettingsParameter::forwardTo (ChannelSettings& record, int index, float newValue)
{
    if (record.owner.hostWantsSilentLink())
        record.owner.setParameter (index, newValue);
    else
        record.owner.setParameterNotifyingHost (index, newValue);
}
