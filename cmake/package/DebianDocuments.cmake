# What Debian asks of documents in a package: manual pages are compressed, and a changelog lies beside the copyright.
# cpack runs it on the staged trees before it makes packages of them; the version is that of the packages.

file(GLOB_RECURSE manual_pages ${CPACK_TEMPORARY_DIRECTORY}/wavedeck.1)
file(GLOB_RECURSE copyrights ${CPACK_TEMPORARY_DIRECTORY}/copyright)
set(documents ${manual_pages})
foreach(copyright IN LISTS copyrights)
  cmake_path(REPLACE_FILENAME copyright changelog.Debian OUTPUT_VARIABLE changelog)
  configure_file(${CMAKE_CURRENT_LIST_DIR}/changelog.in ${changelog} @ONLY)
  list(APPEND documents ${changelog})
endforeach()
execute_process(COMMAND gzip --best --no-name ${documents} COMMAND_ERROR_IS_FATAL ANY)
