// SPDX-License-Identifier: GPL-3.0-or-later
// The way of control changes into the engine: none is lost, whoever makes it and whenever, and no filter is half set.
#include "parameters/ExpectedParameters.h"
#include "processor/CorvaneQ7AudioProcessor.h"
#include "settings/LatestValue.h"
#include "states/StateBlocks.h"
#include "support/Followed.h"

#include <gtest/gtest.h>

#include <array>
#include <atomic>
#include <cmath>
#include <functional>
#include <memory>
#include <random>
#include <thread>
#include <vector>

namespace
{
#if defined(__SANITIZE_THREAD__) || defined(__SANITIZE_ADDRESS__)
constexpr int changesInAll = 60000; // each costs some thirty times as much
#else
constexpr int changesInAll = 2000000;
#endif

constexpr double rate = 48000.0;
constexpr int longestBlock = 512, rampLength = 4800;

std::unique_ptr<CorvaneQ7AudioProcessor> makeRunning()
{
    auto processor = std::make_unique<CorvaneQ7AudioProcessor>();
    processor->setRateAndBufferSizeDetails (rate, longestBlock);
    processor->setNoiseSource (NoiseSource::held());
    processor->applySettings();
    processor->prepareToPlay (rate, longestBlock);
    return processor;
}

void play (CorvaneQ7AudioProcessor& processor, int numSamples)
{
    juce::AudioBuffer<float> buffer (2, numSamples);
    juce::MidiBuffer midi;
    buffer.clear();
    processor.processBlock (buffer, midi);
}

/** Blocks of 1 to 512 at full speed, for as long as somebody changes something. */
void playWhile (CorvaneQ7AudioProcessor& processor, const std::function<bool()>& goOn)
{
    std::mt19937 random (0xb10c);

    while (goOn())
        play (processor, 1 + static_cast<int> (random() % longestBlock));
}

/** At rest where it was sent. Ramps are not snapped: their steps add up to it but for rounding. */
template <typename Ramp>
void expectArrived (const char* what, double wanted, const Ramp& ramp)
{
    EXPECT_EQ (wanted, ramp.target) << what;
    EXPECT_EQ (0, ramp.remaining) << what;
    EXPECT_NEAR (wanted, ramp.current, 1.0e-9 * std::max (1.0, std::abs (wanted)) + 1.0e-6) << what;
}

void expectArrived (const char* what, const SVResponse& wanted, const SVResponse& filter)
{
    EXPECT_EQ (wanted.mix.target, filter.mix.target) << what;

    if (wanted.mix.target < 0.5)
        return; // a filter that is out keeps its last response, frozen on its way

    EXPECT_EQ (wanted.frequency, filter.frequency) << what;

    for (std::size_t i = 0; i < wanted.smoothers.size(); ++i)
        EXPECT_EQ (wanted.smoothers[i].target, filter.smoothers[i].target) << what;
}

void expectArrived (const char* what, const CrossoverResponse& wanted, const CrossoverResponse& filter)
{
    EXPECT_EQ (wanted.frequency, filter.frequency) << what;

    for (std::size_t i = 0; i < wanted.smoothers.size(); ++i)
        expectArrived (what, wanted.smoothers[i].target, filter.smoothers[i]);
}

/** Every value of the engine against the record that sounds. Nothing is prepared anew: the engine of another processor,
    built with the same settings, tells what they mean. */
void expectTheEngineIsTheRecord (CorvaneQ7AudioProcessor& processor)
{
    const auto& record = processor.activeSettings();
    const auto wanted = makeRunning();
    wanted->activeSettings() = record;
    wanted->activeSettings().calibrationGain = record.calibrationGain;
    wanted->applySettings();
    wanted->prepareToPlay (rate, longestBlock);

    expectArrived ("mix", wanted->mixRamp.target, processor.mixRamp);
    EXPECT_EQ (processor.activeSlot, processor.audible.slot);
    EXPECT_EQ (record.nuke, processor.audible.nuke);
    EXPECT_EQ (record.calibrationGain, processor.audible.calibrationGain);

    const auto& levels = processor.levels[processor.activeSlot];
    EXPECT_EQ (record.inLevelLinear.target, levels.in.target);
    EXPECT_EQ (record.outLevelLinear.target, levels.out.target);
    EXPECT_EQ (record.masterGainLinear.target, levels.master.target);

    if (processor.mixRamp.target > 0.0) // with no wet share nothing moves but the delay
    {
        expectArrived ("in level", record.inLevelLinear.target, levels.in);
        expectArrived ("out level", record.outLevelLinear.target, levels.out);
        expectArrived ("master", record.masterGainLinear.target, levels.master);
        expectArrived ("low split", wanted->lowSplit, processor.lowSplit);
        expectArrived ("high split", wanted->highSplit, processor.highSplit);
    }

    for (int b = 0; b < 3; ++b)
    {
        const auto& engine = processor.bandGroups[b].compressor;
        const auto& sheet = wanted->bandGroups[b].compressor;

        EXPECT_EQ (sheet.transferTable, engine.transferTable) << b;
        EXPECT_EQ (sheet.attackOhms, engine.attackOhms) << b;
        EXPECT_EQ (sheet.recoveryOhms, engine.recoveryOhms) << b;
        EXPECT_EQ (sheet.autoRecovery, engine.autoRecovery) << b;
        EXPECT_EQ (sheet.attackCoefficient, engine.attackCoefficient) << b;
        EXPECT_EQ (sheet.recoveryCoefficient, engine.recoveryCoefficient) << b;
        EXPECT_EQ (sheet.thresholdGain, engine.thresholdGain) << b;
        EXPECT_EQ (sheet.autoMakeup, engine.autoMakeup) << b;
        EXPECT_EQ (sheet.bandActive, engine.bandActive) << b;
        EXPECT_EQ (sheet.hpfHz, engine.hpfHz) << b;
        EXPECT_EQ (sheet.niveau, engine.niveau) << b;
        EXPECT_EQ (sheet.driveRamp.target, engine.driveRamp.target) << b;
        EXPECT_EQ (sheet.wetRamp.target, engine.wetRamp.target) << b;
        EXPECT_EQ (sheet.dryRamp.target, engine.dryRamp.target) << b;
        EXPECT_EQ (sheet.midSideRamp.target, engine.midSideRamp.target) << b;

        if (processor.mixRamp.target > 0.0)
        {
            expectArrived ("drive", sheet.driveRamp.target, engine.driveRamp);
            expectArrived ("wet", sheet.wetRamp.target, engine.wetRamp);
            expectArrived ("dry", sheet.dryRamp.target, engine.dryRamp);
        }

        expectArrived ("high-pass", sheet.highPass, engine.highPass);
        expectArrived ("low shelf", sheet.lowShelf, engine.lowShelf);
        expectArrived ("high shelf", sheet.highShelf, engine.highShelf);
    }
}

/** One thread's changes: controls at random, all in turn, and now and then a program, a slot or a copy. */
void change (CorvaneQ7AudioProcessor& processor, int times, std::uint32_t seed, bool choosesSlots)
{
    std::mt19937 random (seed);

    for (int i = 0; i < times; ++i)
    {
        if (choosesSlots && i % 1000 == 999)
        {
            switch (random() % 3)
            {
                case 0: processor.setCurrentProgram (static_cast<int> (random() % 15)); break;
                case 1: processor.selectSlot (static_cast<int> (random() % 2)); break;
                default: processor.copyToOtherSlot(); break;
            }
        }

        const auto x = static_cast<float> (random() >> 8) * 0x1p-24f;
        processor.setParameter (static_cast<int> (random() % Expected::numParameters), x);
    }
}
} // namespace

