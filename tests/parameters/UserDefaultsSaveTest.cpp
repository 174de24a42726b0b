// SPDX-License-Identifier: GPL-3.0-or-later
// "Save as default": the one thing that writes the user's file.
#include "ExpectedParameters.h"
#include "states/StateBlocks.h"

#include <gtest/gtest.h>

#include <locale>
#include <sstream>

class UserDefaultsSave : public ::testing::Test
{
protected:
    /** The text of a value in the file, or "none". */
    std::string stored (const std::string& key) const
    {
        const auto text = options.read();
        const auto at = text.find ("name=\"" + key + "\" val=\"");

        if (at == std::string::npos)
            return "none";

        const auto begin = text.find ("val=\"", at) + 5;
        return text.substr (begin, text.find ('"', begin) - begin);
    }

    double number (const std::string& key) const
    {
        std::istringstream text (stored (key));
        text.imbue (std::locale::classic());
        auto value = -1.0;
        text >> value;
        return value;
    }

    StateBlocks::StoredOptions options;
};

TEST_F (UserDefaultsSave, WritesEachOptionAtOnce)
{
    CorvaneQ7AudioProcessor processor;
    EXPECT_FALSE (std::filesystem::exists (options.file())); // reading made none

    EXPECT_TRUE (UserDefaults::saveCalibrationDb (18));
    EXPECT_EQ (18.0, number ("Calibration"));
    EXPECT_EQ ("none", stored ("Oversampling")); // each entry saves its own option alone
    EXPECT_EQ ("none", stored ("UIZoom"));

    EXPECT_TRUE (UserDefaults::saveOversampling (8));
    EXPECT_EQ ("8", stored ("Oversampling"));

    EXPECT_TRUE (UserDefaults::saveUiZoom (0.8));
    EXPECT_NEAR (0.8, number ("UIZoom"), 1.0e-6); // a float of the processor holds no more
    EXPECT_EQ (18.0, number ("Calibration"));
}

TEST_F (UserDefaultsSave, IsWhatTheNextInstanceStartsWith)
{
    {
        CorvaneQ7AudioProcessor processor;
        UserDefaults::saveCalibrationDb (17);
        UserDefaults::saveOversampling (4);
        UserDefaults::saveUiZoom (0.9);
    }

    const CorvaneQ7AudioProcessor next;
    EXPECT_DOUBLE_EQ (1.1523716865 * std::pow (10.0, 0.85), next.settingsSlots[0].calibrationGain);
    EXPECT_EQ (14.5075, next.settingsSlots[1].calibrationGain);
    EXPECT_EQ (4, next.oversamplingRequested);
    EXPECT_EQ (52, next.getLatencySamples());
    EXPECT_FLOAT_EQ (0.9f, next.uiZoom);
}

TEST_F (UserDefaultsSave, EveryRowOfTheMenusComesBackAsItWas)
{
    CorvaneQ7AudioProcessor processor;

    for (int db = 16; db <= 24; ++db)
    {
        UserDefaults::saveCalibrationDb (db);
        EXPECT_EQ (db, UserDefaults::read().calibrationDb);
    }

    for (const auto factor : { 1, 2, 4, 8, 16 })
    {
        UserDefaults::saveOversampling (factor);
        EXPECT_EQ (factor, CorvaneQ7AudioProcessor().oversamplingRequested);
    }

    for (const auto zoom : { 0.7f, 0.8f, 0.9f, 1.0f })
    {
        UserDefaults::saveUiZoom (static_cast<double> (zoom));
        EXPECT_FLOAT_EQ (zoom, CorvaneQ7AudioProcessor().uiZoom);
    }
}

TEST_F (UserDefaultsSave, DoesNotChangeTheInstance)
{
    CorvaneQ7AudioProcessor processor;
    Expected::Listener listener (processor);
    const auto calibration = processor.activeSettings().calibrationGain;
    UserDefaults::saveCalibrationDb (16);
    UserDefaults::saveOversampling (16);
    UserDefaults::saveUiZoom (0.7);
    EXPECT_EQ (calibration, processor.activeSettings().calibrationGain);
    EXPECT_EQ (1, processor.oversamplingRequested);
    EXPECT_EQ (0, processor.getLatencySamples());
    EXPECT_EQ (1.0f, processor.uiZoom);
    EXPECT_TRUE (listener.changes.empty());
    EXPECT_TRUE (listener.moves.empty());
}

