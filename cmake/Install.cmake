# What `cmake --install` and `cpack` put where. The installed tree can be moved: libraries find each other, the program
# its libraries and its page, and the packages their files from where they stand.
#
# The libraries carry no version in their file names: hosts load the measurement library by its plain name, and whoever
# has another host puts it in the place of libwavedeck.so.

include(GNUInstallDirs)
include(CMakePackageConfigHelpers)

set(WAVEDECK_HEADERS ${CMAKE_INSTALL_INCLUDEDIR}/wavedeck)
set(WAVEDECK_PACKAGE ${CMAKE_INSTALL_LIBDIR}/cmake/wavedeck)
set(WAVEDECK_PAGES ${CMAKE_INSTALL_DATADIR}/wavedeck/web)

# Programs and libraries

file(RELATIVE_PATH from_programs_to_libraries /${CMAKE_INSTALL_BINDIR} /${CMAKE_INSTALL_LIBDIR})
set_target_properties(dspwavedecksimpl wavedeck_host fftbridge PROPERTIES INSTALL_RPATH "$ORIGIN")
set_target_properties(wavedeck_program PROPERTIES INSTALL_RPATH "$ORIGIN/${from_programs_to_libraries}")
install(TARGETS wavedeck_program dspwavedecksimpl fftbridge
  RUNTIME COMPONENT Runtime LIBRARY COMPONENT Runtime)

# The display page. What it is drawn with comes from npm (`npm ci --prefix web`) and is installed if it is there.

install(FILES web/index.html web/style.css DESTINATION ${WAVEDECK_PAGES} COMPONENT Runtime)
install(DIRECTORY web/js DESTINATION ${WAVEDECK_PAGES} COMPONENT Runtime)
install(DIRECTORY web/node_modules DESTINATION ${WAVEDECK_PAGES} COMPONENT Runtime OPTIONAL
  FILES_MATCHING PATTERN "*.min.js" PATTERN "*.min.css" PATTERN "LICENSE*" PATTERN "src" EXCLUDE)
install(CODE "if(NOT EXISTS \"${PROJECT_SOURCE_DIR}/web/node_modules\")
  message(WARNING \"The display page is installed without its drawing library: run npm ci --prefix web first\")
endif()" COMPONENT Runtime)

# Documents

install(FILES README.md DESTINATION ${CMAKE_INSTALL_DOCDIR} COMPONENT Runtime)
install(DIRECTORY docs examples DESTINATION ${CMAKE_INSTALL_DOCDIR} COMPONENT Runtime)
install(FILES cmake/package/copyright DESTINATION ${CMAKE_INSTALL_DOCDIR} COMPONENT Runtime)
install(FILES cmake/package/copyright DESTINATION ${CMAKE_INSTALL_DOCDIR}-dev COMPONENT Development)
# Terms of the header libraries that are compiled in, as the packages tell them from which they came.
foreach(header_library nlohmann-json3-dev libcli11-dev)
  install(FILES /usr/share/doc/${header_library}/copyright DESTINATION ${CMAKE_INSTALL_DOCDIR}/licenses
    COMPONENT Runtime RENAME ${header_library} OPTIONAL)
endforeach()
install(FILES ${WAVEDECK_COMMAND_PAGES}/wavedeck.1 DESTINATION ${CMAKE_INSTALL_MANDIR}/man1 COMPONENT Runtime)
install(FILES ${WAVEDECK_COMMAND_PAGES}/wavedeck.bash COMPONENT Runtime
  DESTINATION ${CMAKE_INSTALL_DATADIR}/bash-completion/completions RENAME wavedeck)

# For developers of hosts

# install_headers(TARGET NAME FOLDER PATTERN): exports a target as wavedeck::NAME and installs those headers of a folder
# whose names match.
function(install_headers target name folder pattern)
  set_target_properties(${target} PROPERTIES EXPORT_NAME ${name})
  target_include_directories(${target} INTERFACE $<INSTALL_INTERFACE:${WAVEDECK_HEADERS}/${name}>)
  install(TARGETS ${target} EXPORT wavedeck RUNTIME COMPONENT Runtime LIBRARY COMPONENT Runtime)
  install(DIRECTORY ${folder}/ DESTINATION ${WAVEDECK_HEADERS}/${name} COMPONENT Development
    FILES_MATCHING REGEX "/${pattern}[.]h$")
endfunction()

install_headers(wavedeck_host host src/host/include "[A-Za-z]+")
install_headers(wavedeck_driver driver src/host/driver
  "(BlockflowSimulation|ChainKind|ClientFacts|DeckClient|DriverError|MessageText|QueryValue|StageLibrary)")
install_headers(records records src/records "[A-Za-z]+")
install_headers(catalogue catalogue src/catalogue "[A-Za-z]+")
target_include_directories(wavedeck_host INTERFACE $<INSTALL_INTERFACE:${CMAKE_INSTALL_INCLUDEDIR}>)
install(FILES src/host/c/wavedeck.h DESTINATION ${CMAKE_INSTALL_INCLUDEDIR} COMPONENT Development)
install(EXPORT wavedeck NAMESPACE wavedeck:: FILE wavedeckTargets.cmake DESTINATION ${WAVEDECK_PACKAGE}
  COMPONENT Development)

configure_package_config_file(cmake/package/wavedeckConfig.cmake.in ${CMAKE_BINARY_DIR}/package/wavedeckConfig.cmake
  INSTALL_DESTINATION ${WAVEDECK_PACKAGE} PATH_VARS CMAKE_INSTALL_LIBDIR)
write_basic_package_version_file(${CMAKE_BINARY_DIR}/package/wavedeckConfigVersion.cmake
  COMPATIBILITY SameMinorVersion)
install(FILES ${CMAKE_BINARY_DIR}/package/wavedeckConfig.cmake ${CMAKE_BINARY_DIR}/package/wavedeckConfigVersion.cmake
  DESTINATION ${WAVEDECK_PACKAGE} COMPONENT Development)

file(RELATIVE_PATH from_pkgconfig_to_prefix /${CMAKE_INSTALL_LIBDIR}/pkgconfig /)
configure_file(cmake/package/wavedeck.pc.in ${CMAKE_BINARY_DIR}/package/wavedeck.pc @ONLY)
install(FILES ${CMAKE_BINARY_DIR}/package/wavedeck.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig
  COMPONENT Development)

# What has to be built for all of it.
add_custom_target(installation DEPENDS wavedeck_program dspwavedecksimpl wavedeck_host fftbridge command_pages)

include(Packaging)
