// SPDX-License-Identifier: GPL-3.0-or-later
// Parameters, programs and sessions of the bundles, as hosts drive, save and reload them.
#include "support/BundleHost.h"
#include "support/Matchers.h"
#include "support/ProcessorHarness.h"
#include "support/Signals.h"

#include "parameters/ParameterTable.h"

#include <juce_audio_formats/juce_audio_formats.h>

#include <atomic>
#include <filesystem>
#include <thread>

namespace juce
{
bool dispatchNextMessageOnSystemQueue (bool returnIfNoPendingMessages); // of the framework on Linux, in no header
}

namespace
{
using namespace BundleHost;

/** Values as a user might leave them, by the names that a host shows. */
void changeSettings (juce::AudioProcessor& processor)
{
    for (const auto& [name, value] :
         std::initializer_list<std::pair<const char*, float>> { { "Low Gain", 10.0f / 21.0f },
                                                                { "Mid Threshold", 0.2f },
                                                                { "High Ratio", 0.25f },
                                                                { "Low Attack", 0.0f },
                                                                { "Mid Recovery", 0.5f },
                                                                { "Mix", 0.75f },
                                                                { "HPF", 0.5f },
                                                                { "Low XOverParameter", 0.4f },
                                                                { "Nuke", 1.0f },
                                                                { "In Level", 0.6f },
                                                                { "Out Level", 0.45f } })
    {
        auto* parameter = parameterNamed (processor, name);
        ASSERT_NE (parameter, nullptr) << name;
        parameter->setValueNotifyingHost (value);
    }
}

/** Hosts restore from wherever they load; the framework's VST3 host class waits for its message thread meanwhile. */
void restoreOnAnotherThread (juce::AudioProcessor& processor, const juce::MemoryBlock& session)
{
    std::atomic<bool> restored { false };
    std::thread loader (
        [&]
        {
            processor.setStateInformation (session.getData(), static_cast<int> (session.getSize()));
            restored = true;
        });

    while (! restored)
        juce::dispatchNextMessageOnSystemQueue (true);

    loader.join();
}

class SessionIn : public ::testing::TestWithParam<Format>
{
protected:
    void SetUp() override { ASSERT_NE (instance, nullptr); }

    std::unique_ptr<juce::AudioPluginInstance> another() { return instantiate (*format); }

    const juce::AudioBuffer<float> input = Signals::whiteNoise (2, 24000, 0x5e55, 0.4f);
    std::unique_ptr<juce::AudioPluginFormat> format = makeFormat (GetParam());
    std::unique_ptr<juce::AudioPluginInstance> instance = instantiate (*format);
};
} // namespace

TEST_P (SessionIn, AHostSeesEveryControlByNameAndDefault)
{
    CorvaneQ7AudioProcessor plain;

    for (auto* own : plain.getParameters())
    {
        auto* hosted = parameterNamed (*instance, own->getName (128));
        ASSERT_NE (hosted, nullptr) << own->getName (128);
        EXPECT_TRUE (hosted->isAutomatable()) << own->getName (128);
        EXPECT_TRUE (hosted->getLabel().isEmpty()) << own->getName (128);

        // LV2 carries defaults as text of six digits and more.
        EXPECT_NEAR (hosted->getDefaultValue(), own->getDefaultValue(), 1.0e-6) << own->getName (128);
    }
}

TEST_P (SessionIn, AutomationReachesTheEngineInTheBlockThatItPrecedes)
{
    instance->prepareToPlay (rate, blockLength);

    CorvaneQ7AudioProcessor engine;
    engine.setRateAndBufferSizeDetails (rate, blockLength);
    engine.prepareToPlay (rate, blockLength);

    const auto automate = [] (juce::AudioProcessor& processor, int block)
    {
        // A control that ramps, one that switches, one that glides.
        parameterNamed (processor, "Mid Gain")->setValueNotifyingHost (static_cast<float> (block % 22) / 21.0f);
        parameterNamed (processor, "Low Ratio")->setValueNotifyingHost (static_cast<float> (block % 5) * 0.25f);
        parameterNamed (processor, "Low XOverParameter")
            ->setValueNotifyingHost (0.2f + 0.01f * static_cast<float> (block));
    };

    const auto hosted = run (*instance, input, [&] (int block) { automate (*instance, block); });
    const auto own = run (engine, input, [&] (int block) { automate (engine, block); });

    // VST3 carries the values as they are; an LV2 host maps them to its range and back, which moves a last bit.
    if (GetParam() == Format::vst3)
        EXPECT_TRUE (sameBits (hosted, own));
    else
        EXPECT_TRUE (equalWithin (hosted, own, 1.0e-5f));
}

