// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <juce_audio_processors/juce_audio_processors.h>

#include <map>
#include <vector>

/** A panel that shows a processor's parameters: which control belongs to which parameter, and the corners that a host
    asks to be drawn around a control.

    Threads  message.
*/
template <typename P>
class NVXUI : public juce::Component
{
public:
    explicit NVXUI (P& processorToShow) noexcept : processor (&processorToShow) {}

    /** Corners around all controls of a parameter, in px of the panel. */
    struct Highlight
    {
        int x, y, w, h;
        juce::Colour colour;
    };

    /** What a host asks for when its user points at a parameter. */
    void setControlHighlight (const juce::AudioProcessorEditor::ParameterControlHighlightInfo& info)
    {
        if (info.isHighlighted)
        {
            if (controlsOfParameter.count (info.parameterIndex) == 0)
                return;

            const auto area = controlArea (info.parameterIndex);
            highlights[info.parameterIndex] = { area.getX(), area.getY(), area.getWidth(), area.getHeight(),
                                                info.suggestedColour };
        }
        else
        {
            highlights.erase (info.parameterIndex);
        }

        repaint();
    }

    /** The parameter of a control, or -1. */
    int getControlParameterIndex (juce::Component& control) const
    {
        const auto entry = parameterOfControl.find (&control);
        return entry == parameterOfControl.end() ? -1 : entry->second;
    }

    void paintOverChildren (juce::Graphics& g) override
    {
        for (const auto& entry : highlights)
            drawCorners (g, entry.second);
    }

    P* processor; // not owned; outlives the editor
    std::map<int, Highlight> highlights;
    std::map<int, std::vector<juce::Component*>> controlsOfParameter; // in the order of binding
    std::map<juce::Component*, int> parameterOfControl;

protected:
    void bindControl (int parameterIndex, juce::Component* control)
    {
        controlsOfParameter[parameterIndex].push_back (control);
        parameterOfControl[control] = parameterIndex;
    }

    /** After a new layout: the corners follow their controls. */
    void moveHighlights()
    {
        for (auto& [index, highlight] : highlights)
        {
            const auto area = controlArea (index);
            highlight = { area.getX(), area.getY(), area.getWidth(), area.getHeight(), highlight.colour };
        }

        if (! highlights.empty())
            repaint();
    }

private:
    juce::Rectangle<int> controlArea (int parameterIndex) const
    {
        juce::Rectangle<int> area;
        const auto entry = controlsOfParameter.find (parameterIndex);

        if (entry != controlsOfParameter.end())
            for (const auto* control : entry->second)
                if (! control->getBounds().isEmpty())
                    area = area.isEmpty() ? control->getBounds() : area.getUnion (control->getBounds());

        return area;
    }

    /** Right and bottom lines lie just outside the box, at x + w and y + h. */
    static void drawCorners (juce::Graphics& g, const Highlight& box)
    {
        const auto left = static_cast<float> (box.x), right = static_cast<float> (box.x + box.w);
        const auto top = static_cast<float> (box.y), bottom = static_cast<float> (box.y + box.h);
        const auto across = 0.2f * static_cast<float> (box.w), down = 0.2f * static_cast<float> (box.h);
        g.setColour (box.colour);

        for (const auto x : { box.x, box.x + box.w })
        {
            g.drawVerticalLine (x, top, top + down);
            g.drawVerticalLine (x, bottom - down, bottom);
        }

        for (const auto y : { box.y, box.y + box.h })
        {
            g.drawHorizontalLine (y, left, left + across);
            g.drawHorizontalLine (y, right - across, right);
        }
    }
};
