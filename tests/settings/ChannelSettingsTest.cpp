// SPDX-License-Identifier: GPL-3.0-or-later
#include "settings/ChannelSettings.h"

#include "processor/CorvaneQ7AudioProcessor.h"
#include "settings/Decibels.h"

#include <gtest/gtest.h>

#include <thread>

namespace
{
class ChannelSettingsTest : public ::testing::Test
{
protected:
    CorvaneQ7AudioProcessor owner;
    ChannelSettings record { owner };
    ChannelSettings source { owner };
};

void expectHolds (double value, const Setpoint& setpoint)
{
    EXPECT_EQ (value, setpoint.target);
    EXPECT_EQ (0u, setpoint.timesSet());
}

void expectSetTo (double value, const Setpoint& setpoint)
{
    EXPECT_DOUBLE_EQ (value, setpoint.target);
    EXPECT_EQ (1u, setpoint.timesSet());
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
        expectHolds (2.0, band.gainDb);
        expectHolds (1.2589254117941673, band.gainLinear);
        EXPECT_EQ (2, band.ratio);
        expectHolds (-4.0, band.thresholdDb);
        expectHolds (0.6309573444801932, band.thresholdLinear);
        EXPECT_EQ (2, band.attack);
        EXPECT_EQ (4, band.recovery);
    }
}

TEST_F (ChannelSettingsTest, ANewRecordHoldsTheProgramDefaultInTheGlobalControls)
{
    EXPECT_EQ (1.0, record.mix);
    EXPECT_EQ (20.0, record.hpfHz);
    expectHolds (0.0, record.masterGainDb);
    expectHolds (1.0, record.masterGainLinear);
    EXPECT_EQ (200.0, record.lowXOverHz);
    EXPECT_EQ (5000.0, record.highXOverHz);
    EXPECT_FALSE (record.nuke);
    EXPECT_TRUE (record.niveau);
    EXPECT_FALSE (record.link);
    expectHolds (0.0, record.bypass);
    expectHolds (0.0, record.inLevelDb);
    expectHolds (1.0, record.inLevelLinear);
    expectHolds (0.0, record.outLevelDb);
    expectHolds (1.0, record.outLevelLinear);
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
        expectSetTo (6.0 + b, to.gainDb);
        expectSetTo (std::pow (10.0, (6.0 + b) * 0.05), to.gainLinear);
        expectSetTo (-20.0 - b, to.thresholdDb);
        expectSetTo (std::pow (10.0, (-20.0 - b) * 0.05), to.thresholdLinear);
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

    expectSetTo (6.020599913279624, record.masterGainDb);
    expectSetTo (2.0, record.masterGainLinear);
    expectSetTo (-6.020599913279624, record.inLevelDb);
    expectSetTo (0.5, record.inLevelLinear);
    expectSetTo (-20.0, record.outLevelDb);
    expectSetTo (0.1, record.outLevelLinear);
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

    expectSetTo (1.0, record.bypass);
}

TEST_F (ChannelSettingsTest, ACopySetsEachTargetOnce)
{
    // Whether a ramp begins anew is the ramp's matter: a copy of equal settings sets targets too.
    record = source;

    for (const auto* setpoint : { &record.masterGainDb, &record.masterGainLinear, &record.bypass, &record.inLevelDb,
                                  &record.inLevelLinear, &record.outLevelDb, &record.outLevelLinear })
        EXPECT_EQ (1u, setpoint->timesSet());
}

TEST_F (ChannelSettingsTest, TwoThreadsOnOneControlLeaveOneValueInBothForms)
{
    constexpr int changes = 200000;

    const auto setOften = [this] (double first, double second)
    {
        for (int i = 0; i < changes; ++i)
            ChannelSettings::setDecibels (record.inLevelDb, record.inLevelLinear, i % 2 == 0 ? first : second);
    };

    for (int round = 0; round < 5; ++round)
    {
        std::thread other ([&] { setOften (1.0, 2.0); });
        setOften (3.0, 4.0);
        other.join();

        EXPECT_EQ (Decibels::toGain (record.inLevelDb.target), record.inLevelLinear.target);
    }
}

TEST_F (ChannelSettingsTest, ACopyLeavesWhatBelongsToTheSlot)
{
    CorvaneQ7AudioProcessor other;
    ChannelSettings from (other);
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
    EXPECT_EQ (9.0, record.calibrationGain);
    EXPECT_EQ (0.1, record.lowLevel);
    EXPECT_EQ (0.2, record.midLevel);
    EXPECT_EQ (0.3, record.highLevel);
    EXPECT_EQ (0.6, record.lowGainReduction);
    EXPECT_EQ (0.7, record.midGainReduction);
    EXPECT_EQ (0.8, record.highGainReduction);
}

TEST_F (ChannelSettingsTest, ACopyOntoItselfChangesNothing)
{
    record.bands[2].gainDb.setTarget (9.0);
    record.mix = 0.4;
    const auto& self = record;
    record = self;

    EXPECT_EQ (0.4, record.mix);
    EXPECT_EQ (9.0, record.bands[2].gainDb.target);
}

TEST_F (ChannelSettingsTest, ADecibelControlHoldsBothForms)
{
    ChannelSettings::setDecibels (record.inLevelDb, record.inLevelLinear, 6.0);
    expectSetTo (6.0, record.inLevelDb);
    expectSetTo (1.9952623149688795, record.inLevelLinear);

    ChannelSettings::setDecibels (record.inLevelDb, record.inLevelLinear, -100.0);
    EXPECT_EQ (-100.0, record.inLevelDb.target);
    EXPECT_EQ (0.0, record.inLevelLinear.target);

    ChannelSettings::setDecibels (record.inLevelDb, record.inLevelLinear, -99.9);
    EXPECT_NEAR (1.0115794542598983e-5, record.inLevelLinear.target, 1.0e-19);
}
