// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "processor/CorvaneQ7AudioProcessor.h"

#include <filesystem>
#include <string>

/** All settings as a text that people can read, change and mail: a line "Identifier = text" for each control, then for
    the three options.

    The text holds what a panel shows: whole hertz, tenths of a decibel, whole percent. Values on these points come back
    exactly; others come back as the nearest ones.
*/
namespace SettingsText
{
/** Errors: RenderError with ExitStatus::input for a value out of a control's range, which only a state can hold: no
    text brings it back. */
std::string textOf (CorvaneQ7AudioProcessor& processor);

/** Sets what the file names, in its order and each by the road of a control change, so that Link forwards where it is
    on. What the file does not name stays. A file with a mistake changes nothing.

    Errors: RenderError with ExitStatus::input for a line that is not understood, or that comes twice. */
void apply (const std::filesystem::path& file, CorvaneQ7AudioProcessor& processor);
} // namespace SettingsText
