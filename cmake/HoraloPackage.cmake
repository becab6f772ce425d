# The Debian package, made by CPack from what `cmake --install` installs:
#   cpack -G DEB   (in a build tree configured with -DCMAKE_INSTALL_PREFIX=/usr; see
#   scripts/package.sh)
# Library dependencies come from dpkg-shlibdeps; what the binary loads as plugins, which
# shlibdeps cannot see, is named by hand: the TIFF reader of the title icon, the SVG reader
# of the window icon and the Wayland platform.
set(CPACK_PACKAGE_NAME horalo)
set(CPACK_PACKAGE_VENDOR "The Horalo developers")
set(CPACK_PACKAGE_CONTACT "The Horalo developers <maintainers@horalo.org>")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "date and time in the status area, one click from the clipboard")
set(CPACK_PACKAGE_DESCRIPTION
    "Horalo puts the date or time in the desktop's status area, in the format
the user picks, refreshed every second. Its menu shows the present moment in
many formats (locale styles, date only, time only, numerical forms, GMT
offset, custom formats); choosing an entry copies that text to the clipboard.
A command line renders any format and reads and writes the settings.")
set(CPACK_PACKAGING_INSTALL_PREFIX "/usr")
set(CPACK_STRIP_FILES ON)

set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SECTION utils)
set(CPACK_DEBIAN_PACKAGE_PRIORITY optional)
set(CPACK_DEBIAN_PACKAGE_HOMEPAGE "https://horalo.org/")
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_DEPENDS "qt6-image-formats-plugins, libqt6svg6")
# Qt's Wayland platform, for sessions without an X server.
set(CPACK_DEBIAN_PACKAGE_RECOMMENDS "qt6-wayland")
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION TRUE)
set(CPACK_DEBIAN_COMPRESSION_TYPE xz)

# What Debian's policy asks of every package: its copyright and its changelog, compressed.
add_custom_command(OUTPUT ${PROJECT_BINARY_DIR}/changelog.gz
    COMMAND ${HORALO_GZIP} -9 -n -c ${PROJECT_SOURCE_DIR}/resources/debian/changelog
            > ${PROJECT_BINARY_DIR}/changelog.gz
    DEPENDS ${PROJECT_SOURCE_DIR}/resources/debian/changelog
    VERBATIM)
add_custom_target(horalo_changelog ALL DEPENDS ${PROJECT_BINARY_DIR}/changelog.gz)
install(FILES ${PROJECT_SOURCE_DIR}/resources/debian/copyright ${PROJECT_BINARY_DIR}/changelog.gz
        DESTINATION ${CMAKE_INSTALL_DATADIR}/doc/horalo)

include(CPack)
