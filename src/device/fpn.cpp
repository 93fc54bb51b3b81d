#include "device/fpn.h"

#include <cstring>
#include <initializer_list>

#include "device/session.h"
#include "frame/startup.h"
#include "platform/registry.h"

namespace ormidex::device {

namespace {

constexpr char kValueName[] = "m_FpnRegisterValues";
constexpr char kKeyKind1[] = "ENUM\\1394\\KELMOR&Torvenal(tm)_1394_Camera";
constexpr char kKeyOtherKinds[] =
    "SYSTEM\\CurrentControlSet\\Enum\\1394\\KELMOR&Torvenal(tm)_1394_Camera";
constexpr std::uint8_t kDefaults[kFpnValueBytes] = {25, 17, 17, 17, 17, 17};

constexpr std::uint32_t kCameraFpnAddress = 0xFF00;
constexpr std::uint32_t kFirstFirmwareWithFpn = 0x02020500;

bool FindInSubkeys(platform::RegistryKey& key, std::uint32_t serial_number,
                   std::uint8_t (&values)[kFpnValueBytes]) {
  const std::uint32_t count = key.SubkeyCount();
  for (std::uint32_t i = 0; i < count; ++i) {
    char name[platform::kSubkeyNameBytes] = {};
    if (!key.SubkeyName(i, name) || std::strlen(name) < 8) continue;
    if (SerialFromSubkeyName(name) != serial_number) continue;
    platform::RegistryKey* subkey = key.OpenSubkey(name);
    if (subkey == nullptr) continue;
    const bool found = subkey->ReadValue(kValueName, values, kFpnValueBytes);
    subkey->Close();
    if (found) return true;
  }
  return false;
}

}  // namespace

// The name spells the serial number's bytes lowest first. Only the digits 0 to 9
// decode to their value, deliberately: subkeys written with letters have never
// been matched, and cameras of such serial numbers use their own values.
std::uint32_t SerialFromSubkeyName(const char* name) {
  std::uint32_t serial = 0;
  for (const int position : {7, 8, 5, 6, 3, 4, 1, 2}) {
    const int digit = static_cast<unsigned char>(name[position - 1]) - '0';
    serial = serial * 16u + static_cast<std::uint32_t>(digit);
  }
  return serial;
}

bool ReadFpnFromRegistry(std::uint32_t system_kind, std::uint32_t serial_number,
                         std::uint8_t (&values)[kFpnValueBytes]) {
  if (system_kind < 1 || system_kind > 3) return false;
  platform::RegistryKey* key =
      platform::OpenLocalMachineKey(system_kind == 1 ? kKeyKind1 : kKeyOtherKinds);
  if (key == nullptr) return false;
  const bool found = key->ReadValue(kValueName, values, kFpnValueBytes) ||
                     FindInSubkeys(*key, serial_number, values);
  key->Close();
  return found;
}

Status CameraSession::LoadFpnValues() {
  std::uint8_t(&values)[kFpnValueBytes] = exposure.clocking_register_values;
  std::memcpy(values, kDefaults, sizeof(values));
  if (!HasDevice()) return kNoCamera;
  if (ReadFpnFromRegistry(frame::OperatingSystemKind(), identity.serial_number, values)) {
    return kOk;
  }
  if ((identity.firmware_version & 0xFFFFFF00u) < kFirstFirmwareWithFpn) return kOk;
  const Status status = ReadMultRegister(kCameraFpnAddress, kFpnValueBytes, values);
  const bool plausible = (values[0] & 1u) != 0 && values[0] < 49;
  if (status != kOk || !plausible) std::memcpy(values, kDefaults, sizeof(values));
  return status;
}

}  // namespace ormidex::device
