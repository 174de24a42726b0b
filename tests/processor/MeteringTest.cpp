// SPDX-License-Identifier: GPL-3.0-or-later
// What the bands' meters read: levels before and behind a band, gain reduction, and their decay while no band runs.
#include "dsp/CrossoverFilter.h"
#include "processor/CorvaneQ7AudioProcessor.h"
#include "support/Followed.h"
#include "support/ProcessorHarness.h"
#include "support/Signals.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <memory>
#include <vector>

namespace
{
constexpr double rate = 44100.0;
constexpr double levelScale = 1.2276582668803786; // 0.7746 V * 10^(4/20): +4 dBu
constexpr int n = 441;                            // samples of a block: 10 ms

void setMeters (ChannelSettings& settings, int mode)
{
    for (auto& band : settings.bands)
        band.meter = mode;
}

void takeBandsOut (ChannelSettings& settings)
{
    for (auto& band : settings.bands)
        band.in = false;
}

/** The reading of a level meter, written out: followers of each channel, their mean, a peak that decays. */
class ReferenceTap
{
public:
    ReferenceTap (int channels, double internalRate)
        : coefficient ((1.0 - std::exp (-1.0 / (internalRate * 0.4))) * 0.5),
          decay (std::exp ((1.0 / internalRate) / -1.2)), rms (static_cast<std::size_t> (channels), 0.00001)
    {
    }

    double read (const juce::AudioBuffer<float>& band, int numSamples)
    {
        for (int i = 0; i < numSamples; ++i)
        {
            auto sum = 0.0;

            for (std::size_t c = 0; c < rms.size(); ++c)
            {
                const double x = band.getSample (static_cast<int> (c), i);
                const auto p = x * x > 0.00001 ? x * x : 0.00001;
                rms[c] = (p / rms[c] - rms[c]) * coefficient + rms[c];
                sum += rms[c] * (1.0 / static_cast<double> (rms.size()));
            }

            peak = std::max (peak * decay, sum);
        }

        return peak * levelScale;
    }

    double peak = 0.0;

private:
    double coefficient, decay;
    std::vector<double> rms;
};
} // namespace

TEST (Metering, TheInputTapReadsTheBandInFrontOfItsCompressor)
{
    for (const auto channels : { 1, 2 })
    {
        ProcessorHarness harness (channels, rate, n, 1,
                                  [] (ChannelSettings& settings)
                                  {
                                      setMeters (settings, ChannelSettings::meterIn);
                                      ChannelSettings::setDecibels (settings.inLevelDb, settings.inLevelLinear, 6.0);
                                  });

        const auto& settings = harness->activeSettings();
        const auto gain = static_cast<float> (settings.inLevelLinear.target);
        const auto calibration = static_cast<float> (settings.calibrationGain);
        CrossoverFilter lowPass (CrossoverFilter::lowPass);
        lowPass.setResponse (200.0, 1.0, 1.0, CrossoverFilter::lowPass);
        lowPass.prepare (rate, channels, n);
        ReferenceTap reference (channels, rate);

        for (std::uint32_t block = 0; block < 20; ++block)
        {
            auto input = Signals::whiteNoise (channels, n, 10 + block, block < 10 ? 0.5f : 0.01f);
            harness.run (input, { n });

            for (int c = 0; c < channels; ++c)
                for (int i = 0; i < n; ++i)
                    input.setSample (c, i, input.getSample (c, i) * calibration * gain);

            lowPass.process (input.getArrayOfWritePointers(), n);
            ASSERT_EQ (reference.read (input, n), settings.lowLevel) << channels << ", " << block;
        }
    }
}

