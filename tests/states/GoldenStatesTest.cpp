// SPDX-License-Identifier: GPL-3.0-or-later
// Sessions that projects hold since version 1.0.0: they come back as they were meant, for good.
#include "parameters/ExpectedParameters.h"
#include "StateBlocks.h"

#include <gtest/gtest.h>

namespace
{
using StateBlocks::around;
using StateBlocks::restore;
using StateBlocks::saved;
using StateBlocks::textOf;

std::string contents (const std::string& name)
{
    const auto file = std::filesystem::path (CORVANE_STATES_FOLDER) / name;
    std::ifstream stream (file, std::ios::binary);
    EXPECT_TRUE (stream.good()) << file;
    return { std::istreambuf_iterator<char> (stream), {} };
}

/** A text of today without the attributes that an earlier one lacks: a later version adds controls. All that the earlier
    version knew has to be there, in its order and byte for byte. */
std::string withoutLaterAttributes (const std::string& today, const std::string& earlier)
{
    std::string text;
    std::size_t next = 0;

    for (std::size_t at; (at = today.find (' ', next)) != std::string::npos;)
    {
        const auto nameEnd = today.find ("=\"", at);
        const auto valueEnd = nameEnd == std::string::npos ? nameEnd : today.find ('"', nameEnd + 2);

        if (valueEnd == std::string::npos)
            break;

        const auto isKnown = earlier.find (today.substr (at, nameEnd + 2 - at)) != std::string::npos;
        text += today.substr (next, (isKnown ? valueEnd + 1 : at) - next);
        next = valueEnd + 1;
    }

    return text + today.substr (next);
}

/** What an instance saves, as the version that wrote the earlier text would have. */
std::string savedAs (const std::string& earlier, CorvaneQ7AudioProcessor& processor)
{
    return withoutLaterAttributes (textOf (saved (processor)), earlier);
}

struct Band
{
    double gainDb;
    int ratio;
    double thresholdDb;
    int attack, recovery;
};

struct Program
{
    Band bands[3];
    double mix, hpfHz, masterDb, lowXOverHz, highXOverHz;
    bool nuke, link;
    double inLevelDb, outLevelDb;
};

// What the fifteen programs of version 1.0.0 sound like.
// clang-format off
constexpr Program programs[] = {
    { { { 2, 2, -4, 2, 4 }, { 2, 2, -4, 2, 4 }, { 2, 2, -4, 2, 4 } }, 1, 20, 0, 200, 5000, false, false, 0, 0 },
    { { { 13, 2, -12, 2, 1 }, { 3, 2, -14, 3, 0 }, { 6, 2, -10, 3, 1 } }, 1, 20, -2, 316, 4386, false, false, 0, 0 },
    { { { 4, 2, -8, 2, 0 }, { 0, 2, 10, 2, 0 }, { 15, 2, -20, 2, 0 } }, 1, 36, 0, 315, 712, false, false, 0, 0 },
    { { { 12, 2, -16, 0, 0 }, { 3, 2, -14, 1, 0 }, { 1, 2, -18, 1, 0 } }, 0.8, 20, 0, 247, 2229, false, false, 0, 0 },
    { { { 10, 2, -14, 2, 0 }, { 6, 2, -14, 2, 0 }, { 6, 2, -14, 2, 0 } }, 0.7, 46, -6, 425, 4766, true, false, 10, -1.4 },
    { { { 0, 2, -14, 2, 0 }, { 0, 2, -14, 2, 0 }, { 0, 2, -14, 2, 0 } }, 0.8, 46, 0, 425, 4766, true, false, 0, 0 },
    { { { -1, 2, -14, 2, 0 }, { -1, 2, -14, 2, 0 }, { -1, 2, -14, 2, 0 } }, 1, 46, 2, 449, 4766, false, true, 0, 0 },
    { { { 4, 1, -10, 1, 1 }, { 3, 1, -8, 1, 1 }, { 8, 2, -16, 0, 1 } }, 1, 20, 0, 424, 4032, false, false, 0, 0 },
    { { { 14, 2, -18, 2, 0 }, { 5, 2, -16, 2, 0 }, { 9, 2, -16, 2, 0 } }, 1, 20, -4, 166, 2640, false, false, 0, 0.4 },
    { { { 4, 1, -10, 2, 4 }, { 2, 1, -2, 2, 4 }, { 3, 1, -2, 2, 4 } }, 1, 33, 0, 207, 3976, false, false, 0, 0 },
    { { { 3, 1, -6, 2, 4 }, { 1, 1, 2, 2, 4 }, { 3, 1, 0, 2, 4 } }, 0.9, 40, 0, 277, 5373, false, false, 0, 0 },
    { { { 5, 1, -10, 2, 4 }, { 3, 1, -2, 2, 4 }, { 8, 1, -2, 2, 4 } }, 1, 33, 0, 207, 7044, false, false, 0, -0.2 },
    { { { 5, 2, -18, 2, 0 }, { 1, 2, -20, 2, 0 }, { 4, 2, -18, 2, 0 } }, 1, 20, 0, 169, 3375, false, false, 2.2, -0.3 },
    { { { 6, 2, -14, 1, 0 }, { 7, 2, -14, 1, 0 }, { 9, 2, -14, 1, 0 } }, 1, 47, 0, 346, 4458, false, false, 0, 0 },
    { { { 3, 2, -14, 1, 0 }, { 5, 2, -14, 2, 0 }, { 8, 2, -14, 2, 0 } }, 0.8, 47, 0, 346, 4458, true, false, 0, 0 }
};
// clang-format on

constexpr int kickKnock = 2, wideAndBright = 11; // the middle band is out; the high band works on the sides

// Sessions hold floats: a level of 20 dB is exact to 2e-6, a frequency to a few parts in ten million.
constexpr double dbWithin = 2.0e-6, relativeHzWithin = 1.0e-6;

void expectProgram (int index, const ChannelSettings& record)
{
    const auto& program = programs[index];

    for (int b = 0; b < 3; ++b)
    {
        const auto& wanted = program.bands[b];
        const auto& band = record.bands[b];
        EXPECT_EQ (1, band.meter);
        EXPECT_EQ (! (index == kickKnock && b == 1), band.in);
        EXPECT_FALSE (band.solo);
        EXPECT_EQ (index == wideAndBright && b == 2 ? 1.0 : 0.5, band.midSide);
        EXPECT_EQ (wanted.gainDb, band.gainDb.target);
        EXPECT_EQ (wanted.ratio, band.ratio);
        EXPECT_EQ (wanted.thresholdDb, band.thresholdDb.target);
        EXPECT_EQ (wanted.attack, band.attack);
        EXPECT_EQ (wanted.recovery, band.recovery);
    }

    EXPECT_FLOAT_EQ (static_cast<float> (program.mix), static_cast<float> (record.mix));
    EXPECT_NEAR (program.hpfHz, record.hpfHz, program.hpfHz * relativeHzWithin);
    EXPECT_NEAR (program.masterDb, record.masterGainDb.target, dbWithin);
    EXPECT_NEAR (program.lowXOverHz, record.lowXOverHz, program.lowXOverHz * relativeHzWithin);
    EXPECT_NEAR (program.highXOverHz, record.highXOverHz, program.highXOverHz * relativeHzWithin);
    EXPECT_EQ (program.nuke, record.nuke);
    EXPECT_TRUE (record.niveau);
    EXPECT_EQ (program.link, record.link);
    EXPECT_EQ (0.0, record.bypass.target);
    EXPECT_NEAR (program.inLevelDb, record.inLevelDb.target, dbWithin);
    EXPECT_NEAR (program.outLevelDb, record.outLevelDb.target, dbWithin);
}

double gainOf (double calibrationDb) { return std::pow (10.0, calibrationDb * 0.05) * 1.1523716865; }
} // namespace

