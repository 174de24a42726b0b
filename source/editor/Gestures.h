// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "processor/CorvaneQ7AudioProcessor.h"

#include <map>
#include <utility>
#include <vector>

/** What a panel's user holds: the gestures that a drag has opened with the host. A drag closes exactly what it opened,
    whatever happened to Link meanwhile, and nothing stays open when the panel goes. Message thread. */
class Gestures
{
public:
    explicit Gestures (CorvaneQ7AudioProcessor& processorToTell) noexcept : processor (processorToTell) {}

    ~Gestures()
    {
        while (! open.empty())
            end (open.begin()->first);
    }

    /** Opens the parameters' gestures, in that order. */
    void begin (const void* control, std::vector<int> parameters)
    {
        end (control);

        for (const auto parameter : parameters)
            processor.beginParameterChangeGesture (parameter);

        open[control] = std::move (parameters);
    }

    /** Closes what the control has opened, in the same order. */
    void end (const void* control)
    {
        const auto entry = open.find (control);

        if (entry == open.end())
            return;

        const auto parameters = std::move (entry->second);
        open.erase (entry);

        for (const auto parameter : parameters)
            processor.endParameterChangeGesture (parameter);
    }

private:
    CorvaneQ7AudioProcessor& processor;
    std::map<const void*, std::vector<int>> open;

    JUCE_DECLARE_NON_COPYABLE (Gestures)
};
