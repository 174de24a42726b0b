// SPDX-License-Identifier: GPL-3.0-or-later
#include "editor/MainUI.h"

#include "parameters/NumberText.h"

#include <cmath>
#include <utility>

namespace
{
namespace Layout = MainUILayout;

const juce::Colour readoutColour { 0xe6ffffff };
const juce::Colour ghostColour { 0xff3c0404 };
const juce::Colour litColour { 0xffff0000 };

constexpr const char* bandNames[] { "Low", "Mid", "High" };

double clampedShare (double x) noexcept { return juce::jlimit (0.0, 1.0, x); }
} // namespace

// ---- making ------------------------------------------------------------------------------------
MainUI::MainUI (CorvaneQ7AudioProcessor& processorToShow) : NVXUI (processorToShow), background (Assets::front())
{
    setOpaque (true);
    setLookAndFeel (&lookAndFeel);
    createWidgets();
    setTravels();
    bindControls();
    setDefaults();
    describeControls();

    digits = juce::Font (Assets::segment7()).withHeight (14.0f);

    for (auto* label : { lowXOverGhost.get(), highXOverGhost.get(), lowXOverDigits.get(), highXOverDigits.get() })
        label->setFont (digits.withHeight (22.0f));

    setSize (Layout::baseWidth, Layout::baseHeight);

    for (const auto& entry : controlsOfParameter)
        for (auto* control : entry.second)
            if (auto* button = dynamic_cast<NVXButton*> (control))
                button->addListener (this);
}

MainUI::~MainUI()
{
    stopTimer (refreshTimer);
    stopTimer (meterTimer);
    setLookAndFeel (nullptr);

    // A knob that is held while it goes ends its drag: the gestures close themselves, and nobody shall be called here.
    for (const auto& entry : parameterOfControl)
        if (auto* slider = dynamic_cast<juce::Slider*> (entry.first))
            slider->removeListener (this);
}

template <typename Widget>
void MainUI::add (std::unique_ptr<Widget>& widget)
{
    addAndMakeVisible (*widget);
}

template <typename Knob>
void MainUI::addKnob (std::unique_ptr<NVXSlider>& knob)
{
    knob = std::make_unique<Knob>();
    knob->setTextBoxStyle (juce::Slider::NoTextBox, false, 80, 20);
    knob->addListener (this);
    add (knob);
}

void MainUI::addLabel (std::unique_ptr<juce::Label>& label, juce::Justification justification, juce::Colour colour)
{
    label = std::make_unique<juce::Label>();
    label->setEditable (false, false, false);
    label->setJustificationType (justification);
    label->setColour (juce::Label::textColourId, colour);
    label->setAccessible (false); // the control that it belongs to says the same, with a name
    add (label);
}

void MainUI::addLamp (std::unique_ptr<PictureButton>& lamp, const Assets::TwoStates& images, bool takesClicks)
{
    lamp = std::make_unique<PictureButton> (images);
    lamp->tellsState = true;
    lamp->setInterceptsMouseClicks (takesClicks, takesClicks);
    lamp->addListener (this);
    add (lamp);
}

