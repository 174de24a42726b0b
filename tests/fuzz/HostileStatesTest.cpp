// SPDX-License-Identifier: GPL-3.0-or-later
// Session blocks that nobody saved: damaged by a host, or made to do harm.
#include "parameters/ExpectedParameters.h"
#include "states/StateBlocks.h"
#include "support/Signals.h"

#include <gtest/gtest.h>

#include <chrono>
#include <cstring>
#include <memory>

namespace
{
using StateBlocks::around;
using StateBlocks::restore;
using StateBlocks::with;

/** Far above what reading a session takes (well below a millisecond), and far below what these texts take in a reader
    that follows them (seconds to minutes). */
constexpr auto timeLimit = std::chrono::milliseconds (1000);

std::string repeated (const std::string& text, int times)
{
    std::string all;

    for (int i = 0; i < times; ++i)
        all += text;

    return all;
}
} // namespace

class HostileStates : public ::testing::Test
{
protected:
    HostileStates()
    {
        for (int i = 0; i < Expected::numParameters; ++i)
            processor.setParameter (i, i == Expected::link ? 0.0f : 0.8f);

        processor.setCalibration (18.0);
        processor.uiZoom = 0.75f;
    }

    void restoreInTime (const std::string& block)
    {
        // In memory of its own length, so that a tool that watches the heap sees a read beyond the end.
        const auto exact = std::make_unique<char[]> (block.size());
        std::memcpy (exact.get(), block.data(), block.size());

        const auto start = std::chrono::steady_clock::now();
        processor.setStateInformation (exact.get(), static_cast<int> (block.size()));
        EXPECT_LT (std::chrono::steady_clock::now() - start, timeLimit);
    }

    void expectIgnoredInTime (const std::string& block)
    {
        const auto before = Expected::fieldsOf (record);
        const auto calibration = record.calibrationGain;
        restoreInTime (block);
        EXPECT_EQ (before, Expected::fieldsOf (record));
        EXPECT_EQ (calibration, record.calibrationGain);
        EXPECT_EQ (1, processor.oversamplingRequested);
        EXPECT_EQ (0.75f, processor.uiZoom);
    }

    StateBlocks::StoredOptions options;
    CorvaneQ7AudioProcessor processor;
    ChannelSettings& record = processor.activeSettings();
};

TEST_F (HostileStates, NestedEntitiesDoNotExpand)
{
    std::string text ("<?xml version=\"1.0\"?><!DOCTYPE CQ7SETTINGS [<!ENTITY a0 \"xxxxxxxxxx\">");

    for (int i = 1; i < 10; ++i)
    {
        const auto inner = "&a" + std::to_string (i - 1) + ";";
        text += "<!ENTITY a" + std::to_string (i) + " \"" + repeated (inner, 10) + "\">";
    }

    expectIgnoredInTime (around (text + "]><CQ7SETTINGS Mix=\"&a9;\"/>"));
}

TEST_F (HostileStates, AnEntityThatHoldsItselfDoesNotExpand)
{
    expectIgnoredInTime (
        around ("<!DOCTYPE x [<!ENTITY a \"&b;&b;\"><!ENTITY b \"&a;&a;\">]><CQ7SETTINGS Mix=\"&a;\"/>"));
    expectIgnoredInTime (around ("<!DOCTYPE x [<!ENTITY a SYSTEM \"/etc/hostname\">]><CQ7SETTINGS Mix=\"&a;\"/>"));
}

TEST_F (HostileStates, ATextThatEndsWithinAnEntityIsNotReadBeyond)
{
    for (const auto* end : { "&", "&#", "&#x", "&#x4", "&#12", "&am", "&lt" })
    {
        const auto text = std::string ("<CQ7SETTINGS Mix=\"") + end;
        const auto length = static_cast<std::uint32_t> (text.size());
        expectIgnoredInTime (StateBlocks::raw (StateBlocks::magic, length, text));
        expectIgnoredInTime (StateBlocks::raw (StateBlocks::magic, length + 1000, text));
    }
}

TEST_F (HostileStates, ATextThatEndsAnywhereIsNotReadBeyond)
{
    const std::string text ("<?xml version=\"1.0\"?><CQ7SETTINGS Mix='0.25' HPF = \"0.5\"><a b=\"c\"/></CQ7SETTINGS>");

    for (std::size_t size = 0; size <= text.size(); ++size)
    {
        processor.setParameter (Expected::mix, 1.0f);
        restoreInTime (StateBlocks::raw (StateBlocks::magic, 2000, text.substr (0, size)));

        // Up to the tag's end it is no session, and from the value's end on it may be read as one.
        if (size <= text.find (" Mix"))
            ASSERT_EQ (1.0, record.mix) << size;
        else
            ASSERT_TRUE (record.mix == 1.0 || record.mix == 0.25 || record.mix == 0.2 || record.mix == 0.0) << size;
    }

    EXPECT_EQ (0.25, record.mix);
}

