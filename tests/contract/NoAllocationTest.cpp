// SPDX-License-Identifier: GPL-3.0-or-later
// A block takes nothing from the heap and gives nothing back: the heap may lock, and a lock makes an audio thread late.
#include "support/AllocationGuard.h"

#include "processor/CorvaneQ7AudioProcessor.h"
#include "support/ProcessorHarness.h"
#include "support/Signals.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <memory>
#include <string>
#include <tuple>
#include <vector>

namespace
{
constexpr double rate = 48000.0;

/** Keeps the compiler from leaving out memory that nobody reads. */
void use (void* memory) { asm volatile("" : : "r"(memory) : "memory"); }
} // namespace

TEST (AllocationGuard, SeesTheRoadsToTheHeap)
{
    const AllocationGuard guard;

    auto* one = new int (1);
    use (one);
    delete one;
    EXPECT_EQ (1, guard.allocations());
    EXPECT_EQ (1, guard.releases());

    {
        std::vector<float> vector (100);
        use (vector.data());
    }

    EXPECT_EQ (2, guard.allocations());
    EXPECT_EQ (2, guard.releases());

    {
        juce::AudioBuffer<float> buffer (2, 100); // the framework's blocks come from its own library
        use (buffer.getWritePointer (0));
    }

    if (! AllocationGuard::seesMalloc)
        GTEST_SKIP() << "this system's malloc cannot be watched; what stands above was";

    EXPECT_EQ (3, guard.allocations());

    auto* block = std::malloc (10);
    use (block);
    block = std::realloc (block, 100000);
    use (block);
    std::free (block);
    auto* zeros = std::calloc (10, 10);
    use (zeros);
    std::free (zeros);
    EXPECT_EQ (6, guard.allocations());
}

TEST (AllocationGuard, CountsFromItsOwnStartAndNothingOutside)
{
    auto before = std::make_unique<int> (1);
    use (before.get());

    const AllocationGuard outer;
    auto within = std::make_unique<int> (2);
    use (within.get());

    {
        const AllocationGuard inner;
        EXPECT_EQ (0, inner.allocations());
        before.reset();
        EXPECT_EQ (1, inner.releases());
        EXPECT_EQ (0, inner.allocations());
    }

    EXPECT_EQ (1, outer.allocations());
}

namespace
{
class NoAllocation : public ::testing::TestWithParam<std::tuple<int, int>>
{
protected:
    const int channels = std::get<0> (GetParam());
    const int factor = std::get<1> (GetParam());

    /** The number of heap calls of a run in blocks of ever another length. */
    static long heapCalls (ProcessorHarness& harness, juce::AudioBuffer<float>& buffer, int rounds = 3)
    {
        const AllocationGuard guard;

        for (int round = 0; round < rounds; ++round)
            for (const auto n : { 256, 1, 17, 128, 255, 700, 64 }) // 700 is more than announced
            {
                float* pointers[2] { buffer.getWritePointer (0), buffer.getWritePointer (buffer.getNumChannels() - 1) };
                juce::AudioBuffer<float> piece (pointers, buffer.getNumChannels(), 0, n);
                harness.block (piece);
            }

        return guard.allocations() + guard.releases();
    }
};
} // namespace

TEST_P (NoAllocation, InBlocksOfVaryingLength)
{
    ProcessorHarness harness (channels, rate, 256, factor);
    auto noise = Signals::whiteNoise (channels, 700, 1);
    harness.run (noise, { 256 }); // the first block after a rebuild may still make room

    EXPECT_EQ (0, heapCalls (harness, noise));
}

TEST_P (NoAllocation, InTheFirstBlockAfterARebuild)
{
    // Granted, and not needed: room is made when the engine is built.
    ProcessorHarness harness (channels, rate, 256, factor);
    auto noise = Signals::whiteNoise (channels, 256, 2);

    const AllocationGuard guard;
    harness.block (noise);
    EXPECT_EQ (0, guard.allocations());
}

TEST_P (NoAllocation, WhileEverythingMoves)
{
    ProcessorHarness harness (channels, rate, 256, factor);
    auto noise = Signals::whiteNoise (channels, 700, 3);
    harness.run (noise, { 256 });

    // From here on every filter, ramp and crossfade is under way, and every tap runs.
    auto& settings = harness->activeSettings();
    settings.mix = 0.4;
    settings.nuke = true;
    settings.niveau = false;
    settings.hpfHz = 90.0;
    settings.lowXOverHz = 400.0;
    settings.highXOverHz = 2500.0;
    ChannelSettings::setDecibels (settings.inLevelDb, settings.inLevelLinear, 6.0);
    ChannelSettings::setDecibels (settings.outLevelDb, settings.outLevelLinear, -6.0);
    ChannelSettings::setDecibels (settings.masterGainDb, settings.masterGainLinear, 3.0);

    for (int b = 0; b < 3; ++b)
    {
        settings.bands[b].meter = b;
        settings.bands[b].midSide = 0.5 * b;
        settings.bands[b].gainDb.setTarget (b == 0 ? -1.0 : 4.0);
        settings.bands[b].solo = b == 1;
    }

    {
        const AllocationGuard guard;
        harness->applySettings();
        EXPECT_EQ (0, guard.allocations() + guard.releases()) << "hosts may move a control on the audio thread";
    }

    EXPECT_EQ (0, heapCalls (harness, noise));
}

TEST_P (NoAllocation, InAProgramChange)
{
    ProcessorHarness harness (channels, rate, 256, factor);
    auto noise = Signals::whiteNoise (channels, 256, 4);
    harness.block (noise);

    const AllocationGuard guard;

    for (int program = 0; program < 15; ++program)
    {
        harness->setCurrentProgram (program);
        harness.block (noise);
    }

    EXPECT_EQ (0, guard.allocations() + guard.releases());
}

TEST_P (NoAllocation, WhenDryOrBypassed)
{
    ProcessorHarness harness (channels, rate, 256, factor, [] (ChannelSettings& settings) { settings.mix = 0.0; });
    auto noise = Signals::whiteNoise (channels, 700, 5);

    EXPECT_EQ (0, heapCalls (harness, noise));

    const AllocationGuard guard;
    harness->processBlockBypassed (noise, harness.midi);
    EXPECT_EQ (0, guard.allocations() + guard.releases());
}

INSTANTIATE_TEST_SUITE_P (ChannelsAndFactors, NoAllocation,
                          ::testing::Combine (::testing::Values (1, 2), ::testing::Values (1, 2, 3, 16)),
                          [] (const auto& setting)
                          {
                              return std::string (std::get<0> (setting.param) == 1 ? "Mono" : "Stereo") + "Factor"
                                     + std::to_string (std::get<1> (setting.param));
                          });

TEST (NoAllocationAtAFactorChange, OnlyTheBlockThatRebuildsAllocates)
{
    ProcessorHarness harness (2, rate, 128, 1);
    auto noise = Signals::whiteNoise (2, 128, 6);
    harness.block (noise);
    harness->setOversampling (4);

    {
        const AllocationGuard guard;
        harness.block (noise);
        EXPECT_GT (guard.allocations(), 0) << "the price of a change made by hand: the engine is built anew";
    }

    const AllocationGuard guard;

    for (int i = 0; i < 5; ++i)
        harness.block (noise);

    EXPECT_EQ (0, guard.allocations() + guard.releases());
}
