// SPDX-License-Identifier: GPL-3.0-or-later
// What the front is made of: its widgets, how they are stacked, bound and set.
#include "EditorFixture.h"
#include "ExpectedPanel.h"

#include <algorithm>
#include <cmath>
#include <set>

namespace
{
using namespace ExpectedPanel;

using Widgets = std::set<juce::Component*>;

const juce::Colour readoutColour { 0xe6ffffff }, ghostColour { 0xff3c0404 }, litColour { 0xffff0000 };
} // namespace

class MainUIMake : public EditorTest
{
protected:
    /** Children from the bottom upwards, beginning with one. */
    Widgets childrenAt (int first, int count)
    {
        Widgets found;

        for (int i = first; i < first + count; ++i)
            found.insert (panel().getChildComponent (i));

        return found;
    }

    std::vector<juce::ImageButton*> lamps()
    {
        auto all = std::vector<juce::ImageButton*> { panel().bypassLamp.get(), panel().nukeLamp.get(),
                                                     panel().niveauLamp.get(), panel().linkLamp.get() };

        for (auto& each : panel().bands)
            all.insert (all.end(), { each.inLamp.get(), each.soloLamp.get(), each.midLamp.get(), each.sideLamp.get() });

        return all;
    }

    /** Of a click in the middle of a component that stands on the panel. */
    juce::Component* hitAt (juce::Point<int> at) { return panel().getComponentAt (at); }
};

// ---- stacking ----------------------------------------------------------------------------------
TEST_F (MainUIMake, StacksItsWidgetsInTheOrderOfMaking)
{
    auto& p = panel();
    ASSERT_EQ (68, p.getNumChildComponents());

    EXPECT_EQ (p.masterReadout.get(), p.getChildComponent (0));
    EXPECT_EQ (p.mixReadout.get(), p.getChildComponent (1));
    EXPECT_EQ (p.highPassReadout.get(), p.getChildComponent (2));
    EXPECT_EQ (p.bypassLamp.get(), p.getChildComponent (3));

    Widgets letters;

    for (int i = 0; i < numBands; ++i)
        letters.insert ({ band (i).sideLabel.get(), band (i).midLabel.get() });

    EXPECT_EQ (letters, childrenAt (4, 6));
    EXPECT_EQ ((Widgets { p.lowXOverGhost.get(), p.highXOverGhost.get() }), childrenAt (10, 2));

    for (int i = 0; i < numBands; ++i)
        EXPECT_EQ (band (i).meter.get(), p.getChildComponent (12 + i));

    auto next = 15;

    for (int i = 0; i < numBands; ++i)
        for (auto* knob : { band (i).ratio.get(), band (i).attack.get(), band (i).recovery.get(), band (i).gain.get(),
                            band (i).threshold.get(), band (i).meterMode.get() })
            EXPECT_EQ (knob, p.getChildComponent (next++));

    for (auto* widget : std::initializer_list<juce::Component*> {
             p.highPass.get(), p.mix.get(), p.master.get(), p.lowXOver.get(), p.highXOver.get(), p.bypassSwitch.get() })
        EXPECT_EQ (widget, p.getChildComponent (next++));

    for (int i = 0; i < numBands; ++i)
    {
        EXPECT_EQ ((Widgets { band (i).inLamp.get(), band (i).soloLamp.get() }), childrenAt (next, 2));
        next += 2;
    }

    EXPECT_EQ (p.nukeLamp.get(), p.getChildComponent (next++));
    EXPECT_EQ (p.linkLamp.get(), p.getChildComponent (next++));
    EXPECT_EQ ((Widgets { p.lowXOverDigits.get(), p.highXOverDigits.get() }), childrenAt (next, 2));
    next += 2;
    EXPECT_EQ (p.niveauLamp.get(), p.getChildComponent (next++));

    Widgets midSideLamps, buttons;

    for (int i = 0; i < numBands; ++i)
    {
        midSideLamps.insert ({ band (i).midLamp.get(), band (i).sideLamp.get() });
        buttons.insert ({ band (i).inButton.get(), band (i).soloButton.get(), band (i).midSideButton.get() });
    }

    EXPECT_EQ (midSideLamps, childrenAt (next, 6));
    EXPECT_EQ (buttons, childrenAt (next + 6, 9));
    EXPECT_EQ (p.nukeButton.get(), p.getChildComponent (next + 15));
    EXPECT_EQ (p.niveauButton.get(), p.getChildComponent (next + 16));
    EXPECT_EQ (p.linkButton.get(), p.getChildComponent (next + 17));
    EXPECT_EQ (68, next + 18);
}

