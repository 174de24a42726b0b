// SPDX-License-Identifier: GPL-3.0-or-later
#include "SettingsFile.h"

#include "processor/CorvaneQ7AudioProcessor.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdlib>
#include <string>

#if defined(__x86_64__) || defined(__i386__)
#include <xmmintrin.h>
#define CORVANE_TEST_HAS_MXCSR 1
#endif

namespace
{
class Construction : public ::testing::Test
{
protected:
    SettingsFile file;

    static double gainOf (double db) { return 1.1523716865 * std::pow (10.0, db * 0.05); }

    double calibrationFrom (const char* stored)
    {
        file.write ({ { "Calibration", stored } });
        return CorvaneQ7AudioProcessor().settingsSlots[0].calibrationGain;
    }

    int factorFrom (const char* stored)
    {
        file.write ({ { "Oversampling", stored } });
        return CorvaneQ7AudioProcessor().oversamplingRequested;
    }

    float zoomFrom (const char* stored)
    {
        file.write ({ { "UIZoom", stored } });
        return CorvaneQ7AudioProcessor().uiZoom;
    }
};

void expectDefaults (const CorvaneQ7AudioProcessor& processor)
{
    EXPECT_DOUBLE_EQ (1.1523716865 * std::pow (10.0, 1.1), processor.settingsSlots[0].calibrationGain);
    EXPECT_EQ (1, processor.oversamplingRequested);
    EXPECT_EQ (1.0f, processor.uiZoom);
    EXPECT_EQ (0, processor.getLatencySamples());
}
} // namespace

TEST_F (Construction, TellsTheHostWhatItIs)
{
    CorvaneQ7AudioProcessor processor;

    EXPECT_EQ (juce::String ("Corvane Q7"), processor.getName());
    EXPECT_EQ (0.0, processor.getTailLengthSeconds());
    EXPECT_FALSE (processor.acceptsMidi());
    EXPECT_FALSE (processor.producesMidi());
    EXPECT_FALSE (processor.isMidiEffect());
    EXPECT_FALSE (processor.supportsDoublePrecisionProcessing());
    EXPECT_EQ (nullptr, processor.getBypassParameter()) << "the host's own bypass goes to processBlockBypassed";
    EXPECT_EQ (15, processor.getNumPrograms());
    EXPECT_EQ (0, processor.getCurrentProgram());
}

TEST_F (Construction, HasOneBusEachWay)
{
    CorvaneQ7AudioProcessor processor;

    ASSERT_EQ (1, processor.getBusCount (true));
    ASSERT_EQ (1, processor.getBusCount (false));
    EXPECT_EQ (juce::String ("Input"), processor.getBus (true, 0)->getName());
    EXPECT_EQ (juce::String ("Output"), processor.getBus (false, 0)->getName());
}

TEST_F (Construction, StartsWithoutAnEngine)
{
    CorvaneQ7AudioProcessor processor;

    EXPECT_EQ (0, processor.maxBlockSize);
    EXPECT_TRUE (processor.freshInstance);
    EXPECT_FALSE (processor.reconfiguring);
    EXPECT_EQ (0, processor.activeSlot);
    EXPECT_EQ (&processor.settingsSlots[0], &processor.activeSettings());
    EXPECT_EQ (0, processor.currentProgram);
    EXPECT_EQ (0u, processor.lastStateRestoreMs);
    EXPECT_EQ (1, processor.oversamplingRequested);
    EXPECT_EQ (1, processor.oversamplingCurrent);
    EXPECT_TRUE (processor.oversamplers.empty());
    EXPECT_EQ (0, processor.dryDelay.getNumRecords());
    EXPECT_EQ (static_cast<int> (juce::PluginHostType().type), processor.hostType);

    EXPECT_EQ (0.0, processor.mixRamp.current);
    EXPECT_EQ (0.0, processor.mixRamp.target);
    EXPECT_EQ (100, processor.mixRamp.length);

    for (const auto& group : processor.bandGroups)
    {
        EXPECT_FALSE (group.compressor.isReady());
        EXPECT_TRUE (group.inputFollowers.empty());
        EXPECT_TRUE (group.outputFollowers.empty());
        EXPECT_EQ (0.0, group.inputPeak);
        EXPECT_EQ (0.0, group.outputPeak);
    }

    for (const auto* buffer : { &processor.lowBuffer, &processor.midBuffer, &processor.highBuffer,
                                &processor.controlBuffer, &processor.workBuffer })
        EXPECT_EQ (0, buffer->getNumSamples());
}

