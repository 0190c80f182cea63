# SPDX-License-Identifier: Apache-2.0
# What `cmake --install` installs of the programs, and the Debian packages that cpack makes of it all.
include(GNUInstallDirs)

install(TARGETS tolva RUNTIME DESTINATION "${CMAKE_INSTALL_BINDIR}" COMPONENT commands)
install(TARGETS tolva-desk RUNTIME DESTINATION "${CMAKE_INSTALL_BINDIR}" COMPONENT desk)
# Beside tolva, which starts it for PDF files.
install(TARGETS tolva-pdf RUNTIME DESTINATION "${CMAKE_INSTALL_BINDIR}" COMPONENT pdf)

# Compressed as Debian wants it: at the best, and without name and time, so that the same page gives the same file.
find_program(TOLVA_GZIP gzip REQUIRED)
function(tolva_install_manual name component)
    set(page "${PROJECT_SOURCE_DIR}/docs/man/${name}.1")
    set(compressed "${PROJECT_BINARY_DIR}/man/${name}.1.gz")
    add_custom_command(OUTPUT "${compressed}"
                       COMMAND "${CMAKE_COMMAND}" -E make_directory "${PROJECT_BINARY_DIR}/man"
                       COMMAND "${TOLVA_GZIP}" -9nc "${page}" > "${compressed}"
                       DEPENDS "${page}" VERBATIM)
    add_custom_target(${name}-manual ALL DEPENDS "${compressed}")
    install(FILES "${compressed}" DESTINATION "${CMAKE_INSTALL_MANDIR}/man1" COMPONENT ${component})
endfunction()
tolva_install_manual(tolva commands)
tolva_install_manual(tolva-desk desk)
tolva_install_manual(tolva-pdf pdf)

# What each package tells of its licence and its changes, where Debian looks for it.
set(packagesChangelog "${PROJECT_BINARY_DIR}/packaging/changelog.gz")
add_custom_command(OUTPUT "${packagesChangelog}"
                   COMMAND "${CMAKE_COMMAND}" -E make_directory "${PROJECT_BINARY_DIR}/packaging"
                   COMMAND "${TOLVA_GZIP}" -9nc "${PROJECT_SOURCE_DIR}/packaging/changelog" > "${packagesChangelog}"
                   DEPENDS "${PROJECT_SOURCE_DIR}/packaging/changelog" VERBATIM)
add_custom_target(packages-changelog ALL DEPENDS "${packagesChangelog}")
function(tolva_install_documents package component)
    install(FILES "${PROJECT_SOURCE_DIR}/packaging/copyright" "${packagesChangelog}"
            DESTINATION "${CMAKE_INSTALL_DATADIR}/doc/${package}" COMPONENT ${component})
endfunction()
tolva_install_documents(tolva commands)
tolva_install_documents(tolva-desk desk)
tolva_install_documents(tolva-pdf pdf)
tolva_install_documents(tolva-data data)
tolva_install_documents(libkvtolva1-${PROJECT_VERSION_MAJOR} library)
tolva_install_documents(libkvtolva1-dev development)
install(FILES packaging/library/lintian-overrides RENAME libkvtolva1-${PROJECT_VERSION_MAJOR}
        DESTINATION "${CMAKE_INSTALL_DATADIR}/lintian/overrides" COMPONENT library)

# The nightly backup; whoever runs the machine enables it for a station.
install(FILES "packaging/systemd/tolva-backup@.service" "packaging/systemd/tolva-backup@.timer"
              "packaging/systemd/tolva-receive@.service" "packaging/systemd/tolva-receive@.path"
              "packaging/systemd/tolva-fetch@.service" "packaging/systemd/tolva-fetch@.timer"
              "packaging/systemd/tolva-send@.service" "packaging/systemd/tolva-send@.timer"
        DESTINATION lib/systemd/system COMPONENT commands)
