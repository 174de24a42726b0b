// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "dsp/GlidingFilter.h"

/** One sample of the state-variable filter with trapezoidal integrators; coefficients a1, a2, a3, m0, m1, m2. */
struct StateVariableTick
{
    static double tick (const double* k, double& s1, double& s2, double x) noexcept
    {
        const auto v3 = x - s2;
        const auto v1 = k[0] * s1 + k[1] * v3;
        const auto v2 = s2 + k[1] * s1 + k[2] * v3;
        s1 = 2.0 * v1 - s1;
        s2 = 2.0 * v2 - s2;
        return k[3] * x + k[4] * v1 + k[5] * v2;
    }
};

/** What a detector filter is set to. */
struct SVResponse : GlidingResponse<6>
{
    enum Type : int
    {
        lowPass = 0,
        highPass,
        bell,
        lowShelf,
        highShelf,
        bandPass,
        notch,
        peak
    };

    /** Constructed at 1000 Hz, Q 1, gain 1. */
    explicit SVResponse (int initialType) noexcept : type (initialType) {}

    /** Glides to a response over 100 ms. Frequency in Hz, gain linear (of a bell's peak or a shelf's plateau). Before
        the first landing it only stores. */
    void setResponse (int newType, double newFrequency, double newQ, double newGain) noexcept;

    /** Lands on the present response at a processing rate in Hz. */
    void land (double newRate) noexcept;

    void follow (const SVResponse& plan, bool exactly) noexcept;

    int type;
    double frequency = 1000.0, q = 1.0, gain = 1.0, rate = 44100.0;

private:
    Coefficients compute() const noexcept;
};

/** The detector's filter: second order, with a response that glides and a crossfade in and out.

    A filter that is out (`mix` at rest below 0.5) leaves signal and state as they are and costs one comparison.
    Shape, rate, threads, errors: GlidingFilter.
*/
class SmoothedSVFilter : public GlidingFilter<StateVariableTick, SVResponse>
{
public:
    using GlidingFilter::GlidingFilter;
};
