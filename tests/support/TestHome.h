// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdlib>
#include <filesystem>
#include <string>
#include <unistd.h>

/** A home folder of the process's own while tests run, so that no user's settings file is read or written. */
class TestHome
{
public:
    TestHome() : folder (std::filesystem::temp_directory_path() / ("corvane-tests-" + std::to_string (::getpid())))
    {
        std::filesystem::create_directories (folder);
        ::setenv ("HOME", folder.c_str(), 1);
        ::unsetenv ("XDG_CONFIG_HOME");
    }

    ~TestHome() { std::filesystem::remove_all (folder); }

private:
    const std::filesystem::path folder;
};
