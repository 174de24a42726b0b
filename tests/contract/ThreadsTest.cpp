// SPDX-License-Identifier: GPL-3.0-or-later
// Hosts call from several threads at once, with nothing between them: the sound goes on.
#include "parameters/ExpectedParameters.h"
#include "states/StateBlocks.h"
#include "support/Signals.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <initializer_list>
#include <random>
#include <thread>

namespace
{
#if defined(__SANITIZE_THREAD__) || defined(__SANITIZE_ADDRESS__)
constexpr int share = 10; // of the work, under a sanitizer
#else
constexpr int share = 1;
#endif

constexpr int blockLength = 128;

/** The loudest that the controls allow is about 60: rails of 24 over a calibration of 7, +20 dB and +10 dB, and the
    dry signal. A gain whose ramp runs away leaves this within a few blocks. */
constexpr float loudest = 1000.0f;

/** Does a job a number of times, whatever the machine's load. */
class Worker
{
public:
    template <typename Job>
    Worker (int times, Job job)
        : thread (
            [this, times, job]() mutable
            {
                for (int i = 0; i < times; ++i)
                {
                    job();
                    std::this_thread::yield();
                }

                done = true;
            })
    {
    }

    ~Worker() { thread.join(); }

    std::atomic<bool> done { false };

private:
    std::thread thread; // last: it uses the flag
};

using Workers = std::initializer_list<const Worker*>;

bool allDone (Workers workers)
{
    return std::all_of (workers.begin(), workers.end(), [] (const Worker* worker) { return worker->done.load(); });
}

struct Outcome
{
    int blocks = 0, notFinite = 0, tooLoud = 0, silent = 0;
    float peak = 0.0f;
};

/** The audio thread: blocks of a tone until all others are done. Random lengths, so that pieces end anywhere. */
Outcome play (CorvaneQ7AudioProcessor& processor, Workers workers)
{
    constexpr int fewestBlocks = 200;

    Outcome outcome;
    juce::MidiBuffer midi;
    std::mt19937 random (0xa0d10u);
    auto phase = 0;

    while (outcome.blocks < fewestBlocks || ! allDone (workers))
    {
        const auto n = 1 + static_cast<int> (random() % (2 * blockLength)); // up to twice what was announced
        juce::AudioBuffer<float> buffer (2, n);

        for (int i = 0; i < n; ++i, ++phase)
            for (int c = 0; c < 2; ++c)
                buffer.setSample (c, i, 0.25f * static_cast<float> (std::sin (0.05 * phase + c)));

        processor.processBlock (buffer, midi);
        ++outcome.blocks;
        auto blockPeak = 0.0f;

        for (int c = 0; c < 2; ++c)
        {
            for (int i = 0; i < n; ++i)
            {
                const auto sample = buffer.getSample (c, i);
                outcome.notFinite += std::isfinite (sample) ? 0 : 1;
                outcome.tooLoud += std::abs (sample) > loudest ? 1 : 0;
                blockPeak = std::max (blockPeak, std::abs (sample));
            }
        }

        outcome.silent += n > 64 && blockPeak < 1.0e-6f ? 1 : 0;
        outcome.peak = std::max (outcome.peak, blockPeak);
    }

    return outcome;
}

void expectSoundWentOn (const Outcome& outcome)
{
    EXPECT_EQ (0, outcome.notFinite);
    EXPECT_EQ (0, outcome.tooLoud) << "peak " << outcome.peak;
    EXPECT_GT (outcome.peak, 0.01f);

    // Blocks are silent where no band sounds, or for the 52 samples after a rebuild; most are not.
    EXPECT_LT (outcome.silent, outcome.blocks / 2);
}

/** After all threads have ended, a restart with known settings sounds as ever. */
void expectHealthy (CorvaneQ7AudioProcessor& processor)
{
    processor.selectSlot (0);
    processor.setOversampling (1);
    processor.millisecondCounter = []() noexcept -> std::uint32_t { return 1000000; };
    processor.lastStateRestoreMs = 1;
    processor.setCurrentProgram (0);
    processor.setCalibration (22.0);
    processor.prepareToPlay (48000.0, blockLength);

    auto buffer = Signals::sine (2, blockLength, 48000.0, 1000.0, 0.1);
    juce::MidiBuffer midi;

    for (int block = 0; block < 100; ++block) // 0.27 s: over all ramps
    {
        buffer = Signals::sine (2, blockLength, 48000.0, 1500.0, 0.1); // four periods a block
        processor.processBlock (buffer, midi);
    }

    EXPECT_TRUE (Signals::allFinite (buffer));
    EXPECT_GT (Signals::rms (buffer, 0, 0, blockLength), 0.02);
    EXPECT_LT (Signals::rms (buffer, 0, 0, blockLength), 0.5);
}

std::unique_ptr<CorvaneQ7AudioProcessor> makeRunning()
{
    auto processor = std::make_unique<CorvaneQ7AudioProcessor>();
    processor->setRateAndBufferSizeDetails (48000.0, blockLength);
    processor->applySettings();
    processor->prepareToPlay (48000.0, blockLength);
    return processor;
}

/** Automation of every control in turn, as a host's thread does it. Bypass and Solo are left out in half of the
    turns, so that there is something to hear. */
auto automation (CorvaneQ7AudioProcessor& processor, std::uint32_t seed)
{
    return [&processor, random = std::mt19937 (seed), index = 0]() mutable
    {
        index = (index + 1) % Expected::numParameters;
        const auto x = static_cast<float> (random() >> 8) * 0x1p-24f;
        const auto silences = index == Expected::bypass || (index < 27 && index % 9 == 2);
        processor.getParameters()[index]->setValueNotifyingHost (silences && (random() & 1u) != 0 ? 0.0f : x);
    };
}
} // namespace

