// SPDX-License-Identifier: GPL-3.0-or-later
#include "dsp/BandCompressor.h"
#include "dsp/AnalyticResponse.h"
#include "dsp/PlainSolver.h"
#include "support/Matchers.h"
#include "support/Samples.h"
#include "support/Signals.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <functional>
#include <limits>
#include <memory>
#include <vector>

namespace
{
using Buffer = juce::AudioBuffer<float>;
using Configure = std::function<void (BandCompressor&)>;

struct CascadeRow
{
    int type;
    double hz, q, gain;
};

const CascadeRow cascadeRows[] = { { 11, 9.5, 0.796, 1.0 },
                                   { 14, 22.5, 5.0, 0.9931160484209338 },
                                   { 14, 40.0, 0.7, 1.0069316688518042 },
                                   { 14, 230.0, 0.3, 0.9959785837251127 },
                                   { 6, 12000.0, 0.5, 0.954992586021436 },
                                   { 6, 20000.0, 1.2, 0.9772372209558107 } };

Analytic::Complex cascadeResponse (double f, double rate)
{
    Analytic::Complex h = 1.0;

    for (const auto& row : cascadeRows)
    {
        const auto s = Analytic::normalised (f, std::min (row.hz, 0.49 * rate), rate);
        h *= row.type == 11   ? Analytic::highPass (s, row.q)
             : row.type == 14 ? Analytic::bell (s, row.q, row.gain)
                              : Analytic::highShelfOfSlope (s, row.q, row.gain);
    }

    return h;
}

std::unique_ptr<NVX::FilterCascade> makeCascade (double rate, int channels)
{
    auto cascade = std::make_unique<NVX::FilterCascade>();

    for (const auto& row : cascadeRows)
        cascade->addFilter (row.type, std::min (row.hz, 0.49 * rate), row.q, row.gain);

    cascade->setSampleRate (channels, rate);
    return cascade;
}

constexpr double quickRecovery = 8200.0;

/** A band at 3:1 with the quickest attack and a fixed recovery, settled as prepare leaves it. */
std::unique_ptr<BandCompressor> makeBand (double rate, int channels, int block, const Configure& configure = {})
{
    auto band = std::make_unique<BandCompressor> (1);
    band->transferTable = &DetectorCurves::forRatio (2);
    band->attackOhms = 10.0;
    band->recoveryOhms = quickRecovery;
    band->autoRecovery = false;

    if (configure)
        configure (*band);

    band->prepare (rate, channels, block);
    return band;
}

void setTargets (BandCompressor& band, double wet, double dry, double midSide = 0.5)
{
    band.wetRamp = LinearSmoother (wet);
    band.dryRamp = LinearSmoother (dry);
    band.midSideRamp = LinearSmoother (midSide);
}

/** In place, in blocks of the given lengths over and over. */
Buffer run (BandCompressor& band, Buffer buffer, const std::vector<int>& lengths)
{
    Samples::inBlocks (buffer.getNumSamples(), lengths,
                       [&] (int done, int n)
                       {
                           Buffer piece (buffer.getArrayOfWritePointers(), buffer.getNumChannels(), done, n);
                           band.process (piece.getArrayOfWritePointers(), n);
                       });

    return buffer;
}

// ---- the band once more, plainly ---------------------------------------------------------

/** A value on its way to a target in equal steps. */
struct Line
{
    explicit Line (double value) : current (value) {}

    void go (double target, int steps)
    {
        step = (target - current) / steps;
        left = steps;
    }

    double next()
    {
        if (left > 0)
        {
            current += step;
            --left;
        }

        return current;
    }

    double current, step = 0.0;
    int left = 0;
};

/** A detector filter at rest in its response, with its fade; 1 high-pass, 3 low shelf, 4 high shelf. */
struct Section
{
    Section (int type, double hz, double q, double gain, double rate, double mixed) : mix (mixed)
    {
        const auto A = std::sqrt (gain);
        const auto t = std::tan (std::min (hz, 0.49 * rate) * 3.141592653589793 / rate);
        const auto g = type == 3 ? t / std::sqrt (A) : type == 4 ? t * std::sqrt (A) : t;
        const auto k = 1.0 / q;
        a1 = 1.0 / ((k + g) * g + 1.0);
        a2 = g * a1;
        a3 = g * a2;
        m0 = type == 4 ? A * A : 1.0;
        m1 = type == 1 ? -k : type == 3 ? (A - 1.0) * k : (1.0 - A) * k * A;
        m2 = type == 1 ? -1.0 : type == 3 ? A * A - 1.0 : 1.0 - A * A;
    }

    void process (std::vector<float>& d)
    {
        if (mix.left == 0 && mix.current < 0.5)
            return;

        const auto fading = mix.left != 0;

        for (auto& sample : d)
        {
            const auto x = static_cast<double> (sample);
            const auto v3 = x - s2;
            const auto v1 = a1 * s1 + a2 * v3;
            const auto v2 = s2 + a2 * s1 + a3 * v3;
            s1 = 2.0 * v1 - s1;
            s2 = 2.0 * v2 - s2;
            const auto y = Plain::rounded (m0 * x + m1 * v1 + m2 * v2);
            const auto share = fading ? static_cast<float> (mix.next()) : 1.0f;
            sample = fading ? y * share + sample * (1.0f - share) : y;
        }
    }

    double a1, a2, a3, m0, m1, m2, s1 = 0.0, s2 = 0.0;
    Line mix;
};

struct PlainBand
{
    PlainBand (double rate, int channels)
        : cascade (makeCascade (rate, channels)), solver (rate, 2, 10.0, quickRecovery, false),
          highPass (1, 100.0, 1.0, 1.0, rate, 0.0), lowShelf (3, 125.0, 0.3, 0.12589254117941673, rate, 1.0),
          highShelf (4, 8000.0, 0.3, 7.943282347242816, rate, 1.0)
    {
    }

