// SPDX-License-Identifier: GPL-3.0-or-later
#include "editor/KMBar.h"

#include "assets/Assets.h"
#include "editor/ProductLinks.h"

namespace
{
constexpr int logoWidth = 114, keySize = 24;

std::unique_ptr<juce::ImageButton> twoStateButton (const Assets::TwoStates& images)
{
    constexpr auto opaque = 1.0f; // the framework paints nothing at an opacity of 0
    const auto noTint = juce::Colours::transparentBlack;

    auto button = std::make_unique<juce::ImageButton>();
    button->setImages (false, true, true, images.off, opaque, noTint, {}, opaque, noTint, images.on, opaque, noTint);
    return button;
}
} // namespace

void KMBar::LNF::drawPopupMenuBackground (juce::Graphics& g, int width, int height)
{
    PopupStyle::drawBackground (g, width, height);
}

void KMBar::LNF::drawPopupMenuItem (juce::Graphics& g, const juce::Rectangle<int>& area, bool isSeparator,
                                    bool isActive, bool isHighlighted, bool isTicked, bool hasSubMenu,
                                    const juce::String& text, const juce::String& shortcutKeyText,
                                    const juce::Drawable* icon, const juce::Colour* textColour)
{
    if (isSeparator)
        LookAndFeel_V3::drawPopupMenuItem (g, area, true, isActive, isHighlighted, isTicked, hasSubMenu, text,
                                           shortcutKeyText, icon, textColour);
    else
        PopupStyle::drawRow (g, *this, area, isActive, isHighlighted, isTicked, hasSubMenu, text, shortcutKeyText, icon,
                             textColour);
}

KMBar::KMBar()
    : logoButton (twoStateButton (Assets::barLogo())), menuButton (twoStateButton (Assets::barMenu())),
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

KMBar::~KMBar() { setLookAndFeel (nullptr); }

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
    menu.addItem (distributorId, "Harbor Guild Website...");
    menu.addItem (brandId, "Corvane Plugins Website...");
    return menu;
}

void KMBar::performMenuItem (int id)
{
    switch (id)
    {
        case manualId:
            if (const auto file = ProductLinks::manual(); file.existsAsFile())
                openFile (file);
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
    // Within the editor: no window of its own that could outlive it or lose its corners, and it closes with us.
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
