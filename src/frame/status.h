// Status codes of the interface and the mapping from driver status words.
#ifndef ORMIDEX_FRAME_STATUS_H_
#define ORMIDEX_FRAME_STATUS_H_

#include <cstdint>

namespace ormidex {

using Status = std::uint32_t;

inline constexpr Status kOk = 0;
inline constexpr Status kNoCamera = 1;
inline constexpr Status kNullPointer = 2;
inline constexpr Status kCameraNotFound = 3;
inline constexpr Status kEnumerationFailed = 4;
inline constexpr Status kRequestFailed = 5;
inline constexpr Status kFileNotOpened = 6;
inline constexpr Status kOutOfRange = 7;
inline constexpr Status kImagerNotAccepted = 8;
inline constexpr Status kOutOfMemory = 9;
inline constexpr Status kGeneralFailure = 10;
inline constexpr Status kNoPreview = 11;
inline constexpr Status kNotSupported = 12;
inline constexpr Status kWrongState = 13;
inline constexpr Status kDriverCondition = 14;
inline constexpr Status kUnknownSystem = 15;
inline constexpr Status kNotConverged = 16;
inline constexpr Status kCommandTimeout = 17;
inline constexpr Status kClockingChanged = 18;

// Translates the status word that a driver request wrote into its record.
constexpr Status MapDriverStatus(std::uint32_t word) {
  switch (word) {
    case 0:
    case 1:
      return kOk;
    case 0x80000002:
      return kDriverCondition;
    case 0x80000003:
      return kNotSupported;
    case 0x80000005:
      return kOutOfRange;
    case 0x80000011:
      return kCameraNotFound;
    case 0x80000012:
      return kNoCamera;
    default:
      return kGeneralFailure;
  }
}

}  // namespace ormidex

#endif  // ORMIDEX_FRAME_STATUS_H_
