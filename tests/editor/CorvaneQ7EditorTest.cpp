// SPDX-License-Identifier: GPL-3.0-or-later
#include "EditorFixture.h"

#include <cmath>
#include <limits>
#include <type_traits>

namespace
{
const juce::Rectangle<int> largeMonitor { 0, 0, 3840, 2160 };

juce::Point<int> sizeOn (int width, int height, float zoom = 1.0f)
{
    return CorvaneQ7Editor::sizeFor (zoom, { 0, 0, width, height });
}

void expectNoKeyboardFocus (juce::Component& component)
{
    for (auto* child : component.getChildren())
    {
        EXPECT_FALSE (child->getWantsKeyboardFocus()) << child->getName() << " " << child->getTitle();
        expectNoKeyboardFocus (*child);
    }
}

int countDescendants (juce::Component& component)
{
    auto count = component.getNumChildComponents();

    for (auto* child : component.getChildren())
        count += countDescendants (*child);

    return count;
}

static_assert (std::is_base_of_v<juce::AudioProcessorEditor, CorvaneQ7Editor>);
static_assert (std::is_base_of_v<juce::ComboBox::Listener, CorvaneQ7Editor>);
static_assert (std::is_base_of_v<DialogListener, CorvaneQ7Editor>);
static_assert (std::is_base_of_v<ZoomableUI, CorvaneQ7Editor>);
static_assert (std::has_virtual_destructor_v<DialogListener> && std::is_abstract_v<DialogListener>);
static_assert (std::has_virtual_destructor_v<ZoomableUI> && std::is_abstract_v<ZoomableUI>);
} // namespace

class Editor : public EditorTest
{
};

// ---- size and zoom -----------------------------------------------------------------------------
TEST (EditorSize, FollowsTheZoomOnALargeMonitor)
{
    EXPECT_EQ ((juce::Point<int> { 945, 506 }), CorvaneQ7Editor::sizeFor (0.7f, largeMonitor));
    EXPECT_EQ ((juce::Point<int> { 1080, 578 }), CorvaneQ7Editor::sizeFor (0.8f, largeMonitor));
    EXPECT_EQ ((juce::Point<int> { 1215, 650 }), CorvaneQ7Editor::sizeFor (0.9f, largeMonitor));
    EXPECT_EQ ((juce::Point<int> { 1350, 723 }), CorvaneQ7Editor::sizeFor (1.0f, largeMonitor));
}

TEST (EditorSize, TakesAtMostFourFifthsOfTheMonitor)
{
    // 1280 / 1.8672 = 685.5, of which 0.8 is 548.4.
    EXPECT_EQ ((juce::Point<int> { 1024, 548 }), sizeOn (1280, 800));
    EXPECT_EQ ((juce::Point<int> { 945, 506 }), sizeOn (1280, 800, 0.7f));
    EXPECT_EQ ((juce::Point<int> { 1024, 548 }), sizeOn (1280, 1024));
}

TEST (EditorSize, OnAWideMonitorTheHeightSetsTheWidth)
{
    // 600 * 1.8672199170124482 = 1120.33, of which 0.8 is 896.27, on any monitor wider than that.
    EXPECT_EQ ((juce::Point<int> { 896, 480 }), sizeOn (2560, 600));
    EXPECT_EQ ((juce::Point<int> { 896, 480 }), sizeOn (1121, 600));
    EXPECT_EQ (sizeOn (2560, 600), sizeOn (5120, 600));
}

TEST (EditorSize, KeepsItsProportionsUpToTruncation)
{
    for (int width = 320; width <= 3840; width += 7)
        for (const auto height : { 240, 480, 600, 768, 800, 1080, 1440 })
        {
            const auto size = sizeOn (width, height);
            EXPECT_NEAR (size.x, size.y * 1350.0 / 723.0, 2.0) << width << " by " << height;
            EXPECT_LE (size.x, width * 0.8);
            EXPECT_LE (size.y, height * 0.8);
        }
}

TEST (EditorSize, ItsConstants)
{
    EXPECT_EQ (1350, CorvaneQ7Editor::baseWidth);
    EXPECT_EQ (723, CorvaneQ7Editor::baseHeight);
    EXPECT_EQ (1.8672199170124482, CorvaneQ7Editor::aspectRatio);
    EXPECT_EQ (1350.0 / 723.0, CorvaneQ7Editor::aspectRatio);
    EXPECT_EQ (0.8, CorvaneQ7Editor::screenFraction);
}

