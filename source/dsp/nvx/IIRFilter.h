// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "dsp/nvx/Filter.h"

#include <atomic>
#include <vector>

namespace NVX
{

/** A second-order section, divided through by a0: y = b0 x + b1 x1 + b2 x2 - a1 y1 - a2 y2. */
struct BiquadCoefficients
{
    float b0 = 1.0f, b1 = 0.0f, b2 = 0.0f, a1 = 0.0f, a2 = 0.0f;
};

/** Held for the length of one block or one replacement of coefficients. */
class RecordLock
{
public:
    void lock() noexcept;
    bool tryLock() noexcept { return ! taken.test_and_set (std::memory_order_acquire); }
    void unlock() noexcept { taken.clear (std::memory_order_release); }

private:
    std::atomic_flag taken = ATOMIC_FLAG_INIT;
};

/** One channel of a biquad. An inactive record lets its channel pass untouched and keeps its state. */
struct IIRFilterRecord
{
    RecordLock lock;
    BiquadCoefficients coefficients;
    float s1 = 0.0f, s2 = 0.0f;
    bool active = true;
};

/** Biquad in single precision, transposed direct form II; types 0 to 6 of FilterTypeValues.

    The responses are bilinear transforms of the analogue second-order forms, with the equaliser
    forms (peaking, shelves) symmetric in dB between cut and boost. The shelves take q as their slope,
    1 being the steepest that does not overshoot; above 1 there is a shelf only while
    1 - 1 / q <= 2 A / (A * A + 1), A the root of the gain, and beyond that the coefficients are not
    numbers. The other responses take q as a resonance.

    The peaking and shelf responses limit the frequency to at least 2 Hz, the others do not.
    Coefficients are computed in double and stored as float; samples and states are float, so that
    a narrow response far below 100 Hz wants an SVFilter instead.

    Shape    one channel of n samples, in place, float throughout. A state that is not above 1e-8 in
             magnitude at the end of a block becomes 0, against denormals: at that size, and only
             there, the result depends on how the signal is cut into blocks. A state that is not a
             number becomes 0 as well.
    Rate     any, in Hz; keep the frequency below half of it.
    Latency  none.
    Threads  setSampleRate and clear: stopped. setResponse and setActive: any, one caller at a time.
             process: audio.
    Errors   none reported. A type that has no row here gives a filter that passes its signal on.
*/
class IIRFilter : public Filter
{
public:
    IIRFilter (int responseType, double responseFrequency, double responseQ, double responseGain) noexcept
        : Filter (responseType, responseFrequency, responseQ, responseGain)
    {
    }

    /** Allocates. A rate of 0 channels leaves no records. */
    void setSampleRate (int newNumChannels, double newSampleRate) override;
    void clear() override { records.clear(); }
    void process (float* samples, int numSamples, int channel) noexcept override;

    // The double-precision access to one sample and to the state is not served here: the states are
    // float and may be in use by another thread. tick returns x, the getters zeros.
    double tick (int channel, double x) noexcept override;
    FilterState getState (int channel) const noexcept override;
    void setState (const FilterState& state, int channel) noexcept override;
    FilterCoefficients getCoefficients (int channel) const noexcept override;
    void setCoefficients (const FilterCoefficients& values, int channel) noexcept override;

    int getNumRecords() const noexcept override { return static_cast<int> (records.size()); }

    /** Replaces the response of all channels from their next block on and keeps their states. Waits
        for a block in progress; does not allocate. */
    void setResponse (double newFrequency, double newQ, double newGain) noexcept;

    /** Takes a channel out of the filter, or back in, from its next block on. */
    void setActive (int channel, bool shouldBeActive) noexcept;

    /** The coefficients of a response, for whoever wants to draw or to check one. */
    static BiquadCoefficients design (int responseType, double frequency, double q, double gain,
                                      double sampleRate) noexcept;

    BiquadCoefficients coefficients; // of the response as last computed; process reads the records' own
    std::vector<IIRFilterRecord> records;
};

} // namespace NVX
