// What the library finds around it when an application calls its exports: a driver,
// an operating-system kind, a registry, a user who reads message boxes.
#ifndef ORMIDEX_TESTS_SUPPORT_PROCESS_ENVIRONMENT_H_
#define ORMIDEX_TESTS_SUPPORT_PROCESS_ENVIRONMENT_H_

#include <string>
#include <vector>

#include "device/driver_gateway.h"
#include "frame/startup.h"
#include "platform/message_box.h"
#include "platform/registry.h"

namespace ormidex::testing {

// In place for the object's lifetime. The registry has no keys.
class ProcessEnvironment {
 public:
  explicit ProcessEnvironment(device::DriverGateway& gateway, std::uint32_t system_kind = 3) {
    device::ReplaceGatewayForTesting(&gateway);
    frame::SetOperatingSystemKindForTesting(system_kind);
    platform::ReplaceRegistryForTesting(
        [](const char*) -> platform::RegistryKey* { return nullptr; });
    Messages().clear();
    platform::ReplaceMessageBoxForTesting([](const char* text, const char* title) {
      Messages().push_back(std::string(title != nullptr ? title : "(no title)") + ": " + text);
    });
  }
  ~ProcessEnvironment() {
    device::ReplaceGatewayForTesting(nullptr);
    frame::SetOperatingSystemKindForTesting(3);
    platform::ReplaceRegistryForTesting(nullptr);
    platform::ReplaceMessageBoxForTesting(nullptr);
  }
  ProcessEnvironment(const ProcessEnvironment&) = delete;
  ProcessEnvironment& operator=(const ProcessEnvironment&) = delete;

  // "title: text" of each box shown.
  static std::vector<std::string>& Messages() {
    static std::vector<std::string> messages;
    return messages;
  }
};

}  // namespace ormidex::testing

#endif  // ORMIDEX_TESTS_SUPPORT_PROCESS_ENVIRONMENT_H_
