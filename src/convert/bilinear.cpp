#include "convert/bilinear.h"

#include "convert/bilinear_pixel.h"
#include "convert/kernel_rows.h"
#include "convert/mosaic.h"
#include "convert/tiers.h"
#include "platform/processor.h"

namespace ormidex::convert {
namespace {

// One interior pixel by an accelerated kernel's formulas: at the first and last
// column the missing neighbour is replaced by the one present.
template <typename Form, typename Means>
RolePixel KernelPixel(const Frame<Form>& frame, RowKind kind, std::size_t x, std::size_t y) {
  const std::size_t last = frame.width - 1;
  const std::size_t left = x > 0 ? x - 1 : 1;
  const std::size_t right = x < last ? x + 1 : last - 1;
  return InteriorPixel<Form, Means>(RowsAround(frame, y), kind.IsGreen(x), x, left, right);
}

template <typename Form>
RolePixel PixelOf(const Frame<Form>& frame, RowKind kind, Rounding rounding, std::size_t x,
                  std::size_t y) {
  const bool edge_row = y == 0 || y + 1 == frame.height;
  if (edge_row || rounding == Rounding::kPortable) {
    return PortablePixel(frame, kind, x, y);
  }
  return rounding == Rounding::kMmx ? KernelPixel<Form, MmxMeans>(frame, kind, x, y)
                                    : KernelPixel<Form, ExtendedMeans>(frame, kind, x, y);
}

template <typename Form>
struct BilinearCode : CodeBase<Form> {
  using CodeBase<Form>::frame;

  RowKind Kind(std::size_t y) const { return KindOfRow(bayer_phase, y); }

  RowKernel Kernel(const Kernels& kernels, std::size_t y) const {
    if (this->IsEdgeRow(y)) {
      return this->OfForm(kernels.bilinear_edge);
    }
    switch (rounding) {
      case Rounding::kMmx:
        return kernels.bilinear_mmx;
      case Rounding::kExtended:
        return kernels.bilinear_extended;
      default:
        return this->OfForm(kernels.bilinear_portable);
    }
  }

  TwoRowsKernel TwoRows(const Kernels& kernels) const {
    switch (rounding) {
      case Rounding::kMmx:
        return kernels.bilinear_two_mmx;
      case Rounding::kExtended:
        return kernels.bilinear_two_extended;
      default:
        return this->OfForm(kernels.bilinear_two_portable);
    }
  }
  // The portable routine forms the first and last pixel within pairs of rows instead.
  bool TwoRowsEnds() const { return rounding != Rounding::kPortable; }
  void Ends(std::size_t y, std::uint8_t* out) const {
    const RowKind kind = Kind(y);
    const std::uint8_t* row = frame.SourceRow(y);
    const std::uint8_t* partner = PartnerRow(frame, y);
    const std::size_t last = frame.width - 1;
    const auto pixel = [&](std::size_t x, std::size_t neighbour) {
      return ToRgb(kind, InnerEdgeColumnPixel<Form>(row, partner, kind.IsGreen(x), x, neighbour));
    };
    StorePixel<Form>(out, 0, pixel(0, 1));
    StorePixel<Form>(out, last, pixel(last, last - 1));
  }

  void Pixels(std::size_t y, std::size_t begin, std::size_t end, std::uint8_t* out) const {
    const RowKind kind = Kind(y);
    for (std::size_t x = begin; x < end; ++x) {
      const RolePixel pixel = PixelOf(frame, kind, rounding, x, y);
      StorePixel<Form>(out, x - begin, ToRgb(kind, pixel));
    }
  }

  std::uint32_t bayer_phase;
  Rounding rounding;
};

constexpr std::size_t kKernelWidthMultiple = 4;

}  // namespace

Rounding RoundingFor8Bit(std::size_t width) {
  const bool kernel_width = width % kKernelWidthMultiple == 0;
  if (platform::HasExtendedMmx() && kernel_width) {
    return Rounding::kExtended;
  }
  return platform::HasMmx() && kernel_width ? Rounding::kMmx : Rounding::kPortable;
}

Rounding RoundingFor16Bit(std::size_t width) {
  const bool kernel_width = width % kKernelWidthMultiple == 0;
  return platform::HasMmx() && kernel_width ? Rounding::kMmx : Rounding::kPortable;
}

template <typename Form>
void Bilinear(const Frame<Form>& frame, std::uint32_t bayer_phase, Rounding rounding) {
  Drive(BilinearCode<Form>{{frame}, bayer_phase, rounding});
}

template void Bilinear(const Frame<Form8To24>&, std::uint32_t, Rounding);
template void Bilinear(const Frame<Form16To24>&, std::uint32_t, Rounding);
template void Bilinear(const Frame<Form16To48>&, std::uint32_t, Rounding);

}  // namespace ormidex::convert
