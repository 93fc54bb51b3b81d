// Stretching a bitmap into the pixels of an X11 visual.
#ifndef ORMIDEX_PLATFORM_LINUX_PIXELS_H_
#define ORMIDEX_PLATFORM_LINUX_PIXELS_H_

#include <cstddef>
#include <cstdint>

#include "platform/memory.h"
#include "platform/window.h"

namespace ormidex::platform {

// How a true-colour visual places the channels in a pixel.
struct PixelFormat {
  std::uint32_t bits_per_pixel = 32;  // 16 or 32
  std::uint32_t red_mask = 0xFF0000;
  std::uint32_t green_mask = 0x00FF00;
  std::uint32_t blue_mask = 0x0000FF;
  bool swap_bytes = false;  // the display's byte order is not this machine's
};

// Turns images into rows of one size; keeps its tables and its pixels from image to
// image, so that nothing is allocated while the size stays.
class PixelStretcher {
 public:
  explicit PixelStretcher(const PixelFormat& format);

  // Nearest source pixel for each destination pixel: column x shows source column
  // floor(x * image width / width), rows likewise. False without memory.
  bool Stretch(const WindowImage& image, std::int32_t width, std::int32_t height);

  const std::uint8_t* Row(std::int32_t row) const { return pixels_.Bytes() + RowOffset(row); }
  std::uint32_t Stride() const { return stride_; }

 private:
  std::size_t RowOffset(std::int32_t row) const {
    return std::size_t{stride_} * static_cast<std::size_t>(row);
  }
  bool Resize(const WindowImage& image, std::int32_t width, std::int32_t height);
  template <typename Pixel>
  void StretchRow(const WindowImage& image, const std::uint8_t* source, Pixel* out) const;
  std::uint32_t Place(std::uint8_t red, std::uint8_t green, std::uint8_t blue) const {
    return red_[red] | green_[green] | blue_[blue];
  }

  PixelFormat format_;
  std::uint32_t red_[256];
  std::uint32_t green_[256];
  std::uint32_t blue_[256];
  std::int32_t width_ = 0;
  std::int32_t height_ = 0;
  std::int32_t source_width_ = 0;
  std::uint32_t stride_ = 0;
  Buffer source_columns_;  // one std::int32_t for each destination column
  Buffer pixels_;
};

}  // namespace ormidex::platform

#endif  // ORMIDEX_PLATFORM_LINUX_PIXELS_H_
