// SPDX-License-Identifier: GPL-3.0-or-later
#include "dsp/BandCompressor.h"
#include "processor/CorvaneQ7AudioProcessor.h"
#include "support/Signals.h"

#include <gtest/gtest.h>

#include <cmath>
#include <memory>

namespace
{
/** One band at 48 kHz, two channels, and a record at its defaults to be changed and applied. */
class BandSettingsMapping : public ::testing::Test
{
protected:
    BandSettingsMapping() { band.prepare (48000.0, 2, 512); }

    void apply() { band.applyBandSettings (settings); }

    ChannelSettings::Band& own() { return settings.bands[1]; }

    /** The coefficient of a resistance on the main capacitor. */
    static double coefficient (double ohms)
    {
        const auto T = 1.0 / 48000.0;
        return T / (0.000022 * ohms + T);
    }

    void runToRest()
    {
        juce::AudioBuffer<float> block (2, 512);

        for (int i = 0; i < 12; ++i) // 6144 samples, a ramp is 4800
        {
            block.clear();
            band.process (block.getArrayOfWritePointers(), 512);
        }
    }

    std::unique_ptr<CorvaneQ7AudioProcessor> processor = std::make_unique<CorvaneQ7AudioProcessor>();
    ChannelSettings settings { *processor };
    BandCompressor band { 1 };
};
} // namespace

TEST_F (BandSettingsMapping, AttackRowsAreResistances)
{
    const double ohms[] = { 10.0, 70.0, 270.0, 1400.0 };

    for (int row = 0; row < 4; ++row)
    {
        own().attack = row;
        apply();
        EXPECT_EQ (band.attackOhms, ohms[row]) << row;
        EXPECT_EQ (band.attackCoefficient, coefficient (ohms[row])) << row;
    }
}

TEST_F (BandSettingsMapping, RecoveryRowsAreResistancesAndTheLastIsAutomatic)
{
    const double ohms[] = { 8200.0, 39000.0, 82000.0, 180000.0, 3900.0 };

    for (int row = 0; row < 5; ++row)
    {
        own().recovery = row;
        apply();
        EXPECT_EQ (band.recoveryOhms, ohms[row]) << row;
        EXPECT_EQ (band.recoveryCoefficient, coefficient (ohms[row])) << row;
        EXPECT_EQ (band.autoRecovery, row == 4) << row;
    }
}

TEST_F (BandSettingsMapping, RowsOutsideATableLeaveTheOldPart)
{
    own().attack = 1;
    own().recovery = 4;
    apply();

    for (const auto row : { -1, 4, 5, 1000, -2147483647 })
    {
        own().attack = row;
        apply();
        EXPECT_EQ (band.attackOhms, 70.0) << row;
        EXPECT_EQ (band.attackCoefficient, coefficient (70.0)) << row;
    }

    for (const auto row : { -1, 5, 1000 })
    {
        own().recovery = row;
        apply();
        EXPECT_EQ (band.recoveryOhms, 3900.0) << row;
        EXPECT_EQ (band.recoveryCoefficient, coefficient (3900.0)) << row;
        EXPECT_FALSE (band.autoRecovery) << row << " is not the automatic row";
    }
}

TEST_F (BandSettingsMapping, RatioRowsSelectCurveAndResistors)
{
    struct Row
    {
        double feedback, ground, parallel;
    };
    const Row rows[] = { { 10000.0, 68.0, 67.54072308303536 },
                         { 18000.0, 910.0, 866.2083553675303 },
                         { 39000.0, 3300.0, 3042.553191489362 },
                         { 47000.0, 10000.0, 8245.61403508772 },
                         { 68000.0, 33000.0, 22217.821782178216 } };

    for (int row = 0; row < 5; ++row)
    {
        own().ratio = row;
        apply();
        EXPECT_EQ (band.transferTable, &DetectorCurves::forRatio (row));
        EXPECT_EQ (band.ratioFeedbackOhms, rows[row].feedback);
        EXPECT_EQ (band.ratioGroundOhms, rows[row].ground);
        EXPECT_EQ (band.ratioParallelOhms, rows[row].parallel);
    }
}

