// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <juce_audio_processors/juce_audio_processors.h>

#include <array>
#include <memory>
#include <optional>

/** The session block: what a host keeps, byte for byte, and what is read back.

    Bytes 0 to 3 are the magic 0x21324356, 4 to 7 the length of the text (both little-endian), then the text in UTF-8,
    then a zero byte. The text is one empty XML element "CQ7SETTINGS" on one line with no declaration. Its attributes
    in order: "Version", the parameters' identifiers with their normalised values to 20 decimals, then "Calibration",
    "Oversampling" and "UIZoom" where they are written.

    Threads  any but audio: text allocates.
*/
namespace PluginState
{
/** The three global settings of an instance. */
struct Options
{
    int calibrationDb; // level in dBu of digital full scale
    int oversampling;
    double uiZoom;
};

/** The block of these values, with the three options or without. */
juce::MemoryBlock write (const float* normalisedValues, const std::optional<Options>& options);

/** What a block holds: an absent attribute is an empty optional. */
class Reader
{
public:
    /** Reads a block. Damaged, foreign and hostile blocks give an invalid reader: nothing of them counts. */
    Reader (const void* data, int sizeInBytes);

    bool isValid() const noexcept { return element != nullptr; }

    std::optional<double> number (const char* attribute) const;
    std::optional<int> integer (const char* attribute) const;

    /** The block carries parameter values only: the options of the instance stay. */
    bool isPreset() const;

private:
    std::unique_ptr<juce::XmlElement> element;
};
} // namespace PluginState
