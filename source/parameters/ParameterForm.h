// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <array>
#include <cstddef>

/** How people write the values of a control and read of its scale: words, numbers in a unit, or both.

    What a text that does not fit becomes is not said here: a host gets a default (SettingsParameter::getValueForText),
    the renderer refuses it.
*/
struct ParameterForm
{
    enum class Kind
    {
        choice,
        onOff,
        decibels,
        percent,
        frequency
    };

    /** A text that is no number, and the position that it stands for. */
    struct Word
    {
        const char* text;
        float normalised;
    };

    /** Words from the lowest position up. More than fit into the list do not compile. */
    class Words
    {
    public:
        constexpr void add (const Word& word) noexcept { list[count++] = word; }

        constexpr const Word* begin() const noexcept { return list.data(); }
        constexpr const Word* end() const noexcept { return list.data() + count; }
        constexpr const Word& operator[] (std::size_t i) const noexcept { return list[i]; }
        constexpr std::size_t size() const noexcept { return count; }
        constexpr bool empty() const noexcept { return count == 0; }

    private:
        std::array<Word, 5> list {};
        std::size_t count = 0;
    };

    Kind kind = Kind::choice;
    Words words {};
    const char* unit = "";                  // of numbers; none where it takes words alone
    int lowest = 0, highest = 0;            // in the unit
    int step = 0;                           // between the points that the control knows; 0 is none
    const char* example = "";               // a number with its unit
    float (*normalised) (double) = nullptr; // from a number in the unit
    const char* mapping = "";               // from a position x to a value, for people

    constexpr bool takesNumbers() const noexcept { return unit[0] != '\0'; }
};
