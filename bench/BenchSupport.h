// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "support/Signals.h"

#include <benchmark/benchmark.h>

#include <juce_audio_basics/juce_audio_basics.h>

#include <chrono>

/** Figures that all benchmarks give: nanoseconds per frame (one sample of every channel at the host's rate), and the
    share of one core that this takes of real time at 48 kHz. Denormals are flushed as on the audio thread. */
namespace BenchSupport
{
constexpr double rate = 48000.0;
constexpr int block = 512;

/** Programme of some density: noise under a slow swell, so that detectors charge and recover. */
inline juce::AudioBuffer<float> programme (int channels, int samples, float amplitude = 0.5f)
{
    auto buffer = Signals::whiteNoise (channels, samples, 0xbeef, amplitude);

    for (int i = 0; i < samples; ++i)
    {
        const auto swell = static_cast<float> (0.55 + 0.45 * std::sin (2.0 * Signals::pi * 3.0 * i / samples));

        for (int c = 0; c < channels; ++c)
            buffer.setSample (c, i, buffer.getSample (c, i) * swell);
    }

    return buffer;
}

/** Runs `work` for each pass of the benchmark and reports; one pass is `frames` frames. */
template <typename Work>
void measure (benchmark::State& state, int frames, Work&& work)
{
    using Clock = std::chrono::steady_clock;
    auto passes = 0.0;
    const auto start = Clock::now();

    for (auto _ : state)
    {
        work();
        passes += 1.0;
    }

    const auto nanoseconds = std::chrono::duration<double, std::nano> (Clock::now() - start).count();
    const auto perFrame = nanoseconds / (passes * frames);
    state.counters["ns/frame"] = perFrame;
    state.counters["core_%"] = perFrame * rate * 1.0e-7;
}
} // namespace BenchSupport