TEST_F (HostileStates, ManyOpenTagsDoNotFillTheStack)
{
    expectIgnoredInTime (around (repeated ("<a>", 40000)));
    expectIgnoredInTime (around ("<CQ7SETTINGS>" + repeated ("<a>", 40000)));
    expectIgnoredInTime (around (repeated ("<a>", 20000)));
}

TEST_F (HostileStates, ManyAttributesDoNotTakeLong)
{
    std::string text ("<CQ7SETTINGS");

    for (int i = 0; i < 200000; ++i)
        text += " a" + std::to_string (i) + "=\"1\"";

    expectIgnoredInTime (around (text + "/>"));
}

TEST_F (HostileStates, ALongButSmallListOfAttributesDoesNotTakeLong)
{
    // As many as fit below the size that is refused: the reader looks up each among all.
    std::string text ("<CQ7SETTINGS");

    for (int i = 0; text.size() < 65000; ++i)
        text += " a" + std::to_string (i) + "=\"\"";

    restoreInTime (around (text + "/>"));
}

TEST_F (HostileStates, ALongBlockDoesNotTakeLong)
{
    expectIgnoredInTime (around ("<CQ7SETTINGS Mix=\"" + std::string (16 * 1024 * 1024, '0') + "\"/>"));
    expectIgnoredInTime (around (std::string (16 * 1024 * 1024, ' ')));
    expectIgnoredInTime (around ("<CQ7SETTINGS" + std::string (16 * 1024 * 1024, ' ') + "/>"));
}

TEST_F (HostileStates, ALengthOfHundredMegabytesReadsNoMoreThanThereIs)
{
    expectIgnoredInTime (StateBlocks::raw (StateBlocks::magic, 100000000u, "<CQ7SETTINGS Mix=\"0.2"));
    expectIgnoredInTime (StateBlocks::raw (StateBlocks::magic, 100000000u, "x"));
    expectIgnoredInTime (StateBlocks::raw (StateBlocks::magic, 0x7fffffffu, " "));
}

TEST_F (HostileStates, BrokenTextIsSafe)
{
    for (const auto* text : { "<",
                              "<>",
                              "</>",
                              "<CQ7SETTINGS",
                              "<CQ7SETTINGS ",
                              "<CQ7SETTINGS Mix",
                              "<CQ7SETTINGS Mix=",
                              "<CQ7SETTINGS Mix=\"",
                              "<?xml",
                              "<?",
                              "<!",
                              "<!--",
                              "<!DOCTYPE",
                              "<![CDATA[",
                              "]]>",
                              "\xff\xfe<",
                              "\xef\xbb\xbf",
                              "\xc3",
                              "\xf0\x9f",
                              "<\xc3\xa4/>" })
        restoreInTime (around (text));

    EXPECT_TRUE (std::isfinite (record.mix)); // what was read of the broken elements is a matter of the reader
}

TEST_F (HostileStates, NothingBehindABlockIsRead)
{
    // A text that ends within a character, with no zero behind it, in memory of exactly its size: the address
    // sanitizer sees any byte that is read beyond.
    for (const std::string text : { "\xc3", "\xe2\x82", "\xf0\x9f\x8e", "<CQ7SETTINGS\xf0" })
    {
        const auto block = StateBlocks::raw (StateBlocks::magic, static_cast<std::uint32_t> (text.size()), text);
        const std::unique_ptr<char[]> exact (new char[block.size()]);
        std::copy (block.begin(), block.end(), exact.get());
        processor.setStateInformation (exact.get(), static_cast<int> (block.size()));
    }

    EXPECT_TRUE (std::isfinite (record.mix));
}

TEST_F (HostileStates, AnInstructionWithinAnElementDoesNotHoldTheReader)
{
    expectIgnoredInTime (around ("<CQ7SETTINGS><?x?>y"));
    expectIgnoredInTime (around ("<CQ7SETTINGS><?x?>y</CQ7SETTINGS>"));
    expectIgnoredInTime (around ("<?xml version=\"1.0\"?><CQ7SETTINGS Mix=\"0.5\"><?x?>y</CQ7SETTINGS>"));
    expectIgnoredInTime (around ("<CQ7SETTINGS Mix=\"0.5\"><a> <?x?> y</a></CQ7SETTINGS>"));
    expectIgnoredInTime (StateBlocks::raw (StateBlocks::magic, 2000, "<CQ7SETTINGS><?x?>y"));

    // In front of the element it is a declaration, as other writers put there.
    restoreInTime (around ("<?xml version=\"1.0\"?><CQ7SETTINGS Mix=\"0.5\"/>"));
    EXPECT_EQ (0.5, record.mix);
}