TEST_P (SessionIn, AReloadedInstanceGivesTheSavedOnesSamples)
{
    changeSettings (*instance);
    instance->prepareToPlay (rate, blockLength);
    run (*instance, Signals::whiteNoise (2, 9600, 1, 0.4f)); // a host's changes arrive with blocks

    juce::MemoryBlock session;
    instance->getStateInformation (session);
    ASSERT_GT (session.getSize(), 0u);

    // Crossovers and other frequencies come back to the last bit only from a reload, so both sides are reloads.
    const auto first = another();
    const auto second = another();

    for (auto* reloaded : { first.get(), second.get() })
    {
        reloaded->setStateInformation (session.getData(), static_cast<int> (session.getSize()));
        reloaded->prepareToPlay (rate, blockLength);
    }

    const auto output = run (*first, input);
    EXPECT_TRUE (sameBits (output, run (*second, input)));

    // And what they hold is what was saved: they save the same again.
    juce::MemoryBlock again;
    first->getStateInformation (again);
    EXPECT_EQ (again, session);

    // It is no fresh instance's state either.
    juce::MemoryBlock fresh;
    another()->getStateInformation (fresh);
    EXPECT_NE (fresh, session);
}

TEST_P (SessionIn, AStateFromAnotherThreadIsTaken)
{
    juce::MemoryBlock session;
    changeSettings (*instance);
    instance->prepareToPlay (rate, blockLength);
    run (*instance, Signals::silence (2, 2048));
    instance->getStateInformation (session);

    const auto other = another();
    other->prepareToPlay (rate, blockLength);
    restoreOnAnotherThread (*other, session);

    const auto output = run (*other, input);
    EXPECT_TRUE (Signals::allFinite (output));
    EXPECT_GT (output.getMagnitude (0, output.getNumSamples()), 0.01f);

    juce::MemoryBlock again;
    other->getStateInformation (again);
    EXPECT_EQ (again, session);
}

TEST_P (SessionIn, AnOversampledSessionFromAnotherThreadTellsTheHostItsLatency)
{
    // The factor is no parameter: a user's default brings it into the first instance, its session into the second.
    const auto settings = juce::File (std::getenv ("HOME")).getChildFile ("Corvane Plugins/Corvane Q7.settings");
    settings.create();
    settings.replaceWithText ("<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n\n<PROPERTIES>\n"
                              "  <VALUE name=\"Oversampling\" val=\"4\"/>\n</PROPERTIES>\n");
    const auto oversampled = another();
    settings.deleteFile();

    oversampled->prepareToPlay (rate, blockLength);
    run (*oversampled, Signals::silence (2, blockLength));
    EXPECT_EQ (oversampled->getLatencySamples(), CorvaneQ7AudioProcessor::oversamplingLatency);
    juce::MemoryBlock session;
    oversampled->getStateInformation (session);

    instance->prepareToPlay (rate, blockLength);
    run (*instance, Signals::silence (2, blockLength));
    ASSERT_EQ (instance->getLatencySamples(), 0);
    restoreOnAnotherThread (*instance, session);

    // The notice is posted to the host's message thread; LV2 shows it with the next block.
    const auto deadline = juce::Time::getMillisecondCounter() + 5000;

    while (instance->getLatencySamples() == 0 && juce::Time::getMillisecondCounter() < deadline)
    {
        run (*instance, Signals::silence (2, blockLength));
        juce::dispatchNextMessageOnSystemQueue (true);
    }

    EXPECT_EQ (instance->getLatencySamples(), CorvaneQ7AudioProcessor::oversamplingLatency);
}

TEST_P (SessionIn, GarbageInASessionChangesNothing)
{
    instance->prepareToPlay (rate, blockLength);
    run (*instance, Signals::silence (2, 2048));
    juce::MemoryBlock before, after;
    instance->getStateInformation (before);

    for (const auto* garbage : { "", "x", "not a session of ours at all", "!CV2\x05" })
        instance->setStateInformation (garbage, static_cast<int> (std::strlen (garbage)));

    instance->getStateInformation (after);
    EXPECT_EQ (before, after);
}

INSTANTIATE_TEST_SUITE_P (, SessionIn, ::testing::Values (Format::vst3, Format::lv2),
                          [] (const auto& param) { return param.param == Format::vst3 ? "Vst3" : "Lv2"; });

// ---- VST3 ------------------------------------------------------------------------------------

