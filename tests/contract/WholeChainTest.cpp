// SPDX-License-Identifier: GPL-3.0-or-later
// What a listener hears of the whole chain: its gain at rest, its compression, its distortion, its make-up.
#include "processor/CorvaneQ7AudioProcessor.h"
#include "support/ProcessorHarness.h"
#include "support/Signals.h"

#include <gtest/gtest.h>

#include <cmath>
#include <functional>
#include <utility>
#include <vector>

namespace
{
constexpr double rate = 48000.0;

void setGain (ChannelSettings& settings, double db)
{
    for (auto& band : settings.bands)
        band.gainDb.setTarget (db);
}

void setThreshold (ChannelSettings& settings, double db)
{
    for (auto& band : settings.bands)
        band.thresholdDb.setTarget (db);
}

/** Gain in dB of a sine in the last 50 ms of so many seconds, measured in whole periods. */
double gainDb (double frequency, double amplitude, double seconds, int factor,
               const std::function<void (ChannelSettings&)>& configure)
{
    const auto n = static_cast<int> (rate * seconds);
    constexpr int window = 2400;
    ProcessorHarness harness (1, rate, 480, factor, configure);
    const auto output = harness.run (Signals::sine (1, n, rate, frequency, amplitude), { 480 });
    return Signals::toDb (Signals::amplitudeAt (output.getReadPointer (0, n - window), window, rate, frequency)
                          / amplitude);
}

/** Share of the harmonics 2 to 9 in the last 50 ms of half a second. */
double distortion (double frequency, double amplitude, const std::function<void (ChannelSettings&)>& configure)
{
    constexpr int n = 24000, window = 2400;
    ProcessorHarness harness (1, rate, 480, 4, configure);
    const auto output = harness.run (Signals::sine (1, n, rate, frequency, amplitude), { 480 });
    const auto* last = output.getReadPointer (0, n - window);
    auto power = 0.0;

    for (int k = 2; k <= 9; ++k)
        power += std::pow (Signals::amplitudeAt (last, window, rate, k * frequency), 2.0);

    return std::sqrt (power) / Signals::amplitudeAt (last, window, rate, frequency);
}
} // namespace

TEST (WholeChain, ReadsAHairAboveUnityAtRest)
{
    // The law of the gain element is 0.298 dB up at its floor and 0.292 dB where the capacitor really rests; with the
    // response of the tone cascade it comes to about +0.277 dB at 1 kHz, when nothing compresses.
    const auto measured = gainDb (1000.0, 0.0001, 2.0, 1,
                                  [] (ChannelSettings& settings)
                                  {
                                      setGain (settings, 0.0);
                                      setThreshold (settings, 20.0);
                                  });

    EXPECT_NEAR (0.277, measured, 0.004);
}

TEST (WholeChain, WithTheBandsOutIsUnity)
{
    const auto measured = gainDb (1000.0, 0.0001, 1.0, 1,
                                  [] (ChannelSettings& settings)
                                  {
                                      for (auto& band : settings.bands)
                                          band.in = false;
                                  });

    EXPECT_NEAR (0.0, measured, 0.002);
}

TEST (WholeChain, OversampledReadsTheRippleOfItsFilters)
{
    // A Hamming-windowed sinc is not quite flat: up and down together read about +0.022 dB at 1 kHz. That is no fault.
    const auto rippleDb = [] (int factor, double frequency)
    {
        const auto numTaps = 52 * factor + 1, centre = 26 * factor;
        const auto cutoff = (1.0 - 4.0 * factor / numTaps) / (2.0 * factor);
        auto atFrequency = 0.0, atZero = 0.0;

        for (int i = 0; i < numTaps; ++i)
        {
            const auto t = i - centre;
            const auto sinc = t == 0 ? 2.0 * cutoff : std::sin (2.0 * Signals::pi * cutoff * t) / (Signals::pi * t);
            const auto tap = sinc * (0.54 - 0.46 * std::cos (2.0 * Signals::pi * i / (numTaps - 1)));
            atFrequency += tap * std::cos (2.0 * Signals::pi * frequency * t / (factor * rate));
            atZero += tap;
        }

        return 2.0 * Signals::toDb (atFrequency / atZero);
    };

    EXPECT_NEAR (0.022, rippleDb (4, 1000.0), 0.0005);

    for (const auto factor : { 2, 4, 8, 16 })
    {
        const auto measured = gainDb (1000.0, 0.0001, 0.25, factor,
                                      [] (ChannelSettings& settings)
                                      {
                                          for (auto& band : settings.bands)
                                              band.in = false;
                                      });

        EXPECT_NEAR (rippleDb (factor, 1000.0), measured, 0.001) << factor; // the transformer's own colour
    }
}

