# `cmake --install`, its undoing, and the package that lets another project say find_package(Kestrel).
include(CMakePackageConfigHelpers)

# What users run, which the Debian package holds as well.
install(DIRECTORY "${CMAKE_BINARY_DIR}/Kestrel.plugin" DESTINATION "${CMAKE_INSTALL_LIBDIR}" USE_SOURCE_PERMISSIONS
  COMPONENT runtime)
if(KESTREL_PERCH)
  install(TARGETS perch RUNTIME DESTINATION "${CMAKE_INSTALL_BINDIR}" COMPONENT runtime)
  install(TARGETS perch-codec-module perch-view-module LIBRARY DESTINATION "${CMAKE_INSTALL_LIBDIR}/perch" COMPONENT runtime)
  execute_process(COMMAND "${PROJECT_SOURCE_DIR}/scripts/source-date.sh" OUTPUT_VARIABLE seconds COMMAND_ERROR_IS_FATAL ANY)
  string(STRIP "${seconds}" seconds)
  set(ENV{SOURCE_DATE_EPOCH} ${seconds})
  string(TIMESTAMP KESTREL_DATE "%Y-%m-%d" UTC)
  unset(ENV{SOURCE_DATE_EPOCH})
  configure_file(packaging/perch.1.in perch.1.in @ONLY)
  # Help loads the effect beside the program, which has to be whole by then.
  add_custom_command(OUTPUT "${CMAKE_BINARY_DIR}/perch.1"
    COMMAND "${PROJECT_SOURCE_DIR}/packaging/man-page.sh" "$<TARGET_FILE:perch>" "${CMAKE_BINARY_DIR}/perch.1.in" "${CMAKE_BINARY_DIR}/perch.1"
    DEPENDS perch perch-codec-module Kestrel "${PROJECT_SOURCE_DIR}/packaging/man-page.sh" "${CMAKE_BINARY_DIR}/perch.1.in"
    COMMENT "Writing the manual page" VERBATIM)
  add_custom_target(perch-manual ALL DEPENDS "${CMAKE_BINARY_DIR}/perch.1")
  install(FILES "${CMAKE_BINARY_DIR}/perch.1" DESTINATION "${CMAKE_INSTALL_MANDIR}/man1" COMPONENT runtime)
  install(FILES packaging/completions/perch.bash RENAME perch
    DESTINATION "${CMAKE_INSTALL_DATAROOTDIR}/bash-completion/completions" COMPONENT runtime)
  install(FILES packaging/completions/_perch DESTINATION "${CMAKE_INSTALL_DATAROOTDIR}/zsh/vendor-completions"
    COMPONENT runtime)
  install(FILES packaging/completions/perch.fish DESTINATION "${CMAKE_INSTALL_DATAROOTDIR}/fish/vendor_completions.d"
    COMPONENT runtime)
  # What the authors of the libraries that are compiled in ask to be handed on, where Debian keeps it.
  foreach(package IN ITEMS libcli11-dev nlohmann-json3-dev)
    install(FILES "/usr/share/doc/${package}/copyright" DESTINATION "${CMAKE_INSTALL_DATAROOTDIR}/doc/kestrel"
      RENAME ${package}.copyright COMPONENT runtime OPTIONAL)
  endforeach()
  if(KESTREL_PAGE)
    install(FILES perch/page/node_modules/lit/LICENSE DESTINATION "${CMAKE_INSTALL_DATAROOTDIR}/doc/kestrel"
      RENAME lit.copyright COMPONENT runtime)
  endif()
endif()

# `cmake --build FOLDER --target uninstall` removes what the last `cmake --install FOLDER` put in place.
add_custom_target(uninstall COMMAND "${CMAKE_COMMAND}" "-DMANIFEST=${CMAKE_BINARY_DIR}/install_manifest.txt"
  -P "${PROJECT_SOURCE_DIR}/cmake/Uninstall.cmake" VERBATIM)

# What developers use.
set(CMAKE_INSTALL_DEFAULT_COMPONENT_NAME development)

set(package_dir "${CMAKE_INSTALL_LIBDIR}/cmake/Kestrel")

# Libraries bring the headers of their HEADERS file set, and no others.
install(TARGETS kestrel-numerics EXPORT KestrelTargets)
foreach(library IN ITEMS pilib focus-core kestrel-pipeline)
  install(TARGETS ${library} EXPORT KestrelTargets
    ARCHIVE DESTINATION "${CMAKE_INSTALL_LIBDIR}"
    FILE_SET HEADERS DESTINATION "${CMAKE_INSTALL_INCLUDEDIR}/kestrel/${library}")
endforeach()
install(EXPORT KestrelTargets NAMESPACE Kestrel:: DESTINATION "${package_dir}")

configure_package_config_file(cmake/KestrelConfig.cmake.in "${CMAKE_BINARY_DIR}/KestrelConfig.cmake"
  INSTALL_DESTINATION "${package_dir}")
write_basic_package_version_file("${CMAKE_BINARY_DIR}/KestrelConfigVersion.cmake" COMPATIBILITY SameMinorVersion)
install(FILES "${CMAKE_BINARY_DIR}/KestrelConfig.cmake" "${CMAKE_BINARY_DIR}/KestrelConfigVersion.cmake"
  DESTINATION "${package_dir}")