TEST (Vst3Parameters, KeepTheTablesIndicesAsIds)
{
    const auto format = makeFormat (Format::vst3);
    const auto instance = instantiate (*format);
    ASSERT_NE (instance, nullptr);

    // Sessions of hosts refer to these numbers: ours are counted from 0 in the table's order, the wrapper adds two.
    const auto& parameters = instance->getParameters();
    ASSERT_EQ (parameters.size(), ParameterTable::numParameters + 2);

    const auto idOf = [&] (int i)
    { return dynamic_cast<juce::HostedAudioProcessorParameter*> (parameters[i])->getParameterID(); };

    for (int i = 0; i < ParameterTable::numParameters; ++i)
    {
        EXPECT_EQ (idOf (i), juce::String (i));
        EXPECT_EQ (parameters[i]->getName (128), ParameterTable::rows[i].name);
    }

    EXPECT_EQ (parameters[ParameterTable::numParameters]->getName (128), "Bypass");
    EXPECT_EQ (parameters[ParameterTable::numParameters + 1]->getName (128), "Program");
}

TEST (Vst3Parameters, ShowTheTextsOfTheControls)
{
    const auto format = makeFormat (Format::vst3);
    const auto instance = instantiate (*format);
    ASSERT_NE (instance, nullptr);
    CorvaneQ7AudioProcessor plain;

    for (int i = 0; i < ParameterTable::numParameters; ++i)
        for (const auto x : { 0.0f, 0.25f, 0.5f, 0.75f, 1.0f })
            EXPECT_EQ (instance->getParameters()[i]->getText (x, 128), plain.getParameters()[i]->getText (x, 128))
                << ParameterTable::rows[i].identifier << " at " << x;
}

// ---- LV2 -------------------------------------------------------------------------------------

TEST (Lv2Parameters, AreAllThereWithTheirIdentifiers)
{
    const auto format = makeFormat (Format::lv2);
    const auto instance = instantiate (*format);
    ASSERT_NE (instance, nullptr);
    int found = 0;

    for (auto* parameter : instance->getParameters())
    {
        const auto id = dynamic_cast<juce::HostedAudioProcessorParameter*> (parameter)->getParameterID();

        for (const auto& row : ParameterTable::rows)
            if (id.endsWith (juce::String (":") + row.identifier))
                ++found;
    }

    EXPECT_EQ (found, ParameterTable::numParameters);
}

// ---- the renderer ----------------------------------------------------------------------------

// An LV2 wrapper prepares before it restores, so its settings glide where the renderer's stand settled: the LV2 bundle is
// held against the engine alone.
TEST (Vst3Bundle, GivesTheRenderersSamples)
{
    const auto format = makeFormat (Format::vst3);
    const auto instance = instantiate (*format);
    ASSERT_NE (instance, nullptr);
    const auto input = Signals::whiteNoise (2, 24000, 0x5e55, 0.4f);

    const auto folder = std::filesystem::temp_directory_path() / ("corvane-batch-" + std::to_string (::getpid()));
    std::filesystem::create_directories (folder);
    const auto in = juce::File ((folder / "in.wav").string());
    const auto out = juce::File ((folder / "out.wav").string());

    juce::WavAudioFormat wav;
    {
        std::unique_ptr<juce::AudioFormatWriter> writer (
            wav.createWriterFor (new juce::FileOutputStream (in), rate, 2, 32, {}, 0));
        ASSERT_NE (writer, nullptr);
        writer->writeFromAudioSampleBuffer (input, 0, input.getNumSamples());
    }

    // The session of an engine with other settings than the program's, for both.
    CorvaneQ7AudioProcessor engine;
    changeSettings (engine);
    juce::MemoryBlock session;
    engine.getStateInformation (session);
    const auto state = juce::File ((folder / "state.bin").string());
    ASSERT_TRUE (state.replaceWithData (session.getData(), session.getSize()));

    // The same block length and the same seed of the noise: bit for bit.
    const auto command = juce::String (CORVANE_RENDER) + " --quiet --force --state " + state.getFullPathName()
                         + " --block " + juce::String (blockLength) + " --seed " + juce::String (noiseSeed) + " "
                         + in.getFullPathName() + " " + out.getFullPathName();
    ASSERT_EQ (std::system (command.toRawUTF8()), 0);

    std::unique_ptr<juce::AudioFormatReader> reader (wav.createReaderFor (new juce::FileInputStream (out), true));
    ASSERT_NE (reader, nullptr);
    juce::AudioBuffer<float> rendered (2, static_cast<int> (reader->lengthInSamples));
    reader->read (&rendered, 0, rendered.getNumSamples(), 0, true, true);
    std::filesystem::remove_all (folder);

    // A bundle gets the same settings by its own road: a host's changes, then a session of its own, before it starts.
    changeSettings (*instance);
    instance->prepareToPlay (rate, blockLength);
    run (*instance, Signals::silence (2, blockLength));
    juce::MemoryBlock hosted;
    instance->getStateInformation (hosted);
    const auto fresh = instantiate (*format);
    fresh->setStateInformation (hosted.getData(), static_cast<int> (hosted.getSize()));
    fresh->prepareToPlay (rate, blockLength);
    EXPECT_TRUE (sameBits (run (*fresh, input), rendered));
}
