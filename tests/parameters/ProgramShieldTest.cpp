// SPDX-License-Identifier: GPL-3.0-or-later
#include "ExpectedParameters.h"
#include "support/Followed.h"

#include <gtest/gtest.h>

#include <cstdint>

namespace
{
std::uint32_t nowMs = 0;
std::uint32_t readClock() noexcept { return nowMs; }
} // namespace

/** Hosts choose a program right after they restored a session: for half a second the session wins. */
class StateShield : public ::testing::Test
{
protected:
    StateShield()
    {
        nowMs = 100000;
        processor.millisecondCounter = readClock;
        processor.getStateInformation (session);
    }

    void restoreAt (std::uint32_t ms)
    {
        nowMs = ms;
        processor.setStateInformation (session.getData(), static_cast<int> (session.getSize()));
    }

    void chooseAt (std::uint32_t ms, int program)
    {
        nowMs = ms;
        processor.setCurrentProgram (program);
    }

    double lowThreshold() const { return processor.settingsSlots[0].bands[0].thresholdDb.target; }

    CorvaneQ7AudioProcessor processor;
    juce::MemoryBlock session; // the default program: Threshold -4 dB, and program 5 has -14 dB
};

TEST_F (StateShield, HoldsForHalfASecond)
{
    for (const auto ms : { 0u, 1u, 100u, 499u })
    {
        restoreAt (100000);
        const auto before = Expected::fieldsOf (processor.activeSettings());
        chooseAt (100000 + ms, 5);
        EXPECT_EQ (5, processor.getCurrentProgram()) << ms; // the number is taken all the same
        EXPECT_EQ (before, Expected::fieldsOf (processor.activeSettings())) << ms;
        processor.setCurrentProgram (0);
    }
}

TEST_F (StateShield, IsGoneAfterHalfASecond)
{
    for (const auto ms : { 500u, 501u, 600u, 3600000u })
    {
        restoreAt (100000);
        ASSERT_EQ (-4.0, lowThreshold());
        chooseAt (100000 + ms, 5);
        EXPECT_EQ (5, processor.getCurrentProgram());
        EXPECT_EQ (-14.0, lowThreshold()) << ms;
    }
}

TEST_F (StateShield, LoadsNothingLaterByItself)
{
    restoreAt (100000);
    chooseAt (100100, 5);
    nowMs = 200000;
    EXPECT_EQ (-4.0, lowThreshold());
    EXPECT_EQ (5, processor.getCurrentProgram());
    processor.setCurrentProgram (processor.getCurrentProgram());
    EXPECT_EQ (-14.0, lowThreshold());
}

TEST_F (StateShield, LimitsTheNumberWhileItHolds)
{
    restoreAt (100000);
    chooseAt (100010, 99);
    EXPECT_EQ (14, processor.getCurrentProgram());
    chooseAt (100020, -3);
    EXPECT_EQ (0, processor.getCurrentProgram());
}

TEST_F (StateShield, AppliesNothing)
{
    restoreAt (100000);
    processor.activeSettings().mix = 0.4; // would show if the settings were applied
    chooseAt (100001, 5);
    EXPECT_EQ (1.0, followed (processor).mixRamp.target);
}

TEST_F (StateShield, CountsOverTheWrapOfTheClock)
{
    restoreAt (0xffffff00u); // 256 ms before the wrap
    chooseAt (100, 5);
    EXPECT_EQ (-4.0, lowThreshold());
    chooseAt (243, 5); // 499 ms
    EXPECT_EQ (-4.0, lowThreshold());
    chooseAt (244, 5);
    EXPECT_EQ (-14.0, lowThreshold());
}

TEST_F (StateShield, HoldsForASessionRestoredAtTheMomentOfTheWrap)
{
    // The clock reads 0 once in 49.7 days: that is a time like any other.
    restoreAt (0);
    chooseAt (100, 5);
    EXPECT_EQ (5, processor.getCurrentProgram());
    EXPECT_EQ (-4.0, lowThreshold());
}

