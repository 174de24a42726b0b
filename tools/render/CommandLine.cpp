// SPDX-License-Identifier: GPL-3.0-or-later
#include "render/CommandLine.h"

#include "render/ParameterText.h"
#include "render/ProgramNames.h"
#include "render/RenderError.h"

#include <CLI/CLI.hpp>

#include <limits>
#include <locale>
#include <sstream>
#include <vector>

namespace
{
[[noreturn]] void refuse (const std::string& message) { throw RenderError (ExitStatus::usage, message); }

template <typename Number>
[[noreturn]] void refuseNumber (const std::string& option, const char* kind, Number lowest, Number highest,
                                const std::string& text)
{
    std::ostringstream message;
    message.imbue (std::locale::classic());
    message << option << " takes a " << kind << " from " << lowest << " to " << highest << ", not "
            << TypedText::quoted (text);
    refuse (message.str());
}

std::int64_t wholeNumber (const std::string& option, const std::string& text, std::int64_t lowest, std::int64_t highest)
{
    const auto value = TypedText::wholeNumber (text);

    if (! value || *value < lowest || *value > highest)
        refuseNumber (option, "whole number", lowest, highest, text);

    return *value;
}

double number (const std::string& option, const std::string& text, double lowest, double highest)
{
    const auto value = TypedText::number (text);

    if (! value || *value < lowest || *value > highest)
        refuseNumber (option, "number", lowest, highest, text);

    return *value;
}

std::filesystem::path fileName (const std::string& option, const std::string& text)
{
    if (text.empty())
        refuse (option + " takes the name of a file");

    return text;
}

SampleFormat sampleFormat (const std::string& text)
{
    if (text == "16")
        return SampleFormat::pcm16;
    if (text == "24")
        return SampleFormat::pcm24;
    if (text == "32f")
        return SampleFormat::float32;

    refuse ("--bits takes 16, 24 or 32f, not " + TypedText::quoted (text));
}

bool onOrOff (const std::string& option, const std::string& text)
{
    if (text != "on" && text != "off")
        refuse (option + " takes on or off, not " + TypedText::quoted (text));

    return text == "on";
}

/** What --set and --set-normalised take. */
ParameterChange changeFrom (const std::string& option, const char* form, const std::string& text)
{
    const auto sides = TypedText::splitAt ('=', text);

    if (! sides)
        refuse (option + " takes " + form + ", not " + TypedText::quoted (text));

    try
    {
        const auto index = ParameterText::find (sides->first, ParameterText::identifiers());

        if (option == "--set")
            return { index, ParameterText::toNormalised (index, sides->second) };

        return { index, static_cast<float> (number (option + ' ' + sides->first, sides->second, 0.0, 1.0)) };
    }
    catch (const TextError& error)
    {
        refuse (error.what());
    }
}

using Text = const std::string&;

CLI::Option* add (CLI::App& app, const char* name, const char* type, const char* help,
                  const std::function<void (Text)>& take)
{
    return app.add_option_function<std::string> (name, take, help)->type_name (type);
}

void addSoundOptions (CLI::App& app, RenderOptions& to)
{
    add (app, "--program", "NAME|0-14", "program to render with (default 0, \"Default\")",
         [&to] (Text text) { to.program = ProgramNames::find (text); });

    add (app, "--state", "FILE", "start from a host's session block",
         [&to] (Text text) { to.state = fileName ("--state", text); });

    add (app, "--settings", "FILE", "start from a settings text, as --save-settings writes it",
         [&to] (Text text) { to.settingsText = fileName ("--settings", text); });

    // Taken as they are met, so that the order of both kinds among each other stays.
    for (const auto& [option, form, help] :
         { std::tuple { "--set", "IDENTIFIER=TEXT", "set a control, as in LowThreshold=-12dB; any number of times" },
           std::tuple { "--set-normalised", "IDENTIFIER=X", "set a control to a number from 0 to 1" } })
        add (app, option, form, help,
             [&to, option = std::string (option), form = form] (Text text)
             { to.changes.push_back (changeFrom (option, form, text)); })
            ->trigger_on_parse();

    add (app, "--oversampling", "1-16", "oversampling factor (default 1)",
         [&to] (Text text) {
             to.oversampling =
                 static_cast<int> (wholeNumber ("--oversampling", text, 1, UserDefaults::maxOversampling));
         });

    add (app, "--calibration", "16-24", "level of digital full scale in dBu (default 22)",
         [&to] (Text text)
         {
             to.calibrationDb =
                 number ("--calibration", text, UserDefaults::lowestCalibrationDb, UserDefaults::highestCalibrationDb);
         });

    app.add_flag ("--bypass", to.bypass, "the plug-in's own bypass: dry, but as late as the wet signal");

    add (app, "--noise", "on|off", "the analogue noise floor (default on)",
         [&to] (Text text) { to.noise = onOrOff ("--noise", text); });

    add (app, "--seed", "N", "where the noise begins, 0 to 4294967295 (default 1)",
         [&to] (Text text)
         {
             constexpr std::int64_t last = std::numeric_limits<std::uint32_t>::max();
             to.seed = static_cast<std::uint32_t> (wholeNumber ("--seed", text, 0, last));
         });
}

void addFileOptions (CLI::App& app, RenderOptions& to)
{
    add (app, "INPUT", "", "WAV, AIFF or FLAC file of one or two channels",
         [&to] (Text text) { to.input = fileName ("INPUT", text); });

    add (app, "OUTPUT", "", "WAV file to write", [&to] (Text text) { to.output = fileName ("OUTPUT", text); });

    add (app, "--bits", "16|24|32f", "samples of the output (default 32f)",
         [&to] (Text text) { to.format = sampleFormat (text); });

    add (app, "--block", "N", "frames a block, 1 to 65536 (default 512)",
         [&to] (Text text)
         { to.blockSize = static_cast<int> (wholeNumber ("--block", text, 1, RenderOptions::maxBlockSize)); });

    add (app, "--tail", "SECONDS", "silence to render behind the input, 0 to 600 (default 0)",
         [&to] (Text text) { to.tailSeconds = number ("--tail", text, 0.0, RenderOptions::maxTailSeconds); });

    add (app, "--automation", "FILE", "move controls while the sound runs: lines frame,identifier,value",
         [&to] (Text text) { to.automation = fileName ("--automation", text); });

    add (app, "--save-state", "FILE", "write the settings as a host's session block",
         [&to] (Text text) { to.saveState = fileName ("--save-state", text); });

    add (app, "--save-settings", "FILE", "write the settings as a text to read and to mail",
         [&to] (Text text) { to.saveSettingsText = fileName ("--save-settings", text); });

    add (app, "--meters", "FILE", "write the meters, a line of comma-separated values a block",
         [&to] (Text text) { to.meters = fileName ("--meters", text); });

    app.add_flag ("--keep-latency", to.keepLatency, "leave the latency in front of the output");
    app.add_flag ("--force", to.overwrite, "replace files that exist");
}

void addTableOptions (CLI::App& app, CommandLine& to, std::vector<std::string>& taps)
{
    app.add_flag ("--list-programs", to.listPrograms, "print number and name of every program");

    app.add_flag ("--list-parameters", to.listParameters, "print every control: names, range, steps, default, texts");
    app.add_flag ("--json", to.asJson, "with --list-parameters: for programs to read");

    add (app, "--write-parameter-docs", "FILE", "write the page of the documentation about the controls",
         [&to] (Text text) { to.parameterDocsFile = fileName ("--write-parameter-docs", text); });

    add (app, "--dump-curves", "FILE", "write the five detector curves as 32-bit floats",
         [&to] (Text text) { to.curvesFile = fileName ("--dump-curves", text); });

    add (app, "--dump-control-law", "FILE", "write the control law as 32-bit floats",
         [&to] (Text text) { to.controlLawFile = fileName ("--dump-control-law", text); });

    app.add_option ("--dump-taps", taps, "write the oversampling filter of a factor as 32-bit floats")
        ->type_name ("2-16 FILE")
        ->type_size (2)
        ->expected (1);
}

void finish (CommandLine& line, const std::vector<std::string>& taps)
{
    const auto numFiles = (line.render.input.empty() ? 0 : 1) + (line.render.output.empty() ? 0 : 1);

    if (! taps.empty())
    {
        line.tapsFactor = static_cast<int> (wholeNumber ("--dump-taps", taps[0], 2, UserDefaults::maxOversampling));
        line.tapsFile = fileName ("--dump-taps", taps[1]);
    }

    if (line.asJson && ! line.listParameters)
        refuse ("--json goes with --list-parameters");

    if (line.rendersNothing() && (numFiles > 0 || line.render.savesSettings()))
        refuse ("INPUT, OUTPUT and options that save do not go with options that list or dump");

    if (line.rendersNothing())
        return;

    if (line.onlySavesSettings())
    {
        if (! line.render.meters.empty() || ! line.render.automation.empty())
            refuse ("--meters and --automation need an INPUT and an OUTPUT");
    }
    else if (numFiles < 2)
        refuse ("an INPUT and an OUTPUT are needed; see --help");
}

constexpr auto footer =
    R"(Settings come from these places, each over the one before: --program, --state, --settings, then --set and
--set-normalised in the order given, then --bypass, --oversampling and --calibration. --save-state and --save-settings
keep what comes out of it, with INPUT and OUTPUT or without. While Link is on, a band's control moves the other bands'.

Texts are those that the controls show: LowThreshold=-12dB, MidRatio=4:1, Mix=80%, HPF=off, LowGain=auto, Bypass=Byp.
A number may stand without its unit; one between two steps goes to the nearest.

An automation file has lines such as "48000,Mix,50%" or "48000,Mix,n:0.5" (normalised). Frames count from 0 in INPUT
and on through the tail. A change glides as in the plug-in, at frame 0 too. # begins a comment, here and in a settings
text.

Exit status: 0 done, 2 the command line, 3 a file to read, 4 a file to write, 128 and its number a signal, 1 anything
else.)";
} // namespace

CommandLine CommandLine::parse (int argc, const char* const* argv)
{
    CommandLine line;
    std::vector<std::string> taps;

    CLI::App app ("Renders a WAV, AIFF or FLAC file through Corvane Q7 and writes a WAV file.", "corvane-render");
    app.set_version_flag ("--version", "corvane-render " CORVANE_VERSION, "print the version");
    addSoundOptions (app, line.render);
    addFileOptions (app, line.render);
    addTableOptions (app, line, taps);
    app.footer (footer);
    app.add_flag ("--quiet", line.quiet, "no progress and no summary");

    try
    {
        app.parse (argc, argv);
        finish (line, taps);
    }
    catch (const CLI::CallForHelp&)
    {
        line.notice = app.help();
    }
    catch (const CLI::CallForVersion& version)
    {
        line.notice = std::string (version.what()) + '\n';
    }
    catch (const CLI::ParseError& error)
    {
        refuse (error.what());
    }

    return line;
}
