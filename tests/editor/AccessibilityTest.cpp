// SPDX-License-Identifier: GPL-3.0-or-later
// What a screen reader is told.
#include "editor/ProductLinks.h"
#include "EditorFixture.h"
#include "ExpectedPanel.h"

#include <set>

namespace
{
using namespace ExpectedPanel;

class Accessibility : public EditorTest
{
protected:
    template <typename Widget>
    static juce::String handlersText (Widget& widget)
    {
        const auto handler = widget.createAccessibilityHandler();
        const auto* value = handler != nullptr ? handler->getValueInterface() : nullptr;
        return value != nullptr ? value->getCurrentValueAsString() : juce::String();
    }

    static juce::String valueTextOf (juce::Component& component)
    {
        if (auto* key = dynamic_cast<NVXButton*> (&component))
            return handlersText (*key);

        if (auto* meter = dynamic_cast<VertMeter*> (&component))
            return handlersText (*meter);

        // The framework's own handler of sliders says this.
        auto& slider = dynamic_cast<juce::Slider&> (component);
        return slider.getTextFromValue (slider.getValue());
    }
};
} // namespace

TEST_F (Accessibility, EveryControlHasANameOfItsOwn)
{
    std::set<juce::String> names;

    for (int i = 0; i < 36; ++i)
    {
        const auto title = panel().controlsOfParameter.at (i).front()->getTitle();
        EXPECT_TRUE (title.isNotEmpty()) << i;
        EXPECT_TRUE (names.insert (title).second) << title;
        EXPECT_TRUE (panel().controlsOfParameter.at (i).front()->isAccessible()) << title;
    }

    for (auto* other : std::initializer_list<juce::Component*> {
             &toolbar().inLevelSlider, &toolbar().outLevelSlider, &toolbar().settingsButton, &toolbar().aButton,
             &toolbar().bButton, &toolbar().copyAtoBButton, &toolbar().copyBtoAButton, editor->bar->logoButton.get(),
             editor->bar->menuButton.get(), band (0).meter.get(), band (1).meter.get(), band (2).meter.get(),
             band (0).midLamp.get(), band (1).midLamp.get(), band (2).midLamp.get(), band (0).sideLamp.get(),
             band (1).sideLamp.get(), band (2).sideLamp.get() })
    {
        EXPECT_TRUE (other->getTitle().isNotEmpty());
        EXPECT_TRUE (names.insert (other->getTitle()).second) << other->getTitle();
    }
}

TEST_F (Accessibility, NamesAreThoseThatHostsShowAndPeopleSay)
{
    for (const auto& [index, controls] : panel().controlsOfParameter)
    {
        const auto name = processor.getParameters()[index]->getName (64);
        EXPECT_EQ (name.replace ("XOverParameter", "Crossover"), controls.front()->getTitle());
    }

    const std::pair<const juce::Component*, const char*> others[] { { panel().lowXOver.get(), "Low Crossover" },
                                                                    { panel().highXOver.get(), "High Crossover" },
                                                                    { band (0).meter.get(), "Low Meter Reading" },
                                                                    { band (1).midLamp.get(), "Mid Mid Only" },
                                                                    { band (2).sideLamp.get(), "High Side Only" },
                                                                    { &toolbar().settingsButton, "Settings" },
                                                                    { &toolbar().aButton, "Slot A" },
                                                                    { &toolbar().bButton, "Slot B" },
                                                                    { &toolbar().copyAtoBButton, "Copy A to B" },
                                                                    { &toolbar().copyBtoAButton, "Copy B to A" },
                                                                    { &toolbar().inLevelSlider, "In Level" },
                                                                    { &toolbar().outLevelSlider, "Out Level" },
                                                                    { editor->bar->logoButton.get(), "Harbor Guild" },
                                                                    { editor->bar->menuButton.get(),
                                                                      "Manual and links" } };

    for (const auto& [component, name] : others)
        EXPECT_EQ (juce::String (name), component->getTitle());
}

TEST_F (Accessibility, EveryControlSaysItsValueInTheHostsWords)
{
    for (const auto value : { 0.0f, 1.0f, 0.5f, 0.25f })
    {
        for (int i = 0; i < 36; ++i)
            automate (i, i == 34 ? 0.0f : value);

        panel().refresh();

        for (int i = 0; i < 36; ++i)
        {
            const auto* parameter = processor.getParameters()[i];
            const auto text = valueTextOf (*panel().controlsOfParameter.at (i).front());
            EXPECT_TRUE (text.isNotEmpty()) << i;
            EXPECT_EQ (parameter->getText (parameter->getValue(), 64), text) << i << " at " << value;
        }
    }
}

