// SPDX-License-Identifier: GPL-3.0-or-later
#include "EditorFixture.h"
#include "support/Followed.h"

#include <cmath>

namespace
{
using Words = std::vector<std::string>;
using Bounds = juce::Rectangle<int>;
} // namespace

class Toolbar : public EditorTest
{
protected:
    HostLog host { processor };
};

// ---- make and layout ---------------------------------------------------------------------------
TEST_F (Toolbar, StandsInPixelsAndOnlyTheSettingsKeyFollowsTheEdge)
{
    for (const auto& [w, h] : { std::pair { 1350, 723 }, { 1215, 650 }, { 1080, 578 }, { 945, 506 }, { 540, 300 } })
    {
        editor->setSize (w, h);
        EXPECT_EQ ((Bounds { w - 24, 0, 24, 24 }), toolbar().settingsButton.getBounds());
        EXPECT_EQ ((Bounds { 0, 0, 24, 24 }), toolbar().aButton.getBounds());
        EXPECT_EQ ((Bounds { 24, 0, 24, 24 }), toolbar().copyAtoBButton.getBounds());
        EXPECT_EQ ((Bounds { 48, 0, 24, 24 }), toolbar().bButton.getBounds());
        EXPECT_EQ ((Bounds { 24, 0, 24, 24 }), toolbar().copyBtoAButton.getBounds());
        EXPECT_EQ ((Bounds { 200, 0, 24, 24 }), toolbar().inLabel.getBounds());
        EXPECT_EQ ((Bounds { 224, 0, 68, 24 }), toolbar().inLevelSlider.getBounds());
        EXPECT_EQ ((Bounds { 304, 0, 32, 24 }), toolbar().outLabel.getBounds());
        EXPECT_EQ ((Bounds { 336, 0, 68, 24 }), toolbar().outLevelSlider.getBounds());
    }
}

TEST_F (Toolbar, HasItsChildrenInTheOrderOfMaking)
{
    juce::Component* const expected[] {
        &toolbar().settingsButton, &toolbar().aButton,        &toolbar().copyAtoBButton,
        &toolbar().bButton,        &toolbar().copyBtoAButton, &toolbar().inLabel,
        &toolbar().inLevelSlider,  &toolbar().outLabel,       &toolbar().outLevelSlider
    };
    ASSERT_EQ (juce::numElementsInArray (expected), toolbar().getNumChildComponents());

    for (int i = 0; i < juce::numElementsInArray (expected); ++i)
        EXPECT_EQ (expected[i], toolbar().getChildComponent (i)) << i;
}

TEST_F (Toolbar, KeysHaveThreePicturesEach)
{
    const auto shows = [] (juce::ImageButton& key, const Assets::KeyImages& images)
    {
        return key.getNormalImage() == images.normal && key.getOverImage() == images.over
               && key.getDownImage() == images.down;
    };

    EXPECT_TRUE (shows (toolbar().settingsButton, Assets::settingsKey()));
    EXPECT_TRUE (shows (toolbar().aButton, Assets::slotAKey()));
    EXPECT_TRUE (shows (toolbar().bButton, Assets::slotBKey()));
    EXPECT_TRUE (shows (toolbar().copyAtoBButton, Assets::copyAToBKey()));
    EXPECT_TRUE (shows (toolbar().copyBtoAButton, Assets::copyBToAKey()));
}

TEST_F (Toolbar, TheAudibleSlotsKeyShowsItsThirdPicture)
{
    const auto drawn = [] (const juce::Image& image)
    {
        juce::Image small (juce::Image::ARGB, 24, 24, true);
        juce::Graphics g (small);
        g.drawImageWithin (image, 0, 0, 24, 24, juce::RectanglePlacement::stretchToFit);
        return small;
    };
    const auto same = [] (const juce::Image& a, const juce::Image& b)
    {
        for (int y = 0; y < 24; ++y)
            for (int x = 0; x < 24; ++x)
                if (a.getPixelAt (x, y) != b.getPixelAt (x, y))
                    return false;

        return true;
    };

    EXPECT_TRUE (same (drawn (Assets::slotAKey().down), painted (toolbar().aButton)));
    EXPECT_TRUE (same (drawn (Assets::slotBKey().normal), painted (toolbar().bButton)));
    processor.activeSlot = 1;
    toolbar().refresh();
    EXPECT_TRUE (same (drawn (Assets::slotAKey().normal), painted (toolbar().aButton)));
    EXPECT_TRUE (same (drawn (Assets::slotBKey().down), painted (toolbar().bButton)));
    EXPECT_TRUE (same (drawn (Assets::settingsKey().normal), painted (toolbar().settingsButton)));
}

