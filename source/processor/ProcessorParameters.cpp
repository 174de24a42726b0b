// SPDX-License-Identifier: GPL-3.0-or-later
// Parameters by their index. The framework keeps these operations for older hosts only; here they are plain forwards to
// the objects, and what a control asks of its owner.
#include "parameters/ParameterInfos.h"
#include "processor/CorvaneQ7AudioProcessor.h"

float CorvaneQ7AudioProcessor::getParameter (int index)
{
    const auto* parameter = getParameters()[index];
    return parameter != nullptr ? parameter->getValue() : 0.0f;
}

const juce::String CorvaneQ7AudioProcessor::getParameterName (int index)
{
    const auto* parameter = getParameters()[index];
    return parameter != nullptr ? parameter->getName (0) : juce::String();
}

const juce::String CorvaneQ7AudioProcessor::getParameterText (int index)
{
    const auto* parameter = getParameters()[index];
    return parameter != nullptr ? parameter->getText (parameter->getValue(), 0) : juce::String();
}

float CorvaneQ7AudioProcessor::getParameterDefaultValue (int index)
{
    const auto* parameter = getParameters()[index];
    return parameter != nullptr ? parameter->getDefaultValue() : 0.0f;
}

int CorvaneQ7AudioProcessor::getParameterNumSteps (int index)
{
    const auto* parameter = getParameters()[index];
    return parameter != nullptr ? parameter->getNumSteps() : continuousSteps;
}

bool CorvaneQ7AudioProcessor::isMetaParameter (int index) const
{
    const auto* parameter = getParameters()[index];
    return parameter != nullptr && parameter->isMetaParameter();
}

bool CorvaneQ7AudioProcessor::isParameterOrientationInverted (int index) const
{
    const auto* parameter = getParameters()[index];
    return parameter != nullptr && parameter->isOrientationInverted();
}

bool CorvaneQ7AudioProcessor::hostWantsSilentLink() const noexcept
{
    // A range of the framework's codes of hosts.
    constexpr int firstHost = 22, lastHost = 28;
    return wrapperType == wrapperType_VST && hostType >= firstHost && hostType <= lastHost;
}

void CorvaneQ7AudioProcessor::beginParameterChangeGesture (int index)
{
    if (auto* parameter = getParameters()[index])
        parameter->beginChangeGesture();
}

void CorvaneQ7AudioProcessor::endParameterChangeGesture (int index)
{
    if (auto* parameter = getParameters()[index])
        parameter->endChangeGesture();
}

void CorvaneQ7AudioProcessor::setParameter (int index, float newValue)
{
    if (auto* parameter = getParameters()[index])
        parameter->setValue (newValue);
    else
        applySettings();
}

void CorvaneQ7AudioProcessor::setParameterNotifyingHost (int index, float newValue)
{
    if (auto* parameter = getParameters()[index])
        parameter->setValueNotifyingHost (newValue);
}
