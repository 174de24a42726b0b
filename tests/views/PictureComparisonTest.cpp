// SPDX-License-Identifier: GPL-3.0-or-later
// What the comparison of pictures lets pass and what it catches: on drawn pictures, and on the editor itself, altered in
// one thing at a time.
#include "views/PictureComparison.h"

#include "editor/CorvaneQ7Editor.h"
#include "views/EditorViews.h"

#include <gtest/gtest.h>

#include <iostream>
#include <random>

namespace
{
using namespace PictureComparison;

/** Grey stripes of some contrast. */
juce::Image stripes (int width, int height)
{
    juce::Image image (juce::Image::RGB, width, height, true);

    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x)
        {
            const auto level = static_cast<juce::uint8> (60 + 10 * (x / 4 % 5));
            image.setPixelAt (x, y, { level, level, level });
        }

    return image;
}

void fill (juce::Image& image, juce::Rectangle<int> area, juce::Colour colour)
{
    juce::Graphics g (image);
    g.setColour (colour);
    g.fillRect (area);
}

/** The clearest difference, as a multiple of what is tolerated. */
double clearest (const juce::Image& reference, const juce::Image& picture,
                 const std::vector<juce::Rectangle<int>>& text)
{
    auto largest = 0.0;

    for (const auto& tile : tilesOf (reference, picture, text))
        largest = std::max ({ largest, tile.artwork / artworkTolerance, tile.text / textTolerance });

    return largest;
}

EditorViews::View view (const char* name)
{
    for (auto& candidate : EditorViews::all())
        if (candidate.name == name)
            return candidate;

    ADD_FAILURE() << "no view " << name;
    return {};
}

/** The editor in that view, and after a change of one thing. */
EditorViews::Picture takeAltered (EditorViews::View base, const std::function<void (CorvaneQ7Editor&)>& alter)
{
    base.arrange = [arrange = base.arrange, &alter] (CorvaneQ7Editor& editor)
    {
        arrange (editor);
        alter (editor);
    };
    return EditorViews::take (base);
}

/** All that shows itself on the front, with the toolbar's and the bar's keys, by picture or by our own face. */
std::vector<juce::Component*> controlsOf (CorvaneQ7Editor& editor)
{
    std::vector<juce::Component*> controls;
    const auto& main = *editor.mainUI;

    for (auto* child : main.getChildren())
        if (child->isVisible())
            if (const auto* label = dynamic_cast<juce::Label*> (child);
                label == nullptr || label == main.lowXOverDigits.get() || label == main.highXOverDigits.get())
                controls.push_back (child);

    for (auto* key : { &editor.toolbar->settingsButton, &editor.toolbar->aButton, &editor.toolbar->bButton })
        controls.push_back (key);

    controls.push_back (editor.bar->logoButton.get());
    controls.push_back (editor.bar->menuButton.get());
    return controls;
}

juce::String nameOf (const juce::Component& component)
{
    return component.getTitle() + " at " + component.getBounds().toString();
}

std::vector<juce::ImageButton*> lampsOf (CorvaneQ7Editor& editor)
{
    auto& main = *editor.mainUI;
    std::vector<juce::ImageButton*> lamps { main.bypassLamp.get(), main.nukeLamp.get(), main.niveauLamp.get(),
                                            main.linkLamp.get() };

    for (auto& band : main.bands)
        for (auto* lamp : { band.inLamp.get(), band.soloLamp.get(), band.midLamp.get(), band.sideLamp.get() })
            lamps.push_back (lamp);

    return lamps;
}

std::vector<NVXSlider*> knobsOf (CorvaneQ7Editor& editor)
{
    auto& main = *editor.mainUI;
    std::vector<NVXSlider*> knobs { main.highPass.get(), main.mix.get(), main.master.get(), main.lowXOver.get(),
                                    main.highXOver.get() };

    for (auto& band : main.bands)
        for (auto* knob : { band.ratio.get(), band.attack.get(), band.recovery.get(), band.gain.get(),
                            band.threshold.get(), band.meterMode.get() })
            knobs.push_back (knob);

    return knobs;
}

