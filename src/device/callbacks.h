// Functions that applications hand to the library.
#ifndef ORMIDEX_DEVICE_CALLBACKS_H_
#define ORMIDEX_DEVICE_CALLBACKS_H_

#include <cstdint>

#if defined(_WIN32) && defined(__i386__)
#define ORMIDEX_CALLBACK __stdcall
#else
#define ORMIDEX_CALLBACK
#endif

namespace ormidex::device {

// A triggered frame is in the buffer. The result is ignored.
using TriggerCallback = std::uint32_t(ORMIDEX_CALLBACK*)(void* handle, void* buffer);

// An image is about to be shown or saved and may be drawn into. The format is 1
// for 8-bit grey, 2 for 16-bit grey, 3 for 24-bit and 4 for 48-bit colour. The
// result is ignored.
using OverlayCallback = std::uint32_t(ORMIDEX_CALLBACK*)(void* handle, void* image,
                                                         std::uint32_t width, std::uint32_t height,
                                                         std::uint32_t format);

}  // namespace ormidex::device

#endif  // ORMIDEX_DEVICE_CALLBACKS_H_
