// What the session keeps for writing and showing images.
#ifndef ORMIDEX_FILES_STATE_H_
#define ORMIDEX_FILES_STATE_H_

#include <cstddef>
#include <cstdint>

#include "device/callbacks.h"

namespace ormidex::files {

// The platform's bitmap information header.
struct BitmapInfoHeader {
  std::uint32_t header_bytes = 0;
  std::uint32_t width = 0;
  std::int32_t height = 0;  // positive: rows stored bottom-up
  std::uint16_t planes = 0;
  std::uint16_t bits_per_pixel = 0;
  std::uint32_t compression = 0;
  std::uint32_t image_bytes = 0;
  std::uint32_t horizontal_resolution = 0;
  std::uint32_t vertical_resolution = 0;
  std::uint32_t colours_used = 0;
  std::uint32_t colours_important = 0;
};
static_assert(sizeof(BitmapInfoHeader) == 40 && offsetof(BitmapInfoHeader, image_bytes) == 20);

// Guarded by the image lock.
struct OverlayState {
  device::OverlayCallback preview = nullptr;
  device::OverlayCallback saving = nullptr;
};

}  // namespace ormidex::files

#endif  // ORMIDEX_FILES_STATE_H_
