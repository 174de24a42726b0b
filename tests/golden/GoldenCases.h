// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

/** What one case leaves: hashes over all bits of the output and of the meters, or some samples where hashes would ask
    too much. */
struct GoldenResult
{
    std::uint64_t output = 0, meters = 0;
    std::vector<float> samples; // of a sampled case: every seventh frame, channels side by side
};

/** One thing that must sound and read tomorrow as it does today. */
struct GoldenCase
{
    std::string name, reason;

    /** Mid/side at work: its decibels pass through the C library's `pow` and `log10`, whose last bit is not ours. Such
        a case stores samples, which may differ by one unit in the last place of the loudest. */
    bool sampled = false;

    /** Not the engine but what it stands on: the C library's functions and the tables made with them. */
    bool foundation = false;

    std::function<GoldenResult()> run;
};

/** All cases, the foundations first. */
std::vector<GoldenCase> goldenCases();
