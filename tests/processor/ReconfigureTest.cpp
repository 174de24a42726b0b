// SPDX-License-Identifier: GPL-3.0-or-later
// What a rebuild of the engine leaves behind, and how a new oversampling factor comes to one.
#include "processor/CorvaneQ7AudioProcessor.h"
#include "support/Followed.h"
#include "support/Matchers.h"
#include "support/ProcessorHarness.h"
#include "support/Signals.h"

#include <gtest/gtest.h>

#include <cmath>
#include <utility>
#include <vector>

namespace
{
template <typename Smoother>
void expectLanded (int length, const Smoother& smoother)
{
    EXPECT_EQ (length, smoother.length);
    EXPECT_EQ (0, smoother.remaining);
    EXPECT_EQ (smoother.target, smoother.current);
}

void expectLevelsLanded (int length, const LevelRamps& levels)
{
    for (const auto* ramp : { &levels.in, &levels.out, &levels.master })
        expectLanded (length, *ramp);
}

void expectSize (int channels, int samples, const juce::AudioBuffer<float>& buffer)
{
    EXPECT_EQ (channels, buffer.getNumChannels());
    EXPECT_EQ (samples, buffer.getNumSamples());
}

/** Moves every decibel control of a record. */
void moveAll (ChannelSettings& record)
{
    for (auto& band : record.bands)
    {
        ChannelSettings::setDecibels (band.gainDb, band.gainLinear, 9.0);
        ChannelSettings::setDecibels (band.thresholdDb, band.thresholdLinear, -19.0);
    }

    ChannelSettings::setDecibels (record.masterGainDb, record.masterGainLinear, 7.0);
    ChannelSettings::setDecibels (record.inLevelDb, record.inLevelLinear, -8.0);
    ChannelSettings::setDecibels (record.outLevelDb, record.outLevelLinear, 5.0);
}
} // namespace

TEST (Reconfigure, SizesTheBuffersForBlockChannelsAndFactor)
{
    for (const auto factor : { 1, 2, 16 })
        for (const auto channels : { 1, 2 })
        {
            const ProcessorHarness harness (channels, 44100.0, 96, factor);
            const auto& processor = *harness.processor;

            EXPECT_EQ (96, processor.maxBlockSize);
            expectSize (channels, 96 * factor, processor.lowBuffer);
            expectSize (channels, 96 * factor, processor.midBuffer);
            expectSize (channels, 96 * factor, processor.highBuffer);
            expectSize (channels, 96 * factor, processor.workBuffer);
            expectSize (channels + 5, 96, processor.controlBuffer);
            EXPECT_EQ (static_cast<std::size_t> (channels), processor.oversamplers.size());
            EXPECT_EQ (static_cast<std::size_t> (channels), processor.transformerStates.size());
            EXPECT_EQ (channels, processor.dryDelay.getNumRecords());
            EXPECT_EQ (factor > 1 ? 52 : 0, processor.dryDelay.getDelaySamples());
        }
}

TEST (Reconfigure, TellsTheRatesToWhatRunsAtThem)
{
    ProcessorHarness harness (2, 48000.0, 64, 4);
    auto& processor = *harness.processor;
    constexpr double internalRate = 192000.0;

    EXPECT_EQ (internalRate, followed (processor).lowSplit.rate);
    EXPECT_EQ (internalRate, followed (processor).highSplit.rate);

    for (const auto& group : followed (processor).bandGroups)
    {
        EXPECT_TRUE (group.compressor.isReady());
        EXPECT_EQ (internalRate, group.compressor.rate);
        EXPECT_EQ (2, group.compressor.channels);
        EXPECT_EQ (19200, group.compressor.driveRamp.length);
        ASSERT_EQ (2u, group.inputFollowers.size());
        ASSERT_EQ (2u, group.outputFollowers.size());

        for (const auto& followers : { group.inputFollowers, group.outputFollowers })
            for (const auto& follower : followers)
            {
                EXPECT_DOUBLE_EQ ((1.0 - std::exp (-1.0 / (internalRate * 0.4))) * 0.5, follower.coefficient);
                EXPECT_EQ (0.00001, follower.rms);
            }
    }

    // The transformer works with T = 1 / processing rate, its constants follow from it.
    EXPECT_DOUBLE_EQ (90.0 / internalRate, processor.transformer.kneeScale);
    EXPECT_DOUBLE_EQ (1.0 - std::exp (-1.0 / (internalRate * 0.005)), processor.transformer.envelopeA);
    EXPECT_EQ (48000.0, processor.dryDelay.sampleRate);
}

