#include "platform/system_version.h"

#include <windows.h>

namespace ormidex::platform {

SystemVersion ReadSystemVersion() noexcept {
  OSVERSIONINFOA version = {};
  static_assert(sizeof(version) == 148, "the form without service-pack fields");
  version.dwOSVersionInfoSize = sizeof(version);
  GetVersionExA(&version);
  return {version.dwPlatformId, version.dwMajorVersion, version.dwMinorVersion};
}

}  // namespace ormidex::platform
