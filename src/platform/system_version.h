// The operating system's version numbers.
#ifndef ORMIDEX_PLATFORM_SYSTEM_VERSION_H_
#define ORMIDEX_PLATFORM_SYSTEM_VERSION_H_

#include <cstdint>

namespace ormidex::platform {

inline constexpr std::uint32_t kPlatformConsumer = 1;  // VER_PLATFORM_WIN32_WINDOWS
inline constexpr std::uint32_t kPlatformNt = 2;        // VER_PLATFORM_WIN32_NT

struct SystemVersion {
  std::uint32_t platform = 0;
  std::uint32_t major = 0;
  std::uint32_t minor = 0;
};

// On Linux, which has no such numbers, the answer is that of NT 5.1: there too
// cameras are found by enumeration and devices are shared.
SystemVersion ReadSystemVersion() noexcept;

}  // namespace ormidex::platform

#endif  // ORMIDEX_PLATFORM_SYSTEM_VERSION_H_
