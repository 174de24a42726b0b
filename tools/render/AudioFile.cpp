// SPDX-License-Identifier: GPL-3.0-or-later
#include "render/AudioFile.h"

#include "render/RenderError.h"

#include <algorithm>
#include <cmath>

namespace
{
constexpr int maxChannels = 2;

bool isContainerWeRead (int format) noexcept
{
    switch (format & SF_FORMAT_TYPEMASK)
    {
        case SF_FORMAT_WAV:
        case SF_FORMAT_WAVEX:
        case SF_FORMAT_RF64:
        case SF_FORMAT_AIFF:
        case SF_FORMAT_FLAC: return true;
        default: return false;
    }
}

int bitsOf (SampleFormat format) noexcept
{
    return format == SampleFormat::pcm16 ? 16 : format == SampleFormat::pcm24 ? 24 : 32;
}

/** A sample as a whole number of steps, at the upper end of 32 bits, where libsndfile expects it. */
int toSteps (float sample, int bits) noexcept
{
    if (std::isnan (sample))
        return 0;

    const auto fullScale = std::ldexp (1.0, bits - 1);
    const auto nearest = std::nearbyint (static_cast<double> (sample) * fullScale);
    return static_cast<int> (std::clamp (nearest, -fullScale, fullScale - 1.0)) * (1 << (32 - bits));
}
} // namespace

AudioFileReader::AudioFileReader (const std::filesystem::path& file) : name (file)
{
    const auto fail = [&file] (const std::string& reason)
    { throw RenderError (ExitStatus::input, "cannot read \"" + file.string() + "\": " + reason); };

    std::error_code error;
    const auto status = std::filesystem::status (file, error);

    if (! std::filesystem::exists (status))
        fail ("there is no such file");

    if (! std::filesystem::is_regular_file (status))
        fail ("it is not a regular file");

    // As an absolute path: libsndfile takes a lone "-" for the standard input.
    handle.reset (sf_open (std::filesystem::absolute (file).string().c_str(), SFM_READ, &info));

    if (handle == nullptr && sf_error (nullptr) == SF_ERR_SYSTEM)
        fail ("it cannot be opened");

    if (handle == nullptr || ! isContainerWeRead (info.format))
        fail ("it is not a WAV, AIFF or FLAC file");

    if (info.channels > maxChannels)
        fail ("it has " + std::to_string (info.channels) + " channels, and one or two are possible");
}

int AudioFileReader::read (float* interleaved, int numFramesToRead)
{
    const auto got = sf_readf_float (handle.get(), interleaved, numFramesToRead);
    framesRead += got;

    const auto endsEarly = got < numFramesToRead && numFrames() >= 0 && framesRead < numFrames();

    if (endsEarly || sf_error (handle.get()) != SF_ERR_NO_ERROR)
        throw RenderError (ExitStatus::input, "cannot read \"" + name.string() + "\": it is damaged after frame "
                                                  + std::to_string (framesRead));

    return static_cast<int> (got);
}

int AudioFileWriter::formatFor (SampleFormat format, int numChannels, std::int64_t expectedFrames) noexcept
{
    constexpr std::int64_t largestWav = 0xffffffffLL - 4096; // sizes of 32 bits, and room for the header

    const auto bytes = expectedFrames * numChannels * (bitsOf (format) / 8);
    const auto isShort = expectedFrames >= 0 && bytes <= largestWav;

    // Samples that are no whole numbers want the longer description, which plain WAV of this library leaves out.
    const auto wav = format == SampleFormat::float32 ? SF_FORMAT_WAVEX : SF_FORMAT_WAV;
    const auto container = isShort ? wav : SF_FORMAT_RF64;
    const auto samples = format == SampleFormat::pcm16   ? SF_FORMAT_PCM_16
                         : format == SampleFormat::pcm24 ? SF_FORMAT_PCM_24
                                                         : SF_FORMAT_FLOAT;
    return container | samples;
}

AudioFileWriter::AudioFileWriter (const PendingFile& file, int numChannels, int sampleRate, SampleFormat format,
                                  std::int64_t expectedFrames)
    : pending (file), channels (numChannels), sampleFormat (format)
{
    SF_INFO info {};
    info.channels = numChannels;
    info.samplerate = sampleRate;
    info.format = formatFor (format, numChannels, expectedFrames);
    handle.reset (sf_open (std::filesystem::absolute (file.path()).string().c_str(), SFM_WRITE, &info));

    if (handle == nullptr)
        fail (sf_strerror (nullptr));

    // The chunk of peaks holds the time of day. RF64 ignores this.
    sf_command (handle.get(), SFC_SET_ADD_PEAK_CHUNK, nullptr, SF_FALSE);
    sf_command (handle.get(), SFC_RF64_AUTO_DOWNGRADE, nullptr, SF_TRUE);
}

void AudioFileWriter::write (const float* interleaved, int numFrames)
{
    sf_count_t written = 0;

    if (sampleFormat == SampleFormat::float32)
    {
        written = sf_writef_float (handle.get(), interleaved, numFrames);
    }
    else
    {
        // libsndfile's own conversion cuts off where this rounds: its results lie half a step too low.
        steps.resize (static_cast<std::size_t> (numFrames) * static_cast<std::size_t> (channels));
        std::transform (interleaved, interleaved + steps.size(), steps.begin(),
                        [bits = bitsOf (sampleFormat)] (float sample) { return toSteps (sample, bits); });
        written = sf_writef_int (handle.get(), steps.data(), numFrames);
    }

    if (written != numFrames)
        fail (sf_strerror (handle.get()));

    framesWritten += numFrames;
}

void AudioFileWriter::finish()
{
    if (sf_close (handle.release()) != 0)
        fail ("the header could not be written");

    std::error_code error;
    const auto needed = framesWritten * channels * (bitsOf (sampleFormat) / 8);
    const auto size = std::filesystem::file_size (pending.path(), error);

    if (error || size <= static_cast<std::uintmax_t> (needed))
        fail ("not all of it could be written");
}

void AudioFileWriter::fail (const char* reason) const
{
    throw RenderError (ExitStatus::output, "cannot write \"" + pending.name().string() + "\": " + reason);
}