TEST_F (Accessibility, EveryPositionOfASteppedKnobIsSaidAsTheHostSaysIt)
{
    for (const auto& [knob, travel, index] : knobsOf (panel()))
    {
        if (travel.step <= 0.0)
            continue;

        for (double position = 0.0; position <= 1.0; position += travel.step)
        {
            knob->setValue (position, juce::sendNotificationSync);
            const auto* parameter = processor.getParameters()[index];
            EXPECT_EQ (parameter->getText (parameter->getValue(), 64), valueTextOf (*knob))
                << index << " at " << position;
        }
    }
}

TEST_F (Accessibility, TrimsSayTheirDecibels)
{
    toolbar().inLevelSlider.setValue (3.5, juce::dontSendNotification);
    EXPECT_TRUE (valueTextOf (toolbar().inLevelSlider).startsWith ("3.5"));
}

TEST_F (Accessibility, MetersSayWhatTheyShow)
{
    auto& meter = *band (0).meter;
    meter.update (0.5f, true);
    EXPECT_EQ (juce::String ("6.0 dB gain reduction"), valueTextOf (meter));
    meter.update (1.0f, true);
    EXPECT_EQ (juce::String ("0.0 dB gain reduction"), valueTextOf (meter));
    meter.update (2.0f, false);
    EXPECT_EQ (juce::String ("6.0 dB"), valueTextOf (meter));
    meter.update (0.0f, false);
    EXPECT_EQ (juce::String ("silence"), valueTextOf (meter));
}

TEST_F (Accessibility, MetersAreTextsThatNobodyCanWrite)
{
    for (auto& each : panel().bands)
    {
        const auto handler = each.meter->createAccessibilityHandler();
        EXPECT_EQ (juce::AccessibilityRole::staticText, handler->getRole());
        ASSERT_NE (nullptr, handler->getValueInterface());
        EXPECT_TRUE (handler->getValueInterface()->isReadOnly());
        handler->getValueInterface()->setValueAsString ("3 dB");
        EXPECT_EQ (each.meter->valueText(), handler->getValueInterface()->getCurrentValueAsString());
    }
}

TEST_F (Accessibility, EveryKeyOfTheFrontIsAButtonThatCanBePressed)
{
    auto keys = 0;

    for (const auto& [index, controls] : panel().controlsOfParameter)
    {
        auto* key = dynamic_cast<NVXButton*> (controls.front());

        if (key == nullptr)
            continue;

        ++keys;
        const auto* parameter = processor.getParameters()[index];
        const auto before = valueTextOf (*key);
        const auto handler = key->createAccessibilityHandler();
        ASSERT_NE (nullptr, handler);
        EXPECT_EQ (juce::AccessibilityRole::button, handler->getRole()) << key->getTitle();
        ASSERT_NE (nullptr, handler->getValueInterface());
        EXPECT_TRUE (handler->getValueInterface()->isReadOnly());
        EXPECT_TRUE (handler->getActions().invoke (juce::AccessibilityActionType::press)) << key->getTitle();
        EXPECT_NE (before, valueTextOf (*key)) << key->getTitle();
        EXPECT_EQ (parameter->getText (parameter->getValue(), 64), valueTextOf (*key));
    }

    EXPECT_EQ (3 * 3 + 4, keys);
}

TEST_F (Accessibility, EveryPictureKeyIsAButtonAndThoseThatStayLitSayIt)
{
    const juce::String none, on ("On"), off ("Off");
    std::vector<std::pair<PictureButton*, juce::String>> keys { { &toolbar().settingsButton, none },
                                                                { &toolbar().aButton, on },
                                                                { &toolbar().bButton, off },
                                                                { &toolbar().copyAtoBButton, none },
                                                                { &toolbar().copyBtoAButton, none },
                                                                { editor->bar->logoButton.get(), none },
                                                                { editor->bar->menuButton.get(), none } };

    for (auto& each : panel().bands)
        for (auto* lamp : { each.midLamp.get(), each.sideLamp.get() })
            keys.emplace_back (lamp, off);

    for (const auto& [key, state] : keys)
    {
        const auto handler = key->createAccessibilityHandler();
        ASSERT_NE (nullptr, handler);
        EXPECT_EQ (juce::AccessibilityRole::button, handler->getRole()) << key->getTitle();
        EXPECT_TRUE (handler->getActions().contains (juce::AccessibilityActionType::press)) << key->getTitle();
        ASSERT_NE (nullptr, handler->getValueInterface());
        EXPECT_TRUE (handler->getValueInterface()->isReadOnly());
        EXPECT_EQ (state, handlersText (*key)) << key->getTitle();

        // As it is then, and not as it was when the reader asked first.
        key->setToggleState (! key->getToggleState(), juce::dontSendNotification);
        const auto other = state == none ? none : state == on ? off : on;
        EXPECT_EQ (other, handler->getValueInterface()->getCurrentValueAsString()) << key->getTitle();
    }
}

