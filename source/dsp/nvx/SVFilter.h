// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "dsp/nvx/Filter.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <vector>

namespace NVX
{

/** One channel of a state-variable filter: coefficients and the states of its two integrators.

    The analogue two-integrator loop with each integrator replaced by the trapezoidal rule and the
    delay-free loop solved in closed form, so the response is the bilinear transform of the analogue
    one, exact at the cut-off. v1 is the band-pass and v2 the low-pass output of the loop; every
    response is a mix m0 x + m1 v1 + m2 v2.
*/
struct SVFilterRecord
{
    int type = 0;
    double s1 = 0.0, s2 = 0.0;
    double g = 0.0, k = 0.0;
    double a1 = 0.0, a2 = 0.0, a3 = 0.0;
    double m0 = 0.0, m1 = 0.0, m2 = 0.0;

    /** Computes the coefficients and leaves the states alone.

        The notch answers to 2, a number that belongs to the biquads, and 13, where it would be looked
        for, has no entry and so stays silent. It remains that way: no list of filters asks for either,
        and a 13 that began to sound would change what the number means.
    */
    void setUp (int responseType, double frequency, double q, double gain, double sampleRate) noexcept
    {
        constexpr double pi = 3.141592653589793;
        const double t = std::tan (frequency * pi / sampleRate);
        const double A = std::sqrt (gain);

        type = responseType;
        g = t;
        k = 1.0 / q;

        switch (responseType)
        {
            case svLowPass: setMix (0.0, 0.0, 1.0); break;
            case svBandPass: setMix (0.0, 1.0, 0.0); break;
            case svHighPass: setMix (1.0, -k, -1.0); break;
            case svPeak: setMix (1.0, -k, -2.0); break;
            case iirPeaking: setMix (1.0, -k, 0.0); break; // the notch that nothing reaches
            case svBell:
                k = 1.0 / (q * A); // over A, which makes a cut the inverse of the boost of its size
                setMix (1.0, (A * A - 1.0) * k, 0.0);
                break;
            case svLowShelf:
                g = t / std::sqrt (A); // puts half the plateau's dB on the given frequency
                setMix (1.0, (A - 1.0) * k, A * A - 1.0);
                break;
            case svHighShelf:
                g = t * std::sqrt (A);
                setMix (A * A, (1.0 - A) * k * A, 1.0 - A * A);
                break;
            default:
                g = k = a1 = a2 = a3 = 0.0;
                setMix (0.0, 0.0, 0.0);
                return;
        }

        a1 = 1.0 / ((k + g) * g + 1.0);
        a2 = g * a1;
        a3 = g * a2;
    }

    double tick (double x) noexcept
    {
        const double v3 = x - s2;
        const double v1 = a1 * s1 + a2 * v3;
        const double v2 = s2 + a2 * s1 + a3 * v3;
        s1 = 2.0 * v1 - s1;
        s2 = 2.0 * v2 - s2;
        return m0 * x + m1 * v1 + m2 * v2;
    }

private:
    void setMix (double ofInput, double ofBand, double ofLow) noexcept
    {
        m0 = ofInput;
        m1 = ofBand;
        m2 = ofLow;
    }
};

/** Second-order state-variable filter; N is its response, 9 to 16 of FilterTypeValues.

    It keeps its precision far below the audio band, where a biquad in single precision does not:
    all of it is double, and only the output is rounded to float.

    Shape    one channel of n samples, in place, float; state and coefficients are double.
             The result does not depend on how the signal is cut into blocks.
    Rate     any, in Hz; keep the frequency below half of it.
    Latency  none.
    Threads  setSampleRate, clear and the setters: stopped. process and tick: audio.
*/
template <int N>
class SVFilter : public Filter
{
    static_assert (N >= svLowPass && N <= svHighShelf, "the state-variable responses are 9 to 16");

public:
    SVFilter (double responseFrequency, double responseQ, double responseGain) noexcept
        : Filter (N, responseFrequency, responseQ, responseGain)
    {
    }

    /** Allocates. A rate of 0 channels leaves no records. */
    void setSampleRate (int newNumChannels, double newSampleRate) override
    {
        Filter::setSampleRate (newNumChannels, newSampleRate);

        SVFilterRecord fresh;
        fresh.setUp (type, frequency, q, gain, sampleRate);
        records.assign (static_cast<std::size_t> (std::max (0, numChannels)), fresh);
    }

    void clear() override { records.clear(); }

    void process (float* samples, int numSamples, int channel) noexcept override
    {
        if (! hasRecord (channel))
            return;

        SVFilterRecord local = at (channel); // a copy, so that the loop runs in registers

        for (int i = 0; i < numSamples; ++i)
            samples[i] = static_cast<float> (local.tick (static_cast<double> (samples[i])));

        at (channel).s1 = local.s1;
        at (channel).s2 = local.s2;
    }

    double tick (int channel, double x) noexcept override { return hasRecord (channel) ? at (channel).tick (x) : x; }

    FilterState getState (int channel) const noexcept override
    {
        if (! hasRecord (channel))
            return {};

        return { at (channel).s1, at (channel).s2 };
    }

    void setState (const FilterState& state, int channel) noexcept override
    {
        if (! hasRecord (channel))
            return;

        at (channel).s1 = state[0];
        at (channel).s2 = state[1];
    }

    FilterCoefficients getCoefficients (int channel) const noexcept override
    {
        if (! hasRecord (channel))
            return {};

        const auto& r = at (channel);
        return { r.a1, r.a2, r.a3, r.m0, r.m1, r.m2 };
    }

    void setCoefficients (const FilterCoefficients& values, int channel) noexcept override
    {
        if (! hasRecord (channel))
            return;

        auto& r = at (channel);
        r.a1 = values[0];
        r.a2 = values[1];
        r.a3 = values[2];
        r.m0 = values[3];
        r.m1 = values[4];
        r.m2 = values[5];
    }

    int getNumRecords() const noexcept override { return static_cast<int> (records.size()); }

    std::vector<SVFilterRecord> records;

private:
    // Unsigned, so that a negative channel is out of range by the same comparison.
    bool hasRecord (int channel) const noexcept { return static_cast<std::size_t> (channel) < records.size(); }
    SVFilterRecord& at (int channel) noexcept { return records[static_cast<std::size_t> (channel)]; }
    const SVFilterRecord& at (int channel) const noexcept { return records[static_cast<std::size_t> (channel)]; }
};

} // namespace NVX
