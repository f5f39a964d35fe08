# 32 bits, little-endian, char is unsigned.
set(CMAKE_SYSTEM_PROCESSOR arm)
set(machine_triplet arm-linux-gnueabihf)
set(machine_runner qemu-arm-static -L ${MAILENGINE_SYSROOT})
include(${CMAKE_CURRENT_LIST_DIR}/linux.cmake)
