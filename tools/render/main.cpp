// SPDX-License-Identifier: GPL-3.0-or-later
// corvane-render: a sound file in, the same sound through Corvane Q7 out.
#include "render/CommandLine.h"
#include "render/FileConflicts.h"
#include "render/Interruption.h"
#include "render/ParameterDocs.h"
#include "render/ParameterList.h"
#include "render/ProcessorSetup.h"
#include "render/ProgramNames.h"
#include "render/ProgressLine.h"
#include "render/RenderError.h"
#include "render/RenderJob.h"
#include "render/Summary.h"
#include "render/TableDump.h"
#include "render/TypedText.h"

#include <csignal>
#include <cstdio>
#include <exception>
#include <string>

namespace
{
constexpr auto complaintStart = "corvane-render: ";

void settleSignals()
{
    Interruption::listen (ProgressLine::textToClear() + complaintStart + "interrupted, nothing was written\n");

#ifdef SIGXFSZ
    // A file that grows over the user's limit is then a write that fails, and is told like any other.
    std::signal (SIGXFSZ, SIG_IGN);
#endif
}

/** One line, whatever a file's name holds. */
void complain (const std::string& message)
{
    constexpr std::size_t most = 1000; // two paths of usual length and what is wrong with them

    auto line = TypedText::shortened (message, most);

    for (auto& c : line)
        if (static_cast<unsigned char> (c) < ' ')
            c = ' ';

    std::fprintf (stderr, "%s%s\n", complaintStart, line.c_str());
}

void print (const std::string& text)
{
    if (std::fputs (text.c_str(), stdout) < 0 || std::fflush (stdout) != 0)
        throw RenderError (ExitStatus::output, "cannot write to the standard output");
}

void describeParameters (const CommandLine& line)
{
    const juce::ScopedJuceInitialiser_GUI framework;
    CorvaneQ7AudioProcessor processor;

    if (line.listParameters)
        print (line.asJson ? ParameterList::json (processor) : ParameterList::plain (processor));
    if (line.parameterDocsFile)
        ParameterDocs::write (*line.parameterDocsFile, line.render.overwrite, processor);
}

void listAndDump (const CommandLine& line)
{
    const auto overwrite = line.render.overwrite;

    if (line.listPrograms)
        print (ProgramNames::list());
    if (line.listParameters || line.parameterDocsFile)
        describeParameters (line);
    if (line.curvesFile)
        TableDump::writeCurves (*line.curvesFile, overwrite);
    if (line.controlLawFile)
        TableDump::writeControlLaw (*line.controlLawFile, overwrite);
    if (line.tapsFile)
        TableDump::writeTaps (line.tapsFactor, *line.tapsFile, overwrite);
}

void render (const CommandLine& line)
{
    const juce::ScopedJuceInitialiser_GUI framework;
    ProgressLine progress (! line.quiet);
    RenderJob job (line.render);

    const auto result = job.run ([&progress] (auto done, auto inAll) { progress.show (done, inAll); });
    progress.clear();

    if (! line.quiet)
        print (summaryOf (result));
}

void saveSettings (const RenderOptions& options)
{
    refuseFileConflicts (options);
    const juce::ScopedJuceInitialiser_GUI framework;
    CorvaneQ7AudioProcessor processor;
    const ProcessorSetup setup (options, processor);
    SavedSettings (options, processor).commit();
}

void run (const CommandLine& line)
{
    if (! line.notice.empty())
        print (line.notice);
    else if (line.rendersNothing())
        listAndDump (line);
    else if (line.onlySavesSettings())
        saveSettings (line.render);
    else
        render (line);
}
} // namespace

int main (int argc, char** argv)
{
    try
    {
        settleSignals();
        run (CommandLine::parse (argc, argv));
        return static_cast<int> (ExitStatus::ok);
    }
    catch (const RenderError& error)
    {
        complain (error.what());
        return error.status;
    }
    catch (const std::exception& error)
    {
        complain (error.what());
        return static_cast<int> (ExitStatus::failure);
    }
}
