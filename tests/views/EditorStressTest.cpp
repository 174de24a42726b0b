// SPDX-License-Identifier: GPL-3.0-or-later
// Windows that come and go while the sound runs: nothing leaks, nothing is called after its end.
#include "views/Hand.h"
#include "views/MessagePump.h"
#include "views/RunningHost.h"
#include "views/XErrors.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <functional>
#include <iostream>
#include <malloc.h>
#include <string>
#include <utility>

namespace
{
#if defined(__SANITIZE_ADDRESS__)
constexpr bool heapIsCounted = false; // the sanitizer's own heap; it looks for leaks itself
#else
constexpr bool heapIsCounted = true;
#endif

/** Bytes that the message thread holds on the heap: the other threads have arenas of their own. */
size_t heapInUse() { return ::mallinfo2().uordblks + ::mallinfo2().hblkhd; }

bool hasScreen()
{
    static const auto there =
        ! juce::Desktop::getInstance().getDisplays().displays.isEmpty() && XErrors::countInsteadOfEnding();
    return there;
}

juce::Component* openMenu (CorvaneQ7Editor& editor)
{
    for (int i = editor.getNumChildComponents(); --i >= 0;)
        if (editor.getChildComponent (i)->getName() == "menu")
            return editor.getChildComponent (i);

    return nullptr;
}

void press (juce::Component* menu, int key)
{
    if (menu != nullptr)
        menu->keyPressed (juce::KeyPress (key));
}

juce::Point<int> middleOf (juce::Component& control, juce::Component& window)
{
    return window.getLocalPoint (&control, control.getLocalBounds().getCentre());
}

/** As a host shows it: on the screen, in front. */
void show (CorvaneQ7Editor& editor)
{
    editor.addToDesktop (0);
    editor.setTopLeftPosition (20, 20);
    editor.setVisible (true);
    editor.toFront (true);
}
} // namespace

