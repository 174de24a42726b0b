// SPDX-License-Identifier: GPL-3.0-or-later
#include "editor/ProductLinks.h"
#include "EditorFixture.h"

#include <cstdlib>

namespace
{
class BottomBar : public EditorTest
{
protected:
    BottomBar()
    {
        bar().openAddress = [this] (const juce::String& address) { addresses.push_back (address); };
        bar().openFile = [this] (const juce::File& file) { files.push_back (file); };
    }

    KMBar& bar() { return *editor->bar; }

    std::vector<juce::String> addresses;
    std::vector<juce::File> files;
};
} // namespace

TEST_F (BottomBar, HasTheLogoLeftAndTheMenuRight)
{
    for (const auto& [w, h] : { std::pair { 1350, 723 }, { 945, 506 }, { 600, 400 } })
    {
        editor->setSize (w, h);
        EXPECT_EQ ((juce::Rectangle<int> { 0, 0, 114, 24 }), bar().logoButton->getBounds());
        EXPECT_EQ ((juce::Rectangle<int> { w - 24, 0, 24, 24 }), bar().menuButton->getBounds());
    }

    EXPECT_EQ (2, bar().getNumChildComponents());
}

TEST_F (BottomBar, ItsButtonsHaveTwoPicturesEach)
{
    const auto logo = Assets::barLogo(), menu = Assets::barMenu();
    EXPECT_TRUE (bar().logoButton->getNormalImage() == logo.off);
    EXPECT_TRUE (bar().logoButton->getDownImage() == logo.on);
    EXPECT_TRUE (bar().menuButton->getNormalImage() == menu.off);
    EXPECT_TRUE (bar().menuButton->getDownImage() == menu.on);
}

TEST_F (BottomBar, IsBlack)
{
    for (auto* child : bar().getChildren())
        child->setVisible (false);

    const auto image = painted (bar());

    for (int x = 0; x < bar().getWidth(); x += 3)
        for (const auto y : { 0, 12, 23 })
            EXPECT_EQ (juce::Colours::black, image.getPixelAt (x, y));
}

TEST_F (BottomBar, TheLogoLeadsToTheDistributor)
{
    Mouse::click (*bar().logoButton);
    EXPECT_EQ ((std::vector<juce::String> { ProductLinks::distributorHome }), addresses);
}

TEST_F (BottomBar, ItsMenu)
{
    const auto menu = bar().linksMenu();
    juce::PopupMenu::MenuItemIterator items (menu);
    std::vector<std::pair<int, juce::String>> rows;

    while (items.next())
    {
        const auto& item = items.getItem();
        rows.emplace_back (item.isSeparator ? -1 : item.itemID, item.text);
        EXPECT_TRUE (item.isSeparator || item.isEnabled);
        EXPECT_FALSE (item.isTicked);
        EXPECT_EQ (nullptr, item.subMenu);
    }

    ASSERT_EQ (6u, rows.size());
    EXPECT_EQ (std::pair (1, juce::String ("Open Manual...")), rows[0]);
    EXPECT_EQ (-1, rows[1].first);
    EXPECT_EQ (std::pair (2, juce::String ("Product Info...")), rows[2]);
    EXPECT_EQ (std::pair (3, juce::String ("Download Updates...")), rows[3]);
    EXPECT_EQ (std::pair (4, juce::String ("Harbor Guild Website...")), rows[4]);
    EXPECT_EQ (std::pair (5, juce::String ("Corvane Plugins Website...")), rows[5]);
}

TEST_F (BottomBar, ItsRowsLeadWhereTheySay)
{
    const juce::String distributor (ProductLinks::distributorHome), brand (ProductLinks::brandHome);

    for (const auto id : { 2, 3, 4, 5 })
        bar().performMenuItem (id);

    EXPECT_EQ ((std::vector<juce::String> { distributor + "/plugins/corvane_q7", distributor + "/downloads/corvane_q7",
                                            distributor, brand }),
               addresses);
    EXPECT_TRUE (files.empty());
}

TEST_F (BottomBar, TheManualLiesInTheSystemsApplicationsFolder)
{
    const auto applications = juce::File::getSpecialLocation (juce::File::globalApplicationsDirectory);
    EXPECT_EQ (applications.getChildFile ("Harbor Guild/Corvane Q7/Corvane Q7 Manual.pdf"), ProductLinks::manual());
}

TEST_F (BottomBar, OpensTheManualWhereThereIsOne)
{
    EXPECT_EQ (ProductLinks::manual(), bar().manual);

    const juce::TemporaryFile manual (".pdf");
    ASSERT_TRUE (manual.getFile().replaceWithText ("a manual"));
    bar().manual = manual.getFile();
    bar().performMenuItem (1);
    EXPECT_EQ ((std::vector<juce::File> { manual.getFile() }), files);
    EXPECT_TRUE (addresses.empty());
}

TEST_F (BottomBar, WithoutAManualItDoesNothingAndSaysNothing)
{
    const juce::TemporaryFile folder;
    const auto missing = folder.getFile().getChildFile ("Manual.pdf");
    ASSERT_TRUE (folder.getFile().createDirectory());

    for (const auto& place : { missing, folder.getFile() }) // a folder of that name is no manual either
    {
        bar().manual = place;
        bar().performMenuItem (1);
    }

    EXPECT_TRUE (files.empty());
    EXPECT_TRUE (addresses.empty());
    EXPECT_EQ (0, juce::ModalComponentManager::getInstance()->getNumModalComponents()); // no message
}

TEST (BottomBarByItself, HandsManualAndAddressesToTheSystem)
{
    // A program that stands in for the one which opens things, and notes what it is given.
    const juce::TemporaryFile place;
    const auto folder = place.getFile();
    const auto note = folder.getChildFile ("opened"), manual = folder.getChildFile ("The Manual.pdf");
    const auto program = folder.getChildFile ("xdg-open");
    ASSERT_TRUE (folder.createDirectory());
    ASSERT_TRUE (manual.replaceWithText ("a manual"));
    ASSERT_TRUE (
        program.replaceWithText ("#!/bin/sh\necho \"$1\" >> '" + note.getFullPathName() + "'\n", false, false, "\n"));
    ASSERT_TRUE (program.setExecutePermission (true));
    const auto path = juce::SystemStats::getEnvironmentVariable ("PATH", {});
    ::setenv ("PATH", (folder.getFullPathName() + ":" + path).toRawUTF8(), 1);

    KMBar bar;
    bar.manual = manual;
    juce::String expected;

    for (const auto& [id, opened] :
         { std::pair { 1, manual.getFullPathName() }, { 5, juce::String (ProductLinks::brandHome) } })
    {
        bar.performMenuItem (id);
        expected << opened << "\n";

        // Another process writes it, whenever the machine comes to that.
        for (int i = 0; i < 3000 && note.loadFileAsString() != expected; ++i)
            juce::Thread::sleep (10);

        EXPECT_EQ (expected, note.loadFileAsString());
    }

    ::setenv ("PATH", path.toRawUTF8(), 1);
    folder.deleteRecursively();
}

TEST_F (BottomBar, UnknownIdsDoNothing)
{
    for (const auto id : { 0, -1, 6, 100 })
        bar().performMenuItem (id);

    EXPECT_TRUE (addresses.empty());
    EXPECT_TRUE (files.empty());
}
