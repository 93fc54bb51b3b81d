// Mean levels of the four sites of the 2 x 2 mosaic cell over a rectangle of a raw
// frame: what exposure and white balance are judged by.
#ifndef ORMIDEX_AUTOMATION_SITE_MEANS_H_
#define ORMIDEX_AUTOMATION_SITE_MEANS_H_

#include <cstdint>

namespace ormidex::automation {

// Pixel columns and rows of a frame; right and bottom are exclusive.
struct SiteRectangle {
  std::uint32_t left = 0;
  std::uint32_t top = 0;
  std::uint32_t right = 0;
  std::uint32_t bottom = 0;
};

// Four 8-bit means, whatever the width of the samples.
struct BayerSiteMeans {
  std::uint8_t red = 0;
  std::uint8_t green1 = 0;  // of the rows that hold red in phase 0, blue in phases 1 and 2
  std::uint8_t green2 = 0;  // of the other rows
  std::uint8_t blue = 0;

  // One word: green 1, red, green 2, blue from the most significant byte down.
  static constexpr BayerSiteMeans FromPacked(std::uint32_t word) {
    return {static_cast<std::uint8_t>(word >> 16), static_cast<std::uint8_t>(word >> 24),
            static_cast<std::uint8_t>(word >> 8), static_cast<std::uint8_t>(word)};
  }
  constexpr std::uint32_t Packed() const {
    return std::uint32_t{green1} << 24 | std::uint32_t{red} << 16 | std::uint32_t{green2} << 8 |
           blue;
  }
};

// The packed means of `rectangle` in a frame whose rows are `stride` samples long.
// Row and column parities are those of the frame, so a rectangle may start
// anywhere. An odd last column is not summed, but counts in the divisor
// (width x height) / 4.
//
// Sums are 32 bits wide and wrap around: a bright 16-bit frame of more than 65,793
// sites of one kind gives means that are too low. Deliberate, applications have
// tuned their targets to it. A mean above 255, which an odd height can give (its
// sites of one kind are more than a quarter), keeps its low eight bits. Fewer than
// four pixels are divided by 1 instead of 0.
//
// `threshold` is accepted and not used; both counters, where given, become 0:
// clipped pixels have never been counted, and callers must not rely on it.
void ComputeSiteMeans8(std::uint32_t bayer_phase, const std::uint8_t* frame, std::uint32_t stride,
                       const SiteRectangle& rectangle, std::uint32_t* packed,
                       std::uint32_t threshold, std::uint32_t* dark_count = nullptr,
                       std::uint32_t* clipped_count = nullptr);
// The same for little-endian 16-bit samples, of which the upper byte counts.
void ComputeSiteMeans16(std::uint32_t bayer_phase, const std::uint8_t* frame, std::uint32_t stride,
                        const SiteRectangle& rectangle, std::uint32_t* packed,
                        std::uint32_t threshold, std::uint32_t* dark_count = nullptr,
                        std::uint32_t* clipped_count = nullptr);

}  // namespace ormidex::automation

#endif  // ORMIDEX_AUTOMATION_SITE_MEANS_H_
