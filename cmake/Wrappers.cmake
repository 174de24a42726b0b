# SPDX-License-Identifier: GPL-3.0-or-later
# The framework's VST3 and LV2 wrappers trust what a host hands them: a damaged session could end the host. Each bundle
# compiles the wrapper as tools/wrappers mends it, made here from the framework's own file.

find_package (Python3 REQUIRED COMPONENTS Interpreter)

# corvane_mend_wrapper (FORMAT FILE): call it ahead of juce_add_plugin. FILE stands below the framework's client module.
function (corvane_mend_wrapper format file)
    get_target_property (modules juce::juce_audio_plugin_client INTERFACE_JUCE_MODULE_PATH)
    set (wrapper "${modules}/juce_audio_plugin_client/${file}")
    set (script "${PROJECT_SOURCE_DIR}/tools/wrappers/mend_wrapper.py")
    set_property (DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS "${wrapper}" "${script}")

    # The framework has one unit a format, which does nothing but include the wrapper: ours takes its place.
    set (library juce_audio_plugin_client_${format})
    get_target_property (sources ${library} INTERFACE_SOURCES)
    set (unit "${sources}")
    list (FILTER unit INCLUDE REGEX "/${library}\\.(cpp|mm)$")
    list (LENGTH unit count)
    if (NOT count EQUAL 1)
        message (FATAL_ERROR "The framework compiles its ${format} wrapper in another way than its version 7.0.5: "
                             "no single ${library}.cpp in \"${sources}\". See cmake/Wrappers.cmake.")
    endif()

    get_filename_component (name "${unit}" NAME)
    set (mended "${CMAKE_CURRENT_BINARY_DIR}/wrappers/${name}")
    execute_process (COMMAND "${Python3_EXECUTABLE}" "${script}" ${format} "${wrapper}" "${mended}"
                     RESULT_VARIABLE result ERROR_VARIABLE errors)
    if (NOT result EQUAL 0)
        message (FATAL_ERROR "${errors}")
    endif()

    list (REMOVE_ITEM sources "${unit}")
    set_property (TARGET ${library} PROPERTY INTERFACE_SOURCES ${sources} "${mended}")
    # It goes on including its neighbours by their way from where it stood.
    get_filename_component (folder "${wrapper}" DIRECTORY)
    target_include_directories (${library} INTERFACE "${folder}")
endfunction()
