// SPDX-License-Identifier: GPL-3.0-or-later
#include "editor/EditorFixture.h"

#include <cmath>

namespace
{
constexpr float pi = juce::MathConstants<float>::pi;

/** Notes what a listener hears. */
struct Listener : juce::Slider::Listener
{
    void sliderValueChanged (juce::Slider* slider) override { values.push_back (slider->getValue()); }

    std::vector<double> values;
};

template <typename Knob>
class Turning : public ::testing::Test
{
protected:
    Turning()
    {
        knob.addListener (&listener);
        knob.setVisible (true);
    }

    ~Turning() override { knob.removeListener (&listener); }

    /** A step of 0.25 and 80 px, as the Ratio knob has it. */
    void makeStepped (double value = 0.5)
    {
        knob.setTravel ({ 0.25, 5.235988f, 7.330383f, 80 });
        knob.setValue (value, juce::dontSendNotification);
    }

    void makeContinuous (double value = 0.5)
    {
        knob.setTravel ({ 0.0, -2.618f, 2.618f, 0 });
        knob.setValue (value, juce::dontSendNotification);
    }

    Knob knob;
    Listener listener;
};

using KnobTurning = Turning<BigKnob>;

template <typename Knob>
void expectNew (int size, const Assets::KnobImages& images)
{
    Knob knob;
    EXPECT_EQ (size, knob.getWidth());
    EXPECT_EQ (size, knob.getHeight());
    EXPECT_TRUE (knob.background == images.background);
    EXPECT_TRUE (knob.rotor == images.rotor);
    EXPECT_TRUE (knob.top == images.top);
    EXPECT_EQ (juce::Slider::RotaryVerticalDrag, knob.getSliderStyle());
    EXPECT_EQ (juce::Slider::NoTextBox, knob.getTextBoxPosition());
    EXPECT_EQ (0.0, knob.getMinimum());
    EXPECT_EQ (1.0, knob.getMaximum());
    EXPECT_EQ (0.0, knob.getInterval());
    EXPECT_EQ (-2.618f, knob.rotaryStart);
    EXPECT_EQ (2.618f, knob.rotaryEnd);
    EXPECT_EQ (0.0f, knob.wheelAccumulator);
    EXPECT_EQ (250, knob.getMouseDragSensitivity());

    for (const auto& image : { knob.background, knob.rotor, knob.top })
    {
        EXPECT_EQ (2 * size, image.getWidth());
        EXPECT_EQ (2 * size, image.getHeight());
    }
}
} // namespace

TEST (Knobs, OfTheThreeSizes)
{
    expectNew<BigKnob> (120, Assets::bigKnob());
    expectNew<MidKnob> (72, Assets::midKnob());
    expectNew<SmallKnob> (54, Assets::smallKnob());
}

// ---- the wheel of a mouse ----------------------------------------------------------------------
TEST_F (KnobTurning, AMousesWheelMovesASteppedKnobByWholeSteps)
{
    makeStepped();
    Mouse::wheel (knob, { 0.1f });
    EXPECT_EQ (0.75, knob.getValue());
    Mouse::wheel (knob, { -0.1f });
    Mouse::wheel (knob, { -0.1f });
    EXPECT_EQ (0.25, knob.getValue());
    EXPECT_EQ (0.0f, knob.wheelAccumulator);
    EXPECT_FALSE (static_cast<juce::Timer&> (knob).isTimerRunning());
    EXPECT_EQ ((std::vector<double> { 0.75, 0.5, 0.25 }), listener.values); // at once
}

TEST_F (KnobTurning, AMousesWheelTurnsBackWhenItIsReversed)
{
    makeStepped();
    Mouse::wheel (knob, { 0.1f, false, true });
    EXPECT_EQ (0.25, knob.getValue());
}

TEST_F (KnobTurning, CtrlAloneMakesTheWheelTenTimesFiner)
{
    const auto moved = [this] (Mouse::Wheel move, int flags)
    {
        makeContinuous();
        Mouse::wheel (knob, move, flags);
        return knob.getValue() - 0.5;
    };

    for (const auto smooth : { false, true }) // a continuous knob does not mind
    {
        const auto plain = moved ({ 0.2f, smooth }, 0);
        EXPECT_NEAR (0.03, plain, 1.0e-6); // the framework's 0.15 of the way for one unit
        EXPECT_NEAR (0.003, moved ({ 0.2f, smooth }, Mouse::ctrl), 1.0e-6);
        EXPECT_NEAR (-0.003, moved ({ 0.0f, smooth, false, 0.2f }, Mouse::ctrl), 1.0e-6); // sideways too

        for (const auto flags : { Mouse::shift, Mouse::alt, Mouse::ctrl | Mouse::shift, Mouse::ctrl | Mouse::alt,
                                  Mouse::ctrl | Mouse::shift | Mouse::alt })
            EXPECT_DOUBLE_EQ (plain, moved ({ 0.2f, smooth }, flags)) << flags;

        EXPECT_FALSE (static_cast<juce::Timer&> (knob).isTimerRunning());
        EXPECT_EQ (0.0f, knob.wheelAccumulator);
    }
}

