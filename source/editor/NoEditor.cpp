// SPDX-License-Identifier: GPL-3.0-or-later
// For programs without a window: the processor's two functions about its editor, which say that there is none.
#include "processor/CorvaneQ7AudioProcessor.h"

bool CorvaneQ7AudioProcessor::hasEditor() const { return false; }

juce::AudioProcessorEditor* CorvaneQ7AudioProcessor::createEditor() { return nullptr; }
