// SPDX-License-Identifier: GPL-3.0-or-later
#include "views/EditorViews.h"

#include "assets/Assets.h"
#include "editor/CorvaneQ7Editor.h"

#include <cstdlib>

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

/** The menu or submenu that was opened last: the framework puts them into the editor, under this name. */
juce::Component* openMenu (CorvaneQ7Editor& editor)
{
    const auto& children = editor.getChildren();

    for (int i = children.size(); --i >= 0;)
        if (children[i]->getName() == "menu")
            return children[i];

    return nullptr;
}

void showSettings (CorvaneQ7Editor& editor) { editor.toolbar->buttonClicked (&editor.toolbar->settingsButton); }
void showLinks (CorvaneQ7Editor& editor) { editor.bar->buttonClicked (editor.bar->menuButton.get()); }

/** Walks the settings with the arrow keys, as a user can, to the row with a submenu and into it. */
auto showSettingsSubmenu (int row)
{
    return [row] (CorvaneQ7Editor& editor)
    {
        showSettings (editor);

        if (auto* menu = openMenu (editor))
        {
            for (int i = 0; i <= row; ++i)
                menu->keyPressed (juce::KeyPress (juce::KeyPress::downKey));

            menu->keyPressed (juce::KeyPress (juce::KeyPress::rightKey));
        }
    };
}

void showAbout (CorvaneQ7Editor& editor) { editor.openDialog (DialogListener::aboutBox); }

/** Collects the areas of a component's children that are written in fonts of the system. */
void findSystemText (const juce::Component& component, const juce::Component& top,
                     std::vector<juce::Rectangle<int>>& areas)
{
    static const auto ownFace = Assets::segment7()->getName();

    for (auto* child : component.getChildren())
    {
        if (! child->isVisible())
            continue;

        const auto* label = dynamic_cast<const juce::Label*> (child);

        if ((label != nullptr && label->getFont().getTypefaceName() != ownFace) || child->getName() == "menu"
            || dynamic_cast<const juce::HyperlinkButton*> (child) != nullptr)
            areas.push_back (top.getLocalArea (child, child->getLocalBounds()));
        else
            findSystemText (*child, top, areas);
    }
}

constexpr const char* knownFonts = "/usr/share/fonts/truetype/liberation";
} // namespace

std::vector<View> all()
{
    std::vector<View> views;

    const auto add = [&] (const char* name, float zoom, void (*prepare) (Processor&),
                          std::function<void (CorvaneQ7Editor&)> arrange) -> View&
    {
        views.push_back ({ name, zoom, 2, prepare, std::move (arrange) });
        return views.back();
    };

    const auto addMenu = [&] (const char* name, float zoom, std::function<void (CorvaneQ7Editor&)> arrange) -> View&
    {
        auto& view = add (name, zoom, nothing, std::move (arrange));
        view.needsScreen = true;
        return view;
    };

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

    add ("zoom-70", 0.7f, nothing, needlesMoving).isReference = true;
    add ("zoom-80", 0.8f, nothing, needlesMoving);
    add ("zoom-90", 0.9f, nothing, needlesMoving);
    add ("zoom-100", 1.0f, nothing, needlesMoving).isReference = true;
    add ("hidpi", 1.0f, nothing, needlesMoving).pixelScale = 2.0f;
    add ("lamps-on", 1.0f, lampsOn, needlesMoving).isReference = true;
    add ("lamps-off", 1.0f, lampsOff, [] (CorvaneQ7Editor&) {});
    add (
        "lowest", 1.0f, [] (Processor& processor) { setAll (processor, 0.0f); },
        [] (CorvaneQ7Editor& editor) { restNeedles (editor, 0.0f, 0.0f, 0.0f); })
        .isReference = true;
    add (
        "highest", 1.0f, [] (Processor& processor) { setAll (processor, 1.0f); },
        [] (CorvaneQ7Editor& editor) { restNeedles (editor, 1.0f, 1.0f, 1.0f); })
        .isReference = true;
    add (
        "slot-b", 1.0f, [] (Processor& processor) { processor.selectSlot (1); }, needlesMoving);

    auto& mono = add ("mono", 1.0f, nothing, needlesMoving);
    mono.channels = 1;
    mono.isReference = true;

    add ("about", 1.0f, nothing, showAbout);
    add ("about-70", 0.7f, nothing, showAbout).isReference = true;

    addMenu ("menu-settings", 1.0f, showSettings);
    addMenu ("menu-calibration", 1.0f, showSettingsSubmenu (1));
    addMenu ("menu-oversampling", 1.0f, showSettingsSubmenu (2));
    addMenu ("menu-zoom", 1.0f, showSettingsSubmenu (3));
    addMenu ("menu-zoom-70", 0.7f, showSettingsSubmenu (3)).isReference = true;
    addMenu ("menu-links", 1.0f, showLinks);
    addMenu ("menu-links-70", 0.7f, showLinks);

    return views;
}

Picture take (const View& view, float pixelScale)
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
    editor.toolbar->refresh();
    view.arrange (editor);

    const auto scale = pixelScale * view.pixelScale;
    Picture picture { editor.createComponentSnapshot (editor.getLocalBounds(), true, scale), {} };
    findSystemText (editor, editor, picture.systemText);

    for (auto& area : picture.systemText)
        area = (area.toFloat() * scale).getSmallestIntegerContainer();

    juce::PopupMenu::dismissAllActiveMenus();
    return picture;
}

bool useKnownFonts()
{
    const auto areThere = juce::File (knownFonts).isDirectory();

#if JUCE_LINUX
    if (areThere)
        ::setenv ("JUCE_FONT_PATH", knownFonts, 1);
#endif

    return areThere;
}

bool writePng (const juce::Image& image, const juce::File& file)
{
    file.deleteFile();
    juce::FileOutputStream stream (file);
    // The editor covers all of its window: no transparency to keep.
    return stream.openedOk()
           && juce::PNGImageFormat().writeImageToStream (image.convertedToFormat (juce::Image::RGB), stream);
}
} // namespace EditorViews
