// SPDX-License-Identifier: GPL-3.0-or-later
#include "EditorFixture.h"

#include <set>

namespace
{
/** A panel that binds what a test gives it. */
class Panel : public NVXUI<CorvaneQ7AudioProcessor>
{
public:
    using NVXUI::bindControl;
    using NVXUI::moveHighlights;
    using NVXUI::NVXUI;
};

class PanelHighlights : public ::testing::Test
{
protected:
    PanelHighlights()
    {
        panel.setSize (100, 100);
        panel.setVisible (true);

        for (auto* control : { &first, &second, &third })
            panel.addAndMakeVisible (control);

        first.setBounds (10, 20, 50, 40);
        second.setBounds (40, 50, 30, 30);
        panel.bindControl (5, &first);
    }

    void highlight (int index, juce::Colour colour = juce::Colours::red)
    {
        panel.setControlHighlight ({ index, true, colour });
    }

    juce::Rectangle<int> boxOf (int index) const
    {
        const auto& box = panel.highlights.at (index);
        return { box.x, box.y, box.w, box.h };
    }

    juce::Image paintedCorners()
    {
        juce::Image image (juce::Image::ARGB, 100, 100, true);
        juce::Graphics g (image);
        panel.paintOverChildren (g);
        return image;
    }

    CorvaneQ7AudioProcessor processor;
    Panel panel { processor };
    juce::Component first, second, third;
};

using Pixels = std::set<std::pair<int, int>>;

Pixels pixelsOf (const juce::Image& image)
{
    Pixels pixels;

    for (int y = 0; y < image.getHeight(); ++y)
        for (int x = 0; x < image.getWidth(); ++x)
            if (image.getPixelAt (x, y).getAlpha() > 0)
                pixels.emplace (x, y);

    return pixels;
}

void addColumn (Pixels& pixels, int x, int from, int to)
{
    for (int y = from; y < to; ++y)
        pixels.emplace (x, y);
}

void addRow (Pixels& pixels, int y, int from, int to)
{
    for (int x = from; x < to; ++x)
        pixels.emplace (x, y);
}
} // namespace

// ---- maps --------------------------------------------------------------------------------------
TEST_F (PanelHighlights, ControlsAreKeptInTheOrderOfBinding)
{
    panel.bindControl (5, &second);
    panel.bindControl (7, &third);

    EXPECT_EQ (&processor, panel.processor);
    EXPECT_EQ ((std::vector<juce::Component*> { &first, &second }), panel.controlsOfParameter.at (5));
    EXPECT_EQ ((std::vector<juce::Component*> { &third }), panel.controlsOfParameter.at (7));
    EXPECT_EQ (5, panel.getControlParameterIndex (first));
    EXPECT_EQ (5, panel.getControlParameterIndex (second));
    EXPECT_EQ (7, panel.getControlParameterIndex (third));
    EXPECT_EQ (-1, panel.getControlParameterIndex (panel));
}

// ---- boxes -------------------------------------------------------------------------------------
TEST_F (PanelHighlights, TakeTheBoundsAndTheColour)
{
    highlight (5, juce::Colour (0xff123456));
    EXPECT_EQ ((juce::Rectangle<int> { 10, 20, 50, 40 }), boxOf (5));
    EXPECT_EQ (juce::Colour (0xff123456), panel.highlights.at (5).colour);

    highlight (5, juce::Colours::blue);
    EXPECT_EQ (1u, panel.highlights.size());
    EXPECT_EQ (juce::Colours::blue, panel.highlights.at (5).colour);
}

TEST_F (PanelHighlights, SpanAllControlsOfAParameterButEmptyOnes)
{
    panel.bindControl (5, &second);
    panel.bindControl (5, &third);
    third.setBounds (0, 0, 0, 10);
    highlight (5);
    EXPECT_EQ ((juce::Rectangle<int> { 10, 20, 60, 60 }), boxOf (5));

    third.setBounds (0, 0, 10, 0);
    highlight (5);
    EXPECT_EQ ((juce::Rectangle<int> { 10, 20, 60, 60 }), boxOf (5));
}

TEST_F (PanelHighlights, OfAParameterWithoutAControlAreNothing)
{
    const RepaintLog log (panel);

    for (const auto index : { 6, -1, 1000 })
        highlight (index);

    EXPECT_TRUE (panel.highlights.empty());
    EXPECT_TRUE (log.areas.isEmpty());
}

TEST_F (PanelHighlights, AskedForBeforeTheFirstLayoutAppearWithIt)
{
    first.setBounds (0, 0, 0, 0);
    highlight (5);
    EXPECT_EQ (1u, panel.highlights.size());
    EXPECT_TRUE (boxOf (5).isEmpty());
    first.setBounds (10, 20, 50, 40);
    panel.moveHighlights();
    EXPECT_EQ ((juce::Rectangle<int> { 10, 20, 50, 40 }), boxOf (5));
}

TEST_F (PanelHighlights, OfAnEmptyBoxDrawNoLine)
{
    first.setBounds (30, 30, 0, 0);
    highlight (5);
    EXPECT_TRUE (pixelsOf (paintedCorners()).empty());
}

TEST_F (PanelHighlights, ComeAndGoWithOneRepaintEach)
{
    const RepaintLog log (panel);
    highlight (5);
    EXPECT_EQ (1, log.areas.size());
    EXPECT_EQ (panel.getLocalBounds(), log.areas.getLast());

    panel.setControlHighlight ({ 5, false, juce::Colours::red });
    EXPECT_TRUE (panel.highlights.empty());
    EXPECT_EQ (2, log.areas.size());
}

