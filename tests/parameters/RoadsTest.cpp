// SPDX-License-Identifier: GPL-3.0-or-later
#include "ExpectedParameters.h"
#include "support/Followed.h"

#include <gtest/gtest.h>

#include <limits>

namespace
{
/** A session that holds nothing but one value: every other control goes to its default. */
void restore (CorvaneQ7AudioProcessor& processor, int index, float x)
{
    juce::XmlElement element ("CQ7SETTINGS");
    element.setAttribute (Expected::parameters[index].identifier, static_cast<double> (x));
    juce::MemoryBlock block;
    juce::AudioProcessor::copyXmlToBinary (element, block);
    processor.setStateInformation (block.getData(), static_cast<int> (block.getSize()));
}

constexpr int highRatio = 23;

struct Road
{
    const char* name;
    void (*set) (CorvaneQ7AudioProcessor&, int, float);
    bool tells; // listeners hear of the control itself
};

// clang-format off
const Road roads[] = {
    { "HostAutomation",  [] (CorvaneQ7AudioProcessor& p, int i, float x) { p.getParameters()[i]->setValueNotifyingHost (x); }, true },
    { "ByIndex",         [] (CorvaneQ7AudioProcessor& p, int i, float x) { p.setParameter (i, x); }, false },
    { "ByIndexTold",     [] (CorvaneQ7AudioProcessor& p, int i, float x) { p.setParameterNotifyingHost (i, x); }, true },
    { "ObjectItself",    [] (CorvaneQ7AudioProcessor& p, int i, float x) { p.getParameters()[i]->setValue (x); }, false },
    { "Session",         restore, false }
};
// clang-format on
} // namespace

class Roads : public ::testing::TestWithParam<Road>
{
protected:
    void set (int index, float x) { GetParam().set (processor, index, x); }

    CorvaneQ7AudioProcessor processor;
    ChannelSettings& record = processor.activeSettings();
};

TEST_P (Roads, LeadToTheRecordAndToTheEngine)
{
    set (Expected::midThreshold, 0.0f);
    EXPECT_EQ (-20.0, record.bands[1].thresholdDb.target);
    EXPECT_NEAR (100.0, followed (processor).bandGroups[1].compressor.thresholdGain,
                 1.0e-10); // 40 dB, of a power in double

    set (Expected::mix, 0.25f);
    EXPECT_EQ (0.25, record.mix);
    EXPECT_EQ (0.25, followed (processor).mixRamp.target);

    set (Expected::hpf, 1.0f);
    EXPECT_NEAR (500.0, followed (processor).bandGroups[2].compressor.hpfHz, 1.0e-5); // the exponent has eleven digits

    set (Expected::nuke, 1.0f);
    EXPECT_TRUE (followed (processor).bandGroups[0].compressor.nuke);

    set (Expected::niveau, 0.0f);
    EXPECT_FALSE (followed (processor).bandGroups[0].compressor.niveau);

    set (26, 0.0f); // High Recovery, 100mS
    EXPECT_EQ (8200.0, followed (processor).bandGroups[2].compressor.recoveryOhms);

    set (10, 0.0f); // Mid In
    EXPECT_FALSE (followed (processor).bandGroups[1].compressor.bandActive);
    EXPECT_EQ (1.0, followed (processor).bandGroups[1].compressor.dryRamp.target);
}

TEST_P (Roads, LeadToTheCrossovers)
{
    set (Expected::lowXOver, 1.0f);
    EXPECT_NEAR (5000.0, followed (processor).lowSplit.frequency, 1.0e-9); // a power in double
    EXPECT_EQ (0, followed (processor).lowSplit.type);

    set (Expected::highXOver, 0.0f);
    EXPECT_EQ (200.0, followed (processor).highSplit.frequency);
    EXPECT_EQ (1, followed (processor).highSplit.type);
}

TEST_P (Roads, GlideTheCrossoversOfARunningEngine)
{
    processor.applySettings(); // so that the engine is built on 200 Hz and does not glide there first
    processor.prepareToPlay (48000.0, 64);
    const auto restsAt = [] (double hz) { return std::exp (-2.0 * 3.14159265358979 * hz / 48000.0); };
    ASSERT_NEAR (restsAt (200.0), followed (processor).lowSplit.smoothers[2].target, 1.0e-12);

    set (Expected::lowXOver, 1.0f);
    EXPECT_NEAR (restsAt (5000.0), followed (processor).lowSplit.smoothers[2].target, 1.0e-12);
    EXPECT_NEAR (restsAt (200.0), followed (processor).lowSplit.smoothers[2].current, 1.0e-12);
    EXPECT_EQ (4800, followed (processor).lowSplit.smoothers[2].remaining);
}

