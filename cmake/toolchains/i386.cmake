# 32 bits, little-endian. An amd64 machine runs it by itself, on the root's own loader and libraries.
set(CMAKE_SYSTEM_PROCESSOR i686)
set(machine_triplet i686-linux-gnu)
set(machine_folder i386-linux-gnu)
# libc looks for its charsets under this machine's name for the folder, unless it is told.
set(machine_runner env GCONV_PATH=${MAILENGINE_SYSROOT}/usr/lib/i386-linux-gnu/gconv
    ${MAILENGINE_SYSROOT}/lib/ld-linux.so.2 --library-path
    ${MAILENGINE_SYSROOT}/lib/i386-linux-gnu:${MAILENGINE_SYSROOT}/usr/lib/i386-linux-gnu)
include(${CMAKE_CURRENT_LIST_DIR}/linux.cmake)