TEST_F (BandSettingsMapping, ARatioOutsideTheTableOnlyRecomputesTheParallelValue)
{
    own().ratio = 3;
    apply();

    for (const auto row : { -1, 5, 99 })
    {
        band.ratioFeedbackOhms = 3000.0;
        band.ratioGroundOhms = 6000.0;
        band.ratioParallelOhms = 0.0;
        own().ratio = row;
        apply();
        EXPECT_EQ (band.transferTable, &DetectorCurves::forRatio (3)) << row;
        EXPECT_EQ (band.ratioFeedbackOhms, 3000.0) << row;
        EXPECT_EQ (band.ratioGroundOhms, 6000.0) << row;
        EXPECT_DOUBLE_EQ (band.ratioParallelOhms, 2000.0) << row;
    }
}

TEST_F (BandSettingsMapping, GainRaisesTheDriveFromThirtyDecibels)
{
    for (const auto gain : { 0.0, 0.1, 2.0, 7.3, 20.0 })
    {
        own().gainDb.target = gain;
        apply();
        EXPECT_DOUBLE_EQ (band.driveRamp.target, std::pow (10.0, (30.0 + gain) * 0.05)) << gain;
        EXPECT_FALSE (band.autoMakeup) << gain;
    }
}

TEST_F (BandSettingsMapping, DriveIsSummedInItsOrder)
{
    // The order of the sum shows in the last bits of the target at some settings, so all of a control's grid is tried.
    int toldApart = 0;

    for (int step = 0; step <= 2000; ++step)
    {
        for (const auto nuke : { 0.0, 15.0 })
        {
            const auto gain = step * 0.01;
            settings.nuke = nuke != 0.0;
            own().gainDb.target = gain;
            band.driveRamp = LinearSmoother (1.0);
            apply();
            double db = gain + nuke;
            db += 19.0;
            db -= 20.0;
            db += 31.0;
            ASSERT_EQ (band.driveRamp.target, std::pow (10.0, db * 0.05)) << gain;
            toldApart += std::pow (10.0, db * 0.05) != std::pow (10.0, (gain + nuke + 30.0) * 0.05);
        }
    }

    EXPECT_GT (toldApart, 0);
}

TEST_F (BandSettingsMapping, NegativeGainIsAutomaticMakeupAtThirtyDecibels)
{
    for (const auto nuke : { false, true })
    {
        for (const auto gain : { -0.0001, -0.5, -1.0, -40.0 })
        {
            settings.nuke = nuke;
            own().gainDb.target = gain;
            apply();
            EXPECT_TRUE (band.autoMakeup) << gain;
            EXPECT_EQ (band.driveRamp.target, 31.622776601683793) << gain << ", nuke " << nuke;
        }
    }
}

TEST_F (BandSettingsMapping, GainOfExactlyZeroIsNotAutomatic)
{
    for (const auto zero : { 0.0, -0.0 })
    {
        own().gainDb.target = -1.0;
        apply();
        ASSERT_TRUE (band.autoMakeup);
        own().gainDb.target = zero;
        apply();
        EXPECT_FALSE (band.autoMakeup);
        EXPECT_EQ (band.driveRamp.target, 31.622776601683793);
    }
}

TEST_F (BandSettingsMapping, NukeRaisesDriveByFifteenAndThresholdByTwentyDecibels)
{
    for (const auto gain : { 0.0, 6.0, -1.0 })
    {
        own().gainDb.target = gain;
        settings.nuke = false;
        apply();
        const auto drive = band.driveRamp.target, threshold = band.thresholdGain;
        settings.nuke = true;
        apply();
        EXPECT_TRUE (band.nuke);
        EXPECT_NEAR (Signals::toDb (band.driveRamp.target / drive), gain < 0.0 ? 0.0 : 15.0, 1.0e-12) << gain;
        EXPECT_NEAR (Signals::toDb (band.thresholdGain / threshold), 20.0, 1.0e-12) << gain;
    }

    settings.nuke = false;
    apply();
    EXPECT_FALSE (band.nuke);
}

TEST_F (BandSettingsMapping, ThresholdIsAGainIntoTheDetector)
{
    for (const auto threshold : { -20.0, -4.0, 0.0, 0.7, 12.0, 20.0 })
    {
        own().thresholdDb.target = threshold;
        apply();
        EXPECT_EQ (band.thresholdGain, std::pow (10.0, (20.0 - threshold) * 0.05)) << threshold;
    }

    // At the default of -4 dB it is what the band is constructed with.
    own().thresholdDb.target = -4.0;
    apply();
    EXPECT_EQ (band.thresholdGain, 15.848931924611142);

    // Not above -100 dB is no gain at all.
    own().thresholdDb.target = 120.0;
    apply();
    EXPECT_EQ (band.thresholdGain, 0.0);
    own().thresholdDb.target = 119.9;
    apply();
    EXPECT_GT (band.thresholdGain, 0.0);
}

