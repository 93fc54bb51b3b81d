// Exposure and timing arithmetic of both imager generations: numbers in, numbers
// out, no camera.
#ifndef ORMIDEX_IMAGER_FORMULAS_H_
#define ORMIDEX_IMAGER_FORMULAS_H_

#include <cstdint>

namespace ormidex::imager {

// One of the imager's pixel clocks. The periods are the rounded decimals that
// cameras and applications have always been computed with, not exact reciprocals.
struct PixelClock {
  std::uint32_t code;
  std::int32_t megahertz;
  double period_ms;
  double period_s;            // for the longest exposure
  double settle_ms;           // per pixel, for the wait after a video-mode change
  std::int32_t fpn_index;     // place of its value among the clocking register values
  std::uint32_t next_slower;  // code, or kNoClocking
};

inline constexpr std::uint32_t kNoClocking = 0xFFFFFFFFu;

// Null for a code that is none of 128, 0, 129, 1, 130 and 2.
const PixelClock* FindPixelClock(std::uint32_t code);

// ---- First generation --------------------------------------------------------

// Pixel clocks per row; 0 for a factor other than 1, 2 and 4.
std::uint32_t RowLength(std::uint32_t factor);

// The exposure register counts down from 2047.
inline constexpr std::uint32_t kExposureValueMax = 2047;

// Exposure register value of a time in ms; false when it does not fit.
bool ExposureValueFromTime(double time_ms, const PixelClock& clock, std::uint32_t row_length,
                           std::uint32_t image_height, std::uint32_t* value);
// A value below 2047 - image_height gives a huge time: the rows are counted as an
// unsigned word, deliberately, and applications detect such values by it.
float TimeFromExposureValue(std::uint32_t value, const PixelClock& clock, std::uint32_t row_length,
                            std::uint32_t image_height);

// ---- Second generation -------------------------------------------------------

inline constexpr std::uint32_t kExposureRowsMax = 16383;

// What the imager's registers say of its frame.
struct ImagerTiming {
  std::uint32_t row_length = 0;  // registers 82, 83
  std::uint32_t blanking_a = 0;  // register 95
  std::uint32_t blanking_b = 0;  // register 96
};

struct RowLengthInput {
  std::uint32_t width_register = 0;   // 75, 76
  std::uint32_t height_register = 0;  // 71, 72
  std::uint32_t divisor = 1;          // decimation: 1, 2 or 4
  std::uint32_t bytes_per_pixel = 1;
  std::int32_t megahertz = 16;
  std::uint32_t firmware_version = 0;
};

// Shortest row, in pixel clocks, whose data the bus still carries in whole packets.
std::uint32_t MinimumRowLength(const RowLengthInput& input);

struct RowExposure {
  std::uint32_t rows = 0;         // N
  std::uint32_t row_length = 0;   // to be used with it
  bool row_length_given = false;  // the time needs a longer row than the minimum
};
RowExposure RowsFromTime(double time_ms, double period_ms, std::uint32_t minimum_row_length,
                         const ImagerTiming& timing);
float TimeFromRows(std::uint32_t rows, double period_ms, const ImagerTiming& timing);

// ---- Both --------------------------------------------------------------------

// Longest exposure in ms.
float MaxExposureFirstGeneration(std::uint32_t factor, std::uint32_t height,
                                 const PixelClock& clock);
float MaxExposureSecondGeneration(std::uint32_t factor, std::uint32_t width, std::uint32_t height,
                                  const PixelClock& clock, float frame_rate,
                                  const ImagerTiming& timing);

// Time of one frame in whole ms, which a second-generation imager needs before it
// follows a new video mode.
std::uint32_t SettleMilliseconds(std::uint32_t width, std::uint32_t height,
                                 const PixelClock& clock);

// Exposure gain of the second-generation imager, 0.483 to 7.488, and its code.
inline constexpr float kExposureGainMin = 0.483f;
inline constexpr float kExposureGainMax = 7.488f;
float ExposureGainFromCode(std::uint8_t code);
std::uint8_t CodeFromExposureGain(float gain);

// Gamma table entries 0 to count - 1, each evaluated at its index times `step`.
struct GammaCurve {
  GammaCurve(double gamma, double full_scale, double base);
  // The table entry for position x, the index being `index`.
  std::uint32_t Entry(std::uint32_t index, double x) const;

  double gamma;
  double full_scale;
  bool toe = false;     // a linear start, for strong curves
  double slope = 1.0;   // of the toe
  double offset = 0.0;  // of the curve behind it
};

// Length of a sub-window side in units of eight pixels.
std::uint8_t SizeCode(std::uint32_t length, std::uint32_t factor);

}  // namespace ormidex::imager

#endif  // ORMIDEX_IMAGER_FORMULAS_H_
