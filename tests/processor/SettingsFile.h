// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <juce_data_structures/juce_data_structures.h>

#include <initializer_list>
#include <utility>

/** The user's settings file, as a test wants a new instance to find it; it is gone again at the end of the test. */
class SettingsFile
{
public:
    SettingsFile() { remove(); }
    ~SettingsFile() { remove(); }

    /** Where the framework looks, by the names that the product gives it. */
    static juce::File location()
    {
        juce::PropertiesFile::Options options;
        options.applicationName = "Corvane Q7";
        options.filenameSuffix = "settings";
        options.folderName = "Corvane Plugins";
        options.osxLibrarySubFolder = "Application Support";
        return options.getDefaultFile();
    }

    void write (std::initializer_list<std::pair<const char*, const char*>> values) const
    {
        juce::String text ("<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n\n<PROPERTIES>\n");

        for (const auto& [key, value] : values)
            text << "  <VALUE name=\"" << key << "\" val=\"" << value << "\"/>\n";

        writeText (text + "</PROPERTIES>\n");
    }

    void writeText (const juce::String& text) const
    {
        location().create();
        location().replaceWithText (text);
    }

    static void remove() { location().deleteRecursively(); }
};
