// SPDX-License-Identifier: GPL-3.0-or-later
// What a user's hand does to the parameters, and what the host hears of it.
#include "EditorFixture.h"
#include "ExpectedPanel.h"

#include <cmath>

namespace
{
using namespace ExpectedPanel;
using Words = std::vector<std::string>;

std::string word (const char* kind, int index) { return std::string (kind) + " " + std::to_string (index); }

Words gesture (int index) { return { word ("begin", index), word ("value", index), word ("end", index) }; }

/** The touched control and its siblings, in the order in which hosts are told. */
std::vector<int> linkedOrder (int index)
{
    if (index > 26)
        return { index };

    if (index < 9)
        return { index, index + 9, index + 18 };

    if (index < 18)
        return { index, index - 9, index + 9 };

    return { index, index - 18, index - 9 };
}

Words linkedGesture (int index)
{
    Words words;

    for (const auto each : linkedOrder (index))
        words.push_back (word ("begin", each));

    for (const auto each : linkedOrder (index))
        words.push_back (word ("end", each));

    return words;
}

void setLink (CorvaneQ7AudioProcessor& processor, bool on)
{
    processor.getParameters()[34]->setValue (on ? 1.0f : 0.0f);
}
} // namespace

class MainUIActions : public EditorTest
{
protected:
    HostLog host { processor };
};

// ---- knobs -------------------------------------------------------------------------------------
TEST_F (MainUIActions, AKnobsDragIsOneGestureAroundItsValues)
{
    for (const auto& [knob, travel, parameter] : knobsOf (panel()))
    {
        automate (parameter, 0.0f);
        panel().refresh();
        host.clear();

        Mouse::press (*knob);
        EXPECT_EQ ((Words { word ("begin", parameter) }), host.words);
        Mouse::dragUp (*knob, static_cast<float> (travel.dragPixels) * 0.5f);
        Mouse::release (*knob);

        EXPECT_EQ (gesture (parameter), host.words) << travel.name;
        ASSERT_EQ (1u, host.values.size());
        EXPECT_EQ (static_cast<float> (knob->getValue()), host.values.front().second);
        EXPECT_GT (knob->getValue(), 0.3);
    }
}

TEST_F (MainUIActions, AValueChangeAloneOpensNoGesture)
{
    band (1).recovery->setValue (0.25, juce::sendNotificationSync);
    EXPECT_EQ ((Words { word ("value", 17) }), host.words);
    EXPECT_EQ (0.25f, valueOf (17));
}

TEST_F (MainUIActions, APressWithoutAMoveIsAnEmptyGesture)
{
    Mouse::click (*panel().mix);
    EXPECT_EQ ((Words { "begin 27", "end 27" }), host.words);
}

TEST_F (MainUIActions, ADoubleClickIsAGestureToTheDefault)
{
    automate (5, 1.0f);
    panel().refresh();
    host.clear();
    Mouse::doubleClick (*band (0).ratio);
    EXPECT_EQ (gesture (5), host.words);
    EXPECT_EQ (0.5f, valueOf (5));
}

TEST_F (MainUIActions, AStrangeSliderMovesNothing)
{
    juce::Slider stranger;
    stranger.setValue (0.7, juce::dontSendNotification);
    panel().sliderValueChanged (&stranger);
    panel().sliderDragStarted (&stranger);
    panel().sliderDragEnded (&stranger);
    EXPECT_TRUE (host.words.empty());
}

// ---- the wheel ---------------------------------------------------------------------------------
TEST_F (MainUIActions, AWheelMoveReachesTheHostAsAValueAlone)
{
    for (const auto& [knob, travel, parameter] : knobsOf (panel()))
    {
        for (const auto smooth : { false, true })
        {
            automate (parameter, 0.0f);
            panel().refresh();
            host.clear();
            Mouse::wheel (*knob, { 1.0f, smooth });
            Mouse::dispatchMessages(); // a stepped knob under a trackpad tells later
            EXPECT_EQ ((Words { word ("value", parameter) }), host.words) << travel.name << " smooth " << smooth;
            EXPECT_GT (valueOf (parameter), 0.0f);
        }
    }
}

