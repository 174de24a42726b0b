// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "parameters/UserDefaults.h"
#include "render/AudioFile.h"

#include <cstdint>
#include <filesystem>
#include <optional>
#include <vector>

/** A control and where it goes. */
struct ParameterChange
{
    int index;
    float normalised;
};

/** Everything that decides what a render writes. The user's settings file is not part of it: two machines with the
    same input and the same options write the same bytes.

    What the controls stand on comes from several places, each over the one before: the program, the state, the
    settings text, the changes in their order, then `bypass`, `oversampling` and `calibrationDb` where they are
    given. */
struct RenderOptions
{
    static constexpr int maxBlockSize = 65536;
    static constexpr double maxTailSeconds = 600.0;

    std::filesystem::path input, output;
    std::filesystem::path meters;                      // empty: no meter file
    std::filesystem::path state, settingsText;         // to start from; empty: none
    std::filesystem::path automation;                  // empty: none
    std::filesystem::path saveState, saveSettingsText; // what stood before the first sample; empty: not kept
    SampleFormat format = SampleFormat::float32;
    bool overwrite = false; // existing files may be replaced

    int program = 0;
    std::vector<ParameterChange> changes;
    bool bypass = false; // the plug-in's own: dry, but in time; false leaves the control where it is
    std::optional<int> oversampling;
    std::optional<double> calibrationDb; // dBu of digital full scale

    int blockSize = 512;      // frames
    bool noise = true;        // the analogue noise floor
    std::uint32_t seed = 1;   // of the noise
    double tailSeconds = 0.0; // silence behind the input
    bool keepLatency = false; // leave it in front of the output

    bool rendersSound() const noexcept { return ! input.empty() || ! output.empty(); }
    bool savesSettings() const noexcept { return ! saveState.empty() || ! saveSettingsText.empty(); }

    // Where neither an option nor a file says otherwise; never what a user's settings file says.
    static constexpr int defaultOversampling = 1;
    static constexpr double defaultCalibrationDb = UserDefaults::defaultCalibrationDb;
    static constexpr double defaultZoom = 1.0;
};
