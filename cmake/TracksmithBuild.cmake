# SPDX-License-Identifier: GPL-3.0-or-later
# How every folder of this project is compiled, linked and tested.

option(TRACKSMITH_TESTS "Build the tests" ON)
option(TRACKSMITH_BENCH "Build the benchmarks" OFF)
option(TRACKSMITH_FUZZ "Build the fuzzers (clang only)" OFF)
option(TRACKSMITH_GUI "Build the windows; without them, the engines and their tests alone" ON)
set(TRACKSMITH_SANITIZE "" CACHE STRING "Sanitizers, as -fsanitize takes them")

set(CMAKE_CXX_STANDARD 20)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_CXX_SCAN_FOR_MODULES OFF)
set(CMAKE_RUNTIME_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/bin)

find_program(CCACHE ccache)
if(CCACHE AND NOT CMAKE_CXX_COMPILER_LAUNCHER)
  # One cache serves every checkout: neither the folder's name nor the time decides.
  set(CMAKE_CXX_COMPILER_LAUNCHER
      ${CMAKE_COMMAND} -E env CCACHE_BASEDIR=${CMAKE_SOURCE_DIR} CCACHE_NOHASHDIR=1
      CCACHE_SLOPPINESS=include_file_mtime,include_file_ctime,time_macros ${CCACHE})
endif()

add_library(tracksmith_options INTERFACE)
target_include_directories(tracksmith_options INTERFACE ${CMAKE_SOURCE_DIR})
target_compile_options(tracksmith_options INTERFACE -Wall -Wextra -Wpedantic -Wshadow=local
                                                    -Wnon-virtual-dtor -Woverloaded-virtual)
# A program loads no library that none of its own parts calls.
if(UNIX)
  target_link_options(tracksmith_options INTERFACE -Wl,--as-needed)
endif()
option(TRACKSMITH_WERROR "Treat warnings as errors" ON)
if(TRACKSMITH_WERROR)
  target_compile_options(tracksmith_options INTERFACE -Werror)
endif()
target_compile_definitions(tracksmith_options INTERFACE QT_NO_CAST_FROM_ASCII QT_NO_CAST_TO_ASCII
                                                        QT_NO_KEYWORDS QT_NO_FOREACH)
if(TRACKSMITH_SANITIZE)
  target_compile_options(tracksmith_options INTERFACE -fsanitize=${TRACKSMITH_SANITIZE}
                         -fno-omit-frame-pointer -fno-sanitize-recover=all)
  target_link_options(tracksmith_options INTERFACE -fsanitize=${TRACKSMITH_SANITIZE})
endif()

# tracksmith_folder(<target> [MOC] SOURCES <files...> [LINKS <targets...>] [PRIVATE_LINKS <targets...>])
# One folder is one static library; LINKS names all that its headers and sources may include. MOC: it
# has Q_OBJECT classes, forms or resources.
function(tracksmith_folder target)
  cmake_parse_arguments(arg "MOC" "" "SOURCES;LINKS;PRIVATE_LINKS" ${ARGN})
  add_library(${target} STATIC ${arg_SOURCES})
  if(arg_MOC)
    set_target_properties(${target} PROPERTIES AUTOMOC ON AUTOUIC ON AUTORCC ON)
  endif()
  target_link_libraries(${target} PUBLIC tracksmith_options ${arg_LINKS} PRIVATE ${arg_PRIVATE_LINKS})
endfunction()

# tracksmith_kernels(<files...>): loops over samples, compiled for vector instructions. That nobody
# looks at errno or at floating-point exceptions is what lets rounding and choosing be part of such a
# loop; no result changes by it.
function(tracksmith_kernels)
  set_source_files_properties(${ARGN} PROPERTIES COMPILE_OPTIONS
    "$<$<CONFIG:Release,RelWithDebInfo>:-O3>;-fno-math-errno;-fno-trapping-math")
endfunction()

# tracksmith_test(<name> SOURCES <files...> [LINKS <targets...>] [LABELS <labels...>] [DISPLAY]
#                 [TIMEOUT <seconds>])
# A GoogleTest program. With DISPLAY it runs in an X server and window manager of its own, as one
# CTest entry; without, each of its cases is an entry. Labels: "engine" for tests without windows
# (these run under the address sanitizer too), "player" for those of the thread sanitizer, "gui".
function(tracksmith_test name)
  cmake_parse_arguments(arg "DISPLAY" "TIMEOUT" "SOURCES;LINKS;LABELS" ${ARGN})
  if(NOT arg_TIMEOUT)
    set(arg_TIMEOUT 300)
  endif()
  add_executable(${name} ${arg_SOURCES})
  target_link_libraries(${name} PRIVATE tracksmith_options ${arg_LINKS} GTest::gmock GTest::gtest)
  foreach(label IN LISTS arg_LABELS)
    if(TARGET ${label}_tests)
      add_dependencies(${label}_tests ${name})
    endif()
  endforeach()
  set(wrapper ${CMAKE_SOURCE_DIR}/tests/support/isolated)
  # One word for all labels: the discovery of cases passes no lists on, and ctest -L takes a pattern.
  string(JOIN "+" label ${arg_LABELS})
  set(properties TIMEOUT ${arg_TIMEOUT} LABELS "${label}")
  if(arg_DISPLAY)
    add_test(NAME ${name} COMMAND ${wrapper} --display $<TARGET_FILE:${name}>)
    set_tests_properties(${name} PROPERTIES ${properties})
  else()
    set_target_properties(${name} PROPERTIES CROSSCOMPILING_EMULATOR ${wrapper})
    gtest_discover_tests(${name} TEST_PREFIX ${name}. DISCOVERY_TIMEOUT 60
                         PROPERTIES ${properties})
  endif()
endfunction()
