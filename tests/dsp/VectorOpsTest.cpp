// SPDX-License-Identifier: GPL-3.0-or-later
#include "dsp/VectorOps.h"

#include <juce_audio_basics/juce_audio_basics.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <functional>
#include <limits>
#include <random>
#include <vector>

namespace
{
/** A processor that some other test made leaves its thread flushing denormals: here they count. */
struct KeepDenormals
{
    KeepDenormals() { juce::FloatVectorOperations::disableDenormalisedNumberSupport (false); }
    ~KeepDenormals() { juce::FloatVectorOperations::disableDenormalisedNumberSupport (wereFlushed); }

    const bool wereFlushed = juce::FloatVectorOperations::areDenormalsDisabled();
};

constexpr int longest = 67; // four vectors of sixteen floats and a tail of three
constexpr int guard = 16;   // elements on either side that nobody may write

/** n elements that begin `offset` elements behind a 64-byte boundary, with guards around them. */
template <typename T>
class Placed
{
public:
    Placed (int numElements, int offset) : n (numElements)
    {
        storage.assign (static_cast<std::size_t> (n + offset + 3 * guard + 64), mark());
        auto* start = storage.data() + guard;

        while (reinterpret_cast<std::uintptr_t> (start) % 64 != 0)
            ++start;

        first = start + offset;
    }

    T* data() noexcept { return first; }
    T& operator[] (int i) noexcept { return first[i]; }

    bool guardsAreIntact() const
    {
        for (const auto* p = storage.data(); p != storage.data() + storage.size(); ++p)
            if ((p < first || p >= first + n) && *p != mark())
                return false;

        return true;
    }

private:
    static T mark() { return static_cast<T> (-123.25); }

