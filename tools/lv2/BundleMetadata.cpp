// SPDX-License-Identifier: GPL-3.0-or-later
#include "lv2/BundleMetadata.h"

#include "lv2/ParameterTurtle.h"
#include "lv2/Turtle.h"

#include <algorithm>
#include <cstdio>
#include <stdexcept>

namespace
{
constexpr auto licence = "<https://spdx.org/licenses/GPL-3.0-or-later.html>";
constexpr auto header =
    "# SPDX-License-Identifier: GPL-3.0-or-later\n"
    "# Written by the build: the framework's part, completed from the plug-in's own parameters.\n\n";

void expect (bool asExpected, const std::string& reason)
{
    if (! asExpected)
        throw std::runtime_error (reason);
}

std::string finished (const Turtle::Document& document)
{
    auto text = header + Turtle::print (document);
    expect (std::all_of (text.begin(), text.end(),
                         [] (char c) { return c == '\n' || c == '\t' || (c >= ' ' && c <= '~'); }),
            "a name or text holds signs beyond ASCII");
    return text;
}

std::vector<std::string> texts (const Turtle::Subject& subject, const std::string& verb)
{
    const auto* statement = subject.find (verb);
    expect (statement != nullptr, subject.name + " has no " + verb);

    std::vector<std::string> result;
    std::transform (statement->objects.begin(), statement->objects.end(), std::back_inserter (result),
                    [] (const Turtle::Node& node) { return node.text; });
    return result;
}

void expectOnly (const Turtle::Subject& subject, const std::string& verb, const std::string& object)
{
    expect (texts (subject, verb) == std::vector<std::string> { object },
            subject.name + ": " + verb + " is not " + object + " alone");
}

bool isA (const Turtle::Subject& subject, const std::string& type)
{
    const auto types = texts (subject, "a");
    return std::find (types.begin(), types.end(), type) != types.end();
}

/** Takes an object away. The statement must have others: one without objects would be no statement. */
void drop (Turtle::Subject& subject, const std::string& verb, const std::string& object)
{
    auto remaining = texts (subject, verb);
    remaining.erase (std::remove (remaining.begin(), remaining.end(), object), remaining.end());
    expect (! remaining.empty(), subject.name + ": " + verb + " has no object but " + object);
    subject.set (verb, Turtle::nodes (remaining));
}

void setVersion (Turtle::Subject& subject, const BundleMetadata::Version& version)
{
    subject.set ("lv2:minorVersion", Turtle::nodes ({ std::to_string (version.minor) }));
    subject.set ("lv2:microVersion", Turtle::nodes ({ std::to_string (version.micro) }));
}

/** A property of saved states. The wrapper uses it without saying what it is. */
Turtle::Subject property (const std::string& name, const std::string& label, const std::string& comment,
                          const std::string& range)
{
    Turtle::Subject subject { name, {} };
    subject.set ("a", Turtle::nodes ({ "rdf:Property" }));
    subject.set ("rdfs:label", Turtle::nodes ({ Turtle::quoted (label) }));
    subject.set ("rdfs:comment", Turtle::nodes ({ Turtle::quoted (comment) }));
    subject.set ("rdfs:range", Turtle::nodes ({ range }));
    return subject;
}

/** Puts a subject in the place of the one of that name, or ahead of all others. */
void put (Turtle::Document& document, const Turtle::Subject& subject)
{
    for (auto& present : document.subjects)
    {
        if (present.name == subject.name)
        {
            present = subject;
            return;
        }
    }

    document.subjects.insert (document.subjects.begin(), subject);
}

std::vector<const juce::AudioProcessorParameterWithID*> parametersOf (const juce::AudioProcessor& processor)
{
    std::vector<const juce::AudioProcessorParameterWithID*> result;

    for (const auto* parameter : processor.getParameters())
    {
        result.push_back (dynamic_cast<const juce::AudioProcessorParameterWithID*> (parameter));
        expect (result.back() != nullptr, "a parameter has no identifier");
    }

    return result;
}

/** Ports as many as the binary has, and listed by the index that it knows them by. */
void expectPorts (const Turtle::Subject& plugin, int numAudioPorts)
{
    constexpr int numOtherPorts = 5; // messages in and out, latency, free-wheeling, enabled
    const auto* ports = plugin.find ("lv2:port");
    expect (ports != nullptr, plugin.name + " has no lv2:port");
    expect (static_cast<int> (ports->objects.size()) == numAudioPorts + numOtherPorts,
            plugin.name + ": the number of ports is " + std::to_string (ports->objects.size()));

    for (std::size_t i = 0; i < ports->objects.size(); ++i)
        expectOnly ({ "port " + std::to_string (i), ports->objects[i].statements }, "lv2:index", std::to_string (i));
}
} // namespace

BundleMetadata::Version::Version (const std::string& version)
{
    unsigned major = 0, product = 0, patch = 0;
    auto end = 0;
    const auto numRead = std::sscanf (version.c_str(), "%3u.%2u.%4u%n", &major, &product, &patch, &end);
    expect (numRead == 3 && end == static_cast<int> (version.size()),
            "the version " + version + " is not three numbers below 1000, 100 and 10000");

    // A hundred product versions to each major one; even numbers alone, from 2 on.
    if (major > 0)
        minor = 2 * static_cast<int> (100 * (major - 1) + product + 1);

    micro = 2 * static_cast<int> (patch);
}

