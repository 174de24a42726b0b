# SPDX-License-Identifier: GPL-3.0-or-later
# What the framework's wrapper says about an LV2 plug-in is not enough for a host that shows a panel of its own.

add_subdirectory ("${PROJECT_SOURCE_DIR}/tools/lv2" "${PROJECT_BINARY_DIR}/tools/lv2")

# corvane_complete_lv2_metadata (TARGET): completes the Turtle files beside the built library. Call it behind
# juce_add_plugin, whose own step writes these files after the link: steps of a target run in the order of their calls.
function (corvane_complete_lv2_metadata target)
    add_custom_command (TARGET ${target} POST_BUILD
        COMMAND corvane-lv2-metadata "$<TARGET_FILE_DIR:${target}>"
        COMMENT "Completing the Turtle files of ${target}"
        VERBATIM)

    # A step after the link runs with the link alone: so a new program asks for a new link, and with it for new files.
    add_dependencies (${target} corvane-lv2-metadata)
    set_property (TARGET ${target} APPEND PROPERTY LINK_DEPENDS "$<TARGET_FILE:corvane-lv2-metadata>")
endfunction()
