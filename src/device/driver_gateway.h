// The one door to the kernel driver.
//
// Everything above talks to a DriverGateway and cannot tell whether the
// operating system's driver, the built-in simulator or a test's script answers.
//
// Contract for implementers:
//  - Any thread may call any function at any time, several at once and on the
//    same handle. No library lock is promised to be held.
//  - Control() is synchronous: it returns when the request is complete. A frame
//    read may block for as long as the driver's time-out.
//  - Nothing throws.
#ifndef ORMIDEX_DEVICE_DRIVER_GATEWAY_H_
#define ORMIDEX_DEVICE_DRIVER_GATEWAY_H_

#include <cstdint>

namespace ormidex::device {

// An open device; null when there is none.
using DriverHandle = void*;

// Names and paths of devices, the terminating zero included.
inline constexpr std::uint32_t kDeviceTextBytes = 260;

enum class DriverShare {
  kExclusive,  // no one else may open the device meanwhile
  kShared,     // shared for reading, writing and deleting
};

struct DriverRequest {
  std::uint32_t code = 0;
  const void* in = nullptr;
  std::uint32_t in_bytes = 0;
  void* out = nullptr;
  std::uint32_t out_bytes = 0;
};

// One device met during an enumeration; valid only during the visit.
class DeviceEntry {
 public:
  virtual ~DeviceEntry() = default;
  // Each stores a zero-terminated string, or returns false when it cannot be read.
  virtual bool FriendlyName(char (&name)[kDeviceTextBytes]) = 0;
  virtual bool DevicePath(char (&path)[kDeviceTextBytes]) = 0;
};

class DeviceVisitor {
 public:
  virtual ~DeviceVisitor() = default;
  // Returns false to end the enumeration.
  virtual bool Visit(DeviceEntry& entry) = 0;
};

enum class EnumerationResult {
  kListed,         // every device was offered to the visitor, or it ended the walk
  kEmptyCategory,  // there is no device of the category
  kUnavailable,    // the system's enumerator could not be created or queried
};

class DriverGateway {
 public:
  virtual ~DriverGateway() = default;

  // Opens an existing device for reading and writing; null on failure.
  virtual DriverHandle Open(const char* path, DriverShare share) = 0;

  // Issues one request. Returns false when the driver failed it; *returned is
  // the number of bytes that came back in request.out (0 on failure).
  virtual bool Control(DriverHandle handle, const DriverRequest& request,
                       std::uint32_t* returned) = 0;

  virtual bool Close(DriverHandle handle) = 0;

  // Offers the video input devices of the system in their order.
  virtual EnumerationResult Enumerate(DeviceVisitor& visitor) = 0;
};

// The process's gateway: the simulator when ORMIDEX_SIMULATOR is set, otherwise
// the operating system's driver; wrapped by the request trace when ORMIDEX_TRACE
// is set. Chosen at the first call and kept.
DriverGateway& ProcessGateway();

// Tests put their own gateway in place; null restores the process's choice. Not
// to be called while a camera is open.
void ReplaceGatewayForTesting(DriverGateway* gateway);

}  // namespace ormidex::device

#endif  // ORMIDEX_DEVICE_DRIVER_GATEWAY_H_