    std::vector<T> storage;
    T* first = nullptr;
    int n;
};

/** Equal bit for bit; two NaNs count as equal, since their payload is nobody's business. */
template <typename T>
bool same (T a, T b)
{
    return std::memcmp (&a, &b, sizeof (T)) == 0 || (std::isnan (a) && std::isnan (b));
}

/** Finite values of all sizes, with the ones that go wrong first among them. None is so large or so small that
        a sum, product or quotient of two turns into a NaN. */
template <typename T>
std::vector<T> values (std::uint32_t seed)
{
    const T special[] = { T (0),
                          -T (0),
                          T (1),
                          T (-1),
                          std::numeric_limits<T>::denorm_min(),
                          std::numeric_limits<T>::min(),
                          std::numeric_limits<T>::epsilon(),
                          T (24),
                          T (-24) };
    std::mt19937 random (seed);
    std::vector<T> result;

    for (int i = 0; i < longest; ++i)
    {
        if (i % 5 == 3)
        {
            result.push_back (special[random() % std::size (special)]);
            continue;
        }

        const auto mantissa = static_cast<T> (random() * 0x1p-31 - 1.0);
        result.push_back (std::ldexp (mantissa, static_cast<int> (random() % 40) - 20));
    }

    return result;
}

/** Divisors: as above, but no zeros, so that no 0 / 0 occurs. */
template <typename T>
std::vector<T> divisors (std::uint32_t seed)
{
    auto result = values<T> (seed);
    std::replace_if (
        result.begin(), result.end(), [] (T v) { return v == T (0); }, T (3));
    return result;
}

template <typename T>
using Binary = std::function<void (const T*, const T*, T*, int)>;

template <typename T>
using Unary = std::function<void (const T*, T*, int)>;

/** An operation of two vectors against its formula: every length, every offset of the three vectors, the
        destination apart from both sources, in the first, in the second, and all three the same. */
template <typename T>
void checkBinary (const Binary<T>& operation, const std::function<T (T, T)>& formula, bool divides = false)
{
    const auto a = divides ? divisors<T> (11) : values<T> (11);
    const auto b = values<T> (12);
    int mistakes = 0;

    for (int n = 0; n <= longest; ++n)
    {
        for (int offsets = 0; offsets < 64; ++offsets)
        {
            Placed<T> x (n, offsets & 3), y (n, (offsets >> 2) & 3), z (n, offsets >> 4);
            std::copy (a.begin(), a.begin() + n, x.data());
            std::copy (b.begin(), b.begin() + n, y.data());
            operation (x.data(), y.data(), z.data(), n);

            for (int i = 0; i < n; ++i)
                mistakes += ! same (z[i], formula (a[size_t (i)], b[size_t (i)]));

            mistakes += ! (x.guardsAreIntact() && y.guardsAreIntact() && z.guardsAreIntact());
            mistakes += std::memcmp (x.data(), a.data(), size_t (n) * sizeof (T)) != 0;
            mistakes += std::memcmp (y.data(), b.data(), size_t (n) * sizeof (T)) != 0;
        }

        for (int offset = 0; offset < 4; ++offset)
        {
            Placed<T> x (n, offset), y (n, 3 - offset);
            std::copy (a.begin(), a.begin() + n, x.data());
            std::copy (b.begin(), b.begin() + n, y.data());
            operation (x.data(), y.data(), x.data(), n);

            for (int i = 0; i < n; ++i)
                mistakes += ! same (x[i], formula (a[size_t (i)], b[size_t (i)]));

            std::copy (a.begin(), a.begin() + n, x.data());
            operation (x.data(), y.data(), y.data(), n);

            for (int i = 0; i < n; ++i)
                mistakes += ! same (y[i], formula (a[size_t (i)], b[size_t (i)]));

            std::copy (a.begin(), a.begin() + n, x.data());
            operation (x.data(), x.data(), x.data(), n);

            for (int i = 0; i < n; ++i)
                mistakes += ! same (x[i], formula (a[size_t (i)], a[size_t (i)]));

            mistakes += ! (x.guardsAreIntact() && y.guardsAreIntact());
        }

        ASSERT_EQ (mistakes, 0) << "at " << n << " elements";
    }
}

/** An operation of one vector against its formula, apart and in place. */
template <typename T>
void checkUnary (const Unary<T>& operation, const std::function<T (T)>& formula)
{
    const auto a = values<T> (21);
    int mistakes = 0;

    for (int n = 0; n <= longest; ++n)
    {
        for (int offsets = 0; offsets < 16; ++offsets)
        {
            Placed<T> x (n, offsets & 3), z (n, offsets >> 2);
            std::copy (a.begin(), a.begin() + n, x.data());
            operation (x.data(), z.data(), n);
            mistakes += std::memcmp (x.data(), a.data(), size_t (n) * sizeof (T)) != 0;
            operation (x.data(), x.data(), n);

            for (int i = 0; i < n; ++i)
                mistakes += ! same (z[i], formula (a[size_t (i)])) + ! same (x[i], formula (a[size_t (i)]));

            mistakes += ! (x.guardsAreIntact() && z.guardsAreIntact());
        }

        ASSERT_EQ (mistakes, 0) << "at " << n << " elements";
    }
}

using Doubles = const double*;
using Floats = const float*;
} // namespace

// ---- double ----------------------------------------------------------------------------------

TEST (VectorOps, AddsDoubles)
{
    checkBinary<double> ([] (Doubles a, Doubles b, double* d, int n) { VectorOps::add (a, b, d, n); },
                         [] (double a, double b) { return a + b; });
}

TEST (VectorOps, SubtractsTheFirstDoubleFromTheSecond)
{
    checkBinary<double> ([] (Doubles a, Doubles b, double* d, int n) { VectorOps::subtractFrom (a, b, d, n); },
                         [] (double a, double b) { return b - a; });

    const double a = 1.0, b = 5.0;
    double d = 0.0;
    VectorOps::subtractFrom (&a, &b, &d, 1);
    EXPECT_EQ (d, 4.0);
}

TEST (VectorOps, MultipliesDoubles)
{
    checkBinary<double> ([] (Doubles a, Doubles b, double* d, int n) { VectorOps::multiply (a, b, d, n); },
                         [] (double a, double b) { return a * b; });
}

TEST (VectorOps, DividesTheSecondDoubleByTheFirst)
{
    checkBinary<double> ([] (Doubles a, Doubles b, double* d, int n) { VectorOps::divideInto (a, b, d, n); },
                         [] (double a, double b) { return b / a; }, true);

    const double a = 4.0, b = 1.0;
    double d = 0.0;
    VectorOps::divideInto (&a, &b, &d, 1);
    EXPECT_EQ (d, 0.25);
}

