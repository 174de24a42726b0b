// SPDX-License-Identifier: GPL-3.0-or-later
// The settings file as others leave it: odd, damaged, made to do harm, or written and read by two threads at once.
#include "parameters/UserDefaults.h"

#include "states/StateBlocks.h"

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <cmath>
#include <thread>

namespace
{
/** Far above what reading the file takes (well below a millisecond), and far below what hostile texts take in a reader
    that follows them (seconds to minutes, where they do not crash it). */
constexpr auto timeLimit = std::chrono::milliseconds (1000);

std::string repeated (const std::string& text, int times)
{
    std::string all;

    for (int i = 0; i < times; ++i)
        all += text;

    return all;
}

std::string around (const std::string& inner) { return "<PROPERTIES>" + inner + "</PROPERTIES>"; }

const std::string factorOfFour ("<VALUE name=\"Oversampling\" val=\"4\"/>");
} // namespace

class UserDefaultsFile : public ::testing::Test
{
protected:
    void expectFactor (int factor, const std::string& text)
    {
        options.writeText (text);
        EXPECT_EQ (factor, UserDefaults::read().oversampling) << text.substr (0, 200);
    }

    /** No instance takes anything of it, and none takes long or ends the program. */
    void expectRefused (const std::string& text)
    {
        options.writeText (text);
        const auto start = std::chrono::steady_clock::now();
        const auto values = UserDefaults::read();
        const CorvaneQ7AudioProcessor processor;
        EXPECT_LT (std::chrono::steady_clock::now() - start, timeLimit);

        EXPECT_EQ (22.0, values.calibrationDb) << text.substr (0, 200);
        EXPECT_EQ (1, values.oversampling) << text.substr (0, 200);
        EXPECT_EQ (1.0, values.uiZoom) << text.substr (0, 200);
        EXPECT_EQ (1, processor.oversamplingRequested);
    }

    StateBlocks::StoredOptions options;
};

// ---- odd, but what a hand may write --------------------------------------------------------------
TEST_F (UserDefaultsFile, IsReadInAnyLayout)
{
    expectFactor (4, around (factorOfFour));
    expectFactor (4, "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\r\n\r\n" + around ("\r\n  " + factorOfFour + "\r\n"));
    expectFactor (4, "\xef\xbb\xbf<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
                         + around (factorOfFour)); // a byte order mark
    expectFactor (4, "\xef\xbb\xbf" + around (factorOfFour));
    expectFactor (4, around ("<OTHER/>" + factorOfFour + "<VALUE name=\"Colour\" val=\"green\"/>"));
    expectFactor (4, around ("<VALUE val='4' name='Oversampling'></VALUE>"));
}

TEST_F (UserDefaultsFile, TheLastOfTwoEntriesCounts)
{
    expectFactor (8, around (factorOfFour + "<VALUE name=\"Oversampling\" val=\"8\"/>"));
}

TEST_F (UserDefaultsFile, KeysAreTakenByTheirLetters)
{
    expectFactor (1, around ("<VALUE name=\"oversampling\" val=\"4\"/>"));
    expectFactor (1, around ("<value name=\"Oversampling\" val=\"4\"/>"));
    expectFactor (1, around ("<VALUE name=\"Oversampling\" value=\"4\"/>"));
    expectFactor (1, "<OPTIONS>" + factorOfFour + "</OPTIONS>");
    expectFactor (1, around (around (factorOfFour)));
}

TEST_F (UserDefaultsFile, AValueOutOfItsRangeIsTheDefault)
{
    for (const auto* text : { "0", "17", "-1", "2000000000", "99999999999999999999", "four", "" })
        expectFactor (1, around (std::string ("<VALUE name=\"Oversampling\" val=\"") + text + "\"/>"));

    const auto calibration = [this] (const char* text)
    {
        options.write ({ { "Calibration", text } });
        return UserDefaults::read().calibrationDb;
    };

    EXPECT_EQ (16.0, calibration ("16"));
    EXPECT_EQ (24.0, calibration ("24.0"));

    for (const auto* text : { "15.999999", "24.000001", "30", "nan", "inf", "-inf", "1e400", "loud", "" })
        EXPECT_EQ (22.0, calibration (text)) << text;

    const auto zoom = [this] (const char* text)
    {
        options.write ({ { "UIZoom", text } });
        return UserDefaults::read().uiZoom;
    };

    EXPECT_EQ (0.7, zoom ("0.5"));
    EXPECT_EQ (0.85, zoom ("0.85"));
    EXPECT_EQ (1.0, zoom ("1e30"));
    EXPECT_EQ (1.0, zoom ("nan"));
    EXPECT_EQ (0.7, zoom ("-inf"));
    EXPECT_EQ (0.7, zoom ("small"));
}

