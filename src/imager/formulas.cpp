#include "imager/formulas.h"

#include <cmath>

#include "device/time_scale.h"

// Each step of a formula that is truncated, or compared, has a name of its own: the
// 32-bit build computes in wider registers and rounds to double only what is stored,
// and a time of whole rows must give the same register value in both builds.

namespace ormidex::imager {

namespace {

// Fastest first; the FPN values stand in the order 128, 129, 130, 0, 1, 2.
constexpr PixelClock kPixelClocks[] = {
    {128, 24, 4.1667e-5, 4.1667e-8, 1.0 / 24000, 0, 0},
    {0, 16, 6.25e-5, 6.25e-8, 0.0000625, 3, 129},
    {129, 12, 8.3334e-5, 8.3334e-8, 1.0 / 12000, 1, 1},
    {1, 8, 1.25e-4, 1.25e-7, 0.000125, 4, 130},
    {130, 6, 1.66668e-4, 1.66668e-7, 1.0 / 6000, 2, 2},
    {2, 4, 2.5e-4, 2.5e-7, 0.00025, 5, kNoClocking},
};

}  // namespace

const PixelClock* FindPixelClock(std::uint32_t code) {
  for (const PixelClock& clock : kPixelClocks) {
    if (clock.code == code) return &clock;
  }
  return nullptr;
}

std::uint32_t RowLength(std::uint32_t factor) {
  switch (factor) {
    case 1:
      return 1664;
    case 2:
      return 960;
    case 4:
      return 608;
    default:
      return 0;
  }
}

bool ExposureValueFromTime(double time_ms, const PixelClock& clock, std::uint32_t row_length,
                           std::uint32_t image_height, std::uint32_t* value) {
  if (row_length == 0) return false;
  const double row_time = clock.period_ms * row_length;
  const double rows = time_ms / row_time;
  const double rounded = rows + 0.5;
  // Compared before the sum below, so that a huge time cannot wrap into the range.
  if (!(rounded < kExposureValueMax + 1.0)) return false;
  const std::uint32_t exposure =
      device::TruncateToWord(rounded) + (kExposureValueMax - image_height);
  if (exposure > kExposureValueMax) return false;
  *value = exposure;
  return true;
}

float TimeFromExposureValue(std::uint32_t value, const PixelClock& clock, std::uint32_t row_length,
                            std::uint32_t image_height) {
  const std::uint32_t rows = value - (kExposureValueMax - image_height);
  const double row_time = row_length * clock.period_ms;
  const double milliseconds = row_time * rows;
  return static_cast<float>(milliseconds);
}

namespace {

constexpr std::uint32_t kFirmwareWithFixedPackets = 0x03012200;
constexpr std::int32_t kPacketBytesMax = 4088;

// Rows are sent in packets of whole rows; a packet holds at most 4088 bytes and the
// frame a whole number of packets.
std::int32_t RowsPerPacket(std::int32_t estimate, std::int32_t row_bytes, std::int32_t rows) {
  std::int32_t n = estimate;
  // The bound on n alone ends the search for rows without a single byte.
  while (n < kPacketBytesMax && n * row_bytes < kPacketBytesMax && rows % n != 0) ++n;
  while (n > 1 && !(n * row_bytes <= kPacketBytesMax && rows % n == 0)) --n;
  return n;
}

}  // namespace

std::uint32_t MinimumRowLength(const RowLengthInput& input) {
  const auto divisor = static_cast<std::int32_t>(input.divisor);
  const std::int32_t a = (static_cast<std::int32_t>(input.width_register) + 1) / divisor;
  const std::int32_t b = (static_cast<std::int32_t>(input.height_register) + 1) / divisor;
  const std::int32_t s = a * static_cast<std::int32_t>(input.bytes_per_pixel);
  const std::int32_t f = input.megahertz;
  const std::int32_t q = (a * 5 + 265) * 25 * 80;
  const bool older = input.firmware_version < kFirmwareWithFixedPackets;

  std::int32_t estimate = 0;
  if (older) {
    const std::int32_t d = q / f - 203 * s;
    const std::int32_t e = 1250000 - 530000 / f;
    estimate = d > 0 ? e / d + 1 : 1;
  } else {
    estimate = 1250000 / (q / f) + 1;
  }
  const std::int32_t n = RowsPerPacket(estimate, s, b);

  const double packet_time = s * n * 0.0203;
  const double older_clocks = (packet_time + 125.0) * f;
  const double x = older ? older_clocks + a : f * 125.0;
  const double y = older ? n + 1.0 : n;
  const double clocks = x / y;
  const auto length = static_cast<std::int32_t>(std::ceil(clocks - 43.0));
  return static_cast<std::uint32_t>(length > a + 10 ? length : a + 10);
}

namespace {
constexpr std::uint32_t kFixedRowClocks = 19;
}

RowExposure RowsFromTime(double time_ms, double period_ms, std::uint32_t minimum_row_length,
                         const ImagerTiming& timing) {
  const std::uint32_t overhead = timing.blanking_b + timing.blanking_a + kFixedRowClocks;
  const double row_time = (overhead + minimum_row_length) * period_ms;
  const double rows = time_ms / row_time;
  if (rows < kExposureRowsMax + 1.0) {
    return {device::TruncateToWord(rows), minimum_row_length, false};
  }
  const double clock_time = period_ms * kExposureRowsMax;
  const double clocks = time_ms / clock_time;
  // Compared before the subtraction, so that a huge time cannot wrap.
  const double limit = static_cast<double>(kExposureRowsMax) + overhead;
  const std::uint32_t length =
      clocks < limit ? device::TruncateToWord(clocks) - overhead : kExposureRowsMax;
  return {kExposureRowsMax, length, true};
}

float TimeFromRows(std::uint32_t rows, double period_ms, const ImagerTiming& timing) {
  const std::uint32_t clocks =
      timing.blanking_b + timing.row_length + timing.blanking_a + kFixedRowClocks;
  const double row_time = clocks * period_ms;
  const double milliseconds = row_time * rows;
  return static_cast<float>(milliseconds);
}

float MaxExposureFirstGeneration(std::uint32_t factor, std::uint32_t height,
                                 const PixelClock& clock) {
  const double clocks = static_cast<double>(height / factor) * RowLength(factor);
  const double seconds = clocks * clock.period_s;
  const double milliseconds = seconds * 1000.0;
  return static_cast<float>(milliseconds);
}

float MaxExposureSecondGeneration(std::uint32_t factor, std::uint32_t width, std::uint32_t height,
                                  const PixelClock& clock, float frame_rate,
                                  const ImagerTiming& timing) {
  const double n = (height + 1) / factor + 1;
  const std::uint32_t clocks = (width + 1) / factor + timing.blanking_b + timing.blanking_a + 29;
  const double row_time = clocks * clock.period_s;
  const double frame_time = (n + 1.0) * row_time;
  const double full_exposure_rate = 1.0 / frame_time;
  double seconds = row_time * n;
  if (!(full_exposure_rate <= static_cast<double>(frame_rate))) {
    const double rows_a_second = static_cast<double>(frame_rate) * n;
    const double longest_row = 1.0 / rows_a_second;
    seconds = longest_row * n;
  }
  const double milliseconds = seconds * 1000.0;
  return static_cast<float>(milliseconds);
}

std::uint32_t SettleMilliseconds(std::uint32_t width, std::uint32_t height,
                                 const PixelClock& clock) {
  const double row_time = width * clock.settle_ms;
  const double milliseconds = row_time * height;
  return device::TruncateToWord(milliseconds);
}

// Single-precision constants, but no single-precision steps: products of two such
// values are exact in double, so both builds round the same number.
float ExposureGainFromCode(std::uint8_t code) {
  const double gain = code * static_cast<double>(0.11119f) + static_cast<double>(kExposureGainMin);
  return static_cast<float>(gain);
}

std::uint8_t CodeFromExposureGain(float gain) {
  const double above = static_cast<double>(gain) - static_cast<double>(kExposureGainMin);
  const double code = above * static_cast<double>(8.993614f) + 0.5;
  return static_cast<std::uint8_t>(code);
}

GammaCurve::GammaCurve(double gamma_value, double full, double base)
    : gamma(gamma_value), full_scale(full) {
  toe = std::log(full) / std::log(base) < 1.0 / gamma;
  if (!toe) return;
  const double k = std::pow(1.0 / full, gamma);
  if (k == 1.0) {  // the curve is too flat for a toe to exist
    toe = false;
    return;
  }
  const double m = std::pow(base, -gamma);
  slope = k;
  offset = (k / base - m) / (m - 1.0);
}

std::uint32_t GammaCurve::Entry(std::uint32_t index, double x) const {
  constexpr std::uint32_t kToeEntries = 6;
  double value = x * slope;
  if (!toe || index >= kToeEntries) {
    const double relative = x / full_scale;
    const double curve = std::pow(relative, gamma) * (offset + 1.0);
    value = (curve - offset) * full_scale;
  }
  return device::TruncateToWord(value + 0.5);
}

std::uint8_t SizeCode(std::uint32_t length, std::uint32_t factor) {
  switch (factor) {
    case 1:
      return static_cast<std::uint8_t>(length / 8);
    case 2:
      return static_cast<std::uint8_t>((length & ~0x0Fu) / 8);
    case 4:
      return static_cast<std::uint8_t>((length & ~0x1Fu) / 8);
    default:
      return factor == 0 ? std::uint8_t{0}
                         : static_cast<std::uint8_t>(length / factor * factor / 8);
  }
}

}  // namespace ormidex::imager