TEST_F (KnobTurning, WithAMouseButtonHeldTheWheelOfAMouseDoesNothing)
{
    for (const auto flags : { Mouse::left, Mouse::ctrl | Mouse::left, Mouse::shift | Mouse::left })
    {
        makeContinuous();
        Mouse::wheel (knob, { 0.2f }, flags);
        EXPECT_EQ (0.5, knob.getValue()) << flags;

        makeStepped();
        Mouse::wheel (knob, { 0.2f }, flags);
        EXPECT_EQ (0.5, knob.getValue()) << flags;
    }

    EXPECT_TRUE (listener.values.empty());
}

// ---- a trackpad on a stepped knob --------------------------------------------------------------
TEST_F (KnobTurning, ATrackpadAddsUpToSteps)
{
    makeStepped();
    Mouse::wheel (knob, { 0.05f, true }); // 80 * 0.05 * 0.1
    EXPECT_NEAR (0.4, knob.wheelAccumulator, 1.0e-6);
    EXPECT_EQ (0.5, knob.getValue());

    Mouse::wheel (knob, { 0.05f, true }); // 0.8: one step, 0.2 too much
    EXPECT_NEAR (-0.2, knob.wheelAccumulator, 1.0e-6);
    EXPECT_EQ (0.75, knob.getValue());

    Mouse::wheel (knob, { 0.05f, true });
    EXPECT_NEAR (0.2, knob.wheelAccumulator, 1.0e-6);
    EXPECT_EQ (0.75, knob.getValue());

    Mouse::wheel (knob, { -0.2f, true }); // -1.4: a step back
    EXPECT_NEAR (-0.4, knob.wheelAccumulator, 1.0e-6);
    EXPECT_EQ (0.5, knob.getValue());
}

TEST_F (KnobTurning, HalfAStepIsOneAndTheSignIsKept)
{
    for (const auto sign : { 1.0f, -1.0f })
    {
        makeStepped();
        knob.wheelAccumulator = 0.0f;
        Mouse::wheel (knob, { sign * 0.0625f, true }); // exactly half
        EXPECT_NEAR (sign * -0.5, knob.wheelAccumulator, 1.0e-6);
        EXPECT_EQ (0.5 + sign * 0.25, knob.getValue());

        makeStepped();
        knob.wheelAccumulator = 0.0f;
        Mouse::wheel (knob, { sign * 0.0624f, true });
        EXPECT_EQ (0.5, knob.getValue());
    }
}

TEST_F (KnobTurning, AReversedTrackpadTurnsBack)
{
    makeStepped();
    Mouse::wheel (knob, { 0.1f, true, true });
    EXPECT_NEAR (0.2, knob.wheelAccumulator, 1.0e-6); // -0.8 and a step of -1
    EXPECT_EQ (0.25, knob.getValue());
}

TEST_F (KnobTurning, ManyStepsEndAtTheRange)
{
    makeStepped (0.0);
    Mouse::wheel (knob, { 0.25f, true }); // two steps at once
    EXPECT_EQ (0.5, knob.getValue());
    Mouse::wheel (knob, { 5.0f, true });
    EXPECT_EQ (1.0, knob.getValue());
    EXPECT_NEAR (0.0, knob.wheelAccumulator, 1.0e-5); // nothing is kept beyond the end
    Mouse::wheel (knob, { -5.0f, true });
    EXPECT_EQ (0.0, knob.getValue());
}

TEST_F (KnobTurning, SidewaysMovesAndModifiersDoNotCount)
{
    makeStepped();
    Mouse::wheel (knob, { 0.0f, true, false, 1.0f });
    EXPECT_EQ (0.5, knob.getValue());
    Mouse::wheel (knob, { 0.1f, true }, Mouse::ctrl); // no fine wheel on a stepped knob
    EXPECT_EQ (0.75, knob.getValue());
}

TEST_F (KnobTurning, ThePaceOfATrackpadGoesWithTheDragWay)
{
    for (const auto pixels : { 80, 60, 50 })
    {
        knob.setTravel ({ 0.05, 0.0f, 1.0f, pixels });
        knob.setValue (0.0, juce::dontSendNotification);
        knob.wheelAccumulator = 0.0f;
        Mouse::wheel (knob, { 1.0f, true });
        EXPECT_NEAR (pixels * 0.1 * 0.05, knob.getValue(), 1.0e-9) << pixels;
    }

    MidKnob usual; // whose way was left as it is
    usual.setTravel ({ 0.02, 0.0f, 1.0f, 0 });
    Mouse::wheel (usual, { 1.0f, true });
    EXPECT_NEAR (25 * 0.02, usual.getValue(), 1.0e-9);
}

TEST_F (KnobTurning, ATrackpadsStepIsToldLater)
{
    makeStepped();
    Mouse::wheel (knob, { 0.1f, true });
    EXPECT_TRUE (listener.values.empty());
    Mouse::dispatchMessages();
    EXPECT_EQ ((std::vector<double> { 0.75 }), listener.values);
}