TEST_F (MainUIActions, AWheelMoveOpensNoneOnALinkedKnobEither)
{
    setLink (processor, true);
    panel().refresh();
    host.clear();
    Mouse::wheel (*band (0).ratio, { 1.0f });
    EXPECT_TRUE (host.gestures().empty());
    EXPECT_EQ (valueOf (5), valueOf (14));
    EXPECT_EQ (valueOf (5), valueOf (23));
}

TEST_F (MainUIActions, ATickDoesNotTakeBackATrackpadStepOnItsWay)
{
    Mouse::wheel (*band (0).ratio, { 0.1f, true });
    panel().refresh(); // the record does not have it yet
    Mouse::dispatchMessages();
    EXPECT_EQ (0.75f, valueOf (5));
    EXPECT_EQ (0.75, band (0).ratio->getValue());
}

TEST_F (MainUIActions, AfterATrackpadStepAutomationIsShownAgain)
{
    for (const auto& [knob, travel, parameter] : knobsOf (panel()))
    {
        Mouse::wheel (*knob, { -1.0f, true });
        Mouse::dispatchMessages();
        automate (parameter, 1.0f);
        panel().refresh();
        EXPECT_NEAR (1.0, knob->getValue(), 1.1e-4) << travel.name;
        Mouse::wheel (*knob, { 1.0f, true }); // at the end: nothing moves, and nothing waits
        automate (parameter, 0.0f);
        panel().refresh();
        EXPECT_EQ (0.0, knob->getValue()) << travel.name;
    }
}

TEST_F (MainUIActions, AfterAWheelMoveADragIsAGestureAgain)
{
    Mouse::wheel (*panel().mix, { -0.2f });
    host.clear();
    Mouse::click (*panel().mix);
    EXPECT_EQ ((Words { "begin 27", "end 27" }), host.words);
}

// ---- Link --------------------------------------------------------------------------------------
TEST_F (MainUIActions, WithLinkOnTheSiblingsGesturesFollowInTheirOrder)
{
    setLink (processor, true);

    for (const auto& [knob, travel, parameter] : knobsOf (panel()))
    {
        host.clear();
        Mouse::press (*knob);
        Mouse::release (*knob);
        EXPECT_EQ (linkedGesture (parameter), host.gestures()) << parameter;
    }
}

TEST_F (MainUIActions, TheTableOfSiblings)
{
    setLink (processor, true);
    Mouse::press (*band (0).gain);
    EXPECT_EQ ((Words { "begin 4", "begin 13", "begin 22" }), host.words);
    Mouse::release (*band (0).gain);
    host.clear();
    Mouse::press (*band (1).gain);
    EXPECT_EQ ((Words { "begin 13", "begin 4", "begin 22" }), host.words);
    Mouse::release (*band (1).gain);
    host.clear();
    Mouse::press (*band (2).gain);
    EXPECT_EQ ((Words { "begin 22", "begin 4", "begin 13" }), host.words);
    Mouse::release (*band (2).gain);
    EXPECT_EQ ((Words { "begin 22", "begin 4", "begin 13", "end 22", "end 4", "end 13" }), host.words);
    host.clear();
    Mouse::click (*panel().master);
    EXPECT_EQ ((Words { "begin 29", "end 29" }), host.words);
}

TEST_F (MainUIActions, ADragClosesWhatItOpenedThoughLinkIsSwitchedMeanwhile)
{
    setLink (processor, true);
    Mouse::press (*band (0).gain);
    setLink (processor, false);
    Mouse::release (*band (0).gain);
    EXPECT_EQ (linkedGesture (4), host.gestures());

    host.clear();
    Mouse::press (*band (0).gain);
    setLink (processor, true);
    Mouse::release (*band (0).gain);
    EXPECT_EQ ((Words { "begin 4", "end 4" }), host.gestures());
}

