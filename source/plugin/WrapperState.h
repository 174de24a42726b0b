// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstddef>

namespace juce
{
class MemoryBlock;
class String;
} // namespace juce

/** What the framework's wrappers put around our session block, read without trusting it: a session may come back from a
    host damaged or made up. The wrappers' own units call these, see tools/wrappers. Any thread. */
namespace WrapperState
{
/** Whether a VST3 session ends in the section that the wrapper writes behind ours: eight zeros, the host's bypass, the
    length of that, a tag. Anything else, be it by a bit, belongs to our block, whose reader knows where it ends: then
    the settings still come back and the bypass alone is lost. */
bool endsWithPrivateData (const void* session, std::size_t size);

/** Decodes an LV2 session, "number of bytes.characters of six bits each". Returns false, and leaves `block` alone, when
    the number is not the one that the characters make. */
bool fromText (const juce::String& text, juce::MemoryBlock& block);
} // namespace WrapperState
