// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "parameters/NumberText.h"
#include "parameters/ParameterInfos.h"
#include "settings/ChannelSettings.h"

#include <juce_audio_processors/juce_audio_processors.h>

/** What all controls share: a view of one field of the active record, and the one road of a change.

    A parameter stores nothing of its own. setValue, from wherever it is called (host automation, editor, state, a
    linked band, an index), always runs the same sequence once: the field is written, a linked band control forwards
    to its two siblings, and the settings are applied. A value that is no finite number changes nothing.

    Range    normalised float; what is not limited by a control goes through as it is.
    Threads  setValue and getValue on any, with no lock and no allocation; texts on any but audio. bind when a slot is
             chosen.
    Errors   none.
*/
class SettingsParameter : public juce::AudioProcessorParameterWithID
{
public:
    SettingsParameter (const juce::String& identifier, const juce::String& displayName, ChannelSettings& record);

    void setValue (float newValue) final;

    /** Points the view at another record. */
    void bind (ChannelSettings& record) noexcept { settings = &record; }

    juce::String getName (int) const override { return name; } // uncut, whatever length is asked for
    juce::String getLabel() const override { return {}; }      // the unit lives in the text
    int getNumSteps() const override { return continuousSteps; }
    bool isDiscrete() const override { return getNumSteps() != continuousSteps; }
    bool isBoolean() const override { return getNumSteps() == 2; }

protected:
    /** Writes the field. Any thread; no allocation. */
    virtual void store (float newValue) noexcept = 0;

    /** A conversion's result, or the default where it is no finite number. */
    float finiteOrDefault (double normalised) const
    {
        const auto narrowed = static_cast<float> (normalised);
        return std::isfinite (narrowed) ? narrowed : getDefaultValue();
    }

    Shared<ChannelSettings*> settings;

private:
    void forwardLink (float newValue);
    static void forwardTo (ChannelSettings& record, int index, float newValue);
};

/** A control with the family's own name field and the choice of steps that the wrapper makes. */
class CorvaneQ7Param : public SettingsParameter
{
public:
    /** finiteSteps: some wrappers want a number of steps even for a continuous control; HPF alone reads it. */
    CorvaneQ7Param (const juce::String& identifier, const juce::String& displayName, ChannelSettings& record,
                    bool finiteSteps)
        : SettingsParameter (identifier, displayName, record), useFiniteSteps (finiteSteps)
    {
    }

protected:
    const bool useFiniteSteps;
};
