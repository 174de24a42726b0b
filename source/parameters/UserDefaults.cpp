// SPDX-License-Identifier: GPL-3.0-or-later
#include "parameters/UserDefaults.h"

#include "parameters/GuardedXml.h"
#include "parameters/NumberText.h"
#include "settings/Decibels.h"

#include <mutex>

namespace
{
constexpr double circuitReference = 1.1523716865;

// The framework's form of a file of properties.
constexpr auto fileTag = "PROPERTIES", valueTag = "VALUE", nameAttribute = "name", textAttribute = "val";

/** Guards the file, from reading it to the end of what is written over it. */
std::mutex fileLock;

juce::File location()
{
    juce::PropertiesFile::Options options;
    options.applicationName = "Corvane Q7";
    options.filenameSuffix = "settings";
    options.folderName = "Corvane Plugins";
    options.osxLibrarySubFolder = "Application Support";
    return options.getDefaultFile();
}

std::unique_ptr<juce::XmlElement> load()
{
    juce::MemoryBlock bytes;
    juce::FileInputStream stream (location());

    if (! stream.openedOk())
        return nullptr;

    stream.readIntoMemoryBlock (bytes, GuardedXml::longestText + 1);

    // Some editors put a byte order mark in front.
    const auto mark = bytes.getSize() >= 3 && juce::CharPointer_UTF8::isByteOrderMark (bytes.getData()) ? 3 : 0;
    return GuardedXml::parse (bytes.begin() + mark, static_cast<int> (bytes.getSize()) - mark, fileTag);
}

/** The element of a key, the last one where a hand wrote it twice; null where there is none. */
juce::XmlElement* find (const juce::XmlElement& document, const char* key)
{
    juce::XmlElement* found = nullptr;

    for (auto* element : document.getChildIterator())
        if (element->getTagName() == valueTag && element->getStringAttribute (nameAttribute) == key)
            found = element;

    return found;
}

void set (juce::XmlElement& document, const char* key, const juce::String& text)
{
    auto* element = find (document, key);

    if (element == nullptr)
        element = document.createNewChildElement (valueTag);

    element->deleteAllChildElements(); // the framework's own reader takes a child for the value
    element->setAttribute (nameAttribute, key);
    element->setAttribute (textAttribute, text);
}

bool save (const char* key, const juce::String& text)
{
    const std::lock_guard<std::mutex> guard (fileLock);
    auto document = load();

    if (document == nullptr)
        document = std::make_unique<juce::XmlElement> (fileTag);

    set (*document, key, text);

    // The framework writes some letters as entities, which no reader of ours takes: better without a foreign key of
    // such letters than without our own.
    const auto written = document->toString();

    if (! GuardedXml::isHarmless (written.toRawUTF8(), static_cast<int> (written.getNumBytesAsUTF8())))
    {
        document = std::make_unique<juce::XmlElement> (fileTag);
        set (*document, key, text);
    }

    const auto file = location();
    return ! file.isDirectory() && file.getParentDirectory().createDirectory() && document->writeTo (file);
}

/** The number at the start of a key's text, 0 when there is none there; `missing` without the key. */
double number (const juce::XmlElement* document, const char* key, double missing)
{
    const auto* element = document != nullptr ? find (*document, key) : nullptr;
    return element != nullptr ? NumberText::leadingNumber (element->getStringAttribute (textAttribute)) : missing;
}

int integer (const juce::XmlElement* document, const char* key)
{
    const auto* element = document != nullptr ? find (*document, key) : nullptr;
    return element != nullptr ? NumberText::leadingInteger (element->getStringAttribute (textAttribute)) : 0;
}
} // namespace

UserDefaults::Values UserDefaults::read()
{
    const std::lock_guard<std::mutex> guard (fileLock);
    const auto document = load();

    const auto calibration = number (document.get(), "Calibration", defaultCalibrationDb);
    const auto factor = integer (document.get(), "Oversampling");
    const auto zoom = number (document.get(), "UIZoom", highestZoom);

    // Written so that what is no number falls to the default.
    const auto usualCalibration = calibration >= lowestCalibrationDb && calibration <= highestCalibrationDb;
    const auto usualFactor = factor >= 1 && factor <= maxOversampling;

    return { usualCalibration ? calibration : defaultCalibrationDb, usualFactor ? factor : 1,
             std::isnan (zoom) ? highestZoom : juce::jlimit (lowestZoom, highestZoom, zoom) };
}

bool UserDefaults::saveCalibrationDb (int calibrationDb)
{
    return save ("Calibration", NumberText::fixed (calibrationDb, 1));
}

bool UserDefaults::saveOversampling (int factor) { return save ("Oversampling", juce::String (factor)); }

bool UserDefaults::saveUiZoom (double zoom) { return save ("UIZoom", NumberText::fixed (zoom, 6)); }

double UserDefaults::calibrationGainFor (double calibrationDb) noexcept
{
    return Decibels::toGain (calibrationDb) * circuitReference;
}

int UserDefaults::calibrationDbFor (double calibrationGain) noexcept
{
    return static_cast<int> (std::floor (Decibels::fromGain (calibrationGain / circuitReference) + 0.5));
}