TEST (VectorOps, AppliesAConstantToDoubles)
{
    checkUnary<double> ([] (Doubles s, double* d, int n) { VectorOps::addConstant (s, 0.002, d, n); },
                        [] (double s) { return s + 0.002; });
    checkUnary<double> ([] (Doubles s, double* d, int n) { VectorOps::subtractConstant (s, 0.002, d, n); },
                        [] (double s) { return s - 0.002; });
    checkUnary<double> ([] (Doubles s, double* d, int n) { VectorOps::multiplyByConstant (s, 1.4, d, n); },
                        [] (double s) { return s * 1.4; });
}

TEST (VectorOps, TakesTheMagnitudeOfDoubles)
{
    checkUnary<double> ([] (Doubles s, double* d, int n) { VectorOps::abs (s, d, n); },
                        [] (double s) { return std::signbit (s) ? -s : s; });

    const double s[] = { -0.0, -std::numeric_limits<double>::infinity(), std::nan ("") };
    double d[3];
    VectorOps::abs (s, d, 3);
    EXPECT_FALSE (std::signbit (d[0]));
    EXPECT_EQ (d[1], std::numeric_limits<double>::infinity());
    EXPECT_TRUE (std::isnan (d[2]));
}

TEST (VectorOps, CopiesAndFillsDoubles)
{
    checkUnary<double> ([] (Doubles s, double* d, int n) { VectorOps::copy (s, d, n); }, [] (double s) { return s; });
    checkUnary<double> ([] (Doubles, double* d, int n) { VectorOps::fill (-0.75, d, n); },
                        [] (double) { return -0.75; });
}

TEST (VectorOps, RaisesWhatIsBelowALevel)
{
    checkUnary<double> ([] (Doubles s, double* d, int n) { VectorOps::raiseTo (s, d, n, 0.001); },
                        [] (double s) { return s < 0.001 ? 0.001 : s; });

    const auto inf = std::numeric_limits<double>::infinity();
    const double s[] = { std::nan (""), -inf, inf, 0.001, std::nextafter (0.001, 0.0), std::nextafter (0.001, 1.0) };
    double d[6];
    VectorOps::raiseTo (s, d, 6, 0.001);
    EXPECT_TRUE (std::isnan (d[0])) << "a NaN is not below the level and stays";
    EXPECT_EQ (d[1], 0.001);
    EXPECT_EQ (d[2], inf);
    EXPECT_EQ (d[3], 0.001);
    EXPECT_EQ (d[4], 0.001);
    EXPECT_EQ (d[5], s[5]);
}

TEST (VectorOps, ConvertsBothWays)
{
    const auto narrow = values<float> (31);
    const auto wide = values<double> (32);

    for (int n = 0; n <= longest; ++n)
    {
        for (int offsets = 0; offsets < 16; ++offsets)
        {
            Placed<float> f (n, offsets & 3);
            Placed<double> d (n, offsets >> 2);
            std::copy (narrow.begin(), narrow.begin() + n, f.data());
            VectorOps::convert (f.data(), d.data(), n);

            for (int i = 0; i < n; ++i)
                ASSERT_TRUE (same (d[i], static_cast<double> (narrow[size_t (i)]))) << i << " of " << n;

            std::copy (wide.begin(), wide.begin() + n, d.data());
            VectorOps::convert (d.data(), f.data(), n);

            for (int i = 0; i < n; ++i)
                ASSERT_TRUE (same (f[i], static_cast<float> (wide[size_t (i)]))) << i << " of " << n;

            ASSERT_TRUE (f.guardsAreIntact() && d.guardsAreIntact());
        }
    }
}

