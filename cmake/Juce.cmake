# SPDX-License-Identifier: GPL-3.0-or-later
# JUCE 7.0.5: the system's package where there is one (Debian), otherwise upstream's tag. The modules are compiled
# once, into corvane_juce; plug-in, renderer, tests and benchmarks link that one result.

find_package (JUCE 7.0.5 CONFIG QUIET)

if (NOT JUCE_FOUND)
    include (FetchContent)
    FetchContent_Declare (JUCE
        GIT_REPOSITORY https://github.com/juce-framework/JUCE.git
        GIT_TAG 69795dc8e589a9eb5df251b6dd994859bf7b3fab)   # the tag 7.0.5
    FetchContent_GetProperties (JUCE)

    # Added by hand, to leave its own install rules out: ours ship our files alone.
    if (NOT juce_POPULATED)
        FetchContent_Populate (JUCE)
        add_subdirectory ("${juce_SOURCE_DIR}" "${juce_BINARY_DIR}" EXCLUDE_FROM_ALL)
    endif()
endif()

add_library (corvane_juce STATIC)

target_link_libraries (corvane_juce PRIVATE
    juce::juce_audio_processors
    juce::juce_audio_utils)

target_compile_definitions (corvane_juce PUBLIC
    JUCE_GLOBAL_MODULE_SETTINGS_INCLUDED=1
    JUCE_DISPLAY_SPLASH_SCREEN=0                    # the GPL terms under which we take the modules allow it
    JUCE_USE_CURL=0
    JUCE_WEB_BROWSER=0
    JUCE_USE_FLAC=0
    JUCE_USE_OGGVORBIS=0
    JUCE_VST3_CAN_REPLACE_VST2=0
    JUCE_FORCE_USE_LEGACY_PARAM_IDS=1               # the host's parameter index is the table's, for ever
    JUCE_FORCE_LEGACY_PARAMETER_AUTOMATION_TYPE=1   # ranges stay 0 to 1 in every wrapper
    JUCE_PLUGINHOST_VST3=1                          # for our tests; the linkers drop it from the bundles
    JUCE_PLUGINHOST_LV2=1
    JUCE_STRICT_REFCOUNTEDPOINTER=1
    $<$<CONFIG:Debug>:DEBUG=1>
    $<$<NOT:$<CONFIG:Debug>>:NDEBUG=1>)

# Debian's modules use the system's picture libraries and name them for programs and plug-ins only, ahead of the
# static library that needs them.
if (TARGET juce::pkgconfig_JUCE_IMG_LINUX_DEPS)
    target_link_libraries (corvane_juce PUBLIC juce::pkgconfig_JUCE_IMG_LINUX_DEPS)
endif()

# What links corvane_juce sees its headers and definitions, but compiles no module again.
target_include_directories (corvane_juce SYSTEM INTERFACE $<TARGET_PROPERTY:corvane_juce,INCLUDE_DIRECTORIES>)
target_compile_definitions (corvane_juce INTERFACE $<TARGET_PROPERTY:corvane_juce,COMPILE_DEFINITIONS>)
set_target_properties (corvane_juce PROPERTIES FOLDER framework)

if (NOT MSVC AND NOT APPLE)
    target_compile_options (corvane_juce PRIVATE -ffunction-sections -fdata-sections)
    target_link_options (corvane_juce INTERFACE LINKER:--gc-sections)
endif()
