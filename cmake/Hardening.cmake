# SPDX-License-Identifier: GPL-3.0-or-later
# What the toolchain does against a write past the end, on Linux: a guard value in front of return addresses, checked
# forms of the C library's copies, and tables of addresses that cannot be written once the program is loaded. For every
# target, the framework's sources included: a chain is as strong as its weakest object. The sanitizers watch the same
# accesses by themselves and want the C library's plain functions, so their builds go without.

include (CheckPIESupported)
check_pie_supported (LANGUAGES CXX) # programs become position-independent at the link as well

if (UNIX AND NOT APPLE AND NOT CORVANE_SANITIZERS)
    add_compile_options (-fstack-protector-strong)
    # The checked forms need an optimising compiler, and warn without.
    add_compile_options ("$<$<NOT:$<CONFIG:Debug>>:SHELL:-U_FORTIFY_SOURCE -D_FORTIFY_SOURCE=2>")
    add_link_options (LINKER:-z,relro LINKER:-z,now LINKER:-z,noexecstack)
endif()
