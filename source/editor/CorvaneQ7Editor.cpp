// SPDX-License-Identifier: GPL-3.0-or-later
#include "editor/CorvaneQ7Editor.h"

#include "editor/ProductLinks.h"
#include "parameters/NumberText.h"

#include <algorithm>

namespace
{
/** No control takes the keyboard from the host. */
void refuseKeyboardFocus (juce::Component& component)
{
    for (auto* child : component.getChildren())
    {
        child->setWantsKeyboardFocus (false);
        refuseKeyboardFocus (*child);
    }
}
} // namespace

CorvaneQ7Editor::CorvaneQ7Editor (CorvaneQ7AudioProcessor& processorToShow)
    : juce::AudioProcessorEditor (processorToShow), owner (processorToShow)
{
    setOpaque (true);

    bar = std::make_unique<KMBar>();
    addAndMakeVisible (*bar);
    bar->setSize (600, KMBar::height);

    toolbar = std::make_unique<TopToolbar> (processorToShow);
    addAndMakeVisible (*toolbar);
    toolbar->setSize (540, TopToolbar::height);

    mainUI = std::make_unique<MainUI> (processorToShow);
    addAndMakeVisible (*mainUI);

    about = std::make_unique<About>();
    addAndMakeVisible (*about);
    about->title.setText (juce::String (ProductLinks::productName) + " v. " + CORVANE_VERSION,
                          juce::dontSendNotification);

    toolbar->dialogListener = this;
    mainUI->dialogListener = this;
    about->setVisible (false);
    refuseKeyboardFocus (*this);
    applyZoom();
}

void CorvaneQ7Editor::paint (juce::Graphics& g) { g.fillAll (juce::Colours::white); }

void CorvaneQ7Editor::resized()
{
    const auto width = getWidth(), height = getHeight();

    toolbar->setBounds (0, 0, width, TopToolbar::height);
    bar->setBounds (0, height - KMBar::height, width, KMBar::height);
    mainUI->setBounds (0, TopToolbar::height, width, height - TopToolbar::height - KMBar::height);
    about->setBounds (width / 2 - About::boxWidth / 2, height / 2 - About::boxHeight / 2, About::boxWidth,
                      About::boxHeight);
}

void CorvaneQ7Editor::setControlHighlight (ParameterControlHighlightInfo info)
{
    toolbar->setControlHighlight (info);
    mainUI->setControlHighlight (info);
}

int CorvaneQ7Editor::getControlParameterIndex (juce::Component& control)
{
    const auto index = mainUI->getControlParameterIndex (control);
    return index >= 0 ? index : toolbar->getControlParameterIndex (control);
}

void CorvaneQ7Editor::openDialog (int dialogId)
{
    if (dialogId == aboutBox)
        about->setVisible (true);
}

void CorvaneQ7Editor::closeDialog (int dialogId)
{
    if (dialogId == aboutBox)
        about->setVisible (false);
}

juce::Rectangle<int> CorvaneQ7Editor::monitorArea() const
{
    // Without a screen there is no display at all: bundles are opened so when they are built and checked.
    const auto* display = juce::Desktop::getInstance().getDisplays().getDisplayForRect (getScreenBounds());
    return display != nullptr ? display->userArea : juce::Rectangle<int> (0, 0, 1920, 1080);
}

juce::Point<int> CorvaneQ7Editor::sizeFor (float zoom, juce::Rectangle<int> monitor) noexcept
{
    const auto monitorWidth = static_cast<double> (monitor.getWidth());
    const auto monitorHeight = static_cast<double> (monitor.getHeight());
    const auto limitWidth = std::min (monitorWidth, monitorHeight * aspectRatio);
    const auto limitHeight = std::min (monitorHeight, monitorWidth / aspectRatio);
    const auto factor = usableZoom (zoom);

    // Truncated, and the factor's product in single precision.
    const auto side = [factor] (int base, double limit)
    {
        return std::min (NumberText::toInt (factor * static_cast<float> (base)),
                         NumberText::toInt (limit * screenFraction));
    };

    return { side (baseWidth, limitWidth), side (baseHeight, limitHeight) };
}

void CorvaneQ7Editor::applyZoom()
{
    const auto size = sizeFor (owner.uiZoom, monitorArea());
    setSize (size.x, size.y);
}