TEST (EditorStress, OpensFiveHundredTimesWhileTheSoundRuns)
{
    constexpr int numHosts = 10, numOpenings = 50;
    std::mt19937 random (0x90e5);
    size_t heapEarly = 0, heapAtEnd = 0;
    int blocks = 0;

    for (int host = 0; host < numHosts; ++host)
    {
        {
            RunningHost running (host % 3 == 2 ? 1 : 2, 0x5eed + static_cast<std::uint32_t> (host));

            for (int opening = 0; opening < numOpenings; ++opening)
            {
                auto& editor = running.open();

                if (opening % 5 == 0)
                {
                    EXPECT_TRUE (editor.createComponentSnapshot (editor.getLocalBounds()).isValid());
                }

                pumpMessages (static_cast<int> (random() % 12));

                if (opening % 7 == 3)
                    running.processor->selectSlot (static_cast<int> (random() % 2));

                if (opening % 7 == 4)
                    running.processor->copyToOtherSlot();

                // The sound runs beside every window, on a machine however busy.
                EXPECT_TRUE (running.waitForBlocks (opening + 1));

                if (opening + 1 < numOpenings) // the last goes together with its processor
                    running.close();

                if (opening % 3 == 0)
                    pumpMessages (2);
            }

            EXPECT_TRUE (running.soundIsFinite());
            blocks += running.blocks;
        }

        pumpMessages (120); // longer than every timer of a window: whoever calls back late does it now

        if (host == 3) // by now the framework's stores of faces, glyphs and pictures are full
            heapEarly = heapInUse();

        heapAtEnd = heapInUse();
    }

    std::cout << "  blocks meanwhile: " << blocks << "; heap " << heapEarly << " bytes after 200 windows, " << heapAtEnd
              << " after 500\n";

    if (heapIsCounted)
    {
        // The stores breathe by some 50 kB. 300 windows that each leave 700 bytes behind exceed this.
        EXPECT_LT (heapAtEnd, heapEarly + 200'000);
    }
}

TEST (EditorStress, ClosesWindowsAtAnyMoment)
{
    if (! hasScreen())
        GTEST_SKIP() << "needs a screen: run under tests/support/with_screen.py";

    using Moment = std::function<void (CorvaneQ7Editor&, Hand&)>;
    const auto down = juce::KeyPress::downKey, right = juce::KeyPress::rightKey, enter = juce::KeyPress::returnKey;
    int menusSeen = 0, dragsHeld = 0;

    const Moment moments[] { [] (CorvaneQ7Editor&, Hand&) {},
                             [] (CorvaneQ7Editor& editor, Hand& hand)
                             { hand.click (middleOf (editor.toolbar->settingsButton, editor)); },
                             [&] (CorvaneQ7Editor& editor, Hand&)
                             {
                                 editor.toolbar->settingsButton.triggerClick();
                                 menusSeen += pumpMessagesUntil ([&] { return openMenu (editor) != nullptr; }) ? 1 : 0;
                             },
                             [&] (CorvaneQ7Editor& editor, Hand&)
                             {
                                 editor.toolbar->buttonClicked (&editor.toolbar->settingsButton);
                                 auto* menu = openMenu (editor);
                                 press (menu, down);
                                 press (menu, down);
                                 press (menu, right); // the submenu too
                                 menusSeen += openMenu (editor) != menu ? 1 : 0;
                             },
                             [&] (CorvaneQ7Editor& editor, Hand&)
                             {
                                 // A row is chosen, and the window closes before the choice arrives.
                                 editor.toolbar->buttonClicked (&editor.toolbar->settingsButton);
                                 press (openMenu (editor), down);
                                 press (openMenu (editor), enter);
                             },
                             [&] (CorvaneQ7Editor& editor, Hand&)
                             {
                                 // The same, in the zoom's submenu: what would arrive is a new size.
                                 editor.toolbar->buttonClicked (&editor.toolbar->settingsButton);
                                 auto* menu = openMenu (editor);

                                 for (int i = 0; i < 4; ++i)
                                     press (menu, down);

                                 press (menu, right);
                                 press (openMenu (editor), enter);
                             },
                             [&] (CorvaneQ7Editor& editor, Hand&)
                             {
                                 editor.bar->buttonClicked (editor.bar->menuButton.get());
                                 menusSeen += openMenu (editor) != nullptr ? 1 : 0;
                             },
                             [&] (CorvaneQ7Editor& editor, Hand& hand)
                             {
                                 auto& knob = *editor.mainUI->bands[1].gain;
                                 hand.moveTo (middleOf (knob, editor));
                                 hand.press();
                                 hand.moveTo (middleOf (knob, editor).translated (0, -30));
                                 dragsHeld += knob.isMouseButtonDown() ? 1 : 0;
                             },
                             [&] (CorvaneQ7Editor& editor, Hand& hand)
                             {
                                 auto& trim = editor.toolbar->inLevelSlider;
                                 hand.moveTo (editor.getLocalPoint (&trim, juce::Point<int> (14, 12)));
                                 hand.press();
                                 hand.moveTo (editor.getLocalPoint (&trim, juce::Point<int> (14, 40)));
                                 dragsHeld += trim.isMouseButtonDown (true) ? 1 : 0;
                             },
                             [] (CorvaneQ7Editor& editor, Hand& hand)
                             {
                                 hand.moveTo (middleOf (*editor.mainUI->bypassSwitch, editor));
                                 hand.press();
                             },
                             [] (CorvaneQ7Editor& editor, Hand& hand)
                             {
                                 hand.moveTo (middleOf (*editor.mainUI->bands[0].ratio, editor));
                                 hand.wheel (0.2f, true); // leaves a timer behind
                             },
                             [] (CorvaneQ7Editor& editor, Hand&) { editor.openDialog (DialogListener::aboutBox); },
                             [] (CorvaneQ7Editor& editor, Hand& hand)
                             {
                                 editor.openDialog (DialogListener::aboutBox);
                                 hand.click (middleOf (*editor.about, editor));
                             },
                             [] (CorvaneQ7Editor& editor, Hand&)
                             {
                                 editor.setControlHighlight ({ 4, true, juce::Colours::red });
                                 editor.repaint();
                             },
                             [] (CorvaneQ7Editor& editor, Hand&)
                             { editor.toolbar->performMenuItem (TopToolbar::firstZoomId); } };

    std::mt19937 random (0xc105e);
    constexpr int rounds = 5;
    int windows = 0, begun = 0, ended = 0;

    for (int round = 0; round < rounds; ++round)
    {
        auto running =
            std::make_unique<RunningHost> (round % 2 == 0 ? 2 : 1, 0xd1e + static_cast<std::uint32_t> (round));

        for (const auto& moment : moments)
        {
            auto& editor = running->open();
            show (editor);
            pumpMessages (5 + static_cast<int> (random() % 90));

            Hand hand (editor);
            moment (editor, hand);
            pumpMessages (static_cast<int> (random() % 3) * 20); // or at once

            ++windows;
            running->close();

            if (random() % 2 == 0)
                pumpMessages (static_cast<int> (random() % 30));

            juce::ModifierKeys::currentModifiers = {};
        }

        // The last window goes with its processor, a menu open or a row of it just chosen.
        show (running->open());
        running->editor->toolbar->buttonClicked (&running->editor->toolbar->settingsButton);
        pumpMessages (static_cast<int> (random() % 60));

        if (round % 2 == 1)
        {
            press (openMenu (*running->editor), down);
            press (openMenu (*running->editor), enter);
        }

        EXPECT_TRUE (running->soundIsFinite());
        begun += running->gesturesBegun;
        ended += running->gesturesEnded;
        running.reset();
        ++windows;
        pumpMessages (120);
    }

    std::cout << "  windows: " << windows << "; menus seen open: " << menusSeen << "; drags held: " << dragsHeld
              << "; gestures: " << begun << " begun, " << ended << " ended; X errors: " << XErrors::count << '\n';
    EXPECT_GE (windows, 50);
    EXPECT_EQ (3 * rounds, menusSeen);
    EXPECT_EQ (2 * rounds, dragsHeld);
    EXPECT_GT (begun, 0);
    EXPECT_EQ (begun, ended) << "a window that closes lets go of what it holds, whatever Link did meanwhile";
}

TEST (EditorStress, AWindowThatClosesLetsGoOfTheKnobItHolds)
{
    if (! hasScreen())
        GTEST_SKIP() << "needs a screen: run under tests/support/with_screen.py";

    using Find = std::function<juce::Component&(CorvaneQ7Editor&)>;
    const std::pair<Find, int> held[] {
        // and how many gestures it opens with Link on
        { [] (CorvaneQ7Editor& editor) -> juce::Component& { return *editor.mainUI->bands[1].gain; }, 3 },
        { [] (CorvaneQ7Editor& editor) -> juce::Component& { return *editor.mainUI->mix; }, 1 },
        { [] (CorvaneQ7Editor& editor) -> juce::Component& { return editor.toolbar->outLevelSlider; }, 1 }
    };

    for (const auto isLinked : { false, true })
    {
        for (const auto& [find, linkedGestures] : held)
        {
            // With no automation, which would move Link before the drag.
            RunningHost host (2, 0x1e7, RunningHost::Automation::none);
            host.processor->setParameter (ParameterTable::indexOf ("Link"), isLinked ? 1.0f : 0.0f);
            auto& editor = host.open();
            show (editor);
            pumpMessages (50);

            Hand hand (editor);
            const auto place = editor.getLocalPoint (&find (editor), juce::Point<int> (14, 12));
            hand.moveTo (place);
            hand.press();
            hand.moveTo (place.translated (0, 25));
            EXPECT_EQ (isLinked ? linkedGestures : 1, host.gesturesBegun);
            EXPECT_EQ (0, host.gesturesEnded);

            host.close();
            EXPECT_EQ (host.gesturesBegun, host.gesturesEnded);
            juce::ModifierKeys::currentModifiers = {};
            pumpMessages (20);
        }
    }
}

// ---- random hands --------------------------------------------------------------------------------
namespace
{
/** Seconds of the soak at least: CORVANE_SOAK_SECONDS, or ten. */
double soakSeconds()
{
    const auto* wanted = std::getenv ("CORVANE_SOAK_SECONDS");
    return wanted != nullptr ? std::atof (wanted) : 10.0;
}

/** CORVANE_SOAK_SEED, or always the same. */
std::uint32_t soakSeed()
{
    const auto* wanted = std::getenv ("CORVANE_SOAK_SEED");
    return wanted != nullptr ? static_cast<std::uint32_t> (std::atol (wanted)) : 0x50a4;
}

/** What a restless user does to a window, one thing at a time. */
class RestlessUser
{
public:
    RestlessUser (RunningHost& hostToUse, std::mt19937& randomToUse)
        : host (hostToUse), editor (hostToUse.open()), random (randomToUse), hand (editor)
    {
    }

    ~RestlessUser() { juce::ModifierKeys::currentModifiers = {}; }

    void act()
    {
        switch (random() % 16)
        {
            case 0:
            case 1:
            case 2:
            case 3: hand.click (somewhere(), keys()); break;
            case 4:
            {
                const auto place = somewhere();
                hand.click (place, keys());
                hand.click (place, keys());
                break;
            }
            case 5:
            case 6:
            case 7: drag(); break;
            case 8:
            case 9:
                hand.moveTo (somewhere());
                hand.wheel (random() % 2 == 0 ? 0.3f : -0.3f, random() % 2 == 0);
                break;
            case 10: hand.click (middleOf (editor.toolbar->settingsButton, editor)); break;
            case 11: hand.click (middleOf (*editor.bar->menuButton, editor)); break;
            case 12: useMenu(); break;
            case 13:
                editor.setControlHighlight (
                    { static_cast<int> (random() % 40), random() % 2 == 0, juce::Colours::orange });
                break;
            case 14: editor.openDialog (static_cast<int> (random() % 2)); break;
            default: host.processor->selectSlot (static_cast<int> (random() % 2)); break;
        }

        if (auto* menu = openMenu (editor))
            menusSeen += menu->isVisible() ? 1 : 0;
    }

    int menusSeen = 0;

private:
    /** Mostly within a control, a menu's rows included. */
    juce::Point<int> somewhere()
    {
        if (random() % 8 == 0)
            return { static_cast<int> (random() % 1400) - 20, static_cast<int> (random() % 760) - 20 };

        auto* panel = static_cast<juce::Component*> (&editor);

        // Down the tree, to something that has no children or by chance before.
        while (panel->getNumChildComponents() > 0 && (panel == &editor || random() % 8 != 0))
            panel = panel->getChildComponent (
                static_cast<int> (random() % static_cast<unsigned> (panel->getNumChildComponents())));

        const auto size = panel->getLocalBounds();
        return editor.getLocalPoint (panel,
                                     juce::Point<int> (static_cast<int> (random() % unsigned (1 + size.getWidth())),
                                                       static_cast<int> (random() % unsigned (1 + size.getHeight()))));
    }

    int keys()
    {
        switch (random() % 10)
        {
            case 0: return juce::ModifierKeys::altModifier;
            case 1: return juce::ModifierKeys::ctrlModifier;
            case 2: return juce::ModifierKeys::shiftModifier;
            default: return 0;
        }
    }

    void drag()
    {
        const auto from = somewhere();
        hand.moveTo (from);
        hand.press (random() % 6 == 0 ? juce::ModifierKeys::rightButtonModifier
                                      : juce::ModifierKeys::leftButtonModifier,
                    keys());

        for (int i = 0; i < 6; ++i)
        {
            hand.moveTo (
                from.translated (static_cast<int> (random() % 41) - 20, static_cast<int> (random() % 161) - 80));
            pumpMessages (static_cast<int> (random() % 4));
        }

        if (random() % 5 != 0) // or the button stays down over what comes next
            hand.release();
    }

    void useMenu()
    {
        const int choices[] { juce::KeyPress::downKey,  juce::KeyPress::upKey,     juce::KeyPress::rightKey,
                              juce::KeyPress::leftKey,  juce::KeyPress::returnKey, juce::KeyPress::downKey,
                              juce::KeyPress::escapeKey };

        for (int i = 0; i < 5; ++i)
            press (openMenu (editor), choices[random() % 7]);
    }

    RunningHost& host;
    CorvaneQ7Editor& editor;
    std::mt19937& random;
    Hand hand;
};
} // namespace

TEST (EditorSoak, SurvivesRandomHandsWhileAutomationRuns)
{
    if (! hasScreen())
        GTEST_SKIP() << "needs a screen: run under tests/support/with_screen.py";

    const auto seed = soakSeed();
    std::mt19937 random (seed);
    const auto end = std::chrono::steady_clock::now() + std::chrono::duration<double> (soakSeconds());
    constexpr int fewestActions = 200; // however slow the machine is
    int actions = 0, windows = 0, processors = 0, menusSeen = 0, changesHeard = 0, begun = 0, ended = 0;

    const auto goesOn = [&] { return actions < fewestActions || std::chrono::steady_clock::now() < end; };

    while (goesOn())
    {
        RunningHost running (processors % 3 == 2 ? 1 : 2, random());
        ++processors;

        for (auto left = 3; left > 0 && goesOn(); --left)
        {
            show (running.open());
            pumpMessages (30);
            RestlessUser user (running, random);
            ++windows;

            for (auto more = 40 + random() % 100; more > 0 && goesOn(); --more)
            {
                user.act();
                pumpMessages (static_cast<int> (random() % 12));
                ++actions;
            }

            menusSeen += user.menusSeen;

            if (left > 1)
                running.close();
        }

        EXPECT_TRUE (running.soundIsFinite());
        running.close();
        changesHeard += running.changesHeard;
        begun += running.gesturesBegun;
        ended += running.gesturesEnded;
    }

    pumpMessages (120);
    std::cout << "  seed " << seed << ": " << actions << " actions in " << windows << " windows of " << processors
              << " processors; " << menusSeen << " with a menu open; " << changesHeard << " changes and " << begun
              << " gestures heard by the host; X errors: " << XErrors::count << '\n';
    EXPECT_GT (changesHeard, 0);
    EXPECT_GT (begun, 0);
    EXPECT_EQ (begun, ended);
}
