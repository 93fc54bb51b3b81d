// Fixed-pattern-noise values: one byte per imager clock, matched to a camera.
#ifndef ORMIDEX_DEVICE_FPN_H_
#define ORMIDEX_DEVICE_FPN_H_

#include <cstdint>

namespace ormidex::device {

inline constexpr std::uint32_t kFpnValueBytes = 6;

// The serial number that a registry subkey is named after, from the first eight
// characters of its name.
std::uint32_t SerialFromSubkeyName(const char* name);

// Looks the values up in the registry, for the given operating-system kind.
bool ReadFpnFromRegistry(std::uint32_t system_kind, std::uint32_t serial_number,
                         std::uint8_t (&values)[kFpnValueBytes]);

}  // namespace ormidex::device

#endif  // ORMIDEX_DEVICE_FPN_H_
