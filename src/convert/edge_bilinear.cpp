// Codes 2 and 17: green by the direction in which it changes least.
#include "convert/bilinear_pixel.h"
#include "convert/green.h"
#include "convert/kernel_rows.h"
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

template <typename Form>
struct EdgeBilinearCode : CodeBase<Form> {
  using CodeBase<Form>::frame;

  RowKernel Kernel(const Kernels& kernels, std::size_t y) const {
    return this->OfForm(this->IsEdgeRow(y) ? kernels.edge_bilinear_edge : kernels.edge_bilinear);
  }
  TwoRowsKernel TwoRows(const Kernels& kernels) const {
    return this->OfForm(kernels.edge_bilinear_two);
  }

  void Pixels(std::size_t y, std::size_t begin, std::size_t end, std::uint8_t* out) const {
    const RowKind kind = this->Kind(y);
    for (std::size_t x = begin; x < end; ++x) {
      RolePixel pixel = PortablePixel(frame, kind, x, y);
      if (!kind.IsGreen(x)) {
        pixel.green = GreenAt(frame, x, y);
      }
      StorePixel<Form>(out, x - begin, ToRgb(kind, pixel));
    }
  }
};

template <typename Form>
struct GreyEdgeCode : CodeBase<Form> {
  using CodeBase<Form>::frame;

  RowKernel Kernel(const Kernels& kernels, std::size_t y) const {
    return this->OfForm(this->IsEdgeRow(y) ? kernels.grey_edge_edge : kernels.grey_edge);
  }
  TwoRowsKernel TwoRows(const Kernels& kernels) const {
    return this->OfForm(kernels.grey_edge_two);
  }

  void Pixels(std::size_t y, std::size_t begin, std::size_t end, std::uint8_t* out) const {
    const RowKind kind = this->Kind(y);
    for (std::size_t x = begin; x < end; ++x) {
      const Sample grey = kind.IsGreen(x) ? frame.At(x, y) : GreenAt(frame, x, y);
      StorePixel<Form>(out, x - begin, {grey, grey, grey});
    }
  }
};

}  // namespace

template <typename Form>
void EdgeBilinear(const Frame<Form>& frame) {
  Drive(EdgeBilinearCode<Form>{{frame}});
}

template <typename Form>
void GreyFromEdgeGreen(const Frame<Form>& frame) {
  Drive(GreyEdgeCode<Form>{{frame}});
}

ORMIDEX_INSTANTIATE_FORMS(EdgeBilinear)
ORMIDEX_INSTANTIATE_FORMS(GreyFromEdgeGreen)

}  // namespace ormidex::convert
