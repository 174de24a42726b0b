// SPDX-License-Identifier: GPL-3.0-or-later
// What the user set, turned into the circuit values of a band.
#include "dsp/BandCompressor.h"
#include "settings/Decibels.h"

#include <iterator>

namespace
{
// The labels on the panel do not match these as time constants; the resistors are what sounds.
constexpr double attackTable[] = { 10.0, 70.0, 270.0, 1400.0 };                    // ohm: "2uS" to "10mS"
constexpr double recoveryTable[] = { 8200.0, 39000.0, 82000.0, 180000.0, 3900.0 }; // ohm: "100mS" to "Auto"
constexpr int autoRecoveryRow = 4;

constexpr double nukeDriveDb = 15.0;       // more drive into the band
constexpr double nukeThresholdDb = 20.0;   // more sensitivity of the detector
constexpr double autoMakeupDriveDb = 30.0; // where Gain 0 puts it

template <int size>
bool isRow (int index, const double (&)[size]) noexcept
{
    return index >= 0 && index < size;
}

bool anotherBandIsSolo (const ChannelSettings& settings, int band) noexcept
{
    for (int b = 0; b < ChannelSettings::numBands; ++b)
        if (b != band && settings.bands[b].solo)
            return true;

    return false;
}
} // namespace

void BandCompressor::applyBandSettings (ChannelSettings settings) noexcept
{
    bandActive = true;

    const auto& band = settings.bands[bandIndex];
    const auto threshold = band.thresholdDb.target;
    const auto gain = band.gainDb.target;
    const auto muted = ! band.solo && anotherBandIsSolo (settings, bandIndex);

    midSideRamp.setTarget (band.midSide);

    // A row outside its table leaves the old part in place.
    if (isRow (band.attack, attackTable))
        attackOhms = attackTable[band.attack];

    if (isRow (band.recovery, recoveryTable))
        recoveryOhms = recoveryTable[band.recovery];

    autoRecovery = band.recovery == autoRecoveryRow;
    attackCoefficient = mainCapacitor.coefficient (attackOhms);
    recoveryCoefficient = mainCapacitor.coefficient (recoveryOhms);

    // Below 0 dB, Gain is the automatic make-up: the drive then stays where 0 dB puts it, nuke or not.
    autoMakeup = gain < 0.0;
    const auto driveDb =
        autoMakeup ? autoMakeupDriveDb : ((gain + (settings.nuke ? nukeDriveDb : 0.0)) + 19.0 - 20.0) + 31.0;
    driveRamp.setTarget (Decibels::toGain (driveDb));

    thresholdGain = Decibels::toGain ((20.0 - threshold) + (settings.nuke ? nukeThresholdDb : 0.0));

    if (band.ratio >= 0 && band.ratio < DetectorCurves::numCurves)
    {
        const auto& curve = DetectorCurves::forRatio (band.ratio);
        transferTable = &curve;
        ratioFeedbackOhms = curve.feedbackOhms;
        ratioGroundOhms = curve.groundOhms;
        ratioParallelOhms = curve.parallelOhms;
    }
    else
    {
        ratioParallelOhms = 1.0 / (1.0 / ratioFeedbackOhms + 1.0 / ratioGroundOhms);
    }

    wetRamp.setTarget (! muted && band.in ? 1.0 : 0.0);
    dryRamp.setTarget (! muted && ! band.in ? 1.0 : 0.0);
    bandActive = band.in && ! muted;

    if (hpfHz != settings.hpfHz)
    {
        updateHighPass (settings.hpfHz);
        hpfHz = settings.hpfHz;
    }

    nuke = settings.nuke;

    if (niveau != settings.niveau)
    {
        setNiveau (settings.niveau);
        niveau = settings.niveau;
    }

    calibrationGain = settings.calibrationGain;
}