    void process (Buffer& block)
    {
        const auto n = block.getNumSamples();
        const auto size = static_cast<std::size_t> (n);
        const auto channels = block.getNumChannels();
        std::vector<float> d (size, 0.0f), wets (size), drys (size), drives (size), bs (size), gain (size);

        for (std::size_t i = 0; i < size; ++i)
        {
            drives[i] = static_cast<float> (drive.next());
            wets[i] = static_cast<float> (wet.next());
            drys[i] = static_cast<float> (dry.next());
            bs[i] = midSide ? static_cast<float> (b.next()) : 0.5f;
        }

        Buffer copies (block);

        for (int i = 0; i < n; ++i)
        {
            const auto s = static_cast<std::size_t> (i);

            if (midSide)
            {
                const auto left = block.getSample (0, i), right = block.getSample (1, i);
                copies.setSample (0, i, (left + right) * 0.5f);
                copies.setSample (1, i, (left - right) * 0.5f);
                d[s] = left * (1.0f - bs[s]) + right * bs[s];
            }
            else
            {
                for (int c = 0; c < channels; ++c)
                    d[s] += block.getSample (c, i);

                d[s] *= static_cast<float> (1.0 / channels);
            }
        }

        for (int c = 0; c < channels; ++c)
            cascade->process (copies.getWritePointer (c), n, c);

        if (highPassIn)
            highPass.process (d);

        lowShelf.process (d);
        highShelf.process (d);
        solver.run (d.data(), drives.data(), gain.data(), n);

        for (int i = 0; i < n; ++i)
        {
            const auto s = static_cast<std::size_t> (i);

            if (! midSide)
            {
                for (int c = 0; c < channels; ++c)
                    block.setSample (c, i,
                                     block.getSample (c, i) * drys[s] + copies.getSample (c, i) * gain[s] * wets[s]);

                continue;
            }

            // In double: the engine's own decibels are floats, so its result is a few 1e-6 off.
            const auto db = std::max (20.0 * std::log10 (static_cast<double> (gain[s])), -100.0);
            const auto share = [db] (double part) { return std::pow (10.0, db * std::min (2.0 * part, 1.0) * 0.05); };
            const auto side = static_cast<double> (bs[s]);
            const auto m = static_cast<double> (copies.getSample (0, i)) * (share (1.0 - side) * wets[s] + drys[s]);
            const auto d2 = static_cast<double> (copies.getSample (1, i)) * (share (side) * wets[s] + drys[s]);
            block.setSample (0, i, static_cast<float> (m + d2));
            block.setSample (1, i, static_cast<float> (m - d2));
        }
    }

    std::unique_ptr<NVX::FilterCascade> cascade;
    Plain::Solver solver;
    Section highPass, lowShelf, highShelf;
    bool highPassIn = false, midSide = false;
    Line drive { 31.622776601683793 }, wet { 1.0 }, dry { 0.0 }, b { 0.5 };
};

/** Both over the same block; samples of a few units, so 4e-6 is a handful of float roundings. */
::testing::AssertionResult agree (BandCompressor& band, PlainBand& plain, const Buffer& input,
                                  float tolerance = 4.0e-6f)
{
    auto a = input, b = input;
    band.process (a.getArrayOfWritePointers(), a.getNumSamples());
    plain.process (b);

    if (std::abs (band.mainCapacitor.voltage - plain.solver.capV) > 1.0e-9)
        return ::testing::AssertionFailure()
               << "capacitor at " << band.mainCapacitor.voltage << " V, not " << plain.solver.capV;

    return equalWithin (a, b, tolerance);
}
} // namespace

// ---- construction and preparing --------------------------------------------------------------

TEST (BandCompressor, IsConstructedAtItsDefaults)
{
    const BandCompressor band (0);
    EXPECT_FALSE (band.isReady());
    EXPECT_EQ (band.driveRamp.target, 31.622776601683793);
    EXPECT_EQ (band.wetRamp.target, 1.0);
    EXPECT_EQ (band.dryRamp.target, 0.0);
    EXPECT_EQ (band.midSideRamp.target, 0.5);
    EXPECT_EQ (band.hpfHz, 20.0);
    EXPECT_FALSE (band.nuke);
    EXPECT_TRUE (band.niveau);
    EXPECT_EQ (band.calibrationGain, 14.5075);
    EXPECT_EQ (band.highPass.type, SmoothedSVFilter::highPass);
    EXPECT_EQ (band.lowShelf.type, SmoothedSVFilter::lowShelf);
    EXPECT_EQ (band.highShelf.type, SmoothedSVFilter::highShelf);
}

TEST (BandCompressor, PreparingLandsItsRampsAndTakesTheirLength)
{
    struct Case
    {
        double rate;
        int length;
    };

    for (const auto& c :
         { Case { 44100.0, 4410 }, Case { 96000.0, 9600 }, Case { 384000.0, 38400 }, Case { 768000.0, 11264 } })
    {
        BandCompressor band (0);
        band.driveRamp.setTarget (100.0);
        band.wetRamp.setTarget (0.0);
        band.dryRamp.setTarget (1.0);
        band.midSideRamp.setTarget (0.25);
        band.prepare (c.rate, 2, 16);
        EXPECT_TRUE (band.isReady());
        EXPECT_EQ (band.rate, c.rate);
        EXPECT_EQ (band.channels, 2);

        for (const auto* ramp : { &band.driveRamp, &band.wetRamp, &band.dryRamp, &band.midSideRamp })
        {
            EXPECT_EQ (ramp->length, c.length) << c.rate;
            EXPECT_EQ (ramp->remaining, 0) << c.rate;
            EXPECT_EQ (ramp->current, ramp->target) << c.rate;
        }
    }
}

