// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <juce_core/juce_core.h>

#include <memory>

/** The one door through which XML from outside comes in: session blocks and the settings file.

    The framework's XML reader is not made for hostile text: entities can expand without end, deep nesting overflows its
    stack, long attribute lists take seconds, what is not UTF-8 leads it past the text's end, and an instruction ("<?")
    with text behind it inside an element keeps it busy for ever. What we write ourselves is below 2000 characters, flat,
    and needs none of that.

    Threads  any but audio: text allocates.
*/
namespace GuardedXml
{
constexpr int longestText = 64 * 1024; // bytes
constexpr int mostTags = 64;           // counted as "<", so an element with an end tag is two

/** True for UTF-8 within these bounds without entities, comments and declarations of types, and with no instruction but
    a first "<?xml". A zero byte ends the text; nothing behind the length is read. */
bool isHarmless (const char* text, int length) noexcept;

/** The root element of a harmless text when it has this very tag, otherwise null. */
std::unique_ptr<juce::XmlElement> parse (const char* text, int length, const char* tag);
} // namespace GuardedXml
