# cmake -DMANIFEST=FILE -P Uninstall.cmake: removes the files that a manifest lists, then the folders that this leaves empty.
if(NOT EXISTS "${MANIFEST}")
  message(FATAL_ERROR "Nothing is installed from here: there is no ${MANIFEST}")
endif()
file(READ "${MANIFEST}" lines)
# Line by line: brackets in a name would join the elements of a list.
while(lines MATCHES "^([^\n]+)\n?(.*)$")
  set(file "${CMAKE_MATCH_1}")
  set(lines "${CMAKE_MATCH_2}")
  file(REMOVE "${file}")
  # rmdir leaves a folder that holds anything.
  set(status 0)
  while(status EQUAL 0)
    cmake_path(GET file PARENT_PATH file)
    execute_process(COMMAND rmdir "${file}" RESULT_VARIABLE status ERROR_QUIET)
  endwhile()
endwhile()
file(REMOVE "${MANIFEST}")