// ---- damaged, or made to do harm -----------------------------------------------------------------
TEST_F (UserDefaultsFile, ThatIsNoListOfPropertiesIsNone)
{
    for (const auto* text :
         { "", " ", "x", "<", "<PROPERTIES", "PROPERTIES", "<>", "</PROPERTIES>", "<?xml", "<?xml?>" })
        expectRefused (text);

    expectRefused (around (factorOfFour).substr (0, 40));
    expectRefused (std::string ("PROP\1\0\0\0Oversampling\0004\0", 23)); // the framework's binary forms
    expectRefused (std::string ("PROP\xff\xff\xff\x7f", 8) + repeated ("Oversampling", 1000));
    expectRefused ("CPRPx\1" + factorOfFour);
}

TEST_F (UserDefaultsFile, ManyNestedTagsDoNotFillTheStack)
{
    expectRefused (repeated ("<a>", 60000));
    expectRefused (around (repeated ("<a>", 60000)));
    expectRefused ("<PROPERTIES>" + factorOfFour + repeated ("<VALUE>", 60000));
    expectRefused ("<PROPERTIES>" + factorOfFour + repeated ("<a>", 20000)); // within the length that is read
}

TEST_F (UserDefaultsFile, EntitiesDoNotExpand)
{
    std::string text ("<!DOCTYPE PROPERTIES [<!ENTITY a0 \"xxxxxxxxxx\">");

    for (int i = 1; i < 10; ++i)
        text += "<!ENTITY a" + std::to_string (i) + " \"" + repeated ("&a" + std::to_string (i - 1) + ";", 10) + "\">";

    expectRefused (text + "]>" + around (factorOfFour + "&a9;"));
    expectRefused (around (factorOfFour + "<VALUE name=\"Colour\" val=\"&amp;\"/>"));
    expectRefused (around (factorOfFour + "<!-- four -->"));
}

TEST_F (UserDefaultsFile, AnInstructionWithinAnElementDoesNotHoldTheReader)
{
    expectRefused (around (factorOfFour + "<?x?>y"));
    expectRefused ("<?xml version=\"1.0\"?>" + around (factorOfFour + "<VALUE><?x?>y</VALUE>"));
}

TEST_F (UserDefaultsFile, ATextThatEndsWithinAnEntityIsNotReadBeyond)
{
    for (const auto* end : { "&", "&#", "&#x", "&#x4", "&#12", "&am", "&lt" })
        expectRefused ("<PROPERTIES><VALUE name=\"Oversampling\" val=\"" + std::string (end));
}

TEST_F (UserDefaultsFile, ATextThatIsNotUtf8IsNotRead)
{
    for (const auto* bytes : { "\xff", "\xc3", "\xe2\x82", "\xf0\x9f\x8e", "\xc0\x80", "\xff\xfe<" })
        expectRefused (around (factorOfFour) + bytes);
}

TEST_F (UserDefaultsFile, ALongFileDoesNotTakeLong)
{
    std::string attributes;

    for (int i = 0; i < 100000; ++i)
        attributes += " a" + std::to_string (i) + "=\"1\"";

    expectRefused (around ("<VALUE name=\"Oversampling\" val=\"4\"" + attributes + "/>"));
    expectRefused (around (factorOfFour + std::string (64 * 1024 * 1024, ' ')));

    // What is cut at the length that is read must not count as the whole.
    const auto length = 64 * 1024 - static_cast<int> (around (factorOfFour).size());
    expectFactor (4, around (factorOfFour) + std::string (static_cast<std::size_t> (length), ' '));
    expectRefused (around (factorOfFour) + std::string (static_cast<std::size_t> (length + 1), ' '));
}

