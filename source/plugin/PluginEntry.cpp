// SPDX-License-Identifier: GPL-3.0-or-later
#include "processor/CorvaneQ7AudioProcessor.h"

/** What the format wrappers call for each instance. */
juce::AudioProcessor* JUCE_CALLTYPE createPluginFilter() { return new CorvaneQ7AudioProcessor(); }
