// SPDX-License-Identifier: GPL-3.0-or-later
#include "render/SavedSettings.h"

#include "render/SettingsText.h"
#include "render/StateFile.h"
#include "render/TextFile.h"

SavedSettings::SavedSettings (const RenderOptions& options, CorvaneQ7AudioProcessor& processor)
{
    if (! options.saveState.empty())
        TextFile::write (state.emplace (options.saveState, options.overwrite), StateFile::blockOf (processor));

    if (! options.saveSettingsText.empty())
        TextFile::write (text.emplace (options.saveSettingsText, options.overwrite), SettingsText::textOf (processor));
}

void SavedSettings::commit()
{
    for (auto* file : { &state, &text })
        if (file->has_value())
            (*file)->commit();
}
