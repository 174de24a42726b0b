// SPDX-License-Identifier: GPL-3.0-or-later
#include "dsp/nvx/SVFilter.h"

#include "support/Samples.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <complex>
#include <memory>
#include <string>
#include <vector>

namespace
{
using Samples::whiteNoise;

using Complex = std::complex<double>;

constexpr double pi = 3.141592653589793;

std::unique_ptr<NVX::Filter> makeFilter (int type, double frequency, double q, double gain)
{
    switch (type)
    {
        case 9: return std::make_unique<NVX::SVFilter<9>> (frequency, q, gain);
        case 10: return std::make_unique<NVX::SVFilter<10>> (frequency, q, gain);
        case 11: return std::make_unique<NVX::SVFilter<11>> (frequency, q, gain);
        case 12: return std::make_unique<NVX::SVFilter<12>> (frequency, q, gain);
        case 13: return std::make_unique<NVX::SVFilter<13>> (frequency, q, gain);
        case 14: return std::make_unique<NVX::SVFilter<14>> (frequency, q, gain);
        case 15: return std::make_unique<NVX::SVFilter<15>> (frequency, q, gain);
        case 16: return std::make_unique<NVX::SVFilter<16>> (frequency, q, gain);
        default: return nullptr;
    }
}

// The analogue second-order responses with their cut-off at s = j, in the usual textbook form.
Complex analogue (int type, Complex s, double Q, double G)
{
    const double A = std::sqrt (G);
    const Complex s2 = s * s;
    const Complex resonant = s2 + s / Q + 1.0;
    const Complex slope = std::sqrt (A) / Q * s;

    switch (type)
    {
        case 9: return 1.0 / resonant;
        case 10: return s / resonant;
        case 11: return s2 / resonant;
        case 12: return (s2 - 1.0) / resonant;
        case 14: return (s2 + s * (A / Q) + 1.0) / (s2 + s / (A * Q) + 1.0);
        case 15: return A * (s2 + slope + A) / (A * s2 + slope + 1.0);
        case 16: return A * (A * s2 + slope + 1.0) / (s2 + slope + A);
        default: return 0.0;
    }
}

// The bilinear transform, scaled to be exact at the cut-off, as a mapping of frequencies.
Complex expectedResponse (int type, double frequency, double cutoff, double q, double gain, double rate)
{
    return analogue (type, { 0.0, std::tan (pi * frequency / rate) / std::tan (pi * cutoff / rate) }, q, gain);
}

std::vector<double> impulseResponse (NVX::Filter& filter, int length)
{
    std::vector<double> h;

    for (int i = 0; i < length; ++i)
        h.push_back (filter.tick (0, i == 0 ? 1.0 : 0.0));

    return h;
}

Complex responseAt (const std::vector<double>& h, double frequency, double rate)
{
    const Complex zInverse = std::exp (Complex (0.0, -2.0 * pi * frequency / rate));
    Complex sum = 0.0;

    for (auto y = h.rbegin(); y != h.rend(); ++y)
        sum = *y + zInverse * sum;

    return sum;
}

struct Setting
{
    int type;
    double cutoff, q, gain, rate;
};

std::string describe (const Setting& s)
{
    return "type " + std::to_string (s.type) + ", " + std::to_string (s.cutoff) + " Hz, Q " + std::to_string (s.q)
           + ", gain " + std::to_string (s.gain) + ", rate " + std::to_string (s.rate);
}

const double someGains[] = { 0.125, 0.7943, 1.0, 1.5849, 8.0 };

std::vector<Setting> allSettings()
{
    std::vector<Setting> settings;

    for (const int type : { 9, 10, 11, 12, 14, 15, 16 })
        for (const double rate : { 44100.0, 192000.0 })
            for (const double q : { 0.3, 0.796, 5.0 })
            {
                settings.push_back ({ type, 1000.0, q, 1.9953, rate });
                settings.push_back ({ type, 12000.0, q, 0.5012, rate });
            }

    settings.push_back ({ 11, 9.5, 0.796, 1.0, 44100.0 });
    settings.push_back ({ 14, 22.5, 5.0, 0.9931160484209338, 44100.0 });
    settings.push_back ({ 14, 40.0, 0.7, 1.0069316688518042, 44100.0 });
    settings.push_back ({ 14, 230.0, 0.3, 0.9959785837251127, 44100.0 });
    return settings;
}

class SVFilterResponse : public testing::TestWithParam<Setting>
{
};

TEST_P (SVFilterResponse, IsTheBilinearTransformOfTheAnalogueForm)
{
    const auto s = GetParam();
    SCOPED_TRACE (describe (s));

    // The slower pole decays about as exp (-2 pi cutoff min (q, 1 / (2 q)) t): 40 of its time constants, with
    // room for the shift of the poles by a gain of 2, leave nothing that double precision would show.
    const double slowest = 2.0 * pi * s.cutoff * std::min (s.q, 0.5 / s.q);
    auto filter = makeFilter (s.type, s.cutoff, s.q, s.gain);
    filter->setSampleRate (1, s.rate);
    const auto h = impulseResponse (*filter, 64 + static_cast<int> (40.0 * s.rate / slowest));

    for (const double frequency : { 0.0, 10.0, 100.0, 0.5 * s.cutoff, s.cutoff, 5000.0, 15000.0, 0.5 * s.rate - 1.0 })
    {
        const auto measured = responseAt (h, frequency, s.rate);
        const auto expected = expectedResponse (s.type, frequency, s.cutoff, s.q, s.gain, s.rate);

        // Roundings of 1e-16, raised by a lowest cut-off of 1e-3 of the turn and summed over 1e5 samples.
        EXPECT_NEAR (measured.real(), expected.real(), 1.0e-10) << frequency << " Hz";
        EXPECT_NEAR (measured.imag(), expected.imag(), 1.0e-10) << frequency << " Hz";
    }
}

INSTANTIATE_TEST_SUITE_P (AllTypes, SVFilterResponse, testing::ValuesIn (allSettings()));

double magnitudeAt (int type, double frequency, double cutoff, double q, double gain)
{
    auto filter = makeFilter (type, cutoff, q, gain);
    filter->setSampleRate (1, 48000.0);
    return std::abs (responseAt (impulseResponse (*filter, 8192), frequency, 48000.0));
}

constexpr double exactEnough = 1.0e-9; // double roundings over the measured impulse response

TEST (SVFilter, LowPassKeepsDcAndStandsAtQAtItsCutoff)
{
    EXPECT_NEAR (magnitudeAt (9, 0.0, 1000.0, 0.8, 4.0), 1.0, exactEnough);
    EXPECT_NEAR (magnitudeAt (9, 1000.0, 1000.0, 0.8, 4.0), 0.8, exactEnough);
    EXPECT_NEAR (magnitudeAt (9, 24000.0, 1000.0, 0.8, 4.0), 0.0, exactEnough);
}

TEST (SVFilter, BandPassPeaksAtQ)
{
    EXPECT_NEAR (magnitudeAt (10, 0.0, 1000.0, 3.0, 4.0), 0.0, exactEnough);
    EXPECT_NEAR (magnitudeAt (10, 1000.0, 1000.0, 3.0, 4.0), 3.0, exactEnough);
    EXPECT_NEAR (magnitudeAt (10, 24000.0, 1000.0, 3.0, 4.0), 0.0, exactEnough);
}

TEST (SVFilter, HighPassStandsAtQAtItsCutoffAndKeepsTheTop)
{
    EXPECT_NEAR (magnitudeAt (11, 0.0, 1000.0, 0.8, 4.0), 0.0, exactEnough);
    EXPECT_NEAR (magnitudeAt (11, 1000.0, 1000.0, 0.8, 4.0), 0.8, exactEnough);
    EXPECT_NEAR (magnitudeAt (11, 24000.0, 1000.0, 0.8, 4.0), 1.0, exactEnough);
}

TEST (SVFilter, PeakKeepsBothEndsAndRisesToTwiceQ)
{
    EXPECT_NEAR (magnitudeAt (12, 0.0, 1000.0, 2.0, 4.0), 1.0, exactEnough);
    EXPECT_NEAR (magnitudeAt (12, 1000.0, 1000.0, 2.0, 4.0), 4.0, exactEnough);
    EXPECT_NEAR (magnitudeAt (12, 24000.0, 1000.0, 2.0, 4.0), 1.0, exactEnough);
}

TEST (SVFilter, BellHasTheWholeGainAtItsCentreAndNoneAtTheEnds)
{
    for (const double gain : someGains)
    {
        EXPECT_NEAR (magnitudeAt (14, 0.0, 1000.0, 0.7, gain), 1.0, exactEnough) << "gain " << gain;
        EXPECT_NEAR (magnitudeAt (14, 1000.0, 1000.0, 0.7, gain), gain, exactEnough) << "gain " << gain;
        EXPECT_NEAR (magnitudeAt (14, 24000.0, 1000.0, 0.7, gain), 1.0, exactEnough) << "gain " << gain;
    }
}

TEST (SVFilter, ShelvesHaveTheWholeGainOnThePlateauAndHalfTheDecibelsAtTheCutoff)
{
    for (const double gain : someGains)
    {
        EXPECT_NEAR (magnitudeAt (15, 0.0, 1000.0, 0.7, gain), gain, exactEnough) << "gain " << gain;
        EXPECT_NEAR (magnitudeAt (15, 1000.0, 1000.0, 0.7, gain), std::sqrt (gain), exactEnough) << "gain " << gain;
        EXPECT_NEAR (magnitudeAt (15, 24000.0, 1000.0, 0.7, gain), 1.0, exactEnough) << "gain " << gain;
        EXPECT_NEAR (magnitudeAt (16, 0.0, 1000.0, 0.7, gain), 1.0, exactEnough) << "gain " << gain;
        EXPECT_NEAR (magnitudeAt (16, 1000.0, 1000.0, 0.7, gain), std::sqrt (gain), exactEnough) << "gain " << gain;
        EXPECT_NEAR (magnitudeAt (16, 24000.0, 1000.0, 0.7, gain), gain, exactEnough) << "gain " << gain;
    }
}

// At a quarter of the rate t is 1, and with gain 16 the root A is 4 and its own root 2, so every value
// is a small fraction that can be worked out by hand.
void expectCoefficients (int type, const NVX::FilterCoefficients& expected)
{
    auto filter = makeFilter (type, 12000.0, 1.0, 16.0);
    filter->setSampleRate (1, 48000.0);
    const auto values = filter->getCoefficients (0);

    for (std::size_t i = 0; i < values.size(); ++i)
        EXPECT_NEAR (values[i], expected[i], 1.0e-14) << "type " << type << ", value " << i; // tan (pi / 4) < 1
}

TEST (SVFilter, CoefficientsAtAQuarterOfTheRate)
{
    expectCoefficients (9, { 1.0 / 3.0, 1.0 / 3.0, 1.0 / 3.0, 0.0, 0.0, 1.0 });
    expectCoefficients (10, { 1.0 / 3.0, 1.0 / 3.0, 1.0 / 3.0, 0.0, 1.0, 0.0 });
    expectCoefficients (11, { 1.0 / 3.0, 1.0 / 3.0, 1.0 / 3.0, 1.0, -1.0, -1.0 });
    expectCoefficients (12, { 1.0 / 3.0, 1.0 / 3.0, 1.0 / 3.0, 1.0, -1.0, -2.0 });
    expectCoefficients (13, {});
    expectCoefficients (14, { 4.0 / 9.0, 4.0 / 9.0, 4.0 / 9.0, 1.0, 3.75, 0.0 });
    expectCoefficients (15, { 4.0 / 7.0, 2.0 / 7.0, 1.0 / 7.0, 1.0, 3.0, 15.0 });
    expectCoefficients (16, { 1.0 / 7.0, 2.0 / 7.0, 4.0 / 7.0, 16.0, -12.0, -15.0 });
}

TEST (SVFilter, RecordHoldsTypeAndLoopCoefficients)
{
    NVX::SVFilter<15> filter (12000.0, 0.5, 16.0);
    filter.setSampleRate (1, 48000.0);
    EXPECT_EQ (filter.records[0].type, 15);
    EXPECT_NEAR (filter.records[0].g, 0.5, 1.0e-15); // tan (pi / 4) is not quite 1
    EXPECT_EQ (filter.records[0].k, 2.0);
}

TEST (SVFilter, ThirteenIsSilent)
{
    NVX::SVFilter<13> filter (1000.0, 0.7, 2.0);
    filter.setSampleRate (1, 48000.0);
    EXPECT_EQ (filter.getCoefficients (0), NVX::FilterCoefficients {});

    for (const float scale : { 1.0f, 1.0e-30f, 1.0e30f })
    {
        auto samples = whiteNoise (512, 0x13);

        for (auto& sample : samples)
            sample *= scale;

        filter.process (samples.data(), 512, 0);
        EXPECT_EQ (samples, std::vector<float> (512, 0.0f)) << "noise times " << scale;
    }
}

TEST (SVFilter, NotchAnswersToTwoAndNotToThirteen)
{
    NVX::SVFilterRecord notch, thirteen;
    notch.setUp (2, 12000.0, 2.0, 4.0, 48000.0);
    thirteen.setUp (13, 12000.0, 2.0, 4.0, 48000.0);

    EXPECT_EQ (notch.m0, 1.0);
    EXPECT_EQ (notch.m1, -0.5);
    EXPECT_EQ (notch.m2, 0.0);
    EXPECT_NEAR (notch.a1, 1.0 / 2.5, 1.0e-15); // tan (pi / 4) is not quite 1
    EXPECT_EQ (thirteen.a1, 0.0);
    EXPECT_EQ (thirteen.m0, 0.0);

    // A quarter of the rate is the sequence 1, 0, -1, 0: the notch stops it once it has settled.
    const double sine[] = { 1.0, 0.0, -1.0, 0.0 };
    double last[4] = {};

    for (int i = 0; i < 400; ++i)
        last[i % 4] = notch.tick (sine[i % 4]);

    for (const double y : last)
        EXPECT_NEAR (y, 0.0, 1.0e-12); // the transient of a Q of 2 is below double precision by then
}

TEST (SVFilter, StepsTheLoopInDouble)
{
    NVX::SVFilter<9> filter (1000.0, 1.0, 1.0);
    filter.setSampleRate (1, 48000.0);
    filter.setCoefficients ({ 0.5, 0.25, 0.125, 1.0, 2.0, 4.0 }, 0);

    // Worked by hand; every value is a short binary fraction, so the result is exact.
    EXPECT_EQ (filter.tick (0, 1.0), 2.0);
    EXPECT_EQ (filter.getState (0), (NVX::FilterState { 0.5, 0.25 }));
    EXPECT_EQ (filter.tick (0, 0.0), 1.75);
    EXPECT_EQ (filter.getState (0), (NVX::FilterState { -0.125, 0.4375 }));

    // A state finer than a float carries over: nothing but the output is rounded.
    filter.setState ({ 0.0, 1.0 + std::ldexp (1.0, -40) }, 0);
    float sample = 1.0f;
    filter.process (&sample, 1, 0);
    EXPECT_EQ (filter.getState (0)[1], 2.0 * (1.0 + std::ldexp (7.0, -43)) - (1.0 + std::ldexp (1.0, -40)));
}

class SVFilterOfType : public testing::TestWithParam<int>
{
};

TEST_P (SVFilterOfType, ProcessIsTickRoundedToFloat)
{
    auto byBlock = makeFilter (GetParam(), 230.0, 0.7, 0.9);
    auto bySample = makeFilter (GetParam(), 230.0, 0.7, 0.9);
    byBlock->setSampleRate (1, 44100.0);
    bySample->setSampleRate (1, 44100.0);

    const auto noise = whiteNoise (2048, 0x7a11);
    auto samples = noise;
    byBlock->process (samples.data(), 2048, 0);

    for (std::size_t i = 0; i < noise.size(); ++i)
        ASSERT_EQ (samples[i], static_cast<float> (bySample->tick (0, static_cast<double> (noise[i])))) << "at " << i;

    EXPECT_EQ (byBlock->getState (0), bySample->getState (0));
}

TEST_P (SVFilterOfType, DoesNotDependOnTheBlockLength)
{
    const auto noise = whiteNoise (4096, 0xb10c);
    auto whole = noise, pieces = noise;

    auto filter = makeFilter (GetParam(), 230.0, 0.7, 0.9);
    filter->setSampleRate (1, 44100.0);
    filter->process (whole.data(), 4096, 0);

    filter->setSampleRate (1, 44100.0);
    Samples::inBlocks (4096, { 1, 0, 63, 64, 7, 512, 2 },
                       [&] (int done, int length) { filter->process (pieces.data() + done, length, 0); });

    EXPECT_EQ (pieces, whole);
}

TEST_P (SVFilterOfType, KeepsChannelsApart)
{
    const auto left = whiteNoise (1024, 0x1ef7), right = whiteNoise (1024, 0x419b);
    auto filter = makeFilter (GetParam(), 1000.0, 0.7, 2.0);
    auto alone = makeFilter (GetParam(), 1000.0, 0.7, 2.0);
    filter->setSampleRate (2, 48000.0);
    alone->setSampleRate (1, 48000.0);

    auto l = left, r = right, expected = right;
    float* channels[] = { l.data(), r.data() };
    filter->processAll (channels, 1024);
    alone->process (expected.data(), 1024, 0);
    EXPECT_EQ (r, expected);

    auto silence = std::vector<float> (64, 0.0f);
    filter->setSampleRate (2, 48000.0);
    l = left;
    filter->process (l.data(), 1024, 0);
    filter->process (silence.data(), 64, 1);
    EXPECT_EQ (silence, std::vector<float> (64, 0.0f));
}

TEST_P (SVFilterOfType, SetSampleRateStartsAllChannelsFromSilence)
{
    auto filter = makeFilter (GetParam(), 1000.0, 0.7, 2.0);
    filter->setSampleRate (3, 48000.0);
    EXPECT_EQ (filter->getNumRecords(), 3);

    for (int channel = 0; channel < 3; ++channel)
        filter->setState ({ 1.0, 2.0 }, channel);

    filter->setSampleRate (2, 96000.0);
    EXPECT_EQ (filter->getNumRecords(), 2);
    EXPECT_EQ (filter->numChannels, 2);
    EXPECT_EQ (filter->sampleRate, 96000.0);
    EXPECT_EQ (filter->type, GetParam());

    for (int channel = 0; channel < 2; ++channel)
        EXPECT_EQ (filter->getState (channel), (NVX::FilterState { 0.0, 0.0 }));
}

TEST_P (SVFilterOfType, WithoutRecordsPassesTheSignalOn)
{
    const auto noise = whiteNoise (64, 0xc1ea);

    for (const int numChannels : { 0, -1 })
    {
        auto samples = noise;
        auto filter = makeFilter (GetParam(), 1000.0, 0.7, 2.0);
        filter->setSampleRate (2, 48000.0);
        filter->setSampleRate (numChannels, 48000.0);
        EXPECT_EQ (filter->getNumRecords(), 0);
        filter->process (samples.data(), 64, 0);
        EXPECT_EQ (samples, noise);
    }

    auto samples = noise;
    auto filter = makeFilter (GetParam(), 1000.0, 0.7, 2.0);
    filter->process (samples.data(), 64, 0); // before setSampleRate
    EXPECT_EQ (samples, noise);

    filter->setSampleRate (2, 48000.0);
    filter->clear();
    EXPECT_EQ (filter->getNumRecords(), 0);
    filter->process (samples.data(), 64, 0);
    EXPECT_EQ (samples, noise);
}

TEST_P (SVFilterOfType, LeavesChannelsOutOfRangeAlone)
{
    const auto noise = whiteNoise (64, 0x0042);
    auto filter = makeFilter (GetParam(), 1000.0, 0.7, 2.0);
    filter->setSampleRate (2, 48000.0);
    const auto coefficients = filter->getCoefficients (1);

    for (const int channel : { -1, 2, 1000 })
    {
        auto samples = noise;
        filter->process (samples.data(), 64, channel);
        EXPECT_EQ (samples, noise);
        EXPECT_EQ (filter->tick (channel, 0.25), 0.25);

        filter->setState ({ 1.0, 1.0 }, channel);
        filter->setCoefficients ({ 1.0, 1.0, 1.0, 1.0, 1.0, 1.0 }, channel);
        EXPECT_EQ (filter->getState (channel), NVX::FilterState {});
        EXPECT_EQ (filter->getCoefficients (channel), NVX::FilterCoefficients {});
    }

    EXPECT_EQ (filter->getState (1), NVX::FilterState {});
    EXPECT_EQ (filter->getCoefficients (1), coefficients);
}

TEST_P (SVFilterOfType, StateAndCoefficientsCanBeCarriedToAnotherChannel)
{
    const auto noise = whiteNoise (1024, 0x57a7);
    auto filter = makeFilter (GetParam(), 500.0, 0.7, 2.0);
    filter->setSampleRate (2, 48000.0);

    auto whole = noise, halves = noise;
    filter->process (whole.data(), 1024, 0);

    filter->setSampleRate (2, 48000.0);
    filter->process (halves.data(), 512, 0);
    filter->setState (filter->getState (0), 1);
    filter->setCoefficients (filter->getCoefficients (0), 1);
    filter->process (halves.data() + 512, 512, 1);
    EXPECT_EQ (halves, whole);
}

INSTANTIATE_TEST_SUITE_P (AllTypes, SVFilterOfType, testing::Range (9, 17));

} // namespace