TEST_F (BandSettingsMapping, DriveNotAboveMinusOneHundredDecibelsIsNone)
{
    // No control gets there, but an infinitely negative sum would; auto catches it first, a NaN does not.
    own().gainDb.target = std::nan ("");
    apply();
    EXPECT_FALSE (band.autoMakeup);
    EXPECT_EQ (band.driveRamp.target, 0.0);
}

TEST_F (BandSettingsMapping, InAndSoloActThroughWetAndDry)
{
    struct Case
    {
        bool in, solo, otherSolo;
        double wet, dry;
        bool active;
        const char* what;
    };

    const Case cases[] = { { true, false, false, 1.0, 0.0, true, "in" },
                           { false, false, false, 0.0, 1.0, false, "out: passes its share" },
                           { true, true, false, 1.0, 0.0, true, "alone solo" },
                           { false, true, false, 0.0, 1.0, false, "solo and out: unprocessed, not muted" },
                           { true, true, true, 1.0, 0.0, true, "one of two solos" },
                           { false, true, true, 0.0, 1.0, false, "one of two solos, out" },
                           { true, false, true, 0.0, 0.0, false, "muted by another's solo" },
                           { false, false, true, 0.0, 0.0, false, "muted, and out anyway" } };

    for (const auto& c : cases)
    {
        for (const auto other : { 0, 2 })
        {
            settings.bands[0].solo = settings.bands[2].solo = false;
            settings.bands[other].solo = c.otherSolo;
            own().in = c.in;
            own().solo = c.solo;
            apply();
            EXPECT_EQ (band.wetRamp.target, c.wet) << c.what;
            EXPECT_EQ (band.dryRamp.target, c.dry) << c.what;
            EXPECT_EQ (band.bandActive, c.active) << c.what;
        }
    }
}

TEST_F (BandSettingsMapping, TwoSolosSoundAndTheThirdIsMuted)
{
    BandCompressor low (0), mid (1), high (2);
    BandCompressor* const bands[] = { &low, &mid, &high };

    for (int muted = 0; muted < 3; ++muted)
    {
        for (int b = 0; b < 3; ++b)
            settings.bands[b].solo = b != muted;

        for (int b = 0; b < 3; ++b)
        {
            bands[b]->prepare (48000.0, 2, 64);
            bands[b]->applyBandSettings (settings);
            EXPECT_EQ (bands[b]->wetRamp.target, b == muted ? 0.0 : 1.0) << b;
            EXPECT_EQ (bands[b]->dryRamp.target, 0.0) << b;
            EXPECT_EQ (bands[b]->bandActive, b != muted) << b;
        }
    }

    for (int b = 0; b < 3; ++b)
        settings.bands[b].solo = false;

    for (auto* b : bands)
    {
        b->applyBandSettings (settings);
        EXPECT_EQ (b->wetRamp.target, 1.0) << "with no solo nothing is muted";
    }
}

TEST_F (BandSettingsMapping, EachBandReadsItsOwnFields)
{
    for (int b = 0; b < 3; ++b)
    {
        settings.bands[b].attack = b;
        settings.bands[b].recovery = b + 1;
        settings.bands[b].ratio = b + 2;
        settings.bands[b].gainDb.target = b * 3.0;
        settings.bands[b].thresholdDb.target = b * 2.0;
        settings.bands[b].midSide = 0.25 * b;
        settings.bands[b].in = b != 1;
    }

    const double attacks[] = { 10.0, 70.0, 270.0 }, recoveries[] = { 39000.0, 82000.0, 180000.0 };

    for (int b = 0; b < 3; ++b)
    {
        BandCompressor one (b);
        one.prepare (48000.0, 2, 64);
        one.applyBandSettings (settings);
        EXPECT_EQ (one.attackOhms, attacks[b]);
        EXPECT_EQ (one.recoveryOhms, recoveries[b]);
        EXPECT_EQ (one.transferTable, &DetectorCurves::forRatio (b + 2));
        EXPECT_DOUBLE_EQ (one.driveRamp.target, std::pow (10.0, (30.0 + b * 3.0) * 0.05));
        EXPECT_DOUBLE_EQ (one.thresholdGain, std::pow (10.0, (20.0 - b * 2.0) * 0.05));
        EXPECT_EQ (one.midSideRamp.target, 0.25 * b);
        EXPECT_EQ (one.bandActive, b != 1);
    }
}

