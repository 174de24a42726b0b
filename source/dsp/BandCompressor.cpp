// SPDX-License-Identifier: GPL-3.0-or-later
#include "dsp/BandCompressor.h"

#include "dsp/VectorOps.h"

#include <algorithm>
#include <cassert>
#include <cmath>

BandCompressor::BandCompressor (int index)
    : BandControls (index), law (ControlLaw::shared()), restGain (law (static_cast<float> (floorVoltage))),
      meterGain (restGain)
{
}

void BandCompressor::prepare (double internalRate, int numChannels, int internalBlockSize)
{
    rate = internalRate;
    channels = numChannels;

    buildToneCascade();

    mainCapacitor.prepare (internalRate);
    auxCapacitor.prepare (internalRate);
    setPeriod (mainCapacitor.T);

    updateHighPass (hpfHz);
    highPass.prepare (internalRate, 1, internalBlockSize);
    setNiveau (niveau);
    lowShelf.prepare (internalRate, 1, internalBlockSize);
    highShelf.prepare (internalRate, 1, internalBlockSize);

    lastGain = 1.0;

    // The meter goes on from where it stood, but not from an overload that left no number.
    if (! std::isfinite (meterGain))
        meterGain = restGain;

    const auto length = rampLengthFor (internalRate);

    for (auto* ramp : { &driveRamp, &wetRamp, &dryRamp, &midSideRamp })
        ramp->restAtTarget (length);

    const auto T = 1.0 / internalRate;
    meterA = 1.0 - std::exp (-T / 0.4);
    meterB = 1.0 - meterA;
    makeupA = 1.0 - std::exp (-0.5 * T);
    makeupB = 1.0 - makeupA;
    makeupSmooth = 1.0;

    pool.grow (numChannels + numVectors, internalBlockSize);
    ready = true;
}

void BandCompressor::buildToneCascade()
{
    struct Row
    {
        int type;
        double hz, q, gain;
    };

    // clang-format off
    constexpr Row rows[] = {
        { NVX::svHighPass,    9.5,     0.796, 1.0 },
        { NVX::svBell,        22.5,    5.0,   0.9931160484209338 },    // -0.06 dB
        { NVX::svBell,        40.0,    0.7,   1.0069316688518042 },    // +0.06 dB
        { NVX::svBell,        230.0,   0.3,   0.9959785837251127 },    // -0.035 dB
        { NVX::iirHighShelf,  12000.0, 0.5,   0.954992586021436 },     // -0.4 dB
        { NVX::iirHighShelf,  20000.0, 1.2,   0.9772372209558107 }     // -0.2 dB
    };
    // clang-format on

    toneCascade.clearFilters();

    // Above half the rate the shelves are unstable; at host rates of 44.1 kHz and above the limit changes nothing.
    for (const auto& row : rows)
        toneCascade.addFilter (row.type, std::min (row.hz, 0.49 * rate), row.q, row.gain);

    toneCascade.setSampleRate (channels + 1, rate);
}

void BandCompressor::release()
{
    pool.release();
    highPass.release();
    lowShelf.release();
    highShelf.release();
    ready = false;
}

void BandCompressor::process (float* const* bandChannels, int numSamples) noexcept
{
    makePaths (bandChannels, numSamples);
    computeGain (vector (detectorVector), vector (driveVector), vector (gainVector), numSamples);
    applyGain (bandChannels, numSamples);
}

void BandCompressor::makePaths (float* const* bandChannels, int numSamples) noexcept
{
    assert (ready && numSamples <= pool.length());

    driveRamp.fill (vector (driveVector), numSamples);
    wetRamp.fill (vector (wetVector), numSamples);
    dryRamp.fill (vector (dryVector), numSamples);

    // Exactly one half at rest is the plain path.
    midSideActive = channels == 2 && (midSideRamp.target != 0.5 || midSideRamp.remaining != 0);

    if (midSideActive)
    {
        auto* sideShare = vector (sideShareVector);
        auto* midShare = vector (midShareVector);
        midSideRamp.fill (sideShare, numSamples);

        for (int i = 0; i < numSamples; ++i)
            midShare[i] = 1.0f - sideShare[i];

        const auto* left = bandChannels[0];
        const auto* right = bandChannels[1];
        auto* mid = pool[0];
        auto* side = pool[1];

        VectorOps::add (left, right, mid, numSamples);
        VectorOps::multiplyByConstant (mid, 0.5f, mid, numSamples);
        VectorOps::subtractFrom (right, left, side, numSamples);
        VectorOps::multiplyByConstant (side, 0.5f, side, numSamples);
    }
    else
    {
        for (int c = 0; c < channels; ++c)
            VectorOps::copy (bandChannels[c], pool[c], numSamples);
    }

    for (int c = 0; c < channels; ++c)
        toneCascade.process (pool[c], numSamples, c);

    makeDetector (bandChannels, numSamples);
}

