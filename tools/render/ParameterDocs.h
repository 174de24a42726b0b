// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "processor/CorvaneQ7AudioProcessor.h"

#include <filesystem>

/** The page of the documentation that shows every control: what it does, what it takes, where it stands.

    Errors   RenderError with ExitStatus::output.
*/
namespace ParameterDocs
{
void write (const std::filesystem::path& file, bool overwrite, CorvaneQ7AudioProcessor& processor);
} // namespace ParameterDocs
