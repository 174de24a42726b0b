// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "golden/GoldenCases.h"

#include <filesystem>
#include <map>
#include <vector>

/** What the cases gave when the table was made: `table.json`, a row a case, and a file of float32 samples beside it for
    each sampled one. */
class GoldenTable
{
public:
    /** Reads the table of a folder; throws std::runtime_error where it is not one. */
    explicit GoldenTable (const std::filesystem::path& folder);

    /** The row of a name, or a null pointer. */
    const GoldenResult* find (const std::string& name) const;

    const std::map<std::string, GoldenResult>& rows() const noexcept { return results; }

    /** Runs all cases and writes the table of a folder anew. */
    static void print (const std::vector<GoldenCase>& cases, const std::filesystem::path& folder);

private:
    std::map<std::string, GoldenResult> results;
};
