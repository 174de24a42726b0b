// SPDX-License-Identifier: GPL-3.0-or-later
#include "support/TestHome.h"

#include <juce_events/juce_events.h>

#include <gtest/gtest.h>

int main (int argc, char** argv)
{
    const TestHome home;
    ::testing::InitGoogleTest (&argc, argv);

    const juce::ScopedJuceInitialiser_GUI framework;
    return RUN_ALL_TESTS();
}
