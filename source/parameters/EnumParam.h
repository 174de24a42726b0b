// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "parameters/SettingsParameter.h"

/** A choice of N rows. A value maps to the nearest row and is limited nowhere: a row beyond the table can reach the
    record, shows an empty text, and leaves the engine as it was. */
template <typename Values, int N>
class EnumParam : public CorvaneQ7Param
{
public:
    static_assert (static_cast<int> (std::size (Values::rows)) == N);

    /** Rows are steps in every wrapper: the last argument is the family's. */
    EnumParam (const juce::String& identifier, const juce::String& displayName, ChannelSettings& record, bool)
        : CorvaneQ7Param (identifier, displayName, record, true), rows (Values::rows, N)
    {
    }

    static int toRow (float x) noexcept { return NumberText::toInt (static_cast<double> (x) * (N - 1) + 0.5); }
    static constexpr double toPosition (int row) noexcept { return static_cast<double> (row) / (N - 1); }
    static constexpr float toNormalised (int row) noexcept { return static_cast<float> (toPosition (row)); }

    int getNumSteps() const override { return N; }
    juce::String getText (float x, int) const override { return rows[toRow (x)]; } // empty beyond the table

    float getValueForText (const juce::String& text) const override
    {
        const auto row = rows.indexOf (text);
        return row >= 0 ? toNormalised (row) : getDefaultValue();
    }

protected:
    const juce::StringArray rows;
};