TEST (BandCompressor, RampsAreHeardOverATenthOfASecondOfTheProcessingRate)
{
    const auto rate = 16000.0;
    auto band = makeBand (rate, 1, 100);
    PlainBand plain (rate, 1);
    band->wetRamp.setTarget (0.3);
    band->dryRamp.setTarget (0.6);
    band->driveRamp.setTarget (12.0);
    plain.wet.go (0.3, 1600);
    plain.dry.go (0.6, 1600);
    plain.drive.go (12.0, 1600);

    for (int block = 0; block < 30; ++block)
        ASSERT_TRUE (agree (*band, plain, Signals::whiteNoise (1, 70, 0x100u + static_cast<unsigned> (block))))
            << block;

    EXPECT_EQ (band->wetRamp.remaining, 0);
    EXPECT_NEAR (band->wetRamp.current, 0.3, 1.0e-12);
}

// ---- tone cascade ----------------------------------------------------------------------------

TEST (BandCompressor, ToneCascadeHasItsSixRows)
{
    for (const auto channels : { 1, 2 })
    {
        auto band = makeBand (48000.0, channels, 16);
        band->prepare (48000.0, channels, 16); // rebuilt, not added to
        const auto& cascade = band->toneCascade;
        ASSERT_EQ (cascade.doubleFilters.size(), 4u);
        ASSERT_EQ (cascade.biquads.size(), 2u);

        for (std::size_t i = 0; i < 6; ++i)
        {
            const auto& filter = i < 4 ? *cascade.doubleFilters[i] : *cascade.biquads[i - 4];
            EXPECT_EQ (filter.type, cascadeRows[i].type) << i;
            EXPECT_EQ (filter.frequency, cascadeRows[i].hz) << i;
            EXPECT_EQ (filter.q, cascadeRows[i].q) << i;
            EXPECT_EQ (filter.gain, cascadeRows[i].gain) << i;
            EXPECT_EQ (filter.getNumRecords(), channels + 1) << i;
        }
    }
}

TEST (BandCompressor, ToneCascadeHasItsAnalyticResponse)
{
    for (const auto rate : { 22050.0, 32000.0, 44100.0, 48000.0, 96000.0, 192000.0, 384000.0 })
    {
        const auto n = static_cast<int> (rate * 1.5); // the bell at 22.5 Hz rings for a second
        auto band = makeBand (rate, 1, 16);
        auto h = Signals::impulse (1, n, 0);
        band->toneCascade.process (h.getWritePointer (0), n, 0);

        for (const auto f :
             { 5.0, 9.5, 22.5, 40.0, 100.0, 230.0, 1000.0, 5000.0, 9000.0, 12000.0, 16000.0, 20000.0, 40000.0 })
        {
            if (f >= 0.47 * rate)
                continue;

            // The shelves run in float: 0.001 dB covers the rounding of their coefficients and of the samples.
            EXPECT_NEAR (Signals::toDb (std::abs (Analytic::measured (h.getReadPointer (0), n, f, rate))),
                         Signals::toDb (std::abs (cascadeResponse (f, rate))), 0.001)
                << f << " Hz at " << rate;
        }
    }
}

TEST (BandCompressor, ToneCascadeHasItsGainsInDecibels)
{
    // The linear gains say: -0.06, +0.06, -0.035, -0.4 and -0.2 dB.
    const double db[] = { 0.0, -0.06, 0.06, -0.035, -0.4, -0.2 };

    for (std::size_t i = 0; i < 6; ++i)
        EXPECT_NEAR (Signals::toDb (cascadeRows[i].gain), db[i], 1.0e-9) << i;

    EXPECT_NEAR (Signals::toDb (std::abs (cascadeResponse (90000.0, 192000.0))), -0.6, 0.01) << "both shelves";
}

TEST (BandCompressor, ToneCascadeStartsFreshWhenPrepared)
{
    auto band = makeBand (48000.0, 1, 64);
    auto first = Signals::whiteNoise (1, 64, 0x110);
    band->toneCascade.process (first.getWritePointer (0), 64, 0);
    band->prepare (48000.0, 1, 64);
    auto again = Signals::whiteNoise (1, 64, 0x110);
    band->toneCascade.process (again.getWritePointer (0), 64, 0);
    EXPECT_TRUE (sameBits (first, again));
}

TEST (BandCompressor, LowRatesAreStable)
{
    for (const auto rate : { 8000.0, 11025.0, 16000.0, 22050.0, 24000.0, 32000.0, 39999.0 })
    {
        auto band = makeBand (rate, 2, 512);
        const auto n = static_cast<int> (4.0 * rate);
        const auto output = run (*band, Signals::whiteNoise (2, n, 0x111, 0.001f), { 512 });
        ASSERT_TRUE (Signals::allFinite (output)) << rate;

        // Too quiet to compress: the output is as loud as the input, then as ever.
        EXPECT_NEAR (Signals::toDb (Signals::rms (output, 0, n / 2, n) * std::sqrt (3.0) / 0.001), 0.0, 1.0) << rate;

        for (const auto& filter : band->toneCascade.biquads)
            EXPECT_EQ (filter->frequency,
                       std::min (filter == band->toneCascade.biquads[0] ? 12000.0 : 20000.0, 0.49 * rate));
    }
}

// ---- the plain path --------------------------------------------------------------------------

TEST (BandCompressor, AgreesWithThePlainBandOverChannelsAndDetectorFilters)
{
    for (const auto channels : { 1, 2, 3 })
    {
        for (const auto highPass : { false, true })
        {
            for (const auto niveau : { false, true })
            {
                auto band = makeBand (48000.0, channels, 256,
                                      [&] (BandCompressor& b)
                                      {
                                          b.hpfHz = highPass ? 100.0 : 20.0;
                                          b.niveau = niveau;
                                          setTargets (b, 0.75, 0.25);
                                      });

                PlainBand plain (48000.0, channels);
                plain.highPassIn = highPass;
                plain.highPass.mix = Line (highPass ? 1.0 : 0.0);
                plain.lowShelf.mix = plain.highShelf.mix = Line (niveau ? 1.0 : 0.0);
                plain.wet = Line (0.75);
                plain.dry = Line (0.25);

                for (int block = 0; block < 60; ++block)
                {
                    const auto input =
                        Signals::whiteNoise (channels, 1 + block * 37 % 256, 0x120u + static_cast<unsigned> (block),
                                             block % 20 < 10 ? 0.05f : 2.0f);
                    ASSERT_TRUE (agree (*band, plain, input)) << channels << " channels, high-pass " << highPass
                                                              << ", niveau " << niveau << ", block " << block;
                }

                EXPECT_GT (band->mainCapacitor.voltage, 0.5) << "something was compressed";
            }
        }
    }
}