TEST (Threads, AutomateFromTwoWhileTheSoundRuns)
{
    const StateBlocks::StoredOptions options;
    const auto processor = makeRunning();
    Outcome outcome;
    {
        const Worker first (20000 / share, automation (*processor, 1));
        const Worker second (20000 / share, automation (*processor, 2));
        outcome = play (*processor, { &first, &second });
    }
    expectSoundWentOn (outcome);
    expectHealthy (*processor);
}

TEST (Threads, AutomateSwitchAndRestoreWhileTheSoundRuns)
{
    const StateBlocks::StoredOptions options;
    const auto processor = makeRunning();

    // Sessions to restore: one of each program, with factors and calibrations of their own.
    std::vector<std::string> sessions;
    {
        CorvaneQ7AudioProcessor source;

        for (int i = 0; i < 15; ++i)
        {
            source.setCurrentProgram (i);
            source.setCalibration (16.0 + i % 9);
            source.setOversampling (i % 3 == 2 ? 2 : 1);
            sessions.push_back (StateBlocks::saved (source));
        }
    }

    Outcome outcome;
    {
        const Worker first (20000 / share, automation (*processor, 3));
        const Worker second (20000 / share, automation (*processor, 4));
        const Worker third (240 / share,
                            [&, random = std::mt19937 (5), turn = 0]() mutable
                            {
                                switch (turn++ % 6)
                                {
                                    case 0: processor->setCurrentProgram (static_cast<int> (random() % 15)); break;
                                    case 1: processor->selectSlot (static_cast<int> (random() % 2)); break;
                                    case 2: processor->copyToOtherSlot(); break;
                                    case 3:
                                        processor->setOversampling (1 << (random() % 3));
                                        std::this_thread::sleep_for (std::chrono::milliseconds (5));
                                        break;
                                    case 4:
                                        StateBlocks::restore (*processor, sessions[random() % sessions.size()]);
                                        std::this_thread::sleep_for (std::chrono::milliseconds (5));
                                        break;
                                    default: StateBlocks::saved (*processor); break;
                                }
                            });
        outcome = play (*processor, { &first, &second, &third });
    }
    expectSoundWentOn (outcome);
    expectHealthy (*processor);
}

TEST (Threads, ToggleOneLevelWhileItsRampRuns)
{
    // The hardest case of a ramp that is set on one thread and advanced on another: back to where it stands, and away.
    const StateBlocks::StoredOptions options;
    const auto processor = makeRunning();
    Outcome outcome;
    {
        const Worker toggle (20000 / share,
                             [&, on = false]() mutable
                             {
                                 on = ! on;
                                 processor->setParameter (Expected::outLevel, on ? 1.0f : 0.5f);
                                 processor->setParameter (Expected::inLevel, on ? 0.5f : 0.0f);
                                 processor->setParameter (Expected::mix, on ? 1.0f : 0.0f);
                             });
        outcome = play (*processor, { &toggle });
    }
    expectSoundWentOn (outcome);
    expectHealthy (*processor);
}
