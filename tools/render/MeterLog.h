// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "render/PendingFile.h"
#include "settings/ChannelSettings.h"

#include <array>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <optional>

/** How much the three bands turned down, in dB: 0 is nothing, below 0 is less. */
struct GainReduction
{
    /** Takes the meters of one block. */
    void add (ChannelSettings& settings);

    double meanDb (int band) const noexcept
    {
        return numBlocks > 0 ? sumDb[static_cast<std::size_t> (band)] / numBlocks : 0.0;
    }

    std::array<double, ChannelSettings::numBands> sumDb {}, deepestDb {};
    int numBlocks = 0;
};

/** Writes what the meters of the three bands show, one line of comma-separated values a block.

    Columns  the block's first frame, counted in the input; then of Low, Mid and High the level, linear and relative
             to +4 dBu, and the gain reduction as a linear factor. Levels stand still while a band's meter shows its
             control voltage, as in the plug-in.
    Errors   RenderError with ExitStatus::output.
*/
class MeterLog
{
public:
    MeterLog (const std::filesystem::path& file, bool overwrite);

    void write (std::int64_t firstFrame, ChannelSettings& settings);

    /** Closes the file and sees that all of it is there. */
    void finish();
    void commit() { pending.commit(); }

private:
    void failIfBroken() const;

    PendingFile pending;
    std::ofstream stream;
};
