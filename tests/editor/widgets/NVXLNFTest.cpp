// SPDX-License-Identifier: GPL-3.0-or-later
#include "editor/EditorFixture.h"

#include <cmath>

namespace
{
const juce::Colour highlight { 0xff626c77 };

/** A channel of the highlight a little lighter, and a little darker. */
int lighter (int c) { return static_cast<int> (std::lround (255.0 - (255.0 - c) * 0.71428573)); }
int darker (int c) { return static_cast<int> (std::lround (c * 0.71428573)); }
int half (int a, int b) { return (a + b) / 2; }

juce::Colour channelwise (juce::Colour c, int (*f) (int))
{
    return { static_cast<juce::uint8> (f (c.getRed())), static_cast<juce::uint8> (f (c.getGreen())),
             static_cast<juce::uint8> (f (c.getBlue())) };
}

juce::Colour between (juce::Colour a, juce::Colour b)
{
    return { static_cast<juce::uint8> (half (a.getRed(), b.getRed())),
             static_cast<juce::uint8> (half (a.getGreen(), b.getGreen())),
             static_cast<juce::uint8> (half (a.getBlue(), b.getBlue())) };
}

::testing::AssertionResult close (juce::Colour expected, juce::Colour actual, int tolerance = 3)
{
    const auto differ = [tolerance] (int a, int b) { return std::abs (a - b) > tolerance; };

    if (differ (expected.getRed(), actual.getRed()) || differ (expected.getGreen(), actual.getGreen())
        || differ (expected.getBlue(), actual.getBlue()) || differ (expected.getAlpha(), actual.getAlpha()))
        return ::testing::AssertionFailure() << expected.toString() << " against " << actual.toString();

    return ::testing::AssertionSuccess();
}

struct RowState
{
    bool isSeparator = false, isActive = true, isHighlighted = false, isTicked = false, hasSubMenu = false;
    const char* text = "";
    const juce::Drawable* icon = nullptr;
    const juce::Colour* colour = nullptr;
};

template <typename Look>
juce::Image paintedRow (const RowState& row, juce::Rectangle<int> area = { 0, 0, 200, 24 })
{
    Look look;
    juce::Image image (juce::Image::ARGB, 220, 60, true);
    juce::Graphics g (image);
    look.drawPopupMenuItem (g, area, row.isSeparator, row.isActive, row.isHighlighted, row.isTicked, row.hasSubMenu,
                            row.text, {}, row.icon, row.colour);
    return image;
}

/** The smallest rectangle around everything that was drawn. */
juce::Rectangle<int> drawnArea (const juce::Image& image)
{
    juce::Rectangle<int> area;

    for (int y = 0; y < image.getHeight(); ++y)
        for (int x = 0; x < image.getWidth(); ++x)
            if (image.getPixelAt (x, y).getAlpha() > 8)
                area = area.isEmpty() ? juce::Rectangle<int> (x, y, 1, 1) : area.getUnion ({ x, y, 1, 1 });

    return area;
}

/** The colour of the most opaque pixel. */
juce::Colour strongest (const juce::Image& image)
{
    juce::Colour found;

    for (int y = 0; y < image.getHeight(); ++y)
        for (int x = 0; x < image.getWidth(); ++x)
            if (image.getPixelAt (x, y).getAlpha() > found.getAlpha())
                found = image.getPixelAt (x, y);

    return found;
}
} // namespace

/** Panels and bottom bar have looks of their own kinds, with the same menus. */
template <typename Look>
class MenuLook : public ::testing::Test
{
};

using Looks = ::testing::Types<NVXLNF, KMBar::LNF>;

class LookNames
{
public:
    template <typename Look>
    static std::string GetName (int)
    {
        return std::is_same_v<Look, NVXLNF> ? "Panels" : "BottomBar";
    }
};

TYPED_TEST_SUITE (MenuLook, Looks, LookNames);