TEST_F (BandSettingsMapping, ChangesRampOverATenthOfASecond)
{
    apply();
    runToRest();
    own().midSide = 0.1;
    own().in = false;
    own().gainDb.target = 9.0;
    apply();

    for (const auto* ramp : { &band.midSideRamp, &band.wetRamp, &band.dryRamp, &band.driveRamp })
        EXPECT_EQ (ramp->remaining, 4800);
}

TEST_F (BandSettingsMapping, ARepeatedCallMovesNoRamp)
{
    own().midSide = 0.3;
    own().solo = true;
    own().in = false;
    own().gainDb.target = 5.0;
    apply();
    runToRest();

    for (int again = 0; again < 3; ++again)
    {
        apply();

        for (const auto* ramp : { &band.midSideRamp, &band.wetRamp, &band.dryRamp, &band.driveRamp })
            EXPECT_EQ (ramp->remaining, 0);

        EXPECT_NEAR (band.wetRamp.current, 0.0, 1.0e-11) << "where its steps ended";
        EXPECT_NEAR (band.midSideRamp.current, 0.3, 1.0e-11);
    }

    // One that comes while a ramp runs leaves it running.
    own().in = true;
    apply();
    juce::AudioBuffer<float> block (2, 100);
    block.clear();
    band.process (block.getArrayOfWritePointers(), 100);
    const auto current = band.wetRamp.current;
    apply();
    EXPECT_EQ (band.wetRamp.remaining, 4700);
    EXPECT_EQ (band.wetRamp.current, current);
}

TEST_F (BandSettingsMapping, HighPassIsRedesignedOnlyWhenItsFrequencyChanges)
{
    settings.hpfHz = 90.0;
    apply();
    EXPECT_EQ (band.hpfHz, 90.0);
    EXPECT_EQ (band.highPass.frequency, 90.0);
    EXPECT_EQ (band.highPass.mix.target, 1.0);
    EXPECT_EQ (band.highPass.mix.remaining, 4800);

    band.highPass.frequency = 1234.0;
    apply();
    EXPECT_EQ (band.highPass.frequency, 1234.0) << "nothing changed, so nothing was designed";

    settings.hpfHz = 20.0;
    apply();
    EXPECT_EQ (band.hpfHz, 20.0);
    EXPECT_EQ (band.highPass.mix.target, 0.0);
    EXPECT_EQ (band.highPass.frequency, 1234.0) << "switching off leaves the response";
}

TEST_F (BandSettingsMapping, NiveauIsSetOnlyWhenItChanges)
{
    apply();
    EXPECT_EQ (band.lowShelf.mix.target, 1.0);

    settings.niveau = false;
    apply();
    EXPECT_FALSE (band.niveau);
    EXPECT_EQ (band.lowShelf.mix.target, 0.0);
    EXPECT_EQ (band.highShelf.mix.target, 0.0);

    band.lowShelf.mix = LinearSmoother (0.75);
    apply();
    EXPECT_EQ (band.lowShelf.mix.target, 0.75) << "nothing changed, so nothing was set";

    settings.niveau = true;
    apply();
    EXPECT_TRUE (band.niveau);
    EXPECT_EQ (band.lowShelf.mix.target, 1.0);
    EXPECT_EQ (band.highShelf.mix.target, 1.0);
}

TEST_F (BandSettingsMapping, StoresItsCopies)
{
    settings.nuke = true;
    settings.niveau = false;
    settings.hpfHz = 77.0;
    settings.calibrationGain = 3.25;
    apply();
    EXPECT_TRUE (band.nuke);
    EXPECT_FALSE (band.niveau);
    EXPECT_EQ (band.hpfHz, 77.0);
    EXPECT_EQ (band.calibrationGain, 3.25);
}

TEST_F (BandSettingsMapping, TheDefaultRecordMatchesTheBandsOwnCopies)
{
    BandCompressor fresh (1);
    fresh.applyBandSettings (settings);
    EXPECT_EQ (fresh.highPass.frequency, 1000.0) << "an unchanged frequency designs nothing";
    EXPECT_EQ (fresh.lowShelf.frequency, 1000.0);
    EXPECT_EQ (fresh.attackOhms, 270.0);
    EXPECT_EQ (fresh.recoveryOhms, 3900.0);
    EXPECT_TRUE (fresh.autoRecovery);
    EXPECT_EQ (fresh.transferTable, &DetectorCurves::forRatio (2));
    EXPECT_DOUBLE_EQ (fresh.driveRamp.target, std::pow (10.0, 32.0 * 0.05)) << "Gain stands at 2 dB";
}