TEST (Metering, TheOutputTapReadsTheBandBehindItsCompressor)
{
    ProcessorHarness harness (2, rate, n, 2,
                              [] (ChannelSettings& settings)
                              {
                                  setMeters (settings, ChannelSettings::meterOut);
                                  settings.bands[1].thresholdDb.setTarget (-15.0);
                              });

    ReferenceTap low (2, 2 * rate), mid (2, 2 * rate), high (2, 2 * rate);
    const auto& settings = harness->activeSettings();

    for (std::uint32_t block = 0; block < 8; ++block)
    {
        harness.run (Signals::whiteNoise (2, n, 50 + block, 0.5f), { n });

        // The buffers still hold what the bands handed to the sum.
        ASSERT_EQ (low.read (harness->lowBuffer, 2 * n), settings.lowLevel) << block;
        ASSERT_EQ (mid.read (harness->midBuffer, 2 * n), settings.midLevel) << block;
        ASSERT_EQ (high.read (harness->highBuffer, 2 * n), settings.highLevel) << block;
    }
}

TEST (Metering, ASineAtTheCalibrationLevelReadsZeroDecibels)
{
    // A low band that takes all of a 200 Hz sine; its peak stands at -22 dB, where +4 dBu is.
    constexpr int block = 441;
    ProcessorHarness harness (1, rate, block, 1,
                              [] (ChannelSettings& settings)
                              {
                                  takeBandsOut (settings);
                                  setMeters (settings, ChannelSettings::meterIn);
                                  settings.lowXOverHz = 20000.0;
                              });

    const auto sine = Signals::sine (1, block, rate, 200.0, std::pow (10.0, -22.0 / 20.0)); // two whole periods

    for (int i = 0; i < 1500; ++i) // 15 s: the start threw the reading up, and 1.2 s bring it down by e
        harness.run (sine, { block });

    // 1.1523716865 / sqrt (2) * 1.2276582668803786 = 1.00036. The follower ripples at 400 Hz by half of
    // 1 / (2 pi 400 Hz * 0.4 s), 0.0005, and the peak stands at the top of the ripple.
    EXPECT_NEAR (1.0004, harness->activeSettings().lowLevel, 0.0006);
    EXPECT_NEAR (0.0, Signals::toDb (harness->activeSettings().lowLevel), 0.01);
}

TEST (Metering, SilenceSettlesJustAboveNothing)
{
    // Squares are floored at 0.00001: the root of it times the scale is 0.00388, at every channel count.
    for (const auto channels : { 1, 2 })
    {
        ProcessorHarness harness (channels, 8000.0, 800, 1,
                                  [] (ChannelSettings& settings)
                                  {
                                      takeBandsOut (settings);
                                      settings.bands[0].meter = ChannelSettings::meterIn;
                                      settings.bands[2].meter = ChannelSettings::meterOut;
                                  });
        auto silence = Signals::silence (channels, 800);

        for (int i = 0; i < 60; ++i) // 6 s, 15 time constants
        {
            silence.clear();
            harness.block (silence);
        }

        EXPECT_NEAR (std::sqrt (0.00001) * levelScale, harness->activeSettings().lowLevel, 1.0e-8);
        EXPECT_NEAR (0.00388, harness->activeSettings().lowLevel, 0.000005);
        EXPECT_NEAR (0.00388, harness->activeSettings().highLevel, 0.000005);
        EXPECT_EQ (0.0, harness->activeSettings().midLevel) << "it shows gain reduction: no tap runs";
    }
}

TEST (Metering, TheFirstLoudSampleThrowsTheReadingUp)
{
    ProcessorHarness harness (1, rate, n, 1,
                              [] (ChannelSettings& settings)
                              {
                                  takeBandsOut (settings);
                                  setMeters (settings, ChannelSettings::meterIn);
                                  settings.lowXOverHz = 20000.0;
                              });
    harness.run (Signals::impulse (1, n, 0, 0.5f), { n });

    // The follower starts at its floor: one step of c = 2.8e-5 towards p / 1e-5.
    const auto x = 0.5 * harness->activeSettings().calibrationGain * harness->lowSplit.smoothers[0].current;
    const auto c = (1.0 - std::exp (-1.0 / (rate * 0.4))) * 0.5;
    const auto thrown = x * x / 0.00001 * c * levelScale;
    ASSERT_GT (thrown, 20.0);

    // It then falls: the reading is the peak, less 10 ms of 1.2 s.
    EXPECT_NEAR (thrown * std::exp (-0.01 / 1.2), harness->activeSettings().lowLevel, thrown * 1.0e-4);
}

