// SPDX-License-Identifier: GPL-3.0-or-later
// What a screen reader is told.
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

TEST_F (Accessibility, AKeyCanBePressed)
{
    auto& key = *panel().nukeButton;
    const auto handler = key.createAccessibilityHandler();
    ASSERT_NE (nullptr, handler);
    EXPECT_EQ (juce::AccessibilityRole::button, handler->getRole());
    EXPECT_EQ (juce::String ("Off"), valueTextOf (key));
    EXPECT_TRUE (handler->getActions().invoke (juce::AccessibilityActionType::press));
    Mouse::dispatchMessages();
    EXPECT_EQ (1.0f, valueOf (32));
    EXPECT_EQ (juce::String ("On"), valueTextOf (key));
}
