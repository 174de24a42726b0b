// SPDX-License-Identifier: GPL-3.0-or-later
// corvane-lv2-metadata: completes the Turtle files of an LV2 bundle, in place, from the plug-in's own parameters.
#include "lv2/BundleMetadata.h"
#include "processor/CorvaneQ7AudioProcessor.h"

#include <cstdio>
#include <exception>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <stdexcept>

namespace
{
namespace fs = std::filesystem;

std::string read (const fs::path& file)
{
    std::ifstream stream (file, std::ios::binary);
    std::string text { std::istreambuf_iterator<char> (stream), {} };

    if (! stream)
        throw std::runtime_error ("it cannot be read");

    return text;
}

void write (const fs::path& file, const std::string& text)
{
    std::ofstream stream (file, std::ios::binary);
    stream << text;
    stream.close();

    if (! stream)
        throw std::runtime_error ("it cannot be written");
}

/** A file's new text, ready before any file is touched: a bundle is completed as a whole or not at all. */
struct Completion
{
    using Function = std::string (BundleMetadata::*) (const std::string&) const;

    Completion (const fs::path& fileToComplete, const BundleMetadata& metadata, Function complete)
        : file (fileToComplete)
    {
        try
        {
            text = (metadata.*complete) (read (file));
        }
        catch (const std::exception& error)
        {
            throw std::runtime_error (file.filename().string() + ": " + error.what());
        }
    }

    fs::path file;
    std::string text;
};

void complete (const fs::path& bundle)
{
    const juce::ScopedJuceInitialiser_GUI framework;

    // Some answers of the parameters depend on the wrapper that asks.
    juce::AudioProcessor::setTypeOfNextNewPlugin (juce::AudioProcessor::wrapperType_LV2);
    CorvaneQ7AudioProcessor processor;

    const BundleMetadata metadata (processor, CORVANE_VERSION, CORVANE_LV2_URI);
    const Completion completions[] { { bundle / "manifest.ttl", metadata, &BundleMetadata::completeManifest },
                                     { bundle / "dsp.ttl", metadata, &BundleMetadata::completeDsp },
                                     { bundle / "ui.ttl", metadata, &BundleMetadata::completeUi } };

    for (const auto& completion : completions)
        write (completion.file, completion.text);
}
} // namespace

int main (int argc, char** argv)
{
    try
    {
        if (argc != 2)
            throw std::runtime_error ("usage: corvane-lv2-metadata BUNDLE");

        complete (argv[1]);
        return 0;
    }
    catch (const std::exception& error)
    {
        std::fprintf (stderr, "corvane-lv2-metadata: %s\n", error.what());
        return 1;
    }
}