TEST (VectorOps, RoundsToTheNearestFloatAndTiesToEven)
{
    const KeepDenormals keep;

    // Between 1 and 1 + 2^-23 there is no float: below, at and above the middle, and the tie one step further up.
    const double s[] = { 1.0 + 0x1p-25, 1.0 + 0x1p-24, 1.0 + 0x1.8p-24, 1.0 + 0x1p-23 + 0x1p-24, 0x1p-150, 0x1.8p-149 };
    const float expected[] = { 1.0f, 1.0f, 1.0f + 0x1p-23f, 1.0f + 0x1p-22f, 0.0f, 0x1p-148f };
    float d[6];
    VectorOps::convert (s, d, 6);

    for (int i = 0; i < 6; ++i)
        EXPECT_TRUE (same (d[i], expected[i])) << i << ": " << d[i];
}

// ---- hyperbolic tangent ----------------------------------------------------------------------

namespace
{
/** Distance from the true value in units of the last place of the double nearest to it. */
double unitsOff (double result, double x)
{
    const auto exact = std::tanh (static_cast<long double> (x));
    const auto nearest = std::abs (static_cast<double> (exact));
    const auto ulp = static_cast<long double> (
        std::max (nearest - std::nextafter (nearest, 0.0), std::numeric_limits<double>::denorm_min()));
    return static_cast<double> (std::abs (static_cast<long double> (result) - exact) / ulp);
}

struct Worst
{
    double units = 0.0, at = 0.0, relative = 0.0;

    void see (double x, double result)
    {
        const auto off = unitsOff (result, x);

        if (! (off <= units))
        {
            units = off;
            at = x;
        }

        const auto exact = std::tanh (static_cast<long double> (x));

        // Below the normal range there are no 26 bits to be correct.
        if (std::abs (x) >= std::numeric_limits<double>::min())
            relative = std::max (relative, static_cast<double> (std::abs ((result - exact) / exact)));
    }
};

Worst worstOf (std::vector<double> xs)
{
    std::vector<double> ys (xs.size());
    VectorOps::tanh (xs.data(), ys.data(), static_cast<int> (xs.size()));
    Worst worst;

    for (std::size_t i = 0; i < xs.size(); ++i)
        worst.see (xs[i], ys[i]);

    return worst;
}

constexpr double requiredRelative = 0x1p-26; // 26 correct bits
constexpr double claimedUnits = 4.0;         // what the header promises beyond
} // namespace

TEST (VectorOpsTanh, IsAccurateAtEverySizeOfArgument)
{
    std::vector<double> xs;

    for (int i = 0; i <= 60600; ++i) // 200 a decade from 1e-300 to 1e3
    {
        const auto x = std::pow (10.0, -300.0 + i * 0.005);
        xs.push_back (x);
        xs.push_back (-x);
    }

    const auto worst = worstOf (xs);
    EXPECT_LE (worst.relative, requiredRelative);
    EXPECT_LE (worst.units, claimedUnits) << "at " << worst.at;
}

TEST (VectorOpsTanh, IsAccurateOverTheCurvedPart)
{
    std::vector<double> xs;

    for (int i = -200000; i <= 200000; ++i)
        xs.push_back (i * 1.1e-4); // +-22: beyond, a double is 1

    const auto worst = worstOf (xs);
    EXPECT_LE (worst.relative, requiredRelative);
    EXPECT_LE (worst.units, claimedUnits) << "at " << worst.at;
}

TEST (VectorOpsTanh, IsAccurateAtRandomArguments)
{
    std::mt19937_64 random (0x7a31);
    std::vector<double> xs;

    while (xs.size() < 100000)
    {
        const auto bits = random();
        double x;
        std::memcpy (&x, &bits, sizeof (x));

        if (std::isfinite (x))
            xs.push_back (x);

        xs.push_back (std::ldexp (static_cast<double> (random() >> 11), -53 + static_cast<int> (random() % 12) - 6));
    }

    const auto worst = worstOf (xs);
    EXPECT_LE (worst.relative, requiredRelative);
    EXPECT_LE (worst.units, claimedUnits) << "at " << worst.at;
}