TEST_F (MainUIActions, ADragThatNobodyEndedEndsBeforeTheNext)
{
    panel().sliderDragStarted (panel().mix.get());
    panel().sliderDragStarted (panel().mix.get());
    EXPECT_EQ ((Words { "begin 27", "end 27", "begin 27" }), host.words);
    panel().sliderDragEnded (panel().mix.get());
    panel().sliderDragEnded (panel().mix.get());
    EXPECT_EQ ((Words { "begin 27", "end 27", "begin 27", "end 27" }), host.words);
}

TEST_F (MainUIActions, WithLinkOffNoSiblingHasAGesture)
{
    for (const auto& [knob, travel, parameter] : knobsOf (panel()))
    {
        host.clear();
        Mouse::click (*knob);
        EXPECT_EQ ((Words { word ("begin", parameter), word ("end", parameter) }), host.words);
    }
}

TEST_F (MainUIActions, ALinkedDragMovesAllThreeBands)
{
    setLink (processor, true);
    Mouse::press (*band (1).ratio);
    Mouse::dragUp (*band (1).ratio, 40.0f);
    Mouse::release (*band (1).ratio);

    for (const auto index : { 5, 14, 23 })
        EXPECT_EQ (1.0f, valueOf (index));

    panel().refresh();

    for (auto& each : panel().bands)
        EXPECT_EQ (1.0, each.ratio->getValue());
}

namespace
{
/** The link gestures of a press on a Low knob, as a processor in some wrapper and host sends them. */
Words pressWithin (juce::AudioProcessor::WrapperType wrapper, int hostType)
{
    juce::AudioProcessor::setTypeOfNextNewPlugin (wrapper);
    CorvaneQ7AudioProcessor processor;
    juce::AudioProcessor::setTypeOfNextNewPlugin (juce::AudioProcessor::wrapperType_Undefined);
    EXPECT_EQ (wrapper, processor.wrapperType);
    processor.hostType = hostType;
    setLink (processor, true);
    CorvaneQ7Editor editor (processor);
    HostLog host (processor);
    Mouse::click (*editor.mainUI->bands[0].gain);
    return host.words;
}
} // namespace

TEST (MainUILinkExceptions, OneFamilyOfHostsOfTheOldWrapperHearsNothingOfSiblings)
{
    const Words alone { "begin 4", "end 4" },
        mirrored { "begin 4", "begin 13", "begin 22", "end 4", "end 13", "end 22" };

    for (int hostType = 0; hostType <= 40; ++hostType)
    {
        const auto isException = hostType >= 22 && hostType <= 28;
        EXPECT_EQ (isException ? alone : mirrored, pressWithin (juce::AudioProcessor::wrapperType_VST, hostType))
            << hostType;
    }

    for (const auto wrapper :
         { juce::AudioProcessor::wrapperType_VST3, juce::AudioProcessor::wrapperType_LV2,
           juce::AudioProcessor::wrapperType_Standalone, juce::AudioProcessor::wrapperType_Undefined })
        for (const auto hostType : { 21, 22, 25, 28, 29 })
            EXPECT_EQ (mirrored, pressWithin (wrapper, hostType)) << wrapper << " " << hostType;
}

// ---- buttons -----------------------------------------------------------------------------------
TEST_F (MainUIActions, AKeyInvertsItsParameterWithinAGesture)
{
    const auto controls = boundControls (panel());

    for (const auto index : { 1, 2, 10, 11, 19, 20, 32, 33, 34, 35 })
    {
        auto& key = *controls[static_cast<std::size_t> (index)];

        for (int i = 0; i < 3; ++i)
        {
            const auto before = valueOf (index);
            host.clear();
            Mouse::click (key);
            EXPECT_EQ (1.0f - before, valueOf (index)) << index;
            EXPECT_EQ (gesture (index), host.words) << index;
            EXPECT_EQ (1.0f - before, host.values.front().second);
        }

        if (index == 34)
            setLink (processor, false);
    }
}

