// SPDX-License-Identifier: GPL-3.0-or-later
// From the user's hand to the parameters, with the gestures that hosts want to know of.
#include "editor/MainUI.h"

#include <utility>
#include <vector>

void MainUI::sliderValueChanged (juce::Slider* slider)
{
    const auto index = getControlParameterIndex (*slider);

    if (index < 0)
        return;

    const auto value = static_cast<float> (slider->getValue());
    processor->setParameterNotifyingHost (index,
                                          processor->isParameterOrientationInverted (index) ? 1.0f - value : value);
}

void MainUI::sliderDragStarted (juce::Slider* slider)
{
    const auto index = getControlParameterIndex (*slider);
    const auto* knob = dynamic_cast<NVXSlider*> (slider);

    if (index < 0 || (knob != nullptr && knob->isWheelMoving()))
        return;

    std::vector<int> held { index };

    // A linked control moves its two siblings: hosts that record automation want to know of those as well.
    if (processor->activeSettings().link && ParameterTable::isBandControl (index) && ! processor->hostWantsSilentLink())
        for (const auto sibling : ParameterTable::siblingsOf (index))
            held.push_back (sibling);

    gestures.begin (slider, std::move (held));
}

void MainUI::sliderDragEnded (juce::Slider* slider) { gestures.end (slider); }

template <typename Change>
void MainUI::changeParameter (int index, Change change)
{
    const auto& parameters = processor->getParameters();

    if (! juce::isPositiveAndBelow (index, parameters.size()))
        return;

    // From the parameter and not from the button, so that automation which moved meanwhile counts.
    auto* parameter = parameters[index];
    parameter->beginChangeGesture();
    parameter->setValueNotifyingHost (change (parameter->getValue()));
    parameter->endChangeGesture();
}

void MainUI::buttonClicked (juce::Button* button)
{
    if (clickedMidSideLamp (button))
        return;

    const auto index = getControlParameterIndex (*button);

    if (index < 0)
        return;

    if (dynamic_cast<MSButton*> (button) != nullptr)
        changeParameter (index, [] (float value) { return value + 0.5f > 1.0f ? 0.0f : value + 0.5f; });
    else
        changeParameter (index, [] (float value) { return 1.0f - value; });
}

bool MainUI::clickedMidSideLamp (juce::Button* button)
{
    for (auto& band : bands)
    {
        const auto isMid = button == band.midLamp.get();

        if (! isMid && button != band.sideLamp.get())
            continue;

        const auto index = getControlParameterIndex (*band.midSideButton);

        if (isMid)
            changeParameter (index, [] (float value) { return value > 0.0f ? 0.0f : 0.5f; });
        else
            changeParameter (index, [] (float value) { return value < 1.0f ? 1.0f : 0.5f; });

        button->setToggleState (! button->getToggleState(), juce::dontSendNotification);
        return true;
    }

    return false;
}
