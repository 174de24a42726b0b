// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <juce_data_structures/juce_data_structures.h>

/** The three machine-wide options and the settings file that keeps them: "Corvane Q7.settings" in the folder
    "Corvane Plugins" of the user's application data (on Linux that is the home folder), in the framework's XML form of
    properties.

    A file that is missing, unreadable, damaged or hostile (GuardedXml) reads as the defaults; reading never creates it.
    No copy of it stays in memory, so what one instance saves is what every other reads next.

    Threads  any but audio: it reads and writes a file. One lock for all instances of a process: a restore on the host's
             thread and a menu on the message thread never meet in it, and no saved value undoes another's.
*/
namespace UserDefaults
{
/** What the file holds, each value within its range. */
struct Values
{
    double calibrationDb; // level in dBu of digital full scale, 16 to 24; 22 for anything else or nothing
    int oversampling;     // factor, 1 to 16; 1 for anything else or nothing
    double uiZoom;        // scale of the editor, limited to 0.7 to 1; 1 for nothing (a text reads as 0, so as 0.7)
};

Values read();

/** Write a value under its key at once, keeping the others. False when the file cannot be written; nothing else then
    happens. */
bool saveCalibrationDb (int calibrationDb);
bool saveOversampling (int factor);
bool saveUiZoom (double zoom);

/** Linear gain that puts a level in dBu of digital full scale at the circuit's fixed reference; 0 at -100 and below.
    1.1523716865 is the circuit value of a full-scale sample when full scale is set to 0 dBu. */
double calibrationGainFor (double calibrationDb) noexcept;

/** The inverse, in whole dBu. */
int calibrationDbFor (double calibrationGain) noexcept;

constexpr double defaultCalibrationDb = 22.0, lowestCalibrationDb = 16.0, highestCalibrationDb = 24.0;
constexpr int maxOversampling = 16;
constexpr double lowestZoom = 0.7, highestZoom = 1.0;
} // namespace UserDefaults
