// SPDX-License-Identifier: GPL-3.0-or-later
#include "render/RenderJob.h"

#include "render/FileConflicts.h"
#include "render/ProcessorSetup.h"
#include "render/RenderError.h"

#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdlib>

namespace
{
const RenderOptions& withoutConflict (const RenderOptions& options)
{
    refuseFileConflicts (options);
    return options;
}

RenderResult::Levels levelsOf (const LevelMeter& meter) { return { meter.peakDb(), meter.rmsDb(), meter.loudness() }; }
} // namespace

RenderJob::RenderJob (const RenderOptions& optionsToUse)
    : options (withoutConflict (optionsToUse)), reader (options.input), numChannels (reader->numChannels()),
      sampleRate (reader->sampleRate()), tailFrames (std::llround (options.tailSeconds * sampleRate)),
      channels (numChannels, options.blockSize),
      interleaved (static_cast<std::size_t> (numChannels) * static_cast<std::size_t> (options.blockSize)),
      output (options.output, options.overwrite), inputLevels (numChannels, sampleRate),
      outputLevels (numChannels, sampleRate)
{
    settleProcessor();

    const auto latency = processor.getLatencySamples();
    silenceLeft = tailFrames + latency;
    framesToDrop = options.keepLatency ? 0 : latency;

    if (! options.automation.empty())
        automation = Automation (options.automation);

    writer.emplace (output, numChannels, sampleRate, options.format, framesInAll (silenceLeft - framesToDrop));

    if (! options.meters.empty())
        meters.emplace (options.meters, options.overwrite);
}

void RenderJob::settleProcessor()
{
    const auto layout = numChannels == 1 ? juce::AudioChannelSet::mono() : juce::AudioChannelSet::stereo();
    juce::AudioProcessor::BusesLayout layouts;
    layouts.inputBuses.add (layout);
    layouts.outputBuses.add (layout);

    if (! processor.setBusesLayout (layouts))
        throw RenderError (ExitStatus::failure,
                           "the processor takes no input of " + std::to_string (numChannels) + " channels");

    processor.setRateAndBufferSizeDetails (sampleRate, options.blockSize);
    processor.setNonRealtime (true);

    ProcessorSetup setup (options, processor);
    saved.emplace (options, processor);

    // The programs show the gain reduction alone, and a level is measured only where a meter shows one. What is saved
    // knows nothing of this.
    if (! options.meters.empty())
        setup.showLevels();

    if (! options.noise)
        processor.setNoiseSource (NoiseSource::held());

    // Last: it lands every ramp on the value that it has been sent to.
    processor.prepareToPlay (sampleRate, options.blockSize);
}

RenderResult RenderJob::run (const Progress& progress)
{
    const auto inAll = framesInAll (silenceLeft);
    const auto started = std::chrono::steady_clock::now();

    std::srand (options.seed);

    if (progress)
        progress (0, inAll);

    while (const auto numFrames = readBlock())
    {
        processBlock (numFrames);
        writeBlock (numFrames);
        framesDone += numFrames;

        if (progress)
            progress (framesDone, inAll);
    }

    const std::chrono::duration<double> taken = std::chrono::steady_clock::now() - started;
    finishFiles();

    return { numChannels,
             sampleRate,
             framesIn,
             writer->numFramesWritten(),
             levelsOf (inputLevels),
             levelsOf (outputLevels),
             gainReduction,
             static_cast<double> (framesIn + tailFrames) / sampleRate,
             taken.count() };
}

/** The next block of the input, or of the silence behind it; 0 at the end of both. */
int RenderJob::readBlock()
{
    const auto numRead = reader->read (interleaved.data(), options.blockSize);
    inputLevels.add (interleaved.data(), numRead);
    framesIn += numRead;

    // Nothing went in, so nothing waits to be pushed out.
    if (framesIn == 0 && tailFrames == 0)
        return 0;

    const auto numSilent = static_cast<int> (std::min<std::int64_t> (options.blockSize - numRead, silenceLeft));
    silenceLeft -= numSilent;
    std::fill_n (interleaved.begin() + numRead * numChannels, numSilent * numChannels, 0.0f);

    return numRead + numSilent;
}

void RenderJob::processBlock (int numFrames)
{
    for (int c = 0; c < numChannels; ++c)
        for (int i = 0; i < numFrames; ++i)
            channels.setSample (c, i, interleaved[static_cast<std::size_t> (i * numChannels + c)]);

    processPieces (numFrames);

    for (int c = 0; c < numChannels; ++c)
        for (int i = 0; i < numFrames; ++i)
            interleaved[static_cast<std::size_t> (i * numChannels + c)] = channels.getSample (c, i);

    auto& settings = processor.activeSettings();
    gainReduction.add (settings);

    if (meters)
        meters->write (framesDone, settings);
}

/** A block ends early where a control changes, so that the change is heard from its very frame on. */
void RenderJob::processPieces (int numFrames)
{
    for (int done = 0; done < numFrames;)
    {
        automation.advanceTo (framesDone + done, processor);

        const auto untilChange = automation.nextFrame() - (framesDone + done);
        const auto length = static_cast<int> (std::min<std::int64_t> (numFrames - done, untilChange));
        juce::AudioBuffer<float> piece (channels.getArrayOfWritePointers(), numChannels, done, length);
        processor.processBlock (piece, noMidi);
        done += length;
    }
}

void RenderJob::writeBlock (int numFrames)
{
    const auto numDropped = static_cast<int> (std::min<std::int64_t> (framesToDrop, numFrames));
    framesToDrop -= numDropped;

    const auto* kept = interleaved.data() + numDropped * numChannels;
    outputLevels.add (kept, numFrames - numDropped);
    writer->write (kept, numFrames - numDropped);
}

void RenderJob::finishFiles()
{
    writer->finish();

    if (meters)
        meters->finish();

    // Closed before the output takes its name, which may be the input's own.
    reader.reset();

    if (meters)
        meters->commit();

    saved->commit();
    output.commit();
}

std::int64_t RenderJob::framesInAll (std::int64_t extra) const noexcept
{
    const auto announced = reader->numFrames();
    return announced < 0 ? -1 : announced + extra;
}