# What a desk needs on a server, for whoever keeps that.
install(FILES packaging/server/desk-rights.sql DESTINATION "${CMAKE_INSTALL_DATADIR}/tolva" COMPONENT commands)
install(FILES packaging/tolva-desk.desktop DESTINATION "${CMAKE_INSTALL_DATADIR}/applications" COMPONENT desk)
install(FILES packaging/example.tolva.desk.metainfo.xml DESTINATION "${CMAKE_INSTALL_DATADIR}/metainfo" COMPONENT desk)
install(FILES src/platform/widgets/icons/tolva.svg RENAME tolva-desk.svg
        DESTINATION "${CMAKE_INSTALL_DATADIR}/icons/hicolor/scalable/apps" COMPONENT desk)

set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME tolva)
set(CPACK_PACKAGE_VENDOR "The Tolva developers")
set(CPACK_PACKAGE_CONTACT "The Tolva developers <developers@tolva.example>")
# The first line of each package's own description says what it is; a summary would stand before all of them.
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "")
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_PACKAGE_DIRECTORY "${CMAKE_BINARY_DIR}/packages")
set(CPACK_STRIP_FILES ON)
set(CPACK_COMPONENTS_ALL commands desk pdf data library development)
set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_COMPONENTS_GROUPING IGNORE)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS ON)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS "${CMAKE_BINARY_DIR}/lib")
set(CPACK_DEBIAN_PACKAGE_SECTION net)
set(CPACK_DEBIAN_ENABLE_COMPONENT_DEPENDS ON)

set(CPACK_DEBIAN_COMMANDS_PACKAGE_NAME tolva)
# libpq is loaded when a station is on a server.
set(CPACK_DEBIAN_COMMANDS_PACKAGE_RECOMMENDS "tolva-pdf, libpq5 (>= 14)")
set(CPACK_COMPONENT_COMMANDS_DEPENDS data)
set(CPACK_COMPONENT_COMMANDS_DESCRIPTION
    "Command line of a radio station's contact desk\nFiles incoming mail and text messages, lists, searches, moves, exports,\nprints, backs up and checks a station.")

set(CPACK_DEBIAN_DESK_PACKAGE_NAME tolva-desk)
set(CPACK_DEBIAN_DESK_PACKAGE_RECOMMENDS "tolva, libpq5 (>= 14)")
# Spelling in the language of whoever writes.
set(CPACK_DEBIAN_DESK_PACKAGE_SUGGESTS "hunspell-dictionary")
set(CPACK_COMPONENT_DESK_DEPENDS data)
set(CPACK_COMPONENT_DESK_DESCRIPTION
    "Window of a radio station's contact desk\nListeners' e-mails and text messages, folders, prizes and contacts,\nshared by several computers.")

set(CPACK_DEBIAN_PDF_PACKAGE_NAME tolva-pdf)
set(CPACK_COMPONENT_PDF_DESCRIPTION
    "Pages of a radio station's contact desk as PDF files\nWrites an HTML page to a PDF file without a display; nothing on the page\nruns and nothing is fetched.")

set(CPACK_DEBIAN_DATA_PACKAGE_NAME tolva-data)
set(CPACK_DEBIAN_DATA_PACKAGE_ARCHITECTURE all)
set(CPACK_DEBIAN_DATA_PACKAGE_SHLIBDEPS OFF)
set(CPACK_COMPONENT_DATA_DESCRIPTION
    "Page templates of a radio station's contact desk\nThe templates by which messages and prizes are printed; each station gets\na copy of them.")

set(CPACK_DEBIAN_LIBRARY_PACKAGE_NAME libkvtolva1-${PROJECT_VERSION_MAJOR})
set(CPACK_DEBIAN_LIBRARY_PACKAGE_SECTION libs)
set(CPACK_DEBIAN_LIBRARY_PACKAGE_CONTROL_EXTRA "${PROJECT_SOURCE_DIR}/packaging/library/triggers")
set(CPACK_COMPONENT_LIBRARY_DEPENDS data)
set(CPACK_COMPONENT_LIBRARY_DESCRIPTION
    "Library of a radio station's contact desk\nThe shared library for programs that open a station and show its controls.")

set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_NAME libkvtolva1-dev)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_SECTION libdevel)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_DEPENDS "qt6-base-dev")
set(CPACK_COMPONENT_DEVELOPMENT_DEPENDS library)
set(CPACK_COMPONENT_DEVELOPMENT_DESCRIPTION
    "Headers of the contact desk's library\nHeaders, package description for CMake, and the controls for Qt Designer.")
include(CPack)