TEST (Reconfigure, TheMetersDecayIsTwelveTenthsOfASecondAtEveryRateAndFactor)
{
    for (const auto rate : { 44100.0, 96000.0 })
        for (const auto factor : { 1, 3, 16 })
        {
            const ProcessorHarness harness (1, rate, 32, factor);
            EXPECT_DOUBLE_EQ (std::exp ((1.0 / (factor * rate)) / -1.2), harness.processor->meterDecay);
            EXPECT_NEAR (std::exp (-1.0), std::pow (harness.processor->meterDecay, 1.2 * factor * rate), 1.0e-9);
        }
}

TEST (Reconfigure, RampsAreATenthOfASecondOfTheHostsRate)
{
    for (const auto& [rate, length] : { std::pair { 44100.0, 4410 }, { 48000.0, 4800 }, { 192000.0, 19200 } })
        for (const auto factor : { 1, 2 })
        {
            ProcessorHarness harness (1, rate, 32, factor);
            EXPECT_EQ (length, harness->mixRamp.length);

            for (const auto& levels : harness->levels)
                expectLevelsLanded (length, levels);
        }
}

TEST (Reconfigure, FinishesTheRampsOfBothSlots)
{
    ProcessorHarness harness (2, 44100.0, 64);

    for (auto& slot : harness->settingsSlots)
        moveAll (slot);

    harness->activeSettings().bypass.setTarget (1.0);
    harness->applySettings();
    ASSERT_NE (0, harness->mixRamp.remaining);
    harness->reconfigure (44100.0);

    for (const auto& levels : harness->levels)
    {
        expectLevelsLanded (4410, levels);
        EXPECT_EQ (std::pow (10.0, -8.0 * 0.05), levels.in.current);
        EXPECT_EQ (std::pow (10.0, 7.0 * 0.05), levels.master.current);
    }

    expectLanded (4410, harness->mixRamp);
    EXPECT_EQ (0.0, harness->mixRamp.current);

    for (const auto& group : harness->bandGroups)
    {
        const auto& band = group.compressor;

        for (const auto* ramp : { &band.driveRamp, &band.wetRamp, &band.dryRamp, &band.midSideRamp })
            expectLanded (4410, *ramp);
    }

    for (const auto* filter : { &harness->lowSplit, &harness->highSplit })
        for (const auto& smoother : filter->smoothers)
            expectLanded (4410, smoother);
}

TEST (Reconfigure, StartsNoRampOfItsOwnWhenTheSettingsHaveReachedTheEngine)
{
    // The first rebuild has landed everything; the controls it pushes at its end are the same ones.
    ProcessorHarness harness (1, 48000.0, 64, 2,
                              [] (ChannelSettings& settings)
                              {
                                  settings.mix = 0.3;
                                  settings.lowXOverHz = 150.0;
                                  settings.bands[1].gainDb.setTarget (11.0);
                              });

    EXPECT_EQ (0, harness->mixRamp.remaining);
    EXPECT_EQ (0.3, harness->mixRamp.current);

    for (const auto& smoother : harness->lowSplit.smoothers)
        EXPECT_EQ (0, smoother.remaining);

    EXPECT_EQ (0, harness->bandGroups[1].compressor.driveRamp.remaining);
}

TEST (Reconfigure, KeepsControlsSlotAndProgram)
{
    ProcessorHarness harness (2, 44100.0, 64);
    harness->setCurrentProgram (9);
    harness->activeSlot = 1;
    harness->setCurrentProgram (4);
    harness->reconfigure (96000.0);

    EXPECT_EQ (1, harness->activeSlot);
    EXPECT_EQ (4, harness->getCurrentProgram());
    EXPECT_EQ (3976.0, harness->settingsSlots[0].highXOverHz);
    EXPECT_EQ (0.7, harness->settingsSlots[1].mix);
    EXPECT_TRUE (harness->settingsSlots[1].nuke);
    EXPECT_EQ (10.0, harness->settingsSlots[1].bands[0].gainDb.target);
    EXPECT_FALSE (harness->reconfiguring);
}

