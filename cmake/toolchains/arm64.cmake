# 64 bits, little-endian, char is unsigned.
set(CMAKE_SYSTEM_PROCESSOR aarch64)
set(machine_triplet aarch64-linux-gnu)
set(machine_runner qemu-aarch64-static -L ${MAILENGINE_SYSROOT})
include(${CMAKE_CURRENT_LIST_DIR}/linux.cmake)
