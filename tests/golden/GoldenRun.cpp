// SPDX-License-Identifier: GPL-3.0-or-later
#include "golden/GoldenRun.h"

#include "golden/GoldenHash.h"
#include "processor/NoiseStreams.h"

#include <cmath>
#include <cstdlib>
#include <limits>
#include <memory>
#include <random>

namespace
{
/** Draws from the C library's own generator. */
class LibraryNoise final : public NoiseSource
{
public:
    explicit LibraryNoise (unsigned seed) { std::srand (seed); }
    std::int32_t next() noexcept override { return static_cast<std::int32_t> (std::rand()); }
};

std::unique_ptr<NoiseSource> makeNoise (GoldenRun::Noise kind)
{
    switch (kind)
    {
        case GoldenRun::Noise::seeded: return std::make_unique<SeededNoise> (0x5eed);
        case GoldenRun::Noise::system: return std::make_unique<LibraryNoise> (7);
        default: return std::make_unique<ListedNoise> (std::vector<std::int32_t> { 1 << 30 });
    }
}

/** Made with whole numbers, sums and products alone, so that every machine makes the same samples. */
juce::AudioBuffer<float> makeInput (const GoldenRun& run)
{
    juce::AudioBuffer<float> buffer (run.channels, run.frames);
    std::mt19937 random (0x901d);

    for (int c = 0; c < run.channels; ++c)
    {
        auto phase = 0.13 * c;
        auto step = 0.011;

        for (int i = 0; i < run.frames; ++i)
        {
            const auto noise = static_cast<float> (static_cast<double> (random()) * 0x1p-31) - 1.0f;
            const auto inBurst = i % 1500 < 400;

            phase += step;
            phase -= phase >= 1.0 ? 1.0 : 0.0;
            step *= 0.99992;

            const auto triangle = static_cast<float> (phase < 0.5 ? 4.0 * phase - 1.0 : 3.0 - 4.0 * phase);
            const auto programme = 0.5f * triangle + (inBurst ? 0.4f : 0.02f) * noise;
            auto sample = programme;

            switch (run.input)
            {
                case GoldenRun::Input::programme: break;
                case GoldenRun::Input::silence: sample = 0.0f; break;
                case GoldenRun::Input::bursts: sample = inBurst ? 0.9f * noise : 0.0f; break;
                case GoldenRun::Input::quiet: sample = 1.0e-5f * noise; break;
                case GoldenRun::Input::overload: sample = 1000.0f * programme; break;
                case GoldenRun::Input::infinite:
                    if (i == 700 || i == 2100)
                        sample = (i == 700 ? 1.0f : -1.0f) * std::numeric_limits<float>::infinity();
                    break;
                case GoldenRun::Input::notANumber:
                    if (i == 700 && c == 0)
                        sample = std::numeric_limits<float>::quiet_NaN();
                    break;
                case GoldenRun::Input::negativeZero: sample = -0.0f; break;
                case GoldenRun::Input::denormal: sample = 1.0e-39f * noise; break;
                case GoldenRun::Input::huge: sample = 1.0e38f * noise; break;
                case GoldenRun::Input::impulse: sample = i == 100 ? 0.8f : 0.0f; break;
            }

            buffer.setSample (c, i, sample);
        }
    }

    return buffer;
}
} // namespace

GoldenResult GoldenRun::operator()() const
{
    constexpr int keptEvery = 7;

    CorvaneQ7AudioProcessor processor;
    const auto set = channels == 1 ? juce::AudioChannelSet::mono() : juce::AudioChannelSet::stereo();
    const auto source = makeNoise (noise);

    processor.setBusesLayout ({ { set }, { set } });
    processor.setRateAndBufferSizeDetails (rate, announced);
    processor.setNoiseSource (*source);
    processor.setOversampling (factor);
    before (processor);

    if (touched)
        processor.applySettings();

    processor.prepareToPlay (rate, announced);

    auto audio = makeInput (*this);
    juce::MidiBuffer midi;
    GoldenHash meters;

    for (int frame = 0, block = 0; frame < frames; ++block)
    {
        const auto length = blocks[static_cast<std::size_t> (block) % blocks.size()];
        const auto n = std::min (length, frames - frame);
        juce::AudioBuffer<float> piece (audio.getArrayOfWritePointers(), channels, frame, n);

        atBlock (processor, frame);

        if (bypassed (frame))
            processor.processBlockBypassed (piece, midi);
        else
            processor.processBlock (piece, midi);

        for (int b = 0; b < CorvaneQ7AudioProcessor::numBands; ++b)
        {
            meters.add (static_cast<double> (processor.activeSettings().level (b)));
            meters.add (static_cast<double> (processor.activeSettings().gainReduction (b)));
        }

        meters.add (processor.getLatencySamples());
        frame += n;
    }

    GoldenHash output;
    GoldenResult result;

    for (int i = 0; i < frames; ++i)
    {
        for (int c = 0; c < channels; ++c)
        {
            output.add (audio.getSample (c, i));

            if (sampled && i % keptEvery == 0)
                result.samples.push_back (audio.getSample (c, i));
        }
    }

    result.output = sampled ? 0 : output.value();
    result.meters = meters.value();
    return result;
}
