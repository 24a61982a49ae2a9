# What every target of the house shares: language level, warnings, sanitizers and where programs land.
include(CheckLinkerFlag)

set(CMAKE_CXX_STANDARD 20)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_EXPORT_COMPILE_COMMANDS ON)
set(CMAKE_RUNTIME_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/bin)
# A warning is an error here; `cmake --compile-no-warning-as-error` lets other compiler versions build it.
if(NOT DEFINED CMAKE_COMPILE_WARNING_AS_ERROR)
  set(CMAKE_COMPILE_WARNING_AS_ERROR ON)
endif()

find_program(KESTRUNE_CCACHE ccache)
if(KESTRUNE_CCACHE AND NOT DEFINED CMAKE_CXX_COMPILER_LAUNCHER)
  # Without the sloppiness ccache does not keep what was compiled with a precompiled header. With paths relative to the
  # checkout, one build folder can use what another one with the same flags has compiled. With the inode cache it reads a
  # precompiled header of a hundred megabytes once, not for each file.
  set(CMAKE_CXX_COMPILER_LAUNCHER
    ${CMAKE_COMMAND} -E env CCACHE_SLOPPINESS=pch_defines,time_macros CCACHE_BASEDIR=${PROJECT_SOURCE_DIR}
    CCACHE_NOHASHDIR=1 CCACHE_INODECACHE=1 ${KESTRUNE_CCACHE})
endif()

add_library(kestrune_flags INTERFACE)
target_include_directories(kestrune_flags INTERFACE ${PROJECT_SOURCE_DIR}/src)
target_compile_options(kestrune_flags INTERFACE
  -Wall -Wextra -Wpedantic -Wshadow -Wnon-virtual-dtor -Wold-style-cast -Wcast-qual -Woverloaded-virtual
  -Wformat=2)
# A build links some thirty programs; lld takes a fraction of the time.
check_linker_flag(CXX -fuse-ld=lld KESTRUNE_HAS_LLD)
if(KESTRUNE_HAS_LLD)
  target_link_options(kestrune_flags INTERFACE -fuse-ld=lld)
endif()
if(KESTRUNE_SANITIZE)
  target_compile_options(kestrune_flags INTERFACE
    -fsanitize=${KESTRUNE_SANITIZE} -fno-omit-frame-pointer -fno-sanitize-recover=all)
  target_compile_definitions(kestrune_flags INTERFACE _GLIBCXX_ASSERTIONS)
  target_link_options(kestrune_flags INTERFACE -fsanitize=${KESTRUNE_SANITIZE})
endif()

# kestrune_harden(): the targets of this folder and those below are hardened if they are built as users get them: checked
# stacks, checked copies, checked jumps, and addresses that are bound once and then read only. Nothing in a program tells in
# which folder it was built, so two builds of the same sources are equal.
function(kestrune_harden)
  if(KESTRUNE_SANITIZE OR CMAKE_BUILD_TYPE STREQUAL Debug)
    return()
  endif()
  add_compile_options(-U_FORTIFY_SOURCE -D_FORTIFY_SOURCE=2 -fstack-protector-strong -fstack-clash-protection
    -fcf-protection -ffile-prefix-map=${PROJECT_SOURCE_DIR}=. -ffile-prefix-map=${PROJECT_BINARY_DIR}=build)
  add_link_options(-pie LINKER:-z,relro,-z,now,-z,noexecstack LINKER:--build-id=sha1)
endfunction()

# What nearly every file includes; precompiled, it takes half the time of a clean build. The linter runs without, so that
# no file relies on an include that it does not have.
set(KESTRUNE_COMMON_HEADERS
  <algorithm> <array> <chrono> <cstdint> <functional> <map> <memory> <optional> <string> <string_view> <utility>
  <vector> <fmt/format.h>)
set(KESTRUNE_TEST_HEADERS <filesystem> <gmock/gmock.h> <gtest/gtest.h>)
set(KESTRUNE_WIDGET_HEADERS
  <QApplication> <QBoxLayout> <QCheckBox> <QComboBox> <QDialog> <QGridLayout> <QGroupBox> <QKeyEvent> <QLabel>
  <QLineEdit> <QPushButton> <QTimer>)

add_library(kestrune_test_sanitizers INTERFACE)
target_compile_options(kestrune_test_sanitizers INTERFACE -fno-sanitize=fuzzer-no-link,undefined)

# kestrune_only_for_tests(TARGET): code that only tests use does not guide fuzzers, and only its memory is checked: each check
# more would make a third of all that is compiled, and every test, slower. The code under test is checked for everything.
function(kestrune_only_for_tests target)
  if(KESTRUNE_SANITIZE MATCHES fuzzer)
    # After the sanitizers of all targets, which a target's own options would precede: the last one counts.
    target_link_libraries(${target} PRIVATE kestrune_test_sanitizers)
  endif()
endfunction()

# kestrune_test_flags(TARGET): how test code is compiled. Compiling it is most of a build, so it is not optimised, and has no
# debug information in an optimised build.
function(kestrune_test_flags target)
  target_link_libraries(${target} PRIVATE GTest::gmock)
  target_compile_options(${target} PRIVATE -O0)
  if(CMAKE_CXX_COMPILER_ID STREQUAL GNU)
    # Collecting garbage would take an eighth of the time; a file's garbage is some 500 MB at most.
    target_compile_options(${target} PRIVATE --param=ggc-min-heapsize=1048576)
  endif()
  kestrune_only_for_tests(${target})
  if(NOT KESTRUNE_SANITIZE MATCHES fuzzer AND CMAKE_BUILD_TYPE STREQUAL RelWithDebInfo)
    target_compile_options(${target} PRIVATE -g0)
  endif()
endfunction()