/** At the smallest zoom, where everything is hardest to see, and the largest. */
class AlteredEditor : public ::testing::TestWithParam<const char*>
{
protected:
    /** One picture for each of a list of things, each altered alone: all must be noticed. */
    template <typename List, typename Alter>
    void expectEachNoticed (List list, Alter alter)
    {
        const auto base = view (GetParam());
        const auto reference = EditorViews::take (base);
        auto faintest = 1.0e9;
        size_t count = 1;

        for (size_t i = 0; i < count; ++i)
        {
            juce::String name;
            const auto altered = takeAltered (base,
                                              [&] (CorvaneQ7Editor& editor)
                                              {
                                                  const auto things = list (editor);
                                                  count = things.size();
                                                  name = nameOf (*things[i]);
                                                  alter (*things[i]);
                                              });

            EXPECT_FALSE (alike (reference.image, altered.image, reference.systemText)) << name;
            faintest = std::min (faintest, clearest (reference.image, altered.image, reference.systemText));
        }

        EXPECT_GT (count, 1u);
        std::cout << "  faintest of " << count << ": " << faintest << " times the tolerance\n";
    }
};
} // namespace

// ---- the rule ----------------------------------------------------------------------------------
TEST (PictureComparison, FindsAPictureAlikeItself)
{
    const auto image = stripes (100, 70);
    EXPECT_TRUE (alike (image, image.createCopy()));
}

TEST (PictureComparison, LetsRoundingsPass)
{
    const auto image = stripes (100, 70);
    auto other = image.createCopy();
    std::mt19937 random (0x51ed);

    // A third of all pixels off by one level, upwards or downwards.
    for (int y = 0; y < 70; ++y)
        for (int x = 0; x < 100; ++x)
            if (random() % 3 == 0)
            {
                const auto level =
                    static_cast<juce::uint8> (image.getPixelAt (x, y).getRed() + (random() % 2 ? 1 : -1));
                other.setPixelAt (x, y, { level, level, level });
            }

    EXPECT_TRUE (alike (image, other));
}

TEST (PictureComparison, CatchesAnotherSizeAndNoPicture)
{
    EXPECT_FALSE (alike (stripes (100, 70), stripes (100, 71)));
    EXPECT_FALSE (alike ({}, stripes (100, 70)));
    EXPECT_FALSE (alike (stripes (100, 70), {}));
}

TEST (PictureComparison, CatchesASmallSpotInAnyTile)
{
    const auto image = stripes (100, 70); // whole tiles and cut ones at right and below

    for (const auto corner : { juce::Point<int> { 0, 0 }, { 40, 40 }, { 94, 10 }, { 10, 64 }, { 94, 64 } })
    {
        auto other = image.createCopy();
        fill (other, { corner.x, corner.y, 6, 6 }, juce::Colours::red);
        EXPECT_FALSE (alike (image, other)) << corner.toString();
    }
}

TEST (PictureComparison, CatchesOneColourOfThree)
{
    const auto image = stripes (64, 64);
    auto other = image.createCopy();
    fill (other, { 0, 0, 32, 32 }, juce::Colour (60, 60, 64));
    auto base = image.createCopy();
    fill (base, { 0, 0, 32, 32 }, juce::Colour (60, 60, 60));
    EXPECT_FALSE (alike (base, other)); // 4 levels of blue are 1.3 of the mean
}

