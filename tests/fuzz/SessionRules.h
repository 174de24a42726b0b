// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "../support/TestHome.h"
#include "processor/CorvaneQ7AudioProcessor.h"

#include <algorithm>
#include <cctype>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <memory>
#include <string>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput (const std::uint8_t* data, std::size_t size);

/** What holds whatever a host hands over as a session. Both fuzz targets ask it; a broken rule stops the program. */
namespace SessionRules
{
constexpr int blockLength = 32;

/** Stops where the fuzzer sees it, in any kind of build. */
inline void require (bool condition)
{
    if (! condition)
        __builtin_trap();
}

/** The one instance of a run, in an empty home: no user's file decides what a session without options means. */
inline CorvaneQ7AudioProcessor& instance()
{
    static const TestHome home;
    static const juce::ScopedJuceInitialiser_GUI framework;
    static const auto processor = []
    {
        auto p = std::make_unique<CorvaneQ7AudioProcessor>();
        p->setNoiseSource (NoiseSource::held());
        p->setRateAndBufferSizeDetails (48000.0, blockLength);
        return p;
    }();
    return *processor;
}

/** The same start for every input. Link goes first: it would carry one band's defaults to the others. */
inline void setDefaults (CorvaneQ7AudioProcessor& processor)
{
    processor.activeSettings().link = false;

    for (int i = 0; i < processor.getNumParameters(); ++i)
        processor.setParameter (i, processor.getParameterDefaultValue (i));

    processor.setCalibration (22.0);
    processor.setOversampling (1);
    processor.uiZoom = 1.0f;
}

/** In memory of its own length, so that an address checker sees a read beyond the end. */
inline void restore (CorvaneQ7AudioProcessor& processor, const void* data, std::size_t size)
{
    const auto exact = std::make_unique<char[]> (size);

    if (size > 0)
        std::memcpy (exact.get(), data, size);

    processor.setStateInformation (exact.get(), static_cast<int> (size));
}

/** All that a block which is no session must leave as it is. */
struct Snapshot
{
    explicit Snapshot (CorvaneQ7AudioProcessor& p)
        : calibrationGain (p.activeSettings().calibrationGain), zoom (p.uiZoom), factor (p.oversamplingRequested),
          latency (p.getLatencySamples())
    {
        for (int i = 0; i < p.getNumParameters(); ++i)
            values.push_back (p.getParameter (i));
    }

    bool operator== (const Snapshot& other) const
    {
        return values == other.values && calibrationGain == other.calibrationGain && zoom == other.zoom
               && factor == other.factor && latency == other.latency;
    }

    std::vector<float> values;
    double calibrationGain;
    float zoom;
    int factor, latency;
};

/** True when a text breaks off within a character of several bytes. */
inline bool endsWithinACharacter (const std::string& text)
{
    for (std::size_t back = 1; back <= std::min<std::size_t> (3, text.size()); ++back)
    {
        const auto byte = static_cast<unsigned char> (text[text.size() - back]);
        const auto wanted = byte >= 0xf0 ? 4u : byte >= 0xe0 ? 3u : byte >= 0xc0 ? 2u : 1u;

        if ((byte & 0xc0) != 0x80)
            return wanted > back;
    }

    return false;
}

/** True when a block cannot be a session, by its header, by how it ends or because it nowhere names the element. */
inline bool cannotBeASession (const std::uint8_t* data, std::size_t size)
{
    if (size < 9 || std::memcmp (data, "\x56\x43\x32\x21", 4) != 0)
        return true;

    std::uint32_t length = 0;

    for (int i = 3; i >= 0; --i)
        length = length * 256 + data[4 + i];

    if (length == 0 || length > 0x7fffffffu)
        return true;

    std::string text (reinterpret_cast<const char*> (data + 8), std::min<std::size_t> (length, size - 8));

    if (text.find ('\0') == std::string::npos && endsWithinACharacter (text))
        return true;

    for (auto& c : text)
        c = static_cast<char> (std::toupper (static_cast<unsigned char> (c)));

    return text.find ("CQ7SETTINGS") == std::string::npos;
}

/** Rules of the record that no session may break. */
inline void checkRecord (const ChannelSettings& record)
{
    require (record.mix >= 0.0 && record.mix <= 1.0);
    require (record.bypass.target == 0.0 || record.bypass.target == 1.0);

    for (const auto& band : record.bands)
    {
        require (band.midSide == 0.0 || band.midSide == 0.5 || band.midSide == 1.0);
        require (band.gainDb.target >= -1.0 && band.gainDb.target <= 20.0);
        require (std::floor (band.gainDb.target) == band.gainDb.target);
        require (band.thresholdDb.target >= -20.0 && band.thresholdDb.target <= 10.0);
        require (std::fmod (band.thresholdDb.target, 2.0) == 0.0);
    }

    for (const double value : { record.hpfHz, record.lowXOverHz, record.highXOverHz, record.masterGainDb.target,
                                record.masterGainLinear.target, record.inLevelDb.target, record.inLevelLinear.target,
                                record.outLevelDb.target, record.outLevelLinear.target, record.calibrationGain })
        require (! std::isnan (value));
}

/** True when every control stands within its range: beyond it, levels and frequencies are not limited. */
inline bool isWithinItsRange (CorvaneQ7AudioProcessor& processor)
{
    const auto& record = processor.activeSettings();
    const auto within = [] (double value, double low, double high) { return value >= low && value <= high; };

    return within (record.hpfHz, 20.0 - 1.0e-6, 500.001) && within (record.lowXOverHz, 49.999, 5000.01)
           && within (record.highXOverHz, 199.999, 12000.01) && within (record.masterGainDb.target, -10.001, 20.001)
           && within (record.inLevelDb.target, -10.001, 10.001) && within (record.outLevelDb.target, -10.001, 10.001);
}

/** What stands in the record comes out as a session of the usual form. */
inline juce::MemoryBlock save (CorvaneQ7AudioProcessor& processor)
{
    juce::MemoryBlock block;
    processor.getStateInformation (block);
    require (block.getSize() > 1000 && block.getSize() < 20000);
    return block;
}
} // namespace SessionRules
