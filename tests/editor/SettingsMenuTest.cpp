// SPDX-License-Identifier: GPL-3.0-or-later
// The settings menu: its rows, and what they do. It is built and obeyed here, and opened in the tests with a screen.
#include "EditorFixture.h"
#include "processor/SettingsFile.h"

#include <cmath>
#include <limits>
#include <map>

namespace
{
using Words = std::vector<std::string>;

struct Row
{
    int id = 0;
    juce::String text;
    bool isTicked = false, isSeparator = false, isActive = false;
};

struct Menu
{
    std::vector<Row> rows;
    std::vector<std::pair<juce::String, std::vector<Row>>> submenus; // by title
};

std::vector<Row> rowsOf (const juce::PopupMenu& menu)
{
    std::vector<Row> rows;
    juce::PopupMenu::MenuItemIterator items (menu);

    while (items.next())
    {
        const auto& item = items.getItem();
        rows.push_back ({ item.itemID, item.text, item.isTicked, item.isSeparator, item.isEnabled });
    }

    return rows;
}

Menu read (juce::PopupMenu menu)
{
    Menu result;
    result.rows = rowsOf (menu);
    juce::PopupMenu::MenuItemIterator items (menu);

    while (items.next())
        if (const auto* submenu = items.getItem().subMenu.get())
            result.submenus.emplace_back (items.getItem().text, rowsOf (*submenu));

    return result;
}

constexpr double gains[] { 7.270973791682018, 8.158166775013145,  9.153613674837882, 10.270523466718915, 11.523716865,
                           12.92982298468077, 14.507499999669518, 16.27768272541493, 18.26386041118783 };
constexpr const char* levels[] { "-12 dBFS", "-13 dBFS", "-14 dBFS", "-15 dBFS", "-16 dBFS",
                                 "-17 dBFS", "-18 dBFS", "-19 dBFS", "-20 dBFS" };
constexpr const char* factorTexts[] { "Off", "2x", "4x", "8x", "16x" };
constexpr int factors[] { 1, 2, 4, 8, 16 };
constexpr const char* zoomTexts[] { "70 %", "80 %", "90 %", "100 %" };
constexpr float zooms[] { 0.7f, 0.8f, 0.9f, 1.0f };

enum Submenu
{
    calibration,
    oversampling,
    uiZoom
};
} // namespace

class SettingsMenu : public ::testing::Test
{
protected:
    SettingsMenu() { open(); }

    void open()
    {
        editor.reset();
        processor = std::make_unique<CorvaneQ7AudioProcessor>();
        editor = std::make_unique<CorvaneQ7Editor> (*processor);
    }

    /** A new instance that finds this in the user's file. */
    void openWith (const char* key, const char* value)
    {
        file.write ({ { key, value } });
        open();
    }

    Menu menu() { return read (editor->toolbar->settingsMenu()); }
    std::vector<Row> submenu (Submenu which) { return menu().submenus.at (which).second; }
    juce::String title (Submenu which) { return menu().submenus.at (which).first; }
    void choose (int id) { editor->toolbar->performMenuItem (id); }

    /** Ids of the rows of a submenu that are ticked, and those whose text ends with "(default)". */
    std::vector<int> ticked (Submenu which)
    {
        std::vector<int> ids;

        for (const auto& row : submenu (which))
            if (row.isTicked)
                ids.push_back (row.id);

        return ids;
    }

    std::vector<int> named (Submenu which)
    {
        std::vector<int> ids;

        for (const auto& row : submenu (which))
            if (row.text.endsWith (" (default)"))
                ids.push_back (row.id);

        return ids;
    }

    juce::String stored (const char* key)
    {
        const auto document = juce::parseXML (SettingsFile::location());

        if (document != nullptr)
            for (auto* value : document->getChildIterator())
                if (value->getStringAttribute ("name") == key)
                    return value->getStringAttribute ("val");

        return "none";
    }

    SettingsFile file; // gone before and after
    std::unique_ptr<CorvaneQ7AudioProcessor> processor;
    std::unique_ptr<CorvaneQ7Editor> editor;
};

