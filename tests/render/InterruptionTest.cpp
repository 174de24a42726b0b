// SPDX-License-Identifier: GPL-3.0-or-later
// What a signal leaves behind. How the program hears it in its phases is seen from outside, by file_cases.py.
#include "render/Interruption.h"
#include "render/PendingFile.h"
#include "support/TemporaryFolder.h"

#include <gtest/gtest.h>

#include <csignal>
#include <fstream>
#include <string>

namespace
{
constexpr auto complaint = "this render was interrupted\n";
constexpr int survived = 77;

class InterruptionDeathTest : public testing::Test
{
protected:
    [[noreturn]] static void raiseAndSurvive (int number)
    {
        std::raise (number);
        std::_Exit (survived);
    }

    /** Whatever the tests were started to ignore, in the background or by nohup. */
    static void listen()
    {
        for (const auto number : { SIGHUP, SIGINT, SIGQUIT, SIGPIPE, SIGTERM, SIGXCPU })
            std::signal (number, SIG_DFL);

        Interruption::listen (complaint);
    }

    bool isEmpty() const { return std::filesystem::is_empty (folder.path); }

    const TemporaryFolder folder;
    const std::filesystem::path target = folder.path / "target";
};
} // namespace

TEST_F (InterruptionDeathTest, TakesUnfinishedFilesAwayAndTellsTheSignal)
{
    for (const auto number : { SIGHUP, SIGINT, SIGQUIT, SIGTERM, SIGXCPU })
        EXPECT_EXIT (
            {
                listen();
                const PendingFile first (target, false);
                const PendingFile second (folder.path / "other", false);
                raiseAndSurvive (number);
            },
            testing::ExitedWithCode (128 + number), complaint);

    EXPECT_TRUE (isEmpty());
}

TEST_F (InterruptionDeathTest, SaysNothingWhereThePipeIsClosed)
{
    EXPECT_EXIT (
        {
            listen();
            const PendingFile pending (target, false);
            raiseAndSurvive (SIGPIPE);
        },
        testing::ExitedWithCode (128 + SIGPIPE), "^$");

    EXPECT_TRUE (isEmpty());
}

TEST_F (InterruptionDeathTest, ForgetsFilesThatWereGivenUp)
{
    // Their names may be somebody else's by then.
    EXPECT_EXIT (
        {
            listen();
            const auto path = PendingFile (target, false).path();
            std::ofstream (path) << "somebody else's";
            raiseAndSurvive (SIGTERM);
        },
        testing::ExitedWithCode (128 + SIGTERM), complaint);

    EXPECT_FALSE (isEmpty());
}

TEST_F (InterruptionDeathTest, IsNotHeardOnceAFileHasItsName)
{
    // Further files of the same render have theirs at once: half of them would be worse than all.
    for (const auto number : { SIGHUP, SIGINT, SIGQUIT, SIGTERM, SIGXCPU })
        EXPECT_EXIT (
            {
                listen();
                PendingFile (target, true).commit();
                raiseAndSurvive (number);
            },
            testing::ExitedWithCode (survived), "^$");

    EXPECT_TRUE (std::filesystem::exists (target));
}

TEST_F (InterruptionDeathTest, AClosedPipeStillEndsTheProgramThen)
{
    EXPECT_EXIT (
        {
            listen();
            PendingFile (target, true).commit();
            raiseAndSurvive (SIGPIPE);
        },
        testing::KilledBySignal (SIGPIPE), "^$");
}

TEST_F (InterruptionDeathTest, LeavesIgnoredWhatWasIgnored)
{
    EXPECT_EXIT (
        {
            for (const auto number : { SIGHUP, SIGPIPE })
                std::signal (number, SIG_IGN);

            Interruption::listen (complaint);
            std::raise (SIGHUP);
            std::raise (SIGPIPE);
            Interruption::stopListening();
            std::raise (SIGHUP);
            raiseAndSurvive (SIGPIPE);
        },
        testing::ExitedWithCode (survived), "^$");
}

TEST_F (InterruptionDeathTest, TouchesNoSignalThatItDoesNotListenTo)
{
    EXPECT_EXIT (
        {
            std::signal (SIGTERM, SIG_DFL);
            Interruption::stopListening();
            raiseAndSurvive (SIGTERM);
        },
        testing::KilledBySignal (SIGTERM), "^$");
}
