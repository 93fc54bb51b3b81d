// What the library learns of its system when it is loaded.
#ifndef ORMIDEX_FRAME_STARTUP_H_
#define ORMIDEX_FRAME_STARTUP_H_

#include <cstdint>

namespace ormidex::frame {

// How cameras are found: 1 and 3 by the system's enumerator, 2 by the driver's own
// list; 0 on a system the library refuses.
std::uint32_t OperatingSystemKind() noexcept;
void SetOperatingSystemKindForTesting(std::uint32_t kind) noexcept;

}  // namespace ormidex::frame

#endif  // ORMIDEX_FRAME_STARTUP_H_
