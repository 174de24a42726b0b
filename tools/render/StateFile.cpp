// SPDX-License-Identifier: GPL-3.0-or-later
#include "render/StateFile.h"

#include "render/RenderError.h"
#include "render/RenderOptions.h"
#include "render/TextFile.h"

namespace
{
[[noreturn]] void refuse (const std::filesystem::path& file, const std::string& reason)
{
    throw RenderError (ExitStatus::input, "cannot read \"" + file.string() + "\": " + reason);
}

/** Whether all of the text is there that a block announces. A host's block that breaks off is read as far as it goes,
    with defaults for the rest; of a file, its owner had better know. */
bool isWhole (const std::string& block) noexcept
{
    constexpr std::size_t lengthAt = 4, textAt = 8;
    return juce::ByteOrder::littleEndianInt (block.data() + lengthAt) <= block.size() - textAt;
}
} // namespace

void StateFile::restore (const std::filesystem::path& file, CorvaneQ7AudioProcessor& processor)
{
    constexpr std::size_t longestBlock = 1u << 20; // a block of ours takes less than 2000 bytes

    const auto bytes = TextFile::read (file, longestBlock);
    const auto size = static_cast<int> (bytes.size());
    const PluginState::Reader block (bytes.data(), size);

    if (! block.isValid())
        refuse (file, "it is not a session block of Corvane Q7");

    if (! isWhole (bytes))
        refuse (file, "it is a session block that breaks off");

    processor.setStateInformation (bytes.data(), size);

    if (block.isPreset())
        return;

    if (! block.number ("Calibration"))
        processor.setCalibration (RenderOptions::defaultCalibrationDb);

    if (! block.integer ("Oversampling"))
        processor.setOversampling (RenderOptions::defaultOversampling);

    if (! block.number ("UIZoom"))
        processor.uiZoom = static_cast<float> (RenderOptions::defaultZoom);
}

std::string StateFile::blockOf (CorvaneQ7AudioProcessor& processor)
{
    juce::MemoryBlock block;
    processor.getStateInformation (block);
    return { static_cast<const char*> (block.getData()), block.getSize() };
}