BundleMetadata::BundleMetadata (juce::AudioProcessor& processorToDescribe, const std::string& productVersion,
                                const std::string& pluginUri)
    : processor (processorToDescribe), revision (productVersion), uri (pluginUri), subject ("<" + pluginUri + ">"),
      version (productVersion)
{
}

std::string BundleMetadata::completeManifest (const std::string& text) const
{
    auto document = Turtle::parse (text);

    // Hosts that find several versions of a plug-in choose between them by the manifest alone.
    auto& plugin = document.only (subject);
    expect (isA (plugin, "lv2:Plugin"), subject + " is no lv2:Plugin");
    expectOnly (plugin, "rdfs:seeAlso", "<dsp.ttl>");
    setVersion (plugin, version);

    const auto numPresets = std::count_if (document.subjects.begin(), document.subjects.end(),
                                           [] (const Turtle::Subject& s) { return isA (s, "pset:Preset"); });
    expect (numPresets == processor.getNumPrograms(), "the number of presets is " + std::to_string (numPresets));

    for (int i = 0; i < processor.getNumPrograms(); ++i)
    {
        const auto& preset = document.only ("<" + uri + ":preset" + std::to_string (i + 1) + ">");
        expectOnly (preset, "lv2:appliesTo", subject);
        expectOnly (preset, "rdfs:label", Turtle::quoted (processor.getProgramName (i).toStdString()));

        const auto* state = preset.find ("state:state");
        expect (state != nullptr && state->objects.size() == 1, preset.name + " has not exactly one state");
        expectOnly ({ preset.name + " state", state->objects[0].statements }, "<" + uri + ":Program>",
                    "\"" + std::to_string (i) + "\"^^xsd:int");
    }

    return finished (document);
}

std::string BundleMetadata::completeDsp (const std::string& text) const
{
    auto document = Turtle::parse (text);
    document.needPrefix ("plug:", "<" + uri + ":>");

    for (const auto* prefix : { "atom:", "doap:", "lv2:", "rdf:", "rdfs:", "units:", "xsd:" })
        expect (std::any_of (document.prefixes.begin(), document.prefixes.end(),
                             [prefix] (const auto& known) { return known.first == prefix; }),
                std::string ("the prefix ") + prefix + " is missing");

    // The wrapper must have found the same parameters, in the same order: its binary answers to these names.
    const auto parameters = parametersOf (processor);
    std::vector<std::string> ours, theirs;

    for (const auto* parameter : parameters)
        ours.push_back (ParameterTurtle::subjectName (*parameter));

    for (const auto& described : document.subjects)
        if (isA (described, "lv2:Parameter"))
            theirs.push_back (described.name);

    auto& plugin = document.only (subject);
    expect (theirs == ours, "the wrapper describes other parameters than the processor has");
    expect (texts (plugin, "patch:writable") == ours, "other parameters are writable than the processor has");
    expect (texts (plugin, "patch:readable") == ours, "other parameters are readable than the processor has");

    expect (isA (plugin, "lv2:Plugin"), subject + " is no lv2:Plugin");
    expectOnly (plugin, "doap:name", Turtle::quoted (processor.getName().toStdString()));
    expectOnly (plugin, "lv2:extensionData", "state:interface");
    expectOnly (plugin, "opts:supportedOption", "bufs:maxBlockLength");
    expect (texts (plugin, "lv2:requiredFeature")
                == std::vector<std::string> ({ "urid:map", "opts:options", "bufs:boundedBlockLength" }),
            subject + " requires other features than it did");
    expectPorts (plugin, processor.getTotalNumInputChannels() + processor.getTotalNumOutputChannels());

    const auto* release = plugin.find ("doap:release");
    expect (release != nullptr && release->objects.size() == 1, subject + " has not exactly one release");
    expectOnly ({ "release", release->objects[0].statements }, "doap:revision", Turtle::quoted (revision));

    // Maintainer and release belong to a project: here the plug-in is the project.
    plugin.set ("a", Turtle::nodes ({ "lv2:Plugin", "lv2:CompressorPlugin", "doap:Project" }));
    plugin.set ("doap:license", Turtle::nodes ({ licence }));
    plugin.set ("rdfs:comment", Turtle::nodes ({ Turtle::quoted (
                                    "A three-band compressor for tracks and mixes. Each parameter is a position from 0 "
                                    "to 1; the scale points say what a position reads on the panel.") }));
    setVersion (plugin, version);

    for (const auto* parameter : parameters)
        document.only (ParameterTurtle::subjectName (*parameter)) = ParameterTurtle::describe (*parameter);

    put (document, property ("plug:StateString", "State",
                             "The whole session of an instance, as text that the plug-in alone reads.", "xsd:string"));
    put (document,
         property ("plug:Program", "Program",
                   "The number of a factory program, from 0. A state that has it loads that program and holds "
                   "nothing else.",
                   "xsd:int"));
    put (document, ParameterTurtle::positionUnit());
    return finished (document);
}

std::string BundleMetadata::completeUi (const std::string& text) const
{
    auto document = Turtle::parse (text);
    auto& window = document.only ("<" + uri + ":UI>");

    // The wrapper lists a feature under the interfaces, and an interface under the features. Both stay where they belong.
    drop (window, "lv2:extensionData", "ui:noUserResize");
    drop (window, "lv2:optionalFeature", "opts:interface");

    const auto interfaces = texts (window, "lv2:extensionData");
    expect (std::find (interfaces.begin(), interfaces.end(), "opts:interface") != interfaces.end(),
            window.name + " has lost its options");
    return finished (document);
}
