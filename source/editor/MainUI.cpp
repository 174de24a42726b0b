// SPDX-License-Identifier: GPL-3.0-or-later
// The front itself: its widgets, how they turn, what they belong to, and where they stand.
#include "editor/MainUI.h"

#include <utility>

namespace
{
namespace Layout = MainUILayout;

const juce::Colour readoutColour { 0xe6ffffff };
const juce::Colour ghostColour { 0xff3c0404 };
const juce::Colour litColour { 0xffff0000 };

constexpr const char* bandNames[] { "Low", "Mid", "High" };
} // namespace

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
    const auto bind = [this] (const juce::String& identifier, juce::Component* control)
    {
        const auto index = ParameterTable::indexOf (identifier.toRawUTF8());
        jassert (index >= 0);
        bindControl (index, control);
    };

    for (int i = 0; i < numBands; ++i)
    {
        auto& band = bands[static_cast<size_t> (i)];
        const juce::String name (bandNames[i]);

        bind (name + "Meter", band.meterMode.get());
        bind (name + "In", band.inButton.get());
        bind (name + "Solo", band.soloButton.get());
        bind (name + "MidSide", band.midSideButton.get());
        bind (name + "Gain", band.gain.get());
        bind (name + "Ratio", band.ratio.get());
        bind (name + "Threshold", band.threshold.get());
        bind (name + "Attack", band.attack.get());
        bind (name + "Recovery", band.recovery.get());
    }

    bind ("Mix", mix.get());
    bind ("HPF", highPass.get());
    bind ("MasterGain", master.get());
    bind ("LowXOver", lowXOver.get());
    bind ("HighXOver", highXOver.get());
    bind ("Nuke", nukeButton.get());
    bind ("Niveau", niveauButton.get());
    bind ("Link", linkButton.get());
    bind ("Bypass", bypassSwitch.get());
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
