// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "dsp/GlidingFilter.h"

/** One sample of a first-order section: y = y1 a + x1 b1 + x b0; coefficients b0, b1, a. */
struct FirstOrderResponse
{
    static constexpr int numCoefficients = 3;

    static double tick (const double* k, double& y1, double& x1, double x) noexcept
    {
        const auto y = y1 * k[2] + x1 * k[1] + x * k[0];
        y1 = y;
        x1 = x;
        return y;
    }
};

/** First-order low-pass or high-pass whose corner glides.

    Two of these split the signal; the bands are made by subtraction, so low + mid + high returns the input to within
    float rounding, also while a corner glides. The sum is the point, not the slope: keep order 1. The pole is matched
    by its decay, p = exp (-2 pi f / rate).

    Shape, rate, threads, errors: GlidingFilter.
*/
class CrossoverFilter : public GlidingFilter<FirstOrderResponse>
{
public:
    enum Type : int
    {
        lowPass = 0,
        highPass = 1
    }; // any other passes the signal

    /** Constructed at 1000 Hz, rate 44100. */
    explicit CrossoverFilter (int initialType) noexcept;

    /** Glides to a corner in Hz over 100 ms. Any thread. newQ and newGain are stored for the common signature and
        read by nothing. */
    void setResponse (double newFrequency, double newQ, double newGain, int newType) noexcept;

    /** Lands on the present response with no glide. Stopped; allocates. */
    void prepare (double newRate, int numChannels, int maxSamples);

    int type;
    double frequency = 1000.0, q = 1.0, gain = 1.0, rate = 44100.0;

private:
    Coefficients compute() const noexcept;
};