TEST (EditorSize, NoZoomOfASessionMakesItVanishOrOutgrowTheScreen)
{
    using Limits = std::numeric_limits<float>;

    for (const auto zoom : { Limits::quiet_NaN(), Limits::infinity(), -Limits::infinity(), -1.0f, 0.0f, -0.0f, 1.0e30f,
                             -1.0e30f, 1.0e-30f, Limits::denorm_min(), Limits::max(), Limits::lowest(), 100.0f })
    {
        const auto size = CorvaneQ7Editor::sizeFor (zoom, { 0, 0, 1920, 1080 });
        EXPECT_GE (size.x, 100) << zoom;
        EXPECT_GE (size.y, 50) << zoom;
        EXPECT_LE (size.x, 1536) << zoom;
        EXPECT_LE (size.y, 864) << zoom;

        CorvaneQ7AudioProcessor processor;
        processor.uiZoom = zoom;
        CorvaneQ7Editor editor (processor);
        EXPECT_GE (editor.getWidth(), 100) << zoom;
        EXPECT_GE (editor.getHeight(), 50) << zoom;
        painted (editor);
    }
}

TEST (EditorSize, ItsZoomHasTwoBounds)
{
    const juce::Rectangle<int> huge { 0, 0, 40000, 40000 };
    const juce::Point<int> smallest { 472, 253 }, largest { 13500, 7230 }; // 0.35 and 10 times 1350 by 723
    EXPECT_EQ (smallest, CorvaneQ7Editor::sizeFor (0.35f, huge));
    EXPECT_EQ (largest, CorvaneQ7Editor::sizeFor (10.0f, huge));

    for (const auto below : { 0.349f, 0.3f, 0.0f, -1.0f, -std::numeric_limits<float>::infinity() })
        EXPECT_EQ (smallest, CorvaneQ7Editor::sizeFor (below, huge)) << below;

    for (const auto above : { 10.01f, 11.0f, 1.0e30f, std::numeric_limits<float>::infinity() })
        EXPECT_EQ (largest, CorvaneQ7Editor::sizeFor (above, huge)) << above;

    EXPECT_EQ ((juce::Point<int> { 675, 361 }), CorvaneQ7Editor::sizeFor (0.5f, huge));
    EXPECT_EQ ((juce::Point<int> { 12825, 6868 }), CorvaneQ7Editor::sizeFor (9.5f, huge));
    EXPECT_EQ ((juce::Point<int> { 1350, 723 }),
               CorvaneQ7Editor::sizeFor (std::numeric_limits<float>::quiet_NaN(), huge));
}

TEST_F (Editor, TakesTheProcessorsZoomAndHasNoneOfItsOwn)
{
    const auto monitor = [this]
    {
        const auto* display = juce::Desktop::getInstance().getDisplays().getDisplayForRect (editor->getScreenBounds());
        return display != nullptr ? display->userArea : juce::Rectangle<int> (0, 0, 1920, 1080);
    }();

    for (const auto zoom : { 0.9f, 0.7f, 1.0f, 0.8f })
    {
        processor.uiZoom = zoom;
        editor->applyZoom();
        const auto expected = CorvaneQ7Editor::sizeFor (zoom, monitor);
        EXPECT_EQ (expected.x, editor->getWidth());
        EXPECT_EQ (expected.y, editor->getHeight());

        CorvaneQ7Editor another (processor);
        EXPECT_EQ (expected.x, another.getWidth());
        EXPECT_EQ (expected.y, another.getHeight());
    }
}

