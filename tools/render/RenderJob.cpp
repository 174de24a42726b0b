// SPDX-License-Identifier: GPL-3.0-or-later
#include "render/RenderJob.h"

#include "render/RenderError.h"

#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdlib>

namespace
{
bool isSameFile (const std::filesystem::path& a, const std::filesystem::path& b)
{
    std::error_code error;
    return std::filesystem::equivalent (a, b, error)
           || std::filesystem::weakly_canonical (a, error) == std::filesystem::weakly_canonical (b, error);
}

const RenderOptions& withoutConflict (const RenderOptions& options)
{
    if (! options.meters.empty())
        for (const auto& sound : { options.input, options.output })
            if (isSameFile (options.meters, sound))
                throw RenderError (ExitStatus::usage, "--meters names the same file as INPUT or OUTPUT");

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

    // Always told, for the processor starts with what the user's settings file says.
    processor.setOversampling (options.oversampling);
    processor.setCalibration (options.calibrationDb);

    auto& settings = processor.activeSettings();
    settings = processor.programs[static_cast<std::size_t> (options.program)];
    settings.bypass.setTarget (options.bypass ? 1.0 : 0.0);

    // The programs show the gain reduction alone, and a level is measured only where a meter shows one.
    if (! options.meters.empty())
        for (auto& band : settings.bands)
            band.meter = ChannelSettings::meterOut;

    processor.applySettings();

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
    juce::AudioBuffer<float> block (channels.getArrayOfWritePointers(), numChannels, numFrames);

    for (int c = 0; c < numChannels; ++c)
        for (int i = 0; i < numFrames; ++i)
            block.setSample (c, i, interleaved[static_cast<std::size_t> (i * numChannels + c)]);

    processor.processBlock (block, noMidi);

    for (int c = 0; c < numChannels; ++c)
        for (int i = 0; i < numFrames; ++i)
            interleaved[static_cast<std::size_t> (i * numChannels + c)] = block.getSample (c, i);

    auto& settings = processor.activeSettings();
    gainReduction.add (settings);

    if (meters)
        meters->write (framesDone, settings);
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

    output.commit();
}

std::int64_t RenderJob::framesInAll (std::int64_t extra) const noexcept
{
    const auto announced = reader->numFrames();
    return announced < 0 ? -1 : announced + extra;
}