TEST_F (PanelHighlights, FollowTheirControlsInANewLayout)
{
    highlight (5, juce::Colours::green);
    first.setBounds (1, 2, 30, 20);
    const RepaintLog log (panel);
    panel.moveHighlights();
    EXPECT_EQ ((juce::Rectangle<int> { 1, 2, 30, 20 }), boxOf (5));
    EXPECT_EQ (juce::Colours::green, panel.highlights.at (5).colour);
    EXPECT_EQ (1, log.areas.size());
}

TEST_F (PanelHighlights, ANewLayoutWithoutAnyRepaintsNothing)
{
    const RepaintLog log (panel);
    panel.moveHighlights();
    EXPECT_TRUE (log.areas.isEmpty());
}

// ---- corners -----------------------------------------------------------------------------------
TEST_F (PanelHighlights, NoneDrawsNothing) { EXPECT_TRUE (pixelsOf (paintedCorners()).empty()); }

TEST_F (PanelHighlights, AreEightLinesAFifthOfTheSidesLongWithTheFarOnesJustOutside)
{
    highlight (5, juce::Colour (0xff3366cc));
    const auto image = paintedCorners();

    // x 10, y 20, w 50, h 40: lines of 10 across and 8 down; the right edge is column 60, the bottom edge row 60.
    Pixels expected;

    for (const auto x : { 10, 60 })
    {
        addColumn (expected, x, 20, 28);
        addColumn (expected, x, 52, 60);
    }

    for (const auto y : { 20, 60 })
    {
        addRow (expected, y, 10, 20);
        addRow (expected, y, 50, 60);
    }

    EXPECT_EQ (expected, pixelsOf (image));

    for (const auto& [x, y] : expected)
        EXPECT_EQ (juce::Colour (0xff3366cc), image.getPixelAt (x, y)) << x << ", " << y;
}

TEST_F (PanelHighlights, HaveLinesOfPartsOfAPixelToo)
{
    first.setBounds (10, 20, 72, 72); // a fifth is 14.4
    highlight (5, juce::Colours::white);
    const auto image = paintedCorners();

    EXPECT_EQ (255, image.getPixelAt (23, 20).getAlpha());
    EXPECT_NEAR (0.4 * 255, image.getPixelAt (24, 20).getAlpha(), 12);
    EXPECT_EQ (0, image.getPixelAt (25, 20).getAlpha());
    EXPECT_EQ (255, image.getPixelAt (68, 92).getAlpha());
    EXPECT_NEAR (0.4 * 255, image.getPixelAt (67, 92).getAlpha(), 12);
    EXPECT_EQ (0, image.getPixelAt (66, 92).getAlpha());
}

TEST_F (PanelHighlights, EachHasItsOwnColour)
{
    panel.bindControl (7, &second);
    highlight (5, juce::Colours::red);
    highlight (7, juce::Colours::blue);
    const auto image = paintedCorners();
    EXPECT_EQ (juce::Colours::red, image.getPixelAt (10, 20));
    EXPECT_EQ (juce::Colours::blue, image.getPixelAt (40, 50));
}

// ---- the panels of the window ------------------------------------------------------------------
class PanelHighlightsInWindow : public EditorTest
{
};

TEST_F (PanelHighlightsInWindow, FollowTheZoomForEveryParameter)
{
    for (int i = 0; i < 38; ++i)
        editor->setControlHighlight ({ i, true, juce::Colours::orange });

    for (const auto& [w, h] : { std::pair { 945, 506 }, { 1350, 723 }, { 1080, 578 } })
    {
        editor->setSize (w, h);

        for (const auto& [index, box] : panel().highlights)
            EXPECT_EQ (panel().controlsOfParameter.at (index).front()->getBounds(),
                       (juce::Rectangle<int> { box.x, box.y, box.w, box.h }))
                << index;

        for (const auto& [index, box] : toolbar().highlights)
            EXPECT_EQ (toolbar().controlsOfParameter.at (index).front()->getBounds(),
                       (juce::Rectangle<int> { box.x, box.y, box.w, box.h }))
                << index;
    }
}

TEST_F (PanelHighlightsInWindow, LieOverTheControls)
{
    const auto without = painted (panel());
    editor->setControlHighlight ({ 5, true, juce::Colour (0xff00ff80) }); // Low Ratio, 300, 87, 120 by 120
    const auto with = painted (panel());

    EXPECT_EQ (juce::Colour (0xff00ff80), with.getPixelAt (300, 87));
    EXPECT_EQ (juce::Colour (0xff00ff80), with.getPixelAt (420, 110));
    EXPECT_EQ (juce::Colour (0xff00ff80), with.getPixelAt (301, 207));
    EXPECT_EQ (without.getPixelAt (360, 147), with.getPixelAt (360, 147));

    editor->setControlHighlight ({ 5, false, juce::Colours::white });
    const auto again = painted (panel());
    EXPECT_EQ (without.getPixelAt (300, 87), again.getPixelAt (300, 87));
}

TEST_F (PanelHighlightsInWindow, AFreshLayoutWithoutAnyRepaintsNothing)
{
    const RepaintLog log (panel()), toolbarLog (toolbar());
    panel().resized();
    toolbar().resized();
    EXPECT_TRUE (log.areas.isEmpty());
    EXPECT_TRUE (toolbarLog.areas.isEmpty());

    editor->setControlHighlight ({ 5, true, juce::Colours::red });
    const auto before = log.areas.size();
    panel().resized();
    EXPECT_EQ (before + 1, log.areas.size());
}
