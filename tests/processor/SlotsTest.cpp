// SPDX-License-Identifier: GPL-3.0-or-later
#include "parameters/ExpectedParameters.h"
#include "support/Followed.h"

#include <gtest/gtest.h>

class SlotChoice : public ::testing::Test
{
protected:
    SlotChoice() { processor.applySettings(); }

    CorvaneQ7AudioProcessor processor;
    ChannelSettings& a = processor.settingsSlots[0];
    ChannelSettings& b = processor.settingsSlots[1];
};

TEST_F (SlotChoice, AStartsAudible)
{
    EXPECT_EQ (0, processor.activeSlot);
    EXPECT_EQ (&a, &processor.activeSettings());
}

TEST_F (SlotChoice, EveryControlShowsAndWritesTheChosenSlotAtOnce)
{
    for (int i = 0; i < Expected::numParameters; ++i)
        processor.setParameter (i, i == Expected::link ? 0.0f : 0.8f);

    const auto inA = Expected::valuesOf (processor);
    const auto fieldsOfB = Expected::fieldsOf (b);
    processor.selectSlot (1);

    for (const auto& expected : Expected::parameters)
        EXPECT_FLOAT_EQ (Expected::normalisedOf (expected.kind, fieldsOfB[static_cast<std::size_t> (expected.index)]),
                         processor.getParameter (expected.index))
            << expected.identifier;

    const auto fieldsOfA = Expected::fieldsOf (a);

    for (int i = 0; i < Expected::numParameters; ++i)
        processor.setParameter (i, i == Expected::link ? 0.0f : 0.2f);

    EXPECT_EQ (fieldsOfA, Expected::fieldsOf (a));
    EXPECT_NE (fieldsOfB, Expected::fieldsOf (b));

    processor.selectSlot (0);
    EXPECT_EQ (inA, Expected::valuesOf (processor));
}

TEST_F (SlotChoice, AChoiceIsAppliedAndThenToldOnce)
{
    b.mix = 0.25;
    b.bands[1].thresholdDb.target = 10.0;

    Expected::Listener listener (processor);
    listener.onChange = [&] (const auto&)
    {
        EXPECT_EQ (1, processor.activeSlot);
        EXPECT_EQ (0.25f, processor.getParameter (Expected::mix));
        EXPECT_EQ (0.25, followed (processor).mixRamp.target);
        EXPECT_NEAR (std::sqrt (10.0), followed (processor).bandGroups[1].compressor.thresholdGain, 1.0e-12); // 10 dB
    };

    processor.selectSlot (1);
    EXPECT_EQ (1u, listener.changes.size());
    EXPECT_TRUE (listener.moves.empty()); // many values moved at once: no control is told by itself
}

TEST_F (SlotChoice, EveryListenerHearsOfAChoice)
{
    Expected::Listener first (processor), second (processor);
    processor.selectSlot (1);
    processor.selectSlot (0);
    EXPECT_EQ (2u, first.changes.size());
    EXPECT_EQ (2u, second.changes.size());
    EXPECT_TRUE (first.changes[0].parameterInfoChanged); // the host reads all values again
}

TEST_F (SlotChoice, LinkForwardsNothingWhenASlotIsChosenOrCopied)
{
    a.link = b.link = true;
    b.bands[0].gainDb.target = 9.0;
    Expected::Listener listener (processor);

    processor.selectSlot (1);
    processor.copyToOtherSlot();
    EXPECT_TRUE (listener.moves.empty());
    EXPECT_EQ (9.0, a.bands[0].gainDb.target);
    EXPECT_EQ (2.0, a.bands[1].gainDb.target);
}

TEST_F (SlotChoice, MetersStayWithTheirSlot)
{
    double value = 0.125;

    for (auto* slot : { &a, &b })
        for (int band = 0; band < 3; ++band)
        {
            slot->level (band) = value += 0.0625;
            slot->gainReduction (band) = value += 0.0625;
        }

    processor.selectSlot (1);
    processor.copyToOtherSlot();
    processor.selectSlot (0);
    processor.copyToOtherSlot();

    value = 0.125;

    for (const auto* slot : { &a, &b })
        for (const double meter : { slot->lowLevel, slot->lowGainReduction, slot->midLevel, slot->midGainReduction,
                                    slot->highLevel, slot->highGainReduction })
            EXPECT_EQ (value += 0.0625, meter);
}

