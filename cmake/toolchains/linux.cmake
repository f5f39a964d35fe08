# What the toolchains of this folder share: Debian's cross compiler on a root of that machine's own packages, which
# scripts/cross lays out under MAILENGINE_SYSROOT without installing any of them. The including file sets machine_triplet
# (the compiler's prefix), machine_folder (that of the libraries, where it differs) and machine_runner.
list(APPEND CMAKE_TRY_COMPILE_PLATFORM_VARIABLES MAILENGINE_SYSROOT)
if(NOT MAILENGINE_SYSROOT)
  message(FATAL_ERROR "Set MAILENGINE_SYSROOT, or build by scripts/cross.")
endif()
if(NOT machine_folder)
  set(machine_folder ${machine_triplet})
endif()
set(CMAKE_SYSTEM_NAME Linux)
set(CMAKE_CXX_COMPILER ${machine_triplet}-g++)
set(CMAKE_SYSROOT ${MAILENGINE_SYSROOT})
set(CMAKE_LIBRARY_ARCHITECTURE ${machine_folder})
set(CMAKE_CROSSCOMPILING_EMULATOR ${machine_runner})
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)
set(ENV{PKG_CONFIG_SYSROOT_DIR} ${MAILENGINE_SYSROOT})
set(ENV{PKG_CONFIG_LIBDIR}
    ${MAILENGINE_SYSROOT}/usr/lib/${machine_folder}/pkgconfig:${MAILENGINE_SYSROOT}/usr/share/pkgconfig)
