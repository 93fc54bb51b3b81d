// A driver gateway that writes down every request that passes through it.
#ifndef ORMIDEX_DEVICE_REQUEST_TRACE_H_
#define ORMIDEX_DEVICE_REQUEST_TRACE_H_

#include <cstdio>
#include <map>
#include <string>

#include "device/driver_gateway.h"
#include "platform/critical_section.h"

namespace ormidex::device {

// The name of a control code, for example "CAM_IOCTL_START_STREAM"; "unknown" for
// any other.
const char* ControlCodeName(std::uint32_t code);

// CRC-32 of ISO 3309 (as in PNG and zip), for frames, which are too long to print.
std::uint32_t Crc32(const void* data, std::size_t bytes);

// One JSON object a line:
//   {"t":0.001234,"camera":"PATH","code":"0x222004","name":"CAM_IOCTL_WRITE_REGISTERS",
//    "in":"hex","out":"hex","ok":true,"returned":20,"us":2}
// t counts seconds from the first line's gateway on; in and out are what was sent
// and what came back; the out of a frame is {"length":N,"crc32":"0x12345678"}.
class RequestTrace : public DriverGateway {
 public:
  // Writes to `path` (created anew), or to standard error for "stderr". When the
  // file cannot be created one line on standard error says so and requests pass
  // through unrecorded.
  RequestTrace(DriverGateway& inner, const char* path);
  ~RequestTrace() override;

  DriverHandle Open(const char* path, DriverShare share) override;
  bool Control(DriverHandle handle, const DriverRequest& request, std::uint32_t* returned) override;
  bool Close(DriverHandle handle) override;
  EnumerationResult Enumerate(DeviceVisitor& visitor) override;

 private:
  struct Completed;
  void Write(DriverHandle handle, const DriverRequest& request, const Completed& completed);

  DriverGateway& inner_;
  std::FILE* file_ = nullptr;
  std::uint64_t start_us_ = 0;
  std::map<DriverHandle, std::string> cameras_;
  platform::CriticalSection lock_;
};

}  // namespace ormidex::device

#endif  // ORMIDEX_DEVICE_REQUEST_TRACE_H_
