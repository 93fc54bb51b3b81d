// Which colour the filter mosaic places where.
#ifndef ORMIDEX_CONVERT_MOSAIC_H_
#define ORMIDEX_CONVERT_MOSAIC_H_

#include <cstddef>
#include <cstdint>

#include "convert/samples.h"

namespace ormidex::convert {

// A row alternates green with one other colour, its row colour: red or blue. The
// remaining colour is found only in the rows above and below.
struct RowKind {
  bool has_red;       // the row colour is red, otherwise blue
  bool starts_green;  // the first sample is green

  bool IsGreen(std::size_t x) const { return (x % 2 == 0) == starts_green; }
};

// Phase 0 has red at the top left, phase 1 green before red, any other blue.
constexpr RowKind KindOfRow(std::uint32_t bayer_phase, std::size_t y) {
  const bool even = y % 2 == 0;
  switch (bayer_phase) {
    case 0:
      return even ? RowKind{true, false} : RowKind{false, true};
    case 1:
      return even ? RowKind{true, true} : RowKind{false, false};
    default:
      return even ? RowKind{false, false} : RowKind{true, true};
  }
}

// A pixel by the roles that the colours play in its row.
struct RolePixel {
  Sample row_colour;
  Sample green;
  Sample other_colour;
};

constexpr Rgb ToRgb(RowKind kind, const RolePixel& pixel) {
  return kind.has_red ? Rgb{pixel.row_colour, pixel.green, pixel.other_colour}
                      : Rgb{pixel.other_colour, pixel.green, pixel.row_colour};
}

}  // namespace ormidex::convert

#endif  // ORMIDEX_CONVERT_MOSAIC_H_
