// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "dsp/DetectorCurves.h"
#include "dsp/SmoothedSVFilter.h"
#include "settings/ChannelSettings.h"
#include "settings/LinearSmoother.h"

/** What controls set in a band: circuit values, ramps, and the responses of the detector's filters.

    There are two sides. Whoever applies the settings plans on a BandControls<SVResponse>, which filters nothing; the
    band itself is a BandControls<SmoothedSVFilter>, and takes what was planned at the start of a block.

    Units    ohm, V, linear gains where no other is in the name.
    Threads  the owner's.
*/
template <typename DetectorFilter>
struct BandControls
{
    /** bandIndex: 0 low, 1 mid, 2 high; it picks the band's fields in ChannelSettings. */
    explicit BandControls (int bandIndex) noexcept;

    /** Turns what the user set into circuit values. */
    void applyBandSettings (const ChannelSettings& settings) noexcept;

    /** Detector high-pass: in at 20.01 Hz and above, out below. */
    void updateHighPass (double hz) noexcept;

    /** Detector tilt: 18 dB less below, 18 dB more above, so that the band listens to the top. */
    void setNiveau (bool on) noexcept;

    /** Takes a new period of the processing rate, in seconds, into the capacitors' coefficients. */
    void setPeriod (double newPeriod) noexcept;

    /** Takes what another side has: exactly, or as new targets for the ramps that run here. */
    template <typename OtherFilter>
    void follow (const BandControls<OtherFilter>& plan, bool exactly) noexcept;

    static constexpr double mainFarad = 0.000022, auxFarad = 0.000125; // the two capacitors
    static constexpr double auxLeakOhms = 68000.0;

    int bandIndex;
    double period = 1.0 / 44100.0; // of the processing rate, s

    const DetectorCurve* transferTable = &DetectorCurves::forRatio (0); // the ratio's curve
    double ratioFeedbackOhms = 39000.0, ratioGroundOhms = 3300.0;       // what a curve is made from; read by nothing
    double ratioParallelOhms = 3042.553191489362;

    double attackOhms = 270.0, recoveryOhms = 71900.0;
    bool autoRecovery = true;
    double attackCoefficient = 0.0, recoveryCoefficient = 0.0; // of the main capacitor
    double auxLeakCoef = 0.0;                                  // of the auxiliary one, through 68 kilohm
    double thresholdGain = 15.848931924611142;                 // linear, into the detector; 24 dB
    bool autoMakeup = false;
    bool bandActive = true; // the detector is in use

    LinearSmoother driveRamp { 31.622776601683793 }; // linear drive into the band, 30 dB
    LinearSmoother wetRamp { 1.0 };                  // gain of the compressed signal
    LinearSmoother dryRamp { 0.0 };                  // gain of the signal as it came
    LinearSmoother midSideRamp { 0.5 };

    // The record's values as they were last applied; hpfHz and niveau tell whether a filter has to change.
    double hpfHz = 20.0;
    bool nuke = false;
    bool niveau = true;
    double calibrationGain = 14.5075;

    DetectorFilter highPass { SVResponse::highPass };
    DetectorFilter lowShelf { SVResponse::lowShelf };
    DetectorFilter highShelf { SVResponse::highShelf };
};

template <typename DetectorFilter>
template <typename OtherFilter>
void BandControls<DetectorFilter>::follow (const BandControls<OtherFilter>& plan, bool exactly) noexcept
{
    period = plan.period;
    transferTable = plan.transferTable;
    ratioFeedbackOhms = plan.ratioFeedbackOhms;
    ratioGroundOhms = plan.ratioGroundOhms;
    ratioParallelOhms = plan.ratioParallelOhms;
    attackOhms = plan.attackOhms;
    recoveryOhms = plan.recoveryOhms;
    autoRecovery = plan.autoRecovery;
    attackCoefficient = plan.attackCoefficient;
    recoveryCoefficient = plan.recoveryCoefficient;
    auxLeakCoef = plan.auxLeakCoef;
    thresholdGain = plan.thresholdGain;
    autoMakeup = plan.autoMakeup;
    bandActive = plan.bandActive;
    driveRamp.follow (plan.driveRamp, exactly);
    wetRamp.follow (plan.wetRamp, exactly);
    dryRamp.follow (plan.dryRamp, exactly);
    midSideRamp.follow (plan.midSideRamp, exactly);
    hpfHz = plan.hpfHz;
    nuke = plan.nuke;
    niveau = plan.niveau;
    calibrationGain = plan.calibrationGain;
    highPass.follow (plan.highPass, exactly);
    lowShelf.follow (plan.lowShelf, exactly);
    highShelf.follow (plan.highShelf, exactly);
}

extern template struct BandControls<SVResponse>;
extern template struct BandControls<SmoothedSVFilter>;