TEST_F (Editor, IsMeasuredByTheMonitorThatItStandsOn)
{
    // A small one that is the main one, and a large one at its right. The framework's list may hold none at all here.
    auto& monitors = const_cast<juce::Array<juce::Displays::Display>&> (
        juce::Desktop::getInstance().getDisplays().displays); // NOLINT: the object behind it is not constant
    const juce::ScopedValueSetter<juce::Array<juce::Displays::Display>> own (monitors, {});
    juce::Displays::Display small, large;
    small.isMain = true;
    small.totalArea = { 0, 0, 1280, 800 };
    small.userArea = { 0, 100, 1280, 600 }; // without the desktop's own bar
    large.totalArea = { 1280, 0, 2560, 1440 };
    large.userArea = { 1280, 40, 2560, 1400 };

    for (const auto& order : { std::pair { small, large }, std::pair { large, small } })
    {
        monitors = { order.first, order.second };

        for (const auto& [left, monitor] :
             { std::pair { 100, small }, { 1400, large }, { 1000, large }, { -600, small } })
        {
            editor->setBounds (left, 100, 1350, 600); // the one with the larger part of it counts
            editor->applyZoom();
            const auto expected = CorvaneQ7Editor::sizeFor (1.0f, monitor.userArea);
            EXPECT_EQ (expected, (juce::Point<int> { editor->getWidth(), editor->getHeight() })) << left;
        }
    }

    EXPECT_NE (CorvaneQ7Editor::sizeFor (1.0f, small.userArea), CorvaneQ7Editor::sizeFor (1.0f, large.userArea));
    EXPECT_NE (CorvaneQ7Editor::sizeFor (1.0f, small.userArea), CorvaneQ7Editor::sizeFor (1.0f, small.totalArea));
}

TEST_F (Editor, AZoomKeepsThePosition)
{
    editor->setTopLeftPosition (37, 11);
    processor.uiZoom = 0.7f;
    editor->applyZoom();
    EXPECT_EQ ((juce::Point<int> { 37, 11 }), editor->getPosition());
    EXPECT_FALSE (editor->isTransformed());
}

TEST_F (Editor, IsFixedForTheHost) { EXPECT_FALSE (editor->isResizable()); }

// ---- children ----------------------------------------------------------------------------------
TEST_F (Editor, StacksItsFourChildren)
{
    for (const auto& [w, h] :
         { std::pair { 1350, 723 }, { 1215, 650 }, { 1080, 578 }, { 945, 506 }, { 1024, 548 }, { 1001, 601 } })
    {
        editor->setSize (w, h);
        EXPECT_EQ ((juce::Rectangle<int> { 0, 0, w, 24 }), editor->toolbar->getBounds());
        EXPECT_EQ ((juce::Rectangle<int> { 0, h - 24, w, 24 }), editor->bar->getBounds());
        EXPECT_EQ ((juce::Rectangle<int> { 0, 24, w, h - 48 }), editor->mainUI->getBounds());
        EXPECT_EQ ((juce::Rectangle<int> { w / 2 - 225, h / 2 - 150, 450, 300 }), editor->about->getBounds());
    }
}

TEST_F (Editor, HasThemInTheOrderOfCreationWithTheBoxOnTop)
{
    ASSERT_EQ (4, editor->getNumChildComponents());
    EXPECT_EQ (editor->bar.get(), editor->getChildComponent (0));
    EXPECT_EQ (editor->toolbar.get(), editor->getChildComponent (1));
    EXPECT_EQ (editor->mainUI.get(), editor->getChildComponent (2));
    EXPECT_EQ (editor->about.get(), editor->getChildComponent (3));
    EXPECT_TRUE (editor->bar->isVisible());
    EXPECT_TRUE (editor->toolbar->isVisible());
    EXPECT_TRUE (editor->mainUI->isVisible());
}

TEST_F (Editor, SurvivesAnySizeThatAHostGivesIt)
{
    for (const auto& [w, h] :
         { std::pair { 0, 0 }, { 1, 1 }, { 10, 30 }, { 5000, 20 }, { 20, 5000 }, { 3000, 2000 }, { 1350, 723 } })
    {
        editor->setSize (w, h);
        painted (*editor);
    }

    EXPECT_EQ ((juce::Rectangle<int> { 0, 24, 1350, 675 }), editor->mainUI->getBounds());
}

TEST_F (Editor, IsHiddenEntirelyByItsChildren)
{
    for (const auto& [w, h] : { std::pair { 1350, 723 }, { 945, 506 } })
    {
        editor->setSize (w, h);
        juce::RectangleList<int> rest (editor->getLocalBounds());

        for (auto* child :
             { static_cast<juce::Component*> (editor->bar.get()), static_cast<juce::Component*> (editor->toolbar.get()),
               static_cast<juce::Component*> (editor->mainUI.get()) })
        {
            EXPECT_TRUE (child->isOpaque());
            rest.subtract (child->getBounds());
        }

        EXPECT_TRUE (rest.isEmpty());
    }
}