TEST_F (KnobTurning, EveryTrackpadMoveStartsTheMemoryAnew)
{
    makeStepped();
    auto& timer = static_cast<juce::Timer&> (knob);

    for (const auto delta : { 0.001f, 0.1f, 0.0f })
    {
        timer.stopTimer();
        Mouse::wheel (knob, { delta, true });
        EXPECT_TRUE (timer.isTimerRunning());
        EXPECT_EQ (500, timer.getTimerInterval());
    }

    knob.wheelAccumulator = 0.3f;
    knob.timerCallback();
    EXPECT_FALSE (timer.isTimerRunning());
    EXPECT_EQ (0.0f, knob.wheelAccumulator);
    EXPECT_EQ (0.75, knob.getValue());
}

TEST_F (KnobTurning, HalfASecondAfterTheLastMoveABegunStepIsForgotten)
{
    makeStepped();
    auto memory = 0.0; // ms

    // The framework's timers come late on a busy machine, and some 50 ms early where their thread was kept waiting just
    // before: such a try counts for nothing.
    for (int attempt = 0; attempt < 20 && memory < 400.0; ++attempt)
    {
        Mouse::wheel (knob, { 0.05f, true });
        Mouse::dispatchMessagesFor (260);
        Mouse::wheel (knob, { 0.001f, true }); // too small for anything but the clock
        const auto lastMove = juce::Time::getMillisecondCounterHiRes();
        ASSERT_NE (0.0f, knob.wheelAccumulator);

        while (knob.wheelAccumulator != 0.0f && juce::Time::getMillisecondCounterHiRes() < lastMove + 60000.0)
            Mouse::dispatchMessagesFor (5);

        memory = juce::Time::getMillisecondCounterHiRes() - lastMove;
        ASSERT_EQ (0.0f, knob.wheelAccumulator);
        EXPECT_FALSE (static_cast<juce::Timer&> (knob).isTimerRunning());
    }

    EXPECT_GE (memory, 400.0); // it would be 240 if the second move had not begun it anew
    EXPECT_EQ (0.5, knob.getValue());
}

// ---- painting ----------------------------------------------------------------------------------
namespace
{
juce::Image layer (int size, juce::Colour colour, juce::Rectangle<int> area)
{
    juce::Image image (juce::Image::ARGB, size, size, true);
    image.clear (area, colour);
    return image;
}

/** Where the rotor's mark is, in degrees clockwise from straight up. */
double angleOfMark (const juce::Image& image)
{
    auto x = 0.0, y = 0.0;

    for (int row = 0; row < image.getHeight(); ++row)
        for (int column = 0; column < image.getWidth(); ++column)
            if (image.getPixelAt (column, row).getRed() > 128)
            {
                x += column + 0.5 - image.getWidth() * 0.5;
                y += row + 0.5 - image.getHeight() * 0.5;
            }

    return std::atan2 (x, -y) * 180.0 / juce::MathConstants<double>::pi;
}

double wrapped (double degrees) { return degrees - 360.0 * std::round (degrees / 360.0); }
} // namespace

TEST_F (KnobTurning, PaintsTheTurnedRotorBetweenItsOtherLayers)
{
    knob.background = layer (200, juce::Colours::blue, { 0, 0, 200, 200 });
    knob.rotor = layer (200, juce::Colours::red, { 90, 10, 20, 100 }); // from the rim to the middle
    knob.top = layer (200, juce::Colours::lime, { 90, 90, 20, 20 });

    for (const auto size : { 120, 108, 84 })
    {
        knob.setSize (size, size);

        for (const auto& [start, end] :
             { std::pair { 5.235988f, 7.330383f }, { -2.618f, 2.618f }, { 3.665192f, 8.639380f } })
        {
            knob.rotaryStart = start;
            knob.rotaryEnd = end;

            for (const auto value : { 0.0, 0.25, 0.5, 1.0 })
            {
                knob.setValue (value, juce::dontSendNotification);
                const auto image = painted (knob);
                const auto angle = start + (end - start) * static_cast<float> (value);
                EXPECT_NEAR (angle, knob.rotorAngle(), 1.0e-5f);
                EXPECT_NEAR (0.0, wrapped (angleOfMark (image) - angle * 180.0 / pi), 1.0) << size << " at " << value;
                EXPECT_EQ (juce::Colours::lime, image.getPixelAt (size / 2, size / 2)); // above the rotor
                EXPECT_EQ (juce::Colours::blue, image.getPixelAt (1, 1));
            }
        }
    }
}

TEST_F (KnobTurning, TheRatioSweepsAThirdOfATurnAroundTheTop)
{
    knob.setTravel ({ 0.25, 5.235988f, 7.330383f, 80 });
    knob.setValue (0.0, juce::dontSendNotification);
    EXPECT_NEAR (300.0, knob.rotorAngle() * 180.0f / pi, 1.0e-3);
    knob.setValue (1.0, juce::dontSendNotification);
    EXPECT_NEAR (420.0, knob.rotorAngle() * 180.0f / pi, 1.0e-3);
    knob.setValue (0.5, juce::dontSendNotification);
    EXPECT_NEAR (360.0, knob.rotorAngle() * 180.0f / pi, 1.0e-3);
}
