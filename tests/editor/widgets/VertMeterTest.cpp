// SPDX-License-Identifier: GPL-3.0-or-later
#include "editor/EditorFixture.h"

#include <cmath>
#include <limits>
#include <random>

namespace
{
using Limits = std::numeric_limits<float>;

double level (float value) { return VertMeter::targetPosition (value, false); }
double reduction (float value) { return VertMeter::targetPosition (value, true); }
float gainOf (double db) { return static_cast<float> (std::pow (10.0, db / 20.0)); }

class VertMeterNeedle : public ::testing::Test
{
protected:
    VertMeterNeedle()
    {
        now = 100000;
        meter.millisecondCounter = []() noexcept { return std::uint32_t { now }; };
        meter.lastTime = now;
    }

    void tick (int milliseconds, float value, bool isGainReduction)
    {
        now += static_cast<std::uint32_t> (milliseconds);
        meter.update (value, isGainReduction);
    }

    /** At rest at the top. */
    void raise()
    {
        meter.position = 1.0f;
        meter.velocity = 0.0f;
    }

    inline static std::uint32_t now;
    VertMeter meter;
};

constexpr float fullReduction = 0.1f; // g is held at 1, the target at 0.95
} // namespace

// ---- where readings stand ----------------------------------------------------------------------
TEST (VertMeterScale, OfLevels)
{
    EXPECT_NEAR (0.1, level (gainOf (-12.0)), 1.0e-6);
    EXPECT_NEAR (0.5, level (1.0f), 1.0e-6);
    EXPECT_NEAR (0.9, level (gainOf (12.0)), 1.0e-6);

    for (double db = -30.0; db <= 30.0; db += 0.7)
        EXPECT_NEAR ((db + 12.0) / 24.0 * 0.8 + 0.1, level (gainOf (db)), 2.0e-6) << db;
}

TEST (VertMeterScale, OfSilence)
{
    const auto lowest = (-100.0 + 12.0) / 24.0 * 0.8 + 0.1; // -2.8333
    EXPECT_NEAR (-2.83333, lowest, 1.0e-5);

    for (const auto value : { 0.0f, -0.0f, -1.0f, 1.0e-5f, 1.0e-20f, Limits::denorm_min(), Limits::lowest() })
        EXPECT_NEAR (lowest, level (value), 1.0e-6) << value;
}

TEST (VertMeterScale, OfGainReduction)
{
    EXPECT_NEAR (-0.049, reduction (1.0f), 1.0e-6); // g = -0.11
    EXPECT_NEAR (0.5 * 0.0 + (0.5 * -1.3 + 1.19) * 0.9 + 0.05, reduction (0.5f), 1.0e-6);
    EXPECT_NEAR (0.95, reduction (0.146f), 2.0e-4);

    for (const auto value : { 0.146f, 0.1f, 0.0f, -1.0f, -100.0f })
        EXPECT_NEAR (0.95, reduction (value), 2.0e-4) << value;

    EXPECT_DOUBLE_EQ (0.95, reduction (0.0f));
    EXPECT_NEAR ((2.0 * -1.3 + 1.19) * 0.9 + 0.05, reduction (2.0f), 1.0e-6); // below the scale
}

// ---- ballistics --------------------------------------------------------------------------------
TEST_F (VertMeterNeedle, StartsAtRestAtTheBottom)
{
    EXPECT_EQ (0.0f, meter.position);
    EXPECT_EQ (0.0f, meter.velocity);
    EXPECT_EQ (0.6f, meter.inertia);
    EXPECT_EQ (58, meter.getWidth());
    EXPECT_EQ (252, meter.getHeight());
    EXPECT_TRUE (meter.isOpaque());
}

TEST (VertMeterClock, RunsFromTheMetersMakingSoThatTheFirstTickIsNoLeap)
{
    const auto before = juce::Time::getMillisecondCounter();
    const VertMeter meter;
    const auto after = juce::Time::getMillisecondCounter();
    EXPECT_LE (meter.lastTime - before, after - before); // unsigned, so the counter's wrap is no matter
    EXPECT_TRUE (meter.millisecondCounter == juce::Time::getMillisecondCounter);
}

TEST_F (VertMeterNeedle, RisesByTheWeightedSlope)
{
    // 0.95 within 50 ms would be 19 a second; 3 is the most.
    tick (50, fullReduction, true);
    EXPECT_NEAR (1.8, meter.velocity, 1.0e-6); // 3 * 0.6
    EXPECT_NEAR (0.09, meter.position, 1.0e-6);

    tick (50, fullReduction, true);
    EXPECT_NEAR (2.52, meter.velocity, 1.0e-6); // 3 * 0.6 + 0.4 * 1.8
    EXPECT_NEAR (0.216, meter.position, 1.0e-6);

    tick (50, fullReduction, true);
    EXPECT_NEAR (2.808, meter.velocity, 1.0e-6);
    EXPECT_NEAR (0.3564, meter.position, 1.0e-6);
}

