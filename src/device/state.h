// What the session knows of its device link and of the camera's identity.
#ifndef ORMIDEX_DEVICE_STATE_H_
#define ORMIDEX_DEVICE_STATE_H_

#include <cstdint>

namespace ormidex::device {

class DriverGateway;

// Geometry fields hold this value until the camera's real geometry is known.
inline constexpr std::uint32_t kUnknown = 0xFFFFFFFFu;

enum ImagerType : std::uint32_t { kImagerUnknown = 0, kImagerMono = 1, kImagerColour = 2 };

inline constexpr std::uint32_t kFirstGenerationBusAddress = 0x60;
inline constexpr std::uint32_t kSecondGenerationBusAddress = 0x66;

struct LinkState {
  DriverGateway* gateway = nullptr;
  void* handle = nullptr;           // null: no device, operations return 1
  std::uint32_t bus_address = 0;    // of the imager on the camera's serial bus
  std::uint32_t timeout = 0;        // last value the driver accepted
  std::uint32_t gpo_level[2] = {};  // of GPO lines 1 and 2
};

struct IdentityState {
  char imager_name[81] = {};
  char device_description[260] = {};
  char device_type_name[260] = {};
  std::uint32_t serial_number = 0;     // 0: not known
  std::uint32_t firmware_version = 0;  // 0: not known
  std::uint32_t imager_type = kImagerUnknown;
  // Second-generation imager, newer imager and newer controller are one thing.
  std::uint32_t second_generation = 0;
};

// Working values of the open sequence. The first is the level that opening
// drives on GPO line 1.
struct OpenState {
  std::uint32_t gpo_level = 0;
  std::uint32_t imager_mode = 0;
};

}  // namespace ormidex::device

#endif  // ORMIDEX_DEVICE_STATE_H_
