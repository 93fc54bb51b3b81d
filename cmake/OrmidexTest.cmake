# GoogleTest for the tests: the installed package on Linux; for Windows its
# source (libgtest-dev ships it) is cross-compiled.
if(WIN32)
  add_subdirectory(/usr/src/googletest ${CMAKE_BINARY_DIR}/googletest EXCLUDE_FROM_ALL)
  add_library(GTest::gtest ALIAS gtest)
  add_library(GTest::gtest_main ALIAS gtest_main)
  add_library(GTest::gmock ALIAS gmock)
else()
  find_package(GTest REQUIRED)
endif()
include(GoogleTest)

function(ormidex_add_test name)
  add_executable(${name} ${ARGN})
  target_link_libraries(${name} PRIVATE ormidex_core GTest::gtest GTest::gtest_main)
  target_include_directories(${name} PRIVATE ${PROJECT_SOURCE_DIR}/tests)
  ormidex_compile_options(${name})
  add_test(NAME ${name} COMMAND ${name} --gtest_color=no)
endfunction()
