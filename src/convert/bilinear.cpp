#include "convert/bilinear.h"

#include "convert/bilinear_pixel.h"
#include "convert/mosaic.h"
#include "platform/processor.h"

namespace ormidex::convert {
namespace {

template <typename Form>
class BilinearDriver {
 public:
  BilinearDriver(const Frame<Form>& frame, std::uint32_t bayer_phase)
      : frame_(frame), bayer_phase_(bayer_phase) {}

  void PortableRow(std::size_t y) const {
    const RowKind kind = KindOfRow(bayer_phase_, y);
    for (std::size_t x = 0; x < frame_.width; ++x) {
      Store(y, x, PortablePixel(frame_, kind, x, y));
    }
  }

  // The interior row of an accelerated kernel: it forms its first and last pixel by
  // its own formulas, the missing column replaced by the one present.
  template <typename Means>
  void KernelRow(std::size_t y) const {
    const RowKind kind = KindOfRow(bayer_phase_, y);
    const ThreeRows rows = RowsAround(frame_, y);
    const std::size_t last = frame_.width - 1;
    for (std::size_t x = 0; x <= last; ++x) {
      const std::size_t left = x > 0 ? x - 1 : 1;
      const std::size_t right = x < last ? x + 1 : last - 1;
      Store(y, x, InteriorPixel<Form, Means>(rows, kind.IsGreen(x), x, left, right));
    }
  }

 private:
  void Store(std::size_t y, std::size_t x, const RolePixel& pixel) const {
    StorePixel<Form>(frame_.ImageRow(y), x, ToRgb(KindOfRow(bayer_phase_, y), pixel));
  }

  Frame<Form> frame_;
  std::uint32_t bayer_phase_;
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
  if (frame.IsEmpty()) {
    return;
  }
  const BilinearDriver<Form> driver(frame, bayer_phase);
  driver.PortableRow(0);
  for (std::size_t y = 1; y + 1 < frame.height; ++y) {
    switch (rounding) {
      case Rounding::kPortable:
        driver.PortableRow(y);
        break;
      case Rounding::kMmx:
        driver.template KernelRow<MmxMeans>(y);
        break;
      case Rounding::kExtended:
        driver.template KernelRow<ExtendedMeans>(y);
        break;
    }
  }
  driver.PortableRow(frame.height - 1);
}

template void Bilinear(const Frame<Form8To24>&, std::uint32_t, Rounding);
template void Bilinear(const Frame<Form16To24>&, std::uint32_t, Rounding);
template void Bilinear(const Frame<Form16To48>&, std::uint32_t, Rounding);

}  // namespace ormidex::convert