TEST (GoldenStatesText, LosesWhatALaterVersionAddsAndNothingElse)
{
    const std::string earlier ("<S A=\"1\" Long=\"2\" C=\"3\"/>");
    EXPECT_EQ (earlier, withoutLaterAttributes (earlier, earlier));
    EXPECT_EQ (earlier, withoutLaterAttributes ("<S A=\"1\" Mono=\"0\" Long=\"2\" C=\"3\" D=\"4\"/>", earlier));
    EXPECT_EQ (earlier, withoutLaterAttributes ("<S New=\"0\" A=\"1\" Long=\"2\" L=\"5\" ng=\"5\" C=\"3\"/>", earlier));

    for (const auto* changed :
         { "<S A=\"1\" Long=\"2\" C=\"4\"/>", "<S A=\"1\" C=\"3\"/>", "<S A=\"1\" C=\"3\" Long=\"2\"/>",
           "<S A=\"1\"  Long=\"2\" C=\"3\"/>", "<S A=\"1\" Long=\"2\" C=\"3\"></S>" })
        EXPECT_NE (earlier, withoutLaterAttributes (changed, earlier)) << changed;
}

class GoldenStates : public ::testing::Test
{
protected:
    StateBlocks::StoredOptions options; // none: the file of a user must not decide here
    CorvaneQ7AudioProcessor processor;
    const ChannelSettings& record = processor.activeSettings();
};

