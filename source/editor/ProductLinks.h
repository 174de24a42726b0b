// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <juce_core/juce_core.h>

/** Names of people and addresses on the web, as bottom bar and About box show them: the one place to change them.
    The addresses of this source lie in a domain that leads nowhere by rule; whoever ships the plug-in sets their own. */
namespace ProductLinks
{
constexpr const char* productName = "Corvane Q7";
constexpr const char* productSlug = "corvane_q7";
constexpr const char* distributorName = "Harbor Guild";
constexpr const char* brandName = "Corvane Plugins";

constexpr const char* programmer = "Corvane Workshop";          // the first credit
constexpr const char* conceptAuthor = "Corvane Listening Room"; // the second

constexpr const char* brandHome = "https://corvane.example";
constexpr const char* distributorHome = "https://harborguild.example";
constexpr const char* productPrefix = "/plugins/";
constexpr const char* downloadPrefix = "/downloads/";

inline juce::String productPage() { return juce::String (distributorHome) + productPrefix + productSlug; }
inline juce::String downloadPage() { return juce::String (distributorHome) + downloadPrefix + productSlug; }

/** Where an installation puts the manual, whether it is there or not: below the system's applications folder, which
    is /usr on Linux. */
inline juce::File manual()
{
    const juce::String name (productName);
    return juce::File::getSpecialLocation (juce::File::globalApplicationsDirectory)
        .getChildFile (juce::String (distributorName) + "/" + name + "/" + name + " Manual.pdf");
}
} // namespace ProductLinks