TEST (HandOver, LosesNoChangeOfThreeThreadsBesideBlocksOfAnyLength)
{
    const StateBlocks::StoredOptions options;
    constexpr int rounds = 20;

    // In rounds: each ends where the last changes fell, which is where one can be lost.
    for (std::uint32_t round = 0; round < rounds; ++round)
    {
        const auto processor = makeRunning();
        std::atomic<int> atWork { 3 };
        std::vector<std::thread> threads;

        for (std::uint32_t t = 0; t < 3; ++t)
            threads.emplace_back (
                [&, t]
                {
                    change (*processor, changesInAll / 3 / rounds, 100 * round + t, t == 0);
                    --atWork;
                });

        playWhile (*processor, [&] { return atWork.load() > 0; });

        for (auto& thread : threads)
            thread.join();

        for (int done = 0; done < 2 * rampLength; done += longestBlock)
            play (*processor, longestBlock);

        expectTheEngineIsTheRecord (*processor);
        ASSERT_FALSE (HasFailure()) << "round " << round;
    }
}

TEST (HandOver, LosesNoChangeOfOneLevelToggledFlatOut)
{
    // The narrowest place: one ramp that is set while it is advanced.
    const StateBlocks::StoredOptions options;

    for (int round = 0; round < 50; ++round)
    {
        const auto processor = makeRunning();
        std::atomic<bool> done { false };
        std::thread toggle (
            [&]
            {
                for (int i = 0; i < changesInAll / 1000; ++i)
                    processor->setParameter (Expected::outLevel, static_cast<float> ((i + round) % 7) / 7.0f);

                done = true;
            });

        playWhile (*processor, [&] { return ! done.load(); });
        toggle.join();

        for (int n = 0; n < 2 * rampLength; n += longestBlock)
            play (*processor, longestBlock);

        expectTheEngineIsTheRecord (*processor);
        ASSERT_FALSE (HasFailure()) << "round " << round;
    }
}