TEST (VectorOpsTanh, IsAccurateWhereTheRangeReductionChangesItsPower)
{
    std::vector<double> xs;

    // 2 x / ln 2 = k + 1/2 is where k changes; a few neighbours on either side.
    for (int k = 0; k < 64; ++k)
    {
        auto x = 0.5 * (k + 0.5) * 0.69314718055994530942;

        for (int step = 0; step < 4; ++step)
            x = std::nextafter (x, 0.0);

        for (int step = 0; step < 9; ++step, x = std::nextafter (x, 100.0))
            xs.push_back (x);
    }

    EXPECT_LE (worstOf (xs).units, claimedUnits);
}

TEST (VectorOpsTanh, KeepsTheSmallestNumbers)
{
    const KeepDenormals keep;

    // tanh x = x - x^3 / 3 + ..., so the nearest double of a tiny x is x itself.
    const auto tiny = std::numeric_limits<double>::denorm_min();
    const double s[] = { tiny, -tiny, 5.0 * tiny, std::numeric_limits<double>::min(), 1e-310, -1e-300, 0.0, -0.0 };
    double d[8];
    VectorOps::tanh (s, d, 8);

    for (int i = 0; i < 8; ++i)
        EXPECT_TRUE (same (d[i], s[i])) << s[i] << " became " << d[i];
}

TEST (VectorOpsTanh, EndsAtOneAndLetsANanStay)
{
    const auto inf = std::numeric_limits<double>::infinity();
    const double s[] = { 20.0, 100.0, 1000.0, std::numeric_limits<double>::max(), inf, -20.0, -1000.0, -inf };
    double d[8];
    VectorOps::tanh (s, d, 8);

    for (int i = 0; i < 8; ++i)
        EXPECT_EQ (d[i], i < 5 ? 1.0 : -1.0) << s[i];

    double nan = std::nan ("");
    VectorOps::tanh (&nan, &nan, 1);
    EXPECT_TRUE (std::isnan (nan));
}

TEST (VectorOpsTanh, IsOddAndNeverAboveOne)
{
    for (int i = 0; i < 50000; ++i)
    {
        const double pair[] = { i * 0.0005 + 1e-7, -(i * 0.0005 + 1e-7) };
        double d[2];
        VectorOps::tanh (pair, d, 2);
        ASSERT_TRUE (same (d[0], -d[1])) << pair[0];
        ASSERT_LE (d[0], 1.0) << pair[0];
    }
}

TEST (VectorOpsTanh, DoesNotDependOnLengthPlaceOrNeighbours)
{
    std::mt19937 random (0x90);
    std::vector<double> xs, alone (longest);

    for (int i = 0; i < longest; ++i)
        xs.push_back ((random() * 0x1p-31 - 1.0) * (i % 3 == 0 ? 30.0 : i % 3 == 1 ? 1.0 : 1e-6));

    xs[40] = std::nan ("");
    xs[41] = std::numeric_limits<double>::infinity();
    xs[42] = std::numeric_limits<double>::denorm_min();

    for (int i = 0; i < longest; ++i)
        VectorOps::tanh (&xs[size_t (i)], &alone[size_t (i)], 1);

    for (int n = 0; n <= longest; ++n)
    {
        for (int offsets = 0; offsets < 16; ++offsets)
        {
            Placed<double> x (n, offsets & 3), z (n, offsets >> 2);
            std::copy (xs.begin(), xs.begin() + n, x.data());
            VectorOps::tanh (x.data(), z.data(), n);
            VectorOps::tanh (x.data(), x.data(), n);

            for (int i = 0; i < n; ++i)
            {
                ASSERT_TRUE (same (z[i], alone[size_t (i)])) << i << " of " << n;
                ASSERT_TRUE (same (x[i], alone[size_t (i)])) << i << " of " << n << " in place";
            }

            ASSERT_TRUE (x.guardsAreIntact() && z.guardsAreIntact());
        }
    }
}

// ---- float -----------------------------------------------------------------------------------

TEST (VectorOps, AddsFloats)
{
    checkBinary<float> ([] (Floats a, Floats b, float* d, int n) { VectorOps::add (a, b, d, n); },
                        [] (float a, float b) { return a + b; });
}