TEST (Metering, AGainReductionMeterRunsNoTap)
{
    ProcessorHarness harness (1, rate, n, 1,
                              [] (ChannelSettings& settings)
                              {
                                  setMeters (settings, ChannelSettings::meterIn);
                                  settings.bands[0].thresholdDb.setTarget (-20.0);
                              });
    harness.run (Signals::whiteNoise (1, n, 1), { n });
    auto& settings = harness->activeSettings();
    const auto kept = settings.lowLevel;
    ASSERT_GT (kept, 0.1);

    setMeters (settings, ChannelSettings::meterControl);
    const auto follower = harness->bandGroups[0].inputFollowers[0].rms;
    harness.run (Signals::whiteNoise (1, 20 * n, 2), { n });

    EXPECT_EQ (kept, settings.lowLevel) << "the last value stays";
    EXPECT_EQ (follower, harness->bandGroups[0].inputFollowers[0].rms);
    EXPECT_EQ (0.0, harness->bandGroups[0].inputPeak);
    EXPECT_EQ (0.0, harness->bandGroups[0].outputPeak);
    EXPECT_EQ (harness->bandGroups[0].compressor.meterValue(), settings.lowGainReduction);
    EXPECT_LT (settings.lowGainReduction, 0.98);
}

TEST (Metering, GainReductionIsReadInEveryMode)
{
    for (const auto mode : { 0, 1, 2 })
    {
        ProcessorHarness harness (1, rate, n, 1,
                                  [mode] (ChannelSettings& settings)
                                  {
                                      setMeters (settings, mode);

                                      for (auto& band : settings.bands)
                                          band.thresholdDb.setTarget (-20.0);
                                  });
        harness.run (Signals::whiteNoise (1, 10 * n, 3), { n });

        for (int b = 0; b < 3; ++b)
        {
            EXPECT_EQ (harness->bandGroups[b].compressor.meterValue(), harness->activeSettings().gainReduction (b));
            EXPECT_LT (harness->activeSettings().gainReduction (b), 0.98) << mode << ", " << b;
        }
    }
}

TEST (Metering, ABandAtRestReadsNoReduction)
{
    ProcessorHarness harness (1, rate, n, 1);

    for (int i = 0; i < 300; ++i)
        harness.run (Signals::silence (1, n), { n });

    // At rest the capacitor stands a hundredth of a volt above its floor: a hair below the gain at the floor.
    for (int b = 0; b < 3; ++b)
    {
        EXPECT_LT (harness->activeSettings().gainReduction (b), 1.0);
        EXPECT_GT (harness->activeSettings().gainReduction (b), 0.995);
    }
}

TEST (Metering, SwitchingFromInputToOutputStartsFromNothing)
{
    ProcessorHarness harness (1, rate, n, 1,
                              [] (ChannelSettings& settings) { setMeters (settings, ChannelSettings::meterIn); });
    harness.run (Signals::whiteNoise (1, 10 * n, 1), { n });
    auto& group = harness->bandGroups[1];
    ASSERT_GT (group.inputPeak, 0.5);
    EXPECT_EQ (0.0, group.outputPeak);

    setMeters (harness->activeSettings(), ChannelSettings::meterOut);
    harness.run (Signals::silence (1, 1), { 1 });

    EXPECT_EQ (0.0, group.inputPeak) << "at once";
    EXPECT_EQ (ReferenceTap (1, rate).read (harness->midBuffer, 1), harness->activeSettings().midLevel)
        << "a tap that has heard nothing before: no trace of the input's peak";
    EXPECT_EQ (group.outputPeak * levelScale, harness->activeSettings().midLevel);
}