TEST_F (UserDefaultsSave, ChoosingARowAloneWritesNothing)
{
    CorvaneQ7AudioProcessor processor;
    processor.setCalibration (16.0);
    processor.setOversampling (8);
    processor.uiZoom = 0.7f;
    EXPECT_FALSE (std::filesystem::exists (options.folder()));
}

TEST_F (UserDefaultsSave, KeepsWhatAnotherInstanceSavedMeanwhile)
{
    CorvaneQ7AudioProcessor first, second;
    UserDefaults::saveCalibrationDb (18);
    UserDefaults::saveOversampling (4);
    UserDefaults::saveUiZoom (0.8);
    EXPECT_EQ (18.0, number ("Calibration"));
    EXPECT_EQ ("4", stored ("Oversampling"));
    EXPECT_NEAR (0.8, number ("UIZoom"), 1.0e-6);
}

TEST_F (UserDefaultsSave, IsSeenByARestoreInAnotherInstance)
{
    CorvaneQ7AudioProcessor first, second;
    UserDefaults::saveCalibrationDb (18);
    UserDefaults::saveOversampling (4);
    StateBlocks::restore (second, StateBlocks::with ({}));
    EXPECT_DOUBLE_EQ (1.1523716865 * std::pow (10.0, 0.9), second.activeSettings().calibrationGain);
    EXPECT_EQ (4, second.oversamplingRequested);
}

TEST_F (UserDefaultsSave, KeepsKeysThatItDoesNotKnow)
{
    options.write ({ { "Calibration", "20" }, { "Colour", "green" } });
    CorvaneQ7AudioProcessor processor;
    UserDefaults::saveOversampling (2);
    EXPECT_EQ ("green", stored ("Colour"));
    EXPECT_EQ (20.0, number ("Calibration"));
}

TEST_F (UserDefaultsSave, WhereNothingCanBeWrittenSaysSoAndGoesOn)
{
    // A plain file stands where the folder has to be: no right of a user helps there.
    std::ofstream (options.folder()) << "in the way";
    CorvaneQ7AudioProcessor processor;
    EXPECT_FALSE (UserDefaults::saveCalibrationDb (18));
    EXPECT_FALSE (UserDefaults::saveOversampling (4));
    EXPECT_FALSE (UserDefaults::saveUiZoom (0.8));
    EXPECT_DOUBLE_EQ (1.1523716865 * std::pow (10.0, 1.1), CorvaneQ7AudioProcessor().activeSettings().calibrationGain);
}

TEST_F (UserDefaultsSave, IsTheSameInACountryWithADecimalComma)
{
    struct Comma : std::numpunct<char>
    {
        char do_decimal_point() const override { return ','; }
        char do_thousands_sep() const override { return '.'; }
        std::string do_grouping() const override { return "\3"; }
    };

    const auto old = std::locale::global (std::locale (std::locale::classic(), new Comma));
    std::ostringstream proof;
    proof << 0.5;
    CorvaneQ7AudioProcessor processor;
    UserDefaults::saveCalibrationDb (18);
    UserDefaults::saveUiZoom (0.85);
    const auto zoom = CorvaneQ7AudioProcessor().uiZoom;
    std::locale::global (old);

    ASSERT_EQ ("0,5", proof.str()); // or the locale was not the one meant
    EXPECT_EQ (std::string::npos, stored ("Calibration").find (','));
    EXPECT_EQ (std::string::npos, stored ("UIZoom").find (','));
    EXPECT_FLOAT_EQ (0.85f, zoom);
}

TEST_F (UserDefaultsSave, SavesTheCalibrationDerivedFromTheGain)
{
    // What the menu saves is the whole number behind the gain that sounds.
    CorvaneQ7AudioProcessor processor;

    for (int db = 16; db <= 24; ++db)
    {
        processor.setCalibration (db);
        EXPECT_EQ (db, UserDefaults::calibrationDbFor (processor.activeSettings().calibrationGain));
    }

    processor.selectSlot (1);
    EXPECT_EQ (22, UserDefaults::calibrationDbFor (processor.activeSettings().calibrationGain)); // 14.5075
}
