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

# It finds its module as well, and loads the image library for pictures alone.
execute_process(COMMAND "${prefix}/bin/perch" render --input "${source}/samples/still/beauty.png" --output "${scratch}/still.png"
  COMMAND_ERROR_IS_FATAL ANY)
execute_process(COMMAND "${CMAKE_COMMAND}" -E env LD_TRACE_LOADED_OBJECTS=1 "${prefix}/bin/perch"
  OUTPUT_VARIABLE libraries COMMAND_ERROR_IS_FATAL ANY)
if(libraries MATCHES "OpenImageIO")
  message(FATAL_ERROR "The installed program loads the image library at every start: ${libraries}")
endif()

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

# The program finds the plug-in wherever a distribution keeps libraries.
set(place "${prefix}/lib")
foreach(other IN ITEMS lib64 "lib/${multiarch}")
  execute_process(COMMAND "${prefix}/bin/perch" describe OUTPUT_QUIET COMMAND_ERROR_IS_FATAL ANY)
  cmake_path(GET other PARENT_PATH above)
  file(MAKE_DIRECTORY "${prefix}/${above}")
  file(RENAME "${place}/Kestrel.plugin" "${prefix}/Kestrel.moved")
  set(place "${prefix}/${other}")
  file(MAKE_DIRECTORY "${place}")
  file(RENAME "${prefix}/Kestrel.moved" "${place}/Kestrel.plugin")
endforeach()
execute_process(COMMAND "${prefix}/bin/perch" describe OUTPUT_QUIET COMMAND_ERROR_IS_FATAL ANY)

# Undoing an installation leaves nothing, except what was there before, whatever the folder is called.
set(undone "${scratch}/un[done")
file(WRITE "${undone}/share/kept" "another program's")
execute_process(COMMAND "${CMAKE_COMMAND}" --install "${build}" --prefix "${undone}" --config "${config}"
  OUTPUT_QUIET COMMAND_ERROR_IS_FATAL ANY)
execute_process(COMMAND "${CMAKE_COMMAND}" "-DMANIFEST=${build}/install_manifest.txt" -P "${source}/cmake/Uninstall.cmake"
  COMMAND_ERROR_IS_FATAL ANY)
file(RENAME "${undone}" "${scratch}/left")  # a bracket means more in a pattern
file(GLOB_RECURSE left LIST_DIRECTORIES true RELATIVE "${scratch}/left" "${scratch}/left/*")
if(NOT left STREQUAL "share;share/kept")
  message(FATAL_ERROR "After the installation was undone there are ${left}")
endif()
