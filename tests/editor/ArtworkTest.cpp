// SPDX-License-Identifier: GPL-3.0-or-later
// What is printed on the front, measured in the bitmap: a tick where each knob's pointer stops, a mark where each
// meter's needle rests, and pointers that point straight up.
#include "EditorFixture.h"
#include "views/ScaleMarks.h"

#include <algorithm>
#include <cmath>

namespace
{
constexpr double pi = juce::MathConstants<double>::pi;
constexpr double strictness = 1.5; // degrees that a tick may be off

/** Brightness 0 to 1 between pixels. */
double brightness (const juce::Image& image, double x, double y)
{
    const auto at = [&image] (int column, int row)
    {
        const auto colour = image.getPixelAt (column, row);
        return (colour.getRed() * 0.3 + colour.getGreen() * 0.59 + colour.getBlue() * 0.11) / 255.0
               * colour.getFloatAlpha();
    };

    const auto left = std::floor (x - 0.5), top = std::floor (y - 0.5);
    const auto fx = x - 0.5 - left, fy = y - 0.5 - top;
    const auto column = static_cast<int> (left), row = static_cast<int> (top);
    return (1.0 - fy) * ((1.0 - fx) * at (column, row) + fx * at (column + 1, row))
           + fy * ((1.0 - fx) * at (column, row + 1) + fx * at (column + 1, row + 1));
}

/** The mean along a direction, between two radii in pixels. Degrees clockwise from straight up. */
double meanAlong (const juce::Image& image, juce::Point<double> centre, double angle, double from, double to)
{
    const auto radians = angle * pi / 180.0;
    auto sum = 0.0;
    auto count = 0;

    for (auto radius = from; radius <= to; radius += 0.5, ++count)
        sum += brightness (image, centre.x + radius * std::sin (radians), centre.y - radius * std::cos (radians));

    return sum / count;
}

/** The direction in which it is brightest around an angle: the middle of what rises above the surroundings. */
double brightestAround (const juce::Image& image, juce::Point<double> centre, double angle, double span, double from,
                        double to)
{
    std::vector<std::pair<double, double>> profile;
    auto darkest = 1.0, brightest = 0.0;

    for (auto offset = -span; offset <= span; offset += 0.1)
    {
        const auto mean = meanAlong (image, centre, angle + offset, from, to);
        profile.emplace_back (offset, mean);
        darkest = std::min (darkest, mean);
        brightest = std::max (brightest, mean);
    }

    const auto threshold = 0.5 * (darkest + brightest);
    auto sum = 0.0, weights = 0.0;

    for (const auto& [offset, mean] : profile)
        if (mean > threshold)
        {
            sum += offset * (mean - threshold);
            weights += mean - threshold;
        }

    return weights > 0.0 ? sum / weights : 1000.0;
}
} // namespace

TEST (Artwork, TheFrontHasATickAtEveryMark)
{
    CorvaneQ7AudioProcessor processor;
    const auto front = Assets::front();
    const auto scale = front.getWidth() / 1350.0;
    auto ticks = 0;

    for (const auto& knob : ScaleMarks::knobsOf (processor))
    {
        const auto area = knob.place.in (1350, 675).toDouble() * scale;
        const auto from = 0.47 * area.getWidth(), to = 0.54 * area.getWidth();
        const auto& marks = knob.marks;

        for (std::size_t i = 0; i < marks.size(); ++i)
        {
            SCOPED_TRACE (juce::String (knob.legend) + " of parameter " + juce::String (knob.parameter) + " at "
                          + juce::String (marks[i].degrees, 1));

            auto gap = 360.0;

            for (const auto& other : marks)
                if (&other != &marks[i])
                    gap = std::min (gap, std::abs (other.degrees - marks[i].degrees));

            const auto onIt = meanAlong (front, area.getCentre(), marks[i].degrees, from, to);

            for (const auto side : { -0.5, 0.5 })
            {
                const auto beside =
                    meanAlong (front, area.getCentre(), marks[i].degrees + side * std::min (gap, 16.0), from, to);
                EXPECT_GT (onIt, beside + 0.08);
                EXPECT_GT (onIt, 1.35 * beside);
            }

            const auto span = std::min (0.5 * gap, 6.0);
            EXPECT_NEAR (0.0, brightestAround (front, area.getCentre(), marks[i].degrees, span, from, to), strictness);
            ++ticks;
        }
    }

    EXPECT_GT (ticks, 3 * (5 + 4 + 5 + 22 + 16 + 3) + 50);
}

