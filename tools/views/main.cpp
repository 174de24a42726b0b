// SPDX-License-Identifier: GPL-3.0-or-later
// corvane-views: pictures of the editor, and the geometry for the artwork.
#include "views/EditorViews.h"
#include "views/ScaleMarks.h"

#include <CLI/CLI.hpp>
#include <juce_gui_basics/juce_gui_basics.h>

#include <cstdlib>
#include <filesystem>
#include <iostream>
#include <string>
#include <unistd.h>

namespace
{
juce::File inWorkingDirectory (const std::string& path)
{
    return juce::File::getCurrentWorkingDirectory().getChildFile (juce::String::fromUTF8 (path.c_str()));
}
/** A home folder of the program's own: pictures must not depend on the options that a user has stored. */
class OwnHome
{
public:
    OwnHome()
    {
        std::filesystem::create_directories (folder);
        ::setenv ("HOME", folder.c_str(), 1);
        ::unsetenv ("XDG_CONFIG_HOME");
    }

    ~OwnHome() { std::filesystem::remove_all (folder); }

    OwnHome (const OwnHome&) = delete;
    OwnHome& operator= (const OwnHome&) = delete;

private:
    const std::filesystem::path folder =
        std::filesystem::temp_directory_path() / ("corvane-views-" + std::to_string (::getpid()));
};
} // namespace

int main (int argc, char** argv)
{
    CLI::App app { "Pictures of the Corvane Q7 editor, painted without a screen." };
    std::string folder, geometry;
    float scale = 1.0f;
    app.add_option ("--out", folder, "write one PNG a view into this folder");
    app.add_option ("--pixel-scale", scale, "pixels for each of a view's: 2 is a HiDPI screen")
        ->check (CLI::Range (0.5f, 4.0f));
    app.add_option ("--geometry", geometry, "write places and scale marks of all controls, for the artwork, as JSON");
    bool onlyReferences = false;
    app.add_flag ("--references", onlyReferences, "only the views that are kept and compared by the tests");
    CLI11_PARSE (app, argc, argv);

    const OwnHome home;

    if (! EditorViews::useKnownFonts())
        std::cerr << "Liberation Sans is not installed: texts are written in what the system has\n";

    const juce::ScopedJuceInitialiser_GUI framework;

    if (! geometry.empty())
    {
        CorvaneQ7AudioProcessor processor;

        if (! inWorkingDirectory (geometry).replaceWithText (ScaleMarks::toJson (processor), false, false, "\n"))
        {
            std::cerr << "cannot write " << geometry << '\n';
            return 1;
        }
    }

    if (! folder.empty())
    {
        const auto target = inWorkingDirectory (folder);
        target.createDirectory();

        const auto hasScreen = ! juce::Desktop::getInstance().getDisplays().displays.isEmpty();

        for (const auto& view : EditorViews::all())
        {
            if (onlyReferences && ! view.isReference)
                continue;

            if (view.needsScreen && ! hasScreen)
            {
                std::cerr << view.name << ": left out, for there is no screen\n";
                continue;
            }

            const auto file = target.getChildFile (view.name + ".png");

            if (! EditorViews::writePng (EditorViews::paint (view, scale), file))
            {
                std::cerr << "cannot write " << file.getFullPathName() << '\n';
                return 1;
            }

            std::cout << file.getFullPathName() << '\n';
        }
    }

    return 0;
}
