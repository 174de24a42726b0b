// SPDX-License-Identifier: GPL-3.0-or-later
#include "parameters/FactoryPrograms.h"

#include "processor/CorvaneQ7AudioProcessor.h"
#include "support/Followed.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <limits>
#include <ostream>
#include <string>

namespace
{
/** What a user finds in a program, row by row as a list of settings would name it. */
struct Sheet
{
    int index;
    const char* name;
    double gainDb[3]; // low, mid, high
    int ratio[3];
    double thresholdDb[3];
    int attack[3];
    int recovery[3];
    double mix, hpfHz, masterDb, lowXOverHz, highXOverHz;
    bool nuke, link;
    double inLevelDb, outLevelDb;
};

void PrintTo (const Sheet& sheet, std::ostream* stream) { *stream << sheet.name; }

// clang-format off
constexpr Sheet sheets[] = {
    { 0, "Default", { 2, 2, 2 }, { 2, 2, 2 }, { -4, -4, -4 }, { 2, 2, 2 }, { 4, 4, 4 },
      1.0, 20, 0, 200, 5000, false, false, 0, 0 },
    { 1, "808 Clap Fat", { 13, 3, 6 }, { 2, 2, 2 }, { -12, -14, -10 }, { 2, 3, 3 }, { 1, 0, 1 },
      1.0, 20, -2, 316, 4386, false, false, 0, 0 },
    { 2, "808 Kick Knock", { 4, 0, 15 }, { 2, 2, 2 }, { -8, 10, -20 }, { 2, 2, 2 }, { 0, 0, 0 },
      1.0, 36, 0, 315, 712, false, false, 0, 0 },
    { 3, "Bass Tight Big Low End", { 12, 3, 1 }, { 2, 2, 2 }, { -16, -14, -18 }, { 0, 1, 1 }, { 0, 0, 0 },
      0.8, 20, 0, 247, 2229, false, false, 0, 0 },
    { 4, "Drum Bus Hammer", { 10, 6, 6 }, { 2, 2, 2 }, { -14, -14, -14 }, { 2, 2, 2 }, { 0, 0, 0 },
      0.7, 46, -6, 425, 4766, true, false, 10, -1.4 },
    { 5, "Drum Bus Smash", { 0, 0, 0 }, { 2, 2, 2 }, { -14, -14, -14 }, { 2, 2, 2 }, { 0, 0, 0 },
      0.8, 46, 0, 425, 4766, true, false, 0, 0 },
    { 6, "Drum Bus Smooth", { -1, -1, -1 }, { 2, 2, 2 }, { -14, -14, -14 }, { 2, 2, 2 }, { 0, 0, 0 },
      1.0, 46, 2, 449, 4766, false, true, 0, 0 },
    { 7, "Female Vocals", { 4, 3, 8 }, { 1, 1, 2 }, { -10, -8, -16 }, { 1, 1, 0 }, { 1, 1, 1 },
      1.0, 20, 0, 424, 4032, false, false, 0, 0 },
    { 8, "Kick Tight Beta", { 14, 5, 9 }, { 2, 2, 2 }, { -18, -16, -16 }, { 2, 2, 2 }, { 0, 0, 0 },
      1.0, 20, -4, 166, 2640, false, false, 0, 0.4 },
    { 9, "Mixbus Smooth", { 4, 2, 3 }, { 1, 1, 1 }, { -10, -2, -2 }, { 2, 2, 2 }, { 4, 4, 4 },
      1.0, 33, 0, 207, 3976, false, false, 0, 0 },
    { 10, "Mixbus Start Here", { 3, 1, 3 }, { 1, 1, 1 }, { -6, 2, 0 }, { 2, 2, 2 }, { 4, 4, 4 },
      0.9, 40, 0, 277, 5373, false, false, 0, 0 },
    { 11, "Mixbus Wide and Bright", { 5, 3, 8 }, { 1, 1, 1 }, { -10, -2, -2 }, { 2, 2, 2 }, { 4, 4, 4 },
      1.0, 33, 0, 207, 7044, false, false, 0, -0.2 },
    { 12, "Snare Fat 57", { 5, 1, 4 }, { 2, 2, 2 }, { -18, -20, -18 }, { 2, 2, 2 }, { 0, 0, 0 },
      1.0, 20, 0, 169, 3375, false, false, 2.2, -0.3 },
    { 13, "Vocals Male Rock", { 6, 7, 9 }, { 2, 2, 2 }, { -14, -14, -14 }, { 1, 1, 1 }, { 0, 0, 0 },
      1.0, 47, 0, 346, 4458, false, false, 0, 0 },
    { 14, "Vocals Male Rock Extreme", { 3, 5, 8 }, { 2, 2, 2 }, { -14, -14, -14 }, { 1, 2, 2 }, { 0, 0, 0 },
      0.8, 47, 0, 346, 4458, true, false, 0, 0 }
};
// clang-format on

constexpr int middleIsOut = 2;          // the one program with a band that is out
constexpr int highWorksOnTheSides = 11; // the one program that uses mid/side

void expectHoldsDb (double db, const Setpoint& decibels, const Setpoint& gain)
{
    EXPECT_DOUBLE_EQ (db, decibels.target);
    EXPECT_DOUBLE_EQ (std::pow (10.0, db / 20.0), gain.target);
}

void expectTargetDb (double db, const Setpoint& decibels, const Setpoint& gain)
{
    EXPECT_NEAR (db, decibels.target, 1.0e-12); // some travel by their gain: one logarithm there and back
    EXPECT_DOUBLE_EQ (std::pow (10.0, db / 20.0), gain.target);
}

void expectPlainFields (const Sheet& sheet, const ChannelSettings& record)
{
    for (int b = 0; b < 3; ++b)
    {
        const auto& band = record.bands[b];
        EXPECT_EQ (1, band.meter);
        EXPECT_EQ (! (sheet.index == middleIsOut && b == 1), band.in) << b;
        EXPECT_FALSE (band.solo);
        EXPECT_EQ (sheet.index == highWorksOnTheSides && b == 2 ? 1.0 : 0.5, band.midSide) << b;
        EXPECT_EQ (sheet.ratio[b], band.ratio) << b;
        EXPECT_EQ (sheet.attack[b], band.attack) << b;
        EXPECT_EQ (sheet.recovery[b], band.recovery) << b;
    }

    EXPECT_EQ (sheet.mix, record.mix);
    EXPECT_EQ (sheet.hpfHz, record.hpfHz);
    EXPECT_EQ (sheet.lowXOverHz, record.lowXOverHz);
    EXPECT_EQ (sheet.highXOverHz, record.highXOverHz);
    EXPECT_EQ (sheet.nuke, record.nuke);
    EXPECT_TRUE (record.niveau);
    EXPECT_EQ (sheet.link, record.link);
    EXPECT_EQ (0.0, record.bypass.target);
}

void expectAtRest (const Sheet& sheet, const ChannelSettings& record)
{
    expectPlainFields (sheet, record);

    for (int b = 0; b < 3; ++b)
    {
        expectHoldsDb (sheet.gainDb[b], record.bands[b].gainDb, record.bands[b].gainLinear);
        expectHoldsDb (sheet.thresholdDb[b], record.bands[b].thresholdDb, record.bands[b].thresholdLinear);
    }

    expectHoldsDb (sheet.masterDb, record.masterGainDb, record.masterGainLinear);
    expectHoldsDb (sheet.inLevelDb, record.inLevelDb, record.inLevelLinear);
    expectHoldsDb (sheet.outLevelDb, record.outLevelDb, record.outLevelLinear);
    EXPECT_EQ (0.0, record.bypass.target);
}

void expectTargets (const Sheet& sheet, const ChannelSettings& record)
{
    expectPlainFields (sheet, record);

    for (int b = 0; b < 3; ++b)
    {
        expectTargetDb (sheet.gainDb[b], record.bands[b].gainDb, record.bands[b].gainLinear);
        expectTargetDb (sheet.thresholdDb[b], record.bands[b].thresholdDb, record.bands[b].thresholdLinear);
    }

    expectTargetDb (sheet.masterDb, record.masterGainDb, record.masterGainLinear);
    expectTargetDb (sheet.inLevelDb, record.inLevelDb, record.inLevelLinear);
    expectTargetDb (sheet.outLevelDb, record.outLevelDb, record.outLevelLinear);
}

class FactoryProgram : public ::testing::TestWithParam<Sheet>
{
protected:
    CorvaneQ7AudioProcessor processor;
    const Sheet& sheet = GetParam();
    const std::size_t place = static_cast<std::size_t> (GetParam().index);
};

std::string labelOf (const ::testing::TestParamInfo<Sheet>& info)
{
    std::string label = std::to_string (info.param.index);

    for (const char* c = info.param.name; *c != 0; ++c)
        if (*c != ' ')
            label += *c;

    return label;
}
} // namespace

