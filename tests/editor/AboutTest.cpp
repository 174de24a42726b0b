// SPDX-License-Identifier: GPL-3.0-or-later
#include "editor/ProductLinks.h"
#include "EditorFixture.h"

namespace
{
class AboutBox : public EditorTest
{
protected:
    AboutBox() { editor->openDialog (0); }

    About& box() { return *editor->about; }
};

struct Text
{
    juce::Label* label;
    juce::Rectangle<int> bounds;
    const char* text;
    int style, justification;
    juce::uint32 colour;
};
} // namespace

TEST_F (AboutBox, HasItsTextsInTheirPlaces)
{
    using J = juce::Justification;
    const Text texts[] {
        { &box().title, { 168, 24, 150, 24 }, "Corvane Q7 v. 1.0.0", juce::Font::plain, J::centredLeft, 0xaaffffff },
        { &box().firstName,
          { 168, 56, 264, 24 },
          ProductLinks::programmer,
          juce::Font::bold,
          J::centredLeft,
          0xffffffff },
        { &box().firstRoles,
          { 176, 80, 150, 64 },
          "Programming\nGraphics\nCircuit modeling",
          juce::Font::plain,
          J::topLeft,
          0xaaffffff },
        { &box().secondName,
          { 168, 152, 240, 24 },
          ProductLinks::conceptAuthor,
          juce::Font::bold,
          J::centredLeft,
          0xffffffff },
        { &box().secondRoles,
          { 176, 176, 150, 64 },
          "Concept\nTest, Tuning",
          juce::Font::plain,
          J::topLeft,
          0xaaffffff },
    };

    for (const auto& text : texts)
    {
        EXPECT_EQ (text.bounds, text.label->getBounds());
        EXPECT_EQ (juce::String (text.text), text.label->getText());
        EXPECT_EQ (15.0f, text.label->getFont().getHeight());
        EXPECT_EQ (text.style, text.label->getFont().getStyleFlags());
        EXPECT_EQ (text.justification, text.label->getJustificationType().getFlags());
        EXPECT_EQ (juce::Colour (text.colour), text.label->findColour (juce::Label::textColourId));
        EXPECT_FALSE (text.label->isEditable());

        bool self = true, children = true;
        text.label->getInterceptsMouseClicks (self, children);
        EXPECT_FALSE (self || children);
    }

    EXPECT_EQ (6, box().getNumChildComponents());
    EXPECT_NE (juce::String(), juce::String (ProductLinks::programmer));
    EXPECT_NE (juce::String(), juce::String (ProductLinks::conceptAuthor));
}

TEST_F (AboutBox, AloneItBearsTheOldName)
{
    About alone;
    EXPECT_EQ (juce::String ("Corvane R40 v. 1.0.0"), alone.title.getText());
    EXPECT_EQ (450, alone.getWidth());
    EXPECT_EQ (300, alone.getHeight());
}

TEST_F (AboutBox, TheLinkIsItsOwnText)
{
    const juce::String address (ProductLinks::brandHome);
    EXPECT_EQ ((juce::Rectangle<int> { 109, 272, 232, 24 }), box().link.getBounds());
    EXPECT_EQ (address, box().link.getButtonText());
    EXPECT_EQ (address, box().link.getTooltip());
    EXPECT_EQ (address, box().link.getURL().toString (true));
    EXPECT_TRUE (box().link.getURL().isWellFormed());
    EXPECT_EQ (juce::Colour (0xccffffff), box().link.findColour (juce::HyperlinkButton::textColourId));
}

TEST_F (AboutBox, AClickAnywhereElseClosesIt)
{
    for (const auto& at : { juce::Point<int> { 225, 150 },
                            { 3, 290 },
                            { 440, 10 },
                            { 200, 36 },
                            { 200, 68 },
                            { 200, 100 },
                            { 200, 160 },
                            { 200, 200 },
                            { 60, 100 } })
    {
        editor->openDialog (0);
        auto* hit = box().getComponentAt (at);
        EXPECT_EQ (&box(), hit); // labels let clicks through
        Mouse::press (*hit);
        EXPECT_TRUE (box().isVisible());
        Mouse::release (*hit);
        EXPECT_FALSE (box().isVisible());
    }
}

TEST_F (AboutBox, AClickOnTheLinkLeavesItOpen)
{
    EXPECT_EQ (&box().link, box().getComponentAt (box().link.getBounds().getCentre()));
    box().link.setEnabled (false); // so that no browser starts; it takes the mouse all the same
    Mouse::click (box().link);
    EXPECT_TRUE (box().isVisible());
}

TEST_F (AboutBox, LiesOverEverythingElse)
{
    for (const auto& [w, h] : { std::pair { 1350, 723 }, { 945, 506 } })
    {
        editor->setSize (w, h);
        EXPECT_EQ (&box(), editor->getComponentAt (w / 2, h / 2 - 20));
        EXPECT_NE (&box(), editor->getComponentAt (w / 2, h / 2 - 160));
    }
}

TEST_F (AboutBox, IsPaintedWithinRoundCorners)
{
    const auto image = painted (box());

    for (const auto& corner : { juce::Point<int> { 0, 0 }, { 449, 0 }, { 0, 299 }, { 449, 299 }, { 3, 3 } })
        EXPECT_EQ (0, image.getPixelAt (corner.x, corner.y).getAlpha());

    // A corner of 20 px radius leaves (20 - 20 / sqrt 2) = 5.9 px on the diagonal.
    EXPECT_EQ (0, image.getPixelAt (4, 4).getAlpha());
    EXPECT_EQ (255, image.getPixelAt (7, 7).getAlpha());

    for (const auto& inside : { juce::Point<int> { 22, 1 }, { 1, 22 }, { 225, 150 }, { 428, 298 } })
        EXPECT_EQ (255, image.getPixelAt (inside.x, inside.y).getAlpha());
}

TEST_F (AboutBox, ShowsBackgroundAndBothMarks)
{
    for (auto* child : box().getChildren())
        child->setVisible (false);

    const auto image = painted (box());
    juce::Image expected (juce::Image::ARGB, 450, 300, true);
    {
        juce::Graphics g (expected);
        g.drawImageWithin (Assets::aboutBackground(), 0, 0, 450, 300, juce::RectanglePlacement::stretchToFit);
        g.drawImageWithin (Assets::aboutBrand(), 29, 81, 90, 36, juce::RectanglePlacement::stretchToFit);
        g.drawImageWithin (Assets::aboutDistributor(), 5, 177, 138, 32, juce::RectanglePlacement::stretchToFit);
    }

    for (int y = 25; y < 275; ++y)
        for (int x = 1; x < 449; ++x)
            ASSERT_EQ (expected.getPixelAt (x, y), image.getPixelAt (x, y)) << x << ", " << y;
}
