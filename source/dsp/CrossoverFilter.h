// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "dsp/GlidingFilter.h"

/** One sample of a first-order section: y = y1 a + x1 b1 + x b0; coefficients b0, b1, a. */
struct FirstOrderTick
{
    static double tick (const double* k, double& y1, double& x1, double x) noexcept
    {
        const auto y = y1 * k[2] + x1 * k[1] + x * k[0];
        y1 = y;
        x1 = x;
        return y;
    }
};

/** What a crossover filter is set to. The pole is matched by its decay, p = exp (-2 pi f / rate). */
struct CrossoverResponse : GlidingResponse<3>
{
    enum Type : int
    {
        lowPass = 0,
        highPass = 1
    }; // any other passes the signal

    /** Constructed at 1000 Hz, rate 44100. */
    explicit CrossoverResponse (int initialType = lowPass) noexcept;

    /** Glides to a corner in Hz over 100 ms. newQ and newGain are stored for the common signature and read by
        nothing. */
    void setResponse (double newFrequency, double newQ, double newGain, int newType) noexcept;

    /** Lands on the present response at a processing rate in Hz. */
    void land (double newRate) noexcept;

    void follow (const CrossoverResponse& plan, bool exactly) noexcept;

    int type;
    double frequency = 1000.0, q = 1.0, gain = 1.0, rate = 44100.0;

private:
    Coefficients compute() const noexcept;
};

/** First-order low-pass or high-pass whose corner glides.

    Two of these split the signal; the bands are made by subtraction, so low + mid + high returns the input to within
    float rounding, also while a corner glides. The sum is the point, not the slope: keep order 1.

    Shape, rate, threads, errors: GlidingFilter.
*/
class CrossoverFilter : public GlidingFilter<FirstOrderTick, CrossoverResponse>
{
public:
    using GlidingFilter::GlidingFilter;
};
