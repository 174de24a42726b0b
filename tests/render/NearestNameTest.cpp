// SPDX-License-Identifier: GPL-3.0-or-later
#include "render/NearestName.h"

#include <gtest/gtest.h>

TEST (NearestNameTest, OffersWhatIsOneLetterAway)
{
    const std::vector<std::string> names { "Mix", "MasterGain", "MidGain" };

    for (const auto* meant : { "mastergain", "MasterGian", "MasteGain", "MasterrGain", "MasterGein" })
        EXPECT_EQ (NearestName::find (meant, names), "MasterGain") << meant;

    EXPECT_EQ (NearestName::find ("Trombone", names), "");
}

TEST (NearestNameTest, LooksForNothingLongerThanItsLimit)
{
    // The last letter is wrong. At a name of two million the search would take seconds.
    for (const auto& [length, isFound] :
         { std::pair { NearestName::longest, true }, std::pair { NearestName::longest + 1, false } })
    {
        const std::string name (length, 'a');
        const auto wanted = std::string (length - 1, 'a') + 'b';
        EXPECT_EQ (NearestName::find (wanted, { name }), isFound ? name : "") << length;
    }
}
