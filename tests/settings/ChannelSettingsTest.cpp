// SPDX-License-Identifier: GPL-3.0-or-later
#include "settings/ChannelSettings.h"

#include "processor/CorvaneQ7AudioProcessor.h"

#include <gtest/gtest.h>

#include <cmath>
#include <vector>

namespace
{
class ChannelSettingsTest : public ::testing::Test
{
protected:
    CorvaneQ7AudioProcessor owner;
    ChannelSettings record { owner };
    ChannelSettings source { owner };

    static std::vector<LinearSmoother*> linearSmoothersOf (ChannelSettings& s)
    {
        std::vector<LinearSmoother*> result;

        for (auto& band : s.bands)
            result.insert (result.end(), { &band.gainDb, &band.thresholdDb });

        result.insert (result.end(), { &s.masterGainDb, &s.bypass, &s.inLevelDb, &s.outLevelDb });
        return result;
    }

    static std::vector<GeometricSmoother*> geometricSmoothersOf (ChannelSettings& s)
    {
        std::vector<GeometricSmoother*> result;

        for (auto& band : s.bands)
            result.insert (result.end(), { &band.gainLinear, &band.thresholdLinear });

        result.insert (result.end(), { &s.masterGainLinear, &s.inLevelLinear, &s.outLevelLinear });
        return result;
    }
};

template <typename Smoother>
void expectRestsAt (double value, const Smoother& smoother)
{
    EXPECT_EQ (value, smoother.current);
    EXPECT_EQ (value, smoother.target);
    EXPECT_EQ (0, smoother.remaining);
    EXPECT_EQ (100, smoother.length);
}

template <typename Smoother>
void expectMovesFromTo (double from, double to, const Smoother& smoother)
{
    EXPECT_EQ (from, smoother.current);
    EXPECT_DOUBLE_EQ (to, smoother.target);
    EXPECT_EQ (smoother.length, smoother.remaining);
}
} // namespace

TEST_F (ChannelSettingsTest, ANewRecordHoldsTheProgramDefaultInEachBand)
{
    for (const auto& band : record.bands)
    {
        EXPECT_EQ (1, band.meter);
        EXPECT_TRUE (band.in);
        EXPECT_FALSE (band.solo);
        EXPECT_EQ (0.5, band.midSide);
        expectRestsAt (2.0, band.gainDb);
        expectRestsAt (1.2589254117941673, band.gainLinear);
        EXPECT_EQ (2, band.ratio);
        expectRestsAt (-4.0, band.thresholdDb);
        expectRestsAt (0.6309573444801932, band.thresholdLinear);
        EXPECT_EQ (2, band.attack);
        EXPECT_EQ (4, band.recovery);
    }
}

TEST_F (ChannelSettingsTest, ANewRecordHoldsTheProgramDefaultInTheGlobalControls)
{
    EXPECT_FALSE (record.linkGuard);
    EXPECT_EQ (1.0, record.mix);
    EXPECT_EQ (20.0, record.hpfHz);
    expectRestsAt (0.0, record.masterGainDb);
    expectRestsAt (1.0, record.masterGainLinear);
    EXPECT_EQ (200.0, record.lowXOverHz);
    EXPECT_EQ (5000.0, record.highXOverHz);
    EXPECT_FALSE (record.nuke);
    EXPECT_TRUE (record.niveau);
    EXPECT_FALSE (record.link);
    expectRestsAt (0.0, record.bypass);
    expectRestsAt (0.0, record.inLevelDb);
    expectRestsAt (1.0, record.inLevelLinear);
    expectRestsAt (0.0, record.outLevelDb);
    expectRestsAt (1.0, record.outLevelLinear);
    EXPECT_EQ (14.5075, record.calibrationGain);
    EXPECT_EQ (&owner, &record.owner);
}

