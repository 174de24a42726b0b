// SPDX-License-Identifier: GPL-3.0-or-later
#include "ExpectedParameters.h"
#include "support/Followed.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <thread>
#include <utility>

namespace
{
using Expected::Kind;
using Moves = std::vector<std::pair<int, float>>;

/** The other two bands' indices of the same control, lowest first, typed out rather than computed from the code. */
Moves movesOf (int index, float x)
{
    if (index < 9)
        return { { index + 9, x }, { index + 18, x }, { index, x } };

    if (index < 18)
        return { { index - 9, x }, { index + 9, x }, { index, x } };

    return { { index - 18, x }, { index - 9, x }, { index, x } };
}

/** A value that no band holds at the start, whatever the control. */
constexpr float moved = 0.05f, movedSwitch = 0.95f;

float targetFor (const Expected::Parameter& expected)
{
    return expected.kind == Kind::onOff && expected.index % 9 == 2 ? movedSwitch : moved;
}
} // namespace

/** One of the 27 controls of the bands. */
class Link : public ::testing::TestWithParam<int>
{
protected:
    double field (int control) const { return Expected::fieldOf (processor.settingsSlots[0], control); }

    CorvaneQ7AudioProcessor processor;
    ChannelSettings& record = processor.activeSettings();
    const int index = GetParam();
    const Expected::Parameter& expected = Expected::parameters[index];
    const float x = targetFor (expected);
    const double value = Expected::valueAt (expected.kind, x);
    juce::AudioProcessorParameter& parameter = *processor.getParameters()[index];
};

TEST_P (Link, MovesBothSiblingsFirstAndTellsEachOnce)
{
    record.link = true;
    Expected::Listener listener (processor);
    parameter.setValueNotifyingHost (x);

    EXPECT_EQ (movesOf (index, x), listener.moves);
    EXPECT_TRUE (listener.changes.empty());

    for (const auto& move : movesOf (index, x))
        EXPECT_EQ (value, field (move.first));
}

TEST_P (Link, TellsTheSiblingsAloneWhenTheControlItselfIsSetSilently)
{
    record.link = true;
    Expected::Listener listener (processor);
    processor.setParameter (index, x);

    auto wanted = movesOf (index, x);
    wanted.pop_back();
    EXPECT_EQ (wanted, listener.moves);
    EXPECT_EQ (value, field (index));
}

TEST_P (Link, HasWrittenWhatItTellsAndNothingFurther)
{
    record.link = true;
    const auto start = field (index);
    ASSERT_NE (start, value);

    const auto wanted = movesOf (index, x);
    Expected::Listener listener (processor);
    std::size_t heard = 0;

    listener.onMove = [&] (int, float)
    {
        ++heard;

        // The control itself was written before anything was forwarded, then one sibling after the other.
        EXPECT_EQ (value, field (index));
        EXPECT_EQ (value, field (wanted[0].first));
        EXPECT_EQ (heard >= 2 ? value : start, field (wanted[1].first));
    };

    parameter.setValueNotifyingHost (x);
    EXPECT_EQ (3u, heard);
}

TEST_P (Link, WhenOffForwardsNothing)
{
    Expected::Listener listener (processor);
    auto before = Expected::fieldsOf (record);
    parameter.setValueNotifyingHost (x);

    before[static_cast<std::size_t> (index)] = value;
    EXPECT_EQ (before, Expected::fieldsOf (record));
    EXPECT_EQ ((Moves { { index, x } }), listener.moves);
}

TEST_P (Link, TurnedOffBetweenTheSiblingsLeavesTheSecondAlone)
{
    record.link = true;
    const auto start = field (index);
    const auto wanted = movesOf (index, x);

    Expected::Listener listener (processor);
    listener.onMove = [&] (int told, float)
    {
        if (told == wanted[0].first)
            record.link = false;
    };

    parameter.setValueNotifyingHost (x);

    EXPECT_EQ (value, field (index));
    EXPECT_EQ (value, field (wanted[0].first));
    EXPECT_EQ (start, field (wanted[1].first));
    EXPECT_EQ ((Moves { wanted[0], wanted[2] }), listener.moves);
}

TEST_P (Link, AnEchoWhileItForwardsGoesNoFurther)
{
    // Hosts send back what they hear, within the call that tells them.
    record.link = true;
    Expected::Listener listener (processor);
    std::size_t heard = 0;

    listener.onMove = [&] (int told, float told_x)
    {
        if (++heard <= 2)
            processor.setParameter (told, told_x);
    };

    parameter.setValueNotifyingHost (x);
    EXPECT_EQ (movesOf (index, x), listener.moves);
}

