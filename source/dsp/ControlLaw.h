// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <array>

/** The gain element: control voltage in volt to linear gain.

    Nearly flat up to 2 V, then falling by about 6 dB a volt above 4 V; -33.702 dB at the rest voltage of 0.1 V. The
    offset of +0.298 dB in the law is part of the unit. Computed in float except for one logarithm.

    Threads  any: the table is made once and never written again.
*/
class ControlLaw
{
public:
    static constexpr int numEntries = 32768;                // over 0 to 10 V
    static constexpr float indexScale = 3276.800048828125f; // entries per volt; the float nearest 3276.8

    /** The law itself. */
    static float compute (float volts) noexcept;

    /** The one table of the process. Its first use fills it: call it once before audio runs. */
    static const ControlLaw& shared();

    /** The law by linear interpolation in the table, in float; computed directly beyond its end (and for a NaN). */
    float operator() (float volts) const noexcept
    {
        const auto position = (volts - 0.0f) * indexScale;

        // Compared before the conversion: overload drives the position past every integer.
        if (position > -1.0f && position < static_cast<float> (numEntries - 1))
        {
            const auto i = static_cast<int> (position);
            const auto fraction = position - static_cast<float> (i);
            return (1.0f - fraction) * entries[static_cast<std::size_t> (i)]
                   + fraction * entries[static_cast<std::size_t> (i) + 1];
        }

        return compute (volts);
    }

    std::array<float, numEntries> entries; // gain at i * 10 / 32768 volt

private:
    ControlLaw();
};
