# Desktop integration: the launcher entry and the icon in the hicolor theme, beside the binary
# that src/app installs. With the icon installed, the status item names it by theme name.
include(GNUInstallDirs)

install(FILES ${PROJECT_SOURCE_DIR}/resources/horalo.desktop
        DESTINATION ${CMAKE_INSTALL_DATADIR}/applications)

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