TEST_F (MainUIActions, AKeyReadsTheParameterAndNotItself)
{
    for (const auto toggle : { false, true })
    {
        panel().nukeButton->setToggleState (toggle, juce::dontSendNotification);
        automate (32, 1.0f); // a host moves it in between
        Mouse::click (*panel().nukeButton);
        EXPECT_EQ (0.0f, valueOf (32));
    }
}

TEST_F (MainUIActions, TheMidSideKeyCyclesThroughThreeValues)
{
    for (int i = 0; i < numBands; ++i)
    {
        const auto index = 3 + i * bandDistance;
        automate (index, 0.0f);

        for (const auto expected : { 0.5f, 1.0f, 0.0f, 0.5f })
        {
            host.clear();
            Mouse::click (*band (i).midSideButton);
            EXPECT_EQ (expected, valueOf (index));
            EXPECT_EQ (gesture (index), host.words);
            EXPECT_EQ (expected, host.values.front().second); // no other that snaps to it
        }
    }
}

TEST_F (MainUIActions, TheMidLampChoosesMidOrNeither)
{
    for (int i = 0; i < numBands; ++i)
    {
        const auto index = 3 + i * bandDistance;
        auto& lamp = *band (i).midLamp;

        for (const auto& [before, after] : { std::pair { 0.0f, 0.5f }, { 0.5f, 0.0f }, { 1.0f, 0.0f } })
        {
            automate (index, before);
            panel().refresh();
            host.clear();
            const auto lit = lamp.getToggleState();
            EXPECT_EQ (before == 0.0f, lit);

            Mouse::click (lamp);
            EXPECT_EQ (after, valueOf (index)) << before;
            EXPECT_EQ (gesture (index), host.words);
            EXPECT_EQ (after, host.values.front().second) << before; // no other that snaps to it
            EXPECT_EQ (! lit, lamp.getToggleState());                // at once, before any tick

            panel().refresh();
            EXPECT_EQ (after == 0.0f, lamp.getToggleState());
            EXPECT_EQ (false, band (i).sideLamp->getToggleState());
        }
    }
}

TEST_F (MainUIActions, TheSideLampChoosesSideOrNeither)
{
    for (int i = 0; i < numBands; ++i)
    {
        const auto index = 3 + i * bandDistance;
        auto& lamp = *band (i).sideLamp;

        for (const auto& [before, after] : { std::pair { 0.0f, 1.0f }, { 0.5f, 1.0f }, { 1.0f, 0.5f } })
        {
            automate (index, before);
            panel().refresh();
            host.clear();
            const auto lit = lamp.getToggleState();

            Mouse::click (lamp);
            EXPECT_EQ (after, valueOf (index)) << before;
            EXPECT_EQ (gesture (index), host.words);
            EXPECT_EQ (after, host.values.front().second) << before; // no other that snaps to it
            EXPECT_EQ (! lit, lamp.getToggleState());

            panel().refresh();
            EXPECT_EQ (after == 1.0f, lamp.getToggleState());
            EXPECT_FALSE (band (i).midLamp->getToggleState());
        }
    }
}

TEST_F (MainUIActions, OtherLampsDoNothing)
{
    auto lamps = std::vector<juce::ImageButton*> { panel().bypassLamp.get(), panel().nukeLamp.get(),
                                                   panel().niveauLamp.get(), panel().linkLamp.get() };

    for (auto& each : panel().bands)
        lamps.insert (lamps.end(), { each.inLamp.get(), each.soloLamp.get() });

    for (auto* lamp : lamps)
    {
        const auto lit = lamp->getToggleState();
        Mouse::click (*lamp);
        panel().buttonClicked (lamp);
        EXPECT_EQ (lit, lamp->getToggleState());
    }

    EXPECT_TRUE (host.words.empty());
}

TEST_F (MainUIActions, AStrangeButtonDoesNothing)
{
    juce::TextButton stranger;
    panel().buttonClicked (&stranger);
    EXPECT_TRUE (host.words.empty());
}

