// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <stdexcept>
#include <string>

/** A folder of a test's own, for as long as it lives: the same test may run twice at once. */
struct TemporaryFolder
{
    TemporaryFolder() = default;
    ~TemporaryFolder() { std::filesystem::remove_all (path); }

    TemporaryFolder (const TemporaryFolder&) = delete;
    TemporaryFolder& operator= (const TemporaryFolder&) = delete;

    const std::filesystem::path path = make();

private:
    static std::filesystem::path make()
    {
        auto name = (std::filesystem::path (testing::TempDir()) / "corvane-test-XXXXXX").string();

        if (::mkdtemp (name.data()) == nullptr)
            throw std::runtime_error ("no folder can be made for the test: " + name);

        return name;
    }
};
