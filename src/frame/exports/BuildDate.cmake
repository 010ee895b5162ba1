# Writes BuildDate.h and the linker's version script. The build date is SOURCE_DATE_EPOCH where that is set, else the
# date of the last commit: two builds of one state of the sources are the same, and one commit compiles one file anew.

function(write_build_date file version)
  if(DEFINED ENV{SOURCE_DATE_EPOCH})
    string(TIMESTAMP date UTC)  # takes the variable's time
  else()
    find_package(Git QUIET)
    set(date unknown)
    if(GIT_FOUND)
      execute_process(COMMAND ${CMAKE_COMMAND} -E env TZ=UTC ${GIT_EXECUTABLE} log -1 --format=%cd
                              --date=format-local:%Y-%m-%dT%H:%M:%SZ
        WORKING_DIRECTORY ${CMAKE_CURRENT_SOURCE_DIR} OUTPUT_VARIABLE commit_date OUTPUT_STRIP_TRAILING_WHITESPACE
        RESULT_VARIABLE failed ERROR_QUIET)
      if(NOT failed)
        set(date ${commit_date})
        # A commit appends to the log of HEAD: look at the date again then.
        execute_process(COMMAND ${GIT_EXECUTABLE} rev-parse --path-format=absolute --git-path logs/HEAD
          WORKING_DIRECTORY ${CMAKE_CURRENT_SOURCE_DIR} OUTPUT_VARIABLE log OUTPUT_STRIP_TRAILING_WHITESPACE)
        if(EXISTS ${log})
          set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS ${log})
        endif()
      endif()
    endif()
  endif()
  file(CONFIGURE OUTPUT ${file} CONTENT
"#pragma once

#define DSPWAVEDECKS_VERSION \"${version}\"
#define DSPWAVEDECKS_BUILD_DATE \"${date}\"
")
endfunction()

function(write_version_script file names_file)
  file(STRINGS ${names_file} names)
  list(JOIN names ";\n    " names)
  file(CONFIGURE OUTPUT ${file} CONTENT "{\n  global:\n    ${names};\n  local: *;\n};\n")
  set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS ${names_file})
endfunction()
