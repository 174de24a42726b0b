// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "lv2/Turtle.h"

#include <juce_audio_processors/juce_audio_processors.h>

/** What hosts read about one parameter, asked from the parameter object itself; what it does, from the table of controls.

    A host exchanges a position from 0 to 1 and never a number of decibels or hertz. With a unit of dB or Hz it would
    print "0.5 dB" at half travel, with a coefficient or per cent a wrong value as well. So all parameters have one unit
    of their own, which prints the bare number, and the true reading is in the texts of the scale points: every position
    of a stepped control; the ends, the default and round values of a continuous one.

    Errors   std::runtime_error where the parameter's answers do not fit together.
*/
namespace ParameterTurtle
{
/** The unit of every parameter. */
Turtle::Subject positionUnit();

/** The whole description of a parameter. */
Turtle::Subject describe (const juce::AudioProcessorParameterWithID& parameter);

/** The name that a description has within the plug-in's prefix. */
std::string subjectName (const juce::AudioProcessorParameterWithID& parameter);
} // namespace ParameterTurtle
