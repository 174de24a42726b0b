// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "settings/GeometricSmoother.h"
#include "settings/LinearSmoother.h"
#include "settings/SettingsOwner.h"

/** The record of all control values and meter outputs: the currency between all parts of the system.

    Seventeen exist for the life of a processor: the two slots behind A and B, and the fifteen programs. Controls
    write it and the audio path reads it with no lock between them; what would click is carried by a smoother. Of the
    smoothers, the audio path advances `inLevelLinear`, `outLevelLinear` and `masterGainLinear`; the others hold a
    value in its two forms and only their targets are read.

    A new record holds the program "Default".

    Threads  written on any, read on audio: plain reads and writes by design.
*/
struct ChannelSettings
{
    /** What a band's meter shows. */
    enum MeterMode : int
    {
        meterIn = 0,
        meterControl = 1,
        meterOut = 2
    };

    struct Band
    {
        int meter = meterControl;
        bool in = true;
        bool solo = false;
        double midSide = 0.5;          // 0 mid, 0.5 off, 1 side
        LinearSmoother gainDb { 2.0 }; // dB; below 0 is automatic make-up
        GeometricSmoother gainLinear { 1.2589254117941673 };
        int ratio = 2;                       // row 0 to 4: 1.5:1, 2:1, 3:1, 4:1, 6:1
        LinearSmoother thresholdDb { -4.0 }; // dB
        GeometricSmoother thresholdLinear { 0.6309573444801932 };
        int attack = 2;   // row 0 to 3
        int recovery = 4; // row 0 to 4; 4 is automatic
    };

    explicit ChannelSettings (SettingsOwner& ownerToUse) noexcept : owner (ownerToUse) {}
    ChannelSettings (const ChannelSettings&) = default;
    ~ChannelSettings() = default;

    /** The copy rule of programs and slots: plain fields are copied, smoothers get targets and ramp there.
        `owner`, `linkGuard`, `calibrationGain` and the meter outputs belong to the slot and stay as they are. */
    ChannelSettings& operator= (const ChannelSettings& source) noexcept;

    /** Lands all nineteen smoothers on their targets with a new ramp length in steps. Stopped. */
    void restSmoothers (std::uint16_t length) noexcept;

    /** Sets both forms of a decibel control: dB, and 10^(dB * 0.05) or 0 at -100 dB and below. */
    static void setDecibels (LinearSmoother& db, GeometricSmoother& linear, double value) noexcept;

    static constexpr int numBands = 3;
    static constexpr double lowestHighPassHz = 20.01; // below it the detector's high-pass is off

    SettingsOwner& owner;
    bool linkGuard = false; // true while a linked change is forwarded

    Band bands[numBands]; // Low, Mid, High

    double mix = 1.0;    // wet share, 0 to 1
    double hpfHz = 20.0; // detector high-pass
    LinearSmoother masterGainDb { 0.0 };
    GeometricSmoother masterGainLinear { 1.0 };
    double lowXOverHz = 200.0;
    double highXOverHz = 5000.0;
    bool nuke = false;
    bool niveau = true;
    bool link = false;
    LinearSmoother bypass { 0.0 }; // 0 or 1, read by its target
    LinearSmoother inLevelDb { 0.0 };
    GeometricSmoother inLevelLinear { 1.0 };
    LinearSmoother outLevelDb { 0.0 };
    GeometricSmoother outLevelLinear { 1.0 };
    double calibrationGain = 14.5075; // linear; full scale to circuit level, about 22 dBu

    double lowLevel = 0.0, lowGainReduction = 1.0; // written by audio; linear, levels relative to +4 dBu
    double midLevel = 0.0, midGainReduction = 1.0;
    double highLevel = 0.0, highGainReduction = 1.0;

    /** The meter outputs by band: 0 low, 1 mid, 2 high. */
    double& level (int band) noexcept { return band == 0 ? lowLevel : band == 1 ? midLevel : highLevel; }
    double& gainReduction (int band) noexcept
    {
        return band == 0 ? lowGainReduction : band == 1 ? midGainReduction : highGainReduction;
    }
};
