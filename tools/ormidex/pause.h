// Waiting, on toolchains with and without C++ threads.
#ifndef ORMIDEX_TOOLS_PAUSE_H_
#define ORMIDEX_TOOLS_PAUSE_H_

#ifdef _WIN32
#include <windows.h>
#else
#include <time.h>
#endif

namespace ormidex_tool {

inline void PauseMilliseconds(unsigned milliseconds) {
#ifdef _WIN32
  Sleep(milliseconds);
#else
  const timespec duration = {static_cast<time_t>(milliseconds / 1000),
                             static_cast<long>(milliseconds % 1000) * 1000000L};
  nanosleep(&duration, nullptr);
#endif
}

}  // namespace ormidex_tool

#endif  // ORMIDEX_TOOLS_PAUSE_H_
