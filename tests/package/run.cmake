# Installs the build tree `build` below `scratch`, checks that the package can be moved, and lets the consumer find
# it, link it and run. Fails with the output of the step that failed.
set(installed "${scratch}/installed")
set(prefix "${scratch}/moved")
file(REMOVE_RECURSE "${scratch}")

execute_process(COMMAND "${CMAKE_COMMAND}" --install "${build}" --prefix "${installed}" --config "${config}"
  OUTPUT_QUIET COMMAND_ERROR_IS_FATAL ANY)
file(RENAME "${installed}" "${prefix}")

file(GLOB_RECURSE package_files "${prefix}/*.cmake")
if(NOT package_files)
  message(FATAL_ERROR "Nothing that find_package could read was installed below ${prefix}")
endif()
foreach(file IN LISTS package_files)
  file(READ "${file}" text)
  foreach(folder IN ITEMS "${source}" "${build}" "${installed}")
    string(FIND "${text}" "${folder}" position)
    if(NOT position EQUAL -1)
      message(FATAL_ERROR "${file} names ${folder}, which exists on this machine alone")
    endif()
  endforeach()
endforeach()

# The installed program finds the installed plug-in by itself.
execute_process(COMMAND "${prefix}/bin/perch" check OUTPUT_QUIET COMMAND_ERROR_IS_FATAL ANY)

# Objects of a sanitized library only link and run in a program built with the same sanitizers.
if(sanitize)
  string(APPEND flags " -fsanitize=${sanitize} -fno-sanitize-recover=all")
endif()
execute_process(COMMAND "${ctest}"
    --build-and-test "${CMAKE_CURRENT_LIST_DIR}/consumer" "${scratch}/consumer"
    --build-generator "${generator}" --build-makeprogram "${make_program}" --build-config "${config}"
    --build-options
      "-DCMAKE_BUILD_TYPE=${config}" "-DCMAKE_CXX_COMPILER=${compiler}" "-DCMAKE_CXX_FLAGS=${flags}"
      "-DCMAKE_PREFIX_PATH=${prefix}"
    --test-command consumer
  COMMAND_ERROR_IS_FATAL ANY)
