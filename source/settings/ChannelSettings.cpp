// SPDX-License-Identifier: GPL-3.0-or-later
#include "settings/ChannelSettings.h"

#include "settings/Decibels.h"

#include <algorithm>

namespace
{
/** Master Gain, In Level and Out Level travel by their gain: it is the value that the audio path uses. */
void copyByGain (LinearSmoother& db, GeometricSmoother& linear, const GeometricSmoother& source) noexcept
{
    const auto gain = source.target;
    db.setTarget (Decibels::fromGain (gain));
    linear.setTarget (gain);
}
} // namespace

void ChannelSettings::setDecibels (LinearSmoother& db, GeometricSmoother& linear, double value) noexcept
{
    // In, Out and Master go beyond their ranges when a host sends them there; their gain must stay a number that the
    // audio path can carry and a ramp can come back from.
    constexpr double highestGain = 1.0e12; // 240 dB

    db.setTarget (value);
    linear.setTarget (std::min (Decibels::toGain (value), highestGain));
}

ChannelSettings& ChannelSettings::operator= (const ChannelSettings& source) noexcept
{
    for (int b = 0; b < numBands; ++b)
    {
        auto& to = bands[b];
        const auto& from = source.bands[b];

        to.meter = from.meter;
        to.in = from.in;
        to.solo = from.solo;
        to.midSide = from.midSide;
        to.ratio = from.ratio;
        to.attack = from.attack;
        to.recovery = from.recovery;
        setDecibels (to.gainDb, to.gainLinear, from.gainDb.target);
        setDecibels (to.thresholdDb, to.thresholdLinear, from.thresholdDb.target);
    }

    mix = source.mix;
    hpfHz = source.hpfHz;
    copyByGain (masterGainDb, masterGainLinear, source.masterGainLinear);
    lowXOverHz = source.lowXOverHz;
    highXOverHz = source.highXOverHz;
    nuke = source.nuke;
    niveau = source.niveau;
    link = source.link;
    bypass.setTarget (source.bypass.target);
    copyByGain (inLevelDb, inLevelLinear, source.inLevelLinear);
    copyByGain (outLevelDb, outLevelLinear, source.outLevelLinear);

    return *this;
}

void ChannelSettings::restSmoothers (std::uint16_t length) noexcept
{
    for (auto& band : bands)
    {
        band.gainDb.restAtTarget (length);
        band.gainLinear.restAtTarget (length);
        band.thresholdDb.restAtTarget (length);
        band.thresholdLinear.restAtTarget (length);
    }

    for (auto* smoother : { &masterGainDb, &bypass, &inLevelDb, &outLevelDb })
        smoother->restAtTarget (length);

    for (auto* smoother : { &masterGainLinear, &inLevelLinear, &outLevelLinear })
        smoother->restAtTarget (length);
}
