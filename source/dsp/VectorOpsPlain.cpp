// SPDX-License-Identifier: GPL-3.0-or-later
// The plain form of every operation: the reference for any faster one. The compiler makes vector code of these loops.
#include "dsp/VectorLoop.h"
#include "dsp/VectorOps.h"

#include <cmath>
#include <cstdint>
#include <cstring>

namespace
{
template <typename T, typename Formula>
void map (T* destination, int n, Formula&& formula) noexcept
{
    CORVANE_INDEPENDENT_PASSES
    for (int i = 0; i < n; ++i)
        destination[i] = formula (i);
}

/** exp (r) - 1 for |r| up to ln 2 / 2: the Taylor series to r^13, whose rest is below 1e-17 r. */
inline double expMinusOneNearZero (double r) noexcept
{
    double sum = 1.0 / 6227020800.0;   // 1 / 13!
    sum = sum * r + 1.0 / 479001600.0; // 1 / 12!, and so on down
    sum = sum * r + 1.0 / 39916800.0;
    sum = sum * r + 1.0 / 3628800.0;
    sum = sum * r + 1.0 / 362880.0;
    sum = sum * r + 1.0 / 40320.0;
    sum = sum * r + 1.0 / 5040.0;
    sum = sum * r + 1.0 / 720.0;
    sum = sum * r + 1.0 / 120.0;
    sum = sum * r + 1.0 / 24.0;
    sum = sum * r + 1.0 / 6.0;
    sum = sum * r + 0.5;
    return r + (r * r) * sum;
}

inline double tanhOf (double x) noexcept
{
    constexpr double log2e = 1.4426950408889634;
    constexpr double ln2High = 0.693147180369123816490;   // the upper 33 bits of ln 2: k * ln2High is exact
    constexpr double ln2Low = 1.90821492927058770002e-10; // ln 2 - ln2High
    constexpr double roundToInteger = 6755399441055744.0; // 1.5 * 2^52: adding it leaves a whole number
    constexpr double largest = 44.0;                      // exp (-44) is below half a unit of 1

    auto twice = 2.0 * std::abs (x);
    twice = twice > largest ? largest : twice; // a NaN passes

    // 2 |x| = k ln 2 + r; the whole number k stands in the low bits of `shifted`.
    const auto shifted = twice * log2e + roundToInteger;
    const auto k = shifted - roundToInteger;
    const auto r = (twice - k * ln2High) - k * ln2Low;

    std::uint64_t bits;
    std::memcpy (&bits, &shifted, sizeof (bits));
    bits = (bits << 52) + (std::uint64_t { 1023 } << 52);
    double powerOfTwo; // 2^k
    std::memcpy (&powerOfTwo, &bits, sizeof (powerOfTwo));

    const auto e = powerOfTwo * expMinusOneNearZero (r) + (powerOfTwo - 1.0);
    return std::copysign (e / (e + 2.0), x);
}
} // namespace

namespace VectorOps
{

void convert (const float* s, double* d, int n) noexcept
{
    map (d, n, [=] (int i) { return static_cast<double> (s[i]); });
}
void convert (const double* s, float* d, int n) noexcept
{
    map (d, n, [=] (int i) { return static_cast<float> (s[i]); });
}
void copy (const double* s, double* d, int n) noexcept
{
    map (d, n, [=] (int i) { return s[i]; });
}
void fill (double value, double* d, int n) noexcept
{
    map (d, n, [=] (int) { return value; });
}
void abs (const double* s, double* d, int n) noexcept
{
    map (d, n, [=] (int i) { return std::abs (s[i]); });
}

void add (const double* a, const double* b, double* d, int n) noexcept
{
    map (d, n, [=] (int i) { return a[i] + b[i]; });
}

void subtractFrom (const double* a, const double* b, double* d, int n) noexcept
{
    map (d, n, [=] (int i) { return b[i] - a[i]; });
}

void multiply (const double* a, const double* b, double* d, int n) noexcept
{
    map (d, n, [=] (int i) { return a[i] * b[i]; });
}

void divideInto (const double* a, const double* b, double* d, int n) noexcept
{
    map (d, n, [=] (int i) { return b[i] / a[i]; });
}

void addConstant (const double* s, double value, double* d, int n) noexcept
{
    map (d, n, [=] (int i) { return s[i] + value; });
}

void subtractConstant (const double* s, double value, double* d, int n) noexcept
{
    map (d, n, [=] (int i) { return s[i] - value; });
}

void multiplyByConstant (const double* s, double value, double* d, int n) noexcept
{
    map (d, n, [=] (int i) { return s[i] * value; });
}

void raiseTo (const double* s, double* d, int n, double level) noexcept
{
    map (d, n, [=] (int i) { return s[i] < level ? level : s[i]; });
}

void tanh (const double* s, double* d, int n) noexcept
{
    map (d, n, [=] (int i) { return tanhOf (s[i]); });
}

void clear (float* d, int n) noexcept
{
    map (d, n, [] (int) { return 0.0f; });
}
void fill (float value, float* d, int n) noexcept
{
    map (d, n, [=] (int) { return value; });
}
void copy (const float* s, float* d, int n) noexcept
{
    map (d, n, [=] (int i) { return s[i]; });
}

void move (const float* s, float* d, int n) noexcept
{
    if (n > 0)
        std::memmove (d, s, static_cast<std::size_t> (n) * sizeof (float));
}

void add (const float* a, const float* b, float* d, int n) noexcept
{
    map (d, n, [=] (int i) { return a[i] + b[i]; });
}

void subtractFrom (const float* a, const float* b, float* d, int n) noexcept
{
    map (d, n, [=] (int i) { return b[i] - a[i]; });
}

void multiply (const float* a, const float* b, float* d, int n) noexcept
{
    map (d, n, [=] (int i) { return a[i] * b[i]; });
}

void addConstant (const float* s, float value, float* d, int n) noexcept
{
    map (d, n, [=] (int i) { return s[i] + value; });
}

void multiplyByConstant (const float* s, float value, float* d, int n) noexcept
{
    map (d, n, [=] (int i) { return s[i] * value; });
}

void multiplyAdd (const float* a, const float* b, const float* c, float* d, int n) noexcept
{
    map (d, n, [=] (int i) { return a[i] * b[i] + c[i]; });
}

void lowerTo (float* values, int n, float level) noexcept
{
    map (values, n, [=] (int i) { return values[i] > level ? level : values[i]; });
}

void clip (const float* s, float low, float high, float* d, int n) noexcept
{
    map (d, n, [=] (int i) { return s[i] < low ? low : (s[i] > high ? high : s[i]); });
}

} // namespace VectorOps
