// SPDX-License-Identifier: GPL-3.0-or-later
#include "ExpectedParameters.h"
#include "support/Followed.h"

#include <gtest/gtest.h>

#include <cfloat>
#include <limits>
#include <random>

namespace
{
using Expected::Kind;

/** Relative rounding of a power, a product and an exponential in double. */
constexpr double fewUlps = 1.0e-13;

/** x values over the range, a little beyond it, and the edges of each grid. */
std::vector<float> points()
{
    std::vector<float> all { 0.0f, 1.0f, 0.5f, 0.25f, 0.75f, -0.0f };

    for (const auto edge : { 0.5f, 0.25f, 0.75f, 0.125f, 0.875f, 0.04761905f, 1.0f })
    {
        all.push_back (std::nextafter (edge, 0.0f));
        all.push_back (std::nextafter (edge, 2.0f));
    }

    for (int i = 0; i <= 330; ++i)
        all.push_back (static_cast<float> (i) / 330.0f);

    std::mt19937 random (0xc0417u);

    for (int i = 0; i < 200; ++i)
        all.push_back (static_cast<float> (random() >> 8) * 0x1p-24f);

    for (const auto beyond : { -0.3f, -0.01f, 1.01f, 1.3f, 1.9f })
        all.push_back (beyond);

    return all;
}
} // namespace

class ParameterConversion : public ::testing::TestWithParam<Expected::Parameter>
{
protected:
    CorvaneQ7AudioProcessor processor;
    const Expected::Parameter& expected = GetParam();
    juce::AudioProcessorParameter& parameter = *processor.getParameters()[expected.index];
    ChannelSettings& record = processor.activeSettings();

    double field() const { return Expected::fieldOf (record, expected.index); }
};

TEST_P (ParameterConversion, WritesItsFieldByItsFormula)
{
    for (const auto x : points())
    {
        parameter.setValue (x);
        const auto wanted = Expected::valueAt (expected.kind, x);
        EXPECT_NEAR (wanted, field(), fewUlps * std::max (1.0, std::abs (wanted))) << "x = " << x;
    }
}

TEST_P (ParameterConversion, ReportsItsFieldByItsFormula)
{
    for (const auto x : points())
    {
        parameter.setValue (x);

        // A unit of a float's last place: both sides round a double once, and the logarithms may differ by a bit.
        EXPECT_FLOAT_EQ (Expected::normalisedOf (expected.kind, field()), parameter.getValue()) << "x = " << x;
        EXPECT_TRUE (Expected::sameBits (parameter.getValue(), processor.getParameter (expected.index)));
    }
}

TEST_P (ParameterConversion, KeepsAValueOnceItIsOnItsGrid)
{
    for (const auto x : points())
    {
        if (x < 0.001f || x > 1.0f)
            continue; // near 0 a logarithm loses digits, which is no matter of the grid

        parameter.setValue (x);
        const auto once = parameter.getValue();
        const auto field1 = field();
        parameter.setValue (once);
        EXPECT_TRUE (Expected::sameBits (once, parameter.getValue())) << "x = " << x;
        EXPECT_NEAR (field1, field(), 1.0e-6 * std::max (1.0, std::abs (field1))) << "x = " << x; // a float's width

        if (expected.steps == Expected::continuous)
        {
            EXPECT_TRUE (Expected::sameBits (x, once)) << x << " against " << once;
        }
    }
}

TEST_P (ParameterConversion, WritesNoOtherField)
{
    const auto before = Expected::fieldsOf (record);
    parameter.setValue (0.13f);
    parameter.setValue (0.93f);
    auto after = Expected::fieldsOf (record);
    after[static_cast<std::size_t> (expected.index)] = before[static_cast<std::size_t> (expected.index)];
    EXPECT_EQ (before, after);
    EXPECT_EQ (before, Expected::fieldsOf (processor.settingsSlots[1]));
    EXPECT_EQ (14.5075, processor.settingsSlots[1].calibrationGain);
}

