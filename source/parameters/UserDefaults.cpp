// SPDX-License-Identifier: GPL-3.0-or-later
#include "parameters/UserDefaults.h"

#include "parameters/NumberText.h"
#include "settings/Decibels.h"

namespace
{
constexpr double circuitReference = 1.1523716865;
}

UserDefaults::UserDefaults()
{
    juce::PropertiesFile::Options options;
    options.applicationName = "Corvane Q7";
    options.filenameSuffix = "settings";
    options.folderName = "Corvane Plugins";
    options.osxLibrarySubFolder = "Application Support";
    options.commonToAllUsers = false;
    options.ignoreCaseOfKeyNames = false;
    options.doNotSave = false;
    options.millisecondsBeforeSaving = 3000;
    options.storageFormat = juce::PropertiesFile::storeAsXML;
    properties.setStorageParameters (options);
}

juce::PropertiesFile& UserDefaults::file() { return *properties.getUserSettings(); }

void UserDefaults::reload() { file().reload(); }

bool UserDefaults::save (const char* key, const juce::var& value)
{
    reload();
    file().setValue (key, value);
    return file().saveIfNeeded();
}

bool UserDefaults::saveCalibrationDb (int calibrationDb)
{
    return save ("Calibration", NumberText::fixed (calibrationDb, 1));
}

bool UserDefaults::saveOversampling (int factor) { return save ("Oversampling", factor); }

bool UserDefaults::saveUiZoom (double zoom) { return save ("UIZoom", NumberText::fixed (zoom, 6)); }

double UserDefaults::number (const char* key, double missing)
{
    return file().containsKey (key) ? NumberText::leadingNumber (file().getValue (key)) : missing;
}

double UserDefaults::calibrationDb()
{
    const auto stored = number ("Calibration", defaultCalibrationDb);
    const auto inRange = stored >= lowestCalibrationDb && stored <= highestCalibrationDb; // not for a NaN
    return inRange ? stored : defaultCalibrationDb;
}

int UserDefaults::oversampling()
{
    const auto stored = NumberText::leadingInteger (file().getValue ("Oversampling"));
    return stored >= 1 && stored <= maxOversampling ? stored : 1;
}

double UserDefaults::uiZoom()
{
    const auto stored = number ("UIZoom", highestZoom);
    return std::isnan (stored) ? highestZoom : juce::jlimit (lowestZoom, highestZoom, stored);
}

double UserDefaults::calibrationGainFor (double calibrationDb) noexcept
{
    return Decibels::toGain (calibrationDb) * circuitReference;
}

int UserDefaults::calibrationDbFor (double calibrationGain) noexcept
{
    return static_cast<int> (std::floor (Decibels::fromGain (calibrationGain / circuitReference) + 0.5));
}