// ---- rows --------------------------------------------------------------------------------------
TEST_F (SettingsMenu, ItsTopLevel)
{
    const auto rows = menu().rows;
    ASSERT_EQ (6u, rows.size());
    EXPECT_EQ (1, rows[0].id);
    EXPECT_EQ (juce::String ("About..."), rows[0].text);
    EXPECT_TRUE (rows[1].isSeparator);
    EXPECT_TRUE (rows[2].text.startsWith ("Calibration"));
    EXPECT_TRUE (rows[3].text.startsWith ("Oversampling"));
    EXPECT_TRUE (rows[4].isSeparator);
    EXPECT_TRUE (rows[5].text.startsWith ("UI Zoom"));

    for (const auto& row : rows)
        EXPECT_TRUE (row.isSeparator || row.isActive) << row.text;
}

TEST_F (SettingsMenu, TheCalibrationSubmenu)
{
    const auto rows = submenu (calibration);
    ASSERT_EQ (11u, rows.size());

    for (int i = 0; i < 9; ++i)
    {
        const auto isDefault = i == 6; // -18
        EXPECT_EQ (2 + i, rows[static_cast<std::size_t> (i)].id);
        EXPECT_EQ (juce::String (levels[i]) + (isDefault ? " (default)" : ""), rows[static_cast<std::size_t> (i)].text);
        EXPECT_EQ (isDefault, rows[static_cast<std::size_t> (i)].isTicked);
    }

    EXPECT_TRUE (rows[9].isSeparator);
    EXPECT_EQ (11, rows[10].id);
    EXPECT_EQ (juce::String ("Save as default"), rows[10].text);
}

TEST_F (SettingsMenu, TheOversamplingSubmenu)
{
    const auto rows = submenu (oversampling);
    ASSERT_EQ (7u, rows.size());

    for (int i = 0; i < 5; ++i)
    {
        EXPECT_EQ (12 + i, rows[static_cast<std::size_t> (i)].id);
        EXPECT_EQ (juce::String (factorTexts[i]) + (i == 0 ? " (default)" : ""),
                   rows[static_cast<std::size_t> (i)].text);
        EXPECT_EQ (i == 0, rows[static_cast<std::size_t> (i)].isTicked);
    }

    EXPECT_TRUE (rows[5].isSeparator);
    EXPECT_EQ (17, rows[6].id);
    EXPECT_EQ (juce::String ("Save as default"), rows[6].text);
}

TEST_F (SettingsMenu, TheZoomSubmenu)
{
    const auto rows = submenu (uiZoom);
    ASSERT_EQ (6u, rows.size());

    for (int i = 0; i < 4; ++i)
    {
        EXPECT_EQ (18 + i, rows[static_cast<std::size_t> (i)].id);
        EXPECT_EQ (juce::String (zoomTexts[i]) + (i == 3 ? " (default)" : ""), rows[static_cast<std::size_t> (i)].text);
        EXPECT_EQ (i == 3, rows[static_cast<std::size_t> (i)].isTicked);
    }

    EXPECT_TRUE (rows[4].isSeparator);
    EXPECT_EQ (22, rows[5].id);
    EXPECT_EQ (juce::String ("Save as default"), rows[5].text);
}

// ---- titles ------------------------------------------------------------------------------------
TEST_F (SettingsMenu, TitlesTellThePresentState)
{
    EXPECT_EQ (juce::String ("Calibration (+4 dBu at -18dBFS)"), title (calibration));
    EXPECT_EQ (juce::String ("Oversampling (Off)"), title (oversampling));
    EXPECT_EQ (juce::String ("UI Zoom (100 %)"), title (uiZoom));
}

