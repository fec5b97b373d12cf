# What `cmake --install` and `cpack -G DEB` put in place besides the programs
# and the data files: the desktop entry, the icons, the AppStream metadata and
# the man pages. The package is laid out under CMAKE_INSTALL_PREFIX, the
# folder the programs' compiled-in data directory points into.
find_program(ORV_GZIP gzip REQUIRED)
set(ORV_MAN_PAGES orvane-cli)
if(TARGET orvane-builder)
  list(APPEND ORV_MAN_PAGES orvane-builder)
endif()
set(man_outputs "")
foreach(page ${ORV_MAN_PAGES})
  set(out ${CMAKE_BINARY_DIR}/man/${page}.1.gz)
  add_custom_command(OUTPUT ${out}
    COMMAND ${CMAKE_COMMAND} -E make_directory ${CMAKE_BINARY_DIR}/man
    COMMAND ${ORV_GZIP} -9nc ${CMAKE_SOURCE_DIR}/resources/man/${page}.1 > ${out}
    DEPENDS ${CMAKE_SOURCE_DIR}/resources/man/${page}.1)
  list(APPEND man_outputs ${out})
endforeach()
add_custom_target(orvane-man ALL DEPENDS ${man_outputs})
install(FILES ${man_outputs} DESTINATION ${CMAKE_INSTALL_MANDIR}/man1)

if(TARGET orvane-builder)
  set(ORV_APP_ID hu.orvane.builder)
  configure_file(${CMAKE_SOURCE_DIR}/resources/${ORV_APP_ID}.desktop.in ${CMAKE_BINARY_DIR}/${ORV_APP_ID}.desktop @ONLY)
  install(FILES ${CMAKE_BINARY_DIR}/${ORV_APP_ID}.desktop DESTINATION ${CMAKE_INSTALL_DATADIR}/applications)
  install(FILES ${CMAKE_SOURCE_DIR}/resources/${ORV_APP_ID}.metainfo.xml DESTINATION ${CMAKE_INSTALL_DATADIR}/metainfo)
  set(icons ${CMAKE_INSTALL_DATADIR}/icons/hicolor)
  install(FILES ${ORV_BIN_DIR}/orvane-builder.svg DESTINATION ${icons}/scalable/apps)
  foreach(size 48 128)
    install(FILES ${ORV_BIN_DIR}/orvane-builder-${size}.png DESTINATION ${icons}/${size}x${size}/apps
            RENAME orvane-builder.png)
  endforeach()
  find_program(ORV_APPSTREAMCLI appstreamcli)
  if(ORV_BUILD_TESTS AND ORV_APPSTREAMCLI)
    add_test(NAME AppStreamMetadataIsValid
      COMMAND ${ORV_APPSTREAMCLI} validate --no-net --pedantic ${CMAKE_SOURCE_DIR}/resources/${ORV_APP_ID}.metainfo.xml)
  endif()
endif()

set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME orvane-builder)
set(CPACK_PACKAGE_VERSION 1.0.0)
set(CPACK_PACKAGE_CONTACT "Orvane Builder developers <orvane-builder@localhost>")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "level editor of the space shooter Orvane Battle")
set(CPACK_PACKAGE_DESCRIPTION "Builds, textures, lights and populates the levels of Orvane Battle in 3D;
orvane-cli checks, converts, edits by script, simulates and draws level files.")
set(CPACK_PACKAGING_INSTALL_PREFIX ${CMAKE_INSTALL_PREFIX})
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SECTION games)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
# Loaded at run time, where dpkg-shlibdeps cannot see them: OpenAL, Mesa's
# EGL and drivers (the offscreen pictures), and Qt's own Hungarian texts.
set(CPACK_DEBIAN_PACKAGE_DEPENDS "libopenal1, libegl-mesa0, libgl1-mesa-dri, qt6-translations-l10n")
include(CPack)