TEST_F (Toolbar, LabelsSayInAndOut)
{
    for (const auto& [label, text] :
         { std::pair { &toolbar().inLabel, "IN" }, std::pair { &toolbar().outLabel, "OUT" } })
    {
        EXPECT_EQ (juce::String (text), label->getText());
        EXPECT_EQ (15.0f, label->getFont().getHeight());
        EXPECT_EQ (juce::Font::plain, label->getFont().getStyleFlags());
        EXPECT_EQ (juce::Justification::centredLeft, label->getJustificationType().getFlags());
        EXPECT_FALSE (label->isEditable());
        EXPECT_EQ (juce::Colour (0xc5ffffff), label->findColour (juce::Label::textColourId));
    }
}

TEST_F (Toolbar, TrimsAreSetAsTheyShould)
{
    for (auto* trim : { &toolbar().inLevelSlider, &toolbar().outLevelSlider })
    {
        EXPECT_EQ (juce::Slider::RotaryVerticalDrag, trim->getSliderStyle());
        EXPECT_EQ (-10.0, trim->getMinimum());
        EXPECT_EQ (10.0, trim->getMaximum());
        EXPECT_EQ (0.1, trim->getInterval());
        EXPECT_EQ (juce::Slider::TextBoxRight, trim->getTextBoxPosition());
        EXPECT_TRUE (trim->isTextBoxEditable());
        EXPECT_EQ (40, trim->getTextBoxWidth());
        EXPECT_EQ (20, trim->getTextBoxHeight());
        EXPECT_TRUE (trim->isDoubleClickReturnEnabled());
        EXPECT_EQ (0.0, trim->getDoubleClickReturnValue());

        EXPECT_EQ (juce::Colour (0xffffffff), trim->findColour (juce::Slider::trackColourId));
        EXPECT_EQ (juce::Colour (0xffffffff), trim->findColour (juce::Slider::rotarySliderFillColourId));
        EXPECT_EQ (juce::Colour (0x66000000), trim->findColour (juce::Slider::rotarySliderOutlineColourId));
        EXPECT_EQ (juce::Colour (0xff595959), trim->findColour (juce::Slider::textBoxTextColourId));
        EXPECT_EQ (juce::Colour (0xff000000), trim->findColour (juce::Slider::textBoxBackgroundColourId));
        EXPECT_EQ (juce::Colour (0xff12b9ff), trim->findColour (juce::Slider::textBoxHighlightColourId));
    }
}

TEST_F (Toolbar, TheNumberBesideATrimHasItsColours)
{
    for (auto* trim : { &toolbar().inLevelSlider, &toolbar().outLevelSlider })
    {
        auto boxes = 0;

        for (auto* child : trim->getChildren())
            if (auto* box = dynamic_cast<juce::Label*> (child))
            {
                EXPECT_EQ (juce::Colour (0xff595959), box->findColour (juce::Label::textColourId));
                EXPECT_EQ (juce::Colour (0xff000000), box->findColour (juce::Label::backgroundColourId));
                EXPECT_EQ (20, box->getHeight());
                EXPECT_EQ (68 - 30, box->getWidth()); // the framework leaves 30 px to the dial
                ++boxes;
            }

        EXPECT_EQ (1, boxes);
    }
}

TEST_F (Toolbar, BindsTheTwoTrims)
{
    EXPECT_EQ (2u, toolbar().controlsOfParameter.size());
    EXPECT_EQ ((std::vector<juce::Component*> { &toolbar().inLevelSlider }), toolbar().controlsOfParameter.at (36));
    EXPECT_EQ ((std::vector<juce::Component*> { &toolbar().outLevelSlider }), toolbar().controlsOfParameter.at (37));
}

