# What a host outside this tree gets: both shared libraries, the public headers, a CMake package and a pkg-config file.
include(CMakePackageConfigHelpers)

install(TARGETS mailengine mailengine-platform EXPORT mailengine-targets)

# A header is public when mailengine.h includes it; no other one is installed.
set(all_headers ${PROJECT_SOURCE_DIR}/mailengine/mailengine.h)
set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS ${all_headers})
file(STRINGS ${all_headers} includes REGEX "^#include <mailengine/")
foreach(header mailengine/mailengine.h ${includes})
  string(REGEX REPLACE "^#include <(.*)>.*$" "\\1" header "${header}")
  cmake_path(GET header PARENT_PATH folder)
  install(FILES ${PROJECT_SOURCE_DIR}/${header} DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/${folder})
endforeach()

set(package_dir ${CMAKE_INSTALL_LIBDIR}/cmake/mailengine)
install(EXPORT mailengine-targets NAMESPACE mailengine:: FILE mailengine-config.cmake DESTINATION ${package_dir})
write_basic_package_version_file(mailengine-config-version.cmake COMPATIBILITY SameMinorVersion)
install(FILES ${CMAKE_CURRENT_BINARY_DIR}/mailengine-config-version.cmake DESTINATION ${package_dir})

set(pkgconfig_dir ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
file(RELATIVE_PATH prefix_from_pkgconfig /${pkgconfig_dir} /)
configure_file(cmake/mailengine.pc.in mailengine.pc @ONLY)
install(FILES ${CMAKE_CURRENT_BINARY_DIR}/mailengine.pc DESTINATION ${pkgconfig_dir})