TEST_F (UserDefaultsFile, IsReplacedByAValidOneWithTheNextSave)
{
    for (const auto& hostile : { repeated ("<a>", 60000), around (factorOfFour + "&"), std::string ("garbage") })
    {
        options.writeText (hostile);
        EXPECT_TRUE (UserDefaults::saveCalibrationDb (18));
        EXPECT_EQ (18.0, UserDefaults::read().calibrationDb);
        EXPECT_EQ (1, UserDefaults::read().oversampling);
    }
}

TEST_F (UserDefaultsFile, ASaveIsReadBackWhateverStoodBeside)
{
    // The framework writes these as entities, which are refused.
    options.writeText (around ("<VALUE name=\"Colour\" val=\"gr\xc3\xbcn\"/>" + factorOfFour));
    EXPECT_EQ (4, UserDefaults::read().oversampling);
    EXPECT_TRUE (UserDefaults::saveCalibrationDb (18));
    EXPECT_EQ (18.0, UserDefaults::read().calibrationDb);

    // A child would be taken for the value.
    options.writeText (around ("<VALUE name=\"Calibration\" val=\"20\"><x/></VALUE>"));
    EXPECT_TRUE (UserDefaults::saveCalibrationDb (18));
    EXPECT_EQ (18.0, UserDefaults::read().calibrationDb);
    EXPECT_EQ (std::string::npos, options.read().find ("<x"));
}

TEST_F (UserDefaultsFile, AFolderOfItsNameIsNoFile)
{
    std::filesystem::create_directories (options.file());
    EXPECT_EQ (1, UserDefaults::read().oversampling);
    EXPECT_FALSE (UserDefaults::saveOversampling (4));
    EXPECT_TRUE (std::filesystem::is_directory (options.file()));
}

TEST_F (UserDefaultsFile, ThatIsGoneReadsAsTheDefaultsAgain)
{
    EXPECT_TRUE (UserDefaults::saveOversampling (4));
    EXPECT_EQ (4, UserDefaults::read().oversampling);
    std::filesystem::remove (options.file());
    EXPECT_EQ (1, UserDefaults::read().oversampling);
    EXPECT_TRUE (UserDefaults::saveCalibrationDb (18));
    EXPECT_EQ (1, UserDefaults::read().oversampling);
}

// ---- two threads ---------------------------------------------------------------------------------
class UserDefaultsThreads : public ::testing::Test
{
protected:
    template <typename Work>
    void whileOthers (Work&& othersWork, int seconds, const std::function<void()>& ours)
    {
        std::atomic<bool> stop { false };
        std::thread other (
            [&]
            {
                for (int i = 0; ! stop; ++i)
                    othersWork (i);
            });

        const auto end = std::chrono::steady_clock::now() + std::chrono::seconds (seconds);

        while (std::chrono::steady_clock::now() < end)
            ours();

        stop = true;
        other.join();
    }

    StateBlocks::StoredOptions options;
};

TEST_F (UserDefaultsThreads, AHostRestoresWhileTheMenuOpensAndSaves)
{
    CorvaneQ7AudioProcessor processor;
    const auto session = StateBlocks::with ({ { "Mix", "0.5" } });
    int rounds = 0;

    whileOthers ([&] (int i) { UserDefaults::saveOversampling (1 + i % 2 * 3); }, 3,
                 [&]
                 {
                     StateBlocks::restore (processor, session);
                     ASSERT_TRUE (processor.oversamplingRequested == 1 || processor.oversamplingRequested == 4);
                     ASSERT_EQ (22.0, UserDefaults::read().calibrationDb);
                     ++rounds;
                 });

    EXPECT_GT (rounds, 10);
}

TEST_F (UserDefaultsThreads, NoSaveUndoesAnother)
{
    // Each thread has a key of its own, and finds there what it wrote last, whatever the other does.
    std::atomic<int> othersLosses { 0 };
    int rounds = 0, losses = 0;

    whileOthers (
        [&] (int i)
        {
            UserDefaults::saveCalibrationDb (16 + i % 9);
            othersLosses += UserDefaults::read().calibrationDb == 16 + i % 9 ? 0 : 1;
        },
        3,
        [&]
        {
            const auto factor = 1 + ++rounds % 16;
            UserDefaults::saveOversampling (factor);
            losses += UserDefaults::read().oversampling == factor ? 0 : 1;
        });

    EXPECT_GT (rounds, 10);
    EXPECT_EQ (0, losses);
    EXPECT_EQ (0, othersLosses);
}
