// SPDX-License-Identifier: GPL-3.0-or-later
#include "render/PendingFile.h"
#include "render/RenderError.h"
#include "support/TemporaryFolder.h"

#include <gtest/gtest.h>

#include <fstream>
#include <iterator>
#include <string>

namespace
{
class PendingFileTest : public testing::Test
{
protected:
    static void write (const std::filesystem::path& file, const std::string& text) { std::ofstream (file) << text; }

    static std::string contentOf (const std::filesystem::path& file)
    {
        std::ifstream stream (file);
        return { std::istreambuf_iterator<char> (stream), {} };
    }

    std::ptrdiff_t numFiles() const { return std::distance (std::filesystem::directory_iterator (folder), {}); }

    const TemporaryFolder temporary;
    const std::filesystem::path& folder = temporary.path;
    const std::filesystem::path target = folder / "target";
};
} // namespace

TEST_F (PendingFileTest, TakesItsNameAtTheEnd)
{
    {
        PendingFile pending (target, false);
        write (pending.path(), "new");
        EXPECT_FALSE (std::filesystem::exists (target));
        pending.commit();
    }

    EXPECT_EQ (contentOf (target), "new");
    EXPECT_EQ (numFiles(), 1);
}

TEST_F (PendingFileTest, LeavesNothingWhenItIsGivenUp)
{
    {
        PendingFile pending (target, false);
        write (pending.path(), "new");
        EXPECT_EQ (numFiles(), 1);
    }

    EXPECT_EQ (numFiles(), 0);
}

TEST_F (PendingFileTest, StandsInItsTargetsFolder)
{
    const PendingFile pending (target, false);
    EXPECT_EQ (pending.path().parent_path(), folder); // a renaming does not cross file systems
}

TEST_F (PendingFileTest, SparesAFileThatCameWhileItWasWritten)
{
    {
        PendingFile pending (target, false);
        write (pending.path(), "new");
        write (target, "somebody else's");
        EXPECT_THROW (pending.commit(), RenderError);
    }

    EXPECT_EQ (contentOf (target), "somebody else's");
    EXPECT_EQ (numFiles(), 1);
}

TEST_F (PendingFileTest, ReplacesAFileWhenItMay)
{
    write (target, "old");
    EXPECT_THROW (PendingFile (target, false), RenderError);

    {
        PendingFile pending (target, true);
        write (pending.path(), "new");
        EXPECT_EQ (contentOf (target), "old");
        pending.commit();
    }

    EXPECT_EQ (contentOf (target), "new");
    EXPECT_EQ (numFiles(), 1);
}

TEST_F (PendingFileTest, TellsAShellThatTheOutputIsAtFault)
{
    try
    {
        PendingFile pending (folder / "absent" / "target", true);
        FAIL() << "the folder does not exist";
    }
    catch (const RenderError& error)
    {
        EXPECT_EQ (error.status, 4);
        EXPECT_NE (std::string (error.what()).find ("absent"), std::string::npos);
    }
}