TEST (VectorOps, SubtractsTheFirstFloatFromTheSecond)
{
    checkBinary<float> ([] (Floats a, Floats b, float* d, int n) { VectorOps::subtractFrom (a, b, d, n); },
                        [] (float a, float b) { return b - a; });

    const float a = 1.0f, b = 5.0f;
    float d = 0.0f;
    VectorOps::subtractFrom (&a, &b, &d, 1);
    EXPECT_EQ (d, 4.0f);
}

TEST (VectorOps, MultipliesFloats)
{
    checkBinary<float> ([] (Floats a, Floats b, float* d, int n) { VectorOps::multiply (a, b, d, n); },
                        [] (float a, float b) { return a * b; });
}

TEST (VectorOps, AppliesAConstantToFloats)
{
    checkUnary<float> ([] (Floats s, float* d, int n) { VectorOps::addConstant (s, 0.3f, d, n); },
                       [] (float s) { return s + 0.3f; });
    checkUnary<float> ([] (Floats s, float* d, int n) { VectorOps::multiplyByConstant (s, -0.7f, d, n); },
                       [] (float s) { return s * -0.7f; });
}

TEST (VectorOps, CopiesFillsAndClearsFloats)
{
    checkUnary<float> ([] (Floats s, float* d, int n) { VectorOps::copy (s, d, n); }, [] (float s) { return s; });
    checkUnary<float> ([] (Floats, float* d, int n) { VectorOps::fill (0.1f, d, n); }, [] (float) { return 0.1f; });
    checkUnary<float> ([] (Floats, float* d, int n) { VectorOps::clear (d, n); }, [] (float) { return 0.0f; });
}

TEST (VectorOps, MultipliesAndAdds)
{
    const auto a = values<float> (41), b = values<float> (42), c = values<float> (43);

    for (int n = 0; n <= longest; ++n)
    {
        for (int offsets = 0; offsets < 256; ++offsets)
        {
            Placed<float> x (n, offsets & 3), y (n, (offsets >> 2) & 3), z (n, (offsets >> 4) & 3), d (n, offsets >> 6);
            std::copy (a.begin(), a.begin() + n, x.data());
            std::copy (b.begin(), b.begin() + n, y.data());
            std::copy (c.begin(), c.begin() + n, z.data());
            VectorOps::multiplyAdd (x.data(), y.data(), z.data(), d.data(), n);

            // In place in each source in turn; the others are not touched by it.
            auto* inPlace = offsets % 3 == 0 ? &x : offsets % 3 == 1 ? &y : &z;
            VectorOps::multiplyAdd (x.data(), y.data(), z.data(), inPlace->data(), n);

            for (int i = 0; i < n; ++i)
            {
                const auto product = a[size_t (i)] * b[size_t (i)];
                ASSERT_TRUE (same (d[i], product + c[size_t (i)])) << i << " of " << n;
                ASSERT_TRUE (same ((*inPlace)[i], product + c[size_t (i)])) << i << " of " << n << " in place";
            }

            ASSERT_TRUE (x.guardsAreIntact() && y.guardsAreIntact() && z.guardsAreIntact() && d.guardsAreIntact());
        }
    }
}

TEST (VectorOps, MultipliesAndAddsWithTwoRoundings)
{
    // (1 + 2^-12)^2 = 1 + 2^-11 + 2^-24 rounds to 1 + 2^-11; a fused operation would leave 2^-24.
    float a[20], c[20], d[20];
    std::fill (a, a + 20, 1.0f + 0x1p-12f);
    std::fill (c, c + 20, -(1.0f + 0x1p-11f));
    VectorOps::multiplyAdd (a, a, c, d, 20);

    for (const auto value : d)
        EXPECT_EQ (value, 0.0f);
}

TEST (VectorOps, LowersWhatIsAboveALevel)
{
    checkUnary<float> (
        [] (Floats s, float* d, int n)
        {
            if (s != d)
                std::copy (s, s + n, d);

            VectorOps::lowerTo (d, n, 0.5f);
        },
        [] (float s) { return s > 0.5f ? 0.5f : s; });

    const auto inf = std::numeric_limits<float>::infinity();
    float s[] = { std::nanf (""), -inf, inf, 0.5f, std::nextafter (0.5f, 1.0f), std::nextafter (0.5f, 0.0f), -7.0f };
    const auto justBelow = s[5];
    VectorOps::lowerTo (s, 7, 0.5f);
    EXPECT_TRUE (std::isnan (s[0])) << "a NaN is not above the level and stays";
    EXPECT_EQ (s[1], -inf);
    EXPECT_EQ (s[2], 0.5f);
    EXPECT_EQ (s[3], 0.5f);
    EXPECT_EQ (s[4], 0.5f);
    EXPECT_EQ (s[5], justBelow);
    EXPECT_EQ (s[6], -7.0f);
}