TEST_P (FactoryProgram, HoldsItsValuesAtRest)
{
    expectAtRest (sheet, processor.programs[place]);
    EXPECT_EQ (14.5075, processor.programs[place].calibrationGain);
    EXPECT_EQ (juce::String (sheet.name), processor.getProgramName (sheet.index));
    EXPECT_STREQ (sheet.name, FactoryPrograms::name (sheet.index));
}

TEST_P (FactoryProgram, ReachesTheActiveSlotAndTheEngine)
{
    processor.settingsSlots[0].bypass.setTarget (1.0);
    processor.setCurrentProgram (sheet.index);

    EXPECT_EQ (sheet.index, processor.getCurrentProgram());
    expectTargets (sheet, processor.settingsSlots[0]);
    EXPECT_EQ (sheet.mix, followed (processor).mixRamp.target);
    EXPECT_EQ (sheet.lowXOverHz, followed (processor).lowSplit.frequency);
    EXPECT_EQ (sheet.highXOverHz, followed (processor).highSplit.frequency);

    for (const auto& group : followed (processor).bandGroups)
        EXPECT_EQ (sheet.hpfHz, group.compressor.hpfHz);
}

TEST_P (FactoryProgram, OverwritesWhateverTheRecordHeld)
{
    ChannelSettings record (processor);

    for (auto& band : record.bands)
    {
        band.meter = 2;
        band.in = false;
        band.solo = true;
        band.midSide = 0.0;
        band.gainDb.setTarget (9.5);
    }

    record.bypass.setTarget (1.0);
    record.niveau = false;
    record.calibrationGain = 3.0;
    FactoryPrograms::fill (record, sheet.index);

    expectAtRest (sheet, record);
    EXPECT_EQ (3.0, record.calibrationGain);
}