TEST_F (HostileStates, ALengthThatEndsWithinACharacterIsNoText)
{
    // The whole character is there, behind what was announced; and it is not, in memory that ends where the block does.
    const std::string element ("<CQ7SETTINGS Mix=\"0.25\"/>");

    for (const std::string character : { "\xc3\xa4", "\xe2\x82\xac", "\xf0\x9f\x8e\xb5" })
    {
        for (std::size_t part = 1; part < character.size(); ++part)
        {
            const auto length = static_cast<std::uint32_t> (element.size() + part);
            expectIgnoredInTime (StateBlocks::raw (StateBlocks::magic, length, element + character + '\0'));
            expectIgnoredInTime (StateBlocks::raw (StateBlocks::magic, length, element + character.substr (0, part)));
        }

        processor.setParameter (Expected::mix, 0.8f);
        restoreInTime (around (element + character)); // up to its end it is one
        EXPECT_EQ (0.25, record.mix);
        processor.setParameter (Expected::mix, 0.8f);
        processor.setCalibration (18.0);
        processor.uiZoom = 0.75f;
    }
}

TEST_F (HostileStates, LongNumbersAreSafe)
{
    const std::string numbers[] = { std::string (60000, '9'),       "0." + std::string (60000, '9'),
                                    std::string (60000, '0') + "1", "1e" + std::string (9, '9'),
                                    "1e-" + std::string (9, '9'),   "-" + std::string (400, '1') + "e-400",
                                    std::string (1000, '-'),        std::string (1000, '.') };

    for (const auto& number : numbers)
    {
        restoreInTime (with ({ { "Mix", number.c_str() } }));
        EXPECT_GE (record.mix, 0.0);
        EXPECT_LE (record.mix, 1.0);

        restoreInTime (with ({ { "LowRatio", number.c_str() } }));
        restoreInTime (with ({ { "Oversampling", number.c_str() } }));
        restoreInTime (with ({ { "UIZoom", number.c_str() } }));
        restoreInTime (with ({ { "Calibration", number.c_str() } }));
    }
}

TEST_F (HostileStates, NullWithoutASizeIsSafe)
{
    const auto before = Expected::fieldsOf (record);
    processor.setStateInformation (nullptr, 0);
    processor.setStateInformation (nullptr, 100);
    processor.setStateInformation ("abc", -1);
    EXPECT_EQ (before, Expected::fieldsOf (record));
}

/** A session's calibration is taken as it stands: whatever it says, no sample may be no number. */
class HostileCalibration : public ::testing::TestWithParam<const char*>
{
};

TEST_P (HostileCalibration, NeverMakesASampleThatIsNoNumber)
{
    for (const auto* factor : { "1", "2" })
    {
        StateBlocks::StoredOptions options;
        CorvaneQ7AudioProcessor processor;
        processor.setRateAndBufferSizeDetails (48000.0, 256);
        processor.prepareToPlay (48000.0, 256);
        restore (processor, with ({ { "Calibration", GetParam() }, { "Oversampling", factor }, { "Mix", "0.7" } }));

        juce::MidiBuffer midi;

        for (int block = 0; block < 24; ++block) // over the 0.1 s of the first fade
        {
            auto buffer = Signals::whiteNoise (2, 256, 0xca1u + static_cast<std::uint32_t> (block), 0.9f);
            processor.processBlock (buffer, midi);
            ASSERT_TRUE (Signals::allFinite (buffer)) << "block " << block << ", factor " << factor;
        }

        // And what it did to the engine is gone with a usual one.
        restore (processor, with ({ { "Calibration", "22" }, { "Oversampling", factor } }));
        processor.prepareToPlay (48000.0, 256);
        auto loudest = 0.0;

        for (int block = 0; block < 24; ++block)
        {
            auto buffer = Signals::whiteNoise (2, 256, 0xca2u + static_cast<std::uint32_t> (block), 0.1f);
            processor.processBlock (buffer, midi);
            ASSERT_TRUE (Signals::allFinite (buffer)) << "block " << block << " after";
            loudest = std::max (loudest, Signals::rms (buffer, 0, 0, 256));
        }

        EXPECT_GT (loudest, 0.005); // noise of 0.1 has an RMS of 0.058: the sound goes on
    }
}

INSTANTIATE_TEST_SUITE_P (Texts, HostileCalibration,
                          ::testing::Values ("nan", "inf", "-inf", "1e400", "-1e400", "-200", "-100", "-99.999", "0",
                                             "100", "300", "600", "700", "760", "768", "769.4", "770", "800", "6000",
                                             "1e30", "abc", ""));
