// SPDX-License-Identifier: GPL-3.0-or-later
#include "editor/TopToolbar.h"

#include "editor/ZoomableUI.h"
#include "parameters/NumberText.h"
#include "parameters/ParameterTable.h"

#include <algorithm>
#include <cmath>

namespace
{
constexpr int keySize = 24;
constexpr double trimRangeDb = 10.0; // each way

constexpr int highestLevelDbfs = -12, numLevels = 9;
constexpr int nominalDbu = 4; // a level of L dBFS for +4 dBu puts full scale at 4 - L dBu
constexpr int factors[] { 1, 2, 4, 8, 16 };
constexpr int zoomPercents[] { 70, 80, 90, 100 };

juce::String factorText (int factor) { return factor < 2 ? juce::String ("Off") : juce::String (factor) + "x"; }

/** Whole percent; a zoom from a session may be any number. */
int percentOf (double zoom) { return NumberText::toInt (std::floor (zoom * 100.0 + 0.5)); }

void addChoice (juce::PopupMenu& menu, int id, const juce::String& text, bool isCurrent, bool isDefault)
{
    menu.addItem (id, isDefault ? text + " (default)" : text, true, isCurrent);
}
} // namespace

TopToolbar::TopToolbar (CorvaneQ7AudioProcessor& processorToShow) : NVXUI (processorToShow)
{
    setOpaque (true);
    setLookAndFeel (&lookAndFeel);

    addKey (settingsButton, "Settings");
    addKey (aButton, "Slot A");
    addKey (copyAtoBButton, "Copy A to B");
    addKey (bButton, "Slot B");
    addKey (copyBtoAButton, "Copy B to A");
    aButton.tellsState = bButton.tellsState = true;
    addLabel (inLabel, "IN");
    addTrim (inLevelSlider, "InLevel");
    addLabel (outLabel, "OUT");
    addTrim (outLevelSlider, "OutLevel");
}

TopToolbar::~TopToolbar()
{
    stopTimer (refreshTimer);
    lookAndFeel.releaseMenusIn (getParentComponent());
    setLookAndFeel (nullptr);

    for (auto* trim : { &inLevelSlider, &outLevelSlider })
        trim->removeListener (this);
}

void TopToolbar::addKey (PictureButton& key, const juce::String& title)
{
    key.setTitle (title);
    key.addListener (this);
    addAndMakeVisible (key);
}

void TopToolbar::addLabel (juce::Label& label, const juce::String& text)
{
    label.setText (text, juce::dontSendNotification);
    label.setFont (juce::Font (15.0f));
    label.setJustificationType (juce::Justification::centredLeft);
    label.setEditable (false, false, false);
    label.setColour (juce::Label::textColourId, juce::Colour (0xc5ffffff));
    label.setAccessible (false); // the trim beside it has the name
    addAndMakeVisible (label);
}

void TopToolbar::addTrim (juce::Slider& trim, const char* identifier)
{
    const auto index = ParameterTable::indexOf (identifier);

    trim.setSliderStyle (juce::Slider::RotaryVerticalDrag);
    trim.setRange (-trimRangeDb, trimRangeDb, 0.1);
    trim.setTextBoxStyle (juce::Slider::TextBoxRight, false, 40, 20);
    trim.setDoubleClickReturnValue (true, 0.0, juce::ModifierKeys());
    trim.setColour (juce::Slider::trackColourId, juce::Colour (0xffffffff));
    trim.setColour (juce::Slider::rotarySliderFillColourId, juce::Colour (0xffffffff));
    trim.setColour (juce::Slider::rotarySliderOutlineColourId, juce::Colour (0x66000000));
    trim.setColour (juce::Slider::textBoxTextColourId, juce::Colour (0xff595959));
    trim.setColour (juce::Slider::textBoxBackgroundColourId, juce::Colour (0xff000000));
    trim.setColour (juce::Slider::textBoxHighlightColourId, juce::Colour (0xff12b9ff));
    trim.setTitle (processor->getParameters()[index]->getName (64));
    trim.addListener (this);
    addAndMakeVisible (trim);
    bindControl (index, &trim);
}

void TopToolbar::paint (juce::Graphics& g) { g.fillAll (juce::Colours::black); }

void TopToolbar::resized()
{
    // In pixels, for the strip does not follow the zoom.
    settingsButton.setBounds (getWidth() - keySize, 0, keySize, keySize);
    aButton.setBounds (0, 0, keySize, keySize);
    copyAtoBButton.setBounds (24, 0, keySize, keySize);
    bButton.setBounds (48, 0, keySize, keySize);
    copyBtoAButton.setBounds (24, 0, keySize, keySize);
    inLabel.setBounds (200, 0, 24, height);
    inLevelSlider.setBounds (224, 0, 68, height);
    outLabel.setBounds (304, 0, 32, height);
    outLevelSlider.setBounds (336, 0, 68, height);
    moveHighlights();
}

void TopToolbar::visibilityChanged()
{
    if (isVisible())
    {
        refresh();
        startTimer (refreshTimer, refreshMs);
    }
    else
    {
        stopTimer (refreshTimer);
    }
}

void TopToolbar::timerCallback (int timerId)
{
    if (timerId == refreshTimer)
        refresh();
}

void TopToolbar::refresh()
{
    constexpr auto silently = juce::dontSendNotification;
    const auto isB = processor->activeSlot == 1;
    const auto& settings = processor->activeSettings();

    aButton.setToggleState (! isB, silently);
    bButton.setToggleState (isB, silently);
    copyAtoBButton.setVisible (! isB);
    copyBtoAButton.setVisible (isB);
    inLevelSlider.setValue (settings.inLevelDb.target, silently);
    outLevelSlider.setValue (settings.outLevelDb.target, silently);
}