INSTANTIATE_TEST_SUITE_P (All, FactoryProgram, ::testing::ValuesIn (sheets), labelOf);

TEST (FactoryPrograms, ThereAreFifteen)
{
    CorvaneQ7AudioProcessor processor;
    static_assert (sizeof (sheets) / sizeof (sheets[0]) == 15);

    EXPECT_EQ (15, FactoryPrograms::numPrograms);
    EXPECT_EQ (15, processor.getNumPrograms());
    EXPECT_EQ (15u, processor.programs.size());
}

TEST (FactoryPrograms, BothSlotsStartAsTheDefault)
{
    CorvaneQ7AudioProcessor processor;

    for (auto& slot : processor.settingsSlots)
        expectAtRest (sheets[0], slot);
}

TEST (FactoryPrograms, AnIndexWithoutAProgramHasNoName)
{
    CorvaneQ7AudioProcessor processor;

    for (const auto index : { -1, -3, 15, 99, std::numeric_limits<int>::max(), std::numeric_limits<int>::min() })
    {
        EXPECT_EQ (juce::String(), processor.getProgramName (index)) << index;
        EXPECT_STREQ ("", FactoryPrograms::name (index)) << index;
    }
}

TEST (FactoryPrograms, AnIndexWithoutAProgramFillsNothing)
{
    CorvaneQ7AudioProcessor processor;
    ChannelSettings record (processor);
    record.mix = 0.123;
    record.bands[0].gainDb.setTarget (9.5);

    FactoryPrograms::fill (record, -1);
    FactoryPrograms::fill (record, 15);

    EXPECT_EQ (0.123, record.mix);
    EXPECT_EQ (9.5, record.bands[0].gainDb.target);
}

TEST (FactoryPrograms, NamesAreFixed)
{
    CorvaneQ7AudioProcessor processor;
    processor.changeProgramName (3, "Mine");

    EXPECT_EQ (juce::String ("Bass Tight Big Low End"), processor.getProgramName (3));
}

TEST (FactoryPrograms, AnIndexBeyondTheListIsTheLastProgram)
{
    CorvaneQ7AudioProcessor processor;
    processor.setCurrentProgram (99);

    EXPECT_EQ (14, processor.getCurrentProgram());
    expectTargets (sheets[14], processor.activeSettings());
}

TEST (FactoryPrograms, AnIndexBelowTheListIsTheFirstProgram)
{
    CorvaneQ7AudioProcessor processor;
    processor.setCurrentProgram (5);
    processor.setCurrentProgram (-3);

    EXPECT_EQ (0, processor.getCurrentProgram());
    expectTargets (sheets[0], processor.activeSettings());
}

TEST (FactoryPrograms, AProgramMovesOverTheRampsAndDoesNotJump)
{
    CorvaneQ7AudioProcessor processor;
    processor.setRateAndBufferSizeDetails (44100.0, 64);
    processor.prepareToPlay (44100.0, 64);
    processor.setCurrentProgram (4);

    const auto& in = followed (processor).levels[0].in;
    EXPECT_EQ (1.0, in.current);
    EXPECT_EQ (4410, in.remaining);
    EXPECT_DOUBLE_EQ (std::pow (10.0, 0.5), in.target);
}

TEST (FactoryPrograms, AProgramWithLinkOnCopiesTheBandsAsTheyAre)
{
    CorvaneQ7AudioProcessor processor;
    processor.activeSettings().link = true;
    processor.setCurrentProgram (8);

    expectTargets (sheets[8], processor.activeSettings()); // three different gains: nothing was forwarded
}