TEST_F (SettingsMenu, TheCalibrationsTitleWritesAMinusOfItsOwn)
{
    auto& gain = processor->activeSettings().calibrationGain;
    const auto at = [&] (double dbu)
    {
        gain = 1.1523716865 * std::pow (10.0, dbu / 20.0);
        return title (calibration);
    };

    EXPECT_EQ (juce::String ("Calibration (+4 dBu at -12dBFS)"), at (16.0));
    EXPECT_EQ (juce::String ("Calibration (+4 dBu at -20dBFS)"), at (24.0));
    EXPECT_EQ (juce::String ("Calibration (+4 dBu at -36dBFS)"), at (40.0));
    EXPECT_EQ (juce::String ("Calibration (+4 dBu at -0dBFS)"), at (4.0));
    EXPECT_EQ (juce::String ("Calibration (+4 dBu at --4dBFS)"), at (0.0));
    EXPECT_EQ (juce::String ("Calibration (+4 dBu at --104dBFS)"), at (-250.0)); // the logarithm ends at -100

    gain = 1.0e100; // no session can hold more than a number to count with
    EXPECT_EQ (juce::String ("Calibration (+4 dBu at -996dBFS)"), title (calibration));
    gain = 0.0;
    EXPECT_EQ (juce::String ("Calibration (+4 dBu at --104dBFS)"), title (calibration));
    gain = -3.0;
    EXPECT_EQ (juce::String ("Calibration (+4 dBu at --104dBFS)"), title (calibration));
    EXPECT_TRUE (ticked (calibration).empty());
}

TEST_F (SettingsMenu, AGainIsReadBackToTheNearestDecibel)
{
    auto& gain = processor->activeSettings().calibrationGain;

    for (const auto& [dbu, id] : { std::pair { 17.51, 4 }, { 17.49, 3 }, { 18.0, 4 }, { 18.49, 4 }, { 15.5, 2 } })
    {
        gain = 1.1523716865 * std::pow (10.0, dbu / 20.0);
        EXPECT_EQ (std::vector<int> { id }, ticked (calibration)) << dbu;
    }

    gain = 14.5075; // a new record's own
    EXPECT_EQ (std::vector<int> { 8 }, ticked (calibration));
}

TEST_F (SettingsMenu, NoStateMakesItFall)
{
    using Limits = std::numeric_limits<double>;

    for (const auto value : { Limits::infinity(), Limits::quiet_NaN(), 1.0e300, 1.0e-300, -Limits::infinity() })
    {
        // A gain is always finite: sessions are held to that.
        processor->activeSettings().calibrationGain = std::isfinite (value) ? value : 0.0;
        processor->uiZoom = static_cast<float> (value);
        processor->oversamplingRequested = -5;
        EXPECT_EQ (3u, menu().submenus.size());
        EXPECT_EQ (juce::String ("Oversampling (Off)"), title (oversampling));
    }
}

TEST_F (SettingsMenu, TheOversamplingsTitle)
{
    for (const auto& [factor, text] : std::map<int, const char*> {
             { -3, "Off" }, { 0, "Off" }, { 1, "Off" }, { 2, "2x" }, { 3, "3x" }, { 8, "8x" }, { 16, "16x" } })
    {
        processor->oversamplingRequested = factor;
        EXPECT_EQ ("Oversampling (" + juce::String (text) + ")", title (oversampling));
    }

    processor->oversamplingRequested = 3; // of a session
    EXPECT_TRUE (ticked (oversampling).empty());
}

TEST_F (SettingsMenu, TheZoomsTitleAndTick)
{
    for (int i = 0; i < 4; ++i)
    {
        processor->uiZoom = zooms[i];
        EXPECT_EQ ("UI Zoom (" + juce::String (zoomTexts[i]) + ")", title (uiZoom));
        EXPECT_EQ (std::vector<int> { 18 + i }, ticked (uiZoom));
    }

    processor->uiZoom = 0.75f; // of a session
    EXPECT_EQ (juce::String ("UI Zoom (75 %)"), title (uiZoom));
    EXPECT_TRUE (ticked (uiZoom).empty());
}

// ---- stored defaults ---------------------------------------------------------------------------
TEST_F (SettingsMenu, NamesTheStoredCalibration)
{
    for (int i = 0; i < 9; ++i)
    {
        openWith ("Calibration", (juce::String (16 + i) + ".0").toRawUTF8());
        EXPECT_EQ (std::vector<int> { 2 + i }, named (calibration));
        EXPECT_EQ (std::vector<int> { 2 + i }, ticked (calibration));
    }

    for (const auto& [between, id] : { std::pair { "21.6", 8 }, { "21.4", 7 }, { "23.5", 10 } }) // the nearest one
    {
        openWith ("Calibration", between);
        EXPECT_EQ (std::vector<int> { id }, named (calibration)) << between;
        EXPECT_EQ (std::vector<int> { id }, ticked (calibration)) << between;
    }

    for (const auto* outside : { "30", "24.5", "15", "0", "-18", "nan" })
    {
        openWith ("Calibration", outside);
        EXPECT_EQ (std::vector<int> { 8 }, named (calibration)) << outside; // -18 dBFS
        EXPECT_EQ (std::vector<int> { 8 }, ticked (calibration)) << outside;
    }
}

