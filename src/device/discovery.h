// Finding cameras on the machine.
#ifndef ORMIDEX_DEVICE_DISCOVERY_H_
#define ORMIDEX_DEVICE_DISCOVERY_H_

#include <cstdint>

#include "device/driver_gateway.h"
#include "frame/status.h"

namespace ormidex::device {

// The name under which cameras are looked for, whatever name the caller gave.
const char* ResolveDeviceTypeName(const char* device_type_name);
// The name that is opened where cameras are found by the driver's own list.
const char* ResolveDriverName(const char* resolved_name);

// The driver's device list: names in lines of equal length, each ended by a line
// feed. A list without a line feed has no cameras.
class DeviceList {
 public:
  // Asks the driver; false when the request fails.
  bool Read(DriverGateway& gateway, DriverHandle handle);
  bool HasLines() const { return line_bytes_ != 0; }
  // Whole lines only.
  std::uint32_t CameraCount() const { return HasLines() ? used_bytes_ / line_bytes_ : 0; }
  // The device path of camera `index`; false when the list ends before its name.
  bool DevicePath(std::uint32_t index, char (&path)[kDeviceTextBytes]) const;

 private:
  char text_[1024] = {};
  std::uint32_t used_bytes_ = 0;
  std::uint32_t line_bytes_ = 0;  // of the first line, its line feed included
};

// Counts the cameras. Called under the exclusive API lock, inside a COM apartment.
Status CountCameras(std::uint32_t* count);

// The device path of camera `index` among the devices of the given name.
Status FindCameraPath(DriverGateway& gateway, const char* name, std::uint32_t index,
                      char (&path)[kDeviceTextBytes]);

}  // namespace ormidex::device

#endif  // ORMIDEX_DEVICE_DISCOVERY_H_
