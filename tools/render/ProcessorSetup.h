// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "processor/CorvaneQ7AudioProcessor.h"
#include "render/RenderOptions.h"

#include <array>

/** Where a processor's controls and options stand before it is prepared. */
class ProcessorSetup
{
public:
    /** Brings a processor to what the options ask for: program, state, settings text, changes in their order, then the
        options that were given. Nothing of it depends on the user's settings file.

        Errors: RenderError with ExitStatus::input. */
    ProcessorSetup (const RenderOptions& options, CorvaneQ7AudioProcessor& processor);

    /** Lets every meter show the level behind its band, but for those that a change has set. */
    void showLevels();

private:
    void useProgram (int program);
    void make (const ParameterChange& change);

    CorvaneQ7AudioProcessor& processor;
    std::array<bool, CorvaneQ7AudioProcessor::numBands> meterIsSet {};
};
