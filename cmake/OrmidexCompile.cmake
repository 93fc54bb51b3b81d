# Compile settings shared by every target of the project.
#
# ormidex_compile_options(TARGET) applies the language level, the warnings and
# the sanitizers; call it for each library, tool, test and benchmark.

set(CMAKE_CXX_STANDARD 20)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_C_STANDARD 11)
set(CMAKE_POSITION_INDEPENDENT_CODE ON)
set(CMAKE_CXX_VISIBILITY_PRESET hidden)
set(CMAKE_C_VISIBILITY_PRESET hidden)
set(CMAKE_VISIBILITY_INLINES_HIDDEN ON)
if(NOT CMAKE_BUILD_TYPE)
  set(CMAKE_BUILD_TYPE Release CACHE STRING "Build type" FORCE)
endif()

function(ormidex_compile_options target)
  target_compile_options(${target} PRIVATE -Wall -Wextra -Wpedantic -Wshadow -Wconversion)
  if(ORMIDEX_WERROR)
    target_compile_options(${target} PRIVATE -Werror)
  endif()
  if(ORMIDEX_SANITIZE)
    target_compile_options(${target} PRIVATE -fsanitize=${ORMIDEX_SANITIZE} -fno-omit-frame-pointer
                                             -fno-sanitize-recover=all)
    target_link_options(${target} PRIVATE -fsanitize=${ORMIDEX_SANITIZE})
  endif()
  if(WIN32)
    # The product runs on Windows 2000 and 98: no newer interface may slip in
    # through a header, and no run-time library may be needed beside it.
    # Excess x87 precision would make the control loops differ between the two
    # builds, so float arithmetic is stored at its declared width.
    target_compile_definitions(${target} PRIVATE WINVER=0x0500 _WIN32_WINNT=0x0500 WIN32_LEAN_AND_MEAN
                                                 NOMINMAX)
    # (The compiler offers -fexcess-precision=standard for C only.)
    target_compile_options(${target} PRIVATE -march=i686 -mtune=generic -ffloat-store)
    target_link_options(${target} PRIVATE -static)
  endif()
endfunction()
