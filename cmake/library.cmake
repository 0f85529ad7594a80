# SPDX-License-Identifier: Apache-2.0
# libzeti: hand-written sources, and what the list of members makes of them.

set(generated ${PROJECT_BINARY_DIR}/generated)
set(generator ${PROJECT_SOURCE_DIR}/api/generate.py)
file(GLOB lists CONFIGURE_DEPENDS ${PROJECT_SOURCE_DIR}/api/*.toml)
set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS ${lists} ${generator} ${PROJECT_SOURCE_DIR}/api/model.py)

# The generator runs at configure time (a tenth of a second) and rewrites only what changed.
execute_process(COMMAND ${Python3_EXECUTABLE} ${generator} build ${generated} --variant ${ZETI_VARIANT} COMMAND_ERROR_IS_FATAL ANY)
execute_process(COMMAND ${Python3_EXECUTABLE} ${generator} sources OUTPUT_VARIABLE bindings COMMAND_ERROR_IS_FATAL ANY)
list(TRANSFORM bindings PREPEND ${generated}/)

file(GLOB sources CONFIGURE_DEPENDS
  ${PROJECT_SOURCE_DIR}/core/*.cpp ${PROJECT_SOURCE_DIR}/signal/*.cpp
  ${PROJECT_SOURCE_DIR}/arith/*.cpp ${PROJECT_SOURCE_DIR}/move/*.cpp ${PROJECT_SOURCE_DIR}/stats/*.cpp)

add_library(zeti SHARED core/entry.S ${sources} ${bindings})
add_library(zeti::zeti ALIAS zeti)
set_source_files_properties(core/entry.S PROPERTIES OBJECT_DEPENDS ${generated}/entries.inc
  COMPILE_OPTIONS "-DZETI_VARIANT=${ZETI_VARIANT};-Wa,-I${generated}")
target_include_directories(zeti
  PUBLIC $<BUILD_INTERFACE:${PROJECT_SOURCE_DIR}/include> $<INSTALL_INTERFACE:${CMAKE_INSTALL_INCLUDEDIR}>
  PRIVATE ${PROJECT_SOURCE_DIR})
target_link_libraries(zeti PRIVATE $<BUILD_INTERFACE:zeti_flags> zetcore m)
target_compile_options(zeti PRIVATE $<$<COMPILE_LANGUAGE:CXX>:${OpenMP_CXX_FLAGS}>)
target_link_libraries(zeti PRIVATE ${OpenMP_CXX_FLAGS})
set_target_properties(zeti PROPERTIES
  VERSION ${PROJECT_VERSION} SOVERSION ${PROJECT_VERSION_MAJOR}
  LINKER_LANGUAGE C # no C++ runtime: nothing of it is used
  LINK_DEPENDS ${generated}/zeti.map)
target_link_options(zeti PRIVATE
  -Wl,--version-script=${generated}/zeti.map -Wl,-z,relro,-z,now -Wl,--as-needed -Wl,-Bsymbolic)
if(NOT ZETI_SANITIZE)
  # No start-up or tear-down code: nothing runs when the library is loaded, and it has no writable data.
  target_link_options(zeti PRIVATE -nostartfiles -Wl,--no-undefined)
endif()