TEST (Metering, ARowOutsideTheTableRunsNoTap)
{
    ProcessorHarness harness (1, rate, n, 1,
                              [] (ChannelSettings& settings) { setMeters (settings, ChannelSettings::meterIn); });
    harness.run (Signals::whiteNoise (1, n, 1), { n });
    const auto kept = harness->activeSettings().lowLevel;

    setMeters (harness->activeSettings(), 3);
    harness.run (Signals::whiteNoise (1, n, 2), { n });
    EXPECT_EQ (kept, harness->activeSettings().lowLevel);
    EXPECT_EQ (0.0, harness->bandGroups[0].inputPeak);
}

TEST (Metering, MonoAndStereoReadAlikeForTheSameSignal)
{
    const auto configure = [] (ChannelSettings& settings)
    {
        settings.bands[0].meter = ChannelSettings::meterIn;
        settings.bands[1].meter = ChannelSettings::meterIn;
        settings.bands[2].meter = ChannelSettings::meterOut;
    };

    ProcessorHarness mono (1, rate, n, 1, configure), stereo (2, rate, n, 1, configure);
    const auto one = Signals::whiteNoise (1, 10 * n, 77, 0.5f);
    juce::AudioBuffer<float> two (2, 10 * n);
    two.copyFrom (0, 0, one, 0, 0, 10 * n);
    two.copyFrom (1, 0, one, 0, 0, 10 * n);
    mono.run (one, { n });
    stereo.run (two, { n });

    // Halves and sums of equal doubles are exact; the detector's mean of two equal floats is too.
    for (int b = 0; b < 3; ++b)
    {
        EXPECT_DOUBLE_EQ (mono->activeSettings().level (b), stereo->activeSettings().level (b)) << b;
        EXPECT_DOUBLE_EQ (mono->activeSettings().gainReduction (b), stereo->activeSettings().gainReduction (b)) << b;
    }
}

TEST (Metering, AStereoLevelIsTheMeanOfTheChannels)
{
    ProcessorHarness harness (2, rate, n, 1,
                              [] (ChannelSettings& settings)
                              {
                                  takeBandsOut (settings);
                                  setMeters (settings, ChannelSettings::meterIn);
                              });

    auto leftOnly = Signals::silence (2, 10 * n);
    leftOnly.copyFrom (0, 0, Signals::whiteNoise (1, 10 * n, 3), 0, 0, 10 * n);
    harness.run (leftOnly, { n });

    const auto& followers = harness->bandGroups[1].inputFollowers;
    EXPECT_GT (followers[0].rms, 100.0 * followers[1].rms);
    EXPECT_GE (harness->bandGroups[1].inputPeak, 0.5 * (followers[0].rms + followers[1].rms));
    EXPECT_LT (harness->bandGroups[1].inputPeak, followers[0].rms * 1.5);
}

TEST (Metering, BallisticsAreTheSameInSecondsAtEveryFactor)
{
    // A tone of one second, then a second of the pause: the reading rises and falls in the same time.
    constexpr int block = 480;
    constexpr double hostRate = 48000.0;
    std::vector<double> afterTone, afterPause;

    for (const auto factor : { 1, 2, 4 })
    {
        ProcessorHarness harness (1, hostRate, block, factor,
                                  [] (ChannelSettings& settings)
                                  {
                                      takeBandsOut (settings);
                                      setMeters (settings, ChannelSettings::meterIn);
                                  });
        const auto tone = Signals::sine (1, block, hostRate, 1000.0, 0.2), pause = Signals::silence (1, block);

        for (int i = 0; i < 10; ++i)
            harness.run (tone, { block });

        // What the first sample throws up depends on the filters in front of it: both start from 1 instead.
        auto& group = harness->bandGroups[1];
        group.inputPeak = group.inputFollowers[0].rms = 1.0;

        for (int i = 0; i < 100; ++i)
            harness.run (tone, { block });

        afterTone.push_back (harness->activeSettings().midLevel);

        for (int i = 0; i < 100; ++i)
            harness.run (pause, { block });

        afterPause.push_back (harness->activeSettings().midLevel);
    }

    // The share that the crossovers give the middle band at 1 kHz differs by a little over 1 % between the rates.
    for (std::size_t i = 1; i < afterTone.size(); ++i)
    {
        EXPECT_NEAR (afterTone[0], afterTone[i], 0.02 * afterTone[0]);
        EXPECT_NEAR (afterPause[0] / afterTone[0], afterPause[i] / afterTone[i], 0.01);
    }

    // One second of a pause: the peak keeps e^(-1 / 1.2); the running mean has fallen further.
    EXPECT_NEAR (std::exp (-1.0 / 1.2), afterPause[0] / afterTone[0], 0.01);
}

