// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <juce_audio_basics/juce_audio_basics.h>

#include <cmath>
#include <cstdint>
#include <random>

/** Test signals and what is measured of them. Amplitudes are linear peaks, frequencies and rates in Hz. */
namespace Signals
{
constexpr double pi = 3.141592653589793;

/** Uniform noise in -1 to 1 times the amplitude. The same seed gives the same samples on every machine. */
inline juce::AudioBuffer<float> whiteNoise (int channels, int samples, std::uint32_t seed, float amplitude = 1.0f)
{
    juce::AudioBuffer<float> buffer (channels, samples);
    std::mt19937 random (seed);

    for (int c = 0; c < channels; ++c)
        for (int i = 0; i < samples; ++i)
            buffer.setSample (c, i, amplitude * (static_cast<float> (random() * 0x1p-31) - 1.0f));

    return buffer;
}

inline juce::AudioBuffer<float> sine (int channels, int samples, double rate, double frequency, double amplitude)
{
    juce::AudioBuffer<float> buffer (channels, samples);

    for (int i = 0; i < samples; ++i)
    {
        const auto value = static_cast<float> (amplitude * std::sin (2.0 * pi * frequency * i / rate));

        for (int c = 0; c < channels; ++c)
            buffer.setSample (c, i, value);
    }

    return buffer;
}

inline juce::AudioBuffer<float> silence (int channels, int samples)
{
    juce::AudioBuffer<float> buffer (channels, samples);
    buffer.clear();
    buffer.setNotClear();
    return buffer;
}

inline juce::AudioBuffer<float> impulse (int channels, int samples, int position, float amplitude = 1.0f)
{
    auto buffer = silence (channels, samples);

    for (int c = 0; c < channels; ++c)
        buffer.setSample (c, position, amplitude);

    return buffer;
}

inline double toDb (double linear) { return 20.0 * std::log10 (linear); }
inline double fromDb (double decibels) { return std::pow (10.0, decibels / 20.0); }

/** Root mean square of samples from `begin` up to `end`. */
inline double rms (const juce::AudioBuffer<float>& buffer, int channel, int begin, int end)
{
    auto sum = 0.0;

    for (int i = begin; i < end; ++i)
        sum += static_cast<double> (buffer.getSample (channel, i)) * buffer.getSample (channel, i);

    return std::sqrt (sum / (end - begin));
}

/** Amplitude of one frequency in a stretch of samples, by correlation; the stretch should hold whole periods. */
inline double amplitudeAt (const float* samples, int n, double rate, double frequency)
{
    auto re = 0.0, im = 0.0;

    for (int i = 0; i < n; ++i)
    {
        const auto phase = 2.0 * pi * frequency * i / rate;
        re += samples[i] * std::cos (phase);
        im += samples[i] * std::sin (phase);
    }

    return 2.0 * std::sqrt (re * re + im * im) / n;
}

inline bool allFinite (const juce::AudioBuffer<float>& buffer)
{
    for (int c = 0; c < buffer.getNumChannels(); ++c)
        for (int i = 0; i < buffer.getNumSamples(); ++i)
            if (! std::isfinite (buffer.getSample (c, i)))
                return false;

    return true;
}
} // namespace Signals