TEST_F (MainUIMake, EverythingIsVisibleWithTwoChannels)
{
    for (auto* child : panel().getChildren())
        EXPECT_TRUE (child->isVisible()) << panel().getIndexOfChildComponent (child);
}

TEST_F (MainUIMake, HasTheClassesOfTheFamily)
{
    auto& p = panel();

    for (int i = 0; i < numBands; ++i)
    {
        auto& b = band (i);

        for (auto* knob : { b.ratio.get(), b.attack.get(), b.recovery.get() })
            EXPECT_NE (nullptr, dynamic_cast<BigKnob*> (knob));

        for (auto* knob : { b.gain.get(), b.threshold.get() })
            EXPECT_NE (nullptr, dynamic_cast<MidKnob*> (knob));

        EXPECT_NE (nullptr, dynamic_cast<SmallKnob*> (b.meterMode.get()));
        EXPECT_NE (nullptr, dynamic_cast<BandInButton*> (b.inButton.get()));
        EXPECT_NE (nullptr, dynamic_cast<SoloButton*> (b.soloButton.get()));
        EXPECT_NE (nullptr, dynamic_cast<MSButton*> (b.midSideButton.get()));
    }

    for (auto* knob : { p.highPass.get(), p.mix.get(), p.master.get() })
        EXPECT_NE (nullptr, dynamic_cast<MidKnob*> (knob));

    for (auto* knob : { p.lowXOver.get(), p.highXOver.get() })
        EXPECT_NE (nullptr, dynamic_cast<SmallKnob*> (knob));

    EXPECT_NE (nullptr, dynamic_cast<InButton*> (p.bypassSwitch.get()));
    EXPECT_NE (nullptr, dynamic_cast<NukeButton*> (p.nukeButton.get()));
    EXPECT_NE (nullptr, dynamic_cast<NiveauButton*> (p.niveauButton.get()));
    EXPECT_NE (nullptr, dynamic_cast<LinkButton*> (p.linkButton.get()));
}

TEST_F (MainUIMake, AloneItHasItsBaseSize)
{
    MainUI alone (processor);
    EXPECT_EQ (1350, alone.getWidth());
    EXPECT_EQ (675, alone.getHeight());
    EXPECT_FALSE (alone.stereoShown);

    for (auto* digits : { alone.lowXOverDigits.get(), alone.highXOverGhost.get() })
        EXPECT_EQ (juce::String ("Segment7"), digits->getFont().getTypefacePtr()->getName());
}

