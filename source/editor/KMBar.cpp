// SPDX-License-Identifier: GPL-3.0-or-later
#include "editor/KMBar.h"

#include "editor/ProductLinks.h"

namespace
{
constexpr int logoWidth = 114, keySize = 24;
} // namespace

KMBar::KMBar()
    : logoButton (std::make_unique<PictureButton> (Assets::barLogo())),
      menuButton (std::make_unique<PictureButton> (Assets::barMenu())), manual (ProductLinks::manual()),
      openAddress ([] (const juce::String& address) { juce::URL (address).launchInDefaultBrowser(); }),
      openFile ([] (const juce::File& file) { file.startAsProcess(); })
{
    setOpaque (true);
    setLookAndFeel (&lookAndFeel);
    logoButton->setTitle (ProductLinks::distributorName);
    menuButton->setTitle ("Manual and links");

    for (auto* button : { logoButton.get(), menuButton.get() })
    {
        button->addListener (this);
        addAndMakeVisible (*button);
    }
}

KMBar::~KMBar()
{
    lookAndFeel.releaseMenusIn (getParentComponent());
    setLookAndFeel (nullptr);
}

void KMBar::paint (juce::Graphics& g) { g.fillAll (juce::Colours::black); }

void KMBar::resized()
{
    logoButton->setBounds (0, 0, logoWidth, height);
    menuButton->setBounds (getWidth() - keySize, 0, keySize, keySize);
}

void KMBar::buttonClicked (juce::Button* button)
{
    if (button == logoButton.get())
        openAddress (ProductLinks::distributorHome);
    else if (button == menuButton.get())
        showMenu();
}

juce::PopupMenu KMBar::linksMenu()
{
    juce::PopupMenu menu;
    menu.setLookAndFeel (&lookAndFeel);
    menu.addItem (manualId, "Open Manual...");
    menu.addSeparator();
    menu.addItem (productId, "Product Info...");
    menu.addItem (updatesId, "Download Updates...");
    menu.addItem (distributorId, juce::String (ProductLinks::distributorName) + " Website...");
    menu.addItem (brandId, juce::String (ProductLinks::brandName) + " Website...");
    return menu;
}

void KMBar::performMenuItem (int id)
{
    switch (id)
    {
        case manualId:
            if (manual.existsAsFile())
                openFile (manual);
            break;
        case productId: openAddress (ProductLinks::productPage()); break;
        case updatesId: openAddress (ProductLinks::downloadPage()); break;
        case distributorId: openAddress (ProductLinks::distributorHome); break;
        case brandId: openAddress (ProductLinks::brandHome); break;
        default: break;
    }
}

void KMBar::showMenu()
{
    // Within the editor: no window of its own that could outlive us, and see-through corners on every screen.
    const auto options = juce::PopupMenu::Options()
                             .withTargetComponent (*menuButton)
                             .withParentComponent (getParentComponent())
                             .withDeletionCheck (*this);

    linksMenu().showMenuAsync (options,
                               [safe = SafePointer<KMBar> (this)] (int id)
                               {
                                   if (safe != nullptr)
                                       safe->performMenuItem (id);
                               });
}
