// SPDX-License-Identifier: GPL-3.0-or-later
// For programs with a window: the processor's two functions about its editor.
#include "editor/CorvaneQ7Editor.h"

bool CorvaneQ7AudioProcessor::hasEditor() const { return true; }

juce::AudioProcessorEditor* CorvaneQ7AudioProcessor::createEditor() { return new CorvaneQ7Editor (*this); }