TEST_F (SettingsMenu, NamesTheStoredOversampling)
{
    for (int i = 0; i < 5; ++i)
    {
        openWith ("Oversampling", juce::String (factors[i]).toRawUTF8());
        EXPECT_EQ (std::vector<int> { 12 + i }, named (oversampling));
        EXPECT_EQ (std::vector<int> { 12 + i }, ticked (oversampling));
    }

    for (const auto* outside : { "32", "0", "-2", "17" })
    {
        openWith ("Oversampling", outside);
        EXPECT_EQ (std::vector<int> { 12 }, named (oversampling)) << outside;
    }
}

TEST_F (SettingsMenu, NamesTheStoredZoom)
{
    for (int i = 0; i < 4; ++i)
    {
        openWith ("UIZoom", ("0." + juce::String (7 + i)).replace ("0.10", "1.0").toRawUTF8());
        EXPECT_EQ (std::vector<int> { 18 + i }, named (uiZoom));
        EXPECT_EQ (std::vector<int> { 18 + i }, ticked (uiZoom));
    }

    openWith ("UIZoom", "0.5");
    EXPECT_EQ (std::vector<int> { 18 }, named (uiZoom)); // 70 %
    openWith ("UIZoom", "3");
    EXPECT_EQ (std::vector<int> { 21 }, named (uiZoom));
}

TEST_F (SettingsMenu, TheStoredDefaultIsNotThePresentValue)
{
    openWith ("Calibration", "20");
    choose (2);
    EXPECT_EQ (std::vector<int> { 6 }, named (calibration));
    EXPECT_EQ (std::vector<int> { 2 }, ticked (calibration));
    EXPECT_EQ (juce::String ("-16 dBFS (default)"), submenu (calibration)[4].text);
}

TEST_F (SettingsMenu, SeesWhatAnotherInstanceStored)
{
    EXPECT_EQ (std::vector<int> { 12 }, named (oversampling));
    CorvaneQ7AudioProcessor another;
    UserDefaults::saveOversampling (4);
    EXPECT_EQ (std::vector<int> { 14 }, named (oversampling));
}

// ---- actions -----------------------------------------------------------------------------------
TEST_F (SettingsMenu, AboutOpensTheBox)
{
    choose (1);
    EXPECT_TRUE (editor->about->isVisible());
}

TEST_F (SettingsMenu, AboutWithoutAListenerDoesNothing)
{
    TopToolbar alone (*processor);
    alone.performMenuItem (1);
    EXPECT_EQ (nullptr, alone.dialogListener);
}

TEST_F (SettingsMenu, ACalibrationIsStoredInTheAudibleSlotAndApplied)
{
    HostLog host (*processor);

    for (const auto slot : { 1, 0 })
    {
        processor->selectSlot (slot);
        auto& here = processor->settingsSlots[slot];
        auto& there = processor->settingsSlots[1 - slot];
        there.calibrationGain = 9.5;

        for (int i = 0; i < 9; ++i)
        {
            choose (2 + i);
            EXPECT_NEAR (gains[i], here.calibrationGain, gains[i] * 1.0e-15) << levels[i];
            EXPECT_EQ (9.5, there.calibrationGain);
            EXPECT_EQ (std::vector<int> { 2 + i }, ticked (calibration));
            EXPECT_EQ ("Calibration (+4 dBu at " + juce::String (levels[i]).replace (" ", "") + ")",
                       title (calibration));
        }
    }

    EXPECT_EQ (juce::String ("none"), stored ("Calibration")); // until it is saved
}

