// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "processor/CorvaneQ7AudioProcessor.h"
#include "render/PendingFile.h"
#include "render/RenderOptions.h"

#include <optional>

/** What a processor stands on, as files: the session block, the settings text, or both.

    Errors   RenderError with ExitStatus::output; SettingsText says when a text is not possible.
*/
class SavedSettings
{
public:
    /** Writes what the options ask for. */
    SavedSettings (const RenderOptions& options, CorvaneQ7AudioProcessor& processor);

    /** Gives the files their names. */
    void commit();

private:
    std::optional<PendingFile> state, text;
};
