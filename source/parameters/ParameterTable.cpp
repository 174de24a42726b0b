// SPDX-License-Identifier: GPL-3.0-or-later
// A stanza for each control. What hosts, sessions, the renderer and the pages of documentation tell of it stands here.
#include "parameters/ParameterTable.h"

#include "parameters/BandParameters.h"
#include "parameters/GlobalParameters.h"

#include <string_view>

namespace
{
using ParameterTable::numBandControls;
using ParameterTable::numBands;
using ParameterTable::numParameters;
using ParameterTable::Row;
using Form = ParameterForm;
using Kind = ParameterForm::Kind;
using Make = decltype (Row::make);

// ---- what a stanza is made of ----------------------------------------------------------------
template <typename Leaf>
std::unique_ptr<SettingsParameter> make (const Row& row, ChannelSettings& record, bool finiteSteps)
{
    return std::make_unique<Leaf> (row.identifier, row.name, record, finiteSteps);
}

/** The same class in the three bands. */
struct Makers
{
    Make band[numBands];
};

template <template <int> class Leaf>
constexpr Makers inBands() noexcept
{
    return { { make<Leaf<0>>, make<Leaf<1>>, make<Leaf<2>> } };
}

template <typename Values>
constexpr Form choice() noexcept
{
    Form form { Kind::choice };
    constexpr auto numRows = static_cast<int> (std::size (Values::rows));

    for (int row = 0; row < numRows; ++row)
        form.words.add ({ Values::rows[row], EnumParam<Values, numRows>::toNormalised (row) });

    form.mapping = "the nearest row, counted evenly from 0 to 1";
    return form;
}

constexpr Form midSide() noexcept
{
    Form form { Kind::choice };
    form.words.add ({ "Mid", 0.0f });
    form.words.add ({ "Off", 0.5f });
    form.words.add ({ "Side", 1.0f });
    form.mapping = "the nearest row, counted evenly from 0 to 1";
    return form;
}

constexpr Form onOff (const char* off = "Off", const char* on = "On") noexcept
{
    Form form { Kind::onOff };
    form.words.add ({ off, 0.0f });
    form.words.add ({ on, 1.0f });
    form.mapping = "the second from 0.5 up";
    return form;
}

template <typename Infos>
constexpr Form decibels (const char* example, const char* mapping) noexcept
{
    Form form { Kind::decibels };
    form.unit = "dB";
    form.lowest = static_cast<int> (Infos::minimum);
    form.highest = static_cast<int> (Infos::minimum + Infos::range);
    form.step = static_cast<int> (Infos::grid);
    form.example = example;
    form.normalised = DoubleParameter<Infos>::toNormalised;
    form.mapping = mapping;
    return form;
}

template <typename Infos>
constexpr Form frequency (const char* example, const char* mapping) noexcept
{
    Form form { Kind::frequency };
    form.unit = "Hz";
    form.lowest = static_cast<int> (Infos::lowest);
    form.highest = static_cast<int> (Infos::highest);
    form.example = example;
    form.normalised = FrequencyScale<Infos>::toNormalised;
    form.mapping = mapping;
    return form;
}

template <typename Infos>
constexpr Form percent (const char* example, const char* mapping) noexcept
{
    Form form { Kind::percent };
    form.unit = "%";
    form.highest = 100;
    form.example = example;
    form.normalised = [] (double share) { return DoubleParameter<Infos>::toNormalised (share * 0.01); };
    form.mapping = mapping;
    return form;
}

/** A form of numbers whose lowest position is a word. */
constexpr Form withWord (const char* word, int lowestNumber, Form form) noexcept
{
    form.words.add ({ word, 0.0f });
    form.lowest = lowestNumber;
    return form;
}

// ---- the nine controls of a band -------------------------------------------------------------
struct BandControl
{
    const char* identifiers[numBands];
    const char* names[numBands];
    const char* sentence;
    Form form;
    Makers make;
};

// clang-format off
constexpr BandControl bandControls[] {
    { { "LowMeter", "MidMeter", "HighMeter" },
      { "Low Meter", "Mid Meter", "High Meter" },
      "Chooses what the band's meter shows: the level going in, the gain reduction, or the level coming out.",
      choice<MeterValues>(),
      inBands<MeterParameter>() },

    { { "LowIn", "MidIn", "HighIn" },
      { "Low In", "Mid In", "High In" },
      "Puts the band's compressor in; off lets the band through as it came.",
      onOff(),
      inBands<InParameter>() },

    { { "LowSolo", "MidSolo", "HighSolo" },
      { "Low Solo", "Mid Solo", "High Solo" },
      "Mutes every band whose own Solo is off, as soon as one is on.",
      onOff(),
      inBands<SoloParameter>() },

    { { "LowMidSide", "MidMidSide", "HighMidSide" },
      { "Low Mid Side", "Mid Mid Side", "High Mid Side" },
      "Mid turns down the sum of the two channels alone and listens to the left one, Side turns down their difference "
      "and listens to the right one; Off turns down both sides alike and listens to both.",
      midSide(),
      inBands<MidSideParameter>() },

    { { "LowGain", "MidGain", "HighGain" },
      { "Low Gain", "Mid Gain", "High Gain" },
      "Make-up behind the compressor; auto gives back what the band turned down on average over about two seconds.",
      withWord ("auto", 0,
                decibels<LowGainParameterInfos> ("4dB", "21 x - 1 dB, to the nearest whole number; -1 is auto")),
      inBands<GainParameter>() },

    { { "LowRatio", "MidRatio", "HighRatio" },
      { "Low Ratio", "Mid Ratio", "High Ratio" },
      "How hard the band holds down what is louder.",
      choice<RatioValues>(),
      inBands<RatioParameter>() },

    { { "LowThreshold", "MidThreshold", "HighThreshold" },
      { "Low Threshold", "Mid Threshold", "High Threshold" },
      "Where the band begins to turn down: the lower, the more it compresses.",
      decibels<LowThresholdParameterInfos> ("-12dB", "30 x - 20 dB, to the nearest even number"),
      inBands<ThresholdParameter>() },

    { { "LowAttack", "MidAttack", "HighAttack" },
      { "Low Attack", "Mid Attack", "High Attack" },
      "How fast the band turns down; the labels are those of the unit's switch, not measured times.",
      choice<AttackValues>(),
      inBands<AttackParameter>() },

    { { "LowRecovery", "MidRecovery", "HighRecovery" },
      { "Low Recovery", "Mid Recovery", "High Recovery" },
      "How fast the band comes back; Auto comes back fast after a short peak and slowly after a long loud passage.",
      choice<RecoveryValues>(),
      inBands<RecoveryParameter>() }
};

// ---- what the bands share: a new control goes to the end -------------------------------------
constexpr Row sharedControls[] {
    { "Mix", "Mix",
      "Share of the processed sound; the rest is the input, kept in time with it.",
      percent<MixParameterInfos> ("80%", "100 x %"),
      make<MixParameter> },

    { "HPF", "HPF",
      "Takes the lows out of what the detectors listen to, so that they cause less compression; the sound keeps them.",
      withWord ("OFF", 20,
                frequency<HPFParameterInfos> ("100Hz", "20 * 10^(1.39794 x) Hz; below 20.01 Hz it is off")),
      make<HPFParameter> },

    { "MasterGain", "Master Gain",
      "Level of the processed sound behind the transformer, before Mix adds the input.",
      decibels<MasterGainParameterInfos> ("1.5dB", "30 x - 10 dB"),
      make<MasterGainParameter> },

    // Class-like as they look, the names of the two crossovers are what hosts know.
    { "LowXOver", "Low XOverParameter",
      "Where the low band ends and the middle band begins.",
      frequency<LowXOverParameterInfos> ("200Hz", "50 * 100^x Hz"),
      make<LowXOverParameter> },

    { "HighXOver", "High XOverParameter",
      "Where the middle band ends and the high band begins.",
      frequency<HighXOverParameterInfos> ("5000Hz", "200 * 60^x Hz"),
      make<HighXOverParameter> },

    { "Nuke", "Nuke",
      "Overdrives everything: detectors 20 dB more sensitive, 15 dB more make-up (but not at auto), and 20 dB more into "
      "the transformer.",
      onOff(),
      make<NukeParameter> },

    { "Niveau", "Niveau",
      "Tilts what the detectors listen to, 18 dB less at the bottom and 18 dB more at the top, so that the lows cause "
      "less compression.",
      onOff(),
      make<NiveauParameter> },

    { "Link", "Link",
      "While it is on, moving a control of one band moves the same control of the other two; switching it on moves "
      "nothing.",
      onOff(),
      make<LinkParameter> },

    { "Bypass", "Bypass",
      "Fades to the input within a tenth of a second, in time with the processed sound.",
      onOff ("In", "Byp"),
      make<BypassParameter> },

    { "InLevel", "In Level",
      "Level into the unit; the input that Mix adds is not changed.",
      decibels<InLevelParameterInfos> ("-1.5dB", "20 x - 10 dB"),
      make<InLevelParameter> },

    { "OutLevel", "Out Level",
      "Level out of the unit, before Mix adds the input.",
      decibels<OutLevelParameterInfos> ("-1.5dB", "20 x - 10 dB"),
      make<OutLevelParameter> }
};
// clang-format on

// ---- the order -------------------------------------------------------------------------------
static_assert (std::size (bandControls) == numBandControls);
static_assert (numBands * std::size (bandControls) + std::size (sharedControls) == numParameters,
               "numParameters in ParameterTable.h counts the controls");

struct Table
{
    Row rows[numParameters];
};

constexpr Table inOrder() noexcept
{
    Table table {};
    auto* next = table.rows;

    for (int band = 0; band < numBands; ++band)
        for (const auto& control : bandControls)
            *next++ = { control.identifiers[band], control.names[band], control.sentence, control.form,
                        control.make.band[band] };

    for (const auto& control : sharedControls)
        *next++ = control;

    return table;
}

constexpr Table table = inOrder();

/** Each stanza is whole, and sessions and hosts can tell the controls apart. A class that is left out is a warning of the
    compiler's; asked for here it would be no constant expression under the sanitizers. */
constexpr bool isComplete() noexcept
{
    for (int i = 0; i < numParameters; ++i)
    {
        const auto& row = table.rows[i];

        if (std::string_view (row.sentence).empty() || (row.form.words.empty() && ! row.form.takesNumbers()))
            return false;

        for (int earlier = 0; earlier < i; ++earlier)
            if (std::string_view (row.identifier) == table.rows[earlier].identifier
                || std::string_view (row.name) == table.rows[earlier].name)
                return false;
    }

    return true;
}

static_assert (isComplete(), "a stanza lacks a part, or two have one identifier or one name");
} // namespace

const Row (&ParameterTable::rows)[numParameters] = table.rows;

int ParameterTable::indexOf (const char* identifier) noexcept
{
    for (int i = 0; i < numParameters; ++i)
        if (std::string_view (rows[i].identifier) == identifier)
            return i;

    return -1;
}
