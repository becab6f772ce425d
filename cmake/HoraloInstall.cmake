# Desktop integration: the launcher entry, the software-centre metadata and the icon in the
# hicolor theme, beside the binary that src/app installs. With the icon installed, the status
# item names it by theme name.
include(GNUInstallDirs)

install(FILES ${PROJECT_SOURCE_DIR}/resources/org.horalo.Horalo.desktop
        DESTINATION ${CMAKE_INSTALL_DATADIR}/applications)
install(FILES ${PROJECT_SOURCE_DIR}/resources/org.horalo.Horalo.metainfo.xml
        DESTINATION ${CMAKE_INSTALL_DATADIR}/metainfo)

install(FILES ${PROJECT_SOURCE_DIR}/resources/Horalo.svg
        DESTINATION ${CMAKE_INSTALL_DATADIR}/icons/hicolor/scalable/apps
        RENAME horalo.svg)

foreach(size IN ITEMS 16 22 24 32 48 64 128 256)
    install(FILES ${PROJECT_SOURCE_DIR}/resources/icons/horalo-${size}.png
            DESTINATION ${CMAKE_INSTALL_DATADIR}/icons/hicolor/${size}x${size}/apps
            RENAME horalo.png)
endforeach()

# The running application's interface on the session bus, for programs that talk to it.
install(FILES ${PROJECT_SOURCE_DIR}/resources/dbus/org.horalo.Horalo.xml
        DESTINATION ${CMAKE_INSTALL_DATADIR}/dbus-1/interfaces)

# The status-area program that `horalo` with no command starts; not meant to be typed.
install(TARGETS horalo_desktop RUNTIME DESTINATION ${CMAKE_INSTALL_LIBEXECDIR}/horalo)

# The manual page, compressed as man-db and Debian's policy expect.
find_program(HORALO_GZIP gzip REQUIRED)
add_custom_command(OUTPUT ${PROJECT_BINARY_DIR}/horalo.1.gz
    COMMAND ${HORALO_GZIP} -9 -n -c ${PROJECT_SOURCE_DIR}/resources/horalo.1
            > ${PROJECT_BINARY_DIR}/horalo.1.gz
    DEPENDS ${PROJECT_SOURCE_DIR}/resources/horalo.1
    VERBATIM)
add_custom_target(horalo_manpage ALL DEPENDS ${PROJECT_BINARY_DIR}/horalo.1.gz)
install(FILES ${PROJECT_BINARY_DIR}/horalo.1.gz DESTINATION ${CMAKE_INSTALL_MANDIR}/man1)

# Shell completions, where each shell looks for them. zsh's system-wide directory differs
# between a distribution's packages (/usr) and a local install.
if(CMAKE_INSTALL_PREFIX STREQUAL "/usr")
    set(horalo_zsh_default "${CMAKE_INSTALL_DATADIR}/zsh/vendor-completions")
else()
    set(horalo_zsh_default "${CMAKE_INSTALL_DATADIR}/zsh/site-functions")
endif()
set(HORALO_ZSH_COMPLETION_DIR "${horalo_zsh_default}" CACHE STRING
    "Where the zsh completion is installed, relative to the prefix")
install(FILES ${PROJECT_SOURCE_DIR}/resources/completions/horalo.bash
        DESTINATION ${CMAKE_INSTALL_DATADIR}/bash-completion/completions RENAME horalo)
install(FILES ${PROJECT_SOURCE_DIR}/resources/completions/_horalo
        DESTINATION ${HORALO_ZSH_COMPLETION_DIR})
install(FILES ${PROJECT_SOURCE_DIR}/resources/completions/horalo.fish
        DESTINATION ${CMAKE_INSTALL_DATADIR}/fish/vendor_completions.d)
