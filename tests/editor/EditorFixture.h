// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "editor/CorvaneQ7Editor.h"
#include "HostLog.h"
#include "Mouse.h"

#include <gtest/gtest.h>

#include <memory>

/** A processor with its window at 100 %, whatever screen the machine has or has not. No timer runs, for no message is
    dispatched: what a test wants to see refreshed, it refreshes. */
class EditorTest : public ::testing::Test
{
protected:
    explicit EditorTest (int channels = 2)
    {
        processor.setPlayConfigDetails (channels, channels, 48000.0, 512);
        open();
    }

    void open()
    {
        editor = std::make_unique<CorvaneQ7Editor> (processor);
        editor->setSize (1350, 723);
        editor->setVisible (true); // as a host does it; there is still no window
    }

    MainUI& panel() { return *editor->mainUI; }
    TopToolbar& toolbar() { return *editor->toolbar; }
    MainUI::BandWidgets& band (int index) { return panel().bands[static_cast<std::size_t> (index)]; }
    ChannelSettings& settings() { return processor.activeSettings(); }

    float valueOf (int parameter) { return processor.getParameters()[parameter]->getValue(); }

    /** As a host's automation does it. */
    void automate (int parameter, float value) { processor.getParameters()[parameter]->setValue (value); }

    CorvaneQ7AudioProcessor processor;
    std::unique_ptr<CorvaneQ7Editor> editor;
};

/** With one channel there is no mid and no side. */
class MonoEditorTest : public EditorTest
{
protected:
    MonoEditorTest() : EditorTest (1) {}
};

/** A component painted alone into a clear picture. */
inline juce::Image painted (juce::Component& component)
{
    juce::Image image (juce::Image::ARGB, std::max (1, component.getWidth()), std::max (1, component.getHeight()),
                       true);
    juce::Graphics g (image);
    component.paintEntireComponent (g, true);
    return image;
}

/** Notes which areas of a component are asked to be painted anew. */
class RepaintLog
{
public:
    explicit RepaintLog (juce::Component& componentToWatch) : component (componentToWatch)
    {
        component.setCachedComponentImage (new Watch (*this));
        areas.clear(); // that itself asks for one
    }

    ~RepaintLog() { component.setCachedComponentImage (nullptr); }

    juce::Array<juce::Rectangle<int>> areas;

private:
    struct Watch : juce::CachedComponentImage
    {
        explicit Watch (RepaintLog& logToFill) : log (logToFill) {}

        void paint (juce::Graphics&) override {}
        void releaseResources() override {}

        bool invalidateAll() override { return invalidate (log.component.getLocalBounds()); }

        bool invalidate (const juce::Rectangle<int>& area) override
        {
            log.areas.add (area);
            return true;
        }

        RepaintLog& log;
    };

    juce::Component& component;
};

namespace juce
{
inline void PrintTo (const Rectangle<int>& area, std::ostream* stream) { *stream << area.toString(); }
inline void PrintTo (const Colour& colour, std::ostream* stream) { *stream << colour.toString(); }
inline void PrintTo (const String& text, std::ostream* stream) { *stream << '"' << text << '"'; }
} // namespace juce