TYPED_TEST (MenuLook, HasItsTwoColours)
{
    TypeParam look;
    EXPECT_EQ (juce::Colour (0x00000000), look.findColour (juce::PopupMenu::backgroundColourId));
    EXPECT_EQ (highlight, look.findColour (juce::PopupMenu::highlightedBackgroundColourId));
    EXPECT_NE (nullptr, dynamic_cast<juce::LookAndFeel_V3*> (&look));
}

TYPED_TEST (MenuLook, DrawsALightSheetWithSeeThroughCorners)
{
    TypeParam look;
    juce::Image image (juce::Image::ARGB, 80, 50, true);
    {
        juce::Graphics g (image);
        look.drawPopupMenuBackground (g, 80, 50);
    }

    for (const auto& at : { juce::Point<int> { 40, 25 }, { 0, 25 }, { 79, 25 }, { 40, 0 }, { 40, 49 }, { 6, 6 } })
        EXPECT_TRUE (close (juce::Colour (0xfffcfcfc), image.getPixelAt (at.x, at.y)));

    for (const auto& at : { juce::Point<int> { 0, 0 }, { 79, 0 }, { 0, 49 }, { 79, 49 } })
        EXPECT_EQ (0, image.getPixelAt (at.x, at.y).getAlpha());

    // The radius is 5: on an edge the curve is over there.
    EXPECT_GT (image.getPixelAt (5, 0).getAlpha(), 240);
    EXPECT_LT (image.getPixelAt (2, 0).getAlpha(), 200);
}

TYPED_TEST (MenuLook, LetsThroughWhatLiesBehindAMenusCorners)
{
    TypeParam look;
    juce::Component menu;
    menu.setOpaque (true);
    look.preparePopupMenuWindow (menu);
    EXPECT_FALSE (menu.isOpaque());
}

TYPED_TEST (MenuLook, SeparatorsAreTheFrameworks)
{
    const RowState separator { true };
    juce::LookAndFeel_V3 plain;
    TypeParam look;
    plain.setColour (juce::PopupMenu::textColourId, look.findColour (juce::PopupMenu::textColourId));
    juce::Image expected (juce::Image::ARGB, 220, 60, true);
    {
        juce::Graphics g (expected);
        plain.drawPopupMenuItem (g, { 0, 0, 200, 24 }, true, true, false, false, false, {}, {}, nullptr, nullptr);
    }
    const auto image = paintedRow<TypeParam> (separator);
    EXPECT_FALSE (drawnArea (image).isEmpty());

    for (int y = 0; y < 60; ++y)
        for (int x = 0; x < 220; ++x)
            ASSERT_EQ (expected.getPixelAt (x, y), image.getPixelAt (x, y));
}

TYPED_TEST (MenuLook, AHighlightedRowIsShadedFromLightToTheHighlight)
{
    RowState row;
    row.isHighlighted = true;

    for (const auto top : { 0, 30 })
    {
        const auto image = paintedRow<TypeParam> (row, { 0, top, 200, 24 });
        const auto light = channelwise (highlight, lighter), dark = channelwise (highlight, darker);

        // Row 0 and the last are the margin; the lines lie over the gradient's ends, half see-through.
        EXPECT_TRUE (close (between (light, dark), image.getPixelAt (100, top + 1), 4));
        EXPECT_TRUE (close (between (highlight, dark), image.getPixelAt (100, top + 22), 4));
        EXPECT_TRUE (close (light, image.getPixelAt (100, top + 2), 6));
        EXPECT_TRUE (close (highlight, image.getPixelAt (100, top + 21), 6));
        EXPECT_TRUE (close (between (light, highlight), image.getPixelAt (100, top + 12), 4));
        EXPECT_TRUE (close (image.getPixelAt (3, top + 12), image.getPixelAt (196, top + 12), 0));

        for (int y = 3; y < 21; ++y) // steadily darker
            EXPECT_LE (image.getPixelAt (100, top + y).getRed(), image.getPixelAt (100, top + y - 1).getRed() + 1);
    }
}

