// How samples are read and pixels written in the three forms of a conversion.
//
// Every scalar routine is a template over one of the three forms below, so that a
// formula is written once. Samples and channels are reached bytewise: neither
// buffer needs an alignment.
#ifndef ORMIDEX_CONVERT_SAMPLES_H_
#define ORMIDEX_CONVERT_SAMPLES_H_

#include <cstddef>
#include <cstdint>

namespace ormidex::convert {

using Sample = std::uint32_t;

// 8-bit samples into 24-bit pixels.
struct Form8To24 {
  static constexpr std::size_t kSampleBytes = 1;
  static constexpr std::size_t kChannelBytes = 1;
  static constexpr Sample kMax = 255;
  static Sample Load(const std::uint8_t* row, std::size_t x) { return row[x]; }
  static void Store(std::uint8_t* row, std::size_t channel, Sample value) {
    row[channel] = static_cast<std::uint8_t>(value);
  }
};

// The high bytes of 16-bit samples into 24-bit pixels.
struct Form16To24 : Form8To24 {
  static constexpr std::size_t kSampleBytes = 2;
  static Sample Load(const std::uint8_t* row, std::size_t x) { return row[2 * x + 1]; }
};

// Whole 16-bit samples into 48-bit pixels.
struct Form16To48 {
  static constexpr std::size_t kSampleBytes = 2;
  static constexpr std::size_t kChannelBytes = 2;
  static constexpr Sample kMax = 65535;
  static Sample Load(const std::uint8_t* row, std::size_t x) {
    return static_cast<Sample>(row[2 * x]) | (static_cast<Sample>(row[2 * x + 1]) << 8);
  }
  static void Store(std::uint8_t* row, std::size_t channel, Sample value) {
    row[2 * channel] = static_cast<std::uint8_t>(value);
    row[2 * channel + 1] = static_cast<std::uint8_t>(value >> 8);
  }
};

// The buffers of one conversion. Rows are named by source row: 0 is the top one.
template <typename Form>
struct Frame {
  const std::uint8_t* source;
  std::uint8_t* destination;
  std::size_t width;
  std::size_t height;

  bool IsEmpty() const { return width == 0 || height == 0; }
  const std::uint8_t* SourceRow(std::size_t y) const {
    return source + y * width * Form::kSampleBytes;
  }
  // Images are stored bottom-up.
  std::uint8_t* ImageRow(std::size_t y) const {
    return destination + (height - 1 - y) * width * 3 * Form::kChannelBytes;
  }
  Sample At(std::size_t x, std::size_t y) const { return Form::Load(SourceRow(y), x); }
};

struct Rgb {
  Sample red;
  Sample green;
  Sample blue;
};

template <typename Form>
void StorePixel(std::uint8_t* image_row, std::size_t x, const Rgb& pixel) {
  Form::Store(image_row, 3 * x, pixel.blue);
  Form::Store(image_row, 3 * x + 1, pixel.green);
  Form::Store(image_row, 3 * x + 2, pixel.red);
}

// The sum of two samples halved and rounded down.
constexpr Sample Mean(Sample a, Sample b) { return (a + b) / 2; }

}  // namespace ormidex::convert

#endif  // ORMIDEX_CONVERT_SAMPLES_H_
