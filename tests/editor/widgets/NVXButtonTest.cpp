// SPDX-License-Identifier: GPL-3.0-or-later
#include "editor/EditorFixture.h"

namespace
{
juce::Image filled (juce::Colour colour, int width = 170, int height = 108)
{
    juce::Image image (juce::Image::ARGB, width, height, true);
    image.clear (image.getBounds(), colour);
    return image;
}

/** A key with plain pictures, whose clicks can be made directly. */
class Key : public NVXButton
{
public:
    Key() : NVXButton (Assets::TwoStates { filled (juce::Colours::green), filled (juce::Colours::blue) })
    {
        setSize (85, 54);
        onClick = [this] { ++clicks; };
    }

    void click (int modifiers) { internalClickCallback (juce::ModifierKeys (modifiers)); }

    int clicks = 0;
};

template <typename Button>
void expectSizes (int width, int height, bool takesAllClicks)
{
    Button button;
    EXPECT_EQ (width, button.getWidth());
    EXPECT_EQ (height, button.getHeight());
    EXPECT_EQ (juce::String(), button.getName());
    EXPECT_TRUE (button.getClickingTogglesState());
    EXPECT_FALSE (button.hasDefault);
    EXPECT_FALSE (button.defaultState);
    EXPECT_FALSE (button.getToggleState());
    EXPECT_EQ (takesAllClicks, button.hitTest (0, 0));
    EXPECT_EQ (takesAllClicks, button.hitTest (width - 1, height - 1));
    EXPECT_TRUE (button.hitTest (width / 2, height / 2));
}
} // namespace

TEST (NVXButtonFamily, SizesAndHitZones)
{
    expectSizes<LinkButton> (85, 54, false);
    expectSizes<NiveauButton> (85, 54, false);
    expectSizes<NukeButton> (85, 54, false);
    expectSizes<MSButton> (85, 54, false);
    expectSizes<SoloButton> (85, 54, false);
    expectSizes<BandInButton> (85, 54, false);
    expectSizes<InButton> (70, 79, true);
}

TEST (NVXButtonFamily, EachHasItsOwnPictures)
{
    const auto expectPictures = [] (NVXButton&& button, const Assets::TwoStates& images)
    {
        const auto w = button.getWidth(), h = button.getHeight();
        juce::Image off (juce::Image::ARGB, w, h, true), on (juce::Image::ARGB, w, h, true);
        {
            juce::Graphics g (off);
            g.drawImageWithin (images.off, 0, 0, w, h, juce::RectanglePlacement::stretchToFit);
        }
        {
            juce::Graphics g (on);
            g.drawImageWithin (images.on, 0, 0, w, h, juce::RectanglePlacement::stretchToFit);
        }

        auto differences = 0;

        for (const auto down : { false, true })
        {
            juce::Image image (juce::Image::ARGB, w, h, true);
            juce::Graphics g (image);
            button.paintButton (g, false, down);

            for (int y = 0; y < h; ++y)
                for (int x = 0; x < w; ++x)
                {
                    ASSERT_EQ ((down ? on : off).getPixelAt (x, y), image.getPixelAt (x, y));
                    differences += off.getPixelAt (x, y) != on.getPixelAt (x, y) ? 1 : 0;
                }
        }

        EXPECT_GT (differences, 100); // a pressed key is to be seen
    };

    expectPictures (LinkButton(), Assets::linkButton());
    expectPictures (NiveauButton(), Assets::niveauButton());
    expectPictures (NukeButton(), Assets::nukeButton());
    expectPictures (MSButton(), Assets::midSideButton());
    expectPictures (SoloButton(), Assets::soloButton());
    expectPictures (BandInButton(), Assets::bandInButton());
}

TEST (NVXButtonClicks, FallThroughOutsideOfTheKey)
{
    Key key;

    for (const auto& [w, h] : { std::pair { 85, 54 }, { 77, 48 }, { 68, 42 }, { 60, 37 }, { 100, 100 } })
    {
        key.setSize (w, h);

        for (int x = 0; x < w; ++x)
            for (int y = 0; y < h; ++y)
            {
                const auto fx = static_cast<float> (x) / static_cast<float> (w);
                const auto fy = static_cast<float> (y) / static_cast<float> (h);
                EXPECT_EQ (fx >= 0.15f && fx <= 0.82f && fy >= 0.25f && fy <= 0.73f, key.hitTest (x, y))
                    << x << ", " << y << " of " << w << " by " << h;
            }
    }

    // At 100 %: columns 13 to 69 and rows 14 to 39.
    key.setSize (85, 54);
    EXPECT_TRUE (key.hitTest (13, 14));
    EXPECT_FALSE (key.hitTest (12, 14));
    EXPECT_FALSE (key.hitTest (13, 13));
    EXPECT_TRUE (key.hitTest (69, 39));
    EXPECT_FALSE (key.hitTest (70, 39));
    EXPECT_FALSE (key.hitTest (69, 40));

    // The limits themselves belong to the key.
    key.setSize (100, 100);
    EXPECT_TRUE (key.hitTest (15, 25));
    EXPECT_TRUE (key.hitTest (82, 73));
}

