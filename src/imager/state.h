// What the session keeps of the imager's settings.
#ifndef ORMIDEX_IMAGER_STATE_H_
#define ORMIDEX_IMAGER_STATE_H_

#include <cstdint>

namespace ormidex::imager {

struct ExposureState {
  std::uint32_t clocking = 0;         // imager clocking code
  float last_exposure_time = 0.0f;    // ms, last given to a second-generation imager
  std::uint32_t continuous_auto = 0;  // non-zero: the camera exposes by itself
  // Values of camera register 145 for the clocking codes 128, 129, 130, 0, 1, 2.
  std::uint8_t clocking_register_values[6] = {};
};

struct GainState {
  std::uint32_t mono = 0;
  std::uint32_t red = 0;
  std::uint32_t blue = 0;
  std::uint32_t green = 0;
};

struct OptionState {
  float gamma = 0.0f;
  std::uint32_t light_source = 1;
};

struct GeometryState {
  std::uint32_t factor = 0xFFFFFFFFu;  // sub-sampling: 1, 2 or 4
  std::uint32_t column = 0xFFFFFFFFu;  // of the sub-window, in array coordinates
  std::uint32_t row = 0xFFFFFFFFu;
  std::uint32_t width = 0xFFFFFFFFu;  // pixels after sub-sampling
  std::uint32_t height = 0xFFFFFFFFu;
  std::uint32_t flip_horizontal = 0;
  std::uint32_t flip_vertical = 0;
  std::uint32_t bayer_phase = 0;
  std::uint32_t bytes_per_pixel = 0;  // 1 or 2
  std::uint32_t frame_bytes = 0;      // width x height x bytes per pixel
  std::uint32_t rgb_bytes = 0;        // width x height x 3
  std::uint32_t video_mode = 0;       // 0: not in video mode, so no frames
};

}  // namespace ormidex::imager

#endif  // ORMIDEX_IMAGER_STATE_H_
