#include "platform/registry.h"

#include <atomic>

namespace ormidex::platform {
namespace {

constinit std::atomic<RegistryOpener> replacement{nullptr};

}  // namespace

RegistryKey* OpenLocalMachineKey(const char* path) noexcept {
  const RegistryOpener opener = replacement.load();
  return opener != nullptr ? opener(path) : nullptr;
}

void ReplaceRegistryForTesting(RegistryOpener opener) noexcept { replacement.store(opener); }

}  // namespace ormidex::platform