TEST (Reconfigure, RestartsPeaksAndFollowersAndKeepsTheRecordsReadings)
{
    ProcessorHarness harness (1, 44100.0, 512, 1,
                              [] (ChannelSettings& settings)
                              {
                                  settings.bands[0].meter = ChannelSettings::meterIn;
                                  settings.bands[1].meter = ChannelSettings::meterOut;
                                  settings.bands[1].thresholdDb.setTarget (-20.0);
                              });
    harness.run (Signals::whiteNoise (1, 4096, 1), { 512 });

    const auto low = harness->activeSettings().lowLevel;
    const auto mid = harness->activeSettings().midLevel;
    const auto reduction = harness->activeSettings().midGainReduction;
    ASSERT_GT (low, 0.1);
    ASSERT_GT (mid, 0.1);
    ASSERT_LT (reduction, 0.99);
    ASSERT_GT (harness->bandGroups[0].inputPeak, 0.0);
    ASSERT_GT (harness->bandGroups[1].outputPeak, 0.0);
    ASSERT_NE (0.00001, harness->bandGroups[0].inputFollowers[0].rms);

    harness->reconfigure (44100.0);

    for (const auto& group : harness->bandGroups)
    {
        EXPECT_EQ (0.0, group.inputPeak);
        EXPECT_EQ (0.0, group.outputPeak);
        EXPECT_EQ (0.00001, group.inputFollowers[0].rms);
        EXPECT_EQ (0.00001, group.outputFollowers[0].rms);
    }

    EXPECT_EQ (low, harness->activeSettings().lowLevel) << "until the next block writes it";
    EXPECT_EQ (mid, harness->activeSettings().midLevel);
    EXPECT_EQ (reduction, harness->activeSettings().midGainReduction);
}

TEST (Reconfigure, RestartsTheTransformerAndTheOversamplers)
{
    ProcessorHarness harness (1, 44100.0, 256, 2,
                              [] (ChannelSettings& settings)
                              {
                                  for (auto& band : settings.bands)
                                      band.in = false;
                              });
    harness.run (Signals::whiteNoise (1, 256, 1), { 256 });
    ASSERT_NE (0.0, harness->transformerStates[0].flux);
    harness->reconfigure (44100.0);

    EXPECT_EQ (0.0, harness->transformerStates[0].flux);
    EXPECT_EQ (0.0, harness->transformerStates[0].envelope);
    EXPECT_EQ (0.0, harness->transformerStates[0].lastOut);

    // The up-sampler's history of full-scale noise would come out within the next 52 samples. What is left of the
    // crossovers' states adds up to nothing in the sum of the bands, and the transformer offers about 1e-12.
    EXPECT_LT (harness.run (Signals::silence (1, 256), { 256 }).getMagnitude (0, 256), 1.0e-6f);
}

TEST (Reconfigure, KeepsTheSoundInADryDelayOfTheSameShape)
{
    ProcessorHarness harness (1, 44100.0, 64, 2, [] (ChannelSettings& settings) { settings.mix = 0.0; });
    const auto input = Signals::whiteNoise (1, 64, 1);
    harness.run (input, { 64 });
    harness->prepareToPlay (44100.0, 64);

    const auto output = harness.run (Signals::silence (1, 64), { 64 });

    for (int i = 0; i < 52; ++i)
        EXPECT_EQ (input.getSample (0, 12 + i), output.getSample (0, i)) << i;
}

TEST (Reconfigure, ANewFactorOfAnotherLatencyMakesTheDryDelayAnew)
{
    ProcessorHarness harness (1, 44100.0, 64, 2, [] (ChannelSettings& settings) { settings.mix = 0.0; });
    harness.run (Signals::whiteNoise (1, 64, 1), { 64 });

    harness->setOversampling (1);
    const auto input = Signals::whiteNoise (1, 64, 2);
    EXPECT_TRUE (sameBits (input, harness.run (input, { 64 })));

    harness->setOversampling (2);
    EXPECT_EQ (0.0f, harness.run (Signals::silence (1, 64), { 64 }).getMagnitude (0, 64));
}