TEST_F (Accessibility, APictureKeyIsPressedOnceWhateverKeysTheReaderHolds)
{
    PictureButton key { Assets::barMenu() };
    auto clicks = 0;
    key.onClick = [&clicks] { ++clicks; };
    const auto handler = key.createAccessibilityHandler();

    for (const auto held : { 0, Mouse::alt, Mouse::ctrl | Mouse::alt, Mouse::shift })
    {
        const juce::ScopedValueSetter<juce::ModifierKeys> keyboard (juce::ModifierKeys::currentModifiers,
                                                                    juce::ModifierKeys (held));
        clicks = 0;
        EXPECT_TRUE (handler->getActions().invoke (juce::AccessibilityActionType::press));
        EXPECT_EQ (1, clicks) << held;
    }
}

TEST_F (Accessibility, PressesOfThePictureKeysDoWhatTheirClicksDo)
{
    const auto press = [] (PictureButton& key)
    { EXPECT_TRUE (key.createAccessibilityHandler()->getActions().invoke (juce::AccessibilityActionType::press)); };

    press (toolbar().bButton);
    EXPECT_EQ (1, processor.activeSlot);
    press (toolbar().aButton);
    EXPECT_EQ (0, processor.activeSlot);
    press (*band (0).midLamp);
    EXPECT_EQ (0.0f, valueOf (3));
    press (*band (2).sideLamp);
    EXPECT_EQ (1.0f, valueOf (21));
    automate (27, 0.25f);
    press (toolbar().copyAtoBButton);
    EXPECT_EQ (0.25, processor.settingsSlots[1].mix);

    juce::String opened;
    editor->bar->openAddress = [&opened] (const juce::String& address) { opened = address; };
    press (*editor->bar->logoButton);
    EXPECT_EQ (juce::String (ProductLinks::distributorHome), opened);
}

TEST_F (Accessibility, WhatAControlBesideItSaysIsNotSaidTwice)
{
    std::set<juce::Component*> silent { panel().bypassLamp.get(), panel().nukeLamp.get(), panel().niveauLamp.get(),
                                        panel().linkLamp.get() };

    for (auto& each : panel().bands)
        silent.insert ({ each.inLamp.get(), each.soloLamp.get() });

    for (auto* child : panel().getChildren())
    {
        const auto isText = dynamic_cast<juce::Label*> (child) != nullptr;
        EXPECT_EQ (! isText && silent.count (child) == 0, child->isAccessible())
            << child->getTitle() << " at " << child->getBounds().toString();
    }

    EXPECT_FALSE (toolbar().inLabel.isAccessible());
    EXPECT_FALSE (toolbar().outLabel.isAccessible());
}

TEST_F (Accessibility, TheAboutBoxIsADialogThatAPressCloses)
{
    auto& box = *editor->about;
    EXPECT_EQ (juce::String ("About"), box.getTitle());
    EXPECT_EQ (juce::String ("Click to close"), box.getHelpText());

    editor->openDialog (0);
    const auto handler = box.createAccessibilityHandler();
    ASSERT_NE (nullptr, handler);
    EXPECT_EQ (juce::AccessibilityRole::dialogWindow, handler->getRole());
    EXPECT_EQ (juce::String ("About"), handler->getTitle());
    EXPECT_EQ (juce::String ("Click to close"), handler->getHelp());
    EXPECT_TRUE (handler->getActions().invoke (juce::AccessibilityActionType::press));
    EXPECT_FALSE (box.isVisible());
}

TEST_F (Accessibility, AKeyCanBePressed)
{
    auto& key = *panel().nukeButton;
    const auto handler = key.createAccessibilityHandler();
    ASSERT_NE (nullptr, handler);
    EXPECT_EQ (juce::String ("Off"), valueTextOf (key));
    EXPECT_TRUE (handler->getActions().invoke (juce::AccessibilityActionType::press));
    Mouse::dispatchMessages();
    EXPECT_EQ (1.0f, valueOf (32));
    EXPECT_EQ (juce::String ("On"), valueTextOf (key));
}
