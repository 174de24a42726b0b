// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cmath>
#include <complex>

/** Frequency responses of the second-order analogue prototypes under the bilinear transform with its frequency axis
    bent so that the corner stays where it is, and the response of a measured impulse response to compare with. */
namespace Analytic
{
using Complex = std::complex<double>;
constexpr double pi = 3.141592653589793;

/** The normalised analogue frequency that the bilinear transform shows at f: 1 at the corner. */
inline Complex normalised (double f, double corner, double rate)
{
    return { 0.0, std::tan (pi * f / rate) / std::tan (pi * corner / rate) };
}

inline Complex lowPass (Complex s, double q) { return 1.0 / (s * s + s / q + 1.0); }
inline Complex highPass (Complex s, double q) { return s * s / (s * s + s / q + 1.0); }
inline Complex bandPass (Complex s, double q) { return s / (s * s + s / q + 1.0); }
inline Complex notch (Complex s, double q) { return (s * s + 1.0) / (s * s + s / q + 1.0); }
inline Complex peak (Complex s, double q) { return (s * s - 1.0) / (s * s + s / q + 1.0); }

/** gain: linear, of the peak or the plateau. */
inline Complex bell (Complex s, double q, double gain)
{
    const auto A = std::sqrt (gain);
    return (s * s + s * (A / q) + 1.0) / (s * s + s / (A * q) + 1.0);
}

inline Complex lowShelf (Complex s, double q, double gain)
{
    const auto A = std::sqrt (gain);
    const auto damping = std::sqrt (A) / q;
    return A * (s * s + s * damping + A) / (A * s * s + s * damping + 1.0);
}

inline Complex highShelf (Complex s, double q, double gain)
{
    const auto A = std::sqrt (gain);
    const auto damping = std::sqrt (A) / q;
    return A * (A * s * s + s * damping + 1.0) / (s * s + s * damping + A);
}

/** A high shelf given by its slope, 1 being the steepest without overshoot. */
inline Complex highShelfOfSlope (Complex s, double slope, double gain)
{
    const auto A = std::sqrt (gain);
    return highShelf (s, 1.0 / std::sqrt ((A + 1.0 / A) * (1.0 / slope - 1.0) + 2.0), gain);
}

/** The response at f of an impulse response h of n samples. */
inline Complex measured (const float* h, int n, double f, double rate)
{
    Complex sum = 0.0;

    for (int i = 0; i < n; ++i)
        sum += static_cast<double> (h[i]) * std::polar (1.0, -2.0 * pi * f * i / rate);

    return sum;
}
} // namespace Analytic
