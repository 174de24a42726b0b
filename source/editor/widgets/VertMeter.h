// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <juce_gui_basics/juce_gui_basics.h>

#include <cstdint>

/** A band's meter: a printed scale behind glass, and a thin red line between them that moves like the needle of a
    moving-coil instrument. The inertia is the meter's own; it is computed here, at the panel's pace.

    Position  0 at the bottom of the scale, 1 at its top.
    Level     linear, 1 is +4 dBu; -12 dB stands at 0.1, 0 dB at 0.5, +12 dB at 0.9.
    Gain reduction  linear gain, 1 is none: the needle lies at the bottom, and rises with the reduction.
    Threads   message.
*/
class VertMeter : public juce::Component
{
public:
    static constexpr int baseWidth = 58, baseHeight = 252; // px at 100 %

    VertMeter();

    /** Moves the needle towards a reading, by the time since the last call. Repaints only the strip that changed. */
    void update (float value, bool isGainReduction);

    /** Where a reading stands, unlimited: below 0 and above 1 are beyond the scale. A reading that is no number counts
        as the lowest. */
    static double targetPosition (float value, bool isGainReduction) noexcept;

    float position = 0.0f;
    float velocity = 0.0f; // positions per second
    float inertia = 0.6f;  // weight of the new slope

    /** The reading as a screen reader says it. */
    juce::String valueText() const;

    std::uint32_t (*millisecondCounter)() noexcept = juce::Time::getMillisecondCounter; // tests move it
    std::uint32_t lastTime;                                                             // ms

    void paint (juce::Graphics&) override;
    std::unique_ptr<juce::AccessibilityHandler> createAccessibilityHandler() override;

private:
    /** In px from the top. */
    float needleHeight (float at) const noexcept;

    juce::Image scaleImage, glassImage;
    float shownValue = 1.0f;
    bool showsGainReduction = true;

    JUCE_DECLARE_NON_COPYABLE_WITH_LEAK_DETECTOR (VertMeter)
};