TEST_P (ParameterConversion, DecibelsHaveALinearFormBesideThem)
{
    const auto* linear = Expected::linearOf (record, expected.index);
    const auto isDecibel = expected.kind == Kind::gain || expected.kind == Kind::threshold
                           || expected.kind == Kind::level || expected.kind == Kind::master;
    ASSERT_EQ (isDecibel, linear != nullptr);

    if (linear == nullptr)
        return;

    for (const auto x : points())
    {
        parameter.setValue (x);
        const auto wanted = std::pow (10.0, field() / 20.0);
        EXPECT_NEAR (wanted, linear->target, fewUlps * wanted) << "x = " << x;
    }

    // The floor: at -100 dB and below the gain is 0. Only the controls that are not limited get there.
    if (expected.kind == Kind::level || expected.kind == Kind::master)
    {
        parameter.setValue (-5.0f);
        EXPECT_EQ (0.0, linear->target);
        EXPECT_EQ (expected.kind == Kind::level ? -110.0 : -160.0, field());
        EXPECT_EQ (0.0f, parameter.getValue());
    }
}

TEST_P (ParameterConversion, ValuesBeyondTheRangeAreLimitedWhereTheyHaveToBe)
{
    const auto limitsInput = expected.kind == Kind::gain || expected.kind == Kind::threshold
                             || expected.kind == Kind::midSide || expected.kind == Kind::mix;

    for (const auto x : { -7.0f, -0.6f, 1.6f, 7.0f })
    {
        parameter.setValue (x);
        const auto wanted = limitsInput ? Expected::valueAt (expected.kind, x < 0.0f ? 0.0f : 1.0f)
                                        : Expected::valueAt (expected.kind, x);
        EXPECT_NEAR (wanted, field(), fewUlps * std::max (1.0, std::abs (wanted))) << "x = " << x;

        // What is reported: frequencies and rows as they are, all else within 0 to 1.
        if (Expected::isFrequency (expected.kind))
            EXPECT_FLOAT_EQ (x, parameter.getValue());
        else if (Expected::isEnumeration (expected.kind))
            EXPECT_FLOAT_EQ (static_cast<float> (field() / (expected.steps - 1)), parameter.getValue());
        else
            EXPECT_EQ (x < 0.0f ? 0.0f : 1.0f, parameter.getValue()) << "x = " << x;
    }
}

TEST_P (ParameterConversion, WhatIsNoFiniteNumberChangesNothing)
{
    constexpr auto infinity = std::numeric_limits<float>::infinity();
    Expected::Listener listener (processor);

    for (const auto link : { false, true })
    {
        for (const auto start : { 0.0f, 0.37f, 1.0f })
        {
            record.link = false;
            parameter.setValue (start);
            record.link = link;
            const auto before = Expected::fieldsOf (record);

            for (const auto x : { std::numeric_limits<float>::quiet_NaN(), -std::numeric_limits<float>::quiet_NaN(),
                                  std::numeric_limits<float>::signaling_NaN(), infinity, -infinity })
            {
                parameter.setValue (x);
                EXPECT_EQ (before, Expected::fieldsOf (record)) << "x = " << x << " over " << start;
            }
        }
    }

    EXPECT_TRUE (listener.moves.empty()); // and nothing was forwarded to a linked band
}

TEST_P (ParameterConversion, HugeFiniteValuesAreNoAccident)
{
    for (const auto x : { 1.0e30f, -1.0e30f, FLT_MAX, -FLT_MAX, 3.0e9f, -3.0e9f, FLT_MIN, 1.0e-45f })
    {
        parameter.setValue (x);
        EXPECT_FALSE (std::isnan (field())) << "x = " << x;
        EXPECT_FALSE (std::isnan (parameter.getValue())) << "x = " << x;

        if (Expected::isEnumeration (expected.kind) && std::abs (x) > 1.0e9f)
        {
            EXPECT_EQ (x > 0.0f ? std::numeric_limits<int>::max() : std::numeric_limits<int>::min(), field());
        }
    }
}

INSTANTIATE_TEST_SUITE_P (All, ParameterConversion, ::testing::ValuesIn (Expected::parameters),
                          [] (const auto& row) { return std::string (row.param.identifier); });

TEST (ParameterConversions, ALevelComesBackFromFarOutsideItsRange)
{
    for (const auto index : { 29, 36, 37 }) // Master Gain, In Level, Out Level
    {
        CorvaneQ7AudioProcessor processor;
        processor.setRateAndBufferSizeDetails (48000.0, 512);
        processor.setNoiseSource (NoiseSource::held());
        processor.prepareToPlay (48000.0, 512);
        const auto ordinary = processor.getParameterDefaultValue (index);
        juce::AudioBuffer<float> buffer (2, 512);
        juce::MidiBuffer midi;

        for (const auto x : { 1.0e30f, ordinary })
        {
            processor.setParameter (index, x);

            for (int block = 0; block < 20; ++block) // two ramps of 100 ms
            {
                buffer.clear();
                processor.processBlock (buffer, midi);
            }
        }

        EXPECT_NEAR (1.0, processor.levels[0].master.current, 1.0e-6) << index;
        EXPECT_NEAR (1.0, processor.levels[0].in.current, 1.0e-6) << index;
        EXPECT_NEAR (1.0, processor.levels[0].out.current, 1.0e-6) << index;
        EXPECT_TRUE (std::isfinite (buffer.getMagnitude (0, 512))) << index;
    }
}

