// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <algorithm>
#include <cmath>

/** Decibels and linear gains, as the settings and the engine exchange them: 10^(dB * 0.05), with -100 dB as the
    floor, which means a gain of 0. Double precision; any thread. */
namespace Decibels
{
constexpr double floorDb = -100.0;

/** 0 when dB is not above the floor (NaN included), otherwise 10^(dB * 0.05). */
inline double toGain (double db) noexcept { return db > floorDb ? std::pow (10.0, db * 0.05) : 0.0; }

/** 20 log10 of a gain, never below the floor; the floor for a gain of 0 or less. */
inline double fromGain (double gain) noexcept
{
    return gain > 0.0 ? std::max (20.0 * std::log10 (gain), floorDb) : floorDb;
}
} // namespace Decibels