TEST (Artwork, ThereIsNoTickWhereAKnobCannotPoint)
{
    CorvaneQ7AudioProcessor processor;
    const auto front = Assets::front();
    const auto scale = front.getWidth() / 1350.0;

    for (const auto& knob : ScaleMarks::knobsOf (processor))
    {
        const auto area = knob.place.in (1350, 675).toDouble() * scale;
        const auto from = 0.49 * area.getWidth(), to = 0.52 * area.getWidth(); // within the ticks, short of the labels
        auto faintest = 1.0;

        for (const auto& mark : knob.marks)
            faintest = std::min (faintest, meanAlong (front, area.getCentre(), mark.degrees, from, to));

        for (auto angle = knob.marks.back().degrees + 12.0; angle < knob.marks.front().degrees + 348.0; angle += 1.0)
            EXPECT_LT (meanAlong (front, area.getCentre(), angle, from, to), faintest)
                << knob.legend << " " << knob.parameter << " at " << angle;
    }
}

TEST (Artwork, PointersPointStraightUp)
{
    for (const auto& rotor : { Assets::bigKnob().rotor, Assets::midKnob().rotor, Assets::smallKnob().rotor })
    {
        const auto size = static_cast<double> (rotor.getWidth());
        const juce::Point<double> centre { size * 0.5, size * 0.5 };
        const auto from = 0.29 * size, to = 0.36 * size; // on the dark rim, where nothing else is bright

        EXPECT_NEAR (0.0, brightestAround (rotor, centre, 0.0, 30.0, from, to), 1.0) << size;

        const auto pointer = meanAlong (rotor, centre, 0.0, from, to);
        EXPECT_GT (pointer, 0.6) << size;

        for (auto angle = 20.0; angle <= 340.0; angle += 2.0)
            EXPECT_LT (meanAlong (rotor, centre, angle, from, to), 0.6 * pointer) << size << " at " << angle;
    }
}

TEST (Artwork, OnlyTheRotorHasAPointer)
{
    // Light and shade stay while the rotor turns: the other layers have no such line.
    for (const auto& knob : { Assets::bigKnob(), Assets::midKnob(), Assets::smallKnob() })
        for (const auto& layer : { knob.background, knob.top })
        {
            const auto size = static_cast<double> (layer.getWidth());
            const juce::Point<double> centre { size * 0.5, size * 0.5 };
            EXPECT_LT (meanAlong (layer, centre, 0.0, 0.29 * size, 0.36 * size), 0.45);
        }
}

TEST (Artwork, TurnsAsThePanelSays)
{
    CorvaneQ7AudioProcessor processor;
    CorvaneQ7Editor editor (processor);
    editor.setSize (1350, 723);

    for (const auto& knob : ScaleMarks::knobsOf (processor))
    {
        auto& widget = *dynamic_cast<NVXSlider*> (editor.mainUI->controlsOfParameter.at (knob.parameter).front());

        for (const auto& mark : knob.marks)
        {
            widget.setValue (mark.normalised, juce::dontSendNotification);
            const auto image = painted (widget);
            const auto size = static_cast<double> (image.getWidth());
            EXPECT_NEAR (
                0.0, brightestAround (image, { size * 0.5, size * 0.5 }, mark.degrees, 30.0, 0.29 * size, 0.36 * size),
                2.0) // half the pixels, and the light stays where it is
                << knob.legend << " at " << mark.degrees;
        }
    }
}

// ---- meters ------------------------------------------------------------------------------------
TEST (Artwork, TheMetersMarksLieUnderTheNeedle)
{
    // The needle is 2 px high, from y - 1.5 to y + 0.5, and its columns are 7 to 43.
    const auto scale = Assets::meterScale();
    const auto darknessAt = [&scale] (double y)
    {
        // The darkest stretch of a row: a tick covers a part of the width only.
        auto darkest = 1.0;

        for (double x = 16.0; x <= 84.0; x += 2.0)
        {
            auto sum = 0.0;

            for (double step = 0.0; step < 8.0; step += 1.0)
                sum += brightness (scale, x + step, y);

            darkest = std::min (darkest, sum / 8.0);
        }

        return 1.0 - darkest;
    };

    for (const auto& marks : { ScaleMarks::levelMarks(), ScaleMarks::gainReductionMarks() })
        for (const auto& mark : marks)
        {
            const auto y = (mark.y - 0.5) * 2.0; // the needle's middle, in the bitmap
            auto strongest = 0.0;

            for (double offset = -1.0; offset <= 1.0; offset += 0.5)
                strongest = std::max (strongest, darknessAt (y + offset));

            EXPECT_GT (strongest, 0.45) << mark.decibels << " " << mark.label;
        }
}
