// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "parameters/UserDefaults.h"
#include "render/AudioFile.h"

#include <cstdint>
#include <filesystem>

/** Everything that decides what a render writes. The user's settings file is not part of it: two machines with the
    same input and the same options write the same bytes. */
struct RenderOptions
{
    static constexpr int maxBlockSize = 65536;
    static constexpr double maxTailSeconds = 600.0;

    std::filesystem::path input, output;
    std::filesystem::path meters; // empty: no meter file
    SampleFormat format = SampleFormat::float32;
    bool overwrite = false; // existing files may be replaced

    int program = 0;
    bool bypass = false; // the plug-in's own: dry, but in time
    int oversampling = 1;
    double calibrationDb = UserDefaults::defaultCalibrationDb; // dBu of digital full scale

    int blockSize = 512;      // frames
    bool noise = true;        // the analogue noise floor
    std::uint32_t seed = 1;   // of the noise
    double tailSeconds = 0.0; // silence behind the input
    bool keepLatency = false; // leave it in front of the output
};