// ---- while no band runs ----------------------------------------------------------------------

namespace
{
class IdleMetering : public ::testing::TestWithParam<int>
{
protected:
    const int factor = GetParam();

    /** Runs loud noise with these meters, then turns the mix to dry at once. */
    std::unique_ptr<ProcessorHarness> goneDry (int mode) const
    {
        auto harness = std::make_unique<ProcessorHarness> (1, rate, n, factor,
                                                           [mode] (ChannelSettings& settings)
                                                           {
                                                               setMeters (settings, mode);

                                                               for (auto& band : settings.bands)
                                                               {
                                                                   band.thresholdDb.setTarget (-20.0);
                                                                   band.recovery = 0;
                                                               }
                                                           });

        harness->run (Signals::whiteNoise (1, 10 * n, 4), { n });
        (*harness)->activeSettings().mix = 0.0;
        (*harness)->applySettings();
        (*harness)->mixRamp.restAtTarget (4410);
        return harness;
    }
};
} // namespace

TEST_P (IdleMetering, ThePeakDecaysBySinglePrecisionOfTheWholeBlock)
{
    for (const auto mode : { ChannelSettings::meterIn, ChannelSettings::meterOut })
    {
        const auto harness = goneDry (mode);
        auto& processor = *harness->processor;
        const auto& group = followed (processor).bandGroups[2];

        for (const auto length : { n, 1, 100 })
        {
            const auto peak = mode == ChannelSettings::meterIn ? group.inputPeak : group.outputPeak;
            ASSERT_GT (peak, 0.01);
            const auto follower = group.inputFollowers[0].rms;
            const auto decay = static_cast<double> (
                powf (static_cast<float> (processor.meterDecay), static_cast<float> (factor * length)));
            harness->run (Signals::silence (1, length), { length });

            EXPECT_EQ (peak * decay, mode == ChannelSettings::meterIn ? group.inputPeak : group.outputPeak);
            EXPECT_EQ (peak * decay * levelScale, processor.activeSettings().highLevel);
            EXPECT_EQ (follower, group.inputFollowers[0].rms) << "the followers stand still";
        }
    }
}

TEST_P (IdleMetering, TheDecayIsNotExactlyThatOfTheAudioPath)
{
    const auto harness = goneDry (ChannelSettings::meterIn);
    auto& processor = *harness->processor;
    auto perSample = followed (processor).bandGroups[0].inputPeak;
    const auto before = perSample;

    for (int i = 0; i < factor * n; ++i)
        perSample *= processor.meterDecay;

    harness->run (Signals::silence (1, n), { n });
    const auto idle = followed (processor).bandGroups[0].inputPeak;

    EXPECT_NE (perSample, idle);
    EXPECT_NEAR (perSample, idle, before * factor * n * 0x1p-25); // the rounding of one sample's decay to float
}

TEST_P (IdleMetering, TheReadingGoesOnTowardsZero)
{
    const auto harness = goneDry (ChannelSettings::meterIn);

    for (int i = 0; i < 1200; ++i) // 12 s, ten times 1.2 s
        harness->run (Signals::silence (1, n), { n });

    EXPECT_GT (harness->processor->activeSettings().midLevel, 0.0);
    EXPECT_LT (harness->processor->activeSettings().midLevel, 0.00388) << "below the floor of the audio path";
}

