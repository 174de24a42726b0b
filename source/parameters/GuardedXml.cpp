// SPDX-License-Identifier: GPL-3.0-or-later
#include "parameters/GuardedXml.h"

namespace
{
/** Number of bytes of the UTF-8 character that begins here, or 0 where none does. */
int lengthOfCharacter (const char* text, int available) noexcept
{
    const auto lead = static_cast<unsigned char> (text[0]);
    const auto length = lead < 0x80 ? 1 : lead < 0xc2 ? 0 : lead < 0xe0 ? 2 : lead < 0xf0 ? 3 : lead < 0xf5 ? 4 : 0;

    if (length > available)
        return 0;

    for (int i = 1; i < length; ++i)
        if ((static_cast<unsigned char> (text[i]) & 0xc0) != 0x80)
            return 0;

    return length;
}
} // namespace

bool GuardedXml::isHarmless (const char* text, int length) noexcept
{
    if (length > longestText)
        return false;

    int tags = 0;

    for (int i = 0; i < length && text[i] != 0;)
    {
        const auto step = lengthOfCharacter (text + i, length - i);

        if (step == 0 || text[i] == '&')
            return false;

        if (text[i] == '<')
        {
            ++tags;
            const auto next = i + 1 < length ? text[i + 1] : char {};

            if (tags > mostTags || next == '!' || (next == '?' && tags > 1))
                return false;
        }

        i += step;
    }

    return true;
}

std::unique_ptr<juce::XmlElement> GuardedXml::parse (const char* text, int length, const char* tag)
{
    if (! isHarmless (text, length))
        return nullptr;

    auto element = juce::parseXML (juce::String::fromUTF8 (text, length));
    return element != nullptr && element->getTagName() == tag ? std::move (element) : nullptr;
}
