// Small frames and images for tests worked out by hand.
#ifndef ORMIDEX_TESTS_CONVERT_PICTURES_H_
#define ORMIDEX_TESTS_CONVERT_PICTURES_H_

#include <gtest/gtest.h>

#include <cstdint>
#include <ostream>
#include <vector>

#include "convert/convert.h"
#include "convert/guarded_buffer.h"
#include "platform/processor.h"

namespace ormidex::convert {

struct Colour {
  unsigned red;
  unsigned green;
  unsigned blue;
  bool operator==(const Colour&) const = default;
  friend std::ostream& operator<<(std::ostream& out, const Colour& colour) {
    return out << "(" << colour.red << ", " << colour.green << ", " << colour.blue << ")";
  }
};

inline Colour Grey(unsigned value) { return {value, value, value}; }

// A frame of up to 16-bit samples, rows top-down.
struct RawPicture {
  std::uint32_t width;
  std::uint32_t height;
  std::vector<unsigned> samples;

  unsigned At(std::size_t x, std::size_t y) const { return samples[y * width + x]; }

  std::vector<std::uint8_t> Bytes8() const {
    std::vector<std::uint8_t> bytes;
    for (unsigned sample : samples) {
      bytes.push_back(static_cast<std::uint8_t>(sample));
    }
    return bytes;
  }
  std::vector<std::uint8_t> Bytes16() const {
    std::vector<std::uint8_t> bytes;
    for (unsigned sample : samples) {
      bytes.push_back(static_cast<std::uint8_t>(sample & 0xFF));
      bytes.push_back(static_cast<std::uint8_t>(sample >> 8));
    }
    return bytes;
  }
};

// An image in the library's layout, read by source coordinates (row 0 on top).
struct Image {
  std::uint32_t width;
  std::uint32_t height;
  unsigned channel_bytes;
  std::vector<std::uint8_t> bytes;
  Status status;

  Colour At(std::size_t x, std::size_t y) const {
    const std::size_t pixel = (height - 1 - y) * width + x;
    return {Channel(3 * pixel + 2), Channel(3 * pixel + 1), Channel(3 * pixel)};
  }
  std::vector<Colour> Row(std::size_t y) const {
    std::vector<Colour> row;
    for (std::size_t x = 0; x < width; ++x) {
      row.push_back(At(x, y));
    }
    return row;
  }

 private:
  unsigned Channel(std::size_t index) const {
    if (channel_bytes == 1) {
      return bytes[index];
    }
    return bytes[2 * index] + 256u * bytes[2 * index + 1];
  }
};

inline Image To24From8(const RawPicture& raw, std::uint32_t algorithm, std::uint32_t phase = 0) {
  GuardedBuffer image(std::size_t{3} * raw.width * raw.height);
  const Status status =
      DemosaicTo24From8(raw.Bytes8().data(), raw.width, raw.height, image.Data(), algorithm, phase);
  image.ExpectGuardsIntact();
  return {raw.width, raw.height, 1, image.Contents(), status};
}

inline Image To24From16(const RawPicture& raw, std::uint32_t algorithm, std::uint32_t phase = 0) {
  GuardedBuffer image(std::size_t{3} * raw.width * raw.height);
  const Status status = DemosaicTo24From16(raw.Bytes16().data(), raw.width, raw.height,
                                           image.Data(), algorithm, phase);
  image.ExpectGuardsIntact();
  return {raw.width, raw.height, 1, image.Contents(), status};
}

inline Image To48From16(const RawPicture& raw, std::uint32_t algorithm, std::uint32_t phase = 0) {
  GuardedBuffer image(std::size_t{6} * raw.width * raw.height);
  const Status status = DemosaicTo48From16(raw.Bytes16().data(), raw.width, raw.height,
                                           image.Data(), algorithm, phase);
  image.ExpectGuardsIntact();
  return {raw.width, raw.height, 2, image.Contents(), status};
}

// Pretends a processor for the length of a test.
class ProcessorPretended {
 public:
  explicit ProcessorPretended(platform::ProcessorPretence pretence) {
    platform::PretendProcessorForTesting(pretence);
  }
  ProcessorPretended(const ProcessorPretended&) = delete;
  ProcessorPretended& operator=(const ProcessorPretended&) = delete;
  ~ProcessorPretended() {
    platform::PretendProcessorForTesting(platform::ProcessorPretence::kNone);
  }
};

}  // namespace ormidex::convert

#endif  // ORMIDEX_TESTS_CONVERT_PICTURES_H_