TEST_F (MainUIActions, WithLinkOnAKeyMovesItsSiblingsAndGesturesForItselfAlone)
{
    setLink (processor, true);
    panel().refresh();
    Mouse::click (*band (1).soloButton);

    for (const auto index : { 2, 11, 20 })
        EXPECT_EQ (1.0f, valueOf (index));

    EXPECT_EQ ((Words { "begin 11", "end 11" }), host.gestures());
}

TEST_F (MainUIActions, TheLinkKeyItselfIsNotLinked)
{
    Mouse::click (*panel().linkButton);
    EXPECT_EQ (gesture (34), host.words);
    host.clear();
    Mouse::click (*panel().linkButton);
    EXPECT_EQ (gesture (34), host.words);
    EXPECT_EQ (0.0f, valueOf (34));
}

TEST_F (MainUIActions, AClickOnTheBypassSwitchShowsAtOnceAndHolds)
{
    EXPECT_TRUE (panel().bypassSwitch->getToggleState());
    Mouse::click (*panel().bypassSwitch);
    EXPECT_EQ (1.0f, valueOf (35));
    EXPECT_FALSE (panel().bypassSwitch->getToggleState());
    panel().refresh();
    EXPECT_FALSE (panel().bypassSwitch->getToggleState());
    EXPECT_FALSE (panel().bypassLamp->getToggleState());
}

// ---- modifiers ---------------------------------------------------------------------------------
TEST_F (MainUIActions, AltClickGoesByTheKeysOwnStateAndNotTheParameters)
{
    // Solo: default off. The key's state differs from it after one click, so the first Alt-click acts.
    auto& key = *band (0).soloButton;
    Mouse::click (key);
    EXPECT_EQ (1.0f, valueOf (2));
    Mouse::click (key, Mouse::alt);
    EXPECT_EQ (0.0f, valueOf (2));
    EXPECT_FALSE (key.getToggleState());

    // They agree now, wherever the parameter stands.
    automate (2, 1.0f);
    host.clear();
    Mouse::click (key, Mouse::alt);
    EXPECT_EQ (1.0f, valueOf (2));
    EXPECT_TRUE (host.words.empty());
}

TEST_F (MainUIActions, AltClickOnAKeyThatIsOnByDefaultFlipsWhatStandsAtItsDefault)
{
    auto& key = *band (0).inButton; // default on, and the key itself starts off
    EXPECT_EQ (1.0f, valueOf (1));
    Mouse::click (key, Mouse::alt);
    EXPECT_EQ (0.0f, valueOf (1));
    EXPECT_TRUE (key.getToggleState());
    Mouse::click (key, Mouse::alt);
    EXPECT_EQ (0.0f, valueOf (1));
}

TEST_F (MainUIActions, AltClickOnTheSwitchGoesToBypassed)
{
    // The switch's state is on while processing; its default, by the parameter, is off.
    Mouse::click (*panel().bypassSwitch, Mouse::alt);
    EXPECT_EQ (1.0f, valueOf (35));
    panel().refresh();
    host.clear();
    Mouse::click (*panel().bypassSwitch, Mouse::alt);
    EXPECT_TRUE (host.words.empty());
}

TEST_F (MainUIActions, ClicksWithOtherModifiersDoNothing)
{
    const auto controls = boundControls (panel());

    for (const auto flags : { Mouse::shift, Mouse::ctrl, Mouse::ctrl | Mouse::alt, Mouse::shift | Mouse::alt,
                              Mouse::shift | Mouse::ctrl, Mouse::command })
        for (auto* control : controls)
            if (dynamic_cast<NVXButton*> (control) != nullptr)
                Mouse::click (*control, flags);

    EXPECT_TRUE (host.words.empty());
}

// ---- one channel -------------------------------------------------------------------------------
TEST_F (MonoEditorTest, OtherControlsWorkAsEver)
{
    HostLog host (processor);
    Mouse::click (*band (0).soloButton);
    EXPECT_EQ (gesture (2), host.words);
}
