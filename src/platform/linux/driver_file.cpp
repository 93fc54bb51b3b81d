// There is no kernel driver for these cameras on Linux.
#include "platform/driver_file.h"

namespace ormidex::platform {

DriverFile OpenDriverFile(const char* /*path*/, bool /*shared*/) noexcept { return nullptr; }

bool ControlDriverFile(DriverFile /*file*/, std::uint32_t /*code*/, const void* /*in*/,
                       std::uint32_t /*in_bytes*/, void* /*out*/, std::uint32_t /*out_bytes*/,
                       std::uint32_t* returned) noexcept {
  *returned = 0;
  return false;
}

bool CloseDriverFile(DriverFile /*file*/) noexcept { return false; }

void EnterComApartment() noexcept {}
void LeaveComApartment() noexcept {}

bool ReadVideoDeviceProperty(void* /*context*/, VideoDeviceProperty /*property*/,
                             char (&text)[kVideoDeviceTextBytes]) noexcept {
  text[0] = '\0';
  return false;
}

VideoDeviceWalk WalkVideoDevices(bool (* /*visit*/)(void* user, void* context),
                                 void* /*user*/) noexcept {
  return VideoDeviceWalk::kEmptyCategory;
}

}  // namespace ormidex::platform