TEST (ParameterConversions, OfANewInstanceAreThoseOfTheDefaultProgram)
{
    CorvaneQ7AudioProcessor processor;
    const auto reported = [&] (int index) { return processor.getParameter (index); };

    for (int band = 0; band < 3; ++band)
    {
        EXPECT_EQ (0.5f, reported (band * 9 + 0));          // meter: control
        EXPECT_EQ (1.0f, reported (band * 9 + 1));          // in
        EXPECT_EQ (0.0f, reported (band * 9 + 2));          // solo
        EXPECT_EQ (0.5f, reported (band * 9 + 3));          // mid side: off
        EXPECT_EQ (3.0f / 21.0f, reported (band * 9 + 4));  // 2 dB
        EXPECT_EQ (0.5f, reported (band * 9 + 5));          // 3:1
        EXPECT_EQ (16.0f / 30.0f, reported (band * 9 + 6)); // -4 dB
        EXPECT_EQ (2.0f / 3.0f, reported (band * 9 + 7));   // 2mS
        EXPECT_EQ (1.0f, reported (band * 9 + 8));          // auto
    }

    EXPECT_EQ (1.0f, reported (Expected::mix));
    EXPECT_EQ (0.0f, reported (Expected::hpf));
    EXPECT_EQ (1.0f / 3.0f, reported (Expected::masterGain));
    EXPECT_FLOAT_EQ (0.30102999566f, reported (Expected::lowXOver));  // log10 (200 / 50) / 2
    EXPECT_FLOAT_EQ (0.78617608544f, reported (Expected::highXOver)); // log10 (5000 / 200) / log10 (60)
    EXPECT_EQ (0.0f, reported (Expected::nuke));
    EXPECT_EQ (1.0f, reported (Expected::niveau));
    EXPECT_EQ (0.0f, reported (Expected::link));
    EXPECT_EQ (0.0f, reported (Expected::bypass));
    EXPECT_EQ (0.5f, reported (Expected::inLevel));
    EXPECT_EQ (0.5f, reported (Expected::outLevel));
}

TEST (ParameterConversions, AThresholdInTheMiddleGoesUpToMinusFour)
{
    // -5 dB lies between two points of the grid; it counts up.
    CorvaneQ7AudioProcessor processor;

    for (int band = 0; band < 3; ++band)
    {
        auto& control = *processor.getParameters()[band * 9 + 6];
        control.setValue (0.0f);
        control.setValue (0.5f);
        EXPECT_EQ (-4.0, processor.activeSettings().bands[band].thresholdDb.target);
        EXPECT_EQ (16.0f / 30.0f, control.getValue());
    }
}

TEST (ParameterConversions, OneHalfIsOn)
{
    CorvaneQ7AudioProcessor processor;
    auto numSwitches = 0;

    for (const auto& expected : Expected::parameters)
    {
        if (expected.kind != Kind::onOff && expected.kind != Kind::bypass)
            continue;

        ++numSwitches;
        auto& control = *processor.getParameters()[expected.index];
        control.setValue (0.0f);
        EXPECT_EQ (0.0f, control.getValue());
        control.setValue (0.5f);
        EXPECT_EQ (1.0f, control.getValue()) << expected.identifier;
        EXPECT_EQ (1.0, Expected::fieldOf (processor.activeSettings(), expected.index));
        control.setValue (std::nextafter (0.5f, 0.0f));
        EXPECT_EQ (0.0f, control.getValue()) << expected.identifier;

        if (expected.index == Expected::link)
            processor.activeSettings().link = false;
    }

    EXPECT_EQ (10, numSwitches); // In and Solo of three bands, Nuke, Niveau, Link, Bypass
}

