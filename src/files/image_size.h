// Sizes of images, checked.
#ifndef ORMIDEX_FILES_IMAGE_SIZE_H_
#define ORMIDEX_FILES_IMAGE_SIZE_H_

#include <cstdint>

namespace ormidex::files {

// The file formats count in 32 bits, and so do the session's sizes.
inline constexpr std::uint64_t kLargestImageBytes = 0xFFFF0000u;

// Whether an image of so many bytes a pixel can be counted, with room for the headers
// of a file. For one that cannot, the session's own 32-bit sizes have wrapped.
constexpr bool FitsInMemory(std::uint32_t width, std::uint32_t height,
                            std::uint32_t bytes_per_pixel) {
  const std::uint64_t pixels = std::uint64_t{width} * height;
  return pixels <= kLargestImageBytes / bytes_per_pixel;
}

}  // namespace ormidex::files

#endif  // ORMIDEX_FILES_IMAGE_SIZE_H_
