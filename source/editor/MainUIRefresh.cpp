// SPDX-License-Identifier: GPL-3.0-or-later
// From the record to the widgets: two timers, and nothing that tells anybody.
#include "editor/MainUI.h"
#include "parameters/BandParameters.h"
#include "parameters/GlobalParameters.h"

void MainUI::visibilityChanged()
{
    if (isVisible())
    {
        refresh();
        startTimer (refreshTimer, refreshMs);
        updateMeters();
        startTimer (meterTimer, meterMs);
    }
    else
    {
        stopTimer (refreshTimer);
        stopTimer (meterTimer);
    }
}

void MainUI::timerCallback (int timerId)
{
    if (timerId == refreshTimer)
        refresh();
    else if (timerId == meterTimer)
        updateMeters();
}

void MainUI::updateMeters()
{
    auto& settings = processor->activeSettings();

    for (int i = 0; i < numBands; ++i)
    {
        const auto isGainReduction = settings.bands[i].meter == ChannelSettings::meterControl;
        const auto value = isGainReduction ? settings.gainReduction (i) : settings.level (i);
        bands[static_cast<size_t> (i)].meter->update (static_cast<float> (value), isGainReduction);
    }
}

void MainUI::refresh()
{
    constexpr auto silently = juce::dontSendNotification;
    const auto& settings = processor->activeSettings();

    // Each field is read once, so that knob and text of a tick agree while automation writes.
    const auto mixShare = settings.mix;
    const auto hpfHz = settings.hpfHz, lowHz = settings.lowXOverHz, highHz = settings.highXOverHz;
    const auto masterDb = settings.masterGainDb.target;

    for (int i = 0; i < numBands; ++i)
        refreshBand (i, settings.bands[i]);

    // In float, as the host's own text has it: 0.29 shows 29.
    mix->showValue (MixParameter::toPosition (mixShare));
    mixReadout->setText (juce::String (NumberText::toInt (static_cast<float> (mixShare) * 100.0f)) + " %", silently);

    highPass->showValue (HPFParameter::Scale::toPosition (hpfHz));
    highPassReadout->setText (ChannelSettings::highPassIsIn (hpfHz) ? juce::String (NumberText::toInt (hpfHz)) + " Hz"
                                                                    : juce::String ("OFF"),
                              silently);

    master->showValue (MasterGainParameter::toPosition (masterDb));
    masterReadout->setText (NumberText::fixed (masterDb, 1) + " dB", silently);

    lowXOver->showValue (LowXOverParameter::Scale::toPosition (lowHz));
    setDigits (lowHz, *lowXOverGhost, *lowXOverDigits);
    highXOver->showValue (HighXOverParameter::Scale::toPosition (highHz));
    setDigits (highHz, *highXOverGhost, *highXOverDigits);

    nukeLamp->setToggleState (settings.nuke, silently);
    niveauLamp->setToggleState (settings.niveau, silently);
    linkLamp->setToggleState (settings.link, silently);

    const auto isProcessing = settings.bypass.target < 0.5;
    bypassLamp->setToggleState (isProcessing, silently);
    bypassSwitch->setToggleState (isProcessing, silently);

    refreshMidSide (settings);
}

void MainUI::refreshBand (int index, const ChannelSettings::Band& settings)
{
    constexpr auto silently = juce::dontSendNotification;
    auto& band = bands[static_cast<size_t> (index)];

    // The controls' own scales, which are the same in all bands.
    band.meterMode->showValue (MeterParameter<0>::toPosition (settings.meter));
    band.ratio->showValue (RatioParameter<0>::toPosition (settings.ratio));
    band.attack->showValue (AttackParameter<0>::toPosition (settings.attack));
    band.recovery->showValue (RecoveryParameter<0>::toPosition (settings.recovery));
    band.gain->showValue (GainParameter<0>::toPosition (settings.gainDb.target));
    band.threshold->showValue (ThresholdParameter<0>::toPosition (settings.thresholdDb.target));

    band.inLamp->setToggleState (settings.in, silently);
    band.soloLamp->setToggleState (settings.solo, silently);
}

void MainUI::refreshMidSide (const ChannelSettings& settings)
{
    const auto isStereo = processor->getTotalNumInputChannels() == 2;

    if (isStereo != stereoShown)
    {
        stereoShown = isStereo;
        showMidSide (isStereo);
    }

    if (! stereoShown)
        return;

    for (int i = 0; i < numBands; ++i)
    {
        const auto midSide = settings.bands[i].midSide;
        bands[static_cast<size_t> (i)].midLamp->setToggleState (midSide == 0.0, juce::dontSendNotification);
        bands[static_cast<size_t> (i)].sideLamp->setToggleState (midSide == 1.0, juce::dontSendNotification);
    }
}

void MainUI::showMidSide (bool shouldBeSeen)
{
    for (auto& band : bands)
        for (auto* widget :
             std::initializer_list<juce::Component*> { band.midSideButton.get(), band.midLamp.get(),
                                                       band.sideLamp.get(), band.midLabel.get(), band.sideLabel.get() })
            widget->setVisible (shouldBeSeen);
}

void MainUI::setDigits (double frequency, juce::Label& ghost, juce::Label& lit)
{
    const auto show = [&] (const char* unlit, const juce::String& text)
    {
        ghost.setText (unlit, juce::dontSendNotification);
        lit.setText (text, juce::dontSendNotification);
    };

    // The form is chosen before anything is rounded: 999.6 Hz shows 1000.
    if (frequency >= 9000.0)
        show ("88.8", NumberText::fixed (frequency * 0.001, 1));
    else if (frequency >= 1000.0)
        show ("8.88", NumberText::fixed (frequency * 0.001, 2));
    else
        show ("888", juce::String (NumberText::toInt (frequency + 0.5)));
}
