# Cross-compiling for 32-bit Windows with Debian's g++-mingw-w64-i686-win32.
# The win32 thread model on purpose: the posix one imports functions that
# Windows 2000 and XP lack, so the library would not load there.
set(CMAKE_SYSTEM_NAME Windows)
set(CMAKE_SYSTEM_PROCESSOR i686)
set(CMAKE_C_COMPILER i686-w64-mingw32-gcc-win32)
set(CMAKE_CXX_COMPILER i686-w64-mingw32-g++-win32)
set(CMAKE_RC_COMPILER i686-w64-mingw32-windres)
# Libraries that the Windows build links statically are cross-built into a cache
# by scripts/windows-root.sh.
if(DEFINED ENV{ORMIDEX_CACHE})
  set(ormidex_cache $ENV{ORMIDEX_CACHE})
elseif(EXISTS /var/cache/ormidex/libjpeg-i686)
  set(ormidex_cache /var/cache/ormidex)
else()
  set(ormidex_cache $ENV{HOME}/.cache/ormidex)
endif()
set(CMAKE_FIND_ROOT_PATH /usr/i686-w64-mingw32 ${ormidex_cache}/libjpeg-i686)
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
