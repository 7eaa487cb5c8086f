# What "cmake --install" puts where, how other projects find it, and the Debian package.
include(CMakePackageConfigHelpers)

set(includeDir ${CMAKE_INSTALL_INCLUDEDIR}/MediaPlayer)
set(pluginDir ${CMAKE_INSTALL_LIBDIR}/mediaplayer)
set(plugin ${pluginDir}/${CMAKE_SHARED_MODULE_PREFIX}MediaPlayer${CMAKE_SHARED_MODULE_SUFFIX})
set(configDir ${CMAKE_INSTALL_LIBDIR}/cmake/MediaPlayer)
set(pkgConfigDir ${CMAKE_INSTALL_LIBDIR}/pkgconfig)

install(TARGETS MediaPlayer LIBRARY DESTINATION ${pluginDir})
install(FILES
  boundary/BasicWidget.h
  boundary/MediaPlayerFactories.h
  boundary/MediaPlayerParams.h
  diagnostics/MediaPlayerDiagnostics.h
  DESTINATION ${includeDir})
set(docDir ${CMAKE_INSTALL_DATAROOTDIR}/doc/mediaplayer)
install(FILES docs/diagnostics.md docs/getting-started.md docs/host-guide.md DESTINATION ${docDir})
install(DIRECTORY samples DESTINATION ${docDir})
install(DIRECTORY host/ DESTINATION ${docDir}/examples)

install(EXPORT MediaPlayerTargets NAMESPACE MediaPlayer:: DESTINATION ${configDir})
configure_package_config_file(cmake/MediaPlayerConfig.cmake.in MediaPlayerConfig.cmake
  INSTALL_DESTINATION ${configDir} PATH_VARS includeDir plugin)
write_basic_package_version_file(MediaPlayerConfigVersion.cmake COMPATIBILITY SameMajorVersion)
install(FILES
  ${CMAKE_CURRENT_BINARY_DIR}/MediaPlayerConfig.cmake
  ${CMAKE_CURRENT_BINARY_DIR}/MediaPlayerConfigVersion.cmake
  DESTINATION ${configDir})

# Relative to the file itself, so that an installation can be moved or staged.
file(RELATIVE_PATH pkgConfigToPrefix
  ${CMAKE_INSTALL_PREFIX}/${pkgConfigDir} ${CMAKE_INSTALL_PREFIX})
string(REGEX REPLACE "/$" "" pkgConfigToPrefix ${pkgConfigToPrefix})
configure_file(cmake/mediaplayer.pc.in mediaplayer.pc @ONLY)
install(FILES ${CMAKE_CURRENT_BINARY_DIR}/mediaplayer.pc DESTINATION ${pkgConfigDir})

# client_package(COMPONENT ABOUT REQUIRES [LIBS]): the same for a library of the client's.
function(client_package component about requires)
  set(libs "${ARGN} -lMediaPlayer${component}")
  string(TOLOWER mediaplayer-${component}.pc file)
  configure_file(cmake/mediaplayer-component.pc.in ${file} @ONLY)
  install(FILES ${CMAKE_CURRENT_BINARY_DIR}/${file} DESTINATION ${pkgConfigDir})
endfunction()
client_package(Client "without a picture" "Qt6Core Qt6Gui")
client_package(Widgets "for widgets" "mediaplayer-client Qt6Widgets")
client_package(Quick "for Qt Quick" "mediaplayer-client Qt6Qml Qt6Quick" -Wl,--no-as-needed)

# Of the packages that are needed to run, dpkg-shlibdeps finds those that are linked. The others
# are loaded while a program runs, and are taken from the scripts' list for this system.
execute_process(
  COMMAND bash -euc [[. cmake/packages.sh; echo "${packagesRun[@]}" "${packagesHosts[@]}"]]
  WORKING_DIRECTORY ${CMAKE_CURRENT_SOURCE_DIR} OUTPUT_VARIABLE loadedAtRunTime
  OUTPUT_STRIP_TRAILING_WHITESPACE COMMAND_ERROR_IS_FATAL ANY)
string(REPLACE " " ", " loadedAtRunTime "${loadedAtRunTime}")
set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS cmake/packages.sh)

set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME mediaplayer)
set(CPACK_PACKAGE_CONTACT "MediaPlayer maintainers <maintainers@localhost>")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "Media player controls for Qt 6 programs")
set(CPACK_PACKAGE_DESCRIPTION
"A plug-in that places media players into the windows of a Qt 6 program, a library for programs that
use it, widgets or Qt Quick, and an example of both.")
set(CPACK_STRIP_FILES ON)
set(CPACK_SET_DESTDIR ON) # the scene files have an absolute path
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SECTION video)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS ${CMAKE_CURRENT_BINARY_DIR}/client)
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS ON)
set(CPACK_DEBIAN_PACKAGE_DEPENDS "${loadedAtRunTime}")
set(CPACK_DEBIAN_PACKAGE_SUGGESTS "qt6-base-dev, qt6-declarative-dev")
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)
include(CPack)