# kestrune_busy_tests(source...): tests that make or judge sound sample by sample, which are worth optimising.
function(kestrune_busy_tests)
  set_source_files_properties(${ARGN} PROPERTIES COMPILE_OPTIONS -O1 SKIP_PRECOMPILE_HEADERS ON)
endfunction()

# kestrune_test_code(TARGET [QT|WIDGETS|RIG]): what all test programs share, among it a precompiled header. Those with QT, which
# link Qt and so are compiled with other flags, share a header of their own, and one with WIDGETS has its own. Those with RIG
# share one that holds the rig's headers, but not with gcc, which takes longer to read that one than the headers.
function(kestrune_test_code target)
  cmake_parse_arguments(CODE "QT;WIDGETS;RIG" "" "" ${ARGN})
  target_link_libraries(${target} PRIVATE GTest::gtest_main)
  kestrune_test_flags(${target})
  if(CODE_WIDGETS)
    target_precompile_headers(${target} PRIVATE
      ${KESTRUNE_COMMON_HEADERS} ${KESTRUNE_TEST_HEADERS} ${KESTRUNE_WIDGET_HEADERS})
  elseif(CODE_QT)
    target_precompile_headers(${target} REUSE_FROM kestrune_qt_test_headers)
  elseif(CODE_RIG AND CMAKE_CXX_COMPILER_ID STREQUAL Clang)
    target_precompile_headers(${target} REUSE_FROM kestrune_rig_headers)
  else()
    target_precompile_headers(${target} REUSE_FROM kestrune_test_headers)
  endif()
endfunction()

# kestrune_test(NAME source... [ON_BASE] [QT|WIDGETS|RIG] [LIBS lib...]): one GoogleTest program of a room. ctest asks it for
# its cases when it runs; `ctest -L NAME` runs only this program's. With ON_BASE it is built without the logic; with QT it
# links Qt, with WIDGETS its windows too; with RIG it has the rig of a whole unit.
#
# With a sanitizer a program takes longer to start than most of its cases to run, so its cases share a few processes, and
# KESTRUNE_TEST_FILTER, in GoogleTest's notation, says which of them run.
function(kestrune_test name)
  cmake_parse_arguments(TEST "ON_BASE;QT;WIDGETS;RIG" "" "LIBS" ${ARGN})
  add_executable(${name} ${TEST_UNPARSED_ARGUMENTS})
  if(TEST_ON_BASE)
    target_link_libraries(${name} PRIVATE kestrune_test_base ${TEST_LIBS})
  else()
    target_link_libraries(${name} PRIVATE kestrune_test_support ${TEST_LIBS})
  endif()
  if(TEST_RIG)
    target_link_libraries(${name} PRIVATE kestrune_unit_rig)
  endif()
  set(code "")
  foreach(kind QT WIDGETS RIG)
    if(TEST_${kind})
      set(code ${kind})
    endif()
  endforeach()
  kestrune_test_code(${name} ${code})
  if(KESTRUNE_SANITIZE)
    foreach(shard RANGE 1 4)
      math(EXPR index "${shard} - 1")
      add_test(NAME ${name}.${shard} COMMAND ${name} --gtest_brief=1 --gtest_filter=${KESTRUNE_TEST_FILTER})
      set_tests_properties(${name}.${shard} PROPERTIES TIMEOUT 600 LABELS ${name}
        ENVIRONMENT "GTEST_TOTAL_SHARDS=4;GTEST_SHARD_INDEX=${index}")
    endforeach()
  else()
    gtest_discover_tests(${name} DISCOVERY_MODE PRE_TEST DISCOVERY_TIMEOUT 60
      PROPERTIES TIMEOUT 300 LABELS ${name})
  endif()
endfunction()

add_custom_target(fuzzers)

# kestrune_fuzzer(NAME source... READS file... [LIBS lib...]): a libFuzzer program if the build is configured for them, and in
# every build a test that replays the seed corpus in tests/fuzz/corpus/NAME. READS are the sources of the reader that it
# tries, without src/ in front: `scripts/fuzz --long` tells how much of them it reaches. The target `fuzzers` builds them all,
# into bin/fuzz.
function(kestrune_fuzzer name)
  cmake_parse_arguments(FUZZ "" "" "READS;LIBS" ${ARGN})
  set(corpus ${PROJECT_SOURCE_DIR}/tests/fuzz/corpus/${name})
  set(reads "")
  foreach(source IN LISTS FUZZ_READS)
    if(NOT EXISTS ${PROJECT_SOURCE_DIR}/src/${source})
      message(FATAL_ERROR "${name} reads src/${source}, which does not exist")
    endif()
    string(APPEND reads "src/${source}\n")
  endforeach()
  if(NOT reads)
    message(FATAL_ERROR "${name} does not say what it READS")
  endif()
  file(WRITE ${CMAKE_BINARY_DIR}/fuzz-reads/${name} "${reads}")
  add_executable(${name} ${FUZZ_UNPARSED_ARGUMENTS})
  set_target_properties(${name} PROPERTIES RUNTIME_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/bin/fuzz)
  target_link_libraries(${name} PRIVATE kestrune_logic ${FUZZ_LIBS})
  add_dependencies(fuzzers ${name})
  if(KESTRUNE_FUZZ)
    target_link_options(${name} PRIVATE -fsanitize=fuzzer)
    add_test(NAME ${name}.corpus COMMAND ${name} -runs=0 ${corpus})
  else()
    kestrune_test_flags(${name})
    target_sources(${name} PRIVATE ${PROJECT_SOURCE_DIR}/tests/fuzz/ReplayCorpus.cpp)
    add_test(NAME ${name}.corpus COMMAND ${name} ${corpus})
  endif()
  set_tests_properties(${name}.corpus PROPERTIES TIMEOUT 300 LABELS fuzzers)
endfunction()