TEST_F (GoldenStates, OfEachProgramComeBackAndAreSavedAgainByteForByte)
{
    for (int i = 0; i < 15; ++i)
    {
        CorvaneQ7AudioProcessor instance;
        const auto number = std::to_string (i);
        const auto text = contents ("v1.0.0-program-" + std::string (2 - number.size(), '0') + number + ".xml");
        const auto trace = ::testing::ScopedTrace (__FILE__, __LINE__, "program " + number);

        restore (instance, around (text));
        expectProgram (i, instance.activeSettings());
        EXPECT_DOUBLE_EQ (gainOf (22.0), instance.activeSettings().calibrationGain);
        EXPECT_EQ (1, instance.oversamplingRequested);
        EXPECT_EQ (1.0f, instance.uiZoom);
        EXPECT_EQ (text, savedAs (text, instance));
    }
}

TEST_F (GoldenStates, OfEachProgramAreWhatAnInstanceSavesThatLoadedIt)
{
    for (int i = 0; i < 15; ++i)
    {
        CorvaneQ7AudioProcessor instance;
        instance.setCurrentProgram (i);
        const auto number = std::to_string (i);
        const auto text = contents ("v1.0.0-program-" + std::string (2 - number.size(), '0') + number + ".xml");
        EXPECT_EQ (text, savedAs (text, instance)) << "program " << i;
    }
}

TEST_F (GoldenStates, AWholeBlockComesBackAndIsSavedAgainByteForByte)
{
    const auto block = contents ("v1.0.0-default.bin");
    processor.setCurrentProgram (4);
    restore (processor, block);
    expectProgram (0, record);
    EXPECT_EQ (block, around (savedAs (textOf (block), processor)));
}