TEST (PictureComparison, BearsOtherEdgesOfLettersButNotOtherLetters)
{
    const std::vector<juce::Rectangle<int>> text { { 4, 4, 24, 20 } };
    const auto write = [] (juce::Rectangle<int> letter, float darkness)
    {
        auto image = stripes (64, 64);
        fill (image, letter, juce::Colours::black.withAlpha (darkness));
        return image;
    };

    const auto reference = write ({ 8, 8, 4, 12 }, 1.0f);
    EXPECT_TRUE (alike (reference, write ({ 8, 8, 4, 12 }, 0.8f), text));
    EXPECT_FALSE (alike (reference, write ({ 8, 8, 4, 12 }, 0.8f))); // where no text is named
    EXPECT_FALSE (alike (reference, stripes (64, 64), text));        // the letter is gone
    EXPECT_FALSE (alike (reference, write ({ 18, 8, 4, 12 }, 1.0f), text));
}

// ---- the editor --------------------------------------------------------------------------------
TEST_P (AlteredEditor, IsAlikeWhenTakenTwice)
{
    const auto first = EditorViews::take (view (GetParam())), second = EditorViews::take (view (GetParam()));
    EXPECT_EQ (0.0, clearest (first.image, second.image, {}));
}

TEST_P (AlteredEditor, ShowsAControlThatMovedByAPixel)
{
    for (const auto way : { juce::Point<int> { 1, 0 }, { 0, -1 } })
        expectEachNoticed (controlsOf, [way] (juce::Component& control)
                           { control.setTopLeftPosition (control.getPosition() + way); });
}

TEST_P (AlteredEditor, ShowsAMissingControl)
{
    expectEachNoticed (controlsOf, [] (juce::Component& control) { control.setVisible (false); });
}

TEST_P (AlteredEditor, ShowsALampInTheOtherState)
{
    expectEachNoticed (lampsOf, [] (juce::ImageButton& lamp)
                       { lamp.setToggleState (! lamp.getToggleState(), juce::dontSendNotification); });
}

TEST_P (AlteredEditor, ShowsAKnobTurnedByAStep)
{
    constexpr auto aTwentieth = 0.05; // of a knob's way that has no steps

    expectEachNoticed (knobsOf,
                       [] (NVXSlider& knob)
                       {
                           const auto step = knob.getInterval() > 0.0 ? knob.getInterval() : aTwentieth;
                           const auto up = knob.getValue() + step <= 1.0;
                           knob.setValue (knob.getValue() + (up ? step : -step), juce::dontSendNotification);
                       });
}

TEST_P (AlteredEditor, ShowsANeedleThatMoved)
{
    constexpr auto twoPixels = 2.0f;
    const auto base = view (GetParam());
    const auto reference = EditorViews::take (base);

    for (size_t band = 0; band < 3; ++band)
    {
        const auto altered = takeAltered (base,
                                          [band] (CorvaneQ7Editor& editor)
                                          {
                                              auto& meter = *editor.mainUI->bands[band].meter;
                                              meter.position += twoPixels / static_cast<float> (meter.getHeight());
                                          });
        EXPECT_FALSE (alike (reference.image, altered.image, reference.systemText)) << "band " << band;
    }
}

TEST_P (AlteredEditor, ShowsAMissingText)
{
    const auto texts = [] (CorvaneQ7Editor& editor)
    {
        auto& main = *editor.mainUI;
        std::vector<juce::Label*> labels { main.masterReadout.get(),   main.mixReadout.get(),
                                           main.highPassReadout.get(), main.lowXOverDigits.get(),
                                           main.highXOverDigits.get(), &editor.toolbar->inLabel,
                                           &editor.toolbar->outLabel };

        for (auto& band : main.bands)
            for (auto* label : { band.midLabel.get(), band.sideLabel.get() })
                labels.push_back (label);

        return labels;
    };

    expectEachNoticed (texts, [] (juce::Label& label) { label.setText ({}, juce::dontSendNotification); });
}

INSTANTIATE_TEST_SUITE_P (Zooms, AlteredEditor, ::testing::Values ("zoom-70", "zoom-100"),
                          [] (const auto& instance)
                          { return juce::String (instance.param).removeCharacters ("-").toStdString(); });
