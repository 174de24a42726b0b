// SPDX-License-Identifier: GPL-3.0-or-later
#include "dsp/nvx/IIRFilter.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <mutex>
#include <thread>

namespace NVX
{

namespace
{
constexpr double pi = 3.141592653589793;
constexpr double lowestGuardedHz = 2.0;  // nearer to 0 an equaliser in float degenerates
constexpr float smallestState = 1.0e-8f; // -160 dB: inaudible, and far above the denormals
constexpr int triesBeforeYield = 21;

BiquadCoefficients toFloat (double b0, double b1, double b2, double a1, double a2) noexcept
{
    return { static_cast<float> (b0), static_cast<float> (b1), static_cast<float> (b2), static_cast<float> (a1),
             static_cast<float> (a2) };
}

// Also true for a state that is not a number, which would otherwise stay for good.
bool isNegligible (float state) noexcept { return ! (std::fabs (state) > smallestState); }
} // namespace

void RecordLock::lock() noexcept
{
    for (int i = 0; i < triesBeforeYield; ++i)
        if (tryLock())
            return;

    while (! tryLock())
        std::this_thread::yield();
}

/*  The analogue prototypes and their bilinear transform in the forms that Robert Bristow-Johnson's
    audio equaliser notes made common. The high-pass, low-pass and band-pass use t = tan (w / 2)
    rather than sine and cosine of w, which is the same response.

    The order of the operations is kept as written, and A is a float: both decide the last bit of a
    float coefficient.
*/
BiquadCoefficients IIRFilter::design (int responseType, double frequency, double q, double gain,
                                      double sampleRate) noexcept
{
    const double w = 2.0 * pi * frequency / sampleRate;
    const double guardedW = 2.0 * pi * std::max (frequency, lowestGuardedHz) / sampleRate;
    const double t = std::tan (pi * frequency / sampleRate);
    const double k = 1.0 / q;
    const float rootOfGain = std::max (0.0f, std::sqrt (static_cast<float> (gain)));
    const double A = static_cast<double> (rootOfGain);

    switch (responseType)
    {
        case iirHighPass:
        {
            const double d = 1.0 / (k * t + 1.0 + t * t);
            return toFloat (d, -2.0 * d, d, (t * t - 1.0) * 2.0 * d, (1.0 - k * t + t * t) * d);
        }

        case iirLowPass:
        {
            const double c = 1.0 / t;
            const double d = 1.0 / (k * c + 1.0 + c * c);
            return toFloat (d, 2.0 * d, d, (1.0 - c * c) * 2.0 * d, (1.0 - k * c + c * c) * d);
        }

        case iirPeaking:
        {
            const double al = std::sin (guardedW) * 0.5 / q;
            const double d = 1.0 / (al / A + 1.0);
            const double middle = -2.0 * std::cos (guardedW) * d;
            return toFloat ((al * A + 1.0) * d, middle, (1.0 - al * A) * d, middle, (1.0 - al / A) * d);
        }

        case iirAllPass:
        {
            // A q of 0 would divide by 0; beyond 1000 float no longer tells the poles from the unit circle.
            const double divisor = q < 0.00001 ? 0.00002 : 2.0 * std::min (q, 1000.0);
            const double al = std::sin (w) / divisor;
            const double d = 1.0 / (al + 1.0);
            const double outer = (1.0 - al) * d;
            const double middle = -2.0 * std::cos (w) * d;
            return toFloat (outer, middle, (al + 1.0) * d, middle, outer);
        }

        case iirBandPass:
        {
            const double d = 1.0 / (k * t + 1.0 + t * t);
            const double b0 = t * d * k;
            return toFloat (b0, 0.0, -b0, (t * t - 1.0) * 2.0 * d, (1.0 - k * t + t * t) * d);
        }

        case iirLowShelf:
        {
            const double r = std::sqrt ((k - 1.0) * (A * A + 1.0) + 2.0 * A) * std::sin (guardedW);
            const double p = std::cos (guardedW) * (A - 1.0);
            const double s = std::cos (guardedW) * (A + 1.0);
            const double d = 1.0 / (r + p + A + 1.0);
            return toFloat ((r + A + 1.0 - p) * A * d, (A - 1.0 - s) * 2.0 * A * d, (A + 1.0 - p - r) * A * d,
                            (s + A - 1.0) * -2.0 * d, (p + A + 1.0 - r) * d);
        }

        case iirHighShelf:
        {
            const double r = std::sqrt ((k - 1.0) * (A * A + 1.0) + 2.0 * A) * std::sin (guardedW);
            const double p = std::cos (guardedW) * (A - 1.0);
            const double s = std::cos (guardedW) * (A + 1.0);
            const double u = A + 1.0 + p;
            const double v = A + 1.0 - p;
            const double e = A - 1.0 - s;
            const double d = 1.0 / (r + v);
            return toFloat ((r + u) * A * d, (A - 1.0 + s) * -2.0 * A * d, (u - r) * A * d, 2.0 * e * d, (v - r) * d);
        }

        default: return {};
    }
}

void IIRFilter::setSampleRate (int newNumChannels, double newSampleRate)
{
    Filter::setSampleRate (newNumChannels, newSampleRate);

    coefficients = design (type, frequency, q, gain, sampleRate);
    records = std::vector<IIRFilterRecord> (static_cast<std::size_t> (std::max (0, numChannels)));

    for (auto& record : records)
        record.coefficients = coefficients;
}

void IIRFilter::process (float* samples, int numSamples, int channel) noexcept
{
    if (static_cast<std::size_t> (channel) >= records.size()) // unsigned: catches a negative channel too
        return;

    auto& record = records[static_cast<std::size_t> (channel)];

    // The one lock of this family: it lets setResponse exchange five floats between two blocks. The
    // plug-in replaces its filters only while no block runs, so here it is always free.
    const std::lock_guard<RecordLock> guard (record.lock);

    if (! record.active)
        return;

    const float b0 = record.coefficients.b0, b1 = record.coefficients.b1, b2 = record.coefficients.b2;
    const float a1 = record.coefficients.a1, a2 = record.coefficients.a2;
    float s1 = record.s1, s2 = record.s2;

    for (int i = 0; i < numSamples; ++i)
    {
        const float x = samples[i];
        const float y = b0 * x + s1;
        s1 = s2 + b1 * x - a1 * y; // left to right
        s2 = b2 * x - a2 * y;
        samples[i] = y;
    }

    record.s1 = isNegligible (s1) ? 0.0f : s1;
    record.s2 = isNegligible (s2) ? 0.0f : s2;
}

double IIRFilter::tick (int, double x) noexcept { return x; }

FilterState IIRFilter::getState (int) const noexcept { return {}; }

void IIRFilter::setState (const FilterState&, int) noexcept {}

FilterCoefficients IIRFilter::getCoefficients (int) const noexcept { return {}; }

void IIRFilter::setCoefficients (const FilterCoefficients&, int) noexcept {}

void IIRFilter::setResponse (double newFrequency, double newQ, double newGain) noexcept
{
    frequency = newFrequency;
    q = newQ;
    gain = newGain;
    coefficients = design (type, frequency, q, gain, sampleRate);

    for (auto& record : records)
    {
        const std::lock_guard<RecordLock> guard (record.lock);
        record.coefficients = coefficients;
    }
}

void IIRFilter::setActive (int channel, bool shouldBeActive) noexcept
{
    if (static_cast<std::size_t> (channel) >= records.size())
        return;

    auto& record = records[static_cast<std::size_t> (channel)];
    const std::lock_guard<RecordLock> guard (record.lock);
    record.active = shouldBeActive;
}

} // namespace NVX
