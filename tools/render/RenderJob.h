// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "processor/CorvaneQ7AudioProcessor.h"
#include "render/AudioFile.h"
#include "render/Automation.h"
#include "render/LevelMeter.h"
#include "render/MeterLog.h"
#include "render/PendingFile.h"
#include "render/RenderOptions.h"
#include "render/SavedSettings.h"

#include <cstdint>
#include <functional>
#include <optional>
#include <vector>

/** What a render did. Levels of the input leave the tail out; those of the output are of what was written. */
struct RenderResult
{
    struct Levels
    {
        double peakDb, rmsDb, loudness; // dBFS, dBFS, LUFS
    };

    int numChannels, sampleRate; // Hz
    std::int64_t framesIn, framesOut;
    Levels input, output;
    GainReduction gainReduction; // over all blocks
    double secondsOfAudio, secondsTaken;
};

/** One file in, one file out: the processor as a host would drive it, faster than the clock, block after block.

    Only a block is in memory at a time. The settings stand settled before the first sample, so nothing fades in.
    The result has its name only when all of it is written; see PendingFile.

    Errors   RenderError from construction and from `run`.
*/
class RenderJob
{
public:
    /** Frames done and frames in all, or -1 when the input does not say how long it is. Called before the first
        block and after each. */
    using Progress = std::function<void (std::int64_t done, std::int64_t inAll)>;

    /** Opens the files and settles the processor. */
    explicit RenderJob (const RenderOptions& optionsToUse);

    /** Renders all of it. Once a job. */
    RenderResult run (const Progress& progress = {});

private:
    void settleProcessor();

    int readBlock();
    void processBlock (int numFrames);
    void processPieces (int numFrames);
    void writeBlock (int numFrames);
    void finishFiles();

    std::int64_t framesInAll (std::int64_t extra) const noexcept;

    const RenderOptions options;
    std::optional<AudioFileReader> reader;
    const int numChannels, sampleRate;
    const std::int64_t tailFrames;

    CorvaneQ7AudioProcessor processor;
    juce::MidiBuffer noMidi;
    juce::AudioBuffer<float> channels; // a block
    std::vector<float> interleaved;    // the same as a file holds it

    PendingFile output;
    std::optional<AudioFileWriter> writer;
    std::optional<MeterLog> meters;
    std::optional<SavedSettings> saved;
    Automation automation;

    LevelMeter inputLevels, outputLevels;
    GainReduction gainReduction;
    std::int64_t framesIn = 0, framesDone = 0;
    std::int64_t silenceLeft = 0;  // behind the input: the tail, and what pushes the last of it out
    std::int64_t framesToDrop = 0; // of the output's front
};