TEST (BandCompressor, DetectsTheMeanOfItsChannels)
{
    // A signal and its opposite cancel in the detector, however loud, and the same in both is not doubled.
    const auto quiet = [] (BandCompressor& b) { b.niveau = false; };
    auto opposite = makeBand (48000.0, 2, 4800, quiet), silent = makeBand (48000.0, 2, 4800, quiet),
         both = makeBand (48000.0, 2, 4800, quiet), mono = makeBand (48000.0, 1, 4800, quiet);

    auto x = Signals::sine (2, 4800, 48000.0, 440.0, 4.0);
    x.applyGain (1, 0, 4800, -1.0f);
    run (*opposite, x, { 4800 });
    run (*silent, Signals::silence (2, 4800), { 4800 });
    run (*both, Signals::sine (2, 4800, 48000.0, 440.0, 4.0), { 4800 });
    run (*mono, Signals::sine (1, 4800, 48000.0, 440.0, 4.0), { 4800 });

    EXPECT_EQ (opposite->mainCapacitor.voltage, silent->mainCapacitor.voltage);
    EXPECT_EQ (both->mainCapacitor.voltage, mono->mainCapacitor.voltage);
    EXPECT_GT (mono->mainCapacitor.voltage, 1.0);
}

TEST (BandCompressor, AddsNoLatency)
{
    auto band = makeBand (48000.0, 2, 64);
    const auto output = run (*band, Signals::impulse (2, 64, 10, 0.01f), { 64 });
    EXPECT_EQ (output.getSample (0, 9), 0.0f);
    EXPECT_GT (output.getSample (0, 10), 0.009f);
    EXPECT_LT (std::abs (output.getSample (0, 11)), 0.001f);
}

TEST (BandCompressor, RestsAlittleAboveUnityAtOneKilohertz)
{
    // +0.292 dB of a resting band at 3:1, less what the tone cascade takes at 1 kHz.
    const auto rate = 48000.0;
    auto band = makeBand (rate, 1, 480,
                          [] (BandCompressor& b)
                          {
                              b.attackOhms = 270.0;
                              b.recoveryOhms = 82000.0;
                          });
    const auto output = run (*band, Signals::sine (1, 96000, rate, 1000.0, 1.0e-4), { 480 });
    const auto gain = Signals::amplitudeAt (output.getReadPointer (0, 48000), 48000, rate, 1000.0) / 1.0e-4;
    EXPECT_NEAR (Signals::toDb (gain), 0.277, 0.002);
}

TEST (BandCompressor, ABandThatIsOutReturnsItsInput)
{
    auto band = makeBand (48000.0, 2, 256,
                          [] (BandCompressor& b)
                          {
                              setTargets (b, 0.0, 1.0);
                              b.bandActive = false;
                          });

    const auto input = Signals::whiteNoise (2, 4800, 0x130, 3.0f);
    const auto output = run (*band, input, { 256 });

    for (int c = 0; c < 2; ++c)
        for (int i = 0; i < 4800; ++i)
            ASSERT_EQ (output.getSample (c, i), input.getSample (c, i)) << i;
}

TEST (BandCompressor, ABandThatWentOutReturnsItsInputToWithinRounding)
{
    auto band = makeBand (48000.0, 2, 256);
    run (*band, Signals::whiteNoise (2, 4800, 0x131), { 256 });
    band->wetRamp.setTarget (0.0);
    band->dryRamp.setTarget (1.0);
    band->bandActive = false;
    run (*band, Signals::whiteNoise (2, 5120, 0x132), { 256 });
    const auto input = Signals::whiteNoise (2, 4800, 0x133);

    // The ramps end at 1 and 0 but for their sums of steps, 1e-12 or so: at most one float rounding of the sum.
    EXPECT_TRUE (equalWithin (run (*band, input, { 256 }), input, 1.2e-7f));
}

TEST (BandCompressor, AMutedBandFadesToNearlyNothingAndItsCapacitorRelaxes)
{
    const auto rate = 48000.0;
    auto band = makeBand (rate, 2, 256);
    run (*band, Signals::whiteNoise (2, 9600, 0x134, 4.0f), { 256 });
    const auto charged = band->mainCapacitor.voltage;
    ASSERT_GT (charged, 1.0);

    band->wetRamp.setTarget (0.0);
    band->dryRamp.setTarget (0.0);
    band->bandActive = false;
    const auto fade = run (*band, Signals::whiteNoise (2, 4800, 0x135, 4.0f), { 256 });
    EXPECT_GT (fade.getMagnitude (0, 1000), 0.1f) << "it fades, it does not jump";
    EXPECT_LT (band->mainCapacitor.voltage, charged) << "the detector is out at once";

    // The end of the ramp is not snapped to 0: what is left is the rounding of 4800 steps, about 1e-13.
    const auto output = run (*band, Signals::whiteNoise (2, 4800, 0x136), { 256 });
    EXPECT_LT (output.getMagnitude (0, 4800), 1.0e-11f);
    EXPECT_EQ (band->wetRamp.remaining, 0);
    EXPECT_LT (std::abs (band->wetRamp.current), 1.0e-11);

    // The recovery goes on with its 180.4 ms meanwhile.
    const auto before = band->mainCapacitor.voltage;
    run (*band, Signals::whiteNoise (2, static_cast<int> (0.1804 * rate), 0x137), { 256 });
    EXPECT_NEAR ((band->mainCapacitor.voltage - 0.1) / (before - 0.1), std::exp (-1.0), 0.001);
}

