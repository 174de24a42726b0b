// SPDX-License-Identifier: GPL-3.0-or-later
#include "editor/widgets/VertMeter.h"

#include "assets/Assets.h"
#include "editor/MainUILayout.h"
#include "editor/widgets/AccessibleText.h"

#include <algorithm>
#include <cmath>

namespace
{
// The needle's ends and the strip around them stay where they are at every zoom, while scale and glass follow it.
constexpr float needleLeft = 7.0f, needleRight = 43.0f;
constexpr int stripLeft = 6, stripWidth = 38;
const juce::Colour needleAbove { 0xfffd402f }, needleBelow { 0xfff82527 };

constexpr float lowestDb = -100.0f;
constexpr double fastestRise = 3.0;   // positions per second; nothing limits the fall
constexpr double shortestStep = 0.01; // s, for the slope

float decibelsOf (float value) noexcept
{
    // Written so that what is no number counts as silence.
    return value > 0.0f ? std::max (lowestDb, 20.0f * std::log10 (value)) : lowestDb;
}
} // namespace

VertMeter::VertMeter()
    : lastTime (millisecondCounter()), scaleImage (Assets::meterScale()), glassImage (Assets::meterGlass())
{
    setOpaque (true);
    setSize (baseWidth, baseHeight);
}

double VertMeter::targetPosition (float value, bool isGainReduction) noexcept
{
    if (! isGainReduction)
        return static_cast<double> ((decibelsOf (value) + 12.0f) / 24.0f) * 0.8 + 0.1;

    // A reading that is no number shows no reduction.
    const auto gain = std::isnan (value) ? 1.0 : static_cast<double> (value);
    return std::min (gain * -1.3 + 1.19, 1.0) * 0.9 + 0.05;
}

void VertMeter::update (float value, bool isGainReduction)
{
    shownValue = value;
    showsGainReduction = isGainReduction;

    const auto now = millisecondCounter();
    const auto seconds = static_cast<double> (now - lastTime) / 1000.0;
    lastTime = now;

    const auto distance = targetPosition (value, isGainReduction) - static_cast<double> (position);
    const auto slope = std::min (distance / std::max (seconds, shortestStep), fastestRise);

    // An infinite reading has an infinite slope; it must not stay in the velocity.
    const auto weight = static_cast<double> (inertia);
    const auto blended = slope * weight + (1.0 - weight) * static_cast<double> (velocity);
    velocity = static_cast<float> (std::clamp (blended, -1.0e6, fastestRise));

    const auto moved = std::clamp (velocity * static_cast<float> (seconds) + position, 0.0f, 1.0f);

    if (moved == position)
        return;

    const auto before = needleHeight (position), after = needleHeight (moved);
    position = moved;

    const auto top = static_cast<int> (std::min (before, after) - 3.0f);
    const auto bottom = static_cast<int> (std::max (before, after) + 2.0f);
    repaint (stripLeft, top, stripWidth, bottom - top);
}

float VertMeter::needleHeight (float at) const noexcept
{
    return static_cast<float> (getHeight()) * MainUILayout::needleShare (at);
}

void VertMeter::paint (juce::Graphics& g)
{
    const auto area = getLocalBounds().toFloat();
    const auto y = needleHeight (position);

    g.setColour (juce::Colours::black);
    g.drawImage (scaleImage, area);

    g.setColour (needleAbove);
    g.drawLine (needleLeft, y - 1.0f, needleRight, y - 1.0f, 1.0f);
    g.setColour (needleBelow);
    g.drawLine (needleLeft, y, needleRight, y, 1.0f);

    g.setColour (juce::Colours::black);
    g.drawImage (glassImage, area);
}

juce::String VertMeter::valueText() const
{
    const auto decibels = std::isnan (shownValue) && showsGainReduction ? 0.0f : decibelsOf (shownValue);

    if (showsGainReduction)
        return juce::String (std::max (0.0f, -decibels), 1) + " dB gain reduction";

    return decibels <= lowestDb ? juce::String ("silence") : juce::String (decibels, 1) + " dB";
}

std::unique_ptr<juce::AccessibilityHandler> VertMeter::createAccessibilityHandler()
{
    return AccessibleText::handlerFor (*this, juce::AccessibilityRole::staticText, [this] { return valueText(); });
}