void MainUI::createWidgets()
{
    const auto centred = juce::Justification::centred, right = juce::Justification::centredRight;

    // What is made later lies above.
    addLabel (masterReadout, centred, readoutColour);
    addLabel (mixReadout, centred, readoutColour);
    addLabel (highPassReadout, centred, readoutColour);
    addLamp (bypassLamp, Assets::greenLamp(), true);

    for (auto& band : bands)
    {
        addLabel (band.sideLabel, centred, readoutColour);
        addLabel (band.midLabel, centred, readoutColour);
        band.sideLabel->setText ("S", juce::dontSendNotification);
        band.midLabel->setText ("M", juce::dontSendNotification);
    }

    addLabel (lowXOverGhost, right, ghostColour);
    addLabel (highXOverGhost, right, ghostColour);
    lowXOverGhost->setText ("8888", juce::dontSendNotification);
    highXOverGhost->setText ("8888", juce::dontSendNotification);

    for (auto& band : bands)
    {
        band.meter = std::make_unique<VertMeter>();
        add (band.meter);
    }

    for (auto& band : bands)
    {
        addKnob<BigKnob> (band.ratio);
        addKnob<BigKnob> (band.attack);
        addKnob<BigKnob> (band.recovery);
        addKnob<MidKnob> (band.gain);
        addKnob<MidKnob> (band.threshold);
        addKnob<SmallKnob> (band.meterMode);
    }

    addKnob<MidKnob> (highPass);
    addKnob<MidKnob> (mix);
    addKnob<MidKnob> (master);
    addKnob<SmallKnob> (lowXOver);
    addKnob<SmallKnob> (highXOver);

    bypassSwitch = std::make_unique<InButton>();
    add (bypassSwitch);

    for (auto& band : bands)
    {
        addLamp (band.inLamp, Assets::greenLamp(), false);
        addLamp (band.soloLamp, Assets::redLamp(), false);
    }

    addLamp (nukeLamp, Assets::redLamp(), false);
    addLamp (linkLamp, Assets::greenLamp(), false);
    addLabel (lowXOverDigits, right, litColour);
    addLabel (highXOverDigits, right, litColour);
    addLamp (niveauLamp, Assets::yellowLamp(), false);

    for (auto& band : bands)
    {
        addLamp (band.midLamp, Assets::yellowLamp(), true);
        addLamp (band.sideLamp, Assets::yellowLamp(), true);
    }

    for (auto& band : bands)
    {
        band.inButton = std::make_unique<BandInButton>();
        add (band.inButton);
        band.soloButton = std::make_unique<SoloButton>();
        add (band.soloButton);
        band.midSideButton = std::make_unique<MSButton>();
        add (band.midSideButton);
    }

    nukeButton = std::make_unique<NukeButton>();
    add (nukeButton);
    niveauButton = std::make_unique<NiveauButton>();
    add (niveauButton);
    linkButton = std::make_unique<LinkButton>();
    add (linkButton);

    // The first refresh shows these where there are two channels.
    showMidSide (false);
}

void MainUI::setTravels()
{
    for (auto& band : bands)
    {
        band.ratio->setTravel (Layout::ratioTravel);
        band.attack->setTravel (Layout::attackTravel);
        band.recovery->setTravel (Layout::recoveryTravel);
        band.gain->setTravel (Layout::gainTravel);
        band.threshold->setTravel (Layout::thresholdTravel);
        band.meterMode->setTravel (Layout::meterModeTravel);
    }

    master->setTravel (Layout::masterTravel);

    for (auto* knob : { highPass.get(), mix.get(), lowXOver.get(), highXOver.get() })
        knob->setTravel (Layout::continuousTravel);
}

void MainUI::bindControls()
{
    int index = 0;

    // The order is the parameters' own.
    for (auto& band : bands)
    {
        juce::Component* const controls[] { band.meterMode.get(),     band.inButton.get(), band.soloButton.get(),
                                            band.midSideButton.get(), band.gain.get(),     band.ratio.get(),
                                            band.threshold.get(),     band.attack.get(),   band.recovery.get() };

        for (auto* control : controls)
            bindControl (index++, control);
    }

    const std::pair<const char*, juce::Component*> globals[] { { "Mix", mix.get() },
                                                               { "HPF", highPass.get() },
                                                               { "MasterGain", master.get() },
                                                               { "LowXOver", lowXOver.get() },
                                                               { "HighXOver", highXOver.get() },
                                                               { "Nuke", nukeButton.get() },
                                                               { "Niveau", niveauButton.get() },
                                                               { "Link", linkButton.get() },
                                                               { "Bypass", bypassSwitch.get() } };

    for (const auto& [identifier, control] : globals)
        bindControl (ParameterTable::indexOf (identifier), control);
}

void MainUI::setDefaults()
{
    for (const auto& [index, controls] : controlsOfParameter)
    {
        if (controls.size() != 1)
            continue;

        const auto value = processor->getParameterDefaultValue (index);

        if (auto* button = dynamic_cast<NVXButton*> (controls.front()))
        {
            button->hasDefault = true;
            button->defaultState = value >= 0.5f;
        }
        else if (auto* slider = dynamic_cast<juce::Slider*> (controls.front()))
        {
            const auto shown = processor->isParameterOrientationInverted (index) ? 1.0f - value : value;
            // With no modifier named, a click with Alt stays a click.
            slider->setDoubleClickReturnValue (true, static_cast<double> (shown), juce::ModifierKeys());
        }
    }
}

