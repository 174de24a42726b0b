// SPDX-License-Identifier: GPL-3.0-or-later
#include "settings/ChannelSettings.h"

#include "settings/Decibels.h"

#include <algorithm>

namespace
{
// In, Out and Master go beyond their ranges when a host sends them there; their gain must stay a number that the audio
// path can carry and a ramp can come back from.
constexpr double highestGain = 1.0e12; // 240 dB

double gainOf (double db) noexcept { return std::min (Decibels::toGain (db), highestGain); }

/** Sets both forms. Another thread may set the same control meanwhile: whoever wrote the decibels last must have
    written the gain last too, so each looks again until the decibels are the ones that its gain was made of. */
void setPair (Setpoint& db, Setpoint& linear, double newDb, double newGain) noexcept
{
    db.setTarget (newDb);
    linear.setTarget (newGain);

    for (auto written = newDb; ! std::isnan (written);)
    {
        const auto now = db.target.loadInOrder();

        if (now == written)
            break;

        linear.setTarget (gainOf (now));
        written = now;
    }
}

/** Master Gain, In Level and Out Level travel by their gain: it is the value that the audio path uses. */
void copyByGain (Setpoint& db, Setpoint& linear, const Setpoint& source) noexcept
{
    const double gain = source.target;
    setPair (db, linear, Decibels::fromGain (gain), gain);
}
} // namespace

void ChannelSettings::setDecibels (Setpoint& db, Setpoint& linear, double value) noexcept
{
    setPair (db, linear, value, gainOf (value));
}

// A record owns nothing that assigning it to itself could lose: no case of its own.
// NOLINTNEXTLINE(bugprone-unhandled-self-assignment)
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