TYPED_TEST (MenuLook, OtherRowsAreNotShaded)
{
    RowState row;
    EXPECT_TRUE (drawnArea (paintedRow<TypeParam> (row)).isEmpty());
    row.isHighlighted = true;
    row.isActive = false;
    EXPECT_TRUE (drawnArea (paintedRow<TypeParam> (row)).isEmpty());
}

TYPED_TEST (MenuLook, ARowOfNoHeightDrawsNothing)
{
    RowState row;
    row.isHighlighted = row.isTicked = row.hasSubMenu = true;
    row.text = "Row";

    for (const auto& area : { juce::Rectangle<int> { 10, 10, 200, 0 }, { 10, 10, 0, 0 } })
        EXPECT_LE (drawnArea (paintedRow<TypeParam> (row, area)).getHeight(), 1); // its font is a tenth of a pixel

    RowState shaded;
    shaded.isHighlighted = true;

    for (const auto& area : { juce::Rectangle<int> { 10, 10, 200, 0 },
                              { 10, 10, 200, 1 },
                              { 10, 10, 200, 2 },
                              { 10, 10, 1, 24 },
                              { 10, 10, 0, 0 } })
        EXPECT_TRUE (drawnArea (paintedRow<TypeParam> (shaded, area)).isEmpty());
}

TYPED_TEST (MenuLook, TheTickLiesInItsField)
{
    RowState row;
    row.isTicked = true;

    for (const auto& [w, h] : { std::pair { 200, 24 }, { 200, 40 }, { 20, 30 } })
    {
        const auto inner = juce::Rectangle<int> (w - 2, h - 2);
        const juce::Rectangle<int> field (4, 4, std::min (inner.getWidth(), inner.getHeight() * 5 / 4) - 6,
                                          inner.getHeight() - 6);
        const auto area = drawnArea (paintedRow<TypeParam> (row, { 0, 0, w, h }));
        EXPECT_FALSE (area.isEmpty());
        EXPECT_TRUE (field.expanded (1).contains (area)) << area.toString() << " in " << field.toString();
        EXPECT_TRUE (area.getWidth() >= field.getWidth() - 2 || area.getHeight() >= field.getHeight() - 2);
    }

    // One of a pixel is still one, and one that would be smaller is none.
    EXPECT_FALSE (drawnArea (paintedRow<TypeParam> (row, { 0, 0, 200, 9 })).isEmpty());
    EXPECT_FALSE (drawnArea (paintedRow<TypeParam> (row, { 0, 0, 9, 24 })).isEmpty());

    for (const auto height : { 8, 5, 1 })
        EXPECT_TRUE (drawnArea (paintedRow<TypeParam> (row, { 0, 0, 200, height })).isEmpty()) << height;
}

TYPED_TEST (MenuLook, TheTickIsTheFrameworksFittedIntoItsField)
{
    TypeParam look;
    RowState row;
    row.isTicked = true;

    for (const auto& place : { juce::Point<int> { 0, 0 }, { 11, 17 } })
    {
        juce::Image expected (juce::Image::ARGB, 220, 60, true);
        {
            // The row's margin of a pixel, and three within that.
            const auto field = juce::Rectangle<int> (4, 4, 27 - 6, 22 - 6) + place;
            const auto tick = look.getTickShape (1.0f);
            juce::Graphics g (expected);
            g.setColour (look.findColour (juce::PopupMenu::textColourId));
            g.fillPath (tick, tick.getTransformToScaleToFit (field.toFloat(), true));
        }
        const auto image = paintedRow<TypeParam> (row, juce::Rectangle<int> (200, 24) + place);

        for (int y = 0; y < 60; ++y)
            for (int x = 0; x < 220; ++x)
                ASSERT_EQ (expected.getPixelAt (x, y), image.getPixelAt (x, y)) << x << ", " << y;
    }
}

