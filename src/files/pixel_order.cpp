#include "files/pixel_order.h"

#include <bit>
#include <cstring>

#include "platform/processor.h"

namespace ormidex::files {

// Four pixels fill three words, so they are exchanged by shifting whole words.
void SwapRow24Portable(const std::uint8_t* source, std::uint8_t* destination, std::size_t pixels) {
  static_assert(std::endian::native == std::endian::little);
  for (; pixels >= 4; pixels -= 4, source += 12, destination += 12) {
    std::uint32_t in[3];  // BGRB GRBG RBGR, the first byte lowest
    std::memcpy(in, source, sizeof(in));
    const std::uint32_t out[3] = {
        (in[0] >> 16 & 0xFFu) | (in[0] & 0xFF00u) | (in[0] << 16 & 0xFF0000u) |
            (in[1] << 16 & 0xFF000000u),
        (in[1] & 0xFF0000FFu) | (in[0] >> 16 & 0xFF00u) | (in[2] << 16 & 0xFF0000u),
        (in[1] >> 16 & 0xFFu) | (in[2] >> 16 & 0xFF00u) | (in[2] & 0xFF0000u) |
            (in[2] << 16 & 0xFF000000u)};
    std::memcpy(destination, out, sizeof(out));
  }
  for (; pixels != 0; --pixels, source += 3, destination += 3) {
    destination[0] = source[2];
    destination[1] = source[1];
    destination[2] = source[0];
  }
}

void SwapRow48Portable(const std::uint8_t* source, std::uint8_t* destination, std::size_t pixels) {
  for (; pixels != 0; --pixels, source += 6, destination += 6) {
    std::uint16_t in[3];
    std::memcpy(in, source, sizeof(in));
    const std::uint16_t out[3] = {in[2], in[1], in[0]};
    std::memcpy(destination, out, sizeof(out));
  }
}

SwapRow FindSwapRow24() {
  static const bool has_ssse3 = platform::DetectVectorFeatures().ssse3;
  return has_ssse3 ? SwapRow24Ssse3 : SwapRow24Portable;
}

SwapRow FindSwapRow48() {
  static const bool has_ssse3 = platform::DetectVectorFeatures().ssse3;
  return has_ssse3 ? SwapRow48Ssse3 : SwapRow48Portable;
}

void MakeTopDownRgb(const std::uint8_t* source, std::uint32_t width, std::uint32_t height,
                    bool wide, std::uint8_t* destination) {
  const std::size_t row_bytes = std::size_t{width} * (wide ? 6 : 3);
  const SwapRow swap = wide ? FindSwapRow48() : FindSwapRow24();
  for (std::uint32_t row = 0; row < height; ++row) {
    swap(source + (height - 1 - row) * row_bytes, destination + row * row_bytes, width);
  }
}

}  // namespace ormidex::files
