# Debian packages of what is installed, one for each component of that name ("make packages"). Who wants the engine alone
# gets no library of the kit's.
set(CPACK_GENERATOR DEB)
set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_DEBIAN_ENABLE_COMPONENT_DEPENDS ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_PACKAGE_VERSION ${PROJECT_VERSION})
set(CPACK_PACKAGE_CONTACT "The mailengine developers <mailengine@localhost.localdomain>")
# CPack's own default, which it leaves out: the first line of each description is that package's.
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "${CMAKE_PROJECT_NAME} built using CMake")
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_STRIP_FILES ON)
set(CPACK_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS
    OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS ${CMAKE_LIBRARY_OUTPUT_DIRECTORY})
set(CPACK_DEBIAN_PACKAGE_PRIORITY optional)
set(CPACK_PRE_BUILD_SCRIPTS ${PROJECT_SOURCE_DIR}/cmake/packages/prepare.cmake)
set(CPACK_MAILENGINE_PREPARE ${MAILENGINE_PYTHON} ${PROJECT_SOURCE_DIR}/cmake/packages/prepare.py
    ${PROJECT_SOURCE_DIR} ${PROJECT_BINARY_DIR}/packages ${PROJECT_VERSION})
set(CPACK_OUTPUT_FILE_PREFIX ${PROJECT_BINARY_DIR}/packages)

# mailengine_package(NAME SECTION SUMMARY DESCRIPTION [DEPENDS COMPONENT...] [NEEDS RELATION] [RECOMMENDS NAME] [ALL])
macro(mailengine_package name section summary description)
  cmake_parse_arguments(package "ALL" "NEEDS;RECOMMENDS" "DEPENDS" ${ARGN})
  list(APPEND CPACK_COMPONENTS_ALL ${name})
  string(TOUPPER ${name} upper)
  set(CPACK_DEBIAN_${upper}_PACKAGE_NAME ${name})
  set(CPACK_DEBIAN_${upper}_PACKAGE_SECTION ${section})
  set(CPACK_DEBIAN_${upper}_DESCRIPTION "${summary}\n${description}")
  set(CPACK_COMPONENT_${upper}_DEPENDS ${package_DEPENDS})
  set(CPACK_DEBIAN_${upper}_PACKAGE_DEPENDS ${package_NEEDS})
  set(CPACK_DEBIAN_${upper}_PACKAGE_RECOMMENDS ${package_RECOMMENDS})
  if(package_ALL)
    set(CPACK_DEBIAN_${upper}_PACKAGE_ARCHITECTURE all)
  endif()
  if(${section} STREQUAL libs)
    # Written by prepare.py from the library that was built.
    set(control ${PROJECT_BINARY_DIR}/packages/control/${name})
    set(CPACK_DEBIAN_${upper}_PACKAGE_CONTROL_EXTRA ${control}/symbols ${control}/shlibs ${control}/triggers)
  endif()
endmacro()

set(about "mailengine writes Japanese mails as Internet messages (ISO-2022-JP, MIME),
sends them by SMTP, saves them, and reads stored messages.")
mailengine_package(libmailengine0 libs "mail engine for Japanese messages - library" "${about}
.
This package holds the engine, which needs the standard library alone.")
mailengine_package(libmailengine-dev libdevel "mail engine for Japanese messages - headers" "${about}
.
This package holds what a program on the engine is built with: headers, a CMake
package and a file for pkg-config."
  DEPENDS libmailengine0)
if(MAILENGINE_BUILD_HOSTKIT)
  mailengine_package(libmailengine-hostkit0 libs "kit for programs on the mail engine - library" "${about}
.
This package holds the kit for programs on the engine: UTF-8, files, envelopes,
answers, and a reader for mail of any charset and form."
    DEPENDS libmailengine0 NEEDS shared-mime-info RECOMMENDS mailengine-l10n)
  mailengine_package(libmailengine-hostkit-dev libdevel "kit for programs on the mail engine - headers" "${about}
.
This package holds what a program on the kit is built with, and examples."
    DEPENDS libmailengine-hostkit0 libmailengine-dev)
  mailengine_package(mailengine-l10n localization "translations of the mail engine's programs" "${about}
.
This package holds what its kit and its programs say in other languages."
    ALL)
endif()
if(MAILENGINE_BUILD_DESKTOP)
  mailengine_package(libmailengine-desktop0 libs "windows for programs on the mail engine - library" "${about}
.
This package holds the windows that the engine asks for, on wxWidgets: the
progress dialog, message boxes and file dialogs."
    DEPENDS libmailengine0)
  mailengine_package(libmailengine-desktop-dev libdevel "windows for programs on the mail engine - headers" "${about}
.
This package holds what a program with the engine's windows is built with."
    DEPENDS libmailengine-desktop0 libmailengine-dev)
endif()
if(MAILENGINE_BUILD_HOSTS)
  mailengine_package(mailengine mail "writes, sends, reads and answers Japanese mails" "${about}
.
This package holds the command mailengine, its manual pages and completions."
    DEPENDS libmailengine0 libmailengine-hostkit0 mailengine-l10n)
endif()
if(TARGET mailengine-desktop-program)
  mailengine_package(mailengine-desktop mail "reads, writes and sends Japanese mails, with windows" "${about}
.
This package holds the program mailengine-desktop."
    DEPENDS libmailengine0 libmailengine-hostkit0 libmailengine-desktop0 mailengine-l10n)
endif()
foreach(name ${CPACK_COMPONENTS_ALL})
  install(FILES ${PROJECT_SOURCE_DIR}/cmake/packages/lintian-overrides COMPONENT ${name}
          DESTINATION ${CMAKE_INSTALL_DATADIR}/lintian/overrides RENAME ${name})
endforeach()
include(CPack)
