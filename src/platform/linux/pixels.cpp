#include "platform/linux/pixels.h"

#include <bit>
#include <cstring>
#include <initializer_list>

namespace ormidex::platform {

namespace {

// The channel's value scaled to the mask's width and moved under it.
void FillChannel(std::uint32_t mask, std::uint32_t (&table)[256]) {
  const int shift = mask != 0 ? std::countr_zero(mask) : 0;
  const std::uint32_t full = mask >> shift;
  for (std::uint32_t value = 0; value < 256; ++value) {
    table[value] = ((value * full + 127) / 255) << shift;
  }
}

std::uint32_t SwapPixel(std::uint32_t pixel, std::uint32_t bits) {
  const std::uint32_t swapped =
      ((pixel & 0xFFu) << 24) | ((pixel & 0xFF00u) << 8) | ((pixel >> 8) & 0xFF00u) | (pixel >> 24);
  return bits == 16 ? swapped >> 16 : swapped;
}

constexpr std::size_t kInfoHeaderBytes = 40;

}  // namespace

PixelStretcher::PixelStretcher(const PixelFormat& format) : format_(format) {
  FillChannel(format.red_mask, red_);
  FillChannel(format.green_mask, green_);
  FillChannel(format.blue_mask, blue_);
  if (!format.swap_bytes) return;
  for (auto* table : {red_, green_, blue_}) {
    for (int i = 0; i < 256; ++i) table[i] = SwapPixel(table[i], format.bits_per_pixel);
  }
}

bool PixelStretcher::Resize(const WindowImage& image, std::int32_t width, std::int32_t height) {
  if (width == width_ && height == height_ && image.width == source_width_) return true;
  width_ = 0;  // until everything fits again
  // X11 rows are padded to 32 bits.
  stride_ = (static_cast<std::uint32_t>(width) * (format_.bits_per_pixel / 8) + 3) & ~3u;
  pixels_ = {};
  pixels_ = Buffer(std::size_t{stride_} * static_cast<std::size_t>(height));
  source_columns_ = Buffer(sizeof(std::int32_t) * static_cast<std::size_t>(width));
  if (!pixels_ || !source_columns_) return false;
  auto* columns = reinterpret_cast<std::int32_t*>(source_columns_.Bytes());
  for (std::int32_t x = 0; x < width; ++x) {
    columns[x] = static_cast<std::int32_t>(std::int64_t{x} * image.width / width);
  }
  width_ = width;
  height_ = height;
  source_width_ = image.width;
  return true;
}

template <typename Pixel>
void PixelStretcher::StretchRow(const WindowImage& image, const std::uint8_t* source,
                                Pixel* out) const {
  const auto* columns = reinterpret_cast<const std::int32_t*>(source_columns_.Bytes());
  if (image.bits_per_pixel == 24) {
    for (std::int32_t x = 0; x < width_; ++x) {
      const std::uint8_t* bgr = source + 3 * columns[x];
      out[x] = static_cast<Pixel>(Place(bgr[2], bgr[1], bgr[0]));
    }
    return;
  }
  const std::uint8_t* table = static_cast<const std::uint8_t*>(image.header) + kInfoHeaderBytes;
  for (std::int32_t x = 0; x < width_; ++x) {
    const std::uint8_t* entry = table + 4 * source[columns[x]];
    out[x] = static_cast<Pixel>(Place(entry[2], entry[1], entry[0]));
  }
}

bool PixelStretcher::Stretch(const WindowImage& image, std::int32_t width, std::int32_t height) {
  if (!Resize(image, width, height)) return false;
  const std::size_t source_stride =
      static_cast<std::size_t>(image.width) * (image.bits_per_pixel / 8);
  std::int32_t previous = -1;
  for (std::int32_t y = 0; y < height; ++y) {
    std::uint8_t* row = pixels_.Bytes() + RowOffset(y);
    const auto source_y = static_cast<std::int32_t>(std::int64_t{y} * image.height / height);
    if (source_y == previous) {
      std::memcpy(row, row - stride_, stride_);
      continue;
    }
    previous = source_y;
    const auto* source = static_cast<const std::uint8_t*>(image.pixels) +
                         source_stride * static_cast<std::size_t>(image.height - 1 - source_y);
    if (format_.bits_per_pixel == 16) {
      StretchRow(image, source, reinterpret_cast<std::uint16_t*>(row));
    } else {
      StretchRow(image, source, reinterpret_cast<std::uint32_t*>(row));
    }
  }
  return true;
}

}  // namespace ormidex::platform
