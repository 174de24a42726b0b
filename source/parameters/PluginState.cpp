// SPDX-License-Identifier: GPL-3.0-or-later
#include "parameters/PluginState.h"

#include "parameters/GuardedXml.h"
#include "parameters/NumberText.h"
#include "parameters/ParameterTable.h"

namespace
{
constexpr auto tag = "CQ7SETTINGS";
constexpr juce::uint32 magic = 0x21324356;
constexpr int headerSize = 8; // magic and length
constexpr int smallestSize = headerSize + 1;
constexpr int decimals = 20; // bring every float back to its last bit

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

    return GuardedXml::parse (bytes + headerSize, available, tag);
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
