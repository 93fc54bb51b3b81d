#include "frame/startup.h"

#include <atomic>

namespace ormidex::frame {

namespace {

constexpr std::uint32_t kUndecided = 0xFFFFFFFFu;

constinit std::atomic<std::uint32_t> system_kind{kUndecided};

}  // namespace

std::uint32_t KindOfSystem(const platform::SystemVersion& version) noexcept {
  if (version.platform == platform::kPlatformConsumer) return version.minor != 0 ? 1 : 0;
  if (version.platform != platform::kPlatformNt) return 0;
  switch (version.major) {
    case 4:
      return 2;
    case 5:
      return 3;
    default:
      return 0;
  }
}

// Where nothing runs at load (on Linux, and in programs that link the library
// statically) the first question decides.
std::uint32_t OperatingSystemKind() noexcept {
  std::uint32_t kind = system_kind.load();
  if (kind == kUndecided) {
    kind = KindOfSystem(platform::ReadSystemVersion());
    system_kind.store(kind);
  }
  return kind;
}

void SetOperatingSystemKindForTesting(std::uint32_t kind) noexcept { system_kind.store(kind); }

bool StartUp(const StartUpSystem& system) noexcept {
  system.register_preview_class();
  const std::uint32_t kind = KindOfSystem(system.read_version());
  system_kind.store(kind);
  if (kind != 0) return true;
  system.show_message("Unsupported Operating System.", "Torvenal");
  return false;
}

}  // namespace ormidex::frame