TEST (Reconfigure, PreparingTwiceRebuildsAllTheSame)
{
    ProcessorHarness harness (2, 44100.0, 64, 2);
    harness->activeSettings().inLevelLinear.setTarget (2.0);
    harness->applySettings();
    ASSERT_NE (0, harness->levels[0].in.remaining);
    harness->meterDecay = 0.5;
    harness->prepareToPlay (44100.0, 64);

    EXPECT_EQ (0, harness->levels[0].in.remaining);
    EXPECT_DOUBLE_EQ (std::exp ((1.0 / 88200.0) / -1.2), harness->meterDecay);
}

TEST (Reconfigure, ANewBlockSizeAtTheSameFactorIsTaken)
{
    ProcessorHarness harness (2, 44100.0, 64, 2);

    for (const auto block : { 512, 16, 100 })
    {
        harness->prepareToPlay (44100.0, block);
        EXPECT_EQ (block, harness->maxBlockSize);
        expectSize (2, 2 * block, harness->lowBuffer);
        expectSize (2, 2 * block, harness->workBuffer);
        expectSize (7, block, harness->controlBuffer);

        EXPECT_TRUE (Signals::allFinite (harness.run (Signals::whiteNoise (2, 2 * block, 1), { block })));
    }
}

TEST (Reconfigure, ARebuiltEngineIsAFreshOneAgain)
{
    // Bands out: nothing but the crossovers keeps a charge, and what they keep cancels in the sum of the bands.
    const auto configure = [] (ChannelSettings& settings)
    {
        for (auto& band : settings.bands)
            band.in = false;
    };

    const auto input = Signals::whiteNoise (2, 2000, 5, 0.2f);
    ProcessorHarness used (2, 44100.0, 256, 1, configure), fresh (2, 96000.0, 128, 3, configure);
    used.run (Signals::whiteNoise (2, 3000, 6), { 256 });
    used->setOversampling (3);
    used->setRateAndBufferSizeDetails (96000.0, 128);
    used->prepareToPlay (96000.0, 128);

    // Three subtractions of floats up to 10 round differently with another charge: 1e-6 of the circuit's signal.
    EXPECT_TRUE (equalWithin (fresh.run (input, { 128 }), used.run (input, { 128 }), 1.0e-6f));
}

// ---- a new factor ----------------------------------------------------------------------------

namespace
{
/** Writes down what it is told, and what it finds when it looks. */
class Listener : public juce::AudioProcessorListener
{
public:
    struct Notice
    {
        bool latencyChanged, nonParameterStateChanged;
        int latency, requested;
    };

    explicit Listener (CorvaneQ7AudioProcessor& processorToUse) : processor (processorToUse)
    {
        processor.addListener (this);
    }
    ~Listener() override { processor.removeListener (this); }

    void audioProcessorParameterChanged (juce::AudioProcessor*, int, float) override {}

    void audioProcessorChanged (juce::AudioProcessor*, const ChangeDetails& details) override
    {
        notices.push_back ({ details.latencyChanged, details.nonParameterStateChanged, processor.getLatencySamples(),
                             processor.oversamplingRequested });
    }

    CorvaneQ7AudioProcessor& processor;
    std::vector<Notice> notices;
};

class SetOversampling : public ::testing::Test
{
protected:
    CorvaneQ7AudioProcessor processor;
    Listener listener { processor };
};
} // namespace

TEST_F (SetOversampling, TellsTheListenersOfTheLatencyAndThenOnceMore)
{
    processor.setOversampling (4);

    ASSERT_EQ (2u, listener.notices.size());
    EXPECT_TRUE (listener.notices[0].latencyChanged);
    EXPECT_TRUE (listener.notices[1].latencyChanged) << "so that the host reads the latency again";
    EXPECT_TRUE (listener.notices[1].nonParameterStateChanged) << "the session is another one now";

    for (const auto& notice : listener.notices)
    {
        EXPECT_EQ (52, notice.latency);
        EXPECT_EQ (4, notice.requested) << "stored first: a host may prepare anew within the notice";
    }

    EXPECT_EQ (52, processor.getLatencySamples());
}

