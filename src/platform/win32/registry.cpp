#include "platform/registry.h"

#include <windows.h>

#include <atomic>
#include <cstring>
#include <new>

#include "platform/memory.h"

namespace ormidex::platform {
namespace {

constinit std::atomic<RegistryOpener> replacement{nullptr};

class SystemKey final : public RegistryKey {
 public:
  static RegistryKey* Open(HKEY parent, const char* path);

  bool ReadValue(const char* name, void* value, std::uint32_t value_bytes) override;
  std::uint32_t SubkeyCount() override;
  bool SubkeyName(std::uint32_t index, char (&name)[kSubkeyNameBytes]) override;
  RegistryKey* OpenSubkey(const char* name) override { return Open(key_, name); }
  void Close() override {
    RegCloseKey(key_);
    delete this;
  }

 private:
  explicit SystemKey(HKEY key) : key_(key) {}
  HKEY key_;
};

RegistryKey* SystemKey::Open(HKEY parent, const char* path) {
  HKEY key = nullptr;
  if (RegOpenKeyExA(parent, path, 0, KEY_ALL_ACCESS, &key) != ERROR_SUCCESS) {
    return nullptr;
  }
  auto* opened = new (std::nothrow) SystemKey(key);
  if (opened == nullptr) {
    RegCloseKey(key);
  }
  return opened;
}

bool SystemKey::ReadValue(const char* name, void* value, std::uint32_t value_bytes) {
  DWORD bytes = 0;
  if (RegQueryValueExA(key_, name, nullptr, nullptr, nullptr, &bytes) != ERROR_SUCCESS ||
      bytes < value_bytes) {
    return false;
  }
  const Buffer whole(bytes);
  if (!whole ||
      RegQueryValueExA(key_, name, nullptr, nullptr, whole.Bytes(), &bytes) != ERROR_SUCCESS) {
    return false;
  }
  std::memcpy(value, whole.Bytes(), value_bytes);
  return true;
}

std::uint32_t SystemKey::SubkeyCount() {
  DWORD count = 0;
  const LSTATUS result = RegQueryInfoKeyA(key_, nullptr, nullptr, nullptr, &count, nullptr, nullptr,
                                          nullptr, nullptr, nullptr, nullptr, nullptr);
  return result == ERROR_SUCCESS ? count : 0;
}

bool SystemKey::SubkeyName(std::uint32_t index, char (&name)[kSubkeyNameBytes]) {
  DWORD bytes = kSubkeyNameBytes;
  name[0] = '\0';
  return RegEnumKeyExA(key_, index, name, &bytes, nullptr, nullptr, nullptr, nullptr) ==
         ERROR_SUCCESS;
}

}  // namespace

RegistryKey* OpenLocalMachineKey(const char* path) noexcept {
  const RegistryOpener opener = replacement.load();
  return opener != nullptr ? opener(path) : SystemKey::Open(HKEY_LOCAL_MACHINE, path);
}

void ReplaceRegistryForTesting(RegistryOpener opener) noexcept { replacement.store(opener); }

}  // namespace ormidex::platform