// ---- knobs -------------------------------------------------------------------------------------
TEST_F (MainUIMake, KnobsTurnAsTheirTableSays)
{
    const auto knobs = knobsOf (panel());
    ASSERT_EQ (23u, knobs.size());

    for (const auto& [knob, travel, parameter] : knobs)
    {
        SCOPED_TRACE (travel.name + std::string (" of parameter ") + std::to_string (parameter));
        EXPECT_EQ (0.0, knob->getMinimum());
        EXPECT_EQ (1.0, knob->getMaximum());
        EXPECT_EQ (travel.step, knob->getInterval());
        EXPECT_EQ (travel.dragPixels, knob->getMouseDragSensitivity());
        EXPECT_EQ (travel.start, knob->rotaryStart);
        EXPECT_EQ (travel.end, knob->rotaryEnd);

        // The framework wants its own copy above 0: the same directions, a whole turn on where ours begin below.
        const auto copy = knob->getRotaryParameters();
        const auto lift = copy.startAngleRadians - travel.start;
        EXPECT_NEAR (travel.start < 0.0f ? juce::MathConstants<float>::twoPi : 0.0f, lift, 1.0e-5f);
        EXPECT_NEAR (travel.end + lift, copy.endAngleRadians, 1.0e-5f);
        EXPECT_TRUE (copy.stopAtEnd);

        EXPECT_EQ (juce::Slider::RotaryVerticalDrag, knob->getSliderStyle());
        EXPECT_EQ (juce::Slider::NoTextBox, knob->getTextBoxPosition());
        EXPECT_EQ (80, knob->getTextBoxWidth());
        EXPECT_EQ (20, knob->getTextBoxHeight());
        EXPECT_EQ (0, knob->getNumChildComponents());
    }
}

TEST_F (MainUIMake, AFullTravelTakesItsPixels)
{
    for (const auto& [knob, travel, parameter] : knobsOf (panel()))
    {
        knob->setValue (0.0, juce::dontSendNotification);
        Mouse::press (*knob);
        Mouse::dragUp (*knob, static_cast<float> (travel.dragPixels));
        EXPECT_NEAR (1.0, knob->getValue(), 2.0e-4) << travel.name;
        Mouse::dragUp (*knob, static_cast<float> (travel.dragPixels) * 0.5f);
        const auto half = travel.step > 0.0 ? travel.step * std::round (0.5 / travel.step) : 0.5;
        EXPECT_NEAR (half, knob->getValue(), travel.step > 0.0 ? travel.step * 1.001 : 1.0e-6) << travel.name;
        Mouse::dragUp (*knob, 1000.0f); // the end is a stop
        EXPECT_NEAR (1.0, knob->getValue(), 2.0e-4) << travel.name;
        Mouse::dragUp (*knob, -1000.0f);
        EXPECT_EQ (0.0, knob->getValue()) << travel.name;
        Mouse::release (*knob);
        EXPECT_EQ (0.0f, valueOf (parameter)) << travel.name;
    }
}

TEST_F (MainUIMake, SteppedKnobsSnap)
{
    auto& attackKnob = *band (0).attack;
    attackKnob.setValue (1.0, juce::dontSendNotification);
    EXPECT_NEAR (0.9999, attackKnob.getValue(), 1.0e-12); // three steps of 0.3333

    auto& ratioKnob = *band (0).ratio;
    ratioKnob.setValue (0.4, juce::dontSendNotification);
    EXPECT_EQ (0.5, ratioKnob.getValue());
}

TEST_F (MainUIMake, EveryStepOfAKnobArrivesAndStays)
{
    constexpr std::pair<const char*, int> numSteps[] { { "Ratio", 5 }, { "Attack", 4 },     { "Recovery", 5 },
                                                       { "Gain", 22 }, { "Threshold", 16 }, { "Meter mode", 3 } };

    for (const auto& [knob, travel, parameter] : knobsOf (panel()))
    {
        if (travel.step <= 0.0)
            continue;

        const auto name = std::string (travel.name);
        const auto positions = std::find_if (std::begin (numSteps), std::end (numSteps),
                                             [&] (const auto& row) { return row.first == name; })
                                   ->second;

        for (int i = 0; i < positions; ++i)
        {
            knob->setValue (i * travel.step, juce::sendNotificationSync);
            EXPECT_NEAR (i / (positions - 1.0), valueOf (parameter), 1.0e-6) << name << " " << i;

            const auto shown = knob->getValue();
            panel().refresh();
            EXPECT_EQ (shown, knob->getValue()) << name << " " << i;
        }

        EXPECT_NEAR (1.0, (positions - 1) * travel.step, 1.01e-4) << name; // the table's steps reach the end
    }
}

