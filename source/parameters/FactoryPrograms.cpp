// SPDX-License-Identifier: GPL-3.0-or-later
#include "parameters/FactoryPrograms.h"

namespace
{
struct BandRow
{
    double gainDb; // -1 is automatic make-up
    int ratio;
    double thresholdDb;
    int attack, recovery;
};

struct ProgramRow
{
    const char* name;
    BandRow low, mid, high;
    double mix, hpfHz, masterDb, lowXOverHz, highXOverHz;
    bool nuke, niveau, link;
    double inLevelDb, outLevelDb;
};

// clang-format off
constexpr ProgramRow programs[FactoryPrograms::numPrograms] = {
    { "Default",
      { 2, 2, -4, 2, 4 }, { 2, 2, -4, 2, 4 }, { 2, 2, -4, 2, 4 },
      1.0, 20, 0, 200, 5000, false, true, false, 0, 0 },
    { "808 Clap Fat",
      { 13, 2, -12, 2, 1 }, { 3, 2, -14, 3, 0 }, { 6, 2, -10, 3, 1 },
      1.0, 20, -2, 316, 4386, false, true, false, 0, 0 },
    { "808 Kick Knock",
      { 4, 2, -8, 2, 0 }, { 0, 2, 10, 2, 0 }, { 15, 2, -20, 2, 0 },
      1.0, 36, 0, 315, 712, false, true, false, 0, 0 },
    { "Bass Tight Big Low End",
      { 12, 2, -16, 0, 0 }, { 3, 2, -14, 1, 0 }, { 1, 2, -18, 1, 0 },
      0.8, 20, 0, 247, 2229, false, true, false, 0, 0 },
    { "Drum Bus Hammer",
      { 10, 2, -14, 2, 0 }, { 6, 2, -14, 2, 0 }, { 6, 2, -14, 2, 0 },
      0.7, 46, -6, 425, 4766, true, true, false, 10, -1.4 },
    { "Drum Bus Smash",
      { 0, 2, -14, 2, 0 }, { 0, 2, -14, 2, 0 }, { 0, 2, -14, 2, 0 },
      0.8, 46, 0, 425, 4766, true, true, false, 0, 0 },
    { "Drum Bus Smooth",
      { -1, 2, -14, 2, 0 }, { -1, 2, -14, 2, 0 }, { -1, 2, -14, 2, 0 },
      1.0, 46, 2, 449, 4766, false, true, true, 0, 0 },
    { "Female Vocals",
      { 4, 1, -10, 1, 1 }, { 3, 1, -8, 1, 1 }, { 8, 2, -16, 0, 1 },
      1.0, 20, 0, 424, 4032, false, true, false, 0, 0 },
    { "Kick Tight Beta",
      { 14, 2, -18, 2, 0 }, { 5, 2, -16, 2, 0 }, { 9, 2, -16, 2, 0 },
      1.0, 20, -4, 166, 2640, false, true, false, 0, 0.4 },
    { "Mixbus Smooth",
      { 4, 1, -10, 2, 4 }, { 2, 1, -2, 2, 4 }, { 3, 1, -2, 2, 4 },
      1.0, 33, 0, 207, 3976, false, true, false, 0, 0 },
    { "Mixbus Start Here",
      { 3, 1, -6, 2, 4 }, { 1, 1, 2, 2, 4 }, { 3, 1, 0, 2, 4 },
      0.9, 40, 0, 277, 5373, false, true, false, 0, 0 },
    { "Mixbus Wide and Bright",
      { 5, 1, -10, 2, 4 }, { 3, 1, -2, 2, 4 }, { 8, 1, -2, 2, 4 },
      1.0, 33, 0, 207, 7044, false, true, false, 0, -0.2 },
    { "Snare Fat 57",
      { 5, 2, -18, 2, 0 }, { 1, 2, -20, 2, 0 }, { 4, 2, -18, 2, 0 },
      1.0, 20, 0, 169, 3375, false, true, false, 2.2, -0.3 },
    { "Vocals Male Rock",
      { 6, 2, -14, 1, 0 }, { 7, 2, -14, 1, 0 }, { 9, 2, -14, 1, 0 },
      1.0, 47, 0, 346, 4458, false, true, false, 0, 0 },
    { "Vocals Male Rock Extreme",
      { 3, 2, -14, 1, 0 }, { 5, 2, -14, 2, 0 }, { 8, 2, -14, 2, 0 },
      0.8, 47, 0, 346, 4458, true, true, false, 0, 0 }
};
// clang-format on

// The two programs that differ from the rest in a control that is not in the table.
constexpr int kickKnock = 2;      // the middle band is out
constexpr int wideAndBright = 11; // the high band works on the sides

bool isProgram (int index) noexcept { return index >= 0 && index < FactoryPrograms::numPrograms; }

void fillBand (ChannelSettings::Band& band, const BandRow& row) noexcept
{
    band.meter = ChannelSettings::meterControl;
    band.in = true;
    band.solo = false;
    band.midSide = 0.5;
    band.ratio = row.ratio;
    band.attack = row.attack;
    band.recovery = row.recovery;
    ChannelSettings::setDecibels (band.gainDb, band.gainLinear, row.gainDb);
    ChannelSettings::setDecibels (band.thresholdDb, band.thresholdLinear, row.thresholdDb);
}
} // namespace

const char* FactoryPrograms::name (int index) noexcept { return isProgram (index) ? programs[index].name : ""; }

void FactoryPrograms::fill (ChannelSettings& record, int index) noexcept
{
    if (! isProgram (index))
        return;

    const auto& row = programs[index];

    fillBand (record.bands[0], row.low);
    fillBand (record.bands[1], row.mid);
    fillBand (record.bands[2], row.high);

    if (index == kickKnock)
        record.bands[1].in = false;

    if (index == wideAndBright)
        record.bands[2].midSide = 1.0;

    record.mix = row.mix;
    record.hpfHz = row.hpfHz;
    ChannelSettings::setDecibels (record.masterGainDb, record.masterGainLinear, row.masterDb);
    record.lowXOverHz = row.lowXOverHz;
    record.highXOverHz = row.highXOverHz;
    record.nuke = row.nuke;
    record.niveau = row.niveau;
    record.link = row.link;
    record.bypass.setTarget (0.0);
    ChannelSettings::setDecibels (record.inLevelDb, record.inLevelLinear, row.inLevelDb);
    ChannelSettings::setDecibels (record.outLevelDb, record.outLevelLinear, row.outLevelDb);
}
