// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "render/RenderOptions.h"

#include <filesystem>
#include <optional>
#include <string>

/** What the words of a command line ask for.

    Every number is read in the same way in every language of the user, and refused with its range in the text when it
    is outside; not-a-number and infinity are no numbers here.
*/
struct CommandLine
{
    /** Errors: RenderError with ExitStatus::usage, one line. */
    static CommandLine parse (int argc, const char* const* argv);

    std::string notice; // a text that was asked for (help, version); nothing else is to be done then

    bool quiet = false;
    bool listPrograms = false;
    bool listParameters = false, asJson = false;
    std::optional<std::filesystem::path> curvesFile, controlLawFile, tapsFile, parameterDocsFile;
    int tapsFactor = 0;

    RenderOptions render;

    /** True if only texts and tables are wanted, and no INPUT and OUTPUT. */
    bool rendersNothing() const noexcept
    {
        return listPrograms || listParameters || curvesFile || controlLawFile || tapsFile || parameterDocsFile;
    }

    /** True if settings are put together and kept, but no sound goes through them. */
    bool onlySavesSettings() const noexcept { return render.savesSettings() && ! render.rendersSound(); }
};