TYPED_TEST (MenuLook, AnIconTakesTheTicksPlace)
{
    juce::DrawableRectangle icon;
    icon.setRectangle (juce::Parallelogram<float> (juce::Rectangle<float> (100.0f, 100.0f)));
    icon.setFill (juce::Colours::red);
    RowState row;
    row.isTicked = true;
    row.icon = &icon;
    const auto image = paintedRow<TypeParam> (row);
    EXPECT_TRUE (juce::Rectangle<int> (4, 4, 21, 16).expanded (1).contains (drawnArea (image)));
    EXPECT_TRUE (close (juce::Colours::red, strongest (image)));
}

TYPED_TEST (MenuLook, TextStandsRightOfTheTicksField)
{
    if (juce::Font::findAllTypefaceNames().isEmpty())
        GTEST_SKIP() << "without any font on the machine no text is drawn";

    RowState row;
    row.text = "MMMM";
    const auto area = drawnArea (paintedRow<TypeParam> (row));
    EXPECT_GE (area.getX(), 1 + 22 * 5 / 4);
    EXPECT_LT (area.getX(), 1 + 22 * 5 / 4 + 6);
    EXPECT_NEAR (12.0, area.toFloat().getCentreY(), 2.0);

    // A low row has a lower font: its height is the row's over 1.3.
    const auto tall = area.getHeight();
    const auto low = drawnArea (paintedRow<TypeParam> (row, { 0, 0, 200, 12 })).getHeight();
    EXPECT_NEAR (12.0 / 1.3 / 17.0, static_cast<double> (low) / tall, 0.15);
}

TYPED_TEST (MenuLook, AShortcutStandsSmallerAtTheRight)
{
    if (juce::Font::findAllTypefaceNames().isEmpty())
        GTEST_SKIP() << "without any font on the machine no text is drawn";

    TypeParam look;
    const auto font = look.getPopupMenuFont();
    ASSERT_LT (font.getHeight(), 24.0f / 1.3f); // the row is high enough for it

    for (const auto* shortcut : { "Ctrl+Q", "a shortcut with many more words than there is room for in a row" })
    {
        juce::Image expected (juce::Image::ARGB, 220, 60, true), image (juce::Image::ARGB, 220, 60, true);
        {
            juce::Graphics g (expected);
            g.setColour (look.findColour (juce::PopupMenu::textColourId));
            g.setFont (font.withHeight (font.getHeight() * 0.75f).withHorizontalScale (0.95f));
            // Right of the tick's field, and 3 px off the row's end.
            g.drawText (shortcut, juce::Rectangle<int> (1, 1, 198, 22).withTrimmedLeft (27).withTrimmedRight (3),
                        juce::Justification::centredRight, true);
        }
        {
            juce::Graphics g (image);
            look.drawPopupMenuItem (g, { 0, 0, 200, 24 }, false, true, false, false, false, {}, shortcut, nullptr,
                                    nullptr);
        }
        EXPECT_FALSE (drawnArea (image).isEmpty());

        for (int y = 0; y < 60; ++y)
            for (int x = 0; x < 220; ++x)
                ASSERT_EQ (expected.getPixelAt (x, y), image.getPixelAt (x, y)) << shortcut << ": " << x << ", " << y;
    }
}

TYPED_TEST (MenuLook, ColoursOfRows)
{
    TypeParam look;
    const auto plain = look.findColour (juce::PopupMenu::textColourId);
    const auto marked = look.findColour (juce::PopupMenu::highlightedTextColourId);
    const juce::Colour own (0xff20c040);

    RowState row;
    row.hasSubMenu = true; // an arrow shows the colour without any font
    EXPECT_TRUE (close (plain, strongest (paintedRow<TypeParam> (row))));

    row.colour = &own;
    EXPECT_TRUE (close (own, strongest (paintedRow<TypeParam> (row))));

    row.isActive = false;
    const auto faint = strongest (paintedRow<TypeParam> (row));
    EXPECT_NEAR (0.3 * 255, faint.getAlpha(), 3);
    EXPECT_TRUE (close (own, faint.withAlpha (1.0f), 6));

    row.isHighlighted = true; // the highlight's colour goes before the row's own
    EXPECT_TRUE (close (marked, strongest (paintedRow<TypeParam> (row)).withAlpha (1.0f), 6));
    row.colour = nullptr;
    EXPECT_TRUE (close (marked, strongest (paintedRow<TypeParam> (row)).withAlpha (1.0f), 6));

    row.isActive = true;
    const auto image = paintedRow<TypeParam> (row);
    auto found = false;

    for (int x = 180; x < 200 && ! found; ++x)
        found = close (marked, image.getPixelAt (x, 12));

    EXPECT_TRUE (found);
}

