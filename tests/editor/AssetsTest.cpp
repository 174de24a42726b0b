// SPDX-License-Identifier: GPL-3.0-or-later
#include "assets/Assets.h"

#include <gtest/gtest.h>

#include <set>
#include <vector>

namespace
{
struct Picture
{
    std::string file; // below images/, without its ending
    juce::Image image;
    int width, height;
    bool hasAlpha;
};

void add (std::vector<Picture>& pictures, const std::string& name, const Assets::KnobImages& images, int size)
{
    pictures.push_back ({ name + "-background", images.background, size, size, true });
    pictures.push_back ({ name + "-rotor", images.rotor, size, size, true });
    pictures.push_back ({ name + "-top", images.top, size, size, true });
}

void add (std::vector<Picture>& pictures, const std::string& off, const std::string& on,
          const Assets::TwoStates& images, int width, int height, bool hasAlpha)
{
    pictures.push_back ({ off, images.off, width, height, hasAlpha });
    pictures.push_back ({ on, images.on, width, height, hasAlpha });
}

void add (std::vector<Picture>& pictures, const std::string& name, const Assets::KeyImages& images)
{
    pictures.push_back ({ name, images.normal, 48, 48, true });
    pictures.push_back ({ name + "-over", images.over, 48, 48, true });
    pictures.push_back ({ name + "-down", images.down, 48, 48, true });
}

std::vector<Picture> allPictures()
{
    std::vector<Picture> all;
    all.push_back ({ "front", Assets::front(), 2700, 1350, false });
    add (all, "knob-big", Assets::bigKnob(), 240);
    add (all, "knob-mid", Assets::midKnob(), 144);
    add (all, "knob-small", Assets::smallKnob(), 108);
    all.push_back ({ "meter-scale", Assets::meterScale(), 116, 504, false });
    all.push_back ({ "meter-glass", Assets::meterGlass(), 116, 504, true });
    add (all, "button-link", "button-link-down", Assets::linkButton(), 170, 108, true);
    add (all, "button-niveau", "button-niveau-down", Assets::niveauButton(), 170, 108, true);
    add (all, "button-nuke", "button-nuke-down", Assets::nukeButton(), 170, 108, true);
    add (all, "button-ms", "button-ms-down", Assets::midSideButton(), 170, 108, true);
    add (all, "button-solo", "button-solo-down", Assets::soloButton(), 170, 108, true);
    add (all, "button-in", "button-in-down", Assets::bandInButton(), 170, 108, true);
    add (all, "switch-off", "switch-on", Assets::bypassSwitch(), 140, 158, true);
    add (all, "lamp-green-off", "lamp-green-on", Assets::greenLamp(), 50, 50, true);
    add (all, "lamp-red-off", "lamp-red-on", Assets::redLamp(), 50, 50, true);
    add (all, "lamp-yellow-off", "lamp-yellow-on", Assets::yellowLamp(), 50, 50, true);
    add (all, "toolbar-settings", Assets::settingsKey());
    add (all, "toolbar-a", Assets::slotAKey());
    add (all, "toolbar-b", Assets::slotBKey());
    add (all, "toolbar-copy-a-to-b", Assets::copyAToBKey());
    add (all, "toolbar-copy-b-to-a", Assets::copyBToAKey());
    add (all, "bar-logo", "bar-logo-down", Assets::barLogo(), 228, 48, false);
    add (all, "bar-menu", "bar-menu-down", Assets::barMenu(), 48, 48, false);
    all.push_back ({ "about-background", Assets::aboutBackground(), 900, 600, false });
    all.push_back ({ "about-brand", Assets::aboutBrand(), 180, 72, true });
    all.push_back ({ "about-distributor", Assets::aboutDistributor(), 276, 64, true });
    return all;
}

juce::File imageFile (const std::string& name)
{
    return juce::File (CORVANE_ASSET_FOLDER).getChildFile ("images").getChildFile (name + ".png");
}
} // namespace

TEST (AssetPictures, AreFiftyFourOfTheRightSizesAndChannels)
{
    const auto all = allPictures();
    EXPECT_EQ (54u, all.size());

    for (const auto& picture : all)
    {
        ASSERT_TRUE (picture.image.isValid()) << picture.file;
        EXPECT_EQ (picture.width, picture.image.getWidth()) << picture.file;
        EXPECT_EQ (picture.height, picture.image.getHeight()) << picture.file;
        EXPECT_EQ (picture.hasAlpha ? juce::Image::ARGB : juce::Image::RGB, picture.image.getFormat()) << picture.file;
    }
}

TEST (AssetPictures, AreTheFilesOfTheirNames)
{
    for (const auto& picture : allPictures())
    {
        const auto decoded = juce::ImageFileFormat::loadFrom (imageFile (picture.file));
        ASSERT_TRUE (decoded.isValid()) << picture.file;
        ASSERT_EQ (picture.image.getBounds(), decoded.getBounds()) << picture.file;
        auto differences = 0;

        for (int y = 0; y<decoded.getHeight(); y += decoded.getHeight()> 1000 ? 7 : 1)
            for (int x = 0; x<decoded.getWidth(); x += decoded.getWidth()> 1000 ? 7 : 1)
                differences += decoded.getPixelAt (x, y) != picture.image.getPixelAt (x, y) ? 1 : 0;

        EXPECT_EQ (0, differences) << picture.file;
    }
}

