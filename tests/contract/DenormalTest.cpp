// SPDX-License-Identifier: GPL-3.0-or-later
// Denormals cost an audio thread a hundred times the time of a number: they are flushed while a block runs, and the
// host's thread gets its mode back afterwards.
#include "processor/CorvaneQ7AudioProcessor.h"
#include "support/Matchers.h"
#include "support/ProcessorHarness.h"
#include "support/Signals.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>

#if defined(__x86_64__) || defined(__i386__)
#include <xmmintrin.h>

namespace
{
constexpr unsigned flushBits = 0x8040; // flush-to-zero and denormals-are-zero
constexpr unsigned stickyBits = 0x3f;  // exceptions that were seen: any computation may set these

/** Looks at the thread's mode from within a block. */
class ModeProbe : public NoiseSource
{
public:
    std::int32_t next() noexcept override
    {
        seen = _mm_getcsr();
        ++draws;
        return 1 << 30;
    }

    unsigned seen = 0;
    int draws = 0;
};

/** Sets the thread's mode for a test and puts the old one back. */
class Mode
{
public:
    explicit Mode (unsigned bits) : before (_mm_getcsr()) { _mm_setcsr ((before & ~flushBits) | bits); }
    ~Mode() { _mm_setcsr (before); }

private:
    const unsigned before;
};
} // namespace

TEST (Denormals, AreFlushedWithinABlockAndTheModeIsRestored)
{
    for (const auto bits : { 0x0u, 0x8000u, 0x40u, flushBits })
    {
        ModeProbe probe;
        ProcessorHarness harness (1, 44100.0, 64, 2);
        harness->setNoiseSource (probe);
        auto buffer = Signals::whiteNoise (1, 64, 1);

        const Mode mode (bits);
        const auto before = _mm_getcsr();
        harness.block (buffer);
        const auto after = _mm_getcsr();

        EXPECT_EQ (64, probe.draws);
        EXPECT_EQ (flushBits, probe.seen & flushBits);
        EXPECT_EQ (before & ~stickyBits, after & ~stickyBits) << bits;
    }
}

TEST (Denormals, TheModeIsRestoredOnEveryWayOutOfABlock)
{
    ProcessorHarness harness (2, 44100.0, 64, 1);
    CorvaneQ7AudioProcessor unprepared;
    juce::AudioBuffer<float> empty (2, 0);
    auto buffer = Signals::whiteNoise (2, 64, 1);
    juce::MidiBuffer midi;

    const Mode mode (0);
    const auto before = _mm_getcsr() & ~stickyBits;

    harness.block (empty);
    EXPECT_EQ (before, _mm_getcsr() & ~stickyBits);

    unprepared.processBlock (buffer, midi);
    EXPECT_EQ (before, _mm_getcsr() & ~stickyBits);

    harness->processBlockBypassed (buffer, midi);
    EXPECT_EQ (before, _mm_getcsr() & ~stickyBits);

    harness->reconfiguring = true;
    harness.block (buffer);
    EXPECT_EQ (before, _mm_getcsr() & ~stickyBits);
    harness->reconfiguring = false;

    harness->setOversampling (2);
    harness.block (buffer);
    EXPECT_EQ (before, _mm_getcsr() & ~stickyBits);
}

TEST (Denormals, TheHostsModeDoesNotChangeTheSound)
{
    // A long fade into silence leads every filter through the denormals.
    auto input = Signals::whiteNoise (1, 8000, 3, 0.5f);

    for (int i = 0; i < 8000; ++i)
        input.setSample (0, i, input.getSample (0, i) * std::pow (10.0f, static_cast<float> (-i) / 150.0f));

    const auto run = [&] (unsigned bits)
    {
        ProcessorHarness harness (1, 44100.0, 256, 2);
        const Mode mode (bits);
        return harness.run (input, { 256 });
    };

    EXPECT_TRUE (sameBits (run (flushBits), run (0)));
}
#endif

TEST (Denormals, ABlockOfDenormalsIsSilence)
{
    ProcessorHarness denormals (1, 44100.0, 256, 1), silence (1, 44100.0, 256, 1);
    auto tiny = Signals::silence (1, 2560);

    for (int i = 0; i < 2560; ++i)
        tiny.setSample (0, i, i % 2 == 0 ? 1.0e-40f : -1.0e-41f);

    // Sign apart, a flushed input is 0.
    EXPECT_TRUE (equalWithin (silence.run (Signals::silence (1, 2560), { 256 }), denormals.run (tiny, { 256 }), 0.0f));
}
