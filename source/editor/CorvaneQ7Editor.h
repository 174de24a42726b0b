// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "editor/About.h"
#include "editor/DialogListener.h"
#include "editor/KMBar.h"
#include "editor/MainUI.h"
#include "editor/TopToolbar.h"
#include "editor/ZoomableUI.h"

/** The plug-in's window: toolbar, console front and bottom bar one below the other, and the About box over them.

    A zoom is a new layout of a window of another size, never a scaled picture of the old one: the strips keep their
    24 px. The factor lies in the processor, as everything does that shall outlive the window.

    Threads  message. The processor outlives the editor and never points to it.
*/
class CorvaneQ7Editor : public juce::AudioProcessorEditor,
                        public juce::ComboBox::Listener,
                        public DialogListener,
                        public ZoomableUI
{
public:
    explicit CorvaneQ7Editor (CorvaneQ7AudioProcessor&);

    static constexpr int baseWidth = 1350, baseHeight = 723; // px at zoom 1: the front, and twice 24
    static constexpr double aspectRatio = 1.8672199170124482;
    static constexpr double screenFraction = 0.8; // of the monitor that the window may take, at most

    /** The size in px of a zoom factor, in its usable range, on a monitor of that size. */
    static juce::Point<int> sizeFor (float zoom, juce::Rectangle<int> monitor) noexcept;

    void paint (juce::Graphics&) override;
    void resized() override;
    void setControlHighlight (ParameterControlHighlightInfo) override;
    int getControlParameterIndex (juce::Component&) override;
    void comboBoxChanged (juce::ComboBox*) override {} // it has none: for one to come, as the look has its drawing
    void openDialog (int dialogId) override;
    void closeDialog (int dialogId) override;
    void applyZoom() override;

    // In the order of making; they go in the opposite one, the box first.
    std::unique_ptr<KMBar> bar;
    std::unique_ptr<TopToolbar> toolbar;
    std::unique_ptr<MainUI> mainUI;
    std::unique_ptr<About> about;

private:
    juce::Rectangle<int> monitorArea() const;

    CorvaneQ7AudioProcessor& owner;

    JUCE_DECLARE_NON_COPYABLE_WITH_LEAK_DETECTOR (CorvaneQ7Editor)
};