TEST (NVXButtonClicks, APlainOneFlipsTheStateAndTellsOnce)
{
    Key key;

    for (const auto flags : { 0, Mouse::left })
    {
        key.click (flags);
        EXPECT_TRUE (key.getToggleState());
        key.click (flags);
        EXPECT_FALSE (key.getToggleState());
    }

    EXPECT_EQ (4, key.clicks);
}

TEST (NVXButtonClicks, WithAltGoToTheDefaultWhereThereIsOne)
{
    for (const auto buttons : { 0, Mouse::left, static_cast<int> (juce::ModifierKeys::middleButtonModifier) })
    {
        Key key;
        key.click (Mouse::alt | buttons);
        EXPECT_EQ (0, key.clicks); // no default: nothing, for Alt is a modifier too

        key.hasDefault = true;
        key.defaultState = true;
        key.click (Mouse::alt | buttons);
        EXPECT_EQ (1, key.clicks);
        EXPECT_TRUE (key.getToggleState());

        key.click (Mouse::alt | buttons); // there already
        EXPECT_EQ (1, key.clicks);
        EXPECT_TRUE (key.getToggleState());

        key.defaultState = false;
        key.click (Mouse::alt | buttons);
        EXPECT_EQ (2, key.clicks);
        EXPECT_FALSE (key.getToggleState());
    }
}

TEST (NVXButtonClicks, WithAnyOtherModifierDoNothing)
{
    Key key;
    key.hasDefault = true;
    key.defaultState = true;

    for (const auto flags :
         { Mouse::shift, Mouse::ctrl, Mouse::command, Mouse::ctrl | Mouse::alt, Mouse::shift | Mouse::alt,
           Mouse::shift | Mouse::ctrl, Mouse::shift | Mouse::ctrl | Mouse::alt })
    {
        key.click (flags);
        key.click (flags | Mouse::left);
    }

    EXPECT_EQ (0, key.clicks);
    EXPECT_FALSE (key.getToggleState());
}

TEST (NVXButtonPicture, ShowsTheMouseAndNotTheState)
{
    Key key;

    for (const auto& [w, h] : { std::pair { 85, 54 }, { 60, 37 }, { 30, 90 } }) // it stretches
    {
        key.setSize (w, h);

        for (const auto toggled : { false, true })
            for (const auto over : { false, true })
                for (const auto down : { false, true })
                {
                    key.setToggleState (toggled, juce::dontSendNotification);
                    juce::Image image (juce::Image::ARGB, w, h, true);
                    juce::Graphics g (image);
                    key.paintButton (g, over, down);

                    // A pixel within the edges, which the sampler blends with what lies outside.
                    for (const auto& at : { juce::Point<int> { 1, 1 }, { w - 2, h - 2 }, { w / 2, h / 2 } })
                        EXPECT_EQ (down ? juce::Colours::blue : juce::Colours::green, image.getPixelAt (at.x, at.y));
                }
    }
}

TEST (NVXButtonPicture, IsPressedWhileTheMouseHoldsIt)
{
    Key key;
    key.setVisible (true);
    Mouse::press (key);
    EXPECT_EQ (juce::Colours::blue, painted (key).getPixelAt (40, 27));
    Mouse::release (key);
    EXPECT_EQ (juce::Colours::green, painted (key).getPixelAt (40, 27));
    EXPECT_EQ (1, key.clicks);
}

TEST (NVXButtonPicture, OfTheSwitchFollowsItsStateAndNotTheMouse)
{
    const auto images = Assets::bypassSwitch();
    InButton button;

    for (const auto toggled : { false, true })
    {
        juce::Image expected (juce::Image::ARGB, 70, 79, true);
        {
            juce::Graphics g (expected);
            g.drawImageWithin (toggled ? images.on : images.off, 0, 0, 70, 79, juce::RectanglePlacement::stretchToFit);
        }

        button.setToggleState (toggled, juce::dontSendNotification);

        for (const auto down : { false, true })
        {
            juce::Image image (juce::Image::ARGB, 70, 79, true);
            juce::Graphics g (image);
            button.paintButton (g, down, down);

            for (int y = 0; y < 79; ++y)
                for (int x = 0; x < 70; ++x)
                    ASSERT_EQ (expected.getPixelAt (x, y), image.getPixelAt (x, y));
        }
    }
}

TEST (NVXButtonPicture, OfTheSwitchKeepsItsProportionsInTheMiddle)
{
    InButton button;
    const auto paintedAt = [&button] (int width, int height)
    {
        button.setSize (width, height);
        juce::Image image (juce::Image::ARGB, width, height, true);
        juce::Graphics g (image);
        button.paintButton (g, false, false);
        return image;
    };

    const auto plain = paintedAt (70, 79);

    for (const auto& [width, height] : { std::pair { 140, 79 }, { 70, 179 } })
    {
        const auto image = paintedAt (width, height);
        const auto left = (width - 70) / 2, top = (height - 79) / 2;

        for (int y = 0; y < height; ++y)
            for (int x = 0; x < width; ++x)
            {
                const auto isInside = x >= left && x < left + 70 && y >= top && y < top + 79;

                if (isInside)
                    ASSERT_EQ (plain.getPixelAt (x - left, y - top), image.getPixelAt (x, y)) << x << ", " << y;
                else
                    ASSERT_EQ (0, image.getPixelAt (x, y).getAlpha()) << x << ", " << y;
            }
    }
}
