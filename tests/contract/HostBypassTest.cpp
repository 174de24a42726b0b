// SPDX-License-Identifier: GPL-3.0-or-later
// The host's own bypass in the built bundles: as late as the host was told, and without gain reduction.
#include "support/Lv2Module.h"
#include "support/Vst3Module.h"

#include "processor/CorvaneQ7AudioProcessor.h"

#include <juce_audio_processors/format_types/pslextensions/ipslgainreduction.h>

#include <gtest/gtest.h>

namespace
{
constexpr int impulseAt = 100;
constexpr float impulse = 0.7f;
constexpr int lateness = CorvaneQ7AudioProcessor::oversamplingLatency;

/** A session of another oversampling factor than a new instance's. */
juce::MemoryBlock oversampledSession()
{
    CorvaneQ7AudioProcessor engine;
    engine.setOversampling (4);
    juce::MemoryBlock session;
    engine.getStateInformation (session);
    return session;
}

template <typename Player>
void fillWithImpulse (Player& player)
{
    for (auto& channel : player.in)
    {
        channel.fill (0.0f);
        channel[impulseAt] = impulse;
    }
}

template <typename Player>
void fillWithLoudSound (Player& player)
{
    for (auto& channel : player.in)
        for (std::size_t i = 0; i < channel.size(); ++i)
            channel[i] = (i & 32) != 0 ? 0.9f : -0.9f;
}

/** The frame of the impulse in what came out, with nothing beside it; -1 otherwise. */
template <typename Player>
int impulseIn (const Player& player)
{
    int found = -1;

    for (const auto& channel : player.out)
        for (int i = 0; i < static_cast<int> (channel.size()); ++i)
        {
            const auto sample = channel[static_cast<std::size_t> (i)];

            if (sample == 0.0f)
                continue;

            if (sample != impulse || (found >= 0 && found != i))
                return -1;

            found = i;
        }

    return found;
}

/** Sets the parameter that the wrapper has for the host's bypass. */
void bypass (Vst3Instance& instance, bool isOn)
{
    using namespace Steinberg;

    for (int32 i = 0; i < instance.controller->getParameterCount(); ++i)
    {
        Vst::ParameterInfo info;
        ASSERT_EQ (instance.controller->getParameterInfo (i, info), kResultOk);

        if ((info.flags & Vst::ParameterInfo::kIsBypass) != 0)
        {
            ASSERT_EQ (instance.controller->setParamNormalized (info.id, isOn ? 1.0 : 0.0), kResultOk);
            return;
        }
    }

    FAIL() << "no bypass of the host's";
}
} // namespace

TEST (HostBypass, InLv2IsAsLateAsTheHostIsTold)
{
    Lv2Module module (CORVANE_LV2_MODULE);
    Lv2Instance instance (module);
    fillWithImpulse (instance);
    instance.enabled = 0.0f;
    instance.run();
    EXPECT_EQ (instance.latency, 0.0f);
    EXPECT_EQ (impulseIn (instance), impulseAt);

    // Nothing prepares an LV2 instance again: the first bypassed block behind a restore is the first that can know.
    ASSERT_EQ (instance.restore (oversampledSession().toBase64Encoding().toStdString()), LV2_STATE_SUCCESS);
    instance.run();
    EXPECT_EQ (instance.latency, static_cast<float> (lateness));
    EXPECT_EQ (impulseIn (instance), impulseAt + lateness);
}

TEST (HostBypass, InVst3IsAsLateAsTheHostIsTold)
{
    Vst3Module module (CORVANE_VST3_MODULE);
    Vst3Instance instance (module);
    Vst3Player player (instance);
    fillWithImpulse (player);
    bypass (instance, true);
    player.run();
    EXPECT_EQ (player.latency(), 0);
    EXPECT_EQ (impulseIn (player), impulseAt);

    // Before the host prepares again, which it may do at leisure.
    const auto session = oversampledSession();
    ASSERT_EQ (instance.restore (session.getData(), session.getSize()), Steinberg::kResultOk);
    player.run();
    EXPECT_EQ (player.latency(), lateness);
    EXPECT_EQ (impulseIn (player), impulseAt + lateness);
}

TEST (HostBypass, InVst3ShowsNoGainReduction)
{
    Vst3Module module (CORVANE_VST3_MODULE);
    Vst3Instance instance (module);
    Vst3Player player (instance);
    const auto report =
        Vst3Instance::query<Presonus::IGainReductionInfo> (*instance.controller, Presonus::IGainReductionInfo_iid);
    ASSERT_NE (report.get(), nullptr);
    fillWithLoudSound (player);

    for (int i = 0; i < 100; ++i)
        player.run();

    EXPECT_LT (report->getGainReductionValueInDb(), -3.0);

    bypass (instance, true);
    player.run();
    EXPECT_EQ (report->getGainReductionValueInDb(), 0.0);

    for (int i = 0; i < 60; ++i) // 0.6 s
        player.run();

    EXPECT_EQ (report->getGainReductionValueInDb(), 0.0);

    bypass (instance, false);

    for (int i = 0; i < 100; ++i)
        player.run();

    EXPECT_LT (report->getGainReductionValueInDb(), -3.0);
}
