// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "parameters/SettingsParameter.h"

#include <algorithm>
#include <cmath>

/** A numeric control whose constants come from `Infos` (see ParameterInfos.h). Mapping is done in double, results are
    floats. The leaf knows its field of the record. */
template <typename Infos>
class DoubleParameter : public CorvaneQ7Param
{
public:
    using CorvaneQ7Param::CorvaneQ7Param;

    /** Normalised to the control's unit, on its grid. */
    static double toValue (float x) noexcept
    {
        const auto limited = Infos::limitsInput ? std::clamp (x, 0.0f, 1.0f) : x;
        return onGrid (Infos::range * static_cast<double> (limited) + Infos::minimum);
    }

    /** The control's unit to its position from 0 to 1, on its grid and limited. */
    static double toPosition (double value) noexcept
    {
        return std::clamp ((onGrid (value) - Infos::minimum) / Infos::range, 0.0, 1.0);
    }

    static float toNormalised (double value) noexcept { return static_cast<float> (toPosition (value)); }

    float getDefaultValue() const override { return static_cast<float> (Infos::defaultValue); }
    int getNumSteps() const override { return Infos::numSteps; }

    juce::String getText (float x, int) const override { return NumberText::decibels (toValue (x)); }

    float getValueForText (const juce::String& text) const override
    {
        return finiteOrDefault (toNormalised (NumberText::leadingNumber (text.replace ("dB", ""))));
    }

private:
    static double onGrid (double value) noexcept
    {
        if constexpr (Infos::grid > 0.0)
            return Infos::grid * std::floor (value / Infos::grid + 0.5);
        else
            return value;
    }
};

/** A frequency control: f = lowest * 10^(decades * x) in Hz, limited nowhere; with its text in whole Hz. */
template <typename Infos>
struct FrequencyScale
{
    static double toHz (float x) noexcept
    {
        return Infos::lowest * std::pow (10.0, Infos::decades * static_cast<double> (x));
    }

    static double toPosition (double hz) noexcept { return std::log10 (hz / Infos::lowest) / Infos::decades; }
    static float toNormalised (double hz) noexcept { return static_cast<float> (toPosition (hz)); }

    static juce::String text (double hz) { return juce::String (NumberText::toInt (hz + 0.5)) + "Hz"; }

    /** The number in a text without its letters H and z. */
    static double hzFrom (const juce::String& text) { return NumberText::leadingNumber (text.removeCharacters ("Hz")); }
};