/** Names and values for screen readers, in the hosts' own words. */
void MainUI::describeControls()
{
    for (const auto& [index, controls] : controlsOfParameter)
    {
        const auto* parameter = processor->getParameters()[index];
        const auto title = parameter->getName (64).replace ("XOverParameter", "Crossover");

        for (auto* control : controls)
        {
            control->setTitle (title);

            if (auto* slider = dynamic_cast<juce::Slider*> (control))
            {
                // A snapped slider stands beside the control's own value by a hair, which can tip a text.
                slider->textFromValueFunction = [parameter, slider] (double value) {
                    return parameter->getText (
                        value == slider->getValue() ? parameter->getValue() : static_cast<float> (value), 64);
                };
                slider->valueFromTextFunction = [parameter] (const juce::String& text)
                { return static_cast<double> (parameter->getValueForText (text)); };
            }
            else if (auto* button = dynamic_cast<NVXButton*> (control))
            {
                button->valueText = [parameter] { return parameter->getText (parameter->getValue(), 64); };
            }
        }
    }

    for (int i = 0; i < numBands; ++i)
    {
        auto& band = bands[static_cast<size_t> (i)];
        const juce::String name (bandNames[i]);
        band.meter->setTitle (name + " Meter Reading");
        band.midLamp->setTitle (name + " Mid Only");
        band.sideLamp->setTitle (name + " Side Only");

        // The buttons beside them say the same.
        band.inLamp->setAccessible (false);
        band.soloLamp->setAccessible (false);
    }

    for (auto* lamp : { bypassLamp.get(), nukeLamp.get(), niveauLamp.get(), linkLamp.get() })
        lamp->setAccessible (false);
}

// ---- showing -----------------------------------------------------------------------------------
void MainUI::paint (juce::Graphics& g)
{
    g.fillAll (juce::Colours::white);
    g.setColour (juce::Colours::black);
    g.drawImage (background, getLocalBounds().toFloat());
}

void MainUI::resized()
{
    const auto width = getWidth(), height = getHeight();
    const auto put = [=] (juce::Component& widget, const Layout::Place& place)
    { widget.setBounds (place.in (width, height)); };
    const auto putCentred = [=] (juce::Component& widget, const Layout::Place& place)
    { widget.setBounds (place.centredIn (width, height)); };

    for (int i = 0; i < numBands; ++i)
    {
        auto& band = bands[static_cast<size_t> (i)];
        put (*band.threshold, Layout::threshold.of (i));
        put (*band.gain, Layout::gain.of (i));
        put (*band.ratio, Layout::ratio.of (i));
        put (*band.attack, Layout::attack.of (i));
        put (*band.recovery, Layout::recovery.of (i));
        put (*band.meterMode, Layout::meterMode.of (i));
        put (*band.inButton, Layout::inButton.of (i));
        put (*band.soloButton, Layout::soloButton.of (i));
        put (*band.midSideButton, Layout::midSideButton.of (i));
        put (*band.inLamp, Layout::inLamp.of (i));
        put (*band.soloLamp, Layout::soloLamp.of (i));
        put (*band.midLamp, Layout::midLamp.of (i));
        put (*band.sideLamp, Layout::sideLamp.of (i));
        put (*band.midLabel, Layout::midLabelOf (i));
        put (*band.sideLabel, Layout::sideLabel.of (i));
        put (*band.meter, Layout::meter.of (i));
    }

    put (*highPass, Layout::highPass);
    put (*mix, Layout::mix);
    put (*master, Layout::master);
    put (*lowXOver, Layout::lowXOver);
    put (*highXOver, Layout::highXOver);
    put (*bypassSwitch, Layout::bypassSwitch);
    put (*bypassLamp, Layout::bypassLamp);
    put (*nukeButton, Layout::nukeButton);
    put (*niveauButton, Layout::niveauButton);
    put (*linkButton, Layout::linkButton);
    put (*nukeLamp, Layout::nukeLamp);
    put (*niveauLamp, Layout::niveauLamp);
    put (*linkLamp, Layout::linkLamp);

    putCentred (*masterReadout, Layout::masterReadout);
    putCentred (*mixReadout, Layout::mixReadout);
    putCentred (*highPassReadout, Layout::highPassReadout);
    putCentred (*lowXOverGhost, Layout::lowXOverDigits);
    putCentred (*lowXOverDigits, Layout::lowXOverDigits);
    putCentred (*highXOverGhost, Layout::highXOverDigits);
    putCentred (*highXOverDigits, Layout::highXOverDigits);

    const auto digitFont = digits.withHeight (static_cast<float> (height) * Layout::digitHeight);

    for (auto* label : { lowXOverGhost.get(), highXOverGhost.get(), lowXOverDigits.get(), highXOverDigits.get() })
        label->setFont (digitFont);

    const juce::Font textFont ("Arial", static_cast<float> (height) * Layout::textHeight, juce::Font::plain);

    for (auto* label : { masterReadout.get(), mixReadout.get(), highPassReadout.get() })
        label->setFont (textFont);

    for (auto& band : bands)
    {
        band.midLabel->setFont (textFont);
        band.sideLabel->setFont (textFont);
    }

    moveHighlights();
}

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

