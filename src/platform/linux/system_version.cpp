#include "platform/system_version.h"

namespace ormidex::platform {

SystemVersion ReadSystemVersion() noexcept { return {kPlatformNt, 5, 1}; }

}  // namespace ormidex::platform
