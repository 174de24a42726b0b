// SPDX-License-Identifier: GPL-3.0-or-later
#include "render/LevelMeter.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace
{
constexpr auto unknown = std::numeric_limits<double>::quiet_NaN();
}

LevelMeter::LevelMeter (int numChannels, int sampleRate)
    : channels (numChannels),
      loudnessState (ebur128_init (static_cast<unsigned> (numChannels), static_cast<unsigned long> (sampleRate),
                                   EBUR128_MODE_I | EBUR128_MODE_SAMPLE_PEAK))
{
}

void LevelMeter::add (const float* interleaved, int numFrames)
{
    if (loudnessState != nullptr
        && ebur128_add_frames_float (loudnessState.get(), interleaved, static_cast<std::size_t> (numFrames))
               != EBUR128_SUCCESS)
        loudnessState.reset();

    const auto count = numFrames * channels;

    for (int i = 0; i < count; ++i)
        sumOfSquares += static_cast<double> (interleaved[i]) * static_cast<double> (interleaved[i]);

    numSamples += count;
}

double LevelMeter::peakDb() const noexcept
{
    auto peak = 0.0;

    for (int c = 0; c < channels; ++c)
    {
        auto ofChannel = 0.0;

        if (loudnessState == nullptr
            || ebur128_sample_peak (loudnessState.get(), static_cast<unsigned> (c), &ofChannel) != EBUR128_SUCCESS)
            return unknown;

        peak = std::max (peak, ofChannel);
    }

    return 20.0 * std::log10 (peak);
}

double LevelMeter::rmsDb() const noexcept
{
    return 10.0 * std::log10 (numSamples > 0 ? sumOfSquares / static_cast<double> (numSamples) : 0.0);
}

double LevelMeter::loudness() const noexcept
{
    auto loudness = unknown;

    if (loudnessState == nullptr || ebur128_loudness_global (loudnessState.get(), &loudness) != EBUR128_SUCCESS)
        return unknown;

    return loudness;
}