TEST_F (ChannelSettingsTest, ANewRecordsMetersStandAtNoLevelAndNoReduction)
{
    EXPECT_EQ (0.0, record.lowLevel);
    EXPECT_EQ (1.0, record.lowGainReduction);
    EXPECT_EQ (0.0, record.midLevel);
    EXPECT_EQ (1.0, record.midGainReduction);
    EXPECT_EQ (0.0, record.highLevel);
    EXPECT_EQ (1.0, record.highGainReduction);
}

TEST_F (ChannelSettingsTest, TheMetersAreReachedByBand)
{
    record.level (0) = 0.1;
    record.level (1) = 0.2;
    record.level (2) = 0.3;
    record.gainReduction (0) = 0.4;
    record.gainReduction (1) = 0.5;
    record.gainReduction (2) = 0.6;

    EXPECT_EQ (0.1, record.lowLevel);
    EXPECT_EQ (0.2, record.midLevel);
    EXPECT_EQ (0.3, record.highLevel);
    EXPECT_EQ (0.4, record.lowGainReduction);
    EXPECT_EQ (0.5, record.midGainReduction);
    EXPECT_EQ (0.6, record.highGainReduction);
}

TEST_F (ChannelSettingsTest, ACopyTakesThePlainFieldsOfEachBandAtOnce)
{
    for (int b = 0; b < ChannelSettings::numBands; ++b)
    {
        // One field at a time, each with a value of its own: a field that lands in another band or place is seen.
        auto& from = source.bands[b];
        from.meter = b;
        from.in = b == 1;
        from.solo = b != 1;
        from.midSide = 0.25 * b;
        from.ratio = 4 - b;
        from.attack = b;
        from.recovery = 3 - b;
    }

    record = source;

    for (int b = 0; b < ChannelSettings::numBands; ++b)
    {
        const auto& to = record.bands[b];
        EXPECT_EQ (b, to.meter) << b;
        EXPECT_EQ (b == 1, to.in) << b;
        EXPECT_EQ (b != 1, to.solo) << b;
        EXPECT_EQ (0.25 * b, to.midSide) << b;
        EXPECT_EQ (4 - b, to.ratio) << b;
        EXPECT_EQ (b, to.attack) << b;
        EXPECT_EQ (3 - b, to.recovery) << b;
    }
}

TEST_F (ChannelSettingsTest, ACopyTakesTheGlobalPlainFieldsAtOnce)
{
    source.mix = 0.3;
    source.hpfHz = 120.0;
    source.lowXOverHz = 321.0;
    source.highXOverHz = 4321.0;
    source.nuke = true;
    source.niveau = false;
    source.link = true;

    record = source;

    EXPECT_EQ (0.3, record.mix);
    EXPECT_EQ (120.0, record.hpfHz);
    EXPECT_EQ (321.0, record.lowXOverHz);
    EXPECT_EQ (4321.0, record.highXOverHz);
    EXPECT_TRUE (record.nuke);
    EXPECT_FALSE (record.niveau);
    EXPECT_TRUE (record.link);

    source.nuke = false;
    source.niveau = true;
    source.link = false;
    record = source;

    EXPECT_FALSE (record.nuke);
    EXPECT_TRUE (record.niveau);
    EXPECT_FALSE (record.link);
}

TEST_F (ChannelSettingsTest, BandGainsAndThresholdsTravelByTheirDecibels)
{
    for (int b = 0; b < ChannelSettings::numBands; ++b)
    {
        auto& from = source.bands[b];
        from.gainDb.setTarget (6.0 + b);
        from.thresholdDb.setTarget (-20.0 - b);
        from.gainLinear.setTarget (77.0); // a linear form that disagrees: it is not what is read
        from.thresholdLinear.setTarget (88.0);
    }

    record = source;

    for (int b = 0; b < ChannelSettings::numBands; ++b)
    {
        const auto& to = record.bands[b];
        expectMovesFromTo (2.0, 6.0 + b, to.gainDb);
        expectMovesFromTo (1.2589254117941673, std::pow (10.0, (6.0 + b) * 0.05), to.gainLinear);
        expectMovesFromTo (-4.0, -20.0 - b, to.thresholdDb);
        expectMovesFromTo (0.6309573444801932, std::pow (10.0, (-20.0 - b) * 0.05), to.thresholdLinear);
    }
}

