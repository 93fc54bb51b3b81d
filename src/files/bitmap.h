// Bytes of a device-independent bitmap file.
#ifndef ORMIDEX_FILES_BITMAP_H_
#define ORMIDEX_FILES_BITMAP_H_

#include <cstddef>
#include <cstdint>

#include "files/state.h"

namespace ormidex::files {

// The first 14 bytes of the file; not a multiple of four, hence bytes.
struct BitmapFileHeader {
  std::uint8_t bytes[14];
};

// pixel_offset: where the pixels begin; pixel_bytes: how many follow.
BitmapFileHeader MakeBitmapFileHeader(std::uint32_t pixel_offset, std::uint32_t pixel_bytes);

inline constexpr std::uint32_t kRgbPixelOffset =
    sizeof(BitmapFileHeader) + sizeof(BitmapInfoHeader);
static_assert(kRgbPixelOffset == 54);

}  // namespace ormidex::files

#endif  // ORMIDEX_FILES_BITMAP_H_
