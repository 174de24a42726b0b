// SPDX-License-Identifier: GPL-3.0-or-later
// Session blocks made by a fuzzer: the reader, the record and the writer. What such a session does to the sound is
// EngineFuzzer.cpp, which is far slower.
#include "SessionRules.h"

using namespace SessionRules;

extern "C" int LLVMFuzzerTestOneInput (const std::uint8_t* data, std::size_t size)
{
    auto& processor = instance();

    static const auto start = [&]
    {
        setDefaults (processor);
        return Snapshot (processor);
    }();

    restore (processor, data, size);
    checkRecord (processor.activeSettings());

    const Snapshot found (processor);

    if (start == found)
        return 0; // refused, or a session of nothing but defaults

    require (! cannotBeASession (data, size));

    // What it left comes out as a session and goes in again: with the same values, where each control stands within its
    // range and Link moves none. The framework reads 20 decimals to 15 digits or more, counted from the first zero.
    const auto within = [] (float value) { return value >= 0.0f && value <= 1.0f; };
    const auto near = [] (float a, float b) { return std::abs (a - b) <= 1.0e-12f + 1.0e-7f * b; };
    const auto comesBack =
        ! processor.activeSettings().link && std::all_of (found.values.begin(), found.values.end(), within);

    const auto again = save (processor);
    restore (processor, again.getData(), again.getSize());
    checkRecord (processor.activeSettings());
    const Snapshot back (processor);
    require (! comesBack || std::equal (back.values.begin(), back.values.end(), found.values.begin(), near));

    setDefaults (processor);
    require (start == Snapshot (processor));
    return 0;
}
