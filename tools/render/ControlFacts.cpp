// SPDX-License-Identifier: GPL-3.0-or-later
#include "render/ControlFacts.h"

#include "parameters/ParameterInfos.h"
#include "parameters/ParameterTable.h"

ControlFacts::ControlFacts (CorvaneQ7AudioProcessor& processor, int indexToUse)
    : index (indexToUse), identifier (ParameterTable::rows[index].identifier),
      name (processor.getParameterName (index).toStdString()), sentence (ParameterTable::rows[index].sentence),
      form (ParameterTable::rows[index].form), defaultValue (processor.getParameterDefaultValue (index)),
      isMeta (processor.isMetaParameter (index))
{
    const auto* parameter = processor.getParameters()[index];
    const auto textAt = [parameter] (float x) { return parameter->getText (x, 0).toStdString(); };
    const auto steps = parameter->getNumSteps();

    defaultText = textAt (defaultValue);

    if (steps != continuousSteps)
    {
        numSteps = steps;

        for (int i = 0; i < steps; ++i)
            texts.push_back (textAt (static_cast<float> (i) / static_cast<float> (steps - 1)));
    }
    else
    {
        for (const auto& word : form.words)
            texts.emplace_back (word.text);
    }
}

std::string ControlFacts::range() const
{
    if (! form.takesNumbers())
        return {};

    return std::to_string (form.lowest) + " to " + std::to_string (form.highest) + ' ' + form.unit;
}

std::vector<ControlFacts> ControlFacts::ofAll (CorvaneQ7AudioProcessor& processor)
{
    std::vector<ControlFacts> all;

    for (int i = 0; i < ParameterTable::numParameters; ++i)
        all.emplace_back (processor, i);

    return all;
}