void TopToolbar::sliderValueChanged (juce::Slider* slider)
{
    const auto index = getControlParameterIndex (*slider);

    if (index >= 0)
        processor->setParameterNotifyingHost (index,
                                              static_cast<float> (slider->getValue() / (2.0 * trimRangeDb) + 0.5));
}

void TopToolbar::sliderDragStarted (juce::Slider* slider)
{
    if (const auto index = getControlParameterIndex (*slider); index >= 0)
        gestures.begin (slider, { index });
}

void TopToolbar::sliderDragEnded (juce::Slider* slider) { gestures.end (slider); }

void TopToolbar::buttonClicked (juce::Button* button)
{
    if (button == &aButton || button == &bButton)
    {
        processor->selectSlot (button == &bButton ? 1 : 0);
        refresh();
    }
    else if (button == &copyAtoBButton || button == &copyBtoAButton)
    {
        processor->copyToOtherSlot();
    }
    else if (button == &settingsButton)
    {
        showSettingsMenu();
    }
}

// ---- the settings menu -------------------------------------------------------------------------
juce::PopupMenu TopToolbar::settingsMenu()
{
    const auto stored = UserDefaults::read();

    // Limited only so that what no session can hold is still a number to count with.
    const auto calibrationDbu =
        juce::jlimit (-1000, 1000, UserDefaults::calibrationDbFor (processor->activeSettings().calibrationGain));
    const auto defaultDbu = NumberText::toInt (std::floor (stored.calibrationDb + 0.5));
    juce::PopupMenu calibration;

    for (int i = 0; i < numLevels; ++i)
    {
        const auto level = highestLevelDbfs - i;
        const auto dbu = nominalDbu - level;
        addChoice (calibration, firstCalibrationId + i, juce::String (level) + " dBFS", dbu == calibrationDbu,
                   dbu == defaultDbu);
    }

    calibration.addSeparator();
    calibration.addItem (saveCalibrationId, "Save as default");

    const int factor = processor->oversamplingRequested;
    juce::PopupMenu oversampling;

    for (int i = 0; i < juce::numElementsInArray (factors); ++i)
        addChoice (oversampling, firstOversamplingId + i, factorText (factors[i]), factors[i] == std::max (factor, 1),
                   factors[i] == stored.oversampling);

    oversampling.addSeparator();
    oversampling.addItem (saveOversamplingId, "Save as default");

    const auto zoom = static_cast<double> (ZoomableUI::usableZoom (processor->uiZoom));
    juce::PopupMenu zooms;

    for (int i = 0; i < juce::numElementsInArray (zoomPercents); ++i)
        addChoice (zooms, firstZoomId + i, juce::String (zoomPercents[i]) + " %", zoomPercents[i] == percentOf (zoom),
                   zoomPercents[i] == percentOf (stored.uiZoom));

    zooms.addSeparator();
    zooms.addItem (saveZoomId, "Save as default");

    juce::PopupMenu menu;
    menu.setLookAndFeel (&lookAndFeel);
    menu.addItem (aboutId, "About...");
    menu.addSeparator();
    menu.addSubMenu ("Calibration (+4 dBu at -" + juce::String (calibrationDbu - nominalDbu) + "dBFS)", calibration);
    menu.addSubMenu ("Oversampling (" + factorText (factor) + ")", oversampling);
    menu.addSeparator();
    menu.addSubMenu ("UI Zoom (" + juce::String (zoom * 100.0, 0) + " %)", zooms);
    return menu;
}

void TopToolbar::performMenuItem (int id)
{
    if (id == aboutId)
    {
        if (dialogListener != nullptr)
            dialogListener->openDialog (DialogListener::aboutBox);
    }
    else if (id >= firstCalibrationId && id <= lastCalibrationId)
    {
        processor->setCalibration (nominalDbu - (highestLevelDbfs - (id - firstCalibrationId)));
    }
    else if (id == saveCalibrationId)
    {
        UserDefaults::saveCalibrationDb (UserDefaults::calibrationDbFor (processor->activeSettings().calibrationGain));
    }
    else if (id >= firstOversamplingId && id <= lastOversamplingId)
    {
        processor->setOversampling (factors[id - firstOversamplingId]);
    }
    else if (id == saveOversamplingId)
    {
        UserDefaults::saveOversampling (processor->oversamplingRequested);
    }
    else if (id >= firstZoomId && id <= lastZoomId)
    {
        processor->uiZoom = static_cast<float> (zoomPercents[id - firstZoomId] / 100.0);

        if (auto* zoomable = dynamic_cast<ZoomableUI*> (getParentComponent()))
            zoomable->applyZoom();
    }
    else if (id == saveZoomId)
    {
        UserDefaults::saveUiZoom (static_cast<double> (ZoomableUI::usableZoom (processor->uiZoom)));
    }
}

void TopToolbar::showSettingsMenu()
{
    // Within the editor: no window of its own that could outlive us, and see-through corners on every screen.
    const auto options = juce::PopupMenu::Options()
                             .withTargetComponent (settingsButton)
                             .withParentComponent (getParentComponent())
                             .withDeletionCheck (*this);

    settingsMenu().showMenuAsync (options,
                                  [safe = SafePointer<TopToolbar> (this)] (int id)
                                  {
                                      if (safe != nullptr)
                                          safe->performMenuItem (id);
                                  });
}