// ---- bindings and defaults ---------------------------------------------------------------------
TEST_F (MainUIMake, BindsOneControlToEachParameterUpToBypass)
{
    const auto controls = boundControls (panel());
    EXPECT_EQ (36u, panel().controlsOfParameter.size());
    EXPECT_EQ (36u, panel().parameterOfControl.size());

    for (int i = 0; i < 36; ++i)
    {
        auto* control = controls[static_cast<std::size_t> (i)];
        ASSERT_NE (nullptr, control) << i;
        EXPECT_EQ ((std::vector<juce::Component*> { control }), panel().controlsOfParameter.at (i)) << i;
        EXPECT_EQ (i, panel().getControlParameterIndex (*control));
    }

    EXPECT_EQ (0u, panel().controlsOfParameter.count (36));
    EXPECT_EQ (0u, panel().controlsOfParameter.count (37));
}

TEST_F (MainUIMake, KnobsReturnToTheirDefaultsByADoubleClick)
{
    // By parameter, of the Low, Mid and High band.
    const float meters[] { 0.5f, 0.5f, 0.5f }, gains[] { 2.0f / 21.0f, 4.0f / 21.0f, 4.0f / 21.0f };
    const float ratios[] { 0.5f, 0.5f, 0.5f }, thresholds[] { 1.0f / 3.0f, 2.0f / 3.0f, 0.6f };
    const float attacks[] { 2.0f / 3.0f, 2.0f / 3.0f, 2.0f / 3.0f }, recoveries[] { 1.0f, 1.0f, 1.0f };

    std::vector<float> defaults (36, -1.0f);

    for (int i = 0; i < numBands; ++i)
    {
        const auto first = static_cast<std::size_t> (i * bandDistance);
        defaults[first] = meters[i];
        defaults[first + 4] = gains[i];
        defaults[first + 5] = ratios[i];
        defaults[first + 6] = thresholds[i];
        defaults[first + 7] = attacks[i];
        defaults[first + 8] = recoveries[i];
    }

    defaults[27] = 1.0f;        // Mix
    defaults[28] = 0.0f;        // HPF
    defaults[29] = 1.0f / 3.0f; // Master
    defaults[30] = 0.30103f;    // Low crossover
    defaults[31] = 0.786176f;   // High crossover

    for (const auto& [knob, travel, parameter] : knobsOf (panel()))
    {
        const auto expected = defaults[static_cast<std::size_t> (parameter)];
        EXPECT_TRUE (knob->isDoubleClickReturnEnabled()) << parameter;
        EXPECT_FLOAT_EQ (expected, static_cast<float> (knob->getDoubleClickReturnValue())) << parameter;

        knob->setValue (knob->getValue() > 0.6 ? 0.0 : 1.0, juce::sendNotificationSync);
        Mouse::doubleClick (*knob);
        EXPECT_NEAR (expected, valueOf (parameter), 1.0e-6) << parameter;
    }
}

TEST_F (MainUIMake, AltClickOnAKnobDoesNotReset)
{
    auto& knob = *band (0).ratio;
    knob.setValue (1.0, juce::sendNotificationSync);
    Mouse::click (knob, Mouse::alt);
    EXPECT_EQ (1.0f, valueOf (5));
}

TEST_F (MainUIMake, ButtonsKnowTheirDefaults)
{
    const std::vector<int> onByDefault { 1, 10, 19, 33, /* mid/side off is half */ 3, 12, 21 };

    for (const auto& [index, controls] : panel().controlsOfParameter)
        if (const auto* button = dynamic_cast<NVXButton*> (controls.front()))
        {
            const auto expected = std::find (onByDefault.begin(), onByDefault.end(), index) != onByDefault.end();
            EXPECT_TRUE (button->hasDefault) << index;
            EXPECT_EQ (expected, button->defaultState) << index;
        }
}

