// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "editor/DialogListener.h"
#include "editor/Gestures.h"
#include "editor/NVXUI.h"
#include "editor/widgets/NVXLNF.h"
#include "editor/widgets/PictureButton.h"
#include "processor/CorvaneQ7AudioProcessor.h"

/** The strip above the front, 24 px at every zoom: slots A and B, the trims of input and output, and the settings menu.

    Programs are not here: they are the host's list.

    Threads  message. Its timer reads the record with no lock.
*/
class TopToolbar : public NVXUI<CorvaneQ7AudioProcessor>,
                   public juce::MultiTimer,
                   public juce::Button::Listener,
                   public juce::Slider::Listener
{
public:
    explicit TopToolbar (CorvaneQ7AudioProcessor&);
    ~TopToolbar() override;

    static constexpr int height = 24; // px, at every zoom
    static constexpr int refreshTimer = 0, refreshMs = 50;

    /** Rows of the settings menu by their ids. */
    enum MenuIds : int
    {
        aboutId = 1,
        firstCalibrationId = 2, // -12 dBFS; the last is -20
        lastCalibrationId = 10,
        saveCalibrationId = 11,
        firstOversamplingId = 12, // off; the last is 16x
        lastOversamplingId = 16,
        saveOversamplingId = 17,
        firstZoomId = 18, // 70 %; the last is 100 %
        lastZoomId = 21,
        saveZoomId = 22
    };

    /** The settings menu as it stands now: titles with the present values, ticks, and the stored defaults named. */
    juce::PopupMenu settingsMenu();

    /** Does what a row of that menu stands for; ids that it has not, 0 included, do nothing. */
    void performMenuItem (int id);

    /** Shows slot and trims of the record. */
    void refresh();

    void paint (juce::Graphics&) override;
    void resized() override;
    void visibilityChanged() override;
    void timerCallback (int timerId) override;
    void sliderDragStarted (juce::Slider*) override;
    void sliderDragEnded (juce::Slider*) override;
    void buttonClicked (juce::Button*) override;
    void sliderValueChanged (juce::Slider*) override;

    NVXLNF lookAndFeel; // before the widgets, which use it to their end
    DialogListener* dialogListener = nullptr;

    PictureButton settingsButton { Assets::settingsKey() }, aButton { Assets::slotAKey() };
    PictureButton copyAtoBButton { Assets::copyAToBKey() }, bButton { Assets::slotBKey() };
    PictureButton copyBtoAButton { Assets::copyBToAKey() };
    juce::Label inLabel, outLabel;
    juce::Slider inLevelSlider, outLevelSlider;

private:
    void addKey (PictureButton&, const juce::String& title);
    void addLabel (juce::Label&, const juce::String& text);
    void addTrim (juce::Slider&, const char* identifier);
    void showSettingsMenu();

    Gestures gestures { *processor };

    JUCE_DECLARE_NON_COPYABLE_WITH_LEAK_DETECTOR (TopToolbar)
};