TEST (WholeChain, EachDecibelOfGainIsADecibel)
{
    const auto at = [] (double db)
    {
        return gainDb (1000.0, 0.0001, 0.5, 1,
                       [db] (ChannelSettings& settings)
                       {
                           setGain (settings, db);
                           setThreshold (settings, 20.0);
                       });
    };

    const auto rest = at (0.0);

    for (const auto db : { 1.0, 6.0, 15.0 })
        EXPECT_NEAR (rest + db, at (db), 0.01) << db;
}

TEST (WholeChain, LevelsMoveTheOutputAndMixBlends)
{
    const auto base =
        gainDb (1000.0, 0.0001, 0.5, 1, [] (ChannelSettings& settings) { setThreshold (settings, 20.0); });

    for (const auto db : { -12.0, 6.0 })
    {
        const auto with = [&] (auto choose)
        {
            return gainDb (1000.0, 0.0001, 0.5, 1,
                           [&] (ChannelSettings& settings)
                           {
                               setThreshold (settings, 20.0);
                               const auto [decibels, gain] = choose (settings);
                               ChannelSettings::setDecibels (*decibels, *gain, db);
                           });
        };

        EXPECT_NEAR (base + db, with ([] (ChannelSettings& s) { return std::pair (&s.inLevelDb, &s.inLevelLinear); }),
                     0.01);
        EXPECT_NEAR (base + db, with ([] (ChannelSettings& s) { return std::pair (&s.outLevelDb, &s.outLevelLinear); }),
                     0.01);
        EXPECT_NEAR (base + db,
                     with ([] (ChannelSettings& s) { return std::pair (&s.masterGainDb, &s.masterGainLinear); }), 0.01);
    }

    const auto half = gainDb (1000.0, 0.0001, 0.5, 1,
                              [] (ChannelSettings& settings)
                              {
                                  setThreshold (settings, 20.0);
                                  settings.mix = 0.5;
                              });

    // The wet signal is nearly in phase at 1 kHz: amplitudes add.
    EXPECT_NEAR (Signals::toDb (0.5 + 0.5 * Signals::fromDb (base)), half, 0.05);
}

TEST (WholeChain, GainReductionGrowsWithTheLevel)
{
    auto last = 1.0;

    for (const auto levelDb : { -60.0, -30.0, -24.0, -18.0, -12.0, -6.0, 0.0 })
    {
        ProcessorHarness harness (1, rate, 480, 1,
                                  [] (ChannelSettings& settings)
                                  {
                                      setGain (settings, 0.0);
                                      setThreshold (settings, -10.0);
                                  });
        harness.run (Signals::sine (1, 48000, rate, 1000.0, Signals::fromDb (levelDb)), { 480 });
        const auto now = harness->activeSettings().midGainReduction;

        if (levelDb < -50.0)
            EXPECT_GT (now, 0.99) << "nothing to compress";
        else
            EXPECT_LT (now, last) << levelDb;

        last = now;
    }

    EXPECT_LT (last, Signals::fromDb (-3.0));
}

TEST (WholeChain, ALowerThresholdCompressesMore)
{
    auto last = 1.0e9;

    for (const auto threshold : { 20.0, 0.0, -10.0, -20.0 })
    {
        const auto now = gainDb (1000.0, 0.1, 1.0, 1,
                                 [threshold] (ChannelSettings& settings)
                                 {
                                     setGain (settings, 0.0);
                                     setThreshold (settings, threshold);
                                 });
        EXPECT_LT (now, last - 0.01) << threshold;
        last = now;
    }
}

TEST (WholeChain, EachBandCompressesItsOwnShare)
{
    // A loud low tone: the low band works, the high one rests.
    ProcessorHarness harness (1, rate, 480, 1,
                              [] (ChannelSettings& settings)
                              {
                                  setThreshold (settings, -16.0);
                                  settings.niveau = false;
                              });
    harness.run (Signals::sine (1, 48000, rate, 60.0, 0.5), { 480 });
    const auto& settings = harness->activeSettings();

    EXPECT_LT (settings.lowGainReduction, 0.9);
    EXPECT_GT (settings.highGainReduction, 0.99);
}

TEST (WholeChain, NukeDistorts)
{
    // The transformer's knee follows the level, so at a low level nuke is gain; a loud tone is driven into the rails.
    const auto clean = distortion (200.0, 0.3, [] (ChannelSettings& settings) { setThreshold (settings, 20.0); });
    const auto nuked = distortion (200.0, 0.3,
                                   [] (ChannelSettings& settings)
                                   {
                                       setThreshold (settings, 20.0);
                                       settings.nuke = true;
                                   });

    EXPECT_LT (clean, 0.001);
    EXPECT_GT (nuked, 0.05);
}

