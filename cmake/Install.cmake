# What a host outside this tree gets: the shared libraries, their public headers, a CMake package, pkg-config files. A
# component is what one package holds (cmake/Packages.cmake).
include(CMakePackageConfigHelpers)
set(package_dir ${CMAKE_INSTALL_LIBDIR}/cmake/mailengine)
set(pkgconfig_dir ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
file(RELATIVE_PATH prefix_from_pkgconfig /${pkgconfig_dir} /)
list(TRANSFORM MAILENGINE_WIDE_TYPES PREPEND " -D" OUTPUT_VARIABLE wide_flags)
list(JOIN wide_flags "" wide_flags)

# NAME: of the pkg-config file and the packages; ARGN: the targets.
function(mailengine_install name)
  install(TARGETS ${ARGN} EXPORT ${name}-targets
          LIBRARY COMPONENT lib${name}${PROJECT_VERSION_MAJOR} NAMELINK_COMPONENT lib${name}-dev
          FILE_SET HEADERS COMPONENT lib${name}-dev
          INCLUDES DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})  # for a host whose CMake knows no file sets
  install(EXPORT ${name}-targets NAMESPACE mailengine:: DESTINATION ${package_dir} COMPONENT lib${name}-dev)
  configure_file(cmake/${name}.pc.in ${name}.pc @ONLY)
  install(FILES ${CMAKE_CURRENT_BINARY_DIR}/${name}.pc DESTINATION ${pkgconfig_dir} COMPONENT lib${name}-dev)
endfunction()

mailengine_install(mailengine mailengine mailengine-platform)
if(MAILENGINE_BUILD_HOSTKIT)
  mailengine_install(mailengine-hostkit mailengine-hostkit)
endif()
if(MAILENGINE_BUILD_DESKTOP)
  mailengine_install(mailengine-desktop mailengine-desktop)
endif()

configure_package_config_file(cmake/mailengine-config.cmake.in mailengine-config.cmake INSTALL_DESTINATION ${package_dir})
write_basic_package_version_file(mailengine-config-version.cmake COMPATIBILITY SameMinorVersion)
install(FILES ${CMAKE_CURRENT_BINARY_DIR}/mailengine-config.cmake
              ${CMAKE_CURRENT_BINARY_DIR}/mailengine-config-version.cmake
        DESTINATION ${package_dir} COMPONENT libmailengine-dev)
if(PROJECT_IS_TOP_LEVEL)
  include(Packages)
endif()
