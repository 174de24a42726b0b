// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <atomic>
#include <dlfcn.h>

/** Counts X errors in place of ending the program, as an application would: on a server without a window manager the
    framework asks for atoms and windows that are not there. Install it once there is a connection to the server. */
namespace XErrors
{
inline std::atomic<int> count { 0 };

/** The framework loads the library when it runs, and so do we: no header of it is needed. */
inline bool countInsteadOfEnding()
{
    using Handler = int (*) (void*, void*);
    auto* library = ::dlopen ("libX11.so.6", RTLD_LAZY);

    if (library == nullptr)
        return false;

    auto* setHandler = reinterpret_cast<Handler (*) (Handler)> (::dlsym (library, "XSetErrorHandler"));

    if (setHandler == nullptr)
        return false;

    setHandler (
        [] (void*, void*)
        {
            ++count;
            return 0;
        });
    return true;
}
} // namespace XErrors
