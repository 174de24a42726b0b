// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "processor/CorvaneQ7AudioProcessor.h"

#include <cmath>
#include <cstdio>
#include <cstring>
#include <functional>
#include <memory>
#include <string>
#include <utility>
#include <vector>

/** What the 38 controls have to be, typed by hand and held against the code: nothing here reads the code's tables,
    so that a slip in either of the two shows. */
namespace Expected
{
enum class Kind
{
    meter,
    onOff,
    midSide,
    gain,
    ratio,
    threshold,
    attack,
    recovery,
    mix,
    highPass,
    master,
    lowXOver,
    highXOver,
    bypass,
    level
};

constexpr int continuous = 2147483647;
constexpr int numParameters = 38, firstGlobal = 27, bandDistance = 9;
constexpr int lowGain = 4, midGain = 13, highGain = 22;
constexpr int lowThreshold = 6, midThreshold = 15, highThreshold = 24;
constexpr int mix = 27, hpf = 28, masterGain = 29, lowXOver = 30, highXOver = 31;
constexpr int nuke = 32, niveau = 33, link = 34, bypass = 35, inLevel = 36, outLevel = 37;

struct Parameter
{
    int index;
    const char* identifier; // in sessions
    const char* name;       // in the host
    Kind kind;
    float defaultValue;
    const char* defaultText;
    int steps; // where the wrapper does not ask for finite steps
    bool meta; // uneven on purpose: Gain, Threshold and Mid Side are moved by Link too, but are not marked
};

// clang-format off
constexpr Parameter parameters[] = {
    {  0, "LowMeter",      "Low Meter",           Kind::meter,     1.0f / 2.0f,  "Control", 3,          true  },
    {  1, "LowIn",         "Low In",              Kind::onOff,     1.0f,         "On",      2,          true  },
    {  2, "LowSolo",       "Low Solo",            Kind::onOff,     0.0f,         "Off",     2,          true  },
    {  3, "LowMidSide",    "Low Mid Side",        Kind::midSide,   1.0f / 2.0f,  "Off",     3,          false },
    {  4, "LowGain",       "Low Gain",            Kind::gain,      2.0f / 21.0f, "1.0dB",   22,         false },
    {  5, "LowRatio",      "Low Ratio",           Kind::ratio,     1.0f / 2.0f,  "3:1",     5,          true  },
    {  6, "LowThreshold",  "Low Threshold",       Kind::threshold, 1.0f / 3.0f,  "-10.0dB", 16,         false },
    {  7, "LowAttack",     "Low Attack",          Kind::attack,    2.0f / 3.0f,  "2mS",     4,          true  },
    {  8, "LowRecovery",   "Low Recovery",        Kind::recovery,  1.0f,         "Auto",    5,          true  },
    {  9, "MidMeter",      "Mid Meter",           Kind::meter,     1.0f / 2.0f,  "Control", 3,          true  },
    { 10, "MidIn",         "Mid In",              Kind::onOff,     1.0f,         "On",      2,          true  },
    { 11, "MidSolo",       "Mid Solo",            Kind::onOff,     0.0f,         "Off",     2,          true  },
    { 12, "MidMidSide",    "Mid Mid Side",        Kind::midSide,   1.0f / 2.0f,  "Off",     3,          false },
    { 13, "MidGain",       "Mid Gain",            Kind::gain,      4.0f / 21.0f, "3.0dB",   22,         false },
    { 14, "MidRatio",      "Mid Ratio",           Kind::ratio,     1.0f / 2.0f,  "3:1",     5,          true  },
    { 15, "MidThreshold",  "Mid Threshold",       Kind::threshold, 2.0f / 3.0f,  "0.0dB",   16,         false },
    { 16, "MidAttack",     "Mid Attack",          Kind::attack,    2.0f / 3.0f,  "2mS",     4,          true  },
    { 17, "MidRecovery",   "Mid Recovery",        Kind::recovery,  1.0f,         "Auto",    5,          true  },
    { 18, "HighMeter",     "High Meter",          Kind::meter,     1.0f / 2.0f,  "Control", 3,          true  },
    { 19, "HighIn",        "High In",             Kind::onOff,     1.0f,         "On",      2,          true  },
    { 20, "HighSolo",      "High Solo",           Kind::onOff,     0.0f,         "Off",     2,          true  },
    { 21, "HighMidSide",   "High Mid Side",       Kind::midSide,   1.0f / 2.0f,  "Off",     3,          false },
    { 22, "HighGain",      "High Gain",           Kind::gain,      4.0f / 21.0f, "3.0dB",   22,         false },
    { 23, "HighRatio",     "High Ratio",          Kind::ratio,     1.0f / 2.0f,  "3:1",     5,          true  },
    { 24, "HighThreshold", "High Threshold",      Kind::threshold, 3.0f / 5.0f,  "-2.0dB",  16,         false },
    { 25, "HighAttack",    "High Attack",         Kind::attack,    2.0f / 3.0f,  "2mS",     4,          true  },
    { 26, "HighRecovery",  "High Recovery",       Kind::recovery,  1.0f,         "Auto",    5,          true  },
    { 27, "Mix",           "Mix",                 Kind::mix,       1.0f,         "100%",    continuous, false },
    { 28, "HPF",           "HPF",                 Kind::highPass,  0.0f,         "OFF",     continuous, false },
    { 29, "MasterGain",    "Master Gain",         Kind::master,    1.0f / 3.0f,  "0.0dB",   continuous, false },
    { 30, "LowXOver",      "Low XOverParameter",  Kind::lowXOver,  0.30103f,     "200Hz",   continuous, false },
    { 31, "HighXOver",     "High XOverParameter", Kind::highXOver, 0.786176f,    "5000Hz",  continuous, false },
    { 32, "Nuke",          "Nuke",                Kind::onOff,     0.0f,         "Off",     2,          false },
    { 33, "Niveau",        "Niveau",              Kind::onOff,     1.0f,         "On",      2,          false },
    { 34, "Link",          "Link",                Kind::onOff,     0.0f,         "Off",     2,          false },
    { 35, "Bypass",        "Bypass",              Kind::bypass,    0.0f,         "In",      2,          false },
    { 36, "InLevel",       "In Level",            Kind::level,     1.0f / 2.0f,  "0.0dB",   continuous, false },
    { 37, "OutLevel",      "Out Level",           Kind::level,     1.0f / 2.0f,  "0.0dB",   continuous, false }
};
// clang-format on

static_assert (sizeof (parameters) / sizeof (parameters[0]) == numParameters);

inline const std::vector<std::string>& rowsOf (Kind kind)
{
    static const std::vector<std::string> meters { "In", "Control", "Out" };
    static const std::vector<std::string> ratios { "1.5:1", "2:1", "3:1", "4:1", "6:1" };
    static const std::vector<std::string> attacks { "2uS", "0.5mS", "2mS", "10mS" };
    static const std::vector<std::string> recoveries { "100mS", "400mS", "800mS", "1.5S", "Auto" };
    static const std::vector<std::string> none;

    switch (kind)
    {
        case Kind::meter: return meters;
        case Kind::ratio: return ratios;
        case Kind::attack: return attacks;
        case Kind::recovery: return recoveries;
        default: return none;
    }
}

inline bool isEnumeration (Kind kind) { return ! rowsOf (kind).empty(); }

inline bool isFrequency (Kind kind)
{
    return kind == Kind::highPass || kind == Kind::lowXOver || kind == Kind::highXOver;
}

/** x moved into 0 to 1. */
inline double limited (float x) { return x < 0.0f ? 0.0 : (x > 1.0f ? 1.0 : static_cast<double> (x)); }

struct Frequencies
{
    double lowest, highest, decades;
};

inline Frequencies frequenciesOf (Kind kind)
{
    if (kind == Kind::highPass)
        return { 20.0, 500.0, 1.3979400087 };

    return kind == Kind::lowXOver ? Frequencies { 50.0, 5000.0, 2.0 }
                                  : Frequencies { 200.0, 12000.0, 1.778151250383644 };
}

/** What a control holds after x was set: dB, Hz, a row, a share, or 0 and 1 of a switch. Rows within an int only. */
inline double valueAt (Kind kind, float x)
{
    const auto d = static_cast<double> (x);

    switch (kind)
    {
        case Kind::level: return 20.0 * d - 10.0;
        case Kind::master: return 30.0 * d - 10.0;
        case Kind::gain: return std::floor ((21.0 * limited (x) - 1.0) + 0.5);
        case Kind::threshold: return 2.0 * std::floor ((30.0 * limited (x) - 20.0) / 2.0 + 0.5);
        case Kind::midSide: return std::floor (2.0 * limited (x) + 0.5) * 0.5;
        case Kind::mix: return limited (x);
        case Kind::onOff:
        case Kind::bypass: return x >= 0.5f ? 1.0 : 0.0;
        case Kind::highPass:
        case Kind::lowXOver:
        case Kind::highXOver:
            return frequenciesOf (kind).lowest * std::exp (2.302585092994045684 * frequenciesOf (kind).decades * d);
        case Kind::meter:
        case Kind::ratio:
        case Kind::attack:
        case Kind::recovery: break;
    }

    return std::trunc (d * static_cast<double> (rowsOf (kind).size() - 1) + 0.5);
}

/** What a control reports for what it holds. */
inline float normalisedOf (Kind kind, double v)
{
    const auto clamped = [] (double y) { return static_cast<float> (y < 0.0 ? 0.0 : (y > 1.0 ? 1.0 : y)); };

    switch (kind)
    {
        case Kind::level: return clamped ((v + 10.0) / 20.0);
        case Kind::master: return clamped ((v + 10.0) / 30.0);
        case Kind::gain: return clamped ((std::floor (v + 0.5) + 1.0) / 21.0);
        case Kind::threshold: return clamped ((2.0 * std::floor (v / 2.0 + 0.5) + 20.0) / 30.0);
        case Kind::midSide: return clamped (std::floor (2.0 * v + 0.5) * 0.5);
        case Kind::mix: return clamped (v);
        case Kind::onOff:
        case Kind::bypass: return v >= 0.5 ? 1.0f : 0.0f;
        case Kind::highPass:
        case Kind::lowXOver:
        case Kind::highXOver:
            return static_cast<float> (std::log (v / frequenciesOf (kind).lowest) / 2.302585092994045684
                                       / frequenciesOf (kind).decades);
        case Kind::meter: return static_cast<float> (v * 0.5);
        case Kind::ratio:
        case Kind::recovery: return static_cast<float> (v * 0.25);
        case Kind::attack: return static_cast<float> (v / 3.0);
    }

    return -1.0f;
}

inline std::string decibelText (double db)
{
    char text[64];
    std::snprintf (text, sizeof text, "%.1fdB", std::abs (db) < 0.000001 ? 0.0 : db);
    return text;
}

/** What a control shows for x in 0 to 1. */
inline std::string textAt (Kind kind, float x)
{
    const auto hertz = [&] { return std::to_string (static_cast<int> (valueAt (kind, x) + 0.5)) + "Hz"; };

    switch (kind)
    {
        case Kind::level:
        case Kind::master:
        case Kind::threshold: return decibelText (valueAt (kind, x));
        case Kind::gain: return x < 0.04761905f ? "auto" : decibelText (valueAt (kind, x));
        case Kind::midSide: return x < 0.25f ? "Mid" : (x >= 0.75f ? "Side" : "Off");
        case Kind::mix: return std::to_string (static_cast<int> (x * 100.0f)) + "%"; // in float, and cut
        case Kind::onOff: return x >= 0.5f ? "On" : "Off";
        case Kind::bypass: return x >= 0.5f ? "Byp" : "In";
        case Kind::highPass: return valueAt (kind, x) < 20.01 ? "OFF" : hertz();
        case Kind::lowXOver:
        case Kind::highXOver: return hertz();
        case Kind::meter:
        case Kind::ratio:
        case Kind::attack:
        case Kind::recovery: break;
    }

    return rowsOf (kind)[static_cast<std::size_t> (valueAt (kind, x))];
}

/** The field of a record behind a control, as a number. */
inline double fieldOf (const ChannelSettings& record, int index)
{
    if (index < firstGlobal)
    {
        const auto& band = record.bands[index / bandDistance];

        switch (index % bandDistance)
        {
            case 0: return band.meter;
            case 1: return band.in ? 1.0 : 0.0;
            case 2: return band.solo ? 1.0 : 0.0;
            case 3: return band.midSide;
            case 4: return band.gainDb.target;
            case 5: return band.ratio;
            case 6: return band.thresholdDb.target;
            case 7: return band.attack;
            default: return band.recovery;
        }
    }

    switch (index)
    {
        case mix: return record.mix;
        case hpf: return record.hpfHz;
        case masterGain: return record.masterGainDb.target;
        case lowXOver: return record.lowXOverHz;
        case highXOver: return record.highXOverHz;
        case nuke: return record.nuke ? 1.0 : 0.0;
        case niveau: return record.niveau ? 1.0 : 0.0;
        case link: return record.link ? 1.0 : 0.0;
        case bypass: return record.bypass.target;
        case inLevel: return record.inLevelDb.target;
        default: return record.outLevelDb.target;
    }
}

/** All 38 fields of a record. */
inline std::vector<double> fieldsOf (const ChannelSettings& record)
{
    std::vector<double> fields;

    for (int i = 0; i < numParameters; ++i)
        fields.push_back (fieldOf (record, i));

    return fields;
}

/** The linear form beside a decibel control; null for every other control. */
inline const Setpoint* linearOf (const ChannelSettings& record, int index)
{
    switch (index)
    {
        case masterGain: return &record.masterGainLinear;
        case inLevel: return &record.inLevelLinear;
        case outLevel: return &record.outLevelLinear;
        default: break;
    }

    if (index < firstGlobal && index % bandDistance == 4)
        return &record.bands[index / bandDistance].gainLinear;

    if (index < firstGlobal && index % bandDistance == 6)
        return &record.bands[index / bandDistance].thresholdLinear;

    return nullptr;
}

/** All 38 normalised values as the host reads them. */
inline std::vector<float> valuesOf (CorvaneQ7AudioProcessor& processor)
{
    std::vector<float> values;

    for (int i = 0; i < numParameters; ++i)
        values.push_back (processor.getParameter (i));

    return values;
}

/** Equal to the last bit, which the comparison of numbers does not tell for a NaN or a zero's sign. */
inline bool sameBits (float a, float b) { return std::memcmp (&a, &b, sizeof a) == 0; }

/** A new instance inside a wrapper of this kind. */
inline std::unique_ptr<CorvaneQ7AudioProcessor>
makeProcessor (juce::AudioProcessor::WrapperType type = juce::AudioProcessor::wrapperType_Undefined)
{
    juce::AudioProcessor::setTypeOfNextNewPlugin (type);
    auto processor = std::make_unique<CorvaneQ7AudioProcessor>();
    juce::AudioProcessor::setTypeOfNextNewPlugin (juce::AudioProcessor::wrapperType_Undefined);
    return processor;
}

/** Counts and keeps what an instance tells its listeners, and lets a test look at that moment. */
struct Listener : juce::AudioProcessorListener
{
    explicit Listener (juce::AudioProcessor& processorToHear) : heard (processorToHear) { heard.addListener (this); }
    ~Listener() override { heard.removeListener (this); }

    void audioProcessorParameterChanged (juce::AudioProcessor*, int index, float value) override
    {
        moves.push_back ({ index, value });

        if (onMove)
            onMove (index, value);
    }

    void audioProcessorChanged (juce::AudioProcessor*, const ChangeDetails& details) override
    {
        changes.push_back (details);

        if (onChange)
            onChange (details);
    }

    juce::AudioProcessor& heard;
    std::vector<std::pair<int, float>> moves;
    std::vector<ChangeDetails> changes;
    std::function<void (int, float)> onMove;
    std::function<void (const ChangeDetails&)> onChange;
};
} // namespace Expected