TEST (WholeChain, NukeDrivesTheBandsFifteenDecibelsHarder)
{
    const auto with = [] (bool nuke)
    {
        return gainDb (1000.0, 0.0001, 0.5, 1,
                       [nuke] (ChannelSettings& settings)
                       {
                           setThreshold (settings, 20.0);
                           settings.nuke = nuke;
                       });
    };

    EXPECT_NEAR (with (false) + 15.0, with (true), 0.01);
}

TEST (WholeChain, AutomaticMakeupBringsTheLevelBackInTwoSeconds)
{
    // Gain 0 and the automatic make-up have the same drive: their quotient is the make-up. It goes to the inverse of
    // the gain reduction, so back to the level at rest, with 2 s.
    constexpr int block = 480, seconds = 12;
    const auto configure = [] (double gain)
    {
        return [gain] (ChannelSettings& settings)
        {
            setGain (settings, gain);
            setThreshold (settings, -16.0);

            for (auto& band : settings.bands)
                band.recovery = 2;
        };
    };

    ProcessorHarness manual (1, rate, block, 1, configure (0.0)), automatic (1, rate, block, 1, configure (-1.0));
    const auto tone = Signals::sine (1, block, rate, 1000.0, 0.05); // ten whole periods
    std::vector<double> makeup;
    auto level = 0.0;

    for (int i = 0; i < seconds * 100; ++i)
    {
        const auto plain = manual.run (tone, { block }), held = automatic.run (tone, { block });
        level = Signals::amplitudeAt (held.getReadPointer (0), block, rate, 1000.0);
        makeup.push_back (level / Signals::amplitudeAt (plain.getReadPointer (0), block, rate, 1000.0));
    }

    const auto reductionDb = Signals::toDb (manual->activeSettings().midGainReduction);
    ASSERT_LT (reductionDb, -3.0);
    EXPECT_NEAR (1.0, makeup.front(), 0.02) << "no jump at the start";

    // After 2 s the way from 1 to its end is covered by 1 - 1/e; attack and the other bands' shares blur it a little.
    const auto end = makeup.back();
    EXPECT_NEAR (1.0 - std::exp (-1.0), (makeup[199] - 1.0) / (end - 1.0), 0.03);
    EXPECT_NEAR (1.0 - std::exp (-2.0), (makeup[399] - 1.0) / (end - 1.0), 0.03);

    // In the end the tone is as loud as at rest: the 0.277 dB of the chain, within the ripple of the gain in a period.
    EXPECT_NEAR (0.277, Signals::toDb (level / 0.05), 0.3);
}

TEST (WholeChain, ASmallerCalibrationCompressesLess)
{
    const auto at = [] (double calibrationDb)
    {
        return gainDb (1000.0, 0.2, 1.0, 1,
                       [calibrationDb] (ChannelSettings& settings)
                       {
                           setGain (settings, 0.0);
                           setThreshold (settings, -6.0);
                           settings.calibrationGain = UserDefaults::calibrationGainFor (calibrationDb);
                       });
    };

    EXPECT_GT (at (16.0), at (20.0) + 0.3);
    EXPECT_GT (at (20.0), at (24.0) + 0.3);
}

TEST (WholeChain, AnUntouchedInstanceFadesInWithinAHundredMilliseconds)
{
    // Built before any control was moved: at first the output is the input, then the chain takes over.
    CorvaneQ7AudioProcessor untouched;
    untouched.setNoiseSource (NoiseSource::held());
    ASSERT_TRUE (untouched.setBusesLayout ({ { juce::AudioChannelSet::mono() }, { juce::AudioChannelSet::mono() } }));
    untouched.setRateAndBufferSizeDetails (rate, 480);
    untouched.prepareToPlay (rate, 480);

    const auto tone = Signals::sine (1, 480, rate, 1000.0, 0.0001);
    juce::MidiBuffer midi;
    std::vector<double> levels;

    for (int block = 0; block < 30; ++block)
    {
        auto buffer = tone;
        untouched.processBlock (buffer, midi);
        levels.push_back (Signals::amplitudeAt (buffer.getReadPointer (0), 480, rate, 1000.0) / 0.0001);
    }

    // The Gain of +2 dB comes in with the fade, then stands.
    EXPECT_NEAR (1.0, levels[0], 0.03);

    for (std::size_t i = 1; i < 10; ++i)
        EXPECT_GT (levels[i], levels[i - 1]) << i;

    EXPECT_NEAR (Signals::fromDb (2.277), levels[12], 0.01);
    EXPECT_NEAR (levels[12], levels[29], 0.002);
}
