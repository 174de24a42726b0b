// SPDX-License-Identifier: GPL-3.0-or-later
#include "render/Summary.h"

#include <cmath>
#include <iomanip>
#include <locale>
#include <sstream>

namespace
{
constexpr int labelWidth = 16, columnWidth = 13;

std::string fixed (double value, int decimals)
{
    std::ostringstream text;
    text.imbue (std::locale::classic());
    text << std::fixed << std::setprecision (decimals) << value;
    return text.str();
}

std::string decibels (double value, int decimals)
{
    if (std::isnan (value))
        return "n/a";

    if (std::isinf (value))
        return value < 0.0 ? "-inf" : "inf";

    // What rounds to nothing is shown without a sign.
    const auto text = fixed (value, decimals);
    return text == fixed (-0.0, decimals) ? fixed (0.0, decimals) : text;
}

std::string row (const std::string& label, const std::string& first, const std::string& second,
                 const std::string& third)
{
    std::ostringstream text;
    text << std::left << std::setw (labelWidth) << label << std::right;

    for (const auto& column : { first, second, third })
        text << std::setw (columnWidth) << column;

    text << '\n';
    return text.str();
}

std::string levels (const std::string& label, const RenderResult::Levels& of)
{
    return row (label, decibels (of.peakDb, 2), decibels (of.rmsDb, 2), decibels (of.loudness, 1));
}

template <typename Value>
std::string bands (const std::string& label, Value&& valueOf)
{
    return row (label, decibels (valueOf (0), 1), decibels (valueOf (1), 1), decibels (valueOf (2), 1));
}
} // namespace

std::string summaryOf (const RenderResult& result)
{
    const auto& reduction = result.gainReduction;
    const auto speed = result.secondsTaken > 0.0 ? result.secondsOfAudio / result.secondsTaken : 0.0;

    return row ("Level", "peak dBFS", "RMS dBFS", "LUFS") + levels ("  in", result.input)
           + levels ("  out", result.output) + row ("Gain reduction", "Low dB", "Mid dB", "High dB")
           + bands ("  mean", [&] (int band) { return reduction.meanDb (band); })
           + bands ("  deepest", [&] (int band) { return reduction.deepestDb[static_cast<std::size_t> (band)]; })
           + std::to_string (result.framesOut) + " frames, " + fixed (result.secondsOfAudio, 2) + " s in "
           + fixed (result.secondsTaken, 2) + " s, " + fixed (speed, 1) + " x real time\n";
}
