# SPDX-License-Identifier: MIT
# Copyright (c) 2026 The Corvin developers
#
# What `cmake --install` lays down: the library, its headers, a CMake package and a pkg-config file.

include(CMakePackageConfigHelpers)

install(TARGETS corvin EXPORT CorvinTargets
  LIBRARY DESTINATION "${CMAKE_INSTALL_LIBDIR}"
  ARCHIVE DESTINATION "${CMAKE_INSTALL_LIBDIR}")
install(DIRECTORY include/ DESTINATION "${CMAKE_INSTALL_INCLUDEDIR}"
  FILES_MATCHING PATTERN "*.h" PATTERN "*.hpp")

set(package_dir "${CMAKE_INSTALL_LIBDIR}/cmake/Corvin")
install(EXPORT CorvinTargets NAMESPACE Corvin:: DESTINATION "${package_dir}")
configure_package_config_file(cmake/CorvinConfig.cmake.in
  "${PROJECT_BINARY_DIR}/CorvinConfig.cmake" INSTALL_DESTINATION "${package_dir}")
write_basic_package_version_file("${PROJECT_BINARY_DIR}/CorvinConfigVersion.cmake"
  COMPATIBILITY SameMajorVersion)
install(FILES "${PROJECT_BINARY_DIR}/CorvinConfig.cmake"
  "${PROJECT_BINARY_DIR}/CorvinConfigVersion.cmake" DESTINATION "${package_dir}")

# The pkg-config file finds its tree from its own place, so the installed tree can be moved.
file(RELATIVE_PATH corvin_pc_prefix
  "/${CMAKE_INSTALL_LIBDIR}/pkgconfig" "/")
string(REGEX REPLACE "/$" "" corvin_pc_prefix "${corvin_pc_prefix}")
set(corvin_pc_platform "")
if(APPLE)
  set(corvin_pc_platform " -framework CoreFoundation")
endif()
configure_file(cmake/corvin.pc.in "${PROJECT_BINARY_DIR}/corvin.pc" @ONLY)
install(FILES "${PROJECT_BINARY_DIR}/corvin.pc" DESTINATION "${CMAKE_INSTALL_LIBDIR}/pkgconfig")