TEST_F (Editor, IsWhiteUnderThem)
{
    for (auto* child : editor->getChildren())
        child->setVisible (false);

    const auto image = painted (*editor);

    for (const auto& at : { juce::Point<int> { 0, 0 }, { 1349, 0 }, { 0, 722 }, { 1349, 722 }, { 700, 360 } })
        EXPECT_EQ (juce::Colours::white, image.getPixelAt (at.x, at.y));
}

TEST_F (Editor, NothingInItTakesTheKeyboardFromTheHost)
{
    EXPECT_GT (countDescendants (*editor), 80);
    expectNoKeyboardFocus (*editor);

    // Nor after all that may rebuild a part of it.
    processor.uiZoom = 0.7f;
    editor->applyZoom();
    editor->openDialog (0);
    panel().refresh();
    toolbar().refresh();
    editor->setVisible (false);
    editor->setVisible (true);
    expectNoKeyboardFocus (*editor);
}

// ---- dialogs -----------------------------------------------------------------------------------
TEST_F (Editor, TheAboutBoxIsTheOnlyDialog)
{
    EXPECT_FALSE (editor->about->isVisible());

    for (const auto unknown : { 1, -1, 2, 100 })
    {
        editor->openDialog (unknown);
        EXPECT_FALSE (editor->about->isVisible()) << unknown;
    }

    editor->openDialog (0);
    EXPECT_TRUE (editor->about->isVisible());

    for (const auto unknown : { 1, -1, 2, 100 })
    {
        editor->closeDialog (unknown);
        EXPECT_TRUE (editor->about->isVisible()) << unknown;
    }

    editor->closeDialog (0);
    EXPECT_FALSE (editor->about->isVisible());
}

TEST_F (Editor, TheAboutBoxKeepsItsSizeAtEveryZoomAndStaysInTheMiddle)
{
    editor->setSize (945, 506);
    editor->openDialog (0);
    EXPECT_EQ ((juce::Rectangle<int> { 247, 103, 450, 300 }), editor->about->getBounds());
}

TEST_F (Editor, GivesPanelsItsDialogSide)
{
    EXPECT_EQ (static_cast<DialogListener*> (editor.get()), toolbar().dialogListener);
    EXPECT_EQ (static_cast<DialogListener*> (editor.get()), panel().dialogListener);
}

TEST_F (Editor, ShowsNameAndVersionInTheBox)
{
    EXPECT_EQ (juce::String ("Corvane Q7 v. 1.0.0"), editor->about->title.getText());
}

// ---- controls and parameters -------------------------------------------------------------------
TEST_F (Editor, KnowsTheParameterOfAllItsControls)
{
    auto count = 0;

    for (const auto& entry : panel().parameterOfControl)
    {
        EXPECT_EQ (entry.second, editor->getControlParameterIndex (*entry.first));
        ++count;
    }

    EXPECT_EQ (36, count);
    EXPECT_EQ (36, editor->getControlParameterIndex (toolbar().inLevelSlider));
    EXPECT_EQ (37, editor->getControlParameterIndex (toolbar().outLevelSlider));
}

TEST_F (Editor, HasAControlForEveryParameter)
{
    for (const auto* parameter : processor.getParameters())
    {
        const auto index = parameter->getParameterIndex();
        EXPECT_EQ (1u, panel().controlsOfParameter.count (index) + toolbar().controlsOfParameter.count (index))
            << parameter->getName (64) << " is bound neither on the panel nor on the toolbar";
    }
}

TEST_F (Editor, KnowsNoParameterOfAnythingElse)
{
    juce::Component stranger;

    for (auto* other : std::initializer_list<juce::Component*> {
             &stranger, editor.get(), editor->mainUI.get(), editor->toolbar.get(), editor->bar.get(),
             editor->about.get(), &toolbar().aButton, &toolbar().inLabel, panel().bypassLamp.get(),
             band (0).inLamp.get(), band (1).midLamp.get(), band (2).sideLamp.get(), band (0).meter.get(),
             panel().masterReadout.get(), panel().lowXOverDigits.get(), panel().nukeLamp.get() })
        EXPECT_EQ (-1, editor->getControlParameterIndex (*other));
}

