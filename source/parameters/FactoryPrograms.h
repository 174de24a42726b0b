// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "settings/ChannelSettings.h"

/** The fifteen read-only programs of the unit. */
namespace FactoryPrograms
{
constexpr int numPrograms = 15;

/** The name of a program; an empty text for an index outside 0 to 14. */
const char* name (int index) noexcept;

/** Writes a program's values into a record, decibels in both forms. Fields that no
    program holds (owner, calibration, meters) stay. An index outside 0 to 14 changes nothing. Stopped. */
void fill (ChannelSettings& record, int index) noexcept;
} // namespace FactoryPrograms