TEST (BandCompressor, BlockLengthChangesNoBit)
{
    const auto input = Signals::whiteNoise (2, 6000, 0x138, 2.0f);

    for (const auto midSide : { 0.5, 0.2 })
    {
        const auto process = [&] (const std::vector<int>& lengths)
        {
            auto band = makeBand (16000.0, 2, 6000, [] (BandCompressor& b) { b.hpfHz = 100.0; });
            band->driveRamp.setTarget (50.0);
            band->wetRamp.setTarget (0.8);
            band->dryRamp.setTarget (0.1);
            band->midSideRamp.setTarget (midSide);
            band->setNiveau (false);
            return run (*band, input, lengths);
        };

        const auto whole = process ({ 6000 });

        for (const auto& lengths : { std::vector<int> { 1 }, { 63, 64, 1 }, { 1601, 3 }, { 512 } })
            EXPECT_TRUE (sameBits (whole, process (lengths))) << midSide << ", blocks of " << lengths[0];
    }
}

TEST (BandCompressor, AnEmptyBlockDoesNothing)
{
    auto band = makeBand (48000.0, 2, 64), other = makeBand (48000.0, 2, 64);
    const auto input = Signals::whiteNoise (2, 640, 0x139);

    for (auto* b : { band.get(), other.get() })
    {
        b->midSideRamp.setTarget (0.1);
        run (*b, input, { 64 });
    }

    auto buffer = Signals::silence (2, 1);
    band->process (buffer.getArrayOfWritePointers(), 0);
    EXPECT_EQ (band->midSideRamp.remaining, other->midSideRamp.remaining);
    EXPECT_TRUE (sameBits (run (*band, input, { 64 }), run (*other, input, { 64 })));
}

TEST (BandCompressor, RunsWithNoChannels)
{
    auto band = makeBand (48000.0, 0, 64);
    band->process (nullptr, 64);

    // Its detector hears silence.
    EXPECT_GT (band->mainCapacitor.voltage, 0.0);
    EXPECT_LT (band->mainCapacitor.voltage, 0.12);
}

TEST (BandCompressor, IsPreparedAgainAfterARelease)
{
    const auto quiet = [] (BandCompressor& b) { b.niveau = false; };
    auto used = makeBand (48000.0, 2, 256, quiet), fresh = makeBand (48000.0, 2, 128, quiet);
    run (*used, Signals::whiteNoise (2, 4800, 0x13a, 4.0f), { 256 });
    used->release();
    EXPECT_FALSE (used->isReady());
    EXPECT_FALSE (used->highPass.ready);
    EXPECT_FALSE (used->lowShelf.ready);
    EXPECT_FALSE (used->highShelf.ready);
    EXPECT_EQ (used->toneCascade.doubleFilters.size(), 4u) << "the cascade waits for the next prepare";

    used->prepare (48000.0, 2, 128);
    EXPECT_TRUE (used->isReady());
    EXPECT_TRUE (used->lowShelf.ready);
    const auto input = Signals::whiteNoise (2, 1280, 0x13b, 2.0f);
    EXPECT_TRUE (sameBits (run (*used, input, { 128 }), run (*fresh, input, { 128 })));
}

TEST (BandCompressor, MayBePreparedForMoreAndLessInTurn)
{
    auto band = makeBand (48000.0, 1, 64);

    for (const auto& shape : { std::pair<int, int> { 2, 512 }, { 1, 16 }, { 2, 1024 }, { 4, 32 } })
    {
        band->prepare (96000.0, shape.first, shape.second);
        const auto output = run (*band, Signals::whiteNoise (shape.first, 4096, 0x13c), { shape.second });
        EXPECT_TRUE (Signals::allFinite (output));
        EXPECT_EQ (band->toneCascade.doubleFilters[0]->getNumRecords(), shape.first + 1);
    }
}

// ---- detector filters ------------------------------------------------------------------------

TEST (BandCompressor, NiveauSetsTheTiltOfTheDetector)
{
    auto band = makeBand (48000.0, 1, 64, [] (BandCompressor& b) { b.niveau = false; });
    EXPECT_EQ (band->lowShelf.mix.current, 0.0);
    EXPECT_EQ (band->highShelf.mix.current, 0.0);

    band->setNiveau (true);
    EXPECT_EQ (band->lowShelf.type, 3);
    EXPECT_EQ (band->lowShelf.frequency, 125.0);
    EXPECT_EQ (band->lowShelf.q, 0.3);
    EXPECT_EQ (band->lowShelf.gain, 0.12589254117941673);
    EXPECT_EQ (band->highShelf.type, 4);
    EXPECT_EQ (band->highShelf.frequency, 8000.0);
    EXPECT_EQ (band->highShelf.q, 0.3);
    EXPECT_EQ (band->highShelf.gain, 7.943282347242816);
    EXPECT_EQ (band->lowShelf.mix.target, 1.0);
    EXPECT_EQ (band->highShelf.mix.target, 1.0);
    EXPECT_EQ (band->lowShelf.mix.remaining, 4800);

    band->setNiveau (false);
    EXPECT_EQ (band->lowShelf.mix.target, 0.0);
    EXPECT_EQ (band->highShelf.mix.target, 0.0);
    EXPECT_EQ (band->lowShelf.frequency, 125.0) << "their responses stay";
    EXPECT_EQ (band->highShelf.gain, 7.943282347242816);
}

