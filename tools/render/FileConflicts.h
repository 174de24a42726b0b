// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "render/RenderOptions.h"

/** Refuses options of which one would write over what another one reads or writes: RenderError with
    ExitStatus::usage. A sound, a state or a settings text may take the place of the file that it came from. */
void refuseFileConflicts (const RenderOptions& options);
