// SPDX-License-Identifier: GPL-3.0-or-later
#include "processor/CorvaneQ7AudioProcessor.h"

/** What the format wrappers call for each instance. */
juce::AudioProcessor* JUCE_CALLTYPE createPluginFilter() { return new CorvaneQ7AudioProcessor(); }

// The window of the bundles in this version is the framework's plain panel. These definitions stand beside the entry,
// because a linker takes from a library of objects only those that something before it asked for.

bool CorvaneQ7AudioProcessor::hasEditor() const { return true; }

juce::AudioProcessorEditor* CorvaneQ7AudioProcessor::createEditor()
{
    return new juce::GenericAudioProcessorEditor (*this);
}
