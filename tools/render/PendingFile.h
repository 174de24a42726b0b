// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "render/Interruption.h"

#include <filesystem>
#include <optional>

/** A file that comes into being all at once: it is written under another name in the same folder and renamed at the
    end. A program that fails, or is stopped, leaves the folder as it was.

    The other name is short and of its own, because a target's name may be as long as the file system allows.

    What is replaced keeps its rights: mode, group, and owner where the system lets us. Until then nobody but us may read
    the new file.

    Errors   RenderError with ExitStatus::output.
*/
class PendingFile
{
public:
    /** Looks whether the target may be written and makes the empty file to write into. A target that exists needs
        `overwrite`, and even then must be a regular file: a device or a folder is never replaced. A link stays, and
        what it points to is replaced. */
    PendingFile (const std::filesystem::path& target, bool overwrite);
    ~PendingFile();

    /** Where to write until `commit`. */
    const std::filesystem::path& path() const noexcept { return temporary; }

    /** As the user wrote it, for messages. */
    const std::filesystem::path& name() const noexcept { return asWritten; }

    /** Gives the file its name. Call it once, when everything is written and closed. */
    void commit();

    PendingFile (const PendingFile&) = delete;
    PendingFile& operator= (const PendingFile&) = delete;

private:
    void refuseToReplace() const;
    void createTemporary();
    void takeOverRights() const;
    [[noreturn]] void fail (const std::string& reason) const;

    std::filesystem::path asWritten, destination, temporary;
    std::optional<Interruption::UnfinishedFile> unfinished;
    const bool mayReplace;
    bool replaces = false;
};
