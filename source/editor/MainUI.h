// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "editor/DialogListener.h"
#include "editor/Gestures.h"
#include "editor/MainUILayout.h"
#include "editor/NVXUI.h"
#include "editor/widgets/Buttons.h"
#include "editor/widgets/Knobs.h"
#include "editor/widgets/NVXLNF.h"
#include "editor/widgets/PictureButton.h"
#include "editor/widgets/VertMeter.h"
#include "processor/CorvaneQ7AudioProcessor.h"

#include <array>
#include <memory>

/** The console front: three alike band strips and a row of controls that the bands share.

    A view of the audible record and nothing more. What the user does goes to the parameters, with gestures for the
    host; what the parameters hold comes back on a timer, without telling anybody. Places and travels of the controls
    stand in MainUILayout.h.

    Threads  message. The timers read record and meters with no lock; a value may be one tick old.
*/
class MainUI : public NVXUI<CorvaneQ7AudioProcessor>,
               public juce::MultiTimer,
               public juce::Button::Listener,
               public juce::Slider::Listener
{
public:
    explicit MainUI (CorvaneQ7AudioProcessor&);
    ~MainUI() override;

    static constexpr int numBands = MainUILayout::numBands;

    enum Timers : int
    {
        refreshTimer = 0,
        meterTimer = 2
    };
    static constexpr int refreshMs = 80, meterMs = 50;

    /** Shows the record: every widget takes its value, with no notification. */
    void refresh();

    /** Moves the three needles by one tick. */
    void updateMeters();

    /** Writes a crossover's frequency in Hz, and under it the unlit segments of the same shape. */
    static void setDigits (double frequency, juce::Label& ghost, juce::Label& lit);

    void paint (juce::Graphics&) override;
    void resized() override;
    void visibilityChanged() override;
    void timerCallback (int timerId) override;
    void sliderDragStarted (juce::Slider*) override;
    void sliderDragEnded (juce::Slider*) override;
    void buttonClicked (juce::Button*) override;
    void sliderValueChanged (juce::Slider*) override;

    NVXLNF lookAndFeel;                       // before the widgets, which use it to their end
    DialogListener* dialogListener = nullptr; // every panel can open dialogs; this one opens none yet

    /** What each band has. */
    struct BandWidgets
    {
        std::unique_ptr<juce::Label> sideLabel, midLabel;
        std::unique_ptr<VertMeter> meter;
        std::unique_ptr<NVXSlider> ratio, attack, recovery, gain, threshold, meterMode;
        std::unique_ptr<PictureButton> inLamp, soloLamp, midLamp, sideLamp;
        std::unique_ptr<NVXButton> inButton, soloButton, midSideButton;
    };

    std::array<BandWidgets, numBands> bands;
    std::unique_ptr<juce::Label> masterReadout, mixReadout, highPassReadout;
    std::unique_ptr<juce::Label> lowXOverGhost, highXOverGhost, lowXOverDigits, highXOverDigits;
    std::unique_ptr<NVXSlider> highPass, mix, master, lowXOver, highXOver;
    std::unique_ptr<PictureButton> bypassLamp, nukeLamp, niveauLamp, linkLamp;
    std::unique_ptr<NVXButton> bypassSwitch, nukeButton, niveauButton, linkButton;

    bool stereoShown = false; // whether the mid/side controls are to be seen

private:
    void createWidgets();
    void setTravels();
    void bindControls();
    void setDefaults();
    void describeControls();

    template <typename Widget>
    void add (std::unique_ptr<Widget>& widget);
    template <typename Knob>
    void addKnob (std::unique_ptr<NVXSlider>& knob);
    void addLabel (std::unique_ptr<juce::Label>& label, juce::Justification, juce::Colour);
    void addLamp (std::unique_ptr<PictureButton>& lamp, const Assets::TwoStates&, bool takesClicks);

    void showMidSide (bool shouldBeSeen);
    void refreshBand (int band, const ChannelSettings::Band& settings);
    void refreshMidSide (const ChannelSettings& settings);

    /** Changes a parameter from what it holds now, within a gesture. */
    template <typename Change>
    void changeParameter (int index, Change change);
    bool clickedMidSideLamp (juce::Button*);

    juce::Image background;
    Gestures gestures { *processor };
    juce::Font digits;

    JUCE_DECLARE_NON_COPYABLE_WITH_LEAK_DETECTOR (MainUI)
};
