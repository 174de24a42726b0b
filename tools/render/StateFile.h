// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "processor/CorvaneQ7AudioProcessor.h"

#include <filesystem>
#include <string>

/** A host's session block as a file of its own, byte for byte. */
namespace StateFile
{
/** Restores a block as a host would, but for one thing: options that the block lacks take the renderer's defaults, for
    those of the user's settings file would make a render depend on the machine. A block that says that it is a preset
    leaves the options as they are.

    Errors: RenderError with ExitStatus::input for a file that is no such block. */
void restore (const std::filesystem::path& file, CorvaneQ7AudioProcessor& processor);

/** The block that a host would keep. */
std::string blockOf (CorvaneQ7AudioProcessor& processor);
} // namespace StateFile
