// SPDX-License-Identifier: GPL-3.0-or-later
#include "render/PendingFile.h"

#include "render/RenderError.h"

#include <cerrno>
#include <cstdio>
#include <random>
#include <system_error>

namespace fs = std::filesystem;

PendingFile::PendingFile (const fs::path& target, bool overwrite)
    : asWritten (target), destination (target), mayReplace (overwrite)
{
    std::error_code error;
    const auto present = fs::symlink_status (target, error);

    // A name that is too long, or in a folder that may not be entered: better known now than after the work.
    if (! fs::status_known (present))
        fail (error.message());

    if (fs::exists (present))
    {
        const auto pointsTo = fs::status (target, error);

        if (fs::is_directory (pointsTo))
            fail ("it is a folder");

        if (! mayReplace)
            refuseToReplace();

        if (! fs::is_regular_file (pointsTo))
            fail ("it is not a regular file");

        if (fs::is_symlink (present))
            destination = fs::canonical (target, error);
    }

    const auto folder = destination.parent_path();

    if (! folder.empty() && ! fs::is_directory (folder, error))
        fail ("there is no folder \"" + folder.string() + "\"");

    if (! destination.has_filename())
        fail ("the name is missing");

    createTemporary();
}

PendingFile::~PendingFile()
{
    if (! temporary.empty())
    {
        std::error_code ignored;
        fs::remove (temporary, ignored);
    }
}

void PendingFile::commit()
{
    // Other files of the same render follow at once.
    Interruption::stopListening();

    std::error_code error;

    // A second name is refused where a name exists, a renaming is not: so nothing is lost to a file that came into
    // being while we wrote. File systems without such names are left with the question, asked late.
    if (! mayReplace)
    {
        fs::create_hard_link (temporary, destination, error);

        if (! error)
            return; // the destructor takes the first name away

        if (fs::exists (fs::symlink_status (destination, error)))
            refuseToReplace();
    }

    fs::rename (temporary, destination, error);

    if (error)
        fail (error.message());

    unfinished.reset();
    temporary.clear();
}

void PendingFile::createTemporary()
{
    constexpr int attempts = 16; // against a name that is taken: one in 2^32
    std::random_device random;
    auto reason = 0;

    for (int i = 0; i < attempts; ++i)
    {
        char name[40];
        std::snprintf (name, sizeof (name), ".corvane-render-%08x.part", static_cast<unsigned> (random()));
        temporary = destination.parent_path() / name;

        // Told first: no signal may come between the file and the knowledge of it.
        unfinished.emplace (temporary);

        if (auto* file = std::fopen (temporary.string().c_str(), "wbx"))
        {
            std::fclose (file);
            return;
        }

        reason = errno;
        unfinished.reset();
        temporary.clear();

        if (reason != EEXIST)
            break;
    }

    fail (std::generic_category().message (reason));
}

void PendingFile::refuseToReplace() const { fail ("it exists already, and --force was not given"); }

void PendingFile::fail (const std::string& reason) const
{
    throw RenderError (ExitStatus::output, "cannot write \"" + asWritten.string() + "\": " + reason);
}
