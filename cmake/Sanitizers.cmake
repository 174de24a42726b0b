# SPDX-License-Identifier: GPL-3.0-or-later
# Sanitizers go to every target, the framework's sources included: they share objects and memory.

if (CORVANE_SANITIZERS)
    add_compile_options (-fsanitize=${CORVANE_SANITIZERS} -fno-omit-frame-pointer)
    add_link_options (-fsanitize=${CORVANE_SANITIZERS})

    # A finding of the undefined-behaviour checks ends the run, as one of the address checks does.
    if (CORVANE_SANITIZERS MATCHES "undefined")
        add_compile_options (-fno-sanitize-recover=undefined)
    endif()
endif()