TEST_F (ChannelSettingsTest, ABandGainOfMinusAHundredDecibelsIsNoGain)
{
    source.bands[1].gainDb.setTarget (-100.0);
    source.bands[2].thresholdDb.setTarget (-140.0);
    record = source;

    EXPECT_EQ (-100.0, record.bands[1].gainDb.target);
    EXPECT_EQ (0.0, record.bands[1].gainLinear.target);
    EXPECT_EQ (-140.0, record.bands[2].thresholdDb.target);
    EXPECT_EQ (0.0, record.bands[2].thresholdLinear.target);
}

TEST_F (ChannelSettingsTest, MasterInAndOutTravelByTheirGain)
{
    source.masterGainLinear.setTarget (2.0);
    source.inLevelLinear.setTarget (0.5);
    source.outLevelLinear.setTarget (0.1);
    source.masterGainDb.setTarget (33.0); // decibels that disagree: they are not what is read
    source.inLevelDb.setTarget (34.0);
    source.outLevelDb.setTarget (35.0);

    record = source;

    expectMovesFromTo (0.0, 6.020599913279624, record.masterGainDb);
    expectMovesFromTo (1.0, 2.0, record.masterGainLinear);
    expectMovesFromTo (0.0, -6.020599913279624, record.inLevelDb);
    expectMovesFromTo (1.0, 0.5, record.inLevelLinear);
    expectMovesFromTo (0.0, -20.0, record.outLevelDb);
    expectMovesFromTo (1.0, 0.1, record.outLevelLinear);
}

TEST_F (ChannelSettingsTest, AGainOfNothingIsMinusAHundredDecibels)
{
    source.masterGainLinear.setTarget (0.0);
    source.inLevelLinear.setTarget (1.0e-7); // -140 dB: below the floor of the scale
    source.outLevelLinear.setTarget (-1.0);
    record = source;

    EXPECT_EQ (-100.0, record.masterGainDb.target);
    EXPECT_EQ (0.0, record.masterGainLinear.target);
    EXPECT_EQ (-100.0, record.inLevelDb.target);
    EXPECT_EQ (1.0e-7, record.inLevelLinear.target);
    EXPECT_EQ (-100.0, record.outLevelDb.target);
    EXPECT_EQ (-1.0, record.outLevelLinear.target);
}

TEST_F (ChannelSettingsTest, BypassTravelsAsATarget)
{
    source.bypass.setTarget (1.0);
    record = source;

    expectMovesFromTo (0.0, 1.0, record.bypass);
}

TEST_F (ChannelSettingsTest, ACopyReadsTheTargetsOfRampsThatAreUnderWay)
{
    source.masterGainLinear.setTarget (4.0);
    source.bands[0].gainDb.setTarget (12.0);

    float stretch[40];
    source.masterGainLinear.fill (stretch, 40);
    source.bands[0].gainDb.fill (stretch, 40);
    record = source;

    EXPECT_EQ (4.0, record.masterGainLinear.target);
    EXPECT_EQ (100, record.masterGainLinear.remaining) << "a whole ramp of the destination";
    EXPECT_EQ (12.0, record.bands[0].gainDb.target);
    EXPECT_EQ (100, record.bands[0].gainDb.remaining);
}

TEST_F (ChannelSettingsTest, ACopyOfEqualSettingsStartsNoRamp)
{
    record = source;

    for (const auto* smoother : linearSmoothersOf (record))
        EXPECT_EQ (0, smoother->remaining);

    for (const auto* smoother : geometricSmoothersOf (record))
        EXPECT_EQ (0, smoother->remaining);
}