TEST_F (SetOversampling, TellsOnceWhenTheLatencyStays)
{
    processor.setOversampling (2);
    listener.notices.clear();
    processor.setOversampling (16);

    ASSERT_EQ (1u, listener.notices.size());
    EXPECT_EQ (16, listener.notices[0].requested);
    EXPECT_EQ (52, listener.notices[0].latency);
}

TEST_F (SetOversampling, GoesBackToNoLatency)
{
    processor.setOversampling (2);
    listener.notices.clear();
    processor.setOversampling (1);

    ASSERT_EQ (2u, listener.notices.size());
    EXPECT_TRUE (listener.notices[0].latencyChanged);
    EXPECT_EQ (0, listener.notices[0].latency);
    EXPECT_EQ (0, processor.getLatencySamples());
}

TEST_F (SetOversampling, TheSameFactorDoesNothing)
{
    processor.setOversampling (1);
    EXPECT_TRUE (listener.notices.empty());

    processor.setOversampling (8);
    listener.notices.clear();
    processor.setOversampling (8);
    EXPECT_TRUE (listener.notices.empty());
}

TEST_F (SetOversampling, WaitsForTheNextPrepareWhenNoAudioRuns)
{
    processor.setOversampling (4);
    EXPECT_EQ (1, processor.oversamplingCurrent);

    processor.setRateAndBufferSizeDetails (44100.0, 64);
    processor.prepareToPlay (44100.0, 64);
    EXPECT_EQ (4, processor.oversamplingCurrent);
}

TEST (SetOversamplingWhilePlaying, RebuildsWithinTheNextBlock)
{
    constexpr int n = 128;
    ProcessorHarness harness (2, 44100.0, n, 1);
    harness.run (Signals::whiteNoise (2, 4 * n, 1), { n });

    harness->setOversampling (4);
    EXPECT_EQ (1, harness->oversamplingCurrent) << "nothing is built outside the block";
    expectSize (2, n, harness->lowBuffer);

    // Ramps and meters restart from their targets in that block.
    harness->activeSettings().mix = 0.0;
    harness->applySettings();
    ASSERT_NE (0, harness->mixRamp.remaining);

    const auto input = Signals::whiteNoise (2, n, 2);
    const auto output = harness.run (input, { n });

    EXPECT_EQ (4, harness->oversamplingCurrent);
    EXPECT_EQ (0, harness->mixRamp.remaining);
    expectSize (2, 4 * n, harness->lowBuffer);
    EXPECT_FALSE (harness->reconfiguring);

    for (int i = 0; i < n; ++i)
        ASSERT_EQ (i < 52 ? 0.0f : input.getSample (0, i - 52), output.getSample (0, i))
            << "this very block is built so";
}

TEST (SetOversamplingWhilePlaying, SoundsAsIfItHadBeenSoFromTheStart)
{
    const auto configure = [] (ChannelSettings& settings)
    {
        for (auto& band : settings.bands)
            band.in = false;
    };

    for (const auto factor : { 2, 3, 5, 7, 16 })
    {
        ProcessorHarness changed (1, 44100.0, 128, 1, configure), built (1, 44100.0, 128, factor, configure);
        changed->setOversampling (factor); // no sound has passed yet: no charge anywhere

        const auto input = Signals::whiteNoise (1, 1000, 3, 0.3f);
        EXPECT_TRUE (sameBits (built.run (input, { 128 }), changed.run (input, { 128 }))) << factor;
        EXPECT_EQ (factor, changed->oversamplers[0].factor);
        EXPECT_EQ ((52 * factor) | 1, changed->oversamplers[0].tapCount);
    }
}

TEST (SetOversamplingWhilePlaying, ANumberAboveSixteenBuildsSixteenOnce)
{
    constexpr int n = 32;
    ProcessorHarness harness (1, 44100.0, n, 1), sixteen (1, 44100.0, n, 16);
    harness->setOversampling (99);
    EXPECT_EQ (52, harness->getLatencySamples());

    const auto input = Signals::whiteNoise (1, 4 * n, 1, 0.3f);
    EXPECT_TRUE (sameBits (sixteen.run (input, { n }), harness.run (input, { n })));
    EXPECT_EQ (99, harness->oversamplingCurrent) << "as asked: the next block must not find a difference";
    EXPECT_EQ (16, harness->oversamplers[0].factor);
    expectSize (1, 16 * n, harness->lowBuffer);
    EXPECT_DOUBLE_EQ (std::exp ((1.0 / (16 * 44100.0)) / -1.2), harness->meterDecay);

    harness->meterDecay = 0.25; // a rebuild would put it right
    harness.run (input, { n });
    EXPECT_EQ (0.25, harness->meterDecay);
}

