// SPDX-License-Identifier: GPL-3.0-or-later
#include <juce_events/juce_events.h>

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <string>
#include <unistd.h>

/** Tests run with a home folder of their own, so that no user's settings file is read or written. */
int main (int argc, char** argv)
{
    const auto home = std::filesystem::temp_directory_path() / ("corvane-tests-" + std::to_string (::getpid()));
    std::filesystem::create_directories (home);
    ::setenv ("HOME", home.c_str(), 1);
    ::unsetenv ("XDG_CONFIG_HOME");

    ::testing::InitGoogleTest (&argc, argv);
    int result = 0;

    {
        const juce::ScopedJuceInitialiser_GUI framework;
        result = RUN_ALL_TESTS();
    }

    std::filesystem::remove_all (home);
    return result;
}