TYPED_TEST (MenuLook, TheArrowOfASubmenuHasSixTenthsOfTheFontsHeight)
{
    TypeParam look;
    const auto fontHeight = look.getPopupMenuFont().getHeight();
    RowState row;
    row.hasSubMenu = true;

    for (const auto& area : { juce::Rectangle<int> { 0, 0, 200, 24 }, { 7, 9, 180, 14 }, { 0, 3, 220, 40 } })
    {
        const auto rowHeight = static_cast<float> (area.getHeight());
        const auto height = 0.6f * std::min (fontHeight, rowHeight / 1.3f);
        const auto left = static_cast<float> (area.getRight() - 1 - static_cast<int> (height)); // 1 px of margin
        const auto middle = static_cast<float> (area.getY()) + 0.5f * rowHeight;
        juce::Image expected (juce::Image::ARGB, 220, 60, true);
        {
            juce::Graphics g (expected);
            g.setColour (look.findColour (juce::PopupMenu::textColourId));
            juce::Path arrow;
            arrow.addTriangle (left, middle - 0.5f * height, left, middle + 0.5f * height, left + 0.6f * height,
                               middle);
            g.fillPath (arrow);
        }
        const auto image = paintedRow<TypeParam> (row, area);

        for (int y = 0; y < 60; ++y)
            for (int x = 0; x < 220; ++x)
                ASSERT_TRUE (close (expected.getPixelAt (x, y), image.getPixelAt (x, y), 2))
                    << x << ", " << y << " of a row " << area.getHeight() << " high";
    }
}

TYPED_TEST (MenuLook, TheArrowOfASubmenuIsATriangleAtTheRight)
{
    TypeParam look;
    const auto fontHeight = look.getPopupMenuFont().getHeight();
    RowState row;
    row.hasSubMenu = true;

    for (const auto rowHeight : { 24, 14, 40 })
    {
        const auto area = drawnArea (paintedRow<TypeParam> (row, { 0, 0, 200, rowHeight }));
        const auto height = 0.6f * std::min (fontHeight, static_cast<float> (rowHeight) / 1.3f);
        EXPECT_NEAR (height, area.getHeight(), 2.0) << rowHeight;
        EXPECT_NEAR (0.6f * height, area.getWidth(), 2.0) << rowHeight;
        EXPECT_NEAR (rowHeight * 0.5f, area.toFloat().getCentreY(), 1.01) << rowHeight;
        EXPECT_GE (static_cast<float> (area.getRight()), 199.0f - height) << rowHeight;
        EXPECT_LE (area.getRight(), 200) << rowHeight;

        const auto image = paintedRow<TypeParam> (row, { 0, 0, 200, rowHeight });
        const auto columnHeight = [&] (int x)
        {
            auto count = 0;

            for (int y = 0; y < rowHeight; ++y)
                count += image.getPixelAt (x, y).getAlpha() > 128 ? 1 : 0;

            return count;
        };
        EXPECT_GT (columnHeight (area.getX()), columnHeight (area.getRight() - 2)); // it points to the right
    }
}

// ---- for panels to come ------------------------------------------------------------------------
namespace
{
class PanelLook : public ::testing::Test
{
protected:
    PanelLook() { button.setSize (40, 20); }

    juce::Image paintedButton (juce::Colour colour, bool over, bool down)
    {
        juce::Image image (juce::Image::ARGB, 40, 20, true);
        juce::Graphics g (image);
        look.drawButtonBackground (g, button, colour, over, down);
        return image;
    }

    NVXLNF look;
    juce::TextButton button;
};
} // namespace

