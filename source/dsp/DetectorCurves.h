// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

/** One stored rectifier curve: detector voltage in, target voltage of the capacitor out.

    A flat floor near 0.11 V up to a knee, a steep rise, then a slowly rising shoulder. The curve is the rectifier too:
    everything below xMin, and so everything negative, reads the floor, so that only positive samples charge. Beyond
    its end it goes on by the ratio of its last two entries.

    Units    volt in and out, float.
    Threads  any: constant data.
*/
struct DetectorCurve
{
    static constexpr int numEntries = 32768;

    float xMin, xMax;       // range of the table, V
    float step, indexScale; // V per entry; entries per V
    double feedbackOhms;    // the ratio switch of the unit: what the curve was made from, read by nothing
    double groundOhms;
    double parallelOhms;
    const float* entries;

    float operator() (float x) const noexcept
    {
        const auto position = (x - xMin) * indexScale;

        // Compared before the conversion to an integer, and so that a NaN reads the floor.
        if (! (position >= 1.0f))
            return entries[0];

        if (position < static_cast<float> (numEntries - 1))
        {
            const auto i = static_cast<int> (position);
            const auto fraction = position - static_cast<float> (i);
            return (1.0f - fraction) * entries[i] + fraction * entries[i + 1];
        }

        return beyondEnd (position);
    }

private:
    float beyondEnd (float position) const noexcept;
};

namespace DetectorCurves
{
constexpr int numCurves = 5; // ratio rows 1.5:1, 2:1, 3:1, 4:1, 6:1

/** The curve of a ratio row from 0 to 4. Other rows are the caller's fault. */
const DetectorCurve& forRatio (int row) noexcept;
} // namespace DetectorCurves