TEST_F (SettingsMenu, AFactorIsAskedForAndTheHostHearsOfIt)
{
    for (const auto& [id, factor, latency] :
         { std::tuple { 13, 2, 52 }, { 16, 16, 52 }, { 14, 4, 52 }, { 15, 8, 52 }, { 12, 1, 0 } })
    {
        HostLog host (*processor);
        choose (id);
        EXPECT_EQ (factor, processor->oversamplingRequested);
        EXPECT_EQ (latency, processor->getLatencySamples());
        EXPECT_FALSE (host.words.empty());

        for (const auto& word : host.words)
            EXPECT_EQ ("changed", word);

        EXPECT_EQ (std::vector<int> { id }, ticked (oversampling));
    }
}

TEST_F (SettingsMenu, ThePresentFactorChosenAgainIsNoNews)
{
    HostLog host (*processor);
    choose (12);
    EXPECT_TRUE (host.words.empty());
    choose (14);
    host.clear();
    choose (14);
    EXPECT_TRUE (host.words.empty());
    EXPECT_EQ (4, processor->oversamplingRequested);
}

TEST_F (SettingsMenu, AZoomIsTheProcessorsAndResizesTheWindow)
{
    const auto widthAt100 = editor->getWidth();

    for (const auto i : { 0, 2, 1, 3 })
    {
        choose (18 + i);
        EXPECT_EQ (zooms[i], processor->uiZoom);
        EXPECT_NEAR (widthAt100 * zooms[i], editor->getWidth(), widthAt100 == 1350 ? 0.5 : 1350.0);
        EXPECT_EQ (editor->getWidth() - 24, editor->toolbar->settingsButton.getX());
        EXPECT_EQ (24, editor->toolbar->getHeight());
    }

    EXPECT_EQ (juce::String ("none"), stored ("UIZoom"));
}

TEST_F (SettingsMenu, AZoomWithoutAWindowAroundIsKept)
{
    TopToolbar alone (*processor);
    alone.performMenuItem (18);
    EXPECT_EQ (0.7f, processor->uiZoom);

    juce::Component plain;
    plain.addAndMakeVisible (alone);
    alone.performMenuItem (19);
    EXPECT_EQ (0.8f, processor->uiZoom);
}

TEST_F (SettingsMenu, SaveAsDefaultStoresEachForItself)
{
    choose (4); // -14 dBFS, 18 dBu
    choose (11);
    EXPECT_EQ (18.0, stored ("Calibration").getDoubleValue());
    EXPECT_EQ (juce::String ("none"), stored ("Oversampling"));
    EXPECT_EQ (std::vector<int> { 4 }, named (calibration));

    choose (15);
    choose (17);
    EXPECT_EQ (8, stored ("Oversampling").getIntValue());
    EXPECT_EQ (juce::String ("none"), stored ("UIZoom"));
    EXPECT_EQ (std::vector<int> { 15 }, named (oversampling));

    choose (20);
    choose (22);
    EXPECT_NEAR (0.9, stored ("UIZoom").getDoubleValue(), 1.0e-6);
    EXPECT_EQ (std::vector<int> { 20 }, named (uiZoom));
    EXPECT_EQ (18.0, stored ("Calibration").getDoubleValue());

    const CorvaneQ7AudioProcessor next;
    EXPECT_NEAR (gains[2], next.settingsSlots[0].calibrationGain, 1.0e-12);
    EXPECT_EQ (8, next.oversamplingRequested);
    EXPECT_FLOAT_EQ (0.9f, next.uiZoom);
}

TEST_F (SettingsMenu, SavingIsOfTheAudibleSlot)
{
    choose (2);
    processor->selectSlot (1);
    choose (10);
    choose (11);
    EXPECT_EQ (24.0, stored ("Calibration").getDoubleValue());
}

TEST_F (SettingsMenu, UnknownIdsDoNothing)
{
    HostLog host (*processor);
    const auto gain = processor->activeSettings().calibrationGain;

    for (const auto id : { 0, -1, 23, 24, 1000 })
        choose (id);

    EXPECT_TRUE (host.words.empty());
    EXPECT_EQ (gain, processor->activeSettings().calibrationGain);
    EXPECT_EQ (1, processor->oversamplingRequested);
    EXPECT_EQ (1.0f, processor->uiZoom);
    EXPECT_FALSE (editor->about->isVisible());
    EXPECT_FALSE (SettingsFile::location().existsAsFile());
}