TEST (HandOver, NeverHalfSetsACrossoverWhereSlotsChange)
{
    const StateBlocks::StoredOptions options;
    const auto processor = makeRunning();
    processor->settingsSlots[0].lowXOverHz = 50.0;
    processor->settingsSlots[1].lowXOverHz = 5000.0;
    processor->settingsSlots[1].nuke = true;
    processor->applySettings();

    std::atomic<bool> done { false };
    std::thread chooser (
        [&]
        {
            for (int i = 0; i < changesInAll / 100; ++i)
                processor->selectSlot (i % 2);

            done = true;
        });

    auto halves = 0, seen = 0;

    while (! done.load())
    {
        processor->followSettings();
        const auto& low = processor->lowSplit;
        const auto slot = processor->audible.slot;
        halves += low.smoothers[0].target != 1.0 - low.smoothers[2].target ? 1 : 0;
        halves += low.frequency != (slot == 0 ? 50.0 : 5000.0) ? 1 : 0;
        halves += processor->audible.nuke != (slot == 1) ? 1 : 0;
        halves += processor->bandGroups[1].compressor.nuke != (slot == 1) ? 1 : 0;
        ++seen;
        play (*processor, 1);
    }

    chooser.join();
    EXPECT_GT (seen, 0);
    EXPECT_EQ (0, halves);
}

TEST (HandOver, IsFollowedByTheNextBlockWhenNobodyElseIsAtIt)
{
    const auto processor = makeRunning();
    processor->setParameter (Expected::outLevel, 1.0f);
    EXPECT_EQ (1.0, processor->levels[0].out.target);
    play (*processor, 1);
    EXPECT_NEAR (std::sqrt (10.0), processor->levels[0].out.target, 1.0e-12);
    EXPECT_EQ (rampLength - 1, processor->levels[0].out.remaining);
}

TEST (HandOver, IsPickedUpByAPrepareWithNoBlock)
{
    const auto processor = makeRunning();
    processor->setParameter (Expected::outLevel, 1.0f);
    processor->prepareToPlay (rate, longestBlock);
    EXPECT_NEAR (std::sqrt (10.0), processor->levels[0].out.current, 1.0e-12);
    EXPECT_EQ (0, processor->levels[0].out.remaining);
}

TEST (HandOver, ATargetSetAwayAndBackRestartsAWholeRamp)
{
    // From halfway there, as though the control had moved the ramp itself.
    const auto processor = makeRunning();
    processor->setParameter (Expected::mix, 0.5f);
    play (*processor, 400);
    ASSERT_EQ (rampLength - 400, processor->mixRamp.remaining);
    const auto reached = processor->mixRamp.current;

    processor->setParameter (Expected::mix, 0.5f);
    EXPECT_EQ (rampLength - 400, followed (*processor).mixRamp.remaining) << "the same target is no change";

    processor->setParameter (Expected::mix, 0.2f);
    processor->setParameter (Expected::mix, 0.5f);
    EXPECT_EQ (rampLength, followed (*processor).mixRamp.remaining);
    EXPECT_EQ (reached, processor->mixRamp.current);
}

TEST (HandOver, IsFollowedFromWhereTheRampsAreWhenABlockRanBeside)
{
    ControlHandOver handOver;
    EngineControls engine;
    engine.mixRamp.restAtTarget (100);
    handOver.restartFrom (engine);

    const auto plan = [] (double target)
    { return [target] (EngineControls& controls) { controls.mixRamp.setTarget (target); }; };
    const auto follow = [&]
    {
        const auto taken = handOver.takePlan (100);
        ASSERT_NE (nullptr, taken.controls);
        engine.mixRamp.follow (taken.controls->mixRamp, taken.exact);
    };

    handOver.planHeld (plan (1.0));
    follow();
    float values[40];
    engine.mixRamp.fill (values, 40);
    handOver.planHeld (plan (0.0)); // made before the block has told of its 40 steps
    handOver.blockEnds (40, [&] (EngineControls& state) { state.mixRamp = engine.mixRamp; });

    const auto reached = engine.mixRamp.current;
    follow();
    EXPECT_EQ (reached, engine.mixRamp.current) << "no jump back to where the plan began";
    EXPECT_EQ (0.0, engine.mixRamp.target);
    EXPECT_EQ (100, engine.mixRamp.remaining);

    // The next plan is made from what the block told, and is followed exactly.
    handOver.blockEnds (0, [&] (EngineControls& state) { state.mixRamp = engine.mixRamp; });
    handOver.planHeld (plan (0.75));
    const auto taken = handOver.takePlan (100);
    EXPECT_TRUE (taken.exact);
    EXPECT_EQ (reached, taken.controls->mixRamp.current);
}

TEST (LatestValue, IsWholeAndNeverOlderThanTheLastTaken)
{
    struct State
    {
        std::array<int, 64> values {};
    };

    LatestValue<State> latest;
    constexpr int last = changesInAll / 10;
    std::thread writer (
        [&]
        {
            for (int i = 1; i <= last; ++i)
            {
                latest.back().values.fill (i);
                latest.publish();
            }
        });

    auto torn = 0, older = 0, newest = 0;

    while (newest < last)
    {
        if (const auto* state = latest.take())
        {
            const auto first = state->values.front();
            torn +=
                std::all_of (state->values.begin(), state->values.end(), [&] (int v) { return v == first; }) ? 0 : 1;
            older += first <= newest ? 1 : 0;
            newest = first;
        }
    }

    writer.join();
    EXPECT_EQ (0, torn);
    EXPECT_EQ (0, older);
    EXPECT_EQ (nullptr, latest.take()) << "taken once";
}