TEST (BandCompressor, NiveauFadesInAndOut)
{
    const auto rate = 16000.0;
    auto band = makeBand (rate, 2, 100, [] (BandCompressor& b) { b.niveau = false; });

    // Preparing with it off leaves the shelves at their first response; one fade in glides them to theirs.
    band->setNiveau (true);
    run (*band, Signals::silence (2, 1700), { 100 });
    band->setNiveau (false);
    run (*band, Signals::silence (2, 1700), { 100 });
    band->prepare (rate, 2, 100);

    PlainBand plain (rate, 2);
    plain.lowShelf.mix = plain.highShelf.mix = Line (0.0);
    unsigned seed = 0x140;

    for (int block = 0; block < 80; ++block)
    {
        if (block == 10 || block == 50)
        {
            const auto on = block == 10;
            band->setNiveau (on);
            plain.lowShelf.mix.go (on ? 1.0 : 0.0, 1600);
            plain.highShelf.mix.go (on ? 1.0 : 0.0, 1600);
        }

        ASSERT_TRUE (agree (*band, plain, Signals::whiteNoise (2, 100, seed++, 1.0f))) << block;
    }
}

TEST (BandCompressor, WithNiveauOffTheShelvesAreLeftAlone)
{
    auto band = makeBand (48000.0, 2, 256, [] (BandCompressor& b) { b.niveau = false; });
    run (*band, Signals::whiteNoise (2, 2560, 0x150), { 256 });

    for (const auto* shelf : { &band->lowShelf, &band->highShelf })
    {
        EXPECT_EQ (shelf->states[0].a, 0.0);
        EXPECT_EQ (shelf->states[0].b, 0.0);
    }
}

TEST (BandCompressor, NiveauMakesTheDetectorListenToTheTop)
{
    const auto chargeOf = [] (double f, bool niveau)
    {
        auto band = makeBand (48000.0, 1, 480, [&] (BandCompressor& b) { b.niveau = niveau; });
        run (*band, Signals::sine (1, 24000, 48000.0, f, 1.0), { 480 });
        return band->mainCapacitor.voltage;
    };

    EXPECT_LT (chargeOf (60.0, true), chargeOf (60.0, false) - 0.5);
    EXPECT_GT (chargeOf (12000.0, true), chargeOf (12000.0, false) + 0.5);
}

TEST (BandCompressor, HighPassBeginsAtTwentyPointNoughtOneHertz)
{
    struct Case
    {
        double hz;
        bool in;
    };

    for (const auto& c : { Case { 20.0, false }, Case { 20.009, false }, Case { 20.01, true }, Case { 100.0, true } })
    {
        auto band = makeBand (48000.0, 1, 64, [&] (BandCompressor& b) { b.hpfHz = c.hz; });
        EXPECT_EQ (band->highPass.mix.current, c.in ? 1.0 : 0.0) << c.hz;
        run (*band, Signals::whiteNoise (1, 64, 0x160), { 64 });
        EXPECT_EQ (band->highPass.states[0].a != 0.0, c.in) << c.hz;

        if (c.in)
        {
            EXPECT_EQ (band->highPass.type, 1);
            EXPECT_EQ (band->highPass.frequency, c.hz);
            EXPECT_EQ (band->highPass.q, 1.0);
            EXPECT_EQ (band->highPass.gain, 1.0);
        }
    }
}

TEST (BandCompressor, HighPassLeavesAtOnceAndComesBackFromWhereItsFadeStood)
{
    const auto rate = 16000.0;
    auto band = makeBand (rate, 1, 100,
                          [] (BandCompressor& b)
                          {
                              b.hpfHz = 100.0;
                              b.niveau = false;
                          });
    PlainBand plain (rate, 1);
    plain.lowShelf.mix = plain.highShelf.mix = Line (0.0);
    plain.highPass.mix = Line (1.0);
    plain.highPassIn = true;
    unsigned seed = 0x170;

    const auto setHighPass = [&] (double hz)
    {
        band->updateHighPass (hz);
        band->hpfHz = hz;
    };

    const auto expectBlocks = [&] (int count, const char* when)
    {
        for (int block = 0; block < count; ++block)
            ASSERT_TRUE (agree (*band, plain, Signals::whiteNoise (1, 100, seed++))) << when << ", block " << block;
    };

    expectBlocks (5, "in");

    // 100 -> 20: skipped from the next block on; its fade is asked for but never runs, its state is frozen.
    setHighPass (20.0);
    plain.highPassIn = false;
    const auto frozen = band->highPass.states[0].a;
    expectBlocks (30, "out");
    EXPECT_EQ (band->highPass.mix.target, 0.0);
    EXPECT_EQ (band->highPass.mix.current, 1.0);
    EXPECT_EQ (band->highPass.mix.remaining, 1600);
    EXPECT_EQ (band->highPass.states[0].a, frozen);

    // 20 -> 100: its mix never left 1, so it is in at once.
    setHighPass (100.0);
    plain.highPassIn = true;
    EXPECT_EQ (band->highPass.mix.remaining, 0);
    expectBlocks (5, "in again");

    // From a prepare at 20 the mix stands at 0: it fades in. Left half way, it comes back from half way.
    setHighPass (20.0);
    band->prepare (rate, 1, 100);
    plain = PlainBand (rate, 1);
    plain.lowShelf.mix = plain.highShelf.mix = Line (0.0);
    plain.highPass.s1 = band->highPass.states[0].a;
    plain.highPass.s2 = band->highPass.states[0].b;
    setHighPass (100.0);
    plain.highPassIn = true;
    plain.highPass.mix.go (1.0, 1600);
    expectBlocks (8, "fading in");
    EXPECT_NEAR (band->highPass.mix.current, 0.5, 1.0e-12);

    setHighPass (20.0);
    plain.highPassIn = false;
    expectBlocks (3, "left half way");
    EXPECT_NEAR (band->highPass.mix.current, 0.5, 1.0e-12);

    setHighPass (100.0);
    plain.highPassIn = true;
    plain.highPass.mix.go (1.0, 1600);
    expectBlocks (20, "back from half way");
    EXPECT_NEAR (band->highPass.mix.current, 1.0, 1.0e-12);
}