TEST (ParameterConversions, ARowIsTheNearestOne)
{
    CorvaneQ7AudioProcessor processor;
    auto& record = processor.activeSettings();

    processor.setParameter (8, 0.6f); // 2.4 of the five recoveries
    EXPECT_EQ (2, record.bands[0].recovery);
    processor.setParameter (8, 0.624f);
    EXPECT_EQ (2, record.bands[0].recovery);
    processor.setParameter (8, 0.625f);
    EXPECT_EQ (3, record.bands[0].recovery);
    processor.setParameter (16, 0.5f); // 1.5 of the four attacks
    EXPECT_EQ (2, record.bands[1].attack);
    processor.setParameter (18, 0.25f); // 0.5 of the three meters
    EXPECT_EQ (1, record.bands[2].meter);
}

TEST (ParameterConversions, ARowBeyondTheTableReachesTheRecordAndLeavesTheEngine)
{
    CorvaneQ7AudioProcessor processor;
    auto& record = processor.activeSettings();
    auto& band = processor.bandGroups[1].compressor;

    processor.setParameter (9 + 5, 1.0f); // 6:1
    processor.setParameter (9 + 7, 1.0f); // 10mS
    processor.setParameter (9 + 8, 0.0f); // 100mS
    processor.followSettings();
    const auto* curve = band.transferTable;
    const auto attack = band.attackOhms, recovery = band.recoveryOhms;
    ASSERT_EQ (1400.0, attack);
    ASSERT_EQ (8200.0, recovery);

    for (const auto x : { 1.3f, 2.0f, 1.0e30f, -0.5f, -1.0e30f })
    {
        processor.setParameter (9 + 5, x);
        processor.setParameter (9 + 7, x);
        processor.setParameter (9 + 8, x);
        processor.followSettings();
        EXPECT_TRUE (record.bands[1].ratio < 0 || record.bands[1].ratio > 4) << x;
        EXPECT_TRUE (record.bands[1].attack < 0 || record.bands[1].attack > 3) << x;
        EXPECT_TRUE (record.bands[1].recovery < 0 || record.bands[1].recovery > 4) << x;
        EXPECT_EQ (curve, band.transferTable);
        EXPECT_EQ (attack, band.attackOhms);
        EXPECT_EQ (recovery, band.recoveryOhms);
    }
}

TEST (ParameterConversions, AChangeMovesOverTheRampOfTheEngine)
{
    // What the audio reads must not jump: the target moves at once, the value follows.
    CorvaneQ7AudioProcessor processor;
    auto& record = processor.activeSettings();

    processor.setParameter (Expected::inLevel, 1.0f);
    EXPECT_EQ (10.0, record.inLevelDb.target);
    EXPECT_EQ (1.0, followed (processor).levels[0].in.current);
    EXPECT_EQ (100, processor.levels[0].in.remaining);

    processor.setParameter (Expected::bypass, 1.0f);
    EXPECT_EQ (1.0, record.bypass.target);
}

TEST (ParameterConversions, ReportTheTargetAndNotTheRamp)
{
    CorvaneQ7AudioProcessor processor;
    processor.setParameter (Expected::outLevel, 0.75f);
    processor.setParameter (Expected::bypass, 1.0f);
    EXPECT_EQ (0.75f, processor.getParameter (Expected::outLevel));
    EXPECT_EQ (1.0f, processor.getParameter (Expected::bypass));
}

TEST (ParameterConversions, ReadTheRecordEachTime)
{
    // Nothing is kept in the control itself: what a program or a copy writes shows without a word.
    CorvaneQ7AudioProcessor processor;
    auto& record = processor.activeSettings();

    record.bands[2].gainDb.target = 6.4; // between two points of the grid
    EXPECT_EQ (7.0f / 21.0f, processor.getParameter (Expected::highGain));
    record.bands[0].thresholdDb.target = 3.1;
    EXPECT_EQ (24.0f / 30.0f, processor.getParameter (Expected::lowThreshold));
    record.bands[1].midSide = 0.7;
    EXPECT_EQ (0.5f, processor.getParameter (12));
    record.hpfHz = 500.0;
    EXPECT_FLOAT_EQ (1.0f, processor.getParameter (Expected::hpf));
    record.mix = 1.5;
    EXPECT_EQ (1.0f, processor.getParameter (Expected::mix));
    record.masterGainDb.target = 50.0;
    EXPECT_EQ (1.0f, processor.getParameter (Expected::masterGain));
    record.inLevelDb.target = -50.0;
    EXPECT_EQ (0.0f, processor.getParameter (Expected::inLevel));
}
