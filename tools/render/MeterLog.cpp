// SPDX-License-Identifier: GPL-3.0-or-later
#include "render/MeterLog.h"

#include "render/RenderError.h"

#include <algorithm>
#include <cmath>
#include <locale>

void GainReduction::add (ChannelSettings& settings)
{
    for (int band = 0; band < ChannelSettings::numBands; ++band)
    {
        const auto i = static_cast<std::size_t> (band);
        const auto db = 20.0 * std::log10 (settings.gainReduction (band));
        sumDb[i] += db;
        deepestDb[i] = std::min (deepestDb[i], db);
    }

    ++numBlocks;
}

MeterLog::MeterLog (const std::filesystem::path& file, bool overwrite)
    : pending (file, overwrite), stream (pending.path(), std::ios::binary)
{
    stream.imbue (std::locale::classic()); // a point in numbers, whatever the user's language
    stream.precision (9);                  // as many digits as bring a float back exactly
    stream << "frame,low_level,low_gain_reduction,mid_level,mid_gain_reduction,high_level,high_gain_reduction\n";
    failIfBroken();
}

void MeterLog::write (std::int64_t firstFrame, ChannelSettings& settings)
{
    stream << firstFrame;

    for (int band = 0; band < ChannelSettings::numBands; ++band)
        stream << ',' << settings.level (band) << ',' << settings.gainReduction (band);

    stream << '\n';
    failIfBroken();
}

void MeterLog::finish()
{
    stream.close();
    failIfBroken();
}

void MeterLog::failIfBroken() const
{
    if (! stream)
        throw RenderError (ExitStatus::output,
                           "cannot write \"" + pending.name().string() + "\": not all of it could be written");
}
