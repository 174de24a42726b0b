// SPDX-License-Identifier: GPL-3.0-or-later
#include "parameters/SettingsParameter.h"

#include "parameters/ParameterTable.h"

namespace
{
/** Identifiers are stored by hosts; the version hint orders them in one format and never changes. */
constexpr int versionHint = 1;

/** Stands while a thread forwards a linked change of a record. What a listener moves meanwhile on the same thread, a host's
    echo above all, is not forwarded again; another thread's change is. */
class LinkGuard
{
public:
    explicit LinkGuard (const ChannelSettings& guarded) noexcept : record (&guarded), outer (innermost)
    {
        innermost = this;
    }

    ~LinkGuard() { innermost = outer; }

    LinkGuard (const LinkGuard&) = delete;
    LinkGuard& operator= (const LinkGuard&) = delete;

    static bool standsFor (const ChannelSettings& record) noexcept
    {
        for (const auto* guard = innermost; guard != nullptr; guard = guard->outer)
            if (guard->record == &record)
                return true;

        return false;
    }

private:
    static thread_local const LinkGuard* innermost;

    const ChannelSettings* const record;
    const LinkGuard* const outer;
};

thread_local const LinkGuard* LinkGuard::innermost = nullptr;
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
        auto& record = *settings.load();

        if (! record.link)
            return;

        if (! LinkGuard::standsFor (record))
        {
            const LinkGuard guard (record);
            forwardTo (record, sibling, newValue);
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