TEST_F (SlotChoice, EachHasItsOwnCalibration)
{
    processor.setCalibration (18.0);
    const auto of18 = 1.1523716865 * std::pow (10.0, 0.9);
    EXPECT_NEAR (of18, a.calibrationGain, 1.0e-14 * of18);
    EXPECT_EQ (14.5075, b.calibrationGain); // the record's own, until B is current when it changes
    EXPECT_NEAR (of18, followed (processor).bandGroups[0].compressor.calibrationGain, 1.0e-14 * of18);

    processor.selectSlot (1);
    EXPECT_EQ (14.5075, followed (processor).bandGroups[0].compressor.calibrationGain);
    processor.setCalibration (24.0);
    const auto of24 = 1.1523716865 * std::pow (10.0, 1.2);
    EXPECT_NEAR (of24, b.calibrationGain, 1.0e-14 * of24);
    EXPECT_NEAR (of18, a.calibrationGain, 1.0e-14 * of18);

    processor.copyToOtherSlot();
    EXPECT_NEAR (of18, a.calibrationGain, 1.0e-14 * of18);
    processor.selectSlot (0);
    EXPECT_NEAR (of18, followed (processor).bandGroups[0].compressor.calibrationGain, 1.0e-14 * of18);
}

TEST_F (SlotChoice, ACopyGoesToTheOtherSlotWhicheverIsAudible)
{
    for (const auto slot : { 0, 1 })
    {
        processor.selectSlot (slot);

        for (int i = 0; i < Expected::numParameters; ++i)
            processor.setParameter (i, i == Expected::link ? 0.0f : (slot == 0 ? 0.7f : 0.3f));

        const auto values = Expected::valuesOf (processor);
        auto& other = processor.settingsSlots[1 - slot];
        processor.copyToOtherSlot();
        EXPECT_EQ (slot, processor.activeSlot);
        EXPECT_EQ (values, Expected::valuesOf (processor));

        for (const auto& expected : Expected::parameters)
        {
            const auto here = Expected::fieldOf (processor.activeSettings(), expected.index);

            // Three decibel values come back from their gains, which costs a rounding or two.
            EXPECT_NEAR (here, Expected::fieldOf (other, expected.index), 1.0e-13 * std::max (1.0, std::abs (here)))
                << expected.identifier;
        }
    }
}

TEST_F (SlotChoice, ACopyAppliesAndTellsNothing)
{
    a.mix = 0.3;
    Expected::Listener listener (processor);
    processor.copyToOtherSlot();
    EXPECT_EQ (0.3, b.mix);
    EXPECT_EQ (1.0, followed (processor).mixRamp.target); // the other slot is not audible
    EXPECT_TRUE (listener.changes.empty());
    EXPECT_TRUE (listener.moves.empty());
}

TEST_F (SlotChoice, ACopyMovesTheOtherSlotOverItsRamps)
{
    processor.setParameter (Expected::inLevel, 1.0f);
    processor.setParameter (Expected::bypass, 1.0f);
    processor.copyToOtherSlot();

    EXPECT_NEAR (std::sqrt (10.0), b.inLevelLinear.target, 1.0e-14);
    EXPECT_EQ (1.0, b.bypass.target);

    processor.selectSlot (1);
    EXPECT_EQ (1.0, followed (processor).levels[1].in.current);
    EXPECT_EQ (100, processor.levels[1].in.remaining);
}

TEST_F (SlotChoice, RebindingAloneAppliesAndTellsNothing)
{
    b.mix = 0.6;
    Expected::Listener listener (processor);
    processor.activeSlot = 1;
    EXPECT_EQ (1.0f, processor.getParameter (Expected::mix)); // still bound to A
    processor.rebindParameters();
    EXPECT_EQ (0.6f, processor.getParameter (Expected::mix));
    EXPECT_EQ (1.0, followed (processor).mixRamp.target);
    EXPECT_TRUE (listener.changes.empty());
}

TEST_F (SlotChoice, AProgramGoesToTheAudibleSlot)
{
    processor.selectSlot (1);
    processor.setCurrentProgram (5);
    EXPECT_EQ (-14.0, b.bands[0].thresholdDb.target);
    EXPECT_EQ (-4.0, a.bands[0].thresholdDb.target);
}