// ---- labels ------------------------------------------------------------------------------------
TEST_F (MainUIMake, LabelsAreReadAndNotWritten)
{
    auto& p = panel();

    for (auto* label : { p.masterReadout.get(), p.mixReadout.get(), p.highPassReadout.get() })
        EXPECT_EQ (readoutColour, label->findColour (juce::Label::textColourId));

    for (auto& each : p.bands)
    {
        EXPECT_EQ (juce::String ("M"), each.midLabel->getText());
        EXPECT_EQ (juce::String ("S"), each.sideLabel->getText());
        EXPECT_EQ (readoutColour, each.midLabel->findColour (juce::Label::textColourId));
        EXPECT_EQ (readoutColour, each.sideLabel->findColour (juce::Label::textColourId));
    }

    EXPECT_EQ (ghostColour, p.lowXOverGhost->findColour (juce::Label::textColourId));
    EXPECT_EQ (ghostColour, p.highXOverGhost->findColour (juce::Label::textColourId));
    EXPECT_EQ (litColour, p.lowXOverDigits->findColour (juce::Label::textColourId));
    EXPECT_EQ (litColour, p.highXOverDigits->findColour (juce::Label::textColourId));

    auto count = 0;

    for (auto* child : p.getChildren())
        if (auto* label = dynamic_cast<juce::Label*> (child))
        {
            const auto isDigits = label->findColour (juce::Label::textColourId) != readoutColour;
            EXPECT_FALSE (label->isEditable());
            EXPECT_FALSE (label->isEditableOnSingleClick());
            EXPECT_FALSE (label->isEditableOnDoubleClick());
            EXPECT_EQ (isDigits ? juce::Justification::centredRight : juce::Justification::centred,
                       label->getJustificationType().getFlags());
            ++count;
        }

    EXPECT_EQ (13, count);
}

TEST_F (MainUIMake, GhostAndDigitsCoincide)
{
    for (const auto& [w, h] : { std::pair { 1350, 723 }, { 945, 506 }, { 1024, 548 } })
    {
        editor->setSize (w, h);
        EXPECT_EQ (panel().lowXOverGhost->getBounds(), panel().lowXOverDigits->getBounds());
        EXPECT_EQ (panel().highXOverGhost->getBounds(), panel().highXOverDigits->getBounds());
        EXPECT_EQ (panel().lowXOverGhost->getFont(), panel().lowXOverDigits->getFont());
        EXPECT_EQ (panel().highXOverGhost->getBorderSize(), panel().highXOverDigits->getBorderSize());
    }

    EXPECT_LT (panel().getIndexOfChildComponent (panel().lowXOverGhost.get()),
               panel().getIndexOfChildComponent (panel().lowXOverDigits.get()));
    EXPECT_LT (panel().getIndexOfChildComponent (panel().highXOverGhost.get()),
               panel().getIndexOfChildComponent (panel().highXOverDigits.get()));
}

// ---- lamps -------------------------------------------------------------------------------------
TEST_F (MainUIMake, LampsHaveTheColoursOfTheirControls)
{
    const auto shows = [] (juce::ImageButton& lamp, const Assets::TwoStates& images)
    {
        return lamp.getNormalImage() == images.off && lamp.getDownImage() == images.on
               && lamp.getOverImage() == images.off; // no picture of its own under the mouse
    };

    const auto green = Assets::greenLamp(), red = Assets::redLamp(), yellow = Assets::yellowLamp();
    EXPECT_TRUE (shows (*panel().bypassLamp, green));
    EXPECT_TRUE (shows (*panel().linkLamp, green));
    EXPECT_TRUE (shows (*panel().nukeLamp, red));
    EXPECT_TRUE (shows (*panel().niveauLamp, yellow));

    for (auto& each : panel().bands)
    {
        EXPECT_TRUE (shows (*each.inLamp, green));
        EXPECT_TRUE (shows (*each.soloLamp, red));
        EXPECT_TRUE (shows (*each.midLamp, yellow));
        EXPECT_TRUE (shows (*each.sideLamp, yellow));
    }
}