// ---- mid/side --------------------------------------------------------------------------------

TEST (BandCompressor, AgreesWithThePlainBandInMidSide)
{
    for (const auto midSide : { 0.0, 0.1, 0.25, 0.49, 0.51, 0.75, 1.0 })
    {
        auto band = makeBand (48000.0, 2, 256, [&] (BandCompressor& b) { setTargets (b, 0.8, 0.3, midSide); });
        PlainBand plain (48000.0, 2);
        plain.midSide = true;
        plain.b = Line (midSide);
        plain.wet = Line (0.8);
        plain.dry = Line (0.3);

        for (int block = 0; block < 40; ++block)
        {
            // Decibels in float: up to 50 dB with 2e-6 dB of rounding, each way, on samples of a few units.
            const auto input =
                Signals::whiteNoise (2, 1 + block * 29 % 256, 0x200u + static_cast<unsigned> (block), 1.0f);
            ASSERT_TRUE (agree (*band, plain, input, 1.0e-5f)) << midSide << ", block " << block;
        }
    }
}

TEST (BandCompressor, AgreesWithThePlainBandWhileMidSideMoves)
{
    const auto rate = 16000.0;
    auto band = makeBand (rate, 2, 256);
    PlainBand plain (rate, 2);
    band->midSideRamp.setTarget (1.0);
    plain.midSide = true;
    plain.b.go (1.0, 1600);

    for (int block = 0; block < 20; ++block)
        ASSERT_TRUE (
            agree (*band, plain, Signals::whiteNoise (2, 100, 0x230u + static_cast<unsigned> (block)), 1.0e-5f))
            << block;

    EXPECT_EQ (band->midSideRamp.remaining, 0);
}

TEST (BandCompressor, MidListensToTheLeftChannelAloneAndSideToTheRight)
{
    const auto chargeOf = [] (double midSide, float left, float right)
    {
        auto band = makeBand (48000.0, 2, 480, [&] (BandCompressor& b) { setTargets (b, 1.0, 0.0, midSide); });
        auto x = Signals::sine (2, 4800, 48000.0, 1000.0, 1.0);
        x.applyGain (0, 0, 4800, left);
        x.applyGain (1, 0, 4800, right);
        run (*band, x, { 480 });
        return band->mainCapacitor.voltage;
    };

    for (const auto midSide : { 0.0, 1.0 })
    {
        const auto silent = chargeOf (midSide, 0.0f, 0.0f);
        const auto heard = midSide == 0.0 ? chargeOf (midSide, 4.0f, 0.0f) : chargeOf (midSide, 0.0f, 4.0f);
        const auto unheard = midSide == 0.0 ? chargeOf (midSide, 0.0f, 4.0f) : chargeOf (midSide, 4.0f, 0.0f);
        EXPECT_EQ (unheard, silent) << midSide;
        EXPECT_GT (heard, silent + 1.0) << midSide;

        // What the other channel carries makes no difference, not even in the same or the opposite phase.
        EXPECT_EQ (midSide == 0.0 ? chargeOf (0.0, 4.0f, -4.0f) : chargeOf (1.0, -4.0f, 4.0f), heard) << midSide;
    }
}

TEST (BandCompressor, GainIsSharedInDecibels)
{
    // A detector held silent leaves the gain alone; the capacitor is held at 5 V, some 16 dB of reduction.
    const auto level = Signals::toDb (static_cast<double> (Plain::law (5.0f))) + 34.0;

    struct Case
    {
        double midSide, mid, side;
    };

    for (const auto& c : { Case { 0.0, 1.0, 0.0 }, Case { 0.1, 1.0, 0.2 }, Case { 0.25, 1.0, 0.5 },
                           Case { 0.5001, 0.9998, 1.0 }, Case { 0.75, 0.5, 1.0 }, Case { 1.0, 0.0, 1.0 } })
    {
        const auto gainOf = [&] (float ofRight)
        {
            const auto rate = 48000.0;
            auto band = makeBand (rate, 2, 480, [&] (BandCompressor& b) { setTargets (b, 1.0, 0.0, c.midSide); });
            band->bandActive = false;
            band->recoveryCoefficient = 0.0;
            band->mainCapacitor.voltage = 5.0;
            auto x = Signals::sine (2, 48000, rate, 1000.0, 0.1);
            x.applyGain (1, 0, 48000, ofRight);
            const auto y = run (*band, x, { 480 });
            const auto tone = Signals::toDb (std::abs (cascadeResponse (1000.0, rate)));

            // Pure mid comes out as pure mid, pure side as pure side.
            for (int i = 0; i < 48000; i += 997)
                EXPECT_NEAR (y.getSample (1, i), ofRight * y.getSample (0, i), 1.0e-7f);

            return Signals::toDb (Signals::amplitudeAt (y.getReadPointer (0, 24000), 24000, rate, 1000.0) / 0.1) - tone;
        };

        // To the float rounding of the decibels and of the cascade; at a share of 0 the tone cascade is all there is.
        EXPECT_NEAR (gainOf (1.0f), c.mid * level, 0.001) << "mid at " << c.midSide;
        EXPECT_NEAR (gainOf (-1.0f), c.side * level, 0.001) << "side at " << c.midSide;
    }
}

