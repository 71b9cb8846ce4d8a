# `cmake --install` and the package that lets another project say find_package(Kestrel).
include(CMakePackageConfigHelpers)

set(package_dir "${CMAKE_INSTALL_LIBDIR}/cmake/Kestrel")

# Libraries bring the headers of their HEADERS file set, and no others.
install(TARGETS kestrel-numerics EXPORT KestrelTargets)
foreach(library IN ITEMS pilib focus-core kestrel-pipeline)
  install(TARGETS ${library} EXPORT KestrelTargets
    ARCHIVE DESTINATION "${CMAKE_INSTALL_LIBDIR}"
    FILE_SET HEADERS DESTINATION "${CMAKE_INSTALL_INCLUDEDIR}/kestrel/${library}")
endforeach()
install(DIRECTORY "${CMAKE_BINARY_DIR}/Kestrel.plugin" DESTINATION "${CMAKE_INSTALL_LIBDIR}" USE_SOURCE_PERMISSIONS)
install(TARGETS perch RUNTIME DESTINATION "${CMAKE_INSTALL_BINDIR}")
install(EXPORT KestrelTargets NAMESPACE Kestrel:: DESTINATION "${package_dir}")

configure_package_config_file(cmake/KestrelConfig.cmake.in "${CMAKE_BINARY_DIR}/KestrelConfig.cmake"
  INSTALL_DESTINATION "${package_dir}")
write_basic_package_version_file("${CMAKE_BINARY_DIR}/KestrelConfigVersion.cmake" COMPATIBILITY SameMinorVersion)
install(FILES "${CMAKE_BINARY_DIR}/KestrelConfig.cmake" "${CMAKE_BINARY_DIR}/KestrelConfigVersion.cmake"
  DESTINATION "${package_dir}")
