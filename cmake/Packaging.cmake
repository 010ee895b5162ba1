# Debian packages, made by `cpack` in the build folder: wavedeck (program, libraries, page, documents) and wavedeck-dev
# (headers and packages for developers of hosts). What the libraries need is found by dpkg-shlibdeps.

set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME wavedeck)
set(CPACK_PACKAGE_VENDOR "WaveDeck developers")
set(CPACK_PACKAGE_CONTACT "WaveDeck developers <wavedeck@localhost>")
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_STRIP_FILES ON)
set(CPACK_COMPONENTS_ALL Runtime Development)
set(CPACK_DEB_COMPONENT_INSTALL ON)

set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_RELEASE 1)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS ${CMAKE_LIBRARY_OUTPUT_DIRECTORY})
set(CPACK_DEBIAN_ENABLE_COMPONENT_DEPENDS ON)
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)

set(CPACK_DEBIAN_RUNTIME_PACKAGE_NAME wavedeck)
set(CPACK_DEBIAN_RUNTIME_PACKAGE_SECTION science)
set(CPACK_DEBIAN_RUNTIME_DESCRIPTION "Plays recordings, raw samples, live streams and test signals through
chains of measurement stages, reports the figures, and shows the traces in
the browser. The stages are a library that hosts load by name.")
set(CPACK_DEBIAN_RUNTIME_PACKAGE_CONTROL_EXTRA ${CMAKE_CURRENT_LIST_DIR}/package/triggers)

set(CPACK_COMPONENT_DEVELOPMENT_DEPENDS Runtime)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_NAME wavedeck-dev)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_SECTION libdevel)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_SHLIBDEPS OFF)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_DEPENDS "libpoco-dev, libboost-dev (>= 1.74)")
set(CPACK_DEBIAN_DEVELOPMENT_DESCRIPTION "Headers of the host and of its driver, of the records that stages
publish and of the catalogue of options, the C header for other languages,
and the files by which CMake and pkg-config find them.")

set(CPACK_PRE_BUILD_SCRIPTS ${CMAKE_CURRENT_LIST_DIR}/package/DebianDocuments.cmake)

include(CPack)
