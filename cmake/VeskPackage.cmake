# The Debian packages, one per install component, made by CPack's DEB
# generator (./run package runs `cpack -G DEB` in a Release tree):
#   libvesk-gui-roster-filter<suffix>-0    the shared libraries and the library's translations
#   libvesk-gui-roster-filter<suffix>-dev  headers, CMake package, pkg-config files
#   vesk-roster                            both programs, launcher, manual pages, completion
# Dependencies on other packages are computed from the binaries by
# dpkg-shlibdeps; the packages depend on each other by version.
set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME vesk-roster)
set(CPACK_PACKAGE_VENDOR "The Vesk developers")
set(CPACK_PACKAGE_CONTACT "The Vesk developers <roster@vesk.example.org>")
set(CPACK_PACKAGE_VERSION ${PROJECT_VERSION})
set(CPACK_PACKAGE_HOMEPAGE_URL https://vesk.example.org/roster)
set(CPACK_STRIP_FILES ON)
set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_COMPONENTS_ALL Runtime Development Programs)
set(CPACK_COMPONENT_DEVELOPMENT_DEPENDS Runtime)
set(CPACK_COMPONENT_PROGRAMS_DEPENDS Runtime)
set(CPACK_DEBIAN_ENABLE_COMPONENT_DEPENDS ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_RELEASE 1)
set(CPACK_DEBIAN_PACKAGE_PRIORITY optional)
set(CPACK_DEBIAN_PACKAGE_SOURCE vesk-roster)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
# The project's own libraries are found in the build tree; they belong to no
# installed package yet, which dpkg-shlibdeps is told to accept.
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS
    ${PROJECT_BINARY_DIR} ${PROJECT_BINARY_DIR}/host ${PROJECT_BINARY_DIR}/host/standin
    ${PROJECT_BINARY_DIR}/models ${PROJECT_BINARY_DIR}/widgets)

string(TOLOWER "libvesk-gui-roster-filter${VESK_LIBRARY_SUFFIX}" vesk_deb_library)
set(CPACK_DEBIAN_RUNTIME_PACKAGE_NAME ${vesk_deb_library}-0)
set(CPACK_DEBIAN_RUNTIME_PACKAGE_SECTION libs)
set(CPACK_DEBIAN_RUNTIME_DESCRIPTION "roster filters and sorting methods for an instant-messaging client
The shared libraries an instant-messaging desktop client loads to decide
which entries of the contact list are shown and in which order: the filter
library, the host classes it consumes, a proxy model for Qt views and the
filter and sorting-method editor widgets, with their translations.")
# A shlibs file, so that packages built against these libraries depend on
# this version or later; ldconfig runs through dpkg's trigger.
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS ON)
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS_POLICY ">=")
set(CPACK_DEBIAN_RUNTIME_PACKAGE_CONTROL_EXTRA ${PROJECT_SOURCE_DIR}/cmake/debian/triggers
    ${PROJECT_SOURCE_DIR}/cmake/debian/postinst ${PROJECT_SOURCE_DIR}/cmake/debian/postrm)

set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_NAME ${vesk_deb_library}-dev)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_SECTION libdevel)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_DEPENDS "qt${QT_MAJOR_VERSION}-base-dev")
set(CPACK_DEBIAN_DEVELOPMENT_DESCRIPTION "roster filters and sorting methods - development files
Headers, the CMake package VeskRosterFilter and pkg-config files for
building a client on the roster filter library, its proxy model and its
editor widgets.")

set(CPACK_DEBIAN_PROGRAMS_PACKAGE_NAME vesk-roster)
set(CPACK_DEBIAN_PROGRAMS_PACKAGE_SECTION net)
set(CPACK_DEBIAN_PROGRAMS_DESCRIPTION "show and edit roster filters and sorting methods
vesk-roster shows a contact list through the user's filters and sorting
methods on the command line and edits them; vesk-roster-gui is the roster
window with its filter and sorting-method editors. Both keep the settings
in one directory and never lose each other's changes.")
if(QT_MAJOR_VERSION EQUAL 6)
    # The window's icon is an SVG; Qt draws it with its SVG plug-in.
    set(CPACK_DEBIAN_PROGRAMS_PACKAGE_RECOMMENDS "libqt6svg6")
else()
    set(CPACK_DEBIAN_PROGRAMS_PACKAGE_RECOMMENDS "libqt5svg5")
endif()

# Each package carries the copyright file and a changelog in its doc
# directory, as every Debian package must.
set(VESK_DEB_VERSION ${PROJECT_VERSION}-${CPACK_DEBIAN_PACKAGE_RELEASE})
string(TIMESTAMP VESK_DEB_DATE "%a, %d %b %Y %H:%M:%S +0000" UTC)
configure_file(${PROJECT_SOURCE_DIR}/cmake/debian/changelog.in
    ${PROJECT_BINARY_DIR}/debian/changelog.Debian @ONLY)
execute_process(COMMAND gzip -9nf ${PROJECT_BINARY_DIR}/debian/changelog.Debian)
foreach(component Runtime Development Programs)
    string(TOUPPER ${component} upper)
    install(FILES ${PROJECT_SOURCE_DIR}/cmake/debian/copyright
        ${PROJECT_BINARY_DIR}/debian/changelog.Debian.gz
        DESTINATION ${CMAKE_INSTALL_DATADIR}/doc/${CPACK_DEBIAN_${upper}_PACKAGE_NAME}
        COMPONENT ${component} EXCLUDE_FROM_ALL)
endforeach()
include(CPack)