TEST (SetOversamplingWhilePlaying, ANumberBelowOneBuildsOneOnce)
{
    for (const auto factor : { 0, -5, -2147483647 - 1 })
    {
        constexpr int n = 32;
        ProcessorHarness harness (1, 44100.0, n, 2), plain (1, 44100.0, n, 1);
        harness->setOversampling (factor);
        EXPECT_EQ (0, harness->getLatencySamples());

        const auto input = Signals::whiteNoise (1, 4 * n, 1, 0.3f);
        EXPECT_TRUE (sameBits (plain.run (input, { n }), harness.run (input, { n })));
        EXPECT_EQ (factor, harness->oversamplingCurrent);
        expectSize (1, n, harness->lowBuffer);

        harness->meterDecay = 0.25;
        harness.run (input, { n });
        EXPECT_EQ (0.25, harness->meterDecay);
    }
}

// ---- slots -----------------------------------------------------------------------------------

TEST (Slots, EachKeepsItsMeterOutputsUntilItsNextBlock)
{
    ProcessorHarness harness (1, 44100.0, 256);
    auto& a = harness->settingsSlots[0];
    auto& b = harness->settingsSlots[1];

    for (auto* slot : { &a, &b })
        slot->bands[0].meter = ChannelSettings::meterIn;

    harness.run (Signals::whiteNoise (1, 256, 1), { 256 });
    const auto readingOfA = a.lowLevel;
    ASSERT_GT (readingOfA, 0.0);
    EXPECT_EQ (0.0, b.lowLevel) << "the active slot alone is written";

    harness->activeSlot = 1;
    harness->applySettings();
    EXPECT_EQ (0.0, b.lowLevel);

    harness.run (Signals::whiteNoise (1, 256, 2), { 256 });
    EXPECT_GT (b.lowLevel, 0.0);
    EXPECT_EQ (readingOfA, a.lowLevel);
}

TEST (Slots, ACopyLeavesTheOthersCalibration)
{
    CorvaneQ7AudioProcessor processor;
    processor.setCalibration (16.0);
    processor.settingsSlots[0].mix = 0.4;
    processor.settingsSlots[1] = processor.settingsSlots[0];

    EXPECT_EQ (0.4, processor.settingsSlots[1].mix);
    EXPECT_EQ (14.5075, processor.settingsSlots[1].calibrationGain);
}

// ---- the road into the engine ----------------------------------------------------------------

TEST (ApplySettings, PushesMixBandsAndCrossovers)
{
    ProcessorHarness harness (1, 44100.0, 64);
    auto& settings = harness->activeSettings();
    settings.mix = 0.6;
    settings.lowXOverHz = 333.0;
    settings.highXOverHz = 3333.0;
    settings.hpfHz = 77.0;
    settings.niveau = false;
    settings.bands[1].attack = 0;
    settings.bands[2].in = false;
    harness->applySettings();

    EXPECT_EQ (0.6, harness->mixRamp.target);
    EXPECT_EQ (4410, harness->mixRamp.remaining);
    EXPECT_EQ (333.0, harness->lowSplit.frequency);
    EXPECT_EQ (3333.0, harness->highSplit.frequency);
    EXPECT_EQ (4410, harness->lowSplit.smoothers[0].remaining);
    EXPECT_EQ (10.0, harness->bandGroups[1].compressor.attackOhms);
    EXPECT_EQ (270.0, harness->bandGroups[0].compressor.attackOhms);
    EXPECT_EQ (0.0, harness->bandGroups[2].compressor.wetRamp.target);

    for (const auto& group : harness->bandGroups)
    {
        EXPECT_EQ (77.0, group.compressor.hpfHz);
        EXPECT_FALSE (group.compressor.niveau);
    }
}

