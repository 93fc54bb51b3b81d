// Which driver the process talks to.
#include <atomic>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <string>

#include "device/driver_gateway.h"
#include "device/request_trace.h"
#include "platform/driver_file.h"
#include "simulator/create.h"

namespace ormidex::device {

namespace {

// A device of the system's enumerator.
class SystemDeviceEntry : public DeviceEntry {
 public:
  explicit SystemDeviceEntry(void* context) : context_(context) {}
  bool FriendlyName(char (&name)[kDeviceTextBytes]) override {
    return Read(platform::VideoDeviceProperty::kFriendlyName, name);
  }
  bool DevicePath(char (&path)[kDeviceTextBytes]) override {
    return Read(platform::VideoDeviceProperty::kDevicePath, path);
  }

 private:
  bool Read(platform::VideoDeviceProperty property, char (&text)[kDeviceTextBytes]) {
    static_assert(kDeviceTextBytes == platform::kVideoDeviceTextBytes);
    return platform::ReadVideoDeviceProperty(context_, property, text);
  }
  void* context_;
};

// The operating system's kernel driver.
class SystemGateway : public DriverGateway {
 public:
  DriverHandle Open(const char* path, DriverShare share) override {
    return platform::OpenDriverFile(path, share == DriverShare::kShared);
  }
  bool Control(DriverHandle handle, const DriverRequest& request,
               std::uint32_t* returned) override {
    return platform::ControlDriverFile(handle, request.code, request.in, request.in_bytes,
                                       request.out, request.out_bytes, returned);
  }
  bool Close(DriverHandle handle) override { return platform::CloseDriverFile(handle); }
  EnumerationResult Enumerate(DeviceVisitor& visitor) override {
    const auto visit = [](void* user, void* context) {
      SystemDeviceEntry entry(context);
      return static_cast<DeviceVisitor*>(user)->Visit(entry);
    };
    switch (platform::WalkVideoDevices(visit, &visitor)) {
      case platform::VideoDeviceWalk::kListed:
        return EnumerationResult::kListed;
      case platform::VideoDeviceWalk::kEmptyCategory:
        return EnumerationResult::kEmptyCategory;
      case platform::VideoDeviceWalk::kUnavailable:
        break;
    }
    return EnumerationResult::kUnavailable;
  }
};

// What simulated cameras become when their description cannot be read: a machine
// without cameras, so that nobody takes a real one for a simulated one.
class EmptyGateway : public DriverGateway {
 public:
  DriverHandle Open(const char*, DriverShare) override { return nullptr; }
  bool Control(DriverHandle, const DriverRequest&, std::uint32_t*) override { return false; }
  bool Close(DriverHandle) override { return false; }
  EnumerationResult Enumerate(DeviceVisitor&) override { return EnumerationResult::kEmptyCategory; }
};

std::unique_ptr<DriverGateway> MakeDriver() {
  const char* description = std::getenv("ORMIDEX_SIMULATOR");
  if (description == nullptr) return std::make_unique<SystemGateway>();
  std::string error;
  auto simulator = simulator::CreateFromDescription(description, &error);
  if (simulator != nullptr) return simulator;
  std::fprintf(stderr, "ormidex: ORMIDEX_SIMULATOR: %s\n", error.c_str());
  return std::make_unique<EmptyGateway>();
}

// The trace stands in front of the driver for as long as the process lives.
DriverGateway* MakeProcessGateway() {
  DriverGateway* driver = MakeDriver().release();
  const char* trace = std::getenv("ORMIDEX_TRACE");
  if (trace == nullptr || *trace == '\0') return driver;
  return new RequestTrace(*driver, trace);
}

std::atomic<DriverGateway*> replacement{nullptr};

}  // namespace

DriverGateway& ProcessGateway() {
  if (DriverGateway* gateway = replacement.load()) return *gateway;
  static DriverGateway* const chosen = MakeProcessGateway();
  return *chosen;
}

void ReplaceGatewayForTesting(DriverGateway* gateway) { replacement.store(gateway); }

}  // namespace ormidex::device
