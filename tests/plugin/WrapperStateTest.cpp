// SPDX-License-Identifier: GPL-3.0-or-later
#include "plugin/WrapperState.h"

#include <juce_core/juce_core.h>

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace
{
/** The wrapper's section byte by byte, as sessions hold it. */
std::string section (char bypassMarker)
{
    const std::string content = std::string ("JUCEPrivateData\0\1\1Bypass\0\1\1", 27) + bypassMarker + '\0';
    return std::string (8, '\0') + content + static_cast<char> (content.size()) + std::string (7, '\0')
           + "JUCEPrivateData";
}

/** In memory of its own length, for the address checker. */
bool endsWithPrivateData (const std::string& session)
{
    const std::vector<char> exact (session.begin(), session.end());
    return WrapperState::endsWithPrivateData (exact.data(), exact.size());
}

bool isTaken (const std::string& text)
{
    juce::MemoryBlock block ("old", 3);
    const auto taken = WrapperState::fromText (juce::String (text), block);

    EXPECT_TRUE (taken || block == juce::MemoryBlock ("old", 3)) << text;
    return taken;
}
} // namespace

TEST (WrapperState, KnowsTheSectionForBothStatesOfTheBypass)
{
    for (const auto marker : { '\2', '\3' })
        for (const auto& own : { std::string(), std::string ("own"), std::string (5000, 'x') })
            EXPECT_TRUE (endsWithPrivateData (own + section (marker)));
}

TEST (WrapperState, TakesNothingElseForTheSection)
{
    EXPECT_FALSE (endsWithPrivateData (""));
    EXPECT_FALSE (endsWithPrivateData ("JUCEPrivateData"));
    EXPECT_FALSE (endsWithPrivateData (section ('\2') + "x"));
    EXPECT_FALSE (endsWithPrivateData (section ('\4')));

    for (const auto& whole : { section ('\2'), section ('\3') })
    {
        for (std::size_t start = 1; start <= whole.size(); ++start)
            EXPECT_FALSE (endsWithPrivateData (whole.substr (start))) << start;

        for (std::size_t length = 0; length < whole.size(); ++length)
            EXPECT_FALSE (endsWithPrivateData ("own" + whole.substr (0, length))) << length;

        for (std::size_t byte = 0; byte < whole.size(); ++byte)
            for (int bit = 0; bit < 8; ++bit)
            {
                auto damaged = "own" + whole;
                damaged[3 + byte] = static_cast<char> (damaged[3 + byte] ^ (1 << bit));
                const auto isTheOtherState = damaged == "own" + section ('\2') || damaged == "own" + section ('\3');
                EXPECT_EQ (endsWithPrivateData (damaged), isTheOtherState) << byte << " " << bit;
            }
    }
}

TEST (WrapperState, DecodesWhatTheFrameworkEncodes)
{
    for (int size = 0; size < 300; ++size)
    {
        juce::MemoryBlock block (static_cast<std::size_t> (size)), back;

        for (int i = 0; i < size; ++i)
            block[i] = static_cast<char> (i * 37 + size);

        ASSERT_TRUE (WrapperState::fromText (block.toBase64Encoding(), back)) << size;
        ASSERT_EQ (back.getSize(), block.getSize());
        EXPECT_TRUE (size == 0 || back == block) << size; // the framework's own comparison wants bytes
    }
}

TEST (WrapperState, RefusesATextOfAnotherSizeThanItTells)
{
    EXPECT_TRUE (isTaken ("5.ABCDEFG"));
    EXPECT_TRUE (isTaken ("0."));

    for (const auto* text :
         { "",           ".",         "5",          "5.",           "5.ABCDEF",           "5.ABCDEFGH",
           "4.ABCDEFG",  "6.ABCDEFG", "-5.ABCDEFG", "+5.ABCDEFG",   " 5.ABCDEFG",         "5 .ABCDEFG",
           "5x.ABCDEFG", ".ABCDEFG",  "-5.xxxx",    "2147483647.x", "4294967301.ABCDEFG", "99999999999999999999.x",
           "5.ABCDEF/",  "5.ABCDEF ", "5.ABC=EFG" })
        EXPECT_FALSE (isTaken (text)) << text;
}
