// SPDX-License-Identifier: GPL-3.0-or-later
// Session blocks made by a fuzzer, and the sound that follows: blocks run with whatever the session left in the record,
// at the oversampling factor that it asks for.
#include "SessionRules.h"

using namespace SessionRules;

namespace
{
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

void restart (CorvaneQ7AudioProcessor& processor)
{
    setDefaults (processor);
    processor.prepareToPlay (48000.0, blockLength);
}
} // namespace

extern "C" int LLVMFuzzerTestOneInput (const std::uint8_t* data, std::size_t size)
{
    auto& processor = instance();

    restart (processor);
    restore (processor, data, size);
    checkRecord (processor.activeSettings());
    runBlocks (processor, isWithinItsRange (processor));

    // A session of this instance's own, while its engine runs on what the first one left.
    const auto again = save (processor);
    restore (processor, again.getData(), again.getSize());
    checkRecord (processor.activeSettings());

    // A restart with usual settings heals the engine.
    restart (processor);
    runBlocks (processor, true);
    return 0;
}