TEST_F (GoldenStates, WithEveryControlAtItsLowestEnd)
{
    const auto text = contents ("v1.0.0-lowest.xml");
    restore (processor, around (text));

    for (const auto& band : record.bands)
    {
        EXPECT_EQ (0, band.meter);
        EXPECT_FALSE (band.in);
        EXPECT_FALSE (band.solo);
        EXPECT_EQ (0.0, band.midSide);
        EXPECT_EQ (-1.0, band.gainDb.target);
        EXPECT_EQ (0, band.ratio);
        EXPECT_EQ (-20.0, band.thresholdDb.target);
        EXPECT_EQ (0, band.attack);
        EXPECT_EQ (0, band.recovery);
    }

    EXPECT_EQ (0.0, record.mix);
    EXPECT_EQ (20.0, record.hpfHz);
    EXPECT_EQ (-10.0, record.masterGainDb.target);
    EXPECT_EQ (50.0, record.lowXOverHz);
    EXPECT_EQ (200.0, record.highXOverHz);
    EXPECT_FALSE (record.nuke);
    EXPECT_FALSE (record.niveau);
    EXPECT_FALSE (record.link);
    EXPECT_EQ (0.0, record.bypass.target);
    EXPECT_EQ (-10.0, record.inLevelDb.target);
    EXPECT_EQ (-10.0, record.outLevelDb.target);
    EXPECT_DOUBLE_EQ (gainOf (16.0), record.calibrationGain);
    EXPECT_EQ (2, processor.oversamplingRequested);
    EXPECT_EQ (52, processor.getLatencySamples());
    EXPECT_EQ (0.7f, processor.uiZoom);
    EXPECT_EQ (text, savedAs (text, processor));
}

TEST_F (GoldenStates, WithEveryControlAtItsHighestEnd)
{
    const auto text = contents ("v1.0.0-highest.xml");
    restore (processor, around (text));

    for (const auto& band : record.bands)
    {
        EXPECT_EQ (2, band.meter);
        EXPECT_TRUE (band.in);
        EXPECT_TRUE (band.solo);
        EXPECT_EQ (1.0, band.midSide);
        EXPECT_EQ (20.0, band.gainDb.target);
        EXPECT_EQ (4, band.ratio);
        EXPECT_EQ (10.0, band.thresholdDb.target);
        EXPECT_EQ (3, band.attack);
        EXPECT_EQ (4, band.recovery);
    }

    EXPECT_EQ (1.0, record.mix);
    EXPECT_NEAR (500.0, record.hpfHz, 500.0 * relativeHzWithin);
    EXPECT_EQ (20.0, record.masterGainDb.target);
    EXPECT_NEAR (5000.0, record.lowXOverHz, 5000.0 * relativeHzWithin);
    EXPECT_NEAR (12000.0, record.highXOverHz, 12000.0 * relativeHzWithin);
    EXPECT_TRUE (record.nuke);
    EXPECT_TRUE (record.niveau);
    EXPECT_TRUE (record.link);
    EXPECT_EQ (1.0, record.bypass.target);
    EXPECT_EQ (10.0, record.inLevelDb.target);
    EXPECT_EQ (10.0, record.outLevelDb.target);
    EXPECT_DOUBLE_EQ (gainOf (24.0), record.calibrationGain);
    EXPECT_EQ (16, processor.oversamplingRequested);
    EXPECT_EQ (52, processor.getLatencySamples());
    EXPECT_EQ (0.9f, processor.uiZoom);
    EXPECT_EQ (text, savedAs (text, processor));
}

TEST_F (GoldenStates, WithoutOptionsFollowTheUsersFile)
{
    options.write ({ { "Calibration", "18.0" }, { "Oversampling", "4" }, { "UIZoom", "0.8" } });
    restore (processor, around (contents ("v1.0.0-no-options.xml")));
    expectProgram (7, record);
    EXPECT_DOUBLE_EQ (gainOf (18.0), record.calibrationGain);
    EXPECT_EQ (4, processor.oversamplingRequested);
    EXPECT_EQ (0.8f, processor.uiZoom);
}

TEST_F (GoldenStates, OfAPresetLeaveTheOptions)
{
    processor.setCalibration (20.0);
    processor.setOversampling (2);
    processor.uiZoom = 0.9f;
    restore (processor, around (contents ("v1.0.0-preset.xml")));
    expectProgram (9, record);
    EXPECT_DOUBLE_EQ (gainOf (20.0), record.calibrationGain);
    EXPECT_EQ (2, processor.oversamplingRequested);
    EXPECT_EQ (0.9f, processor.uiZoom);
}
