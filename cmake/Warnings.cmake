# SPDX-License-Identifier: GPL-3.0-or-later
# Warnings and arithmetic rules of our own sources. The framework's sources get neither.

# corvane_own_sources (TARGET): call it for every target whose sources are ours.
function (corvane_own_sources target)
    if (MSVC)
        target_compile_options (${target} PRIVATE /W4 $<$<BOOL:${CORVANE_WARNINGS_AS_ERRORS}>:/WX>)
    else()
        target_compile_options (${target} PRIVATE -Wall -Wextra -Wshadow -Wnon-virtual-dtor -Woverloaded-virtual
                                                  $<$<BOOL:${CORVANE_WARNINGS_AS_ERRORS}>:-Werror>)
        # Roundings are part of the behaviour: no multiply and add may be fused into one rounding.
        target_compile_options (${target} PRIVATE -ffp-contract=off)
    endif()

    # g++ 12 drops paired double-float-double roundings when it packs neighbouring doubles into one vector.
    if (CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
        target_compile_options (${target} PRIVATE -fno-tree-slp-vectorize)
    endif()
endfunction()
