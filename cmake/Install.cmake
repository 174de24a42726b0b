# SPDX-License-Identifier: GPL-3.0-or-later
# Where `cmake --install` puts things below the prefix. Only our files: the framework's install rules are not used.

include (GNUInstallDirs)

set (corvane_bundles "${CMAKE_BINARY_DIR}/source/plugin/CorvaneQ7_artefacts/${CMAKE_BUILD_TYPE}")
# Hosts look in lib/vst3 and lib/lv2 of /usr and /usr/local, not in an architecture's own folder.
set (CORVANE_BUNDLE_DIR "lib" CACHE STRING "Folder below the prefix that holds vst3/ and lv2/")
mark_as_advanced (CORVANE_BUNDLE_DIR)

if ("VST3" IN_LIST CORVANE_FORMATS)
    install (DIRECTORY "${corvane_bundles}/VST3/CorvaneQ7.vst3" DESTINATION "${CORVANE_BUNDLE_DIR}/vst3"
             USE_SOURCE_PERMISSIONS COMPONENT plugin)
endif()
if ("LV2" IN_LIST CORVANE_FORMATS)
    install (DIRECTORY "${corvane_bundles}/LV2/CorvaneQ7.lv2" DESTINATION "${CORVANE_BUNDLE_DIR}/lv2"
             USE_SOURCE_PERMISSIONS COMPONENT plugin)
endif()
if ("Standalone" IN_LIST CORVANE_FORMATS)
    install (TARGETS CorvaneQ7_Standalone RUNTIME DESTINATION "${CMAKE_INSTALL_BINDIR}" BUNDLE DESTINATION .
             COMPONENT plugin)
endif()
if (TARGET corvane-render)
    install (TARGETS corvane-render RUNTIME DESTINATION "${CMAKE_INSTALL_BINDIR}" COMPONENT renderer)
endif()

# ---- terms -----------------------------------------------------------------------------------
# The bundles and the renderer are under the GPL as a whole, and whoever hands them on owes its full text. We keep no copy
# of it: the system's own is put beside our notice, where there is one.
find_file (CORVANE_GPL3_TEXT NAMES GPL-3 GPL3/license.txt GPL-3.0-or-later.txt
           PATHS /usr/share/common-licenses /usr/share/licenses/common /usr/share/licenses/spdx NO_DEFAULT_PATH
           DOC "Full text of the GNU General Public License, version 3, to install")
mark_as_advanced (CORVANE_GPL3_TEXT)

install (FILES LICENSE THIRD-PARTY.md DESTINATION "${CMAKE_INSTALL_DOCDIR}" COMPONENT terms)

if (CORVANE_GPL3_TEXT)
    install (FILES "${CORVANE_GPL3_TEXT}" RENAME GPL-3 DESTINATION "${CMAKE_INSTALL_DOCDIR}" COMPONENT terms)
else()
    message (STATUS "The full text of the GPL, version 3, is not on this system: packages must add it, or name it by "
                    "CORVANE_GPL3_TEXT")
endif()