TEST_F (StateShield, IsNotThereInANewInstance)
{
    // A machine that has just started reads a small number.
    for (const auto ms : { 0u, 1u, 100u, 499u })
    {
        CorvaneQ7AudioProcessor fresh;
        fresh.millisecondCounter = readClock;
        nowMs = ms;
        fresh.setCurrentProgram (5);
        EXPECT_EQ (-14.0, fresh.activeSettings().bands[0].thresholdDb.target) << ms;
    }
}

TEST_F (StateShield, StartsAnewWithEveryRestore)
{
    restoreAt (100000);
    restoreAt (100400);
    chooseAt (100899, 5);
    EXPECT_EQ (-4.0, lowThreshold());
    chooseAt (100900, 5);
    EXPECT_EQ (-14.0, lowThreshold());
}

TEST_F (StateShield, StartsWithABlockThatIsNoSession)
{
    const char foreign[] = "this is no session of ours";
    const char header[] = { 0x56, 0x43, 0x32, 0x21, 1, 0, 0, 0 };
    const char noElement[] = { 0x56, 0x43, 0x32, 0x21, 1, 0, 0, 0, '<' };

    const std::pair<const void*, int> blocks[] = {
        { nullptr, 0 }, { foreign, 0 }, { foreign, sizeof foreign }, { header, 8 }, { noElement, 9 }
    };

    for (const auto& block : blocks)
    {
        chooseAt (nowMs + 10000, 0);
        processor.setStateInformation (block.first, block.second);
        chooseAt (nowMs + 499, 5);
        EXPECT_EQ (5, processor.getCurrentProgram());
        EXPECT_EQ (-4.0, lowThreshold()) << block.second;
        chooseAt (nowMs + 1, 5);
        EXPECT_EQ (-14.0, lowThreshold()) << block.second;
    }
}

TEST_F (StateShield, StartsWhenTheRestoreEnds)
{
    // The clock moves on while the controls are set, here by 50 ms each: the time counts from the end.
    juce::XmlElement element ("CQ7SETTINGS");
    juce::MemoryBlock block;
    juce::AudioProcessor::copyXmlToBinary (element, block);

    struct SlowHost : juce::AudioProcessorListener
    {
        void audioProcessorParameterChanged (juce::AudioProcessor*, int, float) override { nowMs += 50; }
        void audioProcessorChanged (juce::AudioProcessor*, const ChangeDetails&) override { nowMs += 50; }
    } slowHost;

    processor.activeSettings().link = true; // so that the host hears of the bands
    processor.addListener (&slowHost);
    const auto start = nowMs;
    processor.setStateInformation (block.getData(), static_cast<int> (block.getSize()));
    processor.removeListener (&slowHost);

    ASSERT_GE (nowMs - start, 54u * 50u);
    EXPECT_EQ (nowMs, processor.lastStateRestoreMs);
}

TEST_F (StateShield, AProgramTellsNoParameterAndForwardsNothing)
{
    // Program 6 has Link on itself, program 3 has three different bands.
    Expected::Listener listener (processor);
    processor.activeSettings().link = true;
    processor.setCurrentProgram (3);
    EXPECT_EQ (12.0, processor.activeSettings().bands[0].gainDb.target);
    EXPECT_EQ (3.0, processor.activeSettings().bands[1].gainDb.target);
    EXPECT_EQ (1.0, processor.activeSettings().bands[2].gainDb.target);
    EXPECT_FALSE (processor.activeSettings().link);

    processor.setCurrentProgram (6);
    EXPECT_TRUE (processor.activeSettings().link);
    processor.setCurrentProgram (3);
    EXPECT_EQ (1.0, processor.activeSettings().bands[2].gainDb.target);
    EXPECT_TRUE (listener.moves.empty());
}
