// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <juce_audio_processors/juce_audio_processors.h>
#include <juce_data_structures/juce_data_structures.h>

/** The three machine-wide options and the settings file that keeps them: "Corvane Q7.settings" in the folder
    "Corvane Plugins" of the user's application data (on Linux that is the home folder).

    A file that is missing, unreadable or damaged reads as the defaults; reading never creates it.

    Threads  any but audio: it reads and writes a file. The framework guards the file in memory.
*/
class UserDefaults
{
public:
    UserDefaults();

    /** Level in dBu of digital full scale, 16 to 24. Anything else that the file holds reads as 22. */
    double calibrationDb();

    /** Factor 1 to 16. Anything else that the file holds, or nothing, reads as 1. */
    int oversampling();

    /** Scale of the editor, limited to 0.7 to 1; 1 when the file holds none (a text reads as 0, so as 0.7). */
    double uiZoom();

    /** Reads the file anew: another instance may have saved in between. */
    void reload();

    /** Write a value under its key and save the file at once, keeping what other instances saved. False when the file
        cannot be written; nothing else then happens. */
    bool saveCalibrationDb (int calibrationDb);
    bool saveOversampling (int factor);
    bool saveUiZoom (double zoom);

    /** Linear gain that puts a level in dBu of digital full scale at the circuit's fixed reference; 0 at -100 and
        below. 1.1523716865 is the circuit value of a full-scale sample when full scale is set to 0 dBu. */
    static double calibrationGainFor (double calibrationDb) noexcept;

    /** The inverse, in whole dBu. */
    static int calibrationDbFor (double calibrationGain) noexcept;

    static constexpr double defaultCalibrationDb = 22.0, lowestCalibrationDb = 16.0, highestCalibrationDb = 24.0;
    static constexpr int maxOversampling = 16;
    static constexpr double lowestZoom = 0.7, highestZoom = 1.0;

private:
    juce::PropertiesFile& file();
    double number (const char* key, double missing);
    bool save (const char* key, const juce::var& value);

    juce::ApplicationProperties properties;
};
