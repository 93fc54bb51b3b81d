// Reading the system registry's local-machine hive. On Linux no key exists.
#ifndef ORMIDEX_PLATFORM_REGISTRY_H_
#define ORMIDEX_PLATFORM_REGISTRY_H_

#include <cstdint>

namespace ormidex::platform {

inline constexpr std::uint32_t kSubkeyNameBytes = 256;

// An open key. Tests give their own implementation.
class RegistryKey {
 public:
  virtual ~RegistryKey() = default;
  // Copies the first value_bytes bytes of a value when it holds at least as many.
  virtual bool ReadValue(const char* name, void* value, std::uint32_t value_bytes) = 0;
  virtual std::uint32_t SubkeyCount() = 0;
  // Name of subkey `index` in enumeration order, zero-terminated.
  virtual bool SubkeyName(std::uint32_t index, char (&name)[kSubkeyNameBytes]) = 0;
  // Opens a subkey with the access of this key; null when it cannot be opened.
  // Every key that was opened is closed with Close().
  virtual RegistryKey* OpenSubkey(const char* name) = 0;
  virtual void Close() = 0;
};

// Opens a key under HKEY_LOCAL_MACHINE with full access; null when absent.
RegistryKey* OpenLocalMachineKey(const char* path) noexcept;

// Tests: answers OpenLocalMachineKey instead of the system; null restores it.
using RegistryOpener = RegistryKey* (*)(const char* path);
void ReplaceRegistryForTesting(RegistryOpener opener) noexcept;

}  // namespace ormidex::platform

#endif  // ORMIDEX_PLATFORM_REGISTRY_H_