TEST_F (Toolbar, IsBlack)
{
    for (auto* child : toolbar().getChildren())
        child->setVisible (false);

    const auto image = painted (toolbar());

    for (int x = 0; x < toolbar().getWidth(); x += 3)
        for (const auto y : { 0, 12, 23 })
            EXPECT_EQ (juce::Colours::black, image.getPixelAt (x, y));
}

// ---- refresh -----------------------------------------------------------------------------------
TEST_F (Toolbar, ShowsTheSlotAndOneCopyKey)
{
    for (const auto slot : { 0, 1, 0 })
    {
        processor.activeSlot = slot;
        toolbar().refresh();
        EXPECT_EQ (slot == 0, toolbar().aButton.getToggleState());
        EXPECT_EQ (slot == 1, toolbar().bButton.getToggleState());
        EXPECT_EQ (slot == 0, toolbar().copyAtoBButton.isVisible());
        EXPECT_EQ (slot == 1, toolbar().copyBtoAButton.isVisible());
        EXPECT_EQ (slot == 0 ? &toolbar().copyAtoBButton : &toolbar().copyBtoAButton,
                   toolbar().getComponentAt (36, 12));
    }

    EXPECT_TRUE (host.words.empty());
}

TEST_F (Toolbar, ShowsTheTrimsTargetsSilently)
{
    settings().inLevelDb.target = 3.5;
    settings().outLevelDb.target = -7.2;
    toolbar().refresh();
    EXPECT_NEAR (3.5, toolbar().inLevelSlider.getValue(), 1.0e-9);
    EXPECT_NEAR (-7.2, toolbar().outLevelSlider.getValue(), 1.0e-9);

    settings().outLevelDb.target = 40.0; // more than the trim can show
    toolbar().refresh();
    EXPECT_EQ (10.0, toolbar().outLevelSlider.getValue());
    Mouse::dispatchMessages();
    EXPECT_TRUE (host.words.empty());
    EXPECT_EQ (40.0, settings().outLevelDb.target);
}

TEST_F (Toolbar, RunsItsTimerWhileItIsVisible)
{
    EXPECT_TRUE (toolbar().isTimerRunning (0));
    EXPECT_EQ (50, toolbar().getTimerInterval (0));

    toolbar().setVisible (false);
    EXPECT_FALSE (toolbar().isTimerRunning (0));
    processor.activeSlot = 1;
    toolbar().setVisible (true);
    EXPECT_TRUE (toolbar().isTimerRunning (0));
    EXPECT_TRUE (toolbar().bButton.getToggleState()); // at once

    processor.activeSlot = 0;

    for (const auto other : { 1, 2, -1 })
        toolbar().timerCallback (other);

    EXPECT_TRUE (toolbar().bButton.getToggleState());
    toolbar().timerCallback (0);
    EXPECT_FALSE (toolbar().bButton.getToggleState());
}

// ---- trims -------------------------------------------------------------------------------------
TEST_F (Toolbar, ATrimSendsItsShareOfTwentyDecibels)
{
    for (const auto& [trim, index] :
         { std::pair { &toolbar().inLevelSlider, 36 }, std::pair { &toolbar().outLevelSlider, 37 } })
        for (const auto db : { -10.0, -3.3, 0.0, 0.1, 7.5, 10.0 })
        {
            trim->setValue (trim->getValue() > 0.0 ? -10.0 : 10.0, juce::dontSendNotification);
            host.clear();
            trim->setValue (db, juce::sendNotificationSync);
            EXPECT_EQ ((Words { "value " + std::to_string (index) }), host.words) << db;
            EXPECT_FLOAT_EQ (static_cast<float> (db / 20.0 + 0.5), host.values.front().second);
            EXPECT_NEAR (db / 20.0 + 0.5, valueOf (index), 1.0e-6);
        }
}

TEST_F (Toolbar, ATrimsDragIsAGesture)
{
    for (const auto& [trim, index] :
         { std::pair { &toolbar().inLevelSlider, 36 }, std::pair { &toolbar().outLevelSlider, 37 } })
    {
        host.clear();
        Mouse::press (*trim);
        Mouse::dragUp (*trim, 25.0f); // a tenth of the usual 250
        Mouse::release (*trim);
        const auto name = std::to_string (index);
        EXPECT_EQ ((Words { "begin " + name, "value " + name, "end " + name }), host.words);
        EXPECT_NEAR (2.0, trim->getValue(), 1.0e-9);
    }
}

