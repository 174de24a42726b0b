// SPDX-License-Identifier: GPL-3.0-or-later
#include "render/PendingFile.h"

#include "render/RenderError.h"

#include <cerrno>
#include <cstdio>
#include <random>
#include <system_error>

#ifndef _WIN32
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>
#endif

namespace fs = std::filesystem;

namespace
{
#ifdef _WIN32
bool createFile (const fs::path& path, bool)
{
    auto* file = ::_wfopen (path.c_str(), L"wbx");
    return file != nullptr && std::fclose (file) == 0;
}
#else
/** False, with errno, where there is such a file already, or none can be made. */
bool createFile (const fs::path& path, bool forUsAlone)
{
    constexpr mode_t ours = 0600, usual = 0666; // less what the user's mask takes away

    const auto file = ::open (path.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, forUsAlone ? ours : usual);
    return file >= 0 && ::close (file) == 0;
}
#endif
} // namespace

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

        replaces = true;
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

    if (mayReplace)
        takeOverRights();

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

        if (createFile (temporary, replaces))
            return;

        reason = errno;
        unfinished.reset();
        temporary.clear();

        if (reason != EEXIST)
            break;
    }

    fail (std::generic_category().message (reason));
}

#ifdef _WIN32
void PendingFile::takeOverRights() const {}
#else
void PendingFile::takeOverRights() const
{
    constexpr mode_t all = 0777, group = 0070, others = 0007;
    struct stat old, own;

    // There was none, or it is gone.
    if (::stat (destination.c_str(), &old) != 0 || ::stat (temporary.c_str(), &own) != 0)
        return;

    const auto becomes = [this] (uid_t user, gid_t ofGroup) { return ::chown (temporary.c_str(), user, ofGroup) == 0; };
    constexpr auto sameUser = static_cast<uid_t> (-1);
    auto mode = old.st_mode & all;

    // Only root gives a file away. A group that we do not belong to cannot be had either: what it might do, beyond what
    // everybody may, is not for the group that comes instead.
    if (! becomes (old.st_uid, old.st_gid) && ! becomes (sameUser, old.st_gid) && old.st_gid != own.st_gid)
        mode = (mode & ~group) | (mode & group & ((mode & others) << 3));

    // Where the file system knows no such rights, the file stays ours alone.
    static_cast<void> (::chmod (temporary.c_str(), mode));
}
#endif

void PendingFile::refuseToReplace() const { fail ("it exists already, and --force was not given"); }

void PendingFile::fail (const std::string& reason) const
{
    throw RenderError (ExitStatus::output, "cannot write \"" + asWritten.string() + "\": " + reason);
}