TEST (AssetPictures, AreEightBitsAChannelInTheFile)
{
    for (const auto& picture : allPictures())
    {
        juce::MemoryBlock bytes;
        ASSERT_TRUE (imageFile (picture.file).loadFileAsData (bytes)) << picture.file;
        ASSERT_GT (bytes.getSize(), 33u);
        // Signature (8), length and name of the header (8), width and height (8), depth, colour type.
        EXPECT_EQ (8, bytes[24]) << picture.file;
        EXPECT_EQ (picture.hasAlpha ? 6 : 2, bytes[25]) << picture.file;
    }
}

TEST (AssetPictures, NoFileLiesThereUnused)
{
    std::set<juce::String> known;

    for (const auto& picture : allPictures())
        known.insert (juce::String (picture.file) + ".png");

    for (const auto& file :
         juce::File (CORVANE_ASSET_FOLDER).getChildFile ("images").findChildFiles (juce::File::findFiles, false))
        EXPECT_EQ (1u, known.count (file.getFileName())) << file.getFileName();
}

TEST (AssetPictures, StatesDiffer)
{
    const auto expectDifferent = [] (const juce::Image& a, const juce::Image& b)
    {
        auto differences = 0;

        for (int y = 0; y < a.getHeight(); ++y)
            for (int x = 0; x < a.getWidth(); ++x)
                differences += a.getPixelAt (x, y) != b.getPixelAt (x, y) ? 1 : 0;

        EXPECT_GT (differences, 40);
    };

    for (const auto& two :
         { Assets::linkButton(), Assets::niveauButton(), Assets::nukeButton(), Assets::midSideButton(),
           Assets::soloButton(), Assets::bandInButton(), Assets::bypassSwitch(), Assets::greenLamp(), Assets::redLamp(),
           Assets::yellowLamp(), Assets::barLogo(), Assets::barMenu() })
        expectDifferent (two.off, two.on);

    for (const auto& three : { Assets::settingsKey(), Assets::slotAKey(), Assets::slotBKey(), Assets::copyAToBKey(),
                               Assets::copyBToAKey() })
    {
        expectDifferent (three.normal, three.over);
        expectDifferent (three.normal, three.down);
        expectDifferent (three.over, three.down);
    }
}

TEST (AssetPictures, LampsHaveTheirColoursInTheMiddle)
{
    const std::tuple<Assets::TwoStates, juce::uint32, juce::uint32> lamps[] {
        { Assets::greenLamp(), 0xff347600, 0xff4bff00 },
        { Assets::redLamp(), 0xff761116, 0xffff0000 },
        { Assets::yellowLamp(), 0xff766000, 0xffffd400 },
    };

    // The middle of 50 pixels lies between two of them.
    for (const auto& [images, off, on] : lamps)
        for (const auto& at : { juce::Point<int> { 24, 24 }, { 25, 24 }, { 24, 25 }, { 25, 25 } })
        {
            EXPECT_EQ (juce::Colour (off).toString(), images.off.getPixelAt (at.x, at.y).toString());
            EXPECT_EQ (juce::Colour (on).toString(), images.on.getPixelAt (at.x, at.y).toString());
        }
}

TEST (AssetPictures, AreSharedByAllWindows)
{
    EXPECT_TRUE (Assets::front() == Assets::front());
    const auto one = Assets::bigKnob(), other = Assets::bigKnob();
    EXPECT_TRUE (one.rotor == other.rotor);
}

// ---- the digits' face --------------------------------------------------------------------------
TEST (AssetFont, IsTheSevenSegmentFace)
{
    const auto face = Assets::segment7();
    ASSERT_TRUE (face != nullptr);
    EXPECT_EQ (juce::String ("Segment7"), face->getName());
}

TEST (AssetFont, AllDigitsAreEquallyWideSoThatGhostAndLitCoincide)
{
    const auto font = juce::Font (Assets::segment7()).withHeight (30.0f);
    const auto digit = font.getStringWidthFloat ("8");
    EXPECT_GT (digit, 5.0f);

    for (const auto* text : { "0", "1", "2", "3", "4", "5", "6", "7", "9" })
        EXPECT_FLOAT_EQ (digit, font.getStringWidthFloat (text)) << text;

    EXPECT_FLOAT_EQ (font.getStringWidthFloat ("8.88"), font.getStringWidthFloat ("1.23"));
    EXPECT_FLOAT_EQ (font.getStringWidthFloat ("88.8"), font.getStringWidthFloat ("12.0"));
}

TEST (AssetFont, IsAFontOfPostScriptOutlines)
{
    juce::MemoryBlock bytes;
    ASSERT_TRUE (juce::File (CORVANE_ASSET_FOLDER).getChildFile ("fonts/Segment7.otf").loadFileAsData (bytes));
    ASSERT_GT (bytes.getSize(), 12u);
    EXPECT_EQ (std::string ("OTTO"), std::string (static_cast<const char*> (bytes.getData()), 4));
}
