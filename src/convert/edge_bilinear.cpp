// Codes 2 and 17: green by the direction in which it changes least.
#include "convert/bilinear_pixel.h"
#include "convert/green.h"
#include "convert/routines.h"

namespace ormidex::convert {
namespace {

// Greens of a red or blue site at the frame's border: their mean over the two or
// three that exist; a frame of a single pixel has none and keeps its sample.
template <typename Form>
Sample BorderGreen(const Frame<Form>& frame, std::size_t x, std::size_t y) {
  Sample sum = 0;
  Sample count = 0;
  const auto add = [&](std::size_t column, std::size_t row) {
    sum += frame.At(column, row);
    ++count;
  };
  if (x > 0) add(x - 1, y);
  if (x + 1 < frame.width) add(x + 1, y);
  if (y > 0) add(x, y - 1);
  if (y + 1 < frame.height) add(x, y + 1);
  return count > 0 ? sum / count : frame.At(x, y);
}

template <typename Form>
Sample GreenAt(const Frame<Form>& frame, std::size_t x, std::size_t y) {
  const bool interior = x > 0 && x + 1 < frame.width && y > 0 && y + 1 < frame.height;
  if (!interior) {
    return BorderGreen(frame, x, y);
  }
  return EdgeDirectedGreen({.left = frame.At(x - 1, y),
                            .right = frame.At(x + 1, y),
                            .up = frame.At(x, y - 1),
                            .down = frame.At(x, y + 1)});
}

}  // namespace

template <typename Form>
void EdgeBilinear(const Frame<Form>& frame) {
  for (std::size_t y = 0; y < frame.height; ++y) {
    const RowKind kind = KindOfRow(kFixedPhase, y);
    for (std::size_t x = 0; x < frame.width; ++x) {
      RolePixel pixel = PortablePixel(frame, kind, x, y);
      if (!kind.IsGreen(x)) {
        pixel.green = GreenAt(frame, x, y);
      }
      StorePixel<Form>(frame.ImageRow(y), x, ToRgb(kind, pixel));
    }
  }
}

template <typename Form>
void GreyFromEdgeGreen(const Frame<Form>& frame) {
  for (std::size_t y = 0; y < frame.height; ++y) {
    const RowKind kind = KindOfRow(kFixedPhase, y);
    for (std::size_t x = 0; x < frame.width; ++x) {
      const Sample grey = kind.IsGreen(x) ? frame.At(x, y) : GreenAt(frame, x, y);
      StorePixel<Form>(frame.ImageRow(y), x, {grey, grey, grey});
    }
  }
}

ORMIDEX_INSTANTIATE_FORMS(EdgeBilinear)
ORMIDEX_INSTANTIATE_FORMS(GreyFromEdgeGreen)

}  // namespace ormidex::convert
