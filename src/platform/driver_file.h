// The operating system's kernel driver: device files, device-control requests
// and the enumeration of video input devices. On Linux there is no driver:
// opening fails, and there is no enumerator category.
#ifndef ORMIDEX_PLATFORM_DRIVER_FILE_H_
#define ORMIDEX_PLATFORM_DRIVER_FILE_H_

#include <cstdint>

namespace ormidex::platform {

using DriverFile = void*;  // null when not open

DriverFile OpenDriverFile(const char* path, bool shared) noexcept;
bool ControlDriverFile(DriverFile file, std::uint32_t code, const void* in, std::uint32_t in_bytes,
                       void* out, std::uint32_t out_bytes, std::uint32_t* returned) noexcept;
bool CloseDriverFile(DriverFile file) noexcept;

// Initialises COM on the calling thread (CoInitialize, CoUninitialize).
void EnterComApartment() noexcept;
void LeaveComApartment() noexcept;

inline constexpr std::uint32_t kVideoDeviceTextBytes = 260;

// A property of the device being visited; false when it cannot be read.
// `context` is the visitor's handle on the device, valid during the visit.
enum class VideoDeviceProperty { kFriendlyName, kDevicePath };
bool ReadVideoDeviceProperty(void* context, VideoDeviceProperty property,
                             char (&text)[kVideoDeviceTextBytes]) noexcept;

enum class VideoDeviceWalk { kListed, kEmptyCategory, kUnavailable };
// Offers each device of the video input category whose properties can be bound;
// visit returns false to end the walk.
VideoDeviceWalk WalkVideoDevices(bool (*visit)(void* user, void* context), void* user) noexcept;

}  // namespace ormidex::platform

#endif  // ORMIDEX_PLATFORM_DRIVER_FILE_H_