TEST (VectorOps, ClipsToBothLimits)
{
    checkUnary<float> ([] (Floats s, float* d, int n) { VectorOps::clip (s, -0.25f, 24.0f, d, n); },
                       [] (float s) { return s < -0.25f  ? -0.25f
                                             : s > 24.0f ? 24.0f
                                                         : s; });

    const auto inf = std::numeric_limits<float>::infinity();
    const float s[] = { std::nanf (""), -inf, inf, -24.0f, 24.0f, std::nextafter (24.0f, 30.0f), -24.00001f, 3.0f };
    float d[8];
    VectorOps::clip (s, -24.0f, 24.0f, d, 8);
    EXPECT_TRUE (std::isnan (d[0])) << "a NaN is beyond neither limit and stays";
    EXPECT_EQ (d[1], -24.0f);
    EXPECT_EQ (d[2], 24.0f);
    EXPECT_EQ (d[3], -24.0f);
    EXPECT_EQ (d[4], 24.0f);
    EXPECT_EQ (d[5], 24.0f);
    EXPECT_EQ (d[6], -24.0f);
    EXPECT_EQ (d[7], 3.0f);
}

TEST (VectorOps, MovesOverlappingFloats)
{
    const auto a = values<float> (51);

    for (int n = 0; n <= longest; ++n)
    {
        for (int shift = -20; shift <= 20; ++shift)
        {
            Placed<float> x (n + 20, shift & 3);
            auto* source = x.data() + (shift < 0 ? -shift : 0);
            auto* destination = source + shift;
            std::copy (a.begin(), a.begin() + n, source);
            VectorOps::move (source, destination, n);

            for (int i = 0; i < n; ++i)
                ASSERT_TRUE (same (destination[i], a[size_t (i)])) << i << " of " << n << " moved by " << shift;

            ASSERT_TRUE (x.guardsAreIntact());
        }
    }

    // Long vectors by a delay's length, both ways: here a plain copy would read what it has written.
    for (const auto shift : { -52, -1, 1, 52 })
    {
        std::vector<float> x (5104), expected;

        for (std::size_t i = 0; i < x.size(); ++i)
            x[i] = static_cast<float> (i);

        expected.assign (x.begin() + 52, x.begin() + 5052);
        VectorOps::move (x.data() + 52, x.data() + 52 + shift, 5000);
        EXPECT_TRUE (std::equal (expected.begin(), expected.end(), x.begin() + 52 + shift)) << shift;
    }

    VectorOps::move (nullptr, nullptr, 0); // as for every operation, no elements means no access
}

TEST (VectorOps, LetsInfinitiesAndNansThroughArithmetic)
{
    const auto inf = std::numeric_limits<float>::infinity();
    const float a[] = { inf, -inf, inf, std::nanf (""), 0.0f };
    const float b[] = { 1.0f, 1.0f, inf, 1.0f, inf };
    float d[5];

    VectorOps::add (a, b, d, 5);
    EXPECT_EQ (d[0], inf);
    EXPECT_EQ (d[1], -inf);
    EXPECT_EQ (d[2], inf);
    EXPECT_TRUE (std::isnan (d[3]));

    VectorOps::subtractFrom (a, b, d, 5);
    EXPECT_EQ (d[0], -inf);
    EXPECT_TRUE (std::isnan (d[2]));

    VectorOps::multiply (a, b, d, 5);
    EXPECT_TRUE (std::isnan (d[4]));

    const double zero = 0.0, one = 1.0;
    double quotient;
    VectorOps::divideInto (&zero, &one, &quotient, 1);
    EXPECT_EQ (quotient, std::numeric_limits<double>::infinity());
}
