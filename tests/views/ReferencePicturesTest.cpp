// SPDX-License-Identifier: GPL-3.0-or-later
// The editor as it is painted now against the pictures that are kept. After a change that is meant to be seen, renew them
// with `scripts/screenshots.sh --renew`, look at each, and commit them with the reason.
#include "editor/CorvaneQ7Editor.h"
#include "views/EditorViews.h"
#include "views/PictureComparison.h"

#include <gtest/gtest.h>

namespace EditorViews
{
static void PrintTo (const View& view, std::ostream* stream) { *stream << view.name; }
} // namespace EditorViews

namespace
{
// Before the first text of the process is written.
const bool fontsAreKnown = EditorViews::useKnownFonts();

std::vector<EditorViews::View> references()
{
    std::vector<EditorViews::View> kept;

    for (auto& view : EditorViews::all())
        if (view.isReference)
            kept.push_back (view);

    return kept;
}

class ReferencePicture : public ::testing::TestWithParam<EditorViews::View>
{
};

juce::File fileOf (const EditorViews::View& view)
{
    return juce::File (CORVANE_REFERENCES).getChildFile (view.name + ".png");
}
} // namespace

TEST_P (ReferencePicture, IsStillWhatTheEditorShows)
{
    const auto& view = GetParam();

    if (! fontsAreKnown)
        GTEST_SKIP() << "Liberation Sans (package fonts-liberation) is not installed: texts would be of another width";

    if (view.needsScreen && juce::Desktop::getInstance().getDisplays().displays.isEmpty())
        GTEST_SKIP() << "the framework shows menus on a screen only: run under tests/support/with_screen.py";

    const auto reference = juce::ImageFileFormat::loadFrom (fileOf (view));
    const auto picture = EditorViews::take (view);
    const auto result = PictureComparison::alike (reference, picture.image, picture.systemText);

    if (! result)
    {
        const juce::File folder (CORVANE_DIFFERENCES);
        folder.createDirectory();
        EditorViews::writePng (picture.image, folder.getChildFile (view.name + ".png"));
        EditorViews::writePng (PictureComparison::difference (reference, picture.image),
                               folder.getChildFile (view.name + "-difference.png"));
        ADD_FAILURE() << view.name << ": " << result.message()
                      << "\n  painted now, and the difference: " << folder.getFullPathName();
    }
}

INSTANTIATE_TEST_SUITE_P (Views, ReferencePicture, ::testing::ValuesIn (references()),
                          [] (const auto& instance)
                          { return instance.param.name.removeCharacters ("-").toStdString(); });

TEST (ReferencePictures, AreThoseOfTheViewsAndNoOthers)
{
    juce::StringArray expected, found;

    for (const auto& view : references())
        expected.add (fileOf (view).getFileName());

    for (const auto& file : juce::File (CORVANE_REFERENCES).findChildFiles (juce::File::findFiles, false))
        found.add (file.getFileName());

    expected.sort (false);
    found.sort (false);
    EXPECT_EQ (expected.joinIntoString (" "), found.joinIntoString (" "));
}

TEST (ReferencePictures, StaySmall)
{
    constexpr juce::int64 mostBytes = 3'000'000; // every version stays in the repository for ever
    juce::int64 bytes = 0;

    for (const auto& file : juce::File (CORVANE_REFERENCES).findChildFiles (juce::File::findFiles, false))
        bytes += file.getSize();

    EXPECT_LT (bytes, mostBytes);
}
