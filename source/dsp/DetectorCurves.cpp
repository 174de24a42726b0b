// SPDX-License-Identifier: GPL-3.0-or-later
#include "dsp/DetectorCurves.h"

#include <cmath>

namespace
{
constexpr float curveEntries[DetectorCurves::numCurves][DetectorCurve::numEntries] = {
#include "dsp/DetectorCurvesData.inc"
};

// clang-format off
constexpr DetectorCurve curves[DetectorCurves::numCurves] = {
    { 0.1929820030927658f, 2.893939971923828f, 0.00008242669719038531f, 12131.9912109375f,
      10000.0, 68.0, 67.54072308303536, curveEntries[0] },
    { 0.1929820030927658f, 1.7771600484848022f, 0.00004834527862840332f, 20684.54296875f,
      18000.0, 910.0, 866.2083553675303, curveEntries[1] },
    { 0.1929820030927658f, 1.069219946861267f, 0.000026740659450297244f, 37396.234375f,
      39000.0, 3300.0, 3042.553191489362, curveEntries[2] },
    { 0.1929820030927658f, 0.72188800573349f, 0.000016140929801622406f, 61954.30078125f,
      47000.0, 10000.0, 8245.61403508772, curveEntries[3] },
    { 0.1929820030927658f, 0.504010021686554f, 0.000009491821401752532f, 105353.859375f,
      68000.0, 33000.0, 22217.821782178216, curveEntries[4] }
};
// clang-format on
} // namespace

float DetectorCurve::beyondEnd (float position) const noexcept
{
    constexpr int last = numEntries - 1;
    const auto ratio = entries[last] / entries[last - 1]; // in float
    const auto stepsBeyond = std::trunc (static_cast<double> (position)) - static_cast<double> (last);
    return static_cast<float> (static_cast<double> (entries[last])
                               * std::pow (static_cast<double> (ratio), stepsBeyond));
}

const DetectorCurve& DetectorCurves::forRatio (int row) noexcept { return curves[row]; }
