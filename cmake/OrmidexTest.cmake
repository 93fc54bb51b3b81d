# GoogleTest for the tests: the installed package on Linux; for Windows its
# source, which libgtest-dev brings along, is cross-compiled.
if(WIN32)
  # This toolchain has neither std::mutex nor, without it, GoogleTest's death
  # tests; a copy of the sources is told so.
  set(googletest ${CMAKE_BINARY_DIR}/googletest)
  if(NOT EXISTS ${googletest}/src)
    file(COPY /usr/src/googletest/googletest/include /usr/src/googletest/googletest/src
         DESTINATION ${googletest})
    set(port ${googletest}/include/gtest/internal/gtest-port.h)
    file(READ ${port} text)
    string(REPLACE "|| GTEST_OS_WINDOWS_MINGW ||" "||" text "${text}")
    file(WRITE ${port} "${text}")
  endif()
  add_library(gtest STATIC EXCLUDE_FROM_ALL ${googletest}/src/gtest-all.cc)
  target_include_directories(gtest SYSTEM PUBLIC ${googletest}/include)
  target_include_directories(gtest PRIVATE ${googletest})
  # Expectations in a test's other threads work, but two that fail at the same
  # moment are not kept apart.
  target_compile_definitions(gtest PUBLIC GTEST_IS_THREADSAFE=0 GTEST_HAS_PTHREAD=0)
  add_library(gtest_main STATIC EXCLUDE_FROM_ALL ${googletest}/src/gtest_main.cc)
  target_link_libraries(gtest_main PUBLIC gtest)
  add_library(GTest::gtest ALIAS gtest)
  add_library(GTest::gtest_main ALIAS gtest_main)
else()
  find_package(GTest REQUIRED)
endif()

# Tests of code that knows of no second thread. They cost the thread sanitizer most
# of its time and give it nothing to find.
set(ORMIDEX_ONE_THREAD_TESTS convert_test files_test imager_test kernels_test)

# Tests whose own loops take the time.
set(ORMIDEX_COMPUTING_TESTS convert_test kernels_test)

# How a test is compiled. Optimising one costs more than it gains, under the sanitizers
# several times as much, unless it computes.
function(ormidex_test_options name)
  target_link_libraries(${name} PRIVATE ormidex_core GTest::gtest GTest::gtest_main)
  target_include_directories(${name} PRIVATE ${PROJECT_SOURCE_DIR}/tests)
  ormidex_compile_options(${name})
  if(name IN_LIST ORMIDEX_COMPUTING_TESTS)
    target_compile_options(${name} PRIVATE -O1)
  else()
    target_compile_options(${name} PRIVATE -O0)
  endif()
endfunction()

# GoogleTest's headers are half of what a test costs to compile: they are read once.
file(CONFIGURE OUTPUT ${CMAKE_BINARY_DIR}/test_headers.cpp CONTENT "")
add_executable(ormidex_test_headers ${CMAKE_BINARY_DIR}/test_headers.cpp)
ormidex_test_options(ormidex_test_headers)
target_precompile_headers(
  ormidex_test_headers PRIVATE <gtest/gtest.h> <algorithm> <atomic> <cstdint> <cstdio> <cstring>
  <functional> <map> <memory> <string> <vector>)

# Adds a test program; CTest runs it as one test, and its own report counts its
# cases.
function(ormidex_add_test name)
  add_executable(${name} ${ARGN})
  ormidex_test_options(${name})
  if(NOT name IN_LIST ORMIDEX_COMPUTING_TESTS)
    target_precompile_headers(${name} REUSE_FROM ormidex_test_headers)
  endif()
  if(ORMIDEX_SANITIZE STREQUAL "thread" AND name IN_LIST ORMIDEX_ONE_THREAD_TESTS)
    set_target_properties(${name} PROPERTIES EXCLUDE_FROM_ALL ON)
    return()
  endif()
  add_test(NAME ${name} COMMAND ${name} --gtest_color=no)
  # The leaks that are kept on purpose; every other one fails the test.
  set_tests_properties(${name} PROPERTIES ENVIRONMENT
    "LSAN_OPTIONS=suppressions=${PROJECT_SOURCE_DIR}/tests/lsan.supp:print_suppressions=0")
endfunction()