TEST_F (Toolbar, LinkHasNoPartInTheTrims)
{
    automate (34, 1.0f);
    Mouse::click (toolbar().inLevelSlider);
    EXPECT_EQ ((Words { "begin 36", "end 36" }), host.gestures());
}

TEST_F (Toolbar, ADoubleClickOnATrimReturnsItToZero)
{
    for (const auto& [trim, index] :
         { std::pair { &toolbar().inLevelSlider, 36 }, std::pair { &toolbar().outLevelSlider, 37 } })
    {
        trim->setValue (6.3, juce::sendNotificationSync);
        Mouse::doubleClick (*trim);
        EXPECT_EQ (0.0, trim->getValue());
        EXPECT_EQ (0.5f, valueOf (index));
    }
}

// ---- slots -------------------------------------------------------------------------------------
TEST_F (Toolbar, ASlotKeyMakesItsSlotAudibleAndTellsTheHost)
{
    processor.settingsSlots[1].bands[0].ratio = 4;
    processor.settingsSlots[1].mix = 0.25;

    Mouse::click (toolbar().bButton);
    EXPECT_EQ (1, processor.activeSlot);
    EXPECT_EQ (1.0f, valueOf (5));                         // parameters show the other record
    EXPECT_EQ (0.25, followed (processor).mixRamp.target); // which is applied
    EXPECT_EQ ((Words { "changed" }), host.words);
    EXPECT_TRUE (toolbar().bButton.getToggleState()); // and shown at once
    EXPECT_FALSE (toolbar().aButton.getToggleState());
    EXPECT_TRUE (toolbar().copyBtoAButton.isVisible());

    host.clear();
    Mouse::click (toolbar().aButton);
    EXPECT_EQ (0, processor.activeSlot);
    EXPECT_EQ (0.5f, valueOf (5));
    EXPECT_EQ (1.0, followed (processor).mixRamp.target);
    EXPECT_EQ ((Words { "changed" }), host.words);
    EXPECT_TRUE (toolbar().aButton.getToggleState());
}

TEST_F (Toolbar, AnEditReachesTheAudibleSlotAlone)
{
    Mouse::click (toolbar().bButton);
    panel().mix->setValue (0.125, juce::sendNotificationSync);
    EXPECT_EQ (0.125, processor.settingsSlots[1].mix);
    EXPECT_EQ (1.0, processor.settingsSlots[0].mix);
}

TEST_F (Toolbar, TheCopyKeyCopiesToTheOtherSlotAndStays)
{
    for (const auto slot : { 0, 1 })
    {
        processor.selectSlot (slot);
        toolbar().refresh();
        auto& here = processor.settingsSlots[slot];
        auto& there = processor.settingsSlots[1 - slot];
        here.bands[2].ratio = slot == 0 ? 0 : 4;
        here.mix = slot == 0 ? 0.75 : 0.375;
        here.calibrationGain = 8.0;
        there.calibrationGain = 12.0;
        const auto appliedMix = followed (processor).mixRamp.target;
        host.clear();

        auto* key = toolbar().getComponentAt (24 + 12, 12);
        ASSERT_NE (nullptr, key);
        Mouse::click (*key);

        EXPECT_EQ (slot, processor.activeSlot);
        EXPECT_EQ (here.bands[2].ratio, there.bands[2].ratio);
        EXPECT_EQ (here.mix, there.mix);
        EXPECT_EQ (8.0, here.calibrationGain);
        EXPECT_EQ (12.0, there.calibrationGain); // each slot keeps its own
        EXPECT_EQ (appliedMix, followed (processor).mixRamp.target);
        EXPECT_TRUE (host.words.empty());
    }
}

TEST_F (Toolbar, BothCopyKeysDoTheSame)
{
    processor.settingsSlots[0].mix = 0.5;
    toolbar().buttonClicked (&toolbar().copyBtoAButton); // A is audible: it is A that is copied
    EXPECT_EQ (0.5, processor.settingsSlots[1].mix);
    EXPECT_EQ (0.5, processor.settingsSlots[0].mix);
}