TEST_F (PanelLook, AButtonsFillGoesByTheMouse)
{
    const juce::Colour colour (0xff204080);
    EXPECT_EQ (0, paintedButton (colour, false, false).getPixelAt (20, 10).getAlpha());
    EXPECT_NEAR (0.8 * 255, paintedButton (colour, true, false).getPixelAt (20, 10).getAlpha(), 1.1);
    EXPECT_NEAR (0.5 * 255, paintedButton (colour, false, true).getPixelAt (20, 10).getAlpha(), 1.1);
    EXPECT_NEAR (0.5 * 255, paintedButton (colour, true, true).getPixelAt (20, 10).getAlpha(), 1.1);
    EXPECT_TRUE (close (colour, paintedButton (colour, true, false).getPixelAt (20, 10).withAlpha (1.0f), 2));

    const auto half = colour.withAlpha (0.5f);
    EXPECT_NEAR (0.4 * 255, paintedButton (half, true, false).getPixelAt (20, 10).getAlpha(), 1.1);
    EXPECT_NEAR (0.25 * 255, paintedButton (half, false, true).getPixelAt (20, 10).getAlpha(), 1.1);
}

TEST_F (PanelLook, AButtonsOutlineIsAWhitePixelWide)
{
    const auto image = paintedButton (juce::Colours::blue, false, false);

    for (const auto& at : { juce::Point<int> { 0, 0 }, { 39, 0 }, { 0, 19 }, { 39, 19 }, { 20, 0 }, { 0, 10 } })
    {
        EXPECT_NEAR (0.5 * 255, image.getPixelAt (at.x, at.y).getAlpha(), 1.1);
        EXPECT_TRUE (close (juce::Colours::white, image.getPixelAt (at.x, at.y).withAlpha (1.0f), 2));
    }

    EXPECT_EQ (0, image.getPixelAt (1, 1).getAlpha());
}

TEST_F (PanelLook, AButtonsOutlineIsFaintWithinWhatIsModal)
{
    juce::Component parent, grandparent;
    grandparent.addAndMakeVisible (parent);
    parent.addAndMakeVisible (button);

    for (auto* modal : std::initializer_list<juce::Component*> { &button, &parent, &grandparent })
    {
        modal->enterModalState (false);
        EXPECT_NEAR (0.1 * 255, paintedButton (juce::Colours::blue, false, false).getPixelAt (20, 0).getAlpha(), 1.1);
        modal->exitModalState (0);
        Mouse::dispatchMessages();
    }

    EXPECT_NEAR (0.5 * 255, paintedButton (juce::Colours::blue, false, false).getPixelAt (20, 0).getAlpha(), 1.1);
}

TEST_F (PanelLook, AButtonWithoutASizeDrawsNothing)
{
    for (const auto& [w, h] : { std::pair { 0, 20 }, { 40, 0 }, { 0, 0 } })
    {
        button.setSize (w, h);
        EXPECT_TRUE (drawnArea (paintedButton (juce::Colours::blue, true, false)).isEmpty());
    }
}

TEST_F (PanelLook, AComboBoxsFontIsAtMostTenHigh)
{
    juce::ComboBox box;

    for (const auto& [boxHeight, fontHeight] : { std::pair { 24, 10.0f },
                                                 { 12, 10.0f },
                                                 { 11, 9.35f },
                                                 { 10, 8.5f },
                                                 { 4, 3.4f },
                                                 { 1, 0.85f },
                                                 { 0, 0.1f } })
    {
        box.setSize (100, boxHeight);
        EXPECT_NEAR (fontHeight, look.getComboBoxFont (box).getHeight(), 1.0e-5) << boxHeight;
    }
}

TEST_F (PanelLook, AComboBoxCanBePainted)
{
    juce::ComboBox box;
    box.setLookAndFeel (&look);
    box.setColour (juce::ComboBox::backgroundColourId, juce::Colours::navy);

    for (const auto& [w, h] : { std::pair { 100, 24 }, { 0, 0 }, { 1, 1 } })
    {
        box.setSize (w, h);
        const auto image = painted (box);

        EXPECT_TRUE (w < 100 || close (juce::Colours::navy, image.getPixelAt (3, 3)));
    }

    box.setLookAndFeel (nullptr);
}

