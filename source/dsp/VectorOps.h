// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

/** The block arithmetic of the engine: one formula an operation.

    Shape    contiguous vectors of n elements (n may be 0); a destination may be one of the sources, but vectors may
             not overlap by a part (`move` excepted).
    Result   each element depends on its own inputs alone, so a result never depends on n, on alignment or on the
             width of the machine's vectors. Every multiplication and addition rounds by itself.
    Threads  any; nothing allocates. Errors: none.

    Two names tell the order of their operands: subtractFrom (a, b) is b - a, divideInto (a, b) is b / a.
*/
namespace VectorOps
{
// ---- double ----
void convert (const float* source, double* destination, int n) noexcept; // widened
void convert (const double* source, float* destination, int n) noexcept; // rounded to float
void copy (const double* source, double* destination, int n) noexcept;
void fill (double value, double* destination, int n) noexcept;
void abs (const double* source, double* destination, int n) noexcept;
void add (const double* a, const double* b, double* destination, int n) noexcept;
void subtractFrom (const double* a, const double* b, double* destination, int n) noexcept; // b - a
void multiply (const double* a, const double* b, double* destination, int n) noexcept;
void divideInto (const double* a, const double* b, double* destination, int n) noexcept; // b / a
void addConstant (const double* source, double value, double* destination, int n) noexcept;
void subtractConstant (const double* source, double value, double* destination, int n) noexcept;
void multiplyByConstant (const double* source, double value, double* destination, int n) noexcept;

/** level where the source is below it, otherwise the source (a NaN stays). */
void raiseTo (const double* source, double* destination, int n, double level) noexcept;

/** Hyperbolic tangent to within 4 units of the last place, over the whole range; a NaN stays, +-infinity gives
    +-1. Formula: tanh x = e / (e + 2) with e = exp (2 |x|) - 1, e from its Taylor series after the range was
    reduced by powers of two. */
void tanh (const double* source, double* destination, int n) noexcept;

// ---- float ----
void clear (float* destination, int n) noexcept;
void fill (float value, float* destination, int n) noexcept;
void copy (const float* source, float* destination, int n) noexcept;
void move (const float* source, float* destination, int n) noexcept; // may overlap in any way
void add (const float* a, const float* b, float* destination, int n) noexcept;
void subtractFrom (const float* a, const float* b, float* destination, int n) noexcept; // b - a
void multiply (const float* a, const float* b, float* destination, int n) noexcept;
void addConstant (const float* source, float value, float* destination, int n) noexcept;
void multiplyByConstant (const float* source, float value, float* destination, int n) noexcept;

/** a * b + c, with two roundings. */
void multiplyAdd (const float* a, const float* b, const float* c, float* destination, int n) noexcept;

/** level where the source is above it, otherwise the source: the smaller of the two (a NaN stays). */
void lowerTo (float* values, int n, float level) noexcept;

/** Limited to low ... high (a NaN stays). */
void clip (const float* source, float low, float high, float* destination, int n) noexcept;
} // namespace VectorOps