TEST (BandCompressor, AGainOfNothingIsMinusOneHundredDecibels)
{
    // No drive: 0, so -100 dB, and back to linear that is 0 at the full share; half the share is -50 dB.
    auto band = makeBand (48000.0, 2, 64,
                          [] (BandCompressor& b)
                          {
                              setTargets (b, 1.0, 0.0, 0.25);
                              b.driveRamp = LinearSmoother (0.0);
                          });

    auto mid = Signals::impulse (2, 64, 0);
    const auto fromMid = run (*band, mid, { 64 });
    EXPECT_EQ (fromMid.getMagnitude (0, 64), 0.0f);

    auto again = makeBand (48000.0, 2, 64,
                           [] (BandCompressor& b)
                           {
                               setTargets (b, 1.0, 0.0, 0.25);
                               b.driveRamp = LinearSmoother (0.0);
                           });

    auto side = Signals::impulse (2, 64, 0);
    side.applyGain (1, 0, 64, -1.0f);
    auto plainCascade = makeCascade (48000.0, 1);
    auto toned = Signals::impulse (1, 64, 0);
    plainCascade->process (toned.getWritePointer (0), 64, 0);
    const auto fromSide = run (*again, side, { 64 });
    EXPECT_NEAR (fromSide.getSample (0, 0) / toned.getSample (0, 0), 0.0031622777f, 1.0e-8f);
}

TEST (BandCompressor, DryShareHasPassedTheCascadeInMidSideAndNotInThePlainPath)
{
    const auto input = Signals::whiteNoise (2, 4800, 0x240);
    auto toned = input;
    auto cascade = makeCascade (48000.0, 2);

    for (int c = 0; c < 2; ++c)
        cascade->process (toned.getWritePointer (c), 4800, c);

    ASSERT_FALSE (equalWithin (toned, input, 0.01f)) << "the cascade can be told";

    for (const auto midSide : { 0.0, 0.5, 1.0 })
    {
        auto band = makeBand (48000.0, 2, 4800, [&] (BandCompressor& b) { setTargets (b, 0.0, 1.0, midSide); });
        const auto output = run (*band, input, { 4800 });

        // Filtering mid and side is filtering left and right, but for float roundings in the two biquads.
        EXPECT_TRUE (equalWithin (output, midSide == 0.5 ? input : toned, midSide == 0.5 ? 0.0f : 2.0e-6f)) << midSide;
    }
}

TEST (BandCompressor, MidSideRunsUntilARampToOneHalfHasEnded)
{
    const auto rate = 16000.0;
    auto band = makeBand (rate, 2, 300, [] (BandCompressor& b) { setTargets (b, 0.0, 1.0, 0.0); });
    band->midSideRamp.setTarget (0.5);
    unsigned seed = 0x250;

    for (int block = 0; block < 10; ++block)
    {
        const auto running = band->midSideRamp.remaining != 0;
        EXPECT_EQ (running, block < 6) << "1600 samples in blocks of 300";
        const auto input = Signals::whiteNoise (2, 300, seed++);
        const auto output = run (*band, input, { 300 });

        // The dry share tells the path: with the tone cascade in mid/side, without it in the plain path.
        EXPECT_EQ (static_cast<bool> (equalWithin (output, input, 0.0f)), ! running) << block;
    }

    // Away from one half it starts at once.
    band->midSideRamp.setTarget (0.9);
    const auto input = Signals::whiteNoise (2, 300, seed);
    EXPECT_FALSE (equalWithin (run (*band, input, { 300 }), input, 0.001f));
    EXPECT_EQ (band->midSideRamp.remaining, 1300);
}

TEST (BandCompressor, OnlyTwoChannelsHaveAMidAndASide)
{
    for (const auto channels : { 1, 3 })
    {
        auto band = makeBand (48000.0, channels, 64), plain = makeBand (48000.0, channels, 64);
        band->midSideRamp.setTarget (0.0);
        const auto input = Signals::whiteNoise (channels, 640, 0x260, 2.0f);
        EXPECT_TRUE (sameBits (run (*band, input, { 64 }), run (*plain, input, { 64 }))) << channels;
        EXPECT_EQ (band->midSideRamp.remaining, 4800) << "the ramp does not advance";
        EXPECT_EQ (band->midSideRamp.current, 0.5);
    }
}

// ---- overload --------------------------------------------------------------------------------

TEST (BandCompressor, StaysFiniteUnderOverload)
{
    for (int ratio = 0; ratio < 5; ++ratio)
    {
        auto band = makeBand (48000.0, 2, 512,
                              [&] (BandCompressor& b) { b.transferTable = &DetectorCurves::forRatio (ratio); });
        const auto output = run (*band, Signals::whiteNoise (2, 48000, 0x270, 24.0f), { 512 });
        EXPECT_TRUE (Signals::allFinite (output)) << "ratio row " << ratio;
        EXPECT_TRUE (std::isfinite (band->mainCapacitor.voltage)) << "ratio row " << ratio;
        EXPECT_TRUE (std::isfinite (band->meterValue())) << "ratio row " << ratio;
    }
}

TEST (BandCompressor, PreparingHealsABandThatSwallowedANan)
{
    for (const auto poison : { std::nanf (""), std::numeric_limits<float>::infinity() })
    {
        auto band = makeBand (48000.0, 2, 256, [] (BandCompressor& b) { b.hpfHz = 100.0; });
        auto sick = Signals::whiteNoise (2, 256, 0x280);
        sick.setSample (0, 100, poison);
        EXPECT_FALSE (Signals::allFinite (run (*band, sick, { 256 })));

        band->prepare (48000.0, 2, 256);
        EXPECT_TRUE (Signals::allFinite (run (*band, Signals::whiteNoise (2, 2560, 0x281, 2.0f), { 256 })));
        EXPECT_TRUE (std::isfinite (band->mainCapacitor.voltage));
        EXPECT_GT (band->mainCapacitor.voltage, 0.5) << "and it compresses again";
        EXPECT_TRUE (std::isfinite (band->meterValue()));
    }
}

TEST (BandCompressor, PreparingRestsAMeterThatIsNoNumber)
{
    for (const auto poison : { std::nan (""), std::numeric_limits<double>::infinity() })
    {
        auto band = makeBand (48000.0, 1, 64);
        band->meterGain = poison;
        band->prepare (48000.0, 1, 64);
        EXPECT_EQ (band->meterValue(), 1.0);
    }
}
