// SPDX-License-Identifier: GPL-3.0-or-later
// Input that is no sound at all: it may sound as bad as it likes, but it must not fault, and a restart heals it.
#include "processor/CorvaneQ7AudioProcessor.h"
#include "support/Matchers.h"
#include "support/ProcessorHarness.h"
#include "support/Signals.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <ostream>
#include <string>
#include <tuple>

namespace
{
constexpr double rate = 44100.0;
constexpr int n = 256;

struct Poison
{
    const char* name;
    float value;
};

void PrintTo (const Poison& poison, std::ostream* stream) { *stream << poison.name; }

// clang-format off
const Poison poisons[] = {
    { "NotANumber", std::numeric_limits<float>::quiet_NaN() },
    { "SignallingNotANumber", std::numeric_limits<float>::signaling_NaN() },
    { "Infinity", std::numeric_limits<float>::infinity() },
    { "MinusInfinity", -std::numeric_limits<float>::infinity() },
    { "Largest", std::numeric_limits<float>::max() },
    { "MinusLargest", std::numeric_limits<float>::lowest() },
    { "Huge", 1.0e30f },
    { "MinusHuge", -1.0e30f },
    { "Million", 1.0e6f },
    { "Denormal", 1.0e-41f },
    { "SmallestDenormal", std::numeric_limits<float>::denorm_min() }
};
// clang-format on

void everythingIn (ChannelSettings& settings)
{
    settings.hpfHz = 100.0;
    settings.bands[0].meter = ChannelSettings::meterIn;
    settings.bands[1].meter = ChannelSettings::meterOut;
    settings.bands[1].gainDb.setTarget (-1.0);
    settings.bands[2].midSide = 1.0;

    for (auto& band : settings.bands)
        band.thresholdDb.setTarget (-20.0);
}

class NonFiniteInput : public ::testing::TestWithParam<std::tuple<Poison, int>>
{
protected:
    const Poison poison = std::get<0> (GetParam());
    const int factor = std::get<1> (GetParam());

    /** One bad sample among good ones, then a block of nothing else, then good ones again. */
    void feed (ProcessorHarness& harness) const
    {
        auto once = Signals::whiteNoise (2, n, 1, 0.3f);
        once.setSample (0, 40, poison.value);
        harness.block (once);

        auto always = Signals::silence (2, n);

        for (int c = 0; c < 2; ++c)
            juce::FloatVectorOperations::fill (always.getWritePointer (c), poison.value, n);

        harness.block (always);
        harness.run (Signals::whiteNoise (2, 4 * n, 2, 0.3f), { n });
    }
};
} // namespace

TEST_P (NonFiniteInput, DoesNotFaultInAnyMode)
{
    for (const auto mix : { 1.0, 0.5, 0.0 })
        for (const auto nuke : { false, true })
        {
            ProcessorHarness harness (2, rate, n, factor,
                                      [=] (ChannelSettings& settings)
                                      {
                                          everythingIn (settings);
                                          settings.mix = mix;
                                          settings.nuke = nuke;
                                      });
            feed (harness);

            auto bypassed = Signals::whiteNoise (2, n, 3);
            harness->processBlockBypassed (bypassed, harness.midi);
            EXPECT_FALSE (harness->reconfiguring);
        }
}

TEST_P (NonFiniteInput, IsHealedByTheNextPrepare)
{
    ProcessorHarness harness (2, rate, n, factor, everythingIn);
    feed (harness);
    harness->prepareToPlay (rate, n);

    const auto output = harness.run (Signals::whiteNoise (2, 8 * n, 4, 0.3f), { n });
    EXPECT_TRUE (Signals::allFinite (output));
    EXPECT_GT (output.getMagnitude (7 * n, n), 0.01f) << "and there is sound again";
    EXPECT_LT (output.getMagnitude (7 * n, n), 4.0f);

    for (int b = 0; b < 3; ++b)
    {
        EXPECT_TRUE (std::isfinite (harness->activeSettings().level (b))) << "level " << b;
        EXPECT_TRUE (std::isfinite (harness->activeSettings().gainReduction (b))) << "gain reduction " << b;
    }
}

TEST_P (NonFiniteInput, IsHealedByAChangeOfTheFactor)
{
    ProcessorHarness harness (2, rate, n, factor, everythingIn);
    feed (harness);
    harness->setOversampling (factor == 1 ? 2 : 1);

    const auto output = harness.run (Signals::whiteNoise (2, 8 * n, 4, 0.3f), { n });
    EXPECT_TRUE (Signals::allFinite (output));
    EXPECT_GT (output.getMagnitude (7 * n, n), 0.01f);
}

INSTANTIATE_TEST_SUITE_P (All, NonFiniteInput,
                          ::testing::Combine (::testing::ValuesIn (poisons), ::testing::Values (1, 2)),
                          [] (const auto& setting) {
                              return std::string (std::get<0> (setting.param).name) + "Factor"
                                     + std::to_string (std::get<1> (setting.param));
                          });

TEST_P (NonFiniteInput, LeavesTheDryDelayWithinItsLength)
{
    // The delay keeps its sound over a restart of the same shape: what it holds is gone after one latency.
    ProcessorHarness harness (2, rate, n, factor,
                              [] (ChannelSettings& settings)
                              {
                                  everythingIn (settings);
                                  settings.mix = 0.5;
                              });
    auto bad = Signals::silence (2, n);
    bad.setSample (0, n - 1, poison.value);
    bad.setSample (1, n - 1, poison.value);
    harness.block (bad);
    harness->prepareToPlay (rate, n);

    const auto output = harness.run (Signals::whiteNoise (2, n, 4, 0.3f), { n });

    for (int c = 0; c < 2; ++c)
        for (int i = harness->getLatencySamples(); i < n; ++i)
            ASSERT_TRUE (std::isfinite (output.getSample (c, i))) << c << ", " << i;
}

TEST (NonFiniteInputOfControls, AnEngineBuiltAtAnExtremeLevelIsSafe)
{
    ProcessorHarness harness (2, rate, n, 2,
                              [] (ChannelSettings& settings)
                              {
                                  everythingIn (settings);
                                  settings.nuke = true;
                                  settings.calibrationGain = 18.26;
                                  ChannelSettings::setDecibels (settings.inLevelDb, settings.inLevelLinear, 20.0);
                              });

    const auto output = harness.run (Signals::whiteNoise (2, 8 * n, 4, 1000.0f), { n });
    EXPECT_TRUE (Signals::allFinite (output));

    // Clipped to 24 in front of the filters; a filter of taps of both signs may swing over by less than two times.
    EXPECT_LT (output.getMagnitude (0, 8 * n), 2.0f * 24.0f / 18.26f);
}
