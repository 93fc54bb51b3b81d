// Durations as the driver's requests carry them.
#ifndef ORMIDEX_DEVICE_TIME_SCALE_H_
#define ORMIDEX_DEVICE_TIME_SCALE_H_

#include <cstdint>

namespace ormidex::device {

// Truncates to an integer word. Negative values travel in two's complement; what
// does not fit is held at the nearest end of the range, and NaN is 0.
constexpr std::uint32_t TruncateToWord(double value) {
  if (value != value) return 0;
  if (value >= 4294967295.0) return 0xFFFFFFFFu;
  if (value <= -2147483648.0) return 0x80000000u;
  if (value < 0.0) return static_cast<std::uint32_t>(static_cast<std::int32_t>(value));
  return static_cast<std::uint32_t>(value);
}

// Firmware 3.0 and later counts in thousandths of the caller's unit. The product
// is rounded to single precision, so 0.7 gives 700.
constexpr std::uint32_t RequestTime(float time, std::uint32_t firmware_version) {
  if (firmware_version < 0x03000000u) return TruncateToWord(static_cast<double>(time));
  const float scaled = time * 1000.0f;
  return TruncateToWord(static_cast<double>(scaled));
}

}  // namespace ormidex::device

#endif  // ORMIDEX_DEVICE_TIME_SCALE_H_