TEST_P (Link, AnotherThreadsForwardDoesNotStopOnesOwn)
{
    record.link = true;
    Expected::Listener listener (processor);
    const auto other = index / 9 * 9 + (index % 9 == 4 ? 6 : 4); // Gain of the same band, or Threshold
    auto forwarding = false;

    listener.onMove = [&] (int, float)
    {
        if (std::exchange (forwarding, true))
            return;

        // While this thread forwards, another moves a control of its own.
        std::thread ([&] { processor.setParameter (other, 0.9f); }).join();
    };

    parameter.setValueNotifyingHost (x);

    const auto gain = Expected::fieldOf (record, other);

    ASSERT_EQ (value, field (index));

    for (const auto& move : movesOf (other, 0.9f))
        EXPECT_EQ (gain, Expected::fieldOf (record, move.first)) << move.first;
}

INSTANTIATE_TEST_SUITE_P (BandControls, Link, ::testing::Range (0, 27),
                          [] (const auto& row) { return std::string (Expected::parameters[row.param].identifier); });

TEST (LinkedBands, AreInTheEngineWhenTheHostHearsOfThem)
{
    CorvaneQ7AudioProcessor processor;
    processor.applySettings();
    processor.activeSettings().link = true;

    // The detector's gain is 20 dB above 1 less the threshold: -4 dB at the start, +10 dB after the move.
    const auto before = std::pow (10.0, 24.0 / 20.0), after = std::pow (10.0, 10.0 / 20.0);
    const auto within = 1.0e-12; // of two powers in double
    const auto gainOf = [&] (int band) { return followed (processor).bandGroups[band].compressor.thresholdGain; };

    Expected::Listener listener (processor);
    auto heard = 0;
    listener.onMove = [&] (int, float)
    {
        ++heard;
        EXPECT_NEAR (after, gainOf (0), within);
        EXPECT_NEAR (after, gainOf (1), within); // the control that was moved: written first, so applied with it
        EXPECT_NEAR (heard == 1 ? before : after, gainOf (2), within);
    };

    processor.setParameterNotifyingHost (Expected::midThreshold, 1.0f);
    EXPECT_EQ (3, heard);
}

TEST (LinkedBands, GetTheSameNormalisedValue)
{
    CorvaneQ7AudioProcessor processor;
    processor.activeSettings().link = true;
    processor.setParameter (Expected::highGain, 0.713f);

    for (const auto index : { Expected::lowGain, Expected::midGain, Expected::highGain })
        EXPECT_EQ (std::floor (21.0 * 0.713 - 1.0 + 0.5), Expected::fieldOf (processor.activeSettings(), index));
}

TEST (LinkedBands, LinkItselfForwardsAndCopiesNothing)
{
    CorvaneQ7AudioProcessor processor;
    auto& record = processor.activeSettings();
    processor.setParameter (Expected::lowGain, 1.0f);
    processor.setParameter (Expected::midThreshold, 0.0f);
    processor.setParameter (20, 1.0f);

    auto wanted = Expected::fieldsOf (record);
    wanted[Expected::link] = 1.0;

    Expected::Listener listener (processor);
    processor.setParameterNotifyingHost (Expected::link, 1.0f);
    EXPECT_EQ (wanted, Expected::fieldsOf (record));
    EXPECT_EQ ((Moves { { Expected::link, 1.0f } }), listener.moves);

    processor.setParameterNotifyingHost (Expected::link, 0.0f);
    wanted[Expected::link] = 0.0;
    EXPECT_EQ (wanted, Expected::fieldsOf (record));
    EXPECT_EQ (2u, listener.moves.size());
}

TEST (LinkedBands, GlobalControlsHaveNoSiblings)
{
    for (int index = Expected::firstGlobal; index < Expected::numParameters; ++index)
    {
        CorvaneQ7AudioProcessor processor;
        processor.activeSettings().link = true;
        auto wanted = Expected::fieldsOf (processor.activeSettings());

        Expected::Listener listener (processor);
        processor.setParameterNotifyingHost (index, 0.625f);
        EXPECT_EQ ((Moves { { index, 0.625f } }), listener.moves);

        wanted[static_cast<std::size_t> (index)] = Expected::fieldOf (processor.activeSettings(), index);
        EXPECT_EQ (wanted, Expected::fieldsOf (processor.activeSettings()));
    }
}

