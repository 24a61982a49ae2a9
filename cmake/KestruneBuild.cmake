# What every target of the house shares: language level, warnings, sanitizers and where programs land.
set(CMAKE_CXX_STANDARD 20)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_EXPORT_COMPILE_COMMANDS ON)
set(CMAKE_RUNTIME_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/bin)

find_program(KESTRUNE_CCACHE ccache)
if(KESTRUNE_CCACHE)
  set(CMAKE_CXX_COMPILER_LAUNCHER ${KESTRUNE_CCACHE})
endif()

add_library(kestrune_flags INTERFACE)
target_include_directories(kestrune_flags INTERFACE ${PROJECT_SOURCE_DIR}/src)
target_compile_options(kestrune_flags INTERFACE
  -Wall -Wextra -Wpedantic -Wshadow -Wnon-virtual-dtor -Wold-style-cast -Wcast-qual -Woverloaded-virtual
  -Wformat=2 -Werror)
if(KESTRUNE_SANITIZE)
  target_compile_options(kestrune_flags INTERFACE
    -fsanitize=${KESTRUNE_SANITIZE} -fno-omit-frame-pointer -fno-sanitize-recover=all)
  target_link_options(kestrune_flags INTERFACE -fsanitize=${KESTRUNE_SANITIZE})
endif()

# kestrune_test(NAME source... [LIBS lib...]): one GoogleTest program of a room, its cases known to ctest.
function(kestrune_test name)
  cmake_parse_arguments(TEST "" "" "LIBS" ${ARGN})
  add_executable(${name} ${TEST_UNPARSED_ARGUMENTS})
  target_link_libraries(${name} PRIVATE kestrune_test_support ${TEST_LIBS} GTest::gmock GTest::gtest_main)
  gtest_discover_tests(${name} DISCOVERY_TIMEOUT 60 PROPERTIES TIMEOUT 300)
endfunction()

# kestrune_fuzzer(NAME source... [LIBS lib...]): a libFuzzer program where the compiler has one, and in every
# build a test that replays the seed corpus in tests/fuzz/corpus/NAME.
function(kestrune_fuzzer name)
  cmake_parse_arguments(FUZZ "" "" "LIBS" ${ARGN})
  set(corpus ${PROJECT_SOURCE_DIR}/tests/fuzz/corpus/${name})
  if(KESTRUNE_FUZZ)
    add_executable(${name} ${FUZZ_UNPARSED_ARGUMENTS})
    target_compile_options(${name} PRIVATE -fsanitize=fuzzer)
    target_link_options(${name} PRIVATE -fsanitize=fuzzer)
  else()
    add_executable(${name} ${FUZZ_UNPARSED_ARGUMENTS} ${PROJECT_SOURCE_DIR}/tests/fuzz/ReplayCorpus.cpp)
  endif()
  target_link_libraries(${name} PRIVATE kestrune_logic ${FUZZ_LIBS})
  if(NOT KESTRUNE_FUZZ)
    add_test(NAME ${name}.corpus COMMAND ${name} ${corpus})
  endif()
endfunction()
