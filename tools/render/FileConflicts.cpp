// SPDX-License-Identifier: GPL-3.0-or-later
#include "render/FileConflicts.h"

#include "render/RenderError.h"

#include <string>

namespace
{
struct NamedFile
{
    const char* option;
    const std::filesystem::path& file;
    const char* mayReplace = "";
};

bool isSameFile (const std::filesystem::path& a, const std::filesystem::path& b)
{
    // Absolute first: of a path that is not there yet, nothing else settles the folder.
    const auto settled = [] (const std::filesystem::path& path)
    {
        std::error_code error;
        return std::filesystem::weakly_canonical (std::filesystem::absolute (path, error), error);
    };

    std::error_code error;
    return std::filesystem::equivalent (a, b, error) || settled (a) == settled (b);
}

void refuseConflict (const NamedFile& written, const NamedFile& other)
{
    if (written.file.empty() || other.file.empty() || std::string (written.mayReplace) == other.option)
        return;

    if (isSameFile (written.file, other.file))
        throw RenderError (ExitStatus::usage, std::string (written.option) + " names the same file as " + other.option);
}
} // namespace

void refuseFileConflicts (const RenderOptions& options)
{
    const NamedFile written[] = { { "OUTPUT", options.output, "INPUT" },
                                  { "--meters", options.meters },
                                  { "--save-state", options.saveState, "--state" },
                                  { "--save-settings", options.saveSettingsText, "--settings" } };
    const NamedFile read[] = { { "INPUT", options.input },
                               { "--state", options.state },
                               { "--settings", options.settingsText },
                               { "--automation", options.automation } };

    for (const auto& file : written)
    {
        for (const auto& other : read)
            refuseConflict (file, other);

        for (const auto& other : written)
            if (&other != &file)
                refuseConflict (file, other);
    }
}