TEST_F (Construction, TheCrossoversStartAtAThousandHertz)
{
    CorvaneQ7AudioProcessor processor;

    EXPECT_EQ (CrossoverFilter::lowPass, processor.lowSplit.type);
    EXPECT_EQ (CrossoverFilter::highPass, processor.highSplit.type);

    for (const auto* filter : { &processor.lowSplit, &processor.highSplit })
    {
        EXPECT_EQ (1000.0, filter->frequency);
        EXPECT_EQ (44100.0, filter->rate);

        for (const auto& smoother : filter->smoothers)
            EXPECT_EQ (100, smoother.length);
    }
}

TEST_F (Construction, EachRecordKnowsItsProcessor)
{
    CorvaneQ7AudioProcessor processor;
    ASSERT_EQ (15u, processor.programs.size());

    for (const auto& slot : processor.settingsSlots)
        EXPECT_EQ (&processor, &slot.owner);

    for (const auto& program : processor.programs)
        EXPECT_EQ (&processor, &program.owner);
}

TEST_F (Construction, WithoutASettingsFileTheDefaultsHold)
{
    ASSERT_FALSE (SettingsFile::location().exists());
    CorvaneQ7AudioProcessor processor;
    expectDefaults (processor);
}

TEST_F (Construction, ReadingDoesNotMakeASettingsFile)
{
    {
        CorvaneQ7AudioProcessor processor;
    }

    EXPECT_FALSE (SettingsFile::location().exists());
}

#if JUCE_LINUX
TEST_F (Construction, TheSettingsFileStandsInTheHomeFolder)
{
    const juce::File home (juce::String (std::getenv ("HOME")));
    EXPECT_EQ (home.getChildFile ("Corvane Plugins/Corvane Q7.settings"), SettingsFile::location());

    file.write ({ { "Oversampling", "4" } });
    ASSERT_TRUE (home.getChildFile ("Corvane Plugins/Corvane Q7.settings").existsAsFile());
    EXPECT_EQ (4, CorvaneQ7AudioProcessor().oversamplingRequested);
}
#endif

TEST_F (Construction, TakesTheThreeOptionsFromTheSettingsFile)
{
    file.write ({ { "Calibration", "18.0" }, { "Oversampling", "8" }, { "UIZoom", "0.85" } });
    CorvaneQ7AudioProcessor processor;

    EXPECT_DOUBLE_EQ (gainOf (18.0), processor.settingsSlots[0].calibrationGain);
    EXPECT_EQ (8, processor.oversamplingRequested);
    EXPECT_EQ (1, processor.oversamplingCurrent) << "the engine is not built yet";
    EXPECT_EQ (52, processor.getLatencySamples());
    EXPECT_EQ (0.85f, processor.uiZoom);
}

TEST_F (Construction, TheOtherSlotAndTheProgramsKeepTheCalibrationOfANewRecord)
{
    file.write ({ { "Calibration", "18.0" } });
    CorvaneQ7AudioProcessor processor;

    EXPECT_EQ (14.5075, processor.settingsSlots[1].calibrationGain);

    for (const auto& program : processor.programs)
        EXPECT_EQ (14.5075, program.calibrationGain);
}

TEST_F (Construction, ACalibrationOutsideItsRangeReadsAsTwentyTwo)
{
    EXPECT_DOUBLE_EQ (gainOf (22.0), calibrationFrom ("25"));
    EXPECT_DOUBLE_EQ (gainOf (22.0), calibrationFrom ("24.001"));
    EXPECT_DOUBLE_EQ (gainOf (22.0), calibrationFrom ("15.999"));
    EXPECT_DOUBLE_EQ (gainOf (22.0), calibrationFrom ("0"));
    EXPECT_DOUBLE_EQ (gainOf (22.0), calibrationFrom ("-18"));
    EXPECT_DOUBLE_EQ (gainOf (22.0), calibrationFrom ("1e300"));
    EXPECT_DOUBLE_EQ (gainOf (22.0), calibrationFrom ("nan"));
    EXPECT_DOUBLE_EQ (gainOf (22.0), calibrationFrom ("inf"));
}