TEST_P (IdleMetering, TheBandsRelaxByTheFactorTimesTheBlock)
{
    const auto harness = goneDry (ChannelSettings::meterControl);
    auto& processor = *harness->processor;
    const auto reduction = processor.activeSettings().midGainReduction;
    ASSERT_LT (reduction, 0.95);

    // Another band with the same charge, told the same number of samples.
    BandCompressor twin (1);
    twin.applyBandSettings (processor.activeSettings());
    twin.prepare (rate * factor, 1, n * factor);
    auto& band = followed (processor).bandGroups[1].compressor;
    twin.mainCapacitor.voltage = band.mainCapacitor.voltage;
    twin.auxCapacitor.voltage = band.auxCapacitor.voltage;
    twin.meterGain = band.meterGain;
    twin.idleAdvance (n * factor);

    harness->run (Signals::silence (1, n), { n });
    EXPECT_EQ (twin.meterValue(), processor.activeSettings().midGainReduction);
    EXPECT_EQ (twin.mainCapacitor.voltage, band.mainCapacitor.voltage);

    for (int i = 0; i < 300; ++i) // three seconds
        harness->run (Signals::silence (1, n), { n });

    EXPECT_GT (processor.activeSettings().midGainReduction, 0.99);
}

TEST_P (IdleMetering, PeaksOfModesNotSelectedStay)
{
    const auto harness = goneDry (ChannelSettings::meterIn);
    auto& processor = *harness->processor;
    const auto peak = followed (processor).bandGroups[0].inputPeak;
    const auto level = processor.activeSettings().lowLevel;
    setMeters (processor.activeSettings(), ChannelSettings::meterControl);
    harness->run (Signals::silence (1, 10 * n), { n });

    EXPECT_EQ (peak, followed (processor).bandGroups[0].inputPeak);
    EXPECT_EQ (level, processor.activeSettings().lowLevel);

    setMeters (processor.activeSettings(), ChannelSettings::meterOut);
    harness->run (Signals::silence (1, n), { n });
    EXPECT_EQ (peak, followed (processor).bandGroups[0].inputPeak);
    EXPECT_EQ (0.0, processor.activeSettings().lowLevel) << "the output's peak was zeroed while audio ran";
}

TEST_P (IdleMetering, TheOutputsPeakStaysWhenItsModeIsNotSelected)
{
    const auto harness = goneDry (ChannelSettings::meterOut);
    auto& processor = *harness->processor;
    const auto peak = followed (processor).bandGroups[0].outputPeak;
    ASSERT_GT (peak, 0.01);

    for (const auto mode : { ChannelSettings::meterControl, ChannelSettings::meterIn })
    {
        setMeters (processor.activeSettings(), mode);
        harness->run (Signals::silence (1, n), { n });
        EXPECT_EQ (peak, followed (processor).bandGroups[0].outputPeak);
    }
}

INSTANTIATE_TEST_SUITE_P (Factor, IdleMetering, ::testing::Values (1, 4), ::testing::PrintToStringParamName());

TEST (Metering, AnEmptyBlockMovesNoMeter)
{
    for (const auto mix : { 1.0, 0.0 })
    {
        ProcessorHarness harness (1, rate, n, 1,
                                  [mix] (ChannelSettings& settings)
                                  {
                                      setMeters (settings, ChannelSettings::meterIn);
                                      settings.mix = mix;
                                  });
        auto& settings = harness->activeSettings();
        settings.lowLevel = 0.25;
        settings.lowGainReduction = 0.5;
        harness->bandGroups[0].inputPeak = 0.75;

        juce::AudioBuffer<float> empty (1, 0);
        harness.block (empty);
        juce::AudioBuffer<float> without (0, 64);
        harness.block (without);

        EXPECT_EQ (0.25, settings.lowLevel);
        EXPECT_EQ (0.5, settings.lowGainReduction);
        EXPECT_EQ (0.75, harness->bandGroups[0].inputPeak);
    }
}
