// The 5 x 5 samples around a pixel, reflected at the frame's border.
#ifndef ORMIDEX_CONVERT_NEIGHBOURHOOD_H_
#define ORMIDEX_CONVERT_NEIGHBOURHOOD_H_

#include <array>
#include <cstddef>
#include <cstdint>

#include "convert/green.h"
#include "convert/samples.h"

namespace ormidex::convert {

// Reflects about the edge sample, which keeps the mosaic's parity: -k reads k,
// size - 1 + k reads size - 1 - k. In a frame of fewer than 3 it repeats until
// inside; a single row or column stands for all.
constexpr std::size_t Reflect(std::ptrdiff_t index, std::size_t size) {
  if (size == 1) {
    return 0;
  }
  const auto last = static_cast<std::ptrdiff_t>(size) - 1;
  while (index < 0 || index > last) {
    index = index < 0 ? -index : 2 * last - index;
  }
  return static_cast<std::size_t>(index);
}

struct Neighbourhood {
  std::array<std::uint16_t, 25> samples;  // row by row, the pixel itself at 12

  Sample At(int dx, int dy) const { return samples[static_cast<std::size_t>(12 + 5 * dy + dx)]; }
  FourGreens Greens() const { return {At(-1, 0), At(1, 0), At(0, -1), At(0, 1)}; }
  FiveOwn Own() const { return {At(0, 0), At(-2, 0), At(2, 0), At(0, -2), At(0, 2)}; }
};

inline constexpr int kReadFailed = -1;

// `at(x, y)` reads one sample of a width x height plane. Fails, and writes nothing,
// when the pixel is outside of it.
template <typename ReadSample>
int ReadNeighbourhood(std::size_t width, std::size_t height, std::size_t x, std::size_t y,
                      const ReadSample& at, Neighbourhood& out) {
  if (x >= width || y >= height) {
    return kReadFailed;
  }
  std::size_t i = 0;
  for (std::ptrdiff_t dy = -2; dy <= 2; ++dy) {
    const std::size_t row = Reflect(static_cast<std::ptrdiff_t>(y) + dy, height);
    for (std::ptrdiff_t dx = -2; dx <= 2; ++dx) {
      const std::size_t column = Reflect(static_cast<std::ptrdiff_t>(x) + dx, width);
      out.samples[i++] = static_cast<std::uint16_t>(at(column, row));
    }
  }
  return 0;
}

// The neighbourhood of a pixel known to be inside the frame.
template <typename Form>
Neighbourhood NeighbourhoodAt(const Frame<Form>& frame, std::size_t x, std::size_t y) {
  Neighbourhood around;
  const auto at = [&frame](std::size_t column, std::size_t row) { return frame.At(column, row); };
  static_cast<void>(ReadNeighbourhood(frame.width, frame.height, x, y, at, around));
  return around;
}

}  // namespace ormidex::convert

#endif  // ORMIDEX_CONVERT_NEIGHBOURHOOD_H_
