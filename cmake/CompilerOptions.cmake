# What every target of this tree is compiled with. Hosts outside the tree get none of it.
set(CMAKE_CXX_STANDARD 20)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_CXX_VISIBILITY_PRESET hidden)
set(CMAKE_VISIBILITY_INLINES_HIDDEN ON)
set(CMAKE_POSITION_INDEPENDENT_CODE ON)
set(CMAKE_RUNTIME_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/bin)
set(CMAKE_LIBRARY_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/lib)
# An installed library finds the other one beside itself, an installed command finds both, wherever the tree is put.
file(RELATIVE_PATH MAILENGINE_LIB_FROM_BIN ${CMAKE_INSTALL_FULL_BINDIR} ${CMAKE_INSTALL_FULL_LIBDIR})
set(CMAKE_INSTALL_RPATH $ORIGIN $ORIGIN/${MAILENGINE_LIB_FROM_BIN})

find_program(MAILENGINE_CCACHE ccache)
if(MAILENGINE_CCACHE AND PROJECT_IS_TOP_LEVEL AND NOT DEFINED CMAKE_CXX_COMPILER_LAUNCHER)
  set(CMAKE_CXX_COMPILER_LAUNCHER ${MAILENGINE_CCACHE})
endif()

option(MAILENGINE_WERROR "Make warnings errors" OFF)
option(MAILENGINE_SANITIZE "Build with the address and undefined behaviour sanitizers" OFF)

add_compile_options(-Wall -Wextra -Wpedantic -Wconversion)
add_compile_definitions(_GNU_SOURCE)  # memmem, fallocate, O_CLOEXEC; clang and g++ agree on what libc shows
# Files above 2 GiB and times after 2038 on machines of 32 bits. Public headers hold a struct stat, so hosts say the same.
set(MAILENGINE_WIDE_TYPES "")
if(CMAKE_SIZEOF_VOID_P EQUAL 4)
  set(MAILENGINE_WIDE_TYPES _FILE_OFFSET_BITS=64 _TIME_BITS=64)
endif()
add_compile_definitions(${MAILENGINE_WIDE_TYPES})
if(MAILENGINE_WERROR)
  add_compile_options(-Werror)
endif()
if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
  # A unique symbol would pin the shared library in memory: dlclose has to unload it.
  add_compile_options(-fno-gnu-unique)
  # g++ 12 takes a short text put into a std::string for one that overlaps itself (GCC bug 105651).
  add_compile_options(-Wno-restrict)
endif()
if(MAILENGINE_SANITIZE)
  add_compile_options(-fsanitize=address,undefined -fno-sanitize-recover=all -fno-omit-frame-pointer)
  add_link_options(-fsanitize=address,undefined)
  if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
    # What the sanitizers put into <regex> makes g++ 12 see uses before a value is set.
    add_compile_options(-Wno-maybe-uninitialized)
  endif()
endif()