TEST (FactoryPrograms, AProgramGoesToTheActiveSlotAlone)
{
    CorvaneQ7AudioProcessor processor;
    processor.activeSlot = 1;
    processor.setCurrentProgram (12);

    expectTargets (sheets[12], processor.settingsSlots[1]);
    expectAtRest (sheets[0], processor.settingsSlots[0]);
}

TEST (FactoryPrograms, TheCalibrationSurvivesAProgramAndASlotCopy)
{
    CorvaneQ7AudioProcessor processor;
    processor.setCalibration (18.0);
    const auto gain = processor.settingsSlots[0].calibrationGain;

    processor.setCurrentProgram (7);
    EXPECT_EQ (gain, processor.settingsSlots[0].calibrationGain);

    processor.settingsSlots[1] = processor.settingsSlots[0];
    expectTargets (sheets[7], processor.settingsSlots[1]);
    EXPECT_EQ (14.5075, processor.settingsSlots[1].calibrationGain);
    EXPECT_EQ (gain, processor.settingsSlots[0].calibrationGain);
}

TEST (FactoryPrograms, ProgramsAreNotTouchedByWhatIsDoneToASlot)
{
    CorvaneQ7AudioProcessor processor;
    processor.setCurrentProgram (3);
    processor.activeSettings().mix = 0.1;
    processor.activeSettings().bands[0].gainDb.setTarget (0.0);

    expectAtRest (sheets[3], processor.programs[3]);
}

namespace
{
/** A host that restores a session often sets a program right after it: the session must win. */
class ProgramShield : public ::testing::Test
{
protected:
    void restoredAgo (std::uint32_t milliseconds)
    {
        processor.freshInstance = false;
        processor.lastStateRestoreMs = juce::Time::getMillisecondCounter() - milliseconds;
    }

    void expectProgramLoads (bool loads)
    {
        processor.activeSettings().mix = 0.25;
        processor.setCurrentProgram (5);

        EXPECT_EQ (5, processor.getCurrentProgram()) << "the number changes in any case";
        EXPECT_EQ (loads ? 0.8 : 0.25, processor.activeSettings().mix);
        EXPECT_EQ (loads ? 425.0 : 200.0, processor.activeSettings().lowXOverHz);
    }

    CorvaneQ7AudioProcessor processor;
};
} // namespace

TEST_F (ProgramShield, HoldsAHundredMillisecondsAfterARestore)
{
    restoredAgo (100);
    expectProgramLoads (false);
}

TEST_F (ProgramShield, IsGoneSixHundredMillisecondsAfterARestore)
{
    restoredAgo (600);
    expectProgramLoads (true);
}

TEST_F (ProgramShield, IsGoneAfterFiveHundredMilliseconds)
{
    restoredAgo (500);
    expectProgramLoads (true);
}

TEST_F (ProgramShield, IsNotThereBeforeAnyRestore)
{
    ASSERT_EQ (0u, processor.lastStateRestoreMs);
    expectProgramLoads (true);
}

TEST_F (ProgramShield, TheDifferenceOfTimesIsUnsigned)
{
    restoredAgo (static_cast<std::uint32_t> (-1000)); // ahead of the counter: nearly fifty days ago
    expectProgramLoads (true);
}

TEST_F (ProgramShield, StartsWithAStateThatIsNoState)
{
    const char garbage[] = "this is no session";

    for (const auto size : { static_cast<int> (sizeof (garbage)), 3, 0 })
    {
        CorvaneQ7AudioProcessor another;
        another.setStateInformation (size > 0 ? garbage : nullptr, size);
        const auto sinceRestore = juce::Time::getMillisecondCounter() - another.lastStateRestoreMs;

        EXPECT_LT (sinceRestore, 250u) << "the time of the restore was taken, size " << size;
        EXPECT_FALSE (another.freshInstance);

        another.setCurrentProgram (5);
        EXPECT_EQ (5, another.getCurrentProgram());
        EXPECT_EQ (200.0, another.activeSettings().lowXOverHz) << size;
    }
}

TEST_F (ProgramShield, StartsWithASessionOfItsOwn)
{
    juce::MemoryBlock session;
    processor.getStateInformation (session);
    processor.setStateInformation (session.getData(), static_cast<int> (session.getSize()));
    const auto restoredXOver = processor.activeSettings().lowXOverHz;

    processor.setCurrentProgram (5);
    EXPECT_EQ (5, processor.getCurrentProgram());
    EXPECT_EQ (restoredXOver, processor.activeSettings().lowXOverHz);
    EXPECT_NEAR (200.0, restoredXOver, 0.01) << "a session moves a frequency by the rounding of a normalised float";
}
