// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "parameters/ParameterForm.h"
#include "processor/CorvaneQ7AudioProcessor.h"

#include <optional>
#include <string>
#include <vector>

/** What can be told of a control without hearing it. */
struct ControlFacts
{
    ControlFacts (CorvaneQ7AudioProcessor& processor, int index);

    int index;
    std::string identifier, name, sentence;
    const ParameterForm& form;
    std::optional<int> numSteps; // none where it is continuous
    float defaultValue;          // normalised: a host's reset, and what a state without the control gives
    std::string defaultText;
    std::vector<std::string> texts; // of every step; of a continuous control those that are no numbers
    bool isMeta;                    // it may move others: hosts ask

    /** "-20 to 10 dB", or nothing where a control takes no numbers. */
    std::string range() const;

    /** All controls in order. */
    static std::vector<ControlFacts> ofAll (CorvaneQ7AudioProcessor& processor);
};