TEST (LinkedBands, FollowASlotThatIsChosenMeanwhile)
{
    // The record is looked up anew for the second sibling: in the other slot Link is off, so there it ends.
    CorvaneQ7AudioProcessor processor;
    processor.settingsSlots[0].link = true;

    Expected::Listener listener (processor);
    listener.onMove = [&] (int index, float)
    {
        if (index == Expected::midGain)
            processor.selectSlot (1);
    };

    processor.setParameter (Expected::lowGain, 1.0f);

    EXPECT_EQ (20.0, processor.settingsSlots[0].bands[0].gainDb.target);
    EXPECT_EQ (20.0, processor.settingsSlots[0].bands[1].gainDb.target);
    EXPECT_EQ (2.0, processor.settingsSlots[0].bands[2].gainDb.target);
    EXPECT_EQ (2.0, processor.settingsSlots[1].bands[2].gainDb.target);
}

TEST (LinkedBands, OutOfRangeValuesTravelAsTheyAre)
{
    CorvaneQ7AudioProcessor processor;
    processor.activeSettings().link = true;
    Expected::Listener listener (processor);
    processor.setParameter (5, 1.5f); // row 6 of five ratios
    EXPECT_EQ ((Moves { { 14, 1.5f }, { 23, 1.5f } }), listener.moves);

    for (const auto& band : processor.activeSettings().bands)
        EXPECT_EQ (6, band.ratio);
}

TEST (LinkedBands, AHostThatMovesAControlWhileItHearsOfOneGoesNoDeeper)
{
    // Answering a sibling's change with a change of a third control: the guard is up, so it is not forwarded.
    CorvaneQ7AudioProcessor processor;
    auto& record = processor.activeSettings();
    record.link = true;

    Expected::Listener listener (processor);
    listener.onMove = [&] (int index, float)
    {
        if (index == Expected::midThreshold)
            processor.setParameter (Expected::lowGain, 1.0f);
    };

    processor.setParameter (Expected::lowThreshold, 1.0f);
    EXPECT_EQ (20.0, record.bands[0].gainDb.target);
    EXPECT_EQ (2.0, record.bands[1].gainDb.target);
    EXPECT_EQ (2.0, record.bands[2].gainDb.target);
    EXPECT_EQ (10.0, record.bands[2].thresholdDb.target); // the first forward went on to its end
    EXPECT_EQ ((Moves { { Expected::midThreshold, 1.0f }, { Expected::highThreshold, 1.0f } }), listener.moves);
}

struct SilentHost
{
    juce::AudioProcessor::WrapperType wrapper;
    int host;
    bool silent;
};

class LinkInOldHosts : public ::testing::TestWithParam<SilentHost>
{
};

TEST_P (LinkInOldHosts, MovesSiblingsSilentlyInOneWrapperAndSevenHosts)
{
    const auto processor = Expected::makeProcessor (GetParam().wrapper);
    processor->hostType = GetParam().host;
    processor->activeSettings().link = true;

    Expected::Listener listener (*processor);
    processor->setParameter (Expected::lowGain, 1.0f);

    EXPECT_EQ (GetParam().silent ? 0u : 2u, listener.moves.size());

    for (const auto& band : processor->activeSettings().bands)
        EXPECT_EQ (20.0, band.gainDb.target);
}

INSTANTIATE_TEST_SUITE_P (Codes, LinkInOldHosts,
                          ::testing::Values (SilentHost { juce::AudioProcessor::wrapperType_VST, 21, false },
                                             SilentHost { juce::AudioProcessor::wrapperType_VST, 22, true },
                                             SilentHost { juce::AudioProcessor::wrapperType_VST, 25, true },
                                             SilentHost { juce::AudioProcessor::wrapperType_VST, 28, true },
                                             SilentHost { juce::AudioProcessor::wrapperType_VST, 29, false },
                                             SilentHost { juce::AudioProcessor::wrapperType_VST3, 25, false },
                                             SilentHost { juce::AudioProcessor::wrapperType_AudioUnit, 25, false },
                                             SilentHost { juce::AudioProcessor::wrapperType_LV2, 25, false },
                                             SilentHost { juce::AudioProcessor::wrapperType_Undefined, 25, false }),
                          [] (const auto& row)
                          {
                              return std::string (juce::AudioProcessor::getWrapperTypeDescription (row.param.wrapper))
                                     + "Host" + std::to_string (row.param.host);
                          });
