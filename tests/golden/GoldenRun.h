// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "golden/GoldenCases.h"
#include "processor/CorvaneQ7AudioProcessor.h"

#include <functional>
#include <vector>

/** One run of the plug-in as a host drives it: what goes in, in which blocks, and what is moved meanwhile. */
struct GoldenRun
{
    enum class Input
    {
        programme,    // a falling tone with bursts of noise, peaks near 0.9
        silence,      // +0
        bursts,       // silence, noise, silence
        quiet,        // noise near the noise floor
        overload,     // the programme a thousand times
        infinite,     // an infinity of each sign in the programme
        notANumber,   // a NaN in the programme
        negativeZero, // -0
        denormal,     // noise below the smallest normal number
        huge,         // noise up to 1e38
        impulse
    };

    enum class Noise
    {
        held,   // at its middle: adds nothing
        seeded, // a stream of the tests' own
        system  // the C library's, from a known seed
    };

    double rate = 48000.0;
    int channels = 2;
    int factor = 1;
    int announced = 512; // block length that the host announces
    std::vector<int> blocks { 512 };
    int frames = 4096;
    Input input = Input::programme;
    Noise noise = Noise::held;
    bool sampled = false;

    /** False for an instance that a host prepares before any control, program or session reached it. */
    bool touched = true;

    /** Before the host prepares. */
    std::function<void (CorvaneQ7AudioProcessor&)> before = [] (CorvaneQ7AudioProcessor&) {};

    /** Before the block that begins at a frame. */
    std::function<void (CorvaneQ7AudioProcessor&, int frame)> atBlock = [] (CorvaneQ7AudioProcessor&, int) {};

    /** True for a block that the host bypasses. */
    std::function<bool (int frame)> bypassed = [] (int) { return false; };

    GoldenResult operator()() const;
};
