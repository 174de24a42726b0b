// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "render/PendingFile.h"

#include <sndfile.h>

#include <cstdint>
#include <filesystem>
#include <memory>
#include <vector>

/** How samples are kept in a written file. */
enum class SampleFormat
{
    pcm16,
    pcm24,
    float32
};

struct SoundFileCloser
{
    void operator() (SNDFILE* handle) const noexcept { sf_close (handle); }
};

using SoundFileHandle = std::unique_ptr<SNDFILE, SoundFileCloser>;

/** Reads a WAV, AIFF or FLAC file of one or two channels from beginning to end.

    Shape    interleaved float; whole-number formats are scaled so that full scale is 1.
    Errors   RenderError with ExitStatus::input.
*/
class AudioFileReader
{
public:
    explicit AudioFileReader (const std::filesystem::path& file);

    int numChannels() const noexcept { return info.channels; }
    int sampleRate() const noexcept { return info.samplerate; }

    /** Frames that the file announces; -1 when it announces none, as a FLAC stream may. */
    std::int64_t numFrames() const noexcept { return info.frames == SF_COUNT_MAX ? -1 : info.frames; }

    /** Reads the next frames; returns how many, fewer than asked only at the end. An end before the announced one is
        an error. */
    int read (float* interleaved, int numFramesToRead);

private:
    std::filesystem::path name;
    SF_INFO info {};
    SoundFileHandle handle;
    std::int64_t framesRead = 0;
};

/** Writes a WAV file into a PendingFile. What needs more than four gigabytes becomes RF64.

    Whole-number formats round to the nearest step, with no dither, and hold overloads at full scale; a NaN becomes 0.
    Their scale is the reader's, so that a file which passes unprocessed comes out with the samples it had.

    A WAV file holds no date: the same samples make the same bytes. An RF64 file of floats does hold one, in a chunk
    of peaks that libsndfile always writes there.

    Errors   RenderError with ExitStatus::output.
*/
class AudioFileWriter
{
public:
    /** expectedFrames: how long the file will be, or -1 when nobody knows. */
    AudioFileWriter (const PendingFile& file, int numChannels, int sampleRate, SampleFormat format,
                     std::int64_t expectedFrames);

    void write (const float* interleaved, int numFrames);

    /** Closes the file and sees that all of it is there. */
    void finish();

    std::int64_t numFramesWritten() const noexcept { return framesWritten; }

    /** The libsndfile format of a file of that length, container and samples. */
    static int formatFor (SampleFormat format, int numChannels, std::int64_t expectedFrames) noexcept;

private:
    [[noreturn]] void fail (const char* reason) const;

    const PendingFile& pending;
    const int channels;
    const SampleFormat sampleFormat;
    SoundFileHandle handle;
    std::vector<int> steps; // whole-number samples of a call of write
    std::int64_t framesWritten = 0;
};