TEST_F (MainUIMake, LampsLightByTheirToggleState)
{
    for (auto* lamp : lamps())
    {
        lamp->setToggleState (false, juce::dontSendNotification);
        const auto off = painted (*lamp);
        lamp->setToggleState (true, juce::dontSendNotification);
        const auto on = painted (*lamp);

        const auto brightness = [] (const juce::Image& image)
        {
            auto sum = 0.0f;

            for (int y = 8; y < 17; ++y)
                for (int x = 8; x < 17; ++x)
                    sum += image.getPixelAt (x, y).getBrightness() * image.getPixelAt (x, y).getFloatAlpha();

            return sum;
        };

        EXPECT_GT (brightness (off), 8.0f); // an unlit lamp is to be seen too
        EXPECT_GT (brightness (on), 1.3f * brightness (off));
    }
}

TEST_F (MainUIMake, LampsKeepTheirProportions)
{
    auto& lamp = *panel().nukeLamp;
    lamp.setSize (25, 25);
    const auto plain = painted (lamp);
    lamp.setSize (45, 25);
    const auto wide = painted (lamp);
    EXPECT_EQ (plain.getPixelAt (12, 12), wide.getPixelAt (22, 12));

    for (int y = 0; y < 25; ++y)
        for (const auto x : { 0, 4, 8, 37, 44 }) // beside a picture of 25 px in the middle
            EXPECT_EQ (0, wide.getPixelAt (x, y).getAlpha());
}

TEST_F (MainUIMake, OnlyTheMidSideLampsAndTheBypassLampMeetTheMouse)
{
    for (auto* lamp : lamps())
    {
        bool self = false, children = false;
        lamp->getInterceptsMouseClicks (self, children);
        const auto isMidSide = std::any_of (panel().bands.begin(), panel().bands.end(),
                                            [lamp] (const MainUI::BandWidgets& each)
                                            { return lamp == each.midLamp.get() || lamp == each.sideLamp.get(); });
        EXPECT_EQ (isMidSide || lamp == panel().bypassLamp.get(), self);
        EXPECT_EQ (isMidSide, hitAt (lamp->getBounds().getCentre()) == lamp);
    }

    // The switch lies over its lamp.
    EXPECT_EQ (panel().bypassSwitch.get(), hitAt (panel().bypassLamp->getBounds().getCentre()));
}

// ---- where clicks go ---------------------------------------------------------------------------
TEST_F (MainUIMake, NeighbouringKeysDoNotTakeEachOthersClicks)
{
    for (const auto& [width, height] : { std::pair { 1350, 723 }, { 1215, 650 }, { 1080, 578 }, { 945, 506 } })
    {
        editor->setSize (width, height);
        std::vector<juce::Component*> keys { panel().nukeButton.get(), panel().niveauButton.get(),
                                             panel().linkButton.get() };

        for (auto& each : panel().bands)
            keys.insert (keys.end(), { each.inButton.get(), each.soloButton.get(), each.midSideButton.get() });

        for (auto* key : keys)
            for (int y = key->getY(); y < key->getBottom(); ++y)
            {
                const auto share = static_cast<float> (y - key->getY()) / static_cast<float> (key->getHeight());
                const auto isKey = share >= 0.25f && share <= 0.73f;
                EXPECT_EQ (isKey, hitAt ({ key->getBounds().getCentreX(), y }) == key) << key->getTitle() << " " << y;
            }
    }
}

TEST_F (MainUIMake, AClickBesideAKeyFallsThrough)
{
    const auto corner = band (0).inButton->getPosition(); // the key's own (0, 0)
    EXPECT_EQ (&panel(), hitAt (corner));

    HostLog host (processor);
    Mouse::click (*hitAt (corner));
    EXPECT_TRUE (host.words.empty());
}