TEST (ApplySettings, TheSameSettingsAgainMoveNothing)
{
    ProcessorHarness harness (1, 44100.0, 64);
    harness->activeSettings().mix = 0.6;
    harness->activeSettings().lowXOverHz = 333.0;
    harness->applySettings();
    harness.run (Signals::whiteNoise (1, 640, 1), { 64 });
    ASSERT_EQ (4410 - 640, harness->mixRamp.remaining);

    harness->applySettings();
    EXPECT_EQ (4410 - 640, harness->mixRamp.remaining) << "a running ramp is not started over";
    EXPECT_EQ (4410 - 640, harness->lowSplit.smoothers[0].remaining);
}

TEST (ApplySettings, ReadsTheActiveSlot)
{
    CorvaneQ7AudioProcessor processor;
    processor.settingsSlots[1].mix = 0.2;
    processor.applySettings();
    EXPECT_EQ (1.0, followed (processor).mixRamp.target);

    processor.activeSlot = 1;
    processor.applySettings();
    EXPECT_EQ (0.2, followed (processor).mixRamp.target);
}

// ---- an untouched instance -------------------------------------------------------------------

TEST (UntouchedInstance, FadesAndGlidesForTheFirstHundredMilliseconds)
{
    // At construction the mix stands at 0 and the crossovers at 1000 Hz: no control has reached the engine yet.
    CorvaneQ7AudioProcessor processor;
    processor.setNoiseSource (NoiseSource::held());
    processor.setRateAndBufferSizeDetails (44100.0, 441);
    processor.prepareToPlay (44100.0, 441);

    EXPECT_EQ (0.0, followed (processor).mixRamp.current);
    EXPECT_EQ (1.0, followed (processor).mixRamp.target);
    EXPECT_EQ (4410, followed (processor).mixRamp.remaining);

    for (const auto* filter : { &followed (processor).lowSplit, &followed (processor).highSplit })
        EXPECT_EQ (4410, filter->smoothers[2].remaining) << "the pole moves with the corner in both";

    for (const auto& group : followed (processor).bandGroups)
        EXPECT_EQ (4410, group.compressor.driveRamp.remaining);

    // A wet share of next to nothing: the first block is the input, hardly touched.
    auto buffer = Signals::whiteNoise (2, 441, 1);
    const auto input = buffer;
    juce::MidiBuffer midi;
    processor.processBlock (buffer, midi);
    EXPECT_NEAR (input.getSample (0, 0), buffer.getSample (0, 0), 1.0e-3);

    for (int block = 1; block < 10; ++block)
        processor.processBlock (buffer, midi);

    EXPECT_EQ (0, followed (processor).mixRamp.remaining);
    EXPECT_EQ (0, followed (processor).lowSplit.smoothers[2].remaining);
    EXPECT_EQ (0, followed (processor).bandGroups[0].compressor.driveRamp.remaining);
}

TEST (UntouchedInstance, OneProgramBeforeThePrepareLandsEverything)
{
    CorvaneQ7AudioProcessor processor;
    processor.setCurrentProgram (0);
    processor.setRateAndBufferSizeDetails (44100.0, 441);
    processor.prepareToPlay (44100.0, 441);

    EXPECT_EQ (1.0, followed (processor).mixRamp.current);
    EXPECT_EQ (0, followed (processor).mixRamp.remaining);

    for (const auto* filter : { &followed (processor).lowSplit, &followed (processor).highSplit })
        for (const auto& smoother : filter->smoothers)
            EXPECT_EQ (0, smoother.remaining);

    for (const auto& group : followed (processor).bandGroups)
        EXPECT_EQ (0, group.compressor.driveRamp.remaining);
}

TEST (UntouchedInstance, ReleasingGivesTheBandsBackUnlessTheWrapperIsVst3)
{
    {
        ProcessorHarness harness (2, 44100.0, 64);
        harness->releaseResources();

        for (const auto& group : harness->bandGroups)
            EXPECT_FALSE (group.compressor.isReady());
    }

    juce::AudioProcessor::setTypeOfNextNewPlugin (juce::AudioProcessor::wrapperType_VST3);
    ProcessorHarness harness (2, 44100.0, 64);
    juce::AudioProcessor::setTypeOfNextNewPlugin (juce::AudioProcessor::wrapperType_Undefined);
    harness->releaseResources();

    for (const auto& group : harness->bandGroups)
        EXPECT_TRUE (group.compressor.isReady()) << "such hosts call it while they may still ask for a block";
}
