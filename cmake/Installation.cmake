# What "cmake --install" puts where, and the Debian package made of it.
set(FERROW_APPLICATION_ID net.kelvard.ferrow_rcon)
set(packaging ${CMAKE_SOURCE_DIR}/packaging)
set(shared_folder ${CMAKE_INSTALL_DATADIR}/kelvard-ferrow-remote-console)

# Unproven: nobody has built this on macOS yet.
if(APPLE)
    set_target_properties(ferrow-rcon PROPERTIES
        MACOSX_BUNDLE ON
        MACOSX_BUNDLE_GUI_IDENTIFIER ${FERROW_APPLICATION_ID}
        MACOSX_BUNDLE_BUNDLE_NAME "Kelvard Ferrow Remote Console"
        MACOSX_BUNDLE_BUNDLE_VERSION ${PROJECT_VERSION}
        MACOSX_BUNDLE_SHORT_VERSION_STRING ${PROJECT_VERSION})
    install(TARGETS ferrow-rcon BUNDLE DESTINATION .)
    install(DIRECTORY resources/ DESTINATION ferrow-rcon.app/Contents/Resources PATTERN *.desktop EXCLUDE)
    install(FILES docs/guide.md DESTINATION ferrow-rcon.app/Contents/Resources)
    install(TARGETS ferrow-demo-server DESTINATION ${CMAKE_INSTALL_BINDIR})
    return()
endif()

install(TARGETS ferrow-rcon ferrow-demo-server DESTINATION ${CMAKE_INSTALL_BINDIR})
install(DIRECTORY resources/ DESTINATION ${shared_folder} PATTERN *.desktop EXCLUDE)
install(FILES resources/${FERROW_APPLICATION_ID}.desktop DESTINATION ${CMAKE_INSTALL_DATADIR}/applications)
install(FILES ${packaging}/${FERROW_APPLICATION_ID}.metainfo.xml DESTINATION ${CMAKE_INSTALL_DATADIR}/metainfo)
install(FILES resources/icons/${FERROW_APPLICATION_ID}.svg
    DESTINATION ${CMAKE_INSTALL_DATADIR}/icons/hicolor/scalable/apps)
foreach(size 16 32 48 128 256)
    install(FILES resources/icons/${size}.png RENAME ${FERROW_APPLICATION_ID}.png
        DESTINATION ${CMAKE_INSTALL_DATADIR}/icons/hicolor/${size}x${size}/apps)
endforeach()
install(FILES packaging/debian/copyright docs/guide.md DESTINATION ${CMAKE_INSTALL_DATADIR}/doc/ferrow-rcon)
install(DIRECTORY docs/pictures DESTINATION ${CMAKE_INSTALL_DATADIR}/doc/ferrow-rcon)

# Manual pages and change lists are installed compressed, without a name or a time inside.
find_program(GZIP gzip REQUIRED)
function(install_compressed file name folder)
    set(compressed ${CMAKE_BINARY_DIR}/packaging/${name}.gz)
    add_custom_command(OUTPUT ${compressed}
        COMMAND ${CMAKE_COMMAND} -E make_directory ${CMAKE_BINARY_DIR}/packaging
        COMMAND ${GZIP} -9nc ${file} > ${compressed}
        DEPENDS ${file} VERBATIM)
    add_custom_target(compress-${name} ALL DEPENDS ${compressed})
    install(FILES ${compressed} DESTINATION ${folder})
endfunction()
foreach(page ferrow-rcon.1 ferrow-demo-server.1)
    install_compressed(${packaging}/man/${page} ${page} ${CMAKE_INSTALL_MANDIR}/man1)
endforeach()
install_compressed(${packaging}/debian/changelog changelog ${CMAKE_INSTALL_DATADIR}/doc/ferrow-rcon)

set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME ferrow-rcon)
set(CPACK_PACKAGE_VENDOR "The Kelvard Ferrow Remote Console developers")
set(CPACK_PACKAGE_CONTACT "The Kelvard Ferrow Remote Console developers <developers@ferrow-rcon.example>")
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_STRIP_FILES ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SECTION net)
set(CPACK_DEBIAN_PACKAGE_PRIORITY optional)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
# The window system's plugin and a font to write with: no library names them.
set(CPACK_DEBIAN_PACKAGE_DEPENDS "qt6-qpa-plugins")
set(CPACK_DEBIAN_PACKAGE_RECOMMENDS "fonts-dejavu-core | fonts-liberation")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "remote console for the dedicated server of a shooter")
set(CPACK_DEBIAN_PACKAGE_DESCRIPTION
"See and run a dedicated game server from one window: players, maps and map
rotations, playlists, settings, timed messages, configuration files and a raw
console. The window stays usable however slow the server is.
.
A demo server for trying everything out is built in, and comes as a program
of its own.")
set(CPACK_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS
    OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)
include(CPack)