// ---- the user's doing --------------------------------------------------------------------------
void MainUI::sliderValueChanged (juce::Slider* slider)
{
    const auto index = getControlParameterIndex (*slider);

    if (index < 0)
        return;

    const auto value = static_cast<float> (slider->getValue());
    processor->setParameterNotifyingHost (index,
                                          processor->isParameterOrientationInverted (index) ? 1.0f - value : value);
}

void MainUI::sliderDragStarted (juce::Slider* slider)
{
    const auto index = getControlParameterIndex (*slider);
    const auto* knob = dynamic_cast<NVXSlider*> (slider);

    if (index < 0 || (knob != nullptr && knob->isWheelMoving()))
        return;

    std::vector<int> held { index };

    // A linked control moves its two siblings: hosts that record automation want to know of those as well.
    if (processor->activeSettings().link && ParameterTable::isBandControl (index) && ! processor->hostWantsSilentLink())
        for (const auto sibling : ParameterTable::siblingsOf (index))
            held.push_back (sibling);

    gestures.begin (slider, std::move (held));
}

void MainUI::sliderDragEnded (juce::Slider* slider) { gestures.end (slider); }

template <typename Change>
void MainUI::changeParameter (int index, Change change)
{
    const auto& parameters = processor->getParameters();

    if (! juce::isPositiveAndBelow (index, parameters.size()))
        return;

    // From the parameter and not from the button, so that automation which moved meanwhile counts.
    auto* parameter = parameters[index];
    parameter->beginChangeGesture();
    parameter->setValueNotifyingHost (change (parameter->getValue()));
    parameter->endChangeGesture();
}

void MainUI::buttonClicked (juce::Button* button)
{
    if (clickedMidSideLamp (button))
        return;

    const auto index = getControlParameterIndex (*button);

    if (index < 0)
        return;

    if (dynamic_cast<MSButton*> (button) != nullptr)
        changeParameter (index, [] (float value) { return value + 0.5f > 1.0f ? 0.0f : value + 0.5f; });
    else
        changeParameter (index, [] (float value) { return 1.0f - value; });
}

bool MainUI::clickedMidSideLamp (juce::Button* button)
{
    for (auto& band : bands)
    {
        const auto isMid = button == band.midLamp.get();

        if (! isMid && button != band.sideLamp.get())
            continue;

        const auto index = getControlParameterIndex (*band.midSideButton);

        if (isMid)
            changeParameter (index, [] (float value) { return value > 0.0f ? 0.0f : 0.5f; });
        else
            changeParameter (index, [] (float value) { return value < 1.0f ? 1.0f : 0.5f; });

        button->setToggleState (! button->getToggleState(), juce::dontSendNotification);
        return true;
    }

    return false;
}
