// SPDX-License-Identifier: GPL-3.0-or-later
#include "plugin/WrapperState.h"

#include <juce_data_structures/juce_data_structures.h>

#include <cstring>

namespace
{
/** The section as the wrapper writes it. */
juce::MemoryBlock privateDataSection (bool isBypassed)
{
    constexpr auto tag = "JUCEPrivateData";
    juce::ValueTree privateData { tag };
    privateData.setProperty ("Bypass", isBypassed, nullptr);
    juce::MemoryOutputStream content;
    privateData.writeToStream (content);

    juce::MemoryOutputStream section;
    section.writeInt64 (0);
    section << content;
    section.writeInt64 (static_cast<juce::int64> (content.getDataSize()));
    section << tag;
    return section.getMemoryBlock();
}
} // namespace

bool WrapperState::endsWithPrivateData (const void* session, std::size_t size)
{
    for (const auto isBypassed : { false, true })
    {
        const auto section = privateDataSection (isBypassed);
        const auto* end = static_cast<const char*> (session) + size;

        if (size >= section.getSize()
            && std::memcmp (end - section.getSize(), section.getData(), section.getSize()) == 0)
            return true;
    }

    return false;
}

bool WrapperState::fromText (const juce::String& text, juce::MemoryBlock& block)
{
    constexpr auto alphabet = ".ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+";
    constexpr int mostDigits = 9; // below 2^31

    const auto number = text.upToFirstOccurrenceOf (".", false, false);
    const auto characters = text.fromFirstOccurrenceOf (".", false, false);

    if (number.isEmpty() || number.length() > mostDigits || ! number.containsOnly ("0123456789")
        || ! characters.containsOnly (alphabet) || characters.length() != (number.getLargeIntValue() * 8 + 5) / 6)
        return false;

    return block.fromBase64Encoding (text);
}
