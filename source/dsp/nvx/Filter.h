// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "dsp/nvx/Effect.h"

#include <array>

namespace NVX
{

/** The responses, numbered. The numbers are fixed: lists of filters are written with them, and the
    class that serves a response follows from its number (0 to 6 IIRFilter, 7 and 8 OnePoleFilter,
    9 to 16 SVFilter).
*/
enum FilterTypeValues : int
{
    iirHighPass = 0, // second order
    iirLowPass = 1,
    iirPeaking = 2,
    iirAllPass = 3,
    iirBandPass = 4, // 0 dB at its centre, whatever the Q
    iirLowShelf = 5,
    iirHighShelf = 6,
    onePoleHighPass = 7,
    onePoleLowPass = 8,
    svLowPass = 9,
    svBandPass = 10, // gain Q at its centre
    svHighPass = 11,
    svPeak = 12,   // the difference of the high-pass and the low-pass
    svSilent = 13, // no response of its own, see SVFilterRecord::setUp
    svBell = 14,
    svLowShelf = 15,
    svHighShelf = 16
};

/** The two integrator states; a filter with one state leaves the second at 0. */
using FilterState = std::array<double, 2>;

/** a1, a2, a3, m0, m1, m2 of a state-variable filter; a, 1 - a and zeros of a one-pole. */
using FilterCoefficients = std::array<double, 6>;

/** Base of the filters: what response is wanted, and direct access to one sample or to the state.

    A new filter has no channel records and passes its signal on. setSampleRate computes the
    coefficients, from the fields as they then stand, and builds one record per channel with zero
    state. The cut-off is not limited here: near or above half the rate the formulas fold over or
    go unstable, and whoever sets a filter up must keep below.

    Units    frequency in Hz, gain linear (of the whole peak or plateau, not its square root).
    Threads  process, tick, getState and getCoefficients: audio. The rest: stopped.
    Errors   none reported. A channel without a record: tick returns x, the getters return zeros,
             the setters do nothing.
*/
class Filter : public Effect
{
public:
    Filter (int responseType, double responseFrequency, double responseQ, double responseGain) noexcept
        : type (responseType), frequency (responseFrequency), q (responseQ), gain (responseGain)
    {
    }

    /** Filters one sample and returns it unrounded. */
    virtual double tick (int channel, double x) noexcept = 0;

    virtual FilterState getState (int channel) const noexcept = 0;
    virtual void setState (const FilterState& state, int channel) noexcept = 0;
    virtual FilterCoefficients getCoefficients (int channel) const noexcept = 0;
    virtual void setCoefficients (const FilterCoefficients& values, int channel) noexcept = 0;

    virtual int getNumRecords() const noexcept = 0;

    int type; // one of FilterTypeValues
    double frequency;
    double q;
    double gain;
};

} // namespace NVX
