// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "dsp/BandControls.h"
#include "dsp/ControlLaw.h"
#include "dsp/nvx/FilterCascade.h"
#include "dsp/RCSection.h"
#include "dsp/ScratchPool.h"

/** One band: a feedback compressor whose gain element is driven by a capacitor voltage, solved sample by sample.

    The band's audio goes two ways. The wet path runs through a fixed tone cascade and is multiplied by the gain. The
    detector path takes the audio before the cascade, reduces it to one channel, filters it and feeds the solver.
    There is no threshold, ratio or knee formula: a stored detector curve turns the rectified, gain-reduced signal
    into a voltage, resistors charge and discharge a capacitor, and a control law turns its voltage into a gain.

    Shape    channels x n float samples, in place; solver state and coefficients are double.
    Rate     the processing rate in Hz; T = 1 / rate in seconds.
    Latency  none.
    Threads  prepare and release when stopped; all else on audio. What controls ask for is planned elsewhere, on a
             BandControls of its own, and followed at the start of a block.
    Errors   none reported; more samples than prepared for is a caller's fault, asserted in debug.
*/
class BandCompressor : public BandControls<SmoothedSVFilter>
{
public:
    /** bandIndex: 0 low, 1 mid, 2 high; it picks the band's fields in ChannelSettings. */
    explicit BandCompressor (int bandIndex);

    void prepare (double internalRate, int numChannels, int internalBlockSize);

    /** Gives the scratch memory back; the band must be prepared again before it runs. */
    void release();
    bool isReady() const noexcept { return ready; }

    /** The band's share of the signal, in place: the three steps below, one after the other. */
    void process (float* const* bandChannels, int numSamples) noexcept;

    /** Step 1: control ramps, wet copies through the tone cascade, detector signal. */
    void makePaths (float* const* bandChannels, int numSamples) noexcept;

    /** Step 2: the per-sample solver, from detector and drive to the gain vector. It touches nothing of the audio. */
    void computeGain (const float* detector, const float* drive, float* gainOut, int numSamples) noexcept;

    /** Step 3: gain on the wet copies, plus the dry share, back into the band. */
    void applyGain (float* const* bandChannels, int numSamples) noexcept;

    /** Lets the capacitors relax for n processing-rate samples of a block that does not run the band. */
    void idleAdvance (int numSamples) noexcept;

    /** Averaged gain over the rest gain, linear: 1 at rest, below 1 when compressing. */
    double meterValue() const noexcept { return meterGain / restGain; }

    // ---- gain computer -----------------------------------------------------------------------
    static constexpr double floorVoltage = 0.1; // V; the main capacitor's rest and the law's lowest argument
    static constexpr int maxPasses = 6;         // of the solver: the sixth value stands, converged or not

    const ControlLaw& law;
    RCSection mainCapacitor { mainFarad, 82000.0, floorVoltage };
    RCSection auxCapacitor { auxFarad, auxLeakOhms, 0.0 };

    double restGain;                                         // the law at the floor voltage, -33.702 dB
    double lastGain = 1.0;                                   // the solver's first guess
    double makeupSmooth = 1.0, makeupA = 0.0, makeupB = 1.0; // automatic make-up, 2 s
    double meterGain, meterA = 0.0, meterB = 1.0;            // averaged gain, 0.4 s

    // ---- signal path -------------------------------------------------------------------------
    int channels = 0;
    double rate = 44100.0; // processing rate, Hz

    NVX::FilterCascade toneCascade; // the response of the unit's audio path

private:
    void buildToneCascade();
    void makeDetector (float* const* bandChannels, int numSamples) noexcept;
    void applyMidSide (float* const* bandChannels, int numSamples) noexcept;

    // Scratch vectors: the wet copy of each channel, then these, counted from the number of channels on.
    enum Vector : int
    {
        detectorVector,
        driveVector,
        wetVector,
        dryVector,
        gainVector,
        reservedVector,
        midShareVector,
        sideShareVector,
        midGainVector,
        sideGainVector,
        numVectors
    };
    float* vector (Vector which) noexcept { return pool[channels + which]; }

    bool ready = false;
    bool midSideActive = false; // of the block in progress
    ScratchPool pool;
};
