// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

namespace NVX
{

/** Base of everything in this namespace: something that changes one channel's samples in place.

    An effect keeps a record of state per channel and is handed one channel at a time, so that a
    caller may run any number of channels through one object, one after the other.

    Shape    one channel of n samples, in place, float. n may be 0.
    Rate     in Hz, as stored by setSampleRate.
    Latency  none, except for the two delays.
    Threads  construction, setSampleRate and clear: stopped. process and processAll: audio.
    Errors   none reported. A channel without a record is left as it is.
*/
class Effect
{
public:
    Effect() = default;
    virtual ~Effect() = default;

    Effect (const Effect&) = delete;
    Effect& operator= (const Effect&) = delete;

    /** Stores both. A filter also computes its coefficients and starts every channel from silence. */
    virtual void setSampleRate (int newNumChannels, double newSampleRate)
    {
        numChannels = newNumChannels;
        sampleRate = newSampleRate;
    }

    /** Destroys the channel records; until they are built again, process changes nothing. */
    virtual void clear() = 0;

    virtual void process (float* samples, int numSamples, int channel) noexcept = 0;

    /** Calls process for the channels 0 to numChannels - 1, in this order. */
    virtual void processAll (float* const* channels, int numSamples) noexcept
    {
        for (int channel = 0; channel < numChannels; ++channel)
            process (channels[channel], numSamples, channel);
    }

    double sampleRate = 44100.0;
    int numChannels = 1;
};

} // namespace NVX
