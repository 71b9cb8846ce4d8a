# `cmake --install` and the package that lets another project say find_package(Kestrel).
include(CMakePackageConfigHelpers)

set(package_dir "${CMAKE_INSTALL_LIBDIR}/cmake/Kestrel")

install(TARGETS pilib focus-core kestrel-numerics EXPORT KestrelTargets ARCHIVE DESTINATION "${CMAKE_INSTALL_LIBDIR}")
install(DIRECTORY "PILib/PILib Source/" DESTINATION "${CMAKE_INSTALL_INCLUDEDIR}/kestrel/PILib"
  FILES_MATCHING PATTERN "*.h" PATTERN rows EXCLUDE PATTERN memory EXCLUDE)
install(FILES focus-core/Kestrel.h DESTINATION "${CMAKE_INSTALL_INCLUDEDIR}/kestrel/focus-core")
install(DIRECTORY "${CMAKE_BINARY_DIR}/Kestrel.plugin" DESTINATION "${CMAKE_INSTALL_LIBDIR}" USE_SOURCE_PERMISSIONS)
install(TARGETS perch RUNTIME DESTINATION "${CMAKE_INSTALL_BINDIR}")
install(EXPORT KestrelTargets NAMESPACE Kestrel:: DESTINATION "${package_dir}")

configure_package_config_file(cmake/KestrelConfig.cmake.in "${CMAKE_BINARY_DIR}/KestrelConfig.cmake"
  INSTALL_DESTINATION "${package_dir}")
write_basic_package_version_file("${CMAKE_BINARY_DIR}/KestrelConfigVersion.cmake" COMPATIBILITY SameMinorVersion)
install(FILES "${CMAKE_BINARY_DIR}/KestrelConfig.cmake" "${CMAKE_BINARY_DIR}/KestrelConfigVersion.cmake"
  DESTINATION "${package_dir}")
