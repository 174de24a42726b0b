# SPDX-License-Identifier: GPL-3.0-or-later
# Pictures and the digits' face as byte arrays in the program: the editor reads no file.

set (corvane_asset_folder "${CMAKE_CURRENT_SOURCE_DIR}/assets")

set (corvane_asset_names
    front meter-scale meter-glass about-background about-brand about-distributor
    bar-logo bar-logo-down bar-menu bar-menu-down switch-off switch-on)

foreach (size big mid small)
    foreach (layer background rotor top)
        list (APPEND corvane_asset_names knob-${size}-${layer})
    endforeach()
endforeach()

foreach (kind link niveau nuke ms solo in)
    list (APPEND corvane_asset_names button-${kind} button-${kind}-down)
endforeach()

foreach (colour green red yellow)
    list (APPEND corvane_asset_names lamp-${colour}-off lamp-${colour}-on)
endforeach()

foreach (key settings a b copy-a-to-b copy-b-to-a)
    list (APPEND corvane_asset_names toolbar-${key} toolbar-${key}-over toolbar-${key}-down)
endforeach()

set (corvane_asset_files)
foreach (name IN LISTS corvane_asset_names)
    list (APPEND corvane_asset_files "${corvane_asset_folder}/images/${name}.png")
endforeach()

juce_add_binary_data (corvane_assets
    HEADER_NAME CorvaneAssetData.h
    NAMESPACE CorvaneAssetData
    SOURCES ${corvane_asset_files} "${corvane_asset_folder}/fonts/Segment7.otf")