TEST_F (VertMeterNeedle, FollowsTheFormulaStepByStep)
{
    std::mt19937 random (20240607);
    auto position = 0.0, velocity = 0.0;

    for (int i = 0; i < 2000; ++i)
    {
        const auto milliseconds = static_cast<int> (random() % 200);
        const auto isGainReduction = random() % 2 == 0;
        const auto value = isGainReduction ? static_cast<float> (random() % 1000) / 1000.0f
                                           : gainOf (static_cast<double> (random() % 400) / 10.0 - 30.0);
        tick (milliseconds, value, isGainReduction);

        const auto seconds = milliseconds / 1000.0;
        const auto target =
            isGainReduction
                ? std::min (value * -1.3 + 1.19, 1.0) * 0.9 + 0.05
                : (std::max (-100.0, 20.0 * std::log10 (static_cast<double> (value))) + 12.0) / 24.0 * 0.8 + 0.1;
        const auto slope = std::min ((target - position) / std::max (seconds, 0.01), 3.0);
        velocity = slope * 0.6 + 0.4 * velocity;
        position = std::clamp (velocity * seconds + position, 0.0, 1.0);

        ASSERT_NEAR (position, meter.position, 2.0e-4) << i;
        ASSERT_NEAR (velocity, meter.velocity, std::max (2.0e-3, std::abs (velocity) * 1.0e-4)) << i;

        position = meter.position; // so that roundings do not add up
        velocity = meter.velocity;
    }
}

TEST_F (VertMeterNeedle, ComesToRestOnItsTarget)
{
    for (int i = 0; i < 200; ++i)
        tick (50, 1.0f, false);

    EXPECT_NEAR (0.5, meter.position, 1.0e-5);
}

TEST_F (VertMeterNeedle, NeverRisesFasterThanThreeASecond)
{
    for (const auto milliseconds : { 1, 10, 50, 200, 333, 1000, 60000 })
    {
        for (int i = 0; i < 100; ++i)
        {
            const auto before = meter.position;
            tick (milliseconds, i % 7 == 0 ? 1.0f : fullReduction, true);
            EXPECT_LE (meter.position - before, 3.0f * static_cast<float> (milliseconds) / 1000.0f + 1.0e-6f);
            EXPECT_LE (meter.velocity, 3.0f);
        }
    }
}

TEST_F (VertMeterNeedle, FallsAtOnce)
{
    raise();
    tick (50, 0.0f, false); // slope -76.7, velocity -46
    EXPECT_EQ (0.0f, meter.position);
    EXPECT_NEAR (0.6 * (-2.833333 - 1.0) / 0.05, meter.velocity, 1.0e-3);

    raise();
    tick (20000, 1.0f, true);                     // and after a long pause
    EXPECT_NEAR (0.3706, meter.position, 1.0e-4); // 1 + 0.6 * (-0.049 - 1)
}

TEST_F (VertMeterNeedle, LiesAtTheBottomWithoutReduction)
{
    meter.position = 0.3f;

    for (int i = 0; i < 10; ++i)
        tick (50, 1.0f, true);

    EXPECT_EQ (0.0f, meter.position);

    for (int i = 0; i < 10; ++i)
        tick (50, 0.0f, false);

    EXPECT_EQ (0.0f, meter.position);
}

TEST_F (VertMeterNeedle, TicksWithinOneMillisecondTakeTheShortestStep)
{
    tick (0, fullReduction, true);
    EXPECT_EQ (0.0f, meter.position); // no time, no way
    EXPECT_NEAR (1.8, meter.velocity, 1.0e-6);
    tick (0, 1.0f, true); // slope (-0.049 - 0) / 0.01 = -4.9
    EXPECT_NEAR (-4.9 * 0.6 + 0.4 * 1.8, meter.velocity, 1.0e-4);
}

TEST_F (VertMeterNeedle, PassesTheCountersWrap)
{
    now = 0xfffffff0u;
    meter.lastTime = now;
    tick (50, fullReduction, true);
    EXPECT_EQ (0x22u, meter.lastTime);
    EXPECT_NEAR (0.09, meter.position, 1.0e-6);
}

TEST_F (VertMeterNeedle, NoReadingSticks)
{
    for (const auto isGainReduction : { false, true })
        for (const auto value : { Limits::quiet_NaN(), Limits::infinity(), -Limits::infinity(), Limits::max(),
                                  Limits::lowest(), Limits::denorm_min() })
        {
            for (const auto milliseconds : { 50, 0, 100000 })
            {
                tick (milliseconds, value, isGainReduction);
                EXPECT_TRUE (meter.position >= 0.0f && meter.position <= 1.0f) << value;
                EXPECT_GE (meter.velocity, -1.0e6f) << value;
                EXPECT_LE (meter.velocity, 3.0f) << value;
            }

            for (int i = 0; i < 100; ++i)
                tick (50, 1.0f, false);

            EXPECT_NEAR (0.5, meter.position, 1.0e-4) << value; // it moves again as ever
        }
}

