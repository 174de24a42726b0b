// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "settings/Setpoint.h"
#include "settings/SettingsOwner.h"
#include "settings/Shared.h"

/** The record of all control values and meter outputs: the currency between all parts of the system.

    Seventeen exist for the life of a processor: the two slots behind A and B, and the fifteen programs. Controls
    write it, and whoever shows, stores or applies the settings reads it, on any thread: each field is whole at any
    time. A decibel control stands here in its two forms; the ramps that go to them belong to the engine.

    A new record holds the program "Default".

    Threads  any. Two that set one control at once leave one of the two values, in both of its forms.
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
        Shared<int> meter = meterControl;
        Shared<bool> in = true;
        Shared<bool> solo = false;
        Shared<double> midSide = 0.5; // 0 mid, 0.5 off, 1 side
        Setpoint gainDb { 2.0 };      // dB; below 0 is automatic make-up
        Setpoint gainLinear { 1.2589254117941673 };
        Shared<int> ratio = 2;         // row 0 to 4: 1.5:1, 2:1, 3:1, 4:1, 6:1
        Setpoint thresholdDb { -4.0 }; // dB
        Setpoint thresholdLinear { 0.6309573444801932 };
        Shared<int> attack = 2;   // row 0 to 3
        Shared<int> recovery = 4; // row 0 to 4; 4 is automatic
    };

    explicit ChannelSettings (SettingsOwner& ownerToUse) noexcept : owner (ownerToUse) {}
    ChannelSettings (const ChannelSettings&) = default;
    ~ChannelSettings() = default;

    /** The copy rule of programs and slots: values are copied, and what has a ramp gets a target. `owner`,
        `calibrationGain` and the meter outputs belong to the slot and stay as they are. */
    ChannelSettings& operator= (const ChannelSettings& source) noexcept;

    /** Sets both forms of a decibel control: dB, and 10^(dB * 0.05) or 0 at -100 dB and below. */
    static void setDecibels (Setpoint& db, Setpoint& linear, double value) noexcept;

    static constexpr int numBands = 3;
    static constexpr double lowestHighPassHz = 20.01; // from here up the detector high-pass is in; below it is "OFF"

    static constexpr bool highPassIsIn (double hz) noexcept { return hz >= lowestHighPassHz; }

    SettingsOwner& owner;

    Band bands[numBands]; // Low, Mid, High

    Shared<double> mix = 1.0;    // wet share, 0 to 1
    Shared<double> hpfHz = 20.0; // detector high-pass
    Setpoint masterGainDb { 0.0 };
    Setpoint masterGainLinear { 1.0 };
    Shared<double> lowXOverHz = 200.0;
    Shared<double> highXOverHz = 5000.0;
    Shared<bool> nuke = false;
    Shared<bool> niveau = true;
    Shared<bool> link = false;
    Setpoint bypass { 0.0 }; // 0 or 1
    Setpoint inLevelDb { 0.0 };
    Setpoint inLevelLinear { 1.0 };
    Setpoint outLevelDb { 0.0 };
    Setpoint outLevelLinear { 1.0 };
    Shared<double> calibrationGain = 14.5075; // linear; full scale to circuit level, about 22 dBu

    // Written by audio; linear, levels relative to +4 dBu.
    Shared<double> lowLevel = 0.0, lowGainReduction = 1.0;
    Shared<double> midLevel = 0.0, midGainReduction = 1.0;
    Shared<double> highLevel = 0.0, highGainReduction = 1.0;

    /** The meter outputs by band: 0 low, 1 mid, 2 high. */
    Shared<double>& level (int band) noexcept { return band == 0 ? lowLevel : band == 1 ? midLevel : highLevel; }
    Shared<double>& gainReduction (int band) noexcept
    {
        return band == 0 ? lowGainReduction : band == 1 ? midGainReduction : highGainReduction;
    }
};
