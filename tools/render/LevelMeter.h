// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <ebur128.h>

#include <cstdint>
#include <memory>

/** Measures how loud a piece is, as a whole.

    Shape    interleaved frames, any number a call.
    Units    dBFS and LUFS. Silence and an empty piece read minus infinity; what cannot be measured reads NaN.

    A single channel counts once in the loudness, so mono reads 3 dB below the same sound on two channels.
*/
class LevelMeter
{
public:
    LevelMeter (int numChannels, int sampleRate);

    void add (const float* interleaved, int numFrames);

    /** Largest sample. */
    double peakDb() const noexcept;

    /** Root mean square over all channels; a full-scale sine reads -3.01. */
    double rmsDb() const noexcept;

    /** Integrated loudness by EBU R 128. NaN where the rate is none that the measure is defined for. */
    double loudness() const noexcept;

private:
    struct Release
    {
        void operator() (ebur128_state* state) const noexcept { ebur128_destroy (&state); }
    };

    const int channels;
    std::unique_ptr<ebur128_state, Release> loudnessState;
    double sumOfSquares = 0.0;
    std::int64_t numSamples = 0;
};
