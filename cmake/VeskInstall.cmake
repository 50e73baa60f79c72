# Installs the libraries a client links as one CMake package, VeskRosterFilter
# (targets Vesk::<EXPORT_NAME>), with a pkg-config file per library.
#
# vesk_install_library(TARGET DESCRIPTION TEXT [REQUIRES pkg...] [QT_COMPONENTS comp...])
#   TARGET must set EXPORT_NAME and PUBLIC_HEADER (public headers only, never
#   a _p.h) and include its headers through $<INSTALL_INTERFACE:include/TARGET>.
#   REQUIRES names the pkg-config modules of the project it uses in public
#   (by target name), QT_COMPONENTS the Qt modules.
# vesk_install_package() writes the package once every library is listed.
#
# Everything is installed in one of three components, which are the three
# Debian packages: Runtime (the shared libraries and the library's
# translations), Development (headers, the CMake package, pkg-config files,
# the unversioned .so links) and Programs (see VeskPrograms.cmake).
include(GNUInstallDirs)
include(CMakePackageConfigHelpers)

set(VESK_PACKAGE_QT_COMPONENTS "" CACHE INTERNAL "")
set(VESK_PACKAGE_DIR ${CMAKE_INSTALL_LIBDIR}/cmake/VeskRosterFilter${VESK_LIBRARY_SUFFIX})
file(RELATIVE_PATH VESK_PC_TO_PREFIX "/prefix/${CMAKE_INSTALL_LIBDIR}/pkgconfig" "/prefix")
string(REGEX REPLACE "/$" "" VESK_PC_TO_PREFIX "${VESK_PC_TO_PREFIX}")

function(vesk_install_library target)
    cmake_parse_arguments(ARG "" "DESCRIPTION" "REQUIRES;QT_COMPONENTS" ${ARGN})
    set_target_properties(${target} PROPERTIES OUTPUT_NAME ${target}${VESK_LIBRARY_SUFFIX})
    # Header paths may be given relative to the target's own folder.
    get_target_property(headers ${target} PUBLIC_HEADER)
    get_target_property(source_dir ${target} SOURCE_DIR)
    set(absolute)
    foreach(header ${headers})
        get_filename_component(header ${header} ABSOLUTE BASE_DIR ${source_dir})
        list(APPEND absolute ${header})
    endforeach()
    set_target_properties(${target} PROPERTIES PUBLIC_HEADER "${absolute}")
    install(TARGETS ${target} EXPORT VeskRosterFilterTargets
        LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT Runtime NAMELINK_COMPONENT Development
        PUBLIC_HEADER DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/${target} COMPONENT Development)

    set(requires)
    foreach(module ${ARG_REQUIRES})
        list(APPEND requires ${module}${VESK_LIBRARY_SUFFIX})
    endforeach()
    foreach(component ${ARG_QT_COMPONENTS})
        list(APPEND requires Qt${QT_MAJOR_VERSION}${component})
    endforeach()
    list(JOIN requires " " VESK_PC_REQUIRES)
    set(VESK_PC_NAME ${target}${VESK_LIBRARY_SUFFIX})
    set(VESK_PC_TARGET ${target})
    set(VESK_PC_DESCRIPTION "${ARG_DESCRIPTION}")
    configure_file(${PROJECT_SOURCE_DIR}/cmake/vesk-library.pc.in
        ${PROJECT_BINARY_DIR}/pkgconfig/${VESK_PC_NAME}.pc @ONLY)
    install(FILES ${PROJECT_BINARY_DIR}/pkgconfig/${VESK_PC_NAME}.pc
        DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig COMPONENT Development)

    set(components ${VESK_PACKAGE_QT_COMPONENTS} ${ARG_QT_COMPONENTS})
    list(REMOVE_DUPLICATES components)
    set(VESK_PACKAGE_QT_COMPONENTS "${components}" CACHE INTERNAL "")
endfunction()

function(vesk_install_package)
    install(EXPORT VeskRosterFilterTargets NAMESPACE Vesk::
        FILE VeskRosterFilterTargets.cmake DESTINATION ${VESK_PACKAGE_DIR} COMPONENT Development)
    list(JOIN VESK_PACKAGE_QT_COMPONENTS " " VESK_PACKAGE_QT_COMPONENTS)
    configure_package_config_file(${PROJECT_SOURCE_DIR}/cmake/VeskRosterFilterConfig.cmake.in
        ${PROJECT_BINARY_DIR}/VeskRosterFilterConfig.cmake INSTALL_DESTINATION ${VESK_PACKAGE_DIR})
    write_basic_package_version_file(${PROJECT_BINARY_DIR}/VeskRosterFilterBasicVersion.cmake
        COMPATIBILITY SameMajorVersion)
    configure_file(${PROJECT_SOURCE_DIR}/cmake/VeskRosterFilterConfigVersion.cmake.in
        ${PROJECT_BINARY_DIR}/VeskRosterFilterConfigVersion.cmake @ONLY)
    install(FILES ${PROJECT_BINARY_DIR}/VeskRosterFilterConfig.cmake
        ${PROJECT_BINARY_DIR}/VeskRosterFilterConfigVersion.cmake
        ${PROJECT_BINARY_DIR}/VeskRosterFilterBasicVersion.cmake
        DESTINATION ${VESK_PACKAGE_DIR} COMPONENT Development)
endfunction()
