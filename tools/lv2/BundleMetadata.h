// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <juce_audio_processors/juce_audio_processors.h>

#include <string>

/** Completes the three Turtle files that the framework's wrapper writes into the bundle.

    Ports, features, options, binaries and presets belong to the wrapper and stay its own. The parameters are described
    anew from the processor's objects, and what the wrapper leaves out or gets wrong is put right: class, licence,
    version, the properties that presets and sessions use, and two statements about the window.

    Each function takes a file's text and returns the new one. Its own result as input gives the same text again.

    Errors   std::runtime_error where a text is not what the wrapper of this processor, in this version, writes: rather
             no bundle than one whose statements nobody looked at.
*/
class BundleMetadata
{
public:
    /** version: the product's, three numbers with points. uri: the plug-in's. The processor must outlive this. */
    BundleMetadata (juce::AudioProcessor& processor, const std::string& version, const std::string& uri);

    std::string completeManifest (const std::string& text) const;
    std::string completeDsp (const std::string& text) const;
    std::string completeUi (const std::string& text) const;

    /** A product version as the pair that hosts compare, for which the vocabulary has rules: a minor version of 0 and
        any odd number say "not for use", and there is no major one. 1.0.0 is 2 and 0, 1.2.3 is 6 and 6, 2.0.0 is 202
        and 0. A major version of 0 gives 0. */
    struct Version
    {
        explicit Version (const std::string& version);
        int minor = 0, micro = 0;
    };

private:
    juce::AudioProcessor& processor;
    const std::string revision, uri, subject; // subject: the uri in brackets
    const Version version;
};