TEST_F (Construction, TheEndsOfTheCalibrationBelongToIt)
{
    EXPECT_DOUBLE_EQ (gainOf (16.0), calibrationFrom ("16"));
    EXPECT_DOUBLE_EQ (gainOf (24.0), calibrationFrom ("24.0"));
    EXPECT_DOUBLE_EQ (gainOf (17.5), calibrationFrom ("17.5"));
}

TEST_F (Construction, AnyFactorFromOneToSixteenIsTaken)
{
    for (int factor = 1; factor <= 16; ++factor)
    {
        file.write ({ { "Oversampling", std::to_string (factor).c_str() } });
        CorvaneQ7AudioProcessor processor;

        EXPECT_EQ (factor, processor.oversamplingRequested);
        EXPECT_EQ (factor == 1 ? 0 : 52, processor.getLatencySamples()) << factor;
    }
}

TEST_F (Construction, AFactorOutsideItsRangeReadsAsOne)
{
    for (const auto* stored : { "17", "0", "-1", "-3", "99", "2147483647", "-2147483648" })
        EXPECT_EQ (1, factorFrom (stored)) << stored;
}

TEST_F (Construction, AFactorOfThreeBuildsItsOwnFilters)
{
    file.write ({ { "Oversampling", "3" } });
    CorvaneQ7AudioProcessor processor;
    processor.setRateAndBufferSizeDetails (44100.0, 64);
    processor.prepareToPlay (44100.0, 64);

    EXPECT_EQ (3, processor.oversamplingCurrent);
    ASSERT_EQ (2u, processor.oversamplers.size());

    for (const auto& oversampler : processor.oversamplers)
    {
        EXPECT_EQ (3, oversampler.factor);
        EXPECT_EQ (157, oversampler.tapCount);
    }
}

TEST_F (Construction, TheZoomIsLimited)
{
    EXPECT_EQ (0.7f, zoomFrom ("0.7"));
    EXPECT_EQ (0.7f, zoomFrom ("0.1"));
    EXPECT_EQ (0.7f, zoomFrom ("-5"));
    EXPECT_EQ (0.75f, zoomFrom ("0.75"));
    EXPECT_EQ (1.0f, zoomFrom ("1"));
    EXPECT_EQ (1.0f, zoomFrom ("1.5"));
    EXPECT_EQ (1.0f, zoomFrom ("1e30"));

    const auto fromNan = zoomFrom ("nan");
    EXPECT_GE (fromNan, 0.7f);
    EXPECT_LE (fromNan, 1.0f);
}

TEST_F (Construction, ATextThatIsNoNumberReadsAsZero)
{
    file.write ({ { "Calibration", "loud" }, { "Oversampling", "many" }, { "UIZoom", "big" } });
    CorvaneQ7AudioProcessor processor;

    EXPECT_DOUBLE_EQ (gainOf (22.0), processor.settingsSlots[0].calibrationGain);
    EXPECT_EQ (1, processor.oversamplingRequested);
    EXPECT_EQ (0.7f, processor.uiZoom);
    EXPECT_EQ (0, processor.getLatencySamples());
}

TEST_F (Construction, TheKeysAreReadWithTheirCase)
{
    file.write ({ { "calibration", "16" }, { "OVERSAMPLING", "8" }, { "UiZoom", "0.8" } });
    CorvaneQ7AudioProcessor processor;
    expectDefaults (processor);
}

TEST_F (Construction, ADamagedFileReadsAsTheDefaults)
{
    for (const auto* text :
         { "", "not an element", "<PROPERTIES><VALUE name=\"Oversampling\"", "<OTHER/>", "\x01\x02\xff" })
    {
        file.writeText (juce::String::fromUTF8 (text));
        CorvaneQ7AudioProcessor processor;
        expectDefaults (processor);
    }
}

TEST_F (Construction, AFolderInTheFilesPlaceReadsAsTheDefaults)
{
    ASSERT_TRUE (SettingsFile::location().createDirectory().wasOk());
    CorvaneQ7AudioProcessor processor;
    expectDefaults (processor);
}

#if CORVANE_TEST_HAS_MXCSR
TEST_F (Construction, TheConstructingThreadFlushesDenormals)
{
    constexpr unsigned flushBits = 0x8040; // flush-to-zero and denormals-are-zero
    const auto before = _mm_getcsr();
    _mm_setcsr (before & ~flushBits);

    CorvaneQ7AudioProcessor processor;
    const auto after = _mm_getcsr();
    _mm_setcsr (before);

    EXPECT_EQ (flushBits, after & flushBits);
}
#endif