TEST_F (VertMeterNeedle, NoReadingAtAllCountsAsNothing)
{
    raise();
    tick (50, Limits::quiet_NaN(), false);
    EXPECT_EQ (0.0f, meter.position);

    for (int i = 0; i < 50; ++i)
        tick (50, Limits::infinity(), false); // beyond the scale

    EXPECT_EQ (1.0f, meter.position);
}

// ---- painting anew -----------------------------------------------------------------------------
TEST_F (VertMeterNeedle, RepaintsTheStripBetweenOldAndNewAlone)
{
    meter.setVisible (true);

    for (const auto& [width, height] : { std::pair { 58, 252 }, { 41, 171 }, { 100, 400 } })
    {
        meter.setSize (width, height);
        meter.position = 0.3f;
        meter.velocity = 0.0f;

        for (const auto value : { fullReduction, fullReduction, 0.8f, 0.9f })
        {
            const auto before = meter.position;
            const RepaintLog log (meter);
            tick (30, value, true);
            ASSERT_NE (before, meter.position);

            const auto heightOf = [&] (float at) { return static_cast<float> (height) * (0.95f - 0.9f * at); };
            const auto upper = std::min (heightOf (before), heightOf (meter.position));
            const auto lower = std::max (heightOf (before), heightOf (meter.position));
            const auto top = static_cast<int> (upper - 3.0f), bottom = static_cast<int> (lower + 2.0f);

            ASSERT_EQ (1, log.areas.size());
            EXPECT_EQ ((juce::Rectangle<int> { 6, top, 38, bottom - top }.getIntersection (meter.getLocalBounds())),
                       log.areas.getFirst());
        }
    }
}

TEST_F (VertMeterNeedle, AtRestItRepaintsNothing)
{
    meter.setVisible (true);
    const RepaintLog log (meter);

    for (int i = 0; i < 20; ++i)
        tick (50, 0.0f, false); // at the bottom already

    EXPECT_TRUE (log.areas.isEmpty());
}

// ---- picture -----------------------------------------------------------------------------------
TEST_F (VertMeterNeedle, IsDrawnAtFixedColumnsWhateverTheSize)
{
    for (const auto& [width, height] : { std::pair { 58, 252 }, { 52, 225 }, { 46, 198 }, { 41, 171 }, { 120, 504 } })
    {
        meter.setSize (width, height);
        meter.position = 0.0f;
        const auto low = painted (meter);

        for (const auto position : { 0.5f, 0.25f, 0.82f })
        {
            meter.position = position;
            const auto image = painted (meter);
            const auto y = static_cast<float> (height) * (0.95f - 0.9f * position);

            for (int row = 0; row < static_cast<int> (static_cast<float> (height) * 0.95f) - 4; ++row)
                for (int column = 0; column < width; ++column)
                {
                    const auto isChanged = image.getPixelAt (column, row) != low.getPixelAt (column, row);
                    const auto line = static_cast<float> (row) + 0.5f; // both lines cover y - 1.5 to y + 0.5
                    const auto mayChange = column >= 7 && column < 43 && line > y - 2.1f && line < y + 1.1f;
                    const auto mustChange = mayChange && line > y - 1.0f && line < y;
                    EXPECT_TRUE (mayChange || ! isChanged) << width << ": " << column << ", " << row;
                    EXPECT_TRUE (isChanged || ! mustChange) << width << ": " << column << ", " << row;
                }
        }
    }
}

TEST_F (VertMeterNeedle, IsARedLineBehindTheGlass)
{
    meter.position = 0.5f;
    const auto y = 252.0f * 0.5f; // exactly 126: lines cover 124.5 to 125.5 and 125.5 to 126.5

    juce::Image expected (juce::Image::ARGB, 58, 252, true);
    {
        juce::Graphics g (expected);
        g.drawImageWithin (Assets::meterScale(), 0, 0, 58, 252, juce::RectanglePlacement::stretchToFit);
        g.setColour (juce::Colour (0xfffd402f));
        g.drawLine (7.0f, y - 1.0f, 43.0f, y - 1.0f, 1.0f);
        g.setColour (juce::Colour (0xfff82527));
        g.drawLine (7.0f, y, 43.0f, y, 1.0f);
        g.setColour (juce::Colours::black);
        g.drawImageWithin (Assets::meterGlass(), 0, 0, 58, 252, juce::RectanglePlacement::stretchToFit);
    }

    const auto image = painted (meter);

    for (int row = 0; row < 252; ++row)
        for (int column = 0; column < 58; ++column)
            ASSERT_EQ (expected.getPixelAt (column, row), image.getPixelAt (column, row)) << column << ", " << row;

    const auto middle = image.getPixelAt (25, 125);
    EXPECT_GT (middle.getRed(), middle.getGreen() + 60);
    EXPECT_GT (middle.getRed(), middle.getBlue() + 60);
}
