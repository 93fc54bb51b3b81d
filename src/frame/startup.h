// What the library does when it is loaded, and what it learns of its system then.
#ifndef ORMIDEX_FRAME_STARTUP_H_
#define ORMIDEX_FRAME_STARTUP_H_

#include <cstdint>

#include "platform/system_version.h"

namespace ormidex::frame {

// The kind of a system with these version numbers:
//   1  the consumer platform except its first release (minor version 0)
//   2  NT 4
//   3  NT 5
//   0  any other; the library refuses it, later versions of NT included
std::uint32_t KindOfSystem(const platform::SystemVersion& version) noexcept;

// The kind of this system, fixed from load to unload. It decides how cameras are
// found: 1 and 3 by the system's enumerator, 2 by the driver's own list.
std::uint32_t OperatingSystemKind() noexcept;
void SetOperatingSystemKindForTesting(std::uint32_t kind) noexcept;

// What start-up asks of the system.
struct StartUpSystem {
  void (*register_preview_class)();
  platform::SystemVersion (*read_version)();
  void (*show_message)(const char* text, const char* title);
};

// Registers the preview's window class, decides the kind, and refuses a system of
// kind 0 with a message to the user: false means that the library must not load.
bool StartUp(const StartUpSystem& system) noexcept;

}  // namespace ormidex::frame

#endif  // ORMIDEX_FRAME_STARTUP_H_
