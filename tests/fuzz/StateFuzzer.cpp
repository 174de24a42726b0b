// SPDX-License-Identifier: GPL-3.0-or-later
// Session blocks made by a fuzzer. Build it with a compiler that brings one, or run a corpus through RunCorpus.cpp:
//     clang++ -fsanitize=fuzzer,address,undefined ... StateFuzzer.cpp
#include "processor/CorvaneQ7AudioProcessor.h"

#include <algorithm>
#include <cctype>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <string>
#include <unistd.h>
#include <vector>

extern "C" int LLVMFuzzerInitialize (int* argc, char*** argv);
extern "C" int LLVMFuzzerTestOneInput (const std::uint8_t* data, std::size_t size);

namespace
{
constexpr int blockLength = 32;

/** Stops where the fuzzer sees it, in any kind of build. */
void require (bool condition)
{
    if (! condition)
        __builtin_trap();
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

/** True when a block cannot be a session, by its header or because it nowhere names the element. */
bool cannotBeASession (const std::uint8_t* data, std::size_t size)
{
    if (size < 9 || std::memcmp (data, "\x56\x43\x32\x21", 4) != 0)
        return true;

    std::uint32_t length = 0;

    for (int i = 3; i >= 0; --i)
        length = length * 256 + data[4 + i];

    if (length == 0 || length > 0x7fffffffu)
        return true;

    std::string text (reinterpret_cast<const char*> (data + 8), std::min<std::size_t> (length, size - 8));

    for (auto& c : text)
        c = static_cast<char> (std::toupper (static_cast<unsigned char> (c)));

    return text.find ("CQ7SETTINGS") == std::string::npos;
}

/** Rules of the record that no session may break. */
void checkRecord (const ChannelSettings& record)
{
    require (! record.linkGuard);
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

    for (const auto value : { record.hpfHz, record.lowXOverHz, record.highXOverHz, record.masterGainDb.target,
                              record.masterGainLinear.target, record.inLevelDb.target, record.inLevelLinear.target,
                              record.outLevelDb.target, record.outLevelLinear.target, record.calibrationGain })
        require (! std::isnan (value));
}

/** True when every control stands within its range: beyond it, levels and frequencies are not limited. */
bool isWithinItsRange (CorvaneQ7AudioProcessor& processor)
{
    const auto& record = processor.activeSettings();
    const auto within = [] (double value, double low, double high) { return value >= low && value <= high; };

    return within (record.hpfHz, 20.0 - 1.0e-6, 500.001) && within (record.lowXOverHz, 49.999, 5000.01)
           && within (record.highXOverHz, 199.999, 12000.01) && within (record.masterGainDb.target, -10.001, 20.001)
           && within (record.inLevelDb.target, -10.001, 10.001) && within (record.outLevelDb.target, -10.001, 10.001);
}

void runBlocks (CorvaneQ7AudioProcessor& processor, bool mustBeFinite)
{
    juce::AudioBuffer<float> buffer (2, blockLength);
    juce::MidiBuffer midi;

    for (int block = 0; block < 3; ++block)
    {
        for (int i = 0; i < blockLength; ++i)
        {
            buffer.setSample (0, i, 0.5f * std::sin (0.3f * static_cast<float> (block * blockLength + i)));
            buffer.setSample (1, i, (i & 4) != 0 ? 0.25f : -0.25f);
        }

        processor.processBlock (buffer, midi);

        for (int c = 0; c < 2 && mustBeFinite; ++c)
            for (int i = 0; i < blockLength; ++i)
                require (std::isfinite (buffer.getSample (c, i)));
    }
}

/** The same start for every input. */
void reset (CorvaneQ7AudioProcessor& processor)
{
    auto& record = processor.activeSettings();

    for (int i = 0; i < processor.getNumParameters(); ++i)
        processor.setParameter (i, processor.getParameterDefaultValue (i));

    record.linkGuard = false;
    processor.setCalibration (22.0);
    processor.setOversampling (1);
    processor.uiZoom = 1.0f;
    processor.prepareToPlay (48000.0, blockLength);
}
} // namespace

extern "C" int LLVMFuzzerInitialize (int*, char***)
{
    // A home of its own: no user's settings file decides what a session without options means.
    static char folder[] = "/tmp/corvane-fuzz-XXXXXX";
    require (::mkdtemp (folder) != nullptr);
    ::setenv ("HOME", folder, 1);
    std::atexit ([] { ::rmdir (folder); }); // empty, as restoring writes nothing
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput (const std::uint8_t* data, std::size_t size)
{
    static const juce::ScopedJuceInitialiser_GUI framework;
    static const auto processor = []
    {
        auto p = std::make_unique<CorvaneQ7AudioProcessor>();
        p->setNoiseSource (NoiseSource::held());
        p->setRateAndBufferSizeDetails (48000.0, blockLength);
        return p;
    }();

    reset (*processor);
    const Snapshot before (*processor);

    // Memory of its own length, so that an address checker sees a read beyond the end.
    const auto exact = std::make_unique<std::uint8_t[]> (size);
    std::copy (data, data + size, exact.get());
    processor->setStateInformation (exact.get(), static_cast<int> (size));

    if (cannotBeASession (data, size))
        require (before == Snapshot (*processor));

    checkRecord (processor->activeSettings());
    runBlocks (*processor, isWithinItsRange (*processor));

    // Whatever stands in the record comes out as a session of the usual form, and goes in again.
    juce::MemoryBlock again;
    processor->getStateInformation (again);
    require (again.getSize() > 1000 && again.getSize() < 20000);
    processor->setStateInformation (again.getData(), static_cast<int> (again.getSize()));
    checkRecord (processor->activeSettings());

    // A restart with usual settings heals the engine.
    reset (*processor);
    runBlocks (*processor, true);
    return 0;
}
