// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "editor/CorvaneQ7Editor.h"
#include "support/Signals.h"

#include <atomic>
#include <chrono>
#include <memory>
#include <random>
#include <thread>
#include <vector>

/** A host whose sound runs: one thread calls processBlock with blocks of 64 to 512 frames at 48 kHz, one automates the
    parameters, one changes programs, factor and session. The message thread opens and closes the window.

    Going, it deletes the window first, then stops the sound, then deletes the processor with no message in between.
*/
class RunningHost : private juce::AudioProcessorListener
{
public:
    static constexpr double rate = 48000.0;
    static constexpr int longestBlock = 512, shortestBlock = 64;

    enum class Automation
    {
        none,
        all
    };

    RunningHost (int channels, std::uint32_t seed, Automation automation = Automation::all)
        : processor (std::make_unique<CorvaneQ7AudioProcessor>())
    {
        const auto set = channels == 1 ? juce::AudioChannelSet::mono() : juce::AudioChannelSet::stereo();
        processor->setBusesLayout ({ { set }, { set } });
        processor->setRateAndBufferSizeDetails (rate, longestBlock);
        processor->prepareToPlay (rate, longestBlock);
        processor->addListener (this);

        threads.emplace_back ([this, seed] { play (seed); });

        if (automation == Automation::none)
            return;

        threads.emplace_back ([this, seed] { automate (seed + 1); });
        threads.emplace_back ([this, seed] { changeAtLarge (seed + 2); });
    }

    ~RunningHost() override
    {
        close();
        stop = true;

        for (auto& thread : threads)
            thread.join();

        processor->removeListener (this);
    }

    RunningHost (const RunningHost&) = delete;
    RunningHost& operator= (const RunningHost&) = delete;

    CorvaneQ7Editor& open()
    {
        if (editor == nullptr)
        {
            editor.reset (dynamic_cast<CorvaneQ7Editor*> (processor->createEditorIfNeeded()));

            // No click shall start a browser.
            editor->bar->openAddress = [] (const juce::String&) {};
            editor->bar->openFile = [] (const juce::File&) {};
            editor->about->link.setEnabled (false);
        }

        return *editor;
    }

    void close()
    {
        if (editor != nullptr)
            processor->editorBeingDeleted (editor.get());

        editor.reset();
    }

    bool soundIsFinite() const noexcept { return finite.load(); }

    /** Waits until the sound has run for so many blocks since its beginning; false where it stands still. */
    bool waitForBlocks (int wanted) const
    {
        constexpr auto patience = std::chrono::seconds (60);
        const auto end = std::chrono::steady_clock::now() + patience;

        while (blocks < wanted && std::chrono::steady_clock::now() < end)
            std::this_thread::sleep_for (std::chrono::milliseconds (1));

        return blocks >= wanted;
    }

    std::unique_ptr<CorvaneQ7AudioProcessor> processor;
    std::unique_ptr<CorvaneQ7Editor> editor;
    std::atomic<int> blocks { 0 };
    std::atomic<int> gesturesBegun { 0 }, gesturesEnded { 0 }, changesHeard { 0 };

private:
    void play (std::uint32_t seed)
    {
        std::mt19937 random (seed);
        const auto noise = Signals::whiteNoise (2, longestBlock, seed, 0.5f);
        juce::AudioBuffer<float> buffer (processor->getTotalNumInputChannels(), longestBlock);
        juce::MidiBuffer midi;

        while (! stop)
        {
            const auto frames = shortestBlock + static_cast<int> (random() % (longestBlock - shortestBlock + 1));
            juce::AudioBuffer<float> block (buffer.getArrayOfWritePointers(), buffer.getNumChannels(), frames);

            for (int c = 0; c < block.getNumChannels(); ++c)
                block.copyFrom (c, 0, noise, c, 0, frames);

            processor->processBlock (block, midi);
            finite = finite && std::isfinite (block.getMagnitude (0, frames));
            ++blocks;

            // A host waits for its sound card: half of real time leaves the processor's other half to the window.
            std::this_thread::sleep_for (std::chrono::microseconds (static_cast<int> (frames / rate * 0.5e6)));
        }
    }

    void automate (std::uint32_t seed)
    {
        std::mt19937 random (seed);

        while (! stop)
        {
            const auto& parameters = processor->getParameters();
            const auto index = static_cast<int> (random() % static_cast<unsigned> (parameters.size()));
            parameters[index]->setValue (static_cast<float> (random() >> 8) * 0x1p-24f);
            std::this_thread::sleep_for (std::chrono::microseconds (200));
        }
    }

    void changeAtLarge (std::uint32_t seed)
    {
        std::mt19937 random (seed);
        juce::MemoryBlock session;
        processor->getStateInformation (session);

        while (! stop)
        {
            switch (random() % 5)
            {
                case 0: processor->setCurrentProgram (static_cast<int> (random() % 15)); break;
                case 1: processor->setOversampling (1 << (random() % 3)); break;
                case 2: processor->setCalibration (16.0 + random() % 9); break;
                case 3: processor->setStateInformation (session.getData(), static_cast<int> (session.getSize())); break;
                default: processor->getStateInformation (session); break;
            }

            std::this_thread::sleep_for (std::chrono::milliseconds (5));
        }
    }

    void audioProcessorParameterChanged (juce::AudioProcessor*, int, float) override { ++changesHeard; }
    void audioProcessorChanged (juce::AudioProcessor*, const ChangeDetails&) override {}
    void audioProcessorParameterChangeGestureBegin (juce::AudioProcessor*, int) override { ++gesturesBegun; }
    void audioProcessorParameterChangeGestureEnd (juce::AudioProcessor*, int) override { ++gesturesEnded; }

    std::atomic<bool> stop { false }, finite { true };
    std::vector<std::thread> threads;
};
