// SPDX-License-Identifier: GPL-3.0-or-later
// What the user set, turned into the circuit values of a band.
#include "dsp/BandControls.h"
#include "dsp/RCSection.h"
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

template <typename DetectorFilter>
BandControls<DetectorFilter>::BandControls (int index) noexcept : bandIndex (index)
{
    setPeriod (period);
}

template <typename DetectorFilter>
void BandControls<DetectorFilter>::setPeriod (double newPeriod) noexcept
{
    period = newPeriod;
    attackCoefficient = RCSection::coefficientOf (mainFarad, attackOhms, period);
    recoveryCoefficient = RCSection::coefficientOf (mainFarad, recoveryOhms, period);
    auxLeakCoef = RCSection::coefficientOf (auxFarad, auxLeakOhms, period);
}

template <typename DetectorFilter>
void BandControls<DetectorFilter>::applyBandSettings (const ChannelSettings& settings) noexcept
{
    const auto& band = settings.bands[bandIndex];
    const double threshold = band.thresholdDb.target;
    const double gain = band.gainDb.target;
    const int attack = band.attack, recovery = band.recovery, ratio = band.ratio;
    const auto muted = ! band.solo && anotherBandIsSolo (settings, bandIndex);

    midSideRamp.setTarget (band.midSide);

    // A row outside its table leaves the old part in place.
    if (isRow (attack, attackTable))
        attackOhms = attackTable[attack];

    if (isRow (recovery, recoveryTable))
        recoveryOhms = recoveryTable[recovery];

    autoRecovery = recovery == autoRecoveryRow;
    setPeriod (period);

    // Below 0 dB, Gain is the automatic make-up: the drive then stays where 0 dB puts it, nuke or not.
    autoMakeup = gain < 0.0;
    const auto driveDb =
        autoMakeup ? autoMakeupDriveDb : ((gain + (settings.nuke ? nukeDriveDb : 0.0)) + 19.0 - 20.0) + 31.0;
    driveRamp.setTarget (Decibels::toGain (driveDb));

    thresholdGain = Decibels::toGain ((20.0 - threshold) + (settings.nuke ? nukeThresholdDb : 0.0));

    if (ratio >= 0 && ratio < DetectorCurves::numCurves)
    {
        const auto& curve = DetectorCurves::forRatio (ratio);
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

template <typename DetectorFilter>
void BandControls<DetectorFilter>::updateHighPass (double hz) noexcept
{
    if (ChannelSettings::highPassIsIn (hz))
    {
        highPass.setResponse (SVResponse::highPass, hz, 1.0, 1.0);
        highPass.mix.setTarget (1.0);
    }
    else
    {
        highPass.mix.setTarget (0.0);
    }
}

template <typename DetectorFilter>
void BandControls<DetectorFilter>::setNiveau (bool on) noexcept
{
    if (on)
    {
        lowShelf.setResponse (SVResponse::lowShelf, 125.0, 0.3, 0.12589254117941673);  // -18 dB
        highShelf.setResponse (SVResponse::highShelf, 8000.0, 0.3, 7.943282347242816); // +18 dB
    }

    lowShelf.mix.setTarget (on ? 1.0 : 0.0);
    highShelf.mix.setTarget (on ? 1.0 : 0.0);
}

template struct BandControls<SVResponse>;
template struct BandControls<SmoothedSVFilter>;
