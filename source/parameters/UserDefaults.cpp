// SPDX-License-Identifier: GPL-3.0-or-later
#include "parameters/UserDefaults.h"

#include "processor/Decibels.h"

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

double UserDefaults::calibrationDb()
{
    const auto stored = file().getDoubleValue ("Calibration", defaultCalibrationDb);
    const auto inRange = stored >= lowestCalibrationDb && stored <= highestCalibrationDb; // not for a NaN
    return inRange ? stored : defaultCalibrationDb;
}

int UserDefaults::oversampling()
{
    const auto stored = file().getIntValue ("Oversampling", 0);
    return stored >= 1 && stored <= maxOversampling ? stored : 1;
}

double UserDefaults::uiZoom()
{
    const auto stored = file().getDoubleValue ("UIZoom", highestZoom);
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
