// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "editor/widgets/NVXLNF.h"
#include "editor/widgets/PictureButton.h"

#include <functional>

/** The strip below the front, 24 px at every zoom: the distributor's logo, which leads to its site, and a menu with
    manual and links. Threads: message. */
class KMBar : public juce::Component, public juce::Button::Listener
{
public:
    /** The menus' look alone. */
    class LNF : public PopupLook
    {
    };

    KMBar();
    ~KMBar() override;

    static constexpr int height = 24; // px, at every zoom

    enum MenuIds : int
    {
        manualId = 1,
        productId,
        updatesId,
        distributorId,
        brandId
    };

    juce::PopupMenu linksMenu();

    /** Does what a row of that menu stands for; ids that it has not, 0 included, do nothing. */
    void performMenuItem (int id);

    void paint (juce::Graphics&) override;
    void resized() override;
    void buttonClicked (juce::Button*) override;

    LNF lookAndFeel; // before the widgets, which use it to their end
    std::unique_ptr<PictureButton> logoButton, menuButton;

    /** Where the manual lies if it is installed, and what opens an address and a file with the system; tests put their
        own here. */
    juce::File manual;
    std::function<void (const juce::String&)> openAddress;
    std::function<void (const juce::File&)> openFile;

private:
    void showMenu();

    JUCE_DECLARE_NON_COPYABLE_WITH_LEAK_DETECTOR (KMBar)
};
