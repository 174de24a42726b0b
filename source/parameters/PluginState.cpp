// SPDX-License-Identifier: GPL-3.0-or-later
#include "parameters/PluginState.h"

#include "parameters/NumberText.h"
#include "parameters/ParameterTable.h"

namespace
{
constexpr auto tag = "CQ7SETTINGS";
constexpr juce::uint32 magic = 0x21324356;
constexpr int headerSize = 8; // magic and length
constexpr int smallestSize = headerSize + 1;
constexpr int decimals = 20; // bring every float back to its last bit

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

/** The framework's XML reader is not made for hostile text: entities can expand without end, deep nesting overflows
    its stack, long attribute lists take seconds, and what is not UTF-8 leads it past the text's end. A block of ours is
    about 1600 characters in one element. */
bool isHarmless (const char* text, int length) noexcept
{
    constexpr int longest = 64 * 1024, mostTags = 64;

    if (length > longest)
        return false;

    int tags = 0;

    for (int i = 0; i < length && text[i] != 0;)
    {
        const auto step = lengthOfCharacter (text + i, length - i);

        if (step == 0 || text[i] == '&' || (text[i] == '<' && ++tags > mostTags))
            return false;

        if (text[i] == '<' && i + 1 < length && text[i + 1] == '!')
            return false;

        i += step;
    }

    return true;
}

std::unique_ptr<juce::XmlElement> parse (const void* data, int sizeInBytes)
{
    if (data == nullptr || sizeInBytes < smallestSize)
        return nullptr;

    if (juce::ByteOrder::littleEndianInt (data) != magic)
        return nullptr;

    const auto* bytes = static_cast<const char*> (data);
    const auto length = static_cast<int> (juce::ByteOrder::littleEndianInt (bytes + 4));

    if (length <= 0)
        return nullptr;

    const auto available = juce::jmin (length, sizeInBytes - headerSize);

    if (! isHarmless (bytes + headerSize, available))
        return nullptr;

    auto element = juce::parseXML (juce::String::fromUTF8 (bytes + headerSize, available));
    return element != nullptr && element->getTagName() == tag ? std::move (element) : nullptr;
}
} // namespace

juce::MemoryBlock PluginState::write (const float* normalisedValues, const std::optional<Options>& options)
{
    juce::XmlElement element (tag);
    element.setAttribute ("Version", "1.0.0");

    for (int i = 0; i < ParameterTable::numParameters; ++i)
        element.setAttribute (ParameterTable::rows[i].identifier,
                              NumberText::fixed (static_cast<double> (normalisedValues[i]), decimals));

    if (options.has_value())
    {
        element.setAttribute ("Calibration", NumberText::fixed (options->calibrationDb, decimals));
        element.setAttribute ("Oversampling", options->oversampling);
        element.setAttribute ("UIZoom", NumberText::fixed (options->uiZoom, decimals));
    }

    const auto text = element.toString (juce::XmlElement::TextFormat().singleLine().withoutHeader());
    const auto length = text.getNumBytesAsUTF8();

    juce::MemoryBlock block;
    {
        juce::MemoryOutputStream stream (block, false);
        stream.writeInt (static_cast<int> (magic));
        stream.writeInt (static_cast<int> (length));
        stream.write (text.toRawUTF8(), length);
        stream.writeByte (0);
    }
    return block;
}

PluginState::Reader::Reader (const void* data, int sizeInBytes) : element (parse (data, sizeInBytes)) {}

std::optional<double> PluginState::Reader::number (const char* attribute) const
{
    if (element == nullptr || ! element->hasAttribute (attribute))
        return std::nullopt;

    return NumberText::leadingNumber (element->getStringAttribute (attribute));
}

std::optional<int> PluginState::Reader::integer (const char* attribute) const
{
    if (element == nullptr || ! element->hasAttribute (attribute))
        return std::nullopt;

    return NumberText::leadingInteger (element->getStringAttribute (attribute));
}

bool PluginState::Reader::isPreset() const { return element != nullptr && element->getBoolAttribute ("IsPreset"); }
