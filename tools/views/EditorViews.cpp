// SPDX-License-Identifier: GPL-3.0-or-later
#include "views/EditorViews.h"

#include "editor/CorvaneQ7Editor.h"

namespace EditorViews
{
namespace
{
using Processor = CorvaneQ7AudioProcessor;

void set (Processor& processor, const char* identifier, float normalised)
{
    processor.getParameters()[ParameterTable::indexOf (identifier)]->setValue (normalised);
}

void setInAllBands (Processor& processor, const char* control, float normalised)
{
    for (const auto* band : { "Low", "Mid", "High" })
        set (processor, (juce::String (band) + control).toRawUTF8(), normalised);
}

void setAll (Processor& processor, float normalised)
{
    for (auto* parameter : processor.getParameters())
        parameter->setValue (normalised);
}

/** A needle's place, as if its reading had stood for long. */
void restNeedles (CorvaneQ7Editor& editor, float low, float mid, float high)
{
    const float positions[] { low, mid, high };

    for (size_t band = 0; band < editor.mainUI->bands.size(); ++band)
        editor.mainUI->bands[band].meter->position = positions[band];
}

void nothing (Processor&) {}
void needlesMoving (CorvaneQ7Editor& editor) { restNeedles (editor, 0.31f, 0.52f, 0.2f); }

/** Opens a menu within the editor, and the submenu at a row of it. */
void showMenu (CorvaneQ7Editor& editor, juce::PopupMenu menu, juce::Component& at)
{
    menu.showMenuAsync (juce::PopupMenu::Options().withTargetComponent (at).withParentComponent (&editor), [] (int) {});
}

/** One submenu of the settings, as a menu of its own. */
void showSettingsSubmenu (CorvaneQ7Editor& editor, int row)
{
    auto menu = editor.toolbar->settingsMenu();
    juce::PopupMenu::MenuItemIterator rows (menu);
    int submenus = 0;

    while (rows.next())
    {
        if (auto* submenu = rows.getItem().subMenu.get(); submenu != nullptr && submenus++ == row)
        {
            submenu->setLookAndFeel (&editor.toolbar->lookAndFeel);
            showMenu (editor, *submenu, editor.toolbar->settingsButton);
            return;
        }
    }
}
} // namespace

std::vector<View> all()
{
    std::vector<View> views;

    for (const auto percent : { 70, 80, 90, 100 })
        views.push_back (
            { "zoom-" + juce::String (percent), static_cast<float> (percent) / 100.0f, 2, nothing, needlesMoving });

    const auto lampsOn = [] (Processor& processor)
    {
        for (const auto* control : { "In", "Solo" })
            setInAllBands (processor, control, 1.0f);

        setInAllBands (processor, "MidSide", 1.0f);
        set (processor, "HighMidSide", 0.0f);

        for (const auto* control : { "Nuke", "Niveau", "Link" })
            set (processor, control, 1.0f);
    };

    const auto lampsOff = [] (Processor& processor)
    {
        for (const auto* control : { "In", "Solo" })
            setInAllBands (processor, control, 0.0f);

        for (const auto* control : { "Nuke", "Niveau", "Link" })
            set (processor, control, 0.0f);

        set (processor, "Bypass", 1.0f);
    };

    views.push_back ({ "lamps-on", 1.0f, 2, lampsOn, needlesMoving });
    views.push_back ({ "lamps-off", 1.0f, 2, lampsOff, [] (CorvaneQ7Editor&) {} });
    views.push_back ({ "lowest", 1.0f, 2, [] (Processor& processor) { setAll (processor, 0.0f); },
                       [] (CorvaneQ7Editor& editor) { restNeedles (editor, 0.0f, 0.0f, 0.0f); } });
    views.push_back ({ "highest", 1.0f, 2, [] (Processor& processor) { setAll (processor, 1.0f); },
                       [] (CorvaneQ7Editor& editor) { restNeedles (editor, 1.0f, 1.0f, 1.0f); } });
    views.push_back ({ "slot-b", 1.0f, 2, [] (Processor& processor) { processor.selectSlot (1); }, needlesMoving });
    views.push_back ({ "mono", 1.0f, 1, nothing, needlesMoving });
    views.push_back ({ "about", 1.0f, 2, nothing, [] (CorvaneQ7Editor& editor) { editor.openDialog (0); } });
    views.push_back ({ "about-70", 0.7f, 2, nothing, [] (CorvaneQ7Editor& editor) { editor.openDialog (0); } });
    views.push_back ({ "menu-settings", 1.0f, 2, nothing, [] (CorvaneQ7Editor& editor) {
                          showMenu (editor, editor.toolbar->settingsMenu(), editor.toolbar->settingsButton);
                      }, true });
    views.push_back (
        { "menu-calibration", 1.0f, 2, nothing, [] (CorvaneQ7Editor& editor) { showSettingsSubmenu (editor, 0); }, true });
    views.push_back (
        { "menu-oversampling", 1.0f, 2, nothing, [] (CorvaneQ7Editor& editor) { showSettingsSubmenu (editor, 1); }, true });
    views.push_back (
        { "menu-zoom", 0.7f, 2, nothing, [] (CorvaneQ7Editor& editor) { showSettingsSubmenu (editor, 2); }, true });
    views.push_back ({ "menu-links", 1.0f, 2, nothing, [] (CorvaneQ7Editor& editor) {
                          showMenu (editor, editor.bar->linksMenu(), *editor.bar->menuButton);
                      }, true });

    return views;
}

juce::Image paint (const View& view, float pixelScale)
{
    Processor processor;
    processor.setPlayConfigDetails (view.channels, view.channels, 48000.0, 512);
    processor.uiZoom = view.zoom;
    view.prepare (processor);

    CorvaneQ7Editor editor (processor);
    // The size of the zoom itself, whatever screen the machine has.
    const auto size = CorvaneQ7Editor::sizeFor (view.zoom, { 0, 0, 3840, 2160 });
    editor.setSize (size.x, size.y);
    editor.mainUI->refresh();
    view.arrange (editor);

    const auto image = editor.createComponentSnapshot (editor.getLocalBounds(), true, pixelScale);
    juce::PopupMenu::dismissAllActiveMenus();
    return image;
}
} // namespace EditorViews