TEST_F (ChannelSettingsTest, ACopyLeavesWhatBelongsToTheSlot)
{
    CorvaneQ7AudioProcessor other;
    ChannelSettings from (other);
    from.linkGuard = true;
    from.calibrationGain = 7.0;
    from.lowLevel = from.midLevel = from.highLevel = 0.9;
    from.lowGainReduction = from.midGainReduction = from.highGainReduction = 0.4;
    from.mix = 0.5;

    record.calibrationGain = 9.0;
    record.lowLevel = 0.1;
    record.midLevel = 0.2;
    record.highLevel = 0.3;
    record.lowGainReduction = 0.6;
    record.midGainReduction = 0.7;
    record.highGainReduction = 0.8;
    record = from;

    EXPECT_EQ (0.5, record.mix) << "the copy took place";
    EXPECT_EQ (&owner, &record.owner);
    EXPECT_FALSE (record.linkGuard);
    EXPECT_EQ (9.0, record.calibrationGain);
    EXPECT_EQ (0.1, record.lowLevel);
    EXPECT_EQ (0.2, record.midLevel);
    EXPECT_EQ (0.3, record.highLevel);
    EXPECT_EQ (0.6, record.lowGainReduction);
    EXPECT_EQ (0.7, record.midGainReduction);
    EXPECT_EQ (0.8, record.highGainReduction);

    record.linkGuard = true;
    from.linkGuard = false;
    record = from;
    EXPECT_TRUE (record.linkGuard);
}

TEST_F (ChannelSettingsTest, ACopyOntoItselfChangesNothing)
{
    record.bands[2].gainDb.setTarget (9.0);
    record.mix = 0.4;
    const auto& self = record;
    record = self;

    EXPECT_EQ (0.4, record.mix);
    EXPECT_EQ (9.0, record.bands[2].gainDb.target);
    EXPECT_EQ (2.0, record.bands[2].gainDb.current);
    EXPECT_EQ (100, record.bands[2].gainDb.remaining);
}

TEST_F (ChannelSettingsTest, ADecibelControlHoldsBothForms)
{
    ChannelSettings::setDecibels (record.inLevelDb, record.inLevelLinear, 6.0);
    expectMovesFromTo (0.0, 6.0, record.inLevelDb);
    expectMovesFromTo (1.0, 1.9952623149688795, record.inLevelLinear);

    ChannelSettings::setDecibels (record.inLevelDb, record.inLevelLinear, -100.0);
    EXPECT_EQ (-100.0, record.inLevelDb.target);
    EXPECT_EQ (0.0, record.inLevelLinear.target);

    ChannelSettings::setDecibels (record.inLevelDb, record.inLevelLinear, -99.9);
    EXPECT_NEAR (1.0115794542598983e-5, record.inLevelLinear.target, 1.0e-19);
}

TEST_F (ChannelSettingsTest, RestingLandsAllNineteenSmoothers)
{
    const auto linear = linearSmoothersOf (record);
    const auto geometric = geometricSmoothersOf (record);
    ASSERT_EQ (19u, linear.size() + geometric.size());

    auto value = 3.0;

    for (auto* smoother : linear)
        smoother->setTarget (value += 1.0);

    for (auto* smoother : geometric)
        smoother->setTarget (value += 1.0);

    record.restSmoothers (4410);
    value = 3.0;

    for (const auto* smoother : linear)
    {
        EXPECT_EQ (value += 1.0, smoother->current);
        EXPECT_EQ (smoother->target, smoother->current);
        EXPECT_EQ (0, smoother->remaining);
        EXPECT_EQ (4410, smoother->length);
    }

    for (const auto* smoother : geometric)
    {
        EXPECT_EQ (value += 1.0, smoother->current);
        EXPECT_EQ (smoother->target, smoother->current);
        EXPECT_EQ (0, smoother->remaining);
        EXPECT_EQ (4410, smoother->length);
    }
}
