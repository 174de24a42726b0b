// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

/** What one channel of the transformer remembers: seven doubles. */
struct OutputChannelState
{
    OutputChannelState() = default;

    /** At rest, for a sample period T in seconds. */
    explicit OutputChannelState (double T) noexcept;

    double envelope = 0.0;       // level follower
    double flux = 0.0;           // leaky integral of the signal
    double lastOut = 0.0;        // last sample before the differentiator
    double integrateA = 0.0;     // stored, read by nothing
    double integrateB = 0.0;     // leak of the integrator: 2.5 ms
    double differentiateA = 0.0; // stored, read by nothing
    double differentiateB = 0.0; // weight of the previous sample in the differentiator
};

/** The output transformer: integrate, saturate the flux, differentiate.

    At low level it is transparent, because the differentiator is the exact inverse of the leaky integrator. Low
    frequencies make a large flux and saturate first. The knee of the tanh follows the programme's level within 5 ms,
    and an offset of 0.002 makes the curve slightly asymmetrical: the even harmonics of the unit, and on silence a
    constant of about 1e-12.

    Shape    one channel of n samples, in place; double inside, rounded to float at the end.
    Rate     the processing rate; T = 1 / rate in seconds.
    Latency  none.
    Threads  prepare when stopped; process on audio, one channel after the other. Nothing allocates.
    Errors   none; a NaN stays in the channel's state until a new one is made.
*/
class OutputTransformer
{
public:
    void prepare (double T) noexcept;
    void process (float* channel, int numSamples, OutputChannelState& state) noexcept;

    double envelopeA = 0.0, envelopeB = 0.0; // level follower, 5 ms
    double kneeScale = 0.0;                  // 90 T
    double fluxWeight = 0.0;                 // 700 T

private:
    static constexpr int chunkSize = 256; // the vectors of a chunk stay in the nearest cache

    void processChunk (float* channel, int n, OutputChannelState& state) noexcept;

    alignas (64) double x[chunkSize];
    alignas (64) double y[chunkSize];     // flux
    alignas (64) double level[chunkSize]; // envelope, then knee
    alignas (64) double z[chunkSize];     // saturated flux
};
