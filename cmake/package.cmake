# SPDX-License-Identifier: Apache-2.0
# What `cmake --install` lays down: both libraries side by side, the headers, a CMake package and a pkg-config file.
# The tree can be moved afterwards: nothing in it holds a path.
include(CMakePackageConfigHelpers)

# libzeti looks for libzetcore beside itself.
set_target_properties(zeti PROPERTIES INSTALL_RPATH "$ORIGIN" BUILD_RPATH_USE_ORIGIN ON)

install(TARGETS zeti EXPORT zeti)
install(TARGETS zetcore EXPORT zeti LIBRARY NAMELINK_SKIP) # nobody links it by hand
install(DIRECTORY include/zeti DESTINATION ${CMAKE_INSTALL_INCLUDEDIR} FILES_MATCHING PATTERN "*.h")

set(package ${CMAKE_INSTALL_LIBDIR}/cmake/zeti)
install(EXPORT zeti NAMESPACE zeti:: DESTINATION ${package} FILE zetiConfig.cmake)
write_basic_package_version_file(zetiConfigVersion.cmake COMPATIBILITY SameMajorVersion)
install(FILES ${CMAKE_CURRENT_BINARY_DIR}/zetiConfigVersion.cmake DESTINATION ${package})

set(pkgconfig ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
cmake_path(RELATIVE_PATH CMAKE_INSTALL_PREFIX BASE_DIRECTORY ${CMAKE_INSTALL_PREFIX}/${pkgconfig} OUTPUT_VARIABLE up)
configure_file(cmake/zeti.pc.in zeti.pc @ONLY)
install(FILES ${CMAKE_CURRENT_BINARY_DIR}/zeti.pc DESTINATION ${pkgconfig})