void BandCompressor::makeDetector (float* const* bandChannels, int numSamples) noexcept
{
    auto* detector = vector (detectorVector);
    VectorOps::clear (detector, numSamples);

    if (midSideActive)
    {
        // The ends of the control listen to the left and the right channel themselves: that is how the control works.
        const auto* left = bandChannels[0];
        const auto* right = bandChannels[1];
        const auto* leftShare = vector (midShareVector);
        const auto* rightShare = vector (sideShareVector);

        for (int i = 0; i < numSamples; ++i)
            detector[i] = left[i] * leftShare[i] + right[i] * rightShare[i];
    }
    else
    {
        for (int c = 0; c < channels; ++c)
            VectorOps::add (detector, bandChannels[c], detector, numSamples);

        if (channels > 0)
            VectorOps::multiplyByConstant (detector, static_cast<float> (1.0 / channels), detector, numSamples);
    }

    // Below its lowest frequency the high-pass is skipped outright: no fade, and its mix stays where it stood.
    if (ChannelSettings::highPassIsIn (hpfHz))
        highPass.process (&detector, numSamples);

    lowShelf.process (&detector, numSamples);
    highShelf.process (&detector, numSamples);
}

void BandCompressor::applyGain (float* const* bandChannels, int numSamples) noexcept
{
    if (midSideActive)
    {
        applyMidSide (bandChannels, numSamples);
        return;
    }

    for (int c = 0; c < channels; ++c)
    {
        auto* wet = pool[c];
        VectorOps::multiply (wet, vector (gainVector), wet, numSamples);
        VectorOps::multiply (wet, vector (wetVector), wet, numSamples);

        // The dry share is the channel as it came, without the tone cascade.
        VectorOps::multiplyAdd (bandChannels[c], vector (dryVector), wet, bandChannels[c], numSamples);
    }
}

void BandCompressor::applyMidSide (float* const* bandChannels, int numSamples) noexcept
{
    auto* mid = pool[0];
    auto* side = pool[1];
    const auto* gain = vector (gainVector);
    const auto* wet = vector (wetVector);
    const auto* dry = vector (dryVector);
    const auto* midShare = vector (midShareVector);
    const auto* sideShare = vector (sideShareVector);
    auto* midGain = vector (midGainVector);
    auto* sideGain = vector (sideGainVector);
    auto* left = bandChannels[0];
    auto* right = bandChannels[1];

    // Here the dry share has passed the cascade and is in mid/side form.
    VectorOps::multiply (mid, dry, left, numSamples);
    VectorOps::multiply (side, dry, right, numSamples);

    const auto toLinear = [] (float db) { return db > -100.0f ? std::pow (10.0f, db * 0.05f) : 0.0f; };

    // Towards 0 the side's gain fades in decibels to 0 dB, towards 1 the mid's; at one half both have all of it.
    for (int i = 0; i < numSamples; ++i)
    {
        const auto gainDb = gain[i] > 0.0f ? std::max (20.0f * std::log10 (gain[i]), -100.0f) : -100.0f;
        midGain[i] = toLinear (gainDb * std::min (2.0f * midShare[i], 1.0f));
        sideGain[i] = toLinear (gainDb * std::min (2.0f * sideShare[i], 1.0f));
    }

    VectorOps::multiply (mid, midGain, mid, numSamples);
    VectorOps::multiplyAdd (mid, wet, left, mid, numSamples);
    VectorOps::multiply (side, sideGain, side, numSamples);
    VectorOps::multiplyAdd (side, wet, right, side, numSamples);

    VectorOps::add (mid, side, left, numSamples);
    VectorOps::subtractFrom (side, mid, right, numSamples);
}