TEST_P (Roads, BypassTurnsTheMixToDry)
{
    set (Expected::bypass, 0.5f);
    EXPECT_EQ (1.0, record.bypass.target);
    EXPECT_EQ (0.0, followed (processor).mixRamp.target);

    set (Expected::bypass, 0.499f);
    EXPECT_EQ (0.0, record.bypass.target);
    EXPECT_EQ (1.0, followed (processor).mixRamp.target);
}

TEST_P (Roads, TellTheListenersWhereTheyHaveTo)
{
    Expected::Listener listener (processor);
    set (highRatio, 1.0f);

    if (GetParam().tells)
        EXPECT_EQ ((std::vector<std::pair<int, float>> { { highRatio, 1.0f } }), listener.moves);
    else
        EXPECT_TRUE (listener.moves.empty());
}

TEST_P (Roads, HaveWrittenAndAppliedWhatTheListenersHear)
{
    Expected::Listener listener (processor);
    listener.onMove = [&] (int, float)
    {
        EXPECT_EQ (10.0, record.bands[0].thresholdDb.target);
        EXPECT_NEAR (std::sqrt (10.0), followed (processor).bandGroups[0].compressor.thresholdGain, 1.0e-12); // 10 dB
    };
    set (Expected::lowThreshold, 1.0f);
    EXPECT_EQ (GetParam().tells ? 1u : 0u, listener.moves.size());
    EXPECT_NEAR (std::sqrt (10.0), followed (processor).bandGroups[0].compressor.thresholdGain, 1.0e-12);
}

TEST_P (Roads, PassTheValueOnAsItCame)
{
    // Listeners get what was sent, not the point of the grid that it fell on.
    Expected::Listener listener (processor);
    set (Expected::lowThreshold, 0.5f);
    EXPECT_EQ (16.0f / 30.0f, processor.getParameter (Expected::lowThreshold));

    for (const auto& move : listener.moves)
        EXPECT_EQ (0.5f, move.second);
}

INSTANTIATE_TEST_SUITE_P (All, Roads, ::testing::ValuesIn (roads),
                          [] (const auto& row) { return std::string (row.param.name); });

TEST (RoadByIndex, OutsideTheListAppliesTheRecordAlone)
{
    for (const auto index :
         { Expected::numParameters, 1000, -1, std::numeric_limits<int>::max(), std::numeric_limits<int>::min() })
    {
        CorvaneQ7AudioProcessor processor;
        processor.applySettings();
        processor.activeSettings().mix = 0.3; // written past the controls, so that only an application shows it
        const auto before = Expected::fieldsOf (processor.activeSettings());
        ASSERT_EQ (1.0, followed (processor).mixRamp.target);

        Expected::Listener listener (processor);
        processor.setParameter (index, 0.75f);
        EXPECT_EQ (0.3, followed (processor).mixRamp.target) << index;
        EXPECT_EQ (before, Expected::fieldsOf (processor.activeSettings()));
        EXPECT_TRUE (listener.moves.empty());
    }
}

TEST (RoadByIndex, ToldOutsideTheListIsSafe)
{
    CorvaneQ7AudioProcessor processor;
    Expected::Listener listener (processor);

    for (const auto index : { Expected::numParameters, -1, std::numeric_limits<int>::max() })
        processor.setParameterNotifyingHost (index, 0.75f);

    EXPECT_TRUE (listener.moves.empty());
}

TEST (RoadByIndex, AppliesTheWholeRecordAndNotOneField)
{
    CorvaneQ7AudioProcessor processor;
    processor.activeSettings().mix = 0.3;
    processor.activeSettings().bands[2].attack = 0;
    processor.setParameter (Expected::inLevel, 0.6f);
    EXPECT_EQ (0.3, followed (processor).mixRamp.target);
    EXPECT_EQ (10.0, followed (processor).bandGroups[2].compressor.attackOhms);
}

TEST (RoadByIndex, RestartsNoRampForAValueThatStands)
{
    // Hosts repeat values all the time; a ramp under way must not start over each time.
    CorvaneQ7AudioProcessor processor;
    processor.prepareToPlay (48000.0, 64);
    processor.setParameter (Expected::mix, 0.5f);
    processor.setParameter (Expected::inLevel, 0.75f);
    ASSERT_EQ (4800, followed (processor).mixRamp.remaining);

    juce::AudioBuffer<float> buffer (2, 64);
    juce::MidiBuffer midi;
    buffer.clear();
    processor.processBlock (buffer, midi);

    for (int i = 0; i < 5; ++i)
    {
        processor.setParameter (Expected::mix, 0.5f);
        processor.setParameter (Expected::inLevel, 0.75f);
    }

    EXPECT_EQ (4736, followed (processor).mixRamp.remaining);
    EXPECT_EQ (4736, processor.levels[0].in.remaining);
}
