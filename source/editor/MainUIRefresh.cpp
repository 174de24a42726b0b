// SPDX-License-Identifier: GPL-3.0-or-later
// From the record to the widgets: two timers, and nothing that tells anybody.
#include "editor/MainUI.h"
#include "parameters/NumberText.h"

#include <cmath>

namespace
{
double clampedShare (double x) noexcept { return juce::jlimit (0.0, 1.0, x); }
} // namespace

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
    mix->showValue (clampedShare (mixShare));
    mixReadout->setText (juce::String (NumberText::toInt (static_cast<float> (mixShare) * 100.0f)) + " %", silently);

    highPass->showValue (std::log10 (hpfHz / 20.0) / 1.3979400087);
    highPassReadout->setText (hpfHz >= 20.01 ? juce::String (NumberText::toInt (hpfHz)) + " Hz" : juce::String ("OFF"),
                              silently);

    master->showValue (clampedShare ((masterDb + 10.0) / 30.0));
    masterReadout->setText (NumberText::fixed (masterDb, 1) + " dB", silently);

    lowXOver->showValue (std::log10 (lowHz / 50.0) * 0.5);
    setDigits (lowHz, *lowXOverGhost, *lowXOverDigits);
    highXOver->showValue (std::log10 (highHz / 200.0) / 1.778151250383644);
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

    band.meterMode->showValue (settings.meter * 0.5);
    band.inLamp->setToggleState (settings.in, silently);
    band.soloLamp->setToggleState (settings.solo, silently);

    // Gain and threshold stand on the grids that their controls have.
    const auto wholeDb = std::floor (settings.gainDb.target + 0.5);
    band.gain->showValue (clampedShare ((wholeDb + 1.0) / 21.0));
    const auto evenDb = 2.0 * std::floor (settings.thresholdDb.target / 2.0 + 0.5);
    band.threshold->showValue (clampedShare ((evenDb + 20.0) / 30.0));

    band.ratio->showValue (settings.ratio * 0.25);
    band.attack->showValue (settings.attack / 3.0);
    band.recovery->showValue (settings.recovery * 0.25);
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