TEST_F (PanelLook, AComboBoxIsAFrameAndAnArrow)
{
    juce::ComboBox box;
    box.setColour (juce::ComboBox::backgroundColourId, juce::Colours::navy);
    box.setColour (juce::ComboBox::arrowColourId, juce::Colours::orange);

    for (const auto isDown : { false, true })
    {
        juce::Image expected (juce::Image::ARGB, 100, 30, true), image (juce::Image::ARGB, 100, 30, true);
        {
            juce::Graphics g (expected);
            g.fillAll (juce::Colours::navy);
            g.setColour (juce::Colours::white.withAlpha (isDown ? 0.6f : 0.5f));
            g.drawRect (0, 0, 100, 30, 1);
            // 0.4 and 0.24 of the button's height, about its middle.
            juce::Path arrow;
            arrow.addTriangle (79.0f, 12.5f, 89.0f, 12.5f, 84.0f, 18.5f);
            g.setColour (juce::Colours::orange);
            g.fillPath (arrow);
        }
        {
            juce::Graphics g (image);
            look.drawComboBox (g, 100, 30, isDown, 70, 3, 28, 25, box);
        }

        for (int y = 0; y < 30; ++y)
            for (int x = 0; x < 100; ++x)
                ASSERT_TRUE (close (expected.getPixelAt (x, y), image.getPixelAt (x, y), 1)) << x << ", " << y;
    }
}

namespace
{
/** Stands in for an open menu, and counts the looks that it is given. */
struct OpenMenu : juce::Component
{
    OpenMenu (const char* name, juce::LookAndFeel& look) : juce::Component (name)
    {
        setLookAndFeel (&look);
        looksGiven = 0;
    }

    ~OpenMenu() override { setLookAndFeel (nullptr); }

    void lookAndFeelChanged() override { ++looksGiven; }

    int looksGiven = 0;
};
} // namespace

TEST (PanelLooks, AreTakenFromTheMenusThatAreOpenWhenTheirPanelGoes)
{
    CorvaneQ7AudioProcessor processor;
    CorvaneQ7Editor editor (processor);
    OpenMenu links ("menu", editor.bar->lookAndFeel), settings ("menu", editor.toolbar->lookAndFeel);
    OpenMenu another ("box", editor.toolbar->lookAndFeel);

    for (auto* child : { &links, &settings, &another })
    {
        editor.addAndMakeVisible (child);
        child->looksGiven = 0;
    }

    editor.toolbar->lookAndFeel.releaseMenusIn (nullptr);
    editor.bar.reset();
    EXPECT_EQ (1, links.looksGiven);
    EXPECT_EQ (0, settings.looksGiven); // the toolbar is still there
    EXPECT_EQ (&editor.toolbar->lookAndFeel, &settings.getLookAndFeel());

    editor.toolbar.reset();
    EXPECT_EQ (1, settings.looksGiven);
    EXPECT_EQ (0, another.looksGiven); // no menu
}

TEST (PanelLooks, PanelsHaveTheirOwn)
{
    CorvaneQ7AudioProcessor processor;
    CorvaneQ7Editor editor (processor);
    EXPECT_EQ (&editor.mainUI->lookAndFeel, &editor.mainUI->getLookAndFeel());
    EXPECT_EQ (&editor.toolbar->lookAndFeel, &editor.toolbar->getLookAndFeel());
    EXPECT_EQ (&editor.bar->lookAndFeel, &editor.bar->getLookAndFeel());
    EXPECT_EQ (&editor.mainUI->lookAndFeel, &editor.mainUI->bands[0].ratio->getLookAndFeel());
    EXPECT_EQ (&editor.toolbar->lookAndFeel, &editor.toolbar->inLevelSlider.getLookAndFeel());
}