// ---- painting ----------------------------------------------------------------------------------
TEST_F (MainUIMake, PaintsTheFrontOverAllOfItself)
{
    EXPECT_TRUE (panel().isOpaque());

    for (auto* child : panel().getChildren())
        child->setVisible (false);

    const auto front = Assets::front();

    for (const auto& [w, h] : { std::pair { 1350, 675 }, { 945, 458 } })
    {
        panel().setSize (w, h);
        const auto image = painted (panel());

        juce::Image expected (juce::Image::ARGB, w, h, true);
        {
            juce::Graphics g (expected);
            g.fillAll (juce::Colours::white);
            g.setColour (juce::Colours::black);
            g.drawImageWithin (front, 0, 0, w, h, juce::RectanglePlacement::stretchToFit);
        }

        auto differences = 0;

        for (int y = 0; y < h; ++y)
            for (int x = 0; x < w; ++x)
            {
                EXPECT_EQ (255, image.getPixelAt (x, y).getAlpha());
                differences += image.getPixelAt (x, y) != expected.getPixelAt (x, y) ? 1 : 0;
            }

        EXPECT_EQ (0, differences);
    }
}

// ---- timers ------------------------------------------------------------------------------------
TEST_F (MainUIMake, RunsItsTwoTimersWhileItIsVisible)
{
    EXPECT_TRUE (panel().isTimerRunning (0));
    EXPECT_TRUE (panel().isTimerRunning (2));
    EXPECT_EQ (80, panel().getTimerInterval (0));
    EXPECT_EQ (50, panel().getTimerInterval (2));
    EXPECT_FALSE (panel().isTimerRunning (1));

    panel().setVisible (false);
    EXPECT_FALSE (panel().isTimerRunning (0));
    EXPECT_FALSE (panel().isTimerRunning (2));

    panel().setVisible (true);
    EXPECT_EQ (80, panel().getTimerInterval (0));
    EXPECT_EQ (50, panel().getTimerInterval (2));
}

TEST_F (MainUIMake, ShowsTheStateAtOnceWhenItComesBack)
{
    panel().setVisible (false);
    automate (5, 1.0f);
    EXPECT_EQ (0.5, band (0).ratio->getValue());
    panel().setVisible (true);
    EXPECT_EQ (1.0, band (0).ratio->getValue());
}

TEST_F (MainUIMake, TheFirstTimerRefreshesAndTheOtherMovesTheNeedles)
{
    static juce::uint32 now;
    now = 1000;

    for (auto& each : panel().bands)
    {
        each.meter->millisecondCounter = []() noexcept { return std::uint32_t { now }; };
        each.meter->lastTime = now;
        each.meter->position = 0.0f;
        each.meter->velocity = 0.0f;
    }

    automate (5, 1.0f);
    settings().lowGainReduction = 0.1;
    now += 50;

    panel().timerCallback (1); // nobody's
    EXPECT_EQ (0.5, band (0).ratio->getValue());
    EXPECT_EQ (0.0f, band (0).meter->position);

    panel().timerCallback (0);
    EXPECT_EQ (1.0, band (0).ratio->getValue());
    EXPECT_EQ (0.0f, band (0).meter->position);

    panel().timerCallback (2);
    EXPECT_NEAR (0.09, band (0).meter->position, 1.0e-6); // the fastest rise: 3 * 0.6 * 0.05
}

TEST_F (MainUIMake, ItsTimersTickByThemselves)
{
    automate (5, 1.0f);

    for (int i = 0; i < 100 && band (0).ratio->getValue() != 1.0; ++i) // 80 ms where the machine is idle
        Mouse::dispatchMessagesFor (20);

    EXPECT_EQ (1.0, band (0).ratio->getValue());
}
