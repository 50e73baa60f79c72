# The programs as a desktop installs them (component Programs): both under
# bin/, the stand-in and live XMPP libraries they load in a private directory,
# the launcher, the AppStream metainfo, the icon, the manual pages made from
# the programs' own help, and the shell completion.
set(VESK_PRIVATE_LIBDIR ${CMAKE_INSTALL_LIBDIR}/vesk-roster)
# The stand-in is the programs' business, no client's: not in the library
# directory, and found through the programs' RUNPATH. The public libraries
# are found through the same RUNPATH under any prefix, and through the
# system's search path under /usr.
file(RELATIVE_PATH vesk_bin_to_libdir /prefix/${CMAKE_INSTALL_BINDIR} /prefix/${CMAKE_INSTALL_LIBDIR})
set_target_properties(vesk-roster vesk-roster-gui PROPERTIES
    INSTALL_RPATH "\$ORIGIN/${vesk_bin_to_libdir}/vesk-roster;\$ORIGIN/${vesk_bin_to_libdir}")
install(TARGETS vesk-roster vesk-roster-gui RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR}
    COMPONENT Programs)
# The live XMPP host goes beside it: the programs' business too. It finds the
# stand-in beside itself and the host library one directory up.
set_target_properties(vesk_xmpp PROPERTIES INSTALL_RPATH "\$ORIGIN;\$ORIGIN/..")
install(TARGETS vesk_standin vesk_xmpp LIBRARY DESTINATION ${VESK_PRIVATE_LIBDIR}
    COMPONENT Programs NAMELINK_SKIP)

set(vesk_app_id org.vesk.VeskRosterGui)
set(vesk_desktop_dir ${PROJECT_SOURCE_DIR}/gui/desktop)
configure_file(${vesk_desktop_dir}/${vesk_app_id}.metainfo.xml.in
    ${PROJECT_BINARY_DIR}/desktop/${vesk_app_id}.metainfo.xml @ONLY)
install(FILES ${vesk_desktop_dir}/${vesk_app_id}.desktop
    DESTINATION ${CMAKE_INSTALL_DATADIR}/applications COMPONENT Programs)
install(FILES ${PROJECT_BINARY_DIR}/desktop/${vesk_app_id}.metainfo.xml
    DESTINATION ${CMAKE_INSTALL_DATADIR}/metainfo COMPONENT Programs)
install(FILES ${vesk_desktop_dir}/${vesk_app_id}.svg
    DESTINATION ${CMAKE_INSTALL_DATADIR}/icons/hicolor/scalable/apps COMPONENT Programs)
install(FILES ${PROJECT_SOURCE_DIR}/vesk-roster/completion/vesk-roster.bash
    DESTINATION ${CMAKE_INSTALL_DATADIR}/bash-completion/completions RENAME vesk-roster
    COMPONENT Programs)

# Manual pages: without help2man (a quick build for a demo), none are made.
find_program(VESK_HELP2MAN help2man)
if(VESK_HELP2MAN)
    set(vesk_pages)
    foreach(page "vesk-roster|show and edit roster filters and sorting methods on the command line"
            "vesk-roster-gui|the roster window: a contact list through filters and sorting methods")
        string(REPLACE "|" ";" page "${page}")
        list(GET page 0 program)
        list(GET page 1 name)
        set(out ${PROJECT_BINARY_DIR}/man/${program}.1)
        # Installed compressed, as Debian wants; gzip -n keeps no name or
        # time stamp, so that every build gives the same bytes.
        add_custom_command(OUTPUT ${out} ${out}.gz
            COMMAND ${CMAKE_COMMAND} -E make_directory ${PROJECT_BINARY_DIR}/man
            COMMAND ${PROJECT_SOURCE_DIR}/cmake/manpage.sh $<TARGET_FILE:${program}> ${name} ${out}
            COMMAND gzip -9nkf ${out}
            DEPENDS ${program} ${PROJECT_SOURCE_DIR}/cmake/manpage.sh
            VERBATIM)
        list(APPEND vesk_pages ${out}.gz)
    endforeach()
    add_custom_target(vesk_man_pages ALL DEPENDS ${vesk_pages})
    install(FILES ${vesk_pages} DESTINATION ${CMAKE_INSTALL_MANDIR}/man1 COMPONENT Programs)
else()
    message(STATUS "help2man not found: no manual pages (install help2man)")
endif()
