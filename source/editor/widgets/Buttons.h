// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "editor/widgets/NVXButton.h"

/** The keys of the front, in px at 100 %. Each kind has its own name engraved. */
template <Assets::TwoStates (*images)()>
class KeyButton : public NVXButton
{
public:
    static constexpr int baseWidth = 85, baseHeight = 54;

    KeyButton() : NVXButton (images()) { setSize (baseWidth, baseHeight); }
};

class LinkButton final : public KeyButton<Assets::linkButton>
{
};

class NiveauButton final : public KeyButton<Assets::niveauButton>
{
};

class NukeButton final : public KeyButton<Assets::nukeButton>
{
};

class MSButton final : public KeyButton<Assets::midSideButton>
{
};

class SoloButton final : public KeyButton<Assets::soloButton>
{
};

class BandInButton final : public KeyButton<Assets::bandInButton>
{
};

/** The bypass switch: it shows the control's state and not the mouse, and keeps its picture's proportions. */
class InButton final : public NVXButton
{
public:
    static constexpr int baseWidth = 70, baseHeight = 79;

    InButton() : NVXButton (Assets::bypassSwitch()) { setSize (baseWidth, baseHeight); }

    bool hitTest (int, int) override { return true; }

    void paintButton (juce::Graphics& g, bool, bool) override
    {
        g.setColour (juce::Colours::black);
        g.drawImage (getToggleState() ? downImage : normalImage, getLocalBounds().toFloat(),
                     juce::RectanglePlacement::centred);
    }
};
