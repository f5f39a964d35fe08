# What a host outside this tree gets: the shared libraries, their public headers, a CMake package, pkg-config files.
include(CMakePackageConfigHelpers)

install(TARGETS mailengine mailengine-platform EXPORT mailengine-targets
        FILE_SET HEADERS
        INCLUDES DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})  # for a host whose CMake knows no file sets

set(pkgconfig_names mailengine)
if(MAILENGINE_BUILD_HOSTKIT)
  install(TARGETS mailengine-hostkit EXPORT mailengine-targets
          FILE_SET HEADERS
          INCLUDES DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})
  list(APPEND pkgconfig_names mailengine-hostkit)
endif()

if(MAILENGINE_BUILD_DESKTOP)
  install(TARGETS mailengine-desktop EXPORT mailengine-targets
          FILE_SET HEADERS
          INCLUDES DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})
  list(APPEND pkgconfig_names mailengine-desktop)
endif()

set(package_dir ${CMAKE_INSTALL_LIBDIR}/cmake/mailengine)
install(EXPORT mailengine-targets NAMESPACE mailengine:: FILE mailengine-config.cmake DESTINATION ${package_dir})
write_basic_package_version_file(mailengine-config-version.cmake COMPATIBILITY SameMinorVersion)
install(FILES ${CMAKE_CURRENT_BINARY_DIR}/mailengine-config-version.cmake DESTINATION ${package_dir})

set(pkgconfig_dir ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
file(RELATIVE_PATH prefix_from_pkgconfig /${pkgconfig_dir} /)
list(TRANSFORM MAILENGINE_WIDE_TYPES PREPEND " -D" OUTPUT_VARIABLE wide_flags)
list(JOIN wide_flags "" wide_flags)
foreach(name ${pkgconfig_names})
  configure_file(cmake/${name}.pc.in ${name}.pc @ONLY)
  install(FILES ${CMAKE_CURRENT_BINARY_DIR}/${name}.pc DESTINATION ${pkgconfig_dir})
endforeach()
