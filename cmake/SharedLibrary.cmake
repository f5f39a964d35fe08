# A shared library that exports what its headers mark and nothing else. It is also built as a static library of this tree
# alone, NAME-whole, through which tests, fuzzers and benchmarks reach what the shared one hides. Its folders give their
# sources to NAME-objects. A header in the library's file set is public and gets installed; its umbrella header includes
# each of them, and the build compiles each of them by itself.
set(hidden_map ${PROJECT_SOURCE_DIR}/cmake/hidden.map)

function(mailengine_library name export_name)
  add_library(${name}-objects OBJECT "")
  target_include_directories(${name}-objects PUBLIC $<BUILD_INTERFACE:${PROJECT_SOURCE_DIR}>)
  add_library(${name} SHARED $<TARGET_OBJECTS:${name}-objects>)
  add_library(${name}-whole STATIC $<TARGET_OBJECTS:${name}-objects>)
  add_library(mailengine::${export_name} ALIAS ${name})
  target_include_directories(${name}-whole PUBLIC $<BUILD_INTERFACE:${PROJECT_SOURCE_DIR}>)
  target_compile_features(${name} PUBLIC cxx_std_20)
  target_compile_definitions(${name} PUBLIC ${MAILENGINE_WIDE_TYPES})
  target_sources(${name} PUBLIC FILE_SET HEADERS BASE_DIRS ${PROJECT_SOURCE_DIR})
  set_target_properties(${name} PROPERTIES VERSION ${PROJECT_VERSION} SOVERSION ${PROJECT_VERSION_MAJOR}
                                           EXPORT_NAME ${export_name} LINK_DEPENDS ${hidden_map})
  target_link_options(${name} PRIVATE LINKER:--version-script=${hidden_map})
endfunction()
