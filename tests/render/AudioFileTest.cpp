// SPDX-License-Identifier: GPL-3.0-or-later
// What no command line can show in reasonable time or at all: very long files, and files whose length nobody knows.
#include "render/AudioFile.h"
#include "render/RenderError.h"
#include "support/TemporaryFolder.h"

#include <gtest/gtest.h>

namespace
{
int containerFor (SampleFormat format, int channels, std::int64_t frames)
{
    return AudioFileWriter::formatFor (format, channels, frames) & SF_FORMAT_TYPEMASK;
}
} // namespace

TEST (AudioFileWriter, KeepsToWavBelowFourGigabytes)
{
    constexpr std::int64_t fourGigabytes = 0x100000000;

    // WAV with the longer description of samples, which floats want.
    EXPECT_EQ (containerFor (SampleFormat::float32, 2, 0), SF_FORMAT_WAVEX);
    EXPECT_EQ (containerFor (SampleFormat::float32, 2, fourGigabytes / 8 - 1000), SF_FORMAT_WAVEX);
    EXPECT_EQ (containerFor (SampleFormat::float32, 2, fourGigabytes / 8), SF_FORMAT_RF64);
    EXPECT_EQ (containerFor (SampleFormat::pcm24, 1, fourGigabytes / 3 - 4000), SF_FORMAT_WAV);
    EXPECT_EQ (containerFor (SampleFormat::pcm24, 1, fourGigabytes / 3), SF_FORMAT_RF64);
    EXPECT_EQ (containerFor (SampleFormat::pcm16, 2, fourGigabytes / 8), SF_FORMAT_WAV);
}

TEST (AudioFileWriter, IsReadyForAnyLengthWhenNobodyKnowsIt)
{
    EXPECT_EQ (containerFor (SampleFormat::pcm16, 1, -1), SF_FORMAT_RF64);
}

TEST (AudioFileWriter, MakesAWavOfAnUnknownLengthThatTurnsOutShort)
{
    const TemporaryFolder folder;
    const auto target = folder.path / "short.wav";
    const float samples[] = { 0.5f, -0.25f, 0.125f };

    {
        PendingFile pending (target, false);
        AudioFileWriter writer (pending, 1, 48000, SampleFormat::float32, -1);
        writer.write (samples, 3);
        writer.finish();
        pending.commit();
    }

    SF_INFO info {};
    const SoundFileHandle handle (sf_open (target.string().c_str(), SFM_READ, &info));
    ASSERT_NE (handle, nullptr);
    EXPECT_EQ (info.format & SF_FORMAT_TYPEMASK, SF_FORMAT_WAVEX);

    AudioFileReader reader (target);
    EXPECT_EQ (reader.numFrames(), 3);

    float back[4] {};
    EXPECT_EQ (reader.read (back, 4), 3);
    EXPECT_EQ (std::vector<float> (back, back + 3), std::vector<float> (samples, samples + 3));
    EXPECT_EQ (reader.read (back, 4), 0);
}
