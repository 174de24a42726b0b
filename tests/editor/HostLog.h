// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <juce_audio_processors/juce_audio_processors.h>

#include <string>
#include <utility>
#include <vector>

/** What a processor tells its host, in order and in words: "begin 5", "value 5", "end 5", "changed". */
class HostLog : private juce::AudioProcessorListener
{
public:
    explicit HostLog (juce::AudioProcessor& processorToHear) : processor (processorToHear)
    {
        processor.addListener (this);
    }

    ~HostLog() override { processor.removeListener (this); }

    std::vector<std::string> words;
    std::vector<std::pair<int, float>> values; // index and value of each "value"

    /** The gestures alone. */
    std::vector<std::string> gestures() const
    {
        std::vector<std::string> found;

        for (const auto& word : words)
            if (word.rfind ("begin", 0) == 0 || word.rfind ("end", 0) == 0)
                found.push_back (word);

        return found;
    }

    void clear()
    {
        words.clear();
        values.clear();
    }

private:
    void audioProcessorParameterChanged (juce::AudioProcessor*, int index, float value) override
    {
        words.push_back ("value " + std::to_string (index));
        values.emplace_back (index, value);
    }

    void audioProcessorChanged (juce::AudioProcessor*, const ChangeDetails&) override { words.push_back ("changed"); }

    void audioProcessorParameterChangeGestureBegin (juce::AudioProcessor*, int index) override
    {
        words.push_back ("begin " + std::to_string (index));
    }

    void audioProcessorParameterChangeGestureEnd (juce::AudioProcessor*, int index) override
    {
        words.push_back ("end " + std::to_string (index));
    }

    juce::AudioProcessor& processor;
};
