// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <stdexcept>
#include <string>

/** What the program tells a shell. Scripts rely on the numbers: none is ever given another meaning. */
enum class ExitStatus : int
{
    ok = 0,
    failure = 1,    // nobody's fault that we know of, such as memory that ran out
    usage = 2,      // the command line
    input = 3,      // the file to read
    output = 4,     // a file to write
    signalled = 128 // plus the number of the signal that ended the program
};

/** Why a render ended early: one sentence for a person, one number for a shell. */
class RenderError : public std::runtime_error
{
public:
    RenderError (ExitStatus statusToUse, const std::string& message)
        : std::runtime_error (message), status (static_cast<int> (statusToUse))
    {
    }

    int status;
};
