# 64 bits, big-endian.
set(CMAKE_SYSTEM_PROCESSOR s390x)
set(machine_triplet s390x-linux-gnu)
set(machine_runner qemu-s390x-static -L ${MAILENGINE_SYSROOT})
include(${CMAKE_CURRENT_LIST_DIR}/linux.cmake)
