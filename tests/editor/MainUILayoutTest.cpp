// SPDX-License-Identifier: GPL-3.0-or-later
#include "EditorFixture.h"
#include "ExpectedPanel.h"

#include <cmath>

namespace
{
using namespace ExpectedPanel;

/** Multiplied in single precision and rounded to the nearest. */
int rounded (int side, float fraction) { return static_cast<int> (std::lrint (static_cast<float> (side) * fraction)); }

juce::Rectangle<int> expectedFor (int width, int height, float x, float y, float w, float h, bool xIsMiddle)
{
    const auto itsWidth = rounded (width, w);
    const auto left = rounded (width, x) - (xIsMiddle ? itsWidth / 2 : 0);
    return { left, rounded (height, y), itsWidth, rounded (height, h) };
}

/** Editors of these sizes are what the four zooms make. */
constexpr std::pair<int, int> editorSizes[] {
    { 1350, 723 }, { 1215, 650 }, { 1080, 578 }, { 945, 506 }, { 1024, 548 }
};
} // namespace

class MainUIPlaces : public EditorTest
{
};

TEST_F (MainUIPlaces, AtBaseSizeAreTheGivenRectangles)
{
    ASSERT_EQ (1350, panel().getWidth());
    ASSERT_EQ (675, panel().getHeight());

    for (const auto& row : bandControls())
        EXPECT_EQ (row.lowAtBase, row.get (band (0))->getBounds()) << row.name;

    for (const auto& row : globalControls())
        EXPECT_EQ (row.atBase, row.get (panel())->getBounds()) << row.name;
}

TEST_F (MainUIPlaces, AreFractionsOfThePanelAtEveryZoom)
{
    for (const auto& [width, height] : editorSizes)
    {
        editor->setSize (width, height);
        const auto w = panel().getWidth(), h = panel().getHeight();
        ASSERT_EQ (height - 48, h);

        for (const auto& row : bandControls())
            for (int i = 0; i < numBands; ++i)
                EXPECT_EQ (expectedFor (w, h, row.x[i], row.y, widthOf (row, i), row.h, false),
                           row.get (band (i))->getBounds())
                    << bandNames[i] << " " << row.name << " at " << width;

        for (const auto& row : globalControls())
            EXPECT_EQ (expectedFor (w, h, row.x, row.y, row.w, row.h, row.xIsMiddle), row.get (panel())->getBounds())
                << row.name << " at " << width;
    }
}

TEST_F (MainUIPlaces, WhatStraysFromTheGridDoesSo)
{
    // The High band's M lamp stands a pixel left of its In lamp, and S lamps a pixel below M lamps.
    EXPECT_EQ (band (0).inLamp->getX(), band (0).midLamp->getX());
    EXPECT_EQ (band (2).inLamp->getX() - 1, band (2).midLamp->getX());

    for (int i = 0; i < numBands; ++i)
        EXPECT_EQ (band (i).midLamp->getY() + 1, band (i).sideLamp->getY());

    EXPECT_EQ (30, band (0).midLabel->getWidth());
    EXPECT_EQ (25, band (1).midLabel->getWidth());
    EXPECT_EQ (25, band (2).midLabel->getWidth());
}

TEST_F (MainUIPlaces, NoControlIsForgotten)
{
    const auto listed = bandControls().size() * numBands + globalControls().size();
    EXPECT_EQ (static_cast<std::size_t> (panel().getNumChildComponents()), listed);

    for (auto* child : panel().getChildren())
    {
        EXPECT_FALSE (child->getBounds().isEmpty());
        EXPECT_FALSE (child->isTransformed());
        EXPECT_TRUE (panel().getLocalBounds().contains (child->getBounds()));
    }
}

TEST_F (MainUIPlaces, OddSizesDoNoHarm)
{
    for (const auto& [w, h] : { std::pair { 0, 0 }, { 1, 1 }, { 13, 7 }, { 4000, 3000 }, { 1350, 675 } })
    {
        panel().setSize (w, h);
        painted (panel());
    }

    EXPECT_EQ ((juce::Rectangle<int> { 300, 87, 120, 120 }), band (0).ratio->getBounds());
}

TEST_F (MainUIPlaces, FontsFollowThePanelsHeight)
{
    for (const auto& [width, height] : editorSizes)
    {
        editor->setSize (width, height);
        const auto h = static_cast<float> (height - 48);

        for (auto* digits : { panel().lowXOverDigits.get(), panel().lowXOverGhost.get(), panel().highXOverDigits.get(),
                              panel().highXOverGhost.get() })
        {
            EXPECT_FLOAT_EQ (h * 0.044444446f, digits->getFont().getHeight());
            EXPECT_EQ (juce::String ("Segment7"), digits->getFont().getTypefacePtr()->getName());
            EXPECT_EQ (1.0f, digits->getFont().getHorizontalScale());
        }

        auto texts = std::vector<juce::Label*> { panel().masterReadout.get(), panel().mixReadout.get(),
                                                 panel().highPassReadout.get() };

        for (int i = 0; i < numBands; ++i)
        {
            texts.push_back (band (i).midLabel.get());
            texts.push_back (band (i).sideLabel.get());
        }

        ASSERT_EQ (9u, texts.size());

        for (auto* text : texts)
        {
            EXPECT_FLOAT_EQ (h * 0.01925926f, text->getFont().getHeight());
            EXPECT_EQ (juce::String ("Arial"), text->getFont().getTypefaceName());
            EXPECT_FALSE (text->getFont().isBold());
        }
    }
}
