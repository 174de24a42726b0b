// SPDX-License-Identifier: GPL-3.0-or-later
#include "render/TypedText.h"

#include <gtest/gtest.h>

TEST (TypedTextTest, ShortestDigitsBringEveryFloatBack)
{
    auto longest = std::size_t { 0 };

    for (int i = 0; i <= 100000; ++i)
    {
        const auto x = static_cast<float> (i) / 99991.0f; // a prime: hardly any of them is short
        const auto text = TypedText::shortest (x);
        EXPECT_EQ (static_cast<float> (*TypedText::number (text)), x) << text;
        longest = std::max (longest, text.size());
    }

    EXPECT_LE (longest, 14u); // nine digits, a point and an exponent
    EXPECT_EQ (TypedText::shortest (0.30103f), "0.30103");
    EXPECT_EQ (TypedText::shortest (1.0f), "1");
}

TEST (TypedTextTest, WhatIsShortStaysWhole)
{
    EXPECT_EQ (TypedText::shortened ("", 4), "");
    EXPECT_EQ (TypedText::shortened ("abcd", 4), "abcd");
    EXPECT_EQ (TypedText::quoted (std::string (64, 'x')), '"' + std::string (64, 'x') + '"');
}

TEST (TypedTextTest, WhatIsLongLosesItsMiddle)
{
    EXPECT_EQ (TypedText::shortened ("abcde", 4), "ab...de");
    EXPECT_EQ (TypedText::shortened (std::string (2000000, 'x') + "yz", 4), "xx...yz");
    EXPECT_EQ (TypedText::quoted (std::string (32, 'a') + '-' + std::string (32, 'b')),
               '"' + std::string (32, 'a') + "..." + std::string (32, 'b') + '"');
}

TEST (TypedTextTest, NoCharacterIsCutInTwo)
{
    // Two, three and four bytes a character, with the cut before, in and behind one.
    for (const auto* character : { "\u00e9", "\u20ac", "\U0001d11e" })
        for (const auto* before : { "", "x", "xx", "xxx" })
        {
            std::string text = before;

            for (int i = 0; i < 20; ++i)
                text += character;

            const auto size = std::string (character).size();
            const auto shorter = TypedText::shortened (text + before, 16);
            const auto cut = shorter.find ("...");
            const auto numBefore = std::string (before).size();
            EXPECT_EQ ((cut - numBefore) % size, 0u) << shorter;
            EXPECT_EQ ((shorter.size() - cut - 3 - numBefore) % size, 0u) << shorter;
            EXPECT_LE (shorter.size(), 16u + 3u);
        }
}

TEST (TypedTextTest, BytesThatBeginNoCharacterAreTakenAwayWhole)
{
    EXPECT_EQ (TypedText::shortened (std::string (1000, '\x80'), 16), "...");
}