TEST_F (Editor, PassesAHighlightOnToBothPanels)
{
    for (int i = 0; i < 38; ++i)
    {
        editor->setControlHighlight ({ i, true, juce::Colours::red });
        EXPECT_EQ (i < 36 ? 1u : 0u, panel().highlights.count (i)) << i;
        EXPECT_EQ (i < 36 ? 0u : 1u, toolbar().highlights.count (i)) << i;
    }

    EXPECT_EQ (36u, panel().highlights.size());
    EXPECT_EQ (2u, toolbar().highlights.size());

    for (int i = 0; i < 38; ++i)
        editor->setControlHighlight ({ i, false, juce::Colours::red });

    EXPECT_TRUE (panel().highlights.empty());
    EXPECT_TRUE (toolbar().highlights.empty());
}

// ---- life --------------------------------------------------------------------------------------
TEST_F (Editor, IsWhatTheProcessorOpens)
{
    editor.reset();
    EXPECT_TRUE (processor.hasEditor());
    std::unique_ptr<juce::AudioProcessorEditor> made (processor.createEditorIfNeeded());
    ASSERT_NE (nullptr, dynamic_cast<CorvaneQ7Editor*> (made.get()));
    EXPECT_EQ (&processor, made->getAudioProcessor());
    EXPECT_EQ (made.get(), processor.getActiveEditor());
    processor.editorBeingDeleted (made.get()); // as the wrappers do it
    EXPECT_EQ (nullptr, processor.getActiveEditor());
}

TEST_F (Editor, OpenedAnewItShowsThePresentStateBeforeItsFirstTick)
{
    editor.reset();
    processor.selectSlot (1);
    automate (5, 1.0f);  // Low Ratio
    automate (10, 0.0f); // Mid In
    automate (27, 0.5f); // Mix
    automate (37, 0.75f);

    CorvaneQ7Editor anew (processor);
    EXPECT_EQ (1.0, anew.mainUI->bands[0].ratio->getValue());
    EXPECT_FALSE (anew.mainUI->bands[1].inLamp->getToggleState());
    EXPECT_EQ (juce::String ("50 %"), anew.mainUI->mixReadout->getText());
    EXPECT_TRUE (anew.toolbar->bButton.getToggleState());
    EXPECT_EQ (5.0, anew.toolbar->outLevelSlider.getValue());
    EXPECT_TRUE (anew.mainUI->stereoShown);
}

TEST_F (Editor, ComesAndGoesWithoutTouchingTheProcessor)
{
    HostLog host (processor);
    std::vector<float> before;

    for (auto* parameter : processor.getParameters())
        before.push_back (parameter->getValue());

    for (int i = 0; i < 10; ++i)
    {
        editor.reset();
        open();
        painted (*editor);
    }

    for (int i = 0; i < processor.getParameters().size(); ++i)
        EXPECT_EQ (before[static_cast<std::size_t> (i)], valueOf (i)) << i;

    EXPECT_TRUE (host.words.empty());
}

TEST_F (Editor, ClosedWhileAKnobIsHeldEndsItsGesture)
{
    HostLog host (processor);
    Mouse::press (*band (0).ratio);
    Mouse::dragUp (*band (0).ratio, 40.0f);
    EXPECT_EQ ((std::vector<std::string> { "begin 5" }), host.gestures());

    editor.reset();
    EXPECT_EQ ((std::vector<std::string> { "begin 5", "end 5" }), host.gestures());
}

TEST_F (Editor, ClosedWhileALinkedKnobIsHeldEndsAllThreeGestures)
{
    automate (34, 1.0f);
    HostLog host (processor);
    Mouse::press (*band (1).gain);
    editor.reset();
    EXPECT_EQ ((std::vector<std::string> { "begin 13", "begin 4", "begin 22", "end 13", "end 4", "end 22" }),
               host.gestures());
}

TEST_F (Editor, ClosedWhileATrimIsHeldEndsItsGesture)
{
    HostLog host (processor);
    Mouse::press (toolbar().outLevelSlider);
    Mouse::dragUp (toolbar().outLevelSlider, 25.0f);
    editor.reset();
    EXPECT_EQ ((std::vector<std::string> { "begin 37", "end 37" }), host.gestures());
}

TEST_F (Editor, ClosedWhileAKeyIsHeldOrATrackpadStepWaitsNothingIsCalledAfterIt)
{
    Mouse::press (*band (2).soloButton);
    Mouse::wheel (*band (2).ratio, { 0.2f, true });
    editor.reset();
    HostLog host (processor);
    Mouse::dispatchMessages();
    EXPECT_TRUE (host.words.empty());
}
