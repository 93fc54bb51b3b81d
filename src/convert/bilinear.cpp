#include "convert/bilinear.h"

#include "convert/mosaic.h"
#include "platform/processor.h"

namespace ormidex::convert {
namespace {

struct PortableMeans {
  static Sample Pair(Sample a, Sample b) { return Mean(a, b); }
  static Sample Four(Sample a, Sample b, Sample c, Sample d) { return (a + b + c + d) / 4; }
};

struct MmxMeans {
  static Sample Pair(Sample a, Sample b) { return Mean(a, b); }
  static Sample Four(Sample a, Sample b, Sample c, Sample d) {
    return Mean(Mean(a, b), Mean(c, d));
  }
};

struct ExtendedMeans {
  static Sample Pair(Sample a, Sample b) { return (a + b + 1) / 2; }
  static Sample Four(Sample a, Sample b, Sample c, Sample d) {
    return Mean(Pair(a, b), Pair(c, d));
  }
};

struct ThreeRows {
  const std::uint8_t* above;
  const std::uint8_t* row;
  const std::uint8_t* below;
};

// A pixel with neighbours above and below; `left` and `right` are the columns of
// its horizontal neighbours.
template <typename Form, typename Means>
RolePixel InteriorPixel(const ThreeRows& rows, bool is_green, std::size_t x, std::size_t left,
                        std::size_t right) {
  const Sample own = Form::Load(rows.row, x);
  const Sample row_left = Form::Load(rows.row, left);
  const Sample row_right = Form::Load(rows.row, right);
  const Sample up = Form::Load(rows.above, x);
  const Sample down = Form::Load(rows.below, x);
  if (is_green) {
    return {Means::Pair(row_left, row_right), own, Means::Pair(up, down)};
  }
  const Sample up_left = Form::Load(rows.above, left);
  const Sample down_left = Form::Load(rows.below, left);
  const Sample up_right = Form::Load(rows.above, right);
  const Sample down_right = Form::Load(rows.below, right);
  return {own, Means::Four(row_left, row_right, up, down),
          Means::Four(up_left, down_left, up_right, down_right)};
}

// A pixel of the first or last row, which has one neighbouring row, `partner`.
// Green at a red or blue site is there the mean of left and right alone.
template <typename Form>
RolePixel EdgeRowPixel(const std::uint8_t* row, const std::uint8_t* partner, bool is_green,
                       std::size_t x) {
  const Sample own = Form::Load(row, x);
  const Sample row_mean = Mean(Form::Load(row, x - 1), Form::Load(row, x + 1));
  if (is_green) {
    return {row_mean, own, Form::Load(partner, x)};
  }
  return {own, row_mean, Mean(Form::Load(partner, x - 1), Form::Load(partner, x + 1))};
}

// A pixel of the first or last column: one neighbouring row, one neighbouring column.
// In a frame of one row or column the missing neighbour is the row or column itself,
// which has no green to give at this site.
template <typename Form>
RolePixel EdgeColumnPixel(const std::uint8_t* row, const std::uint8_t* partner, bool is_green,
                          std::size_t x, std::size_t neighbour) {
  const Sample own = Form::Load(row, x);
  const Sample beside = Form::Load(row, neighbour);
  const Sample across = Form::Load(partner, x);
  if (is_green) {
    return {beside, own, across};
  }
  Sample green = Mean(beside, across);
  if (partner == row) {
    green = beside;
  } else if (neighbour == x) {
    green = across;
  }
  return {own, green, Form::Load(partner, neighbour)};
}

// Rows are taken in pairs, and the first and last pixel of a row is formed within
// its pair: an even row looks down, an odd row up. Where the pair is incomplete
// (the last row of an odd height) the row above serves; a frame of a single row
// serves as its own partner.
template <typename Form>
const std::uint8_t* PartnerRow(const Frame<Form>& frame, std::size_t y) {
  if (frame.height == 1) {
    return frame.SourceRow(0);
  }
  const bool looks_down = y % 2 == 0 && y + 1 < frame.height;
  return frame.SourceRow(looks_down ? y + 1 : y - 1);
}

template <typename Form>
class BilinearDriver {
 public:
  BilinearDriver(const Frame<Form>& frame, std::uint32_t bayer_phase)
      : frame_(frame), bayer_phase_(bayer_phase) {}

  void EdgeRow(std::size_t y) const {
    const RowKind kind = KindOfRow(bayer_phase_, y);
    const std::uint8_t* partner = PartnerRow(frame_, y);
    for (std::size_t x = 1; x + 1 < frame_.width; ++x) {
      Store(y, x, EdgeRowPixel<Form>(frame_.SourceRow(y), partner, kind.IsGreen(x), x));
    }
    EdgeColumns(y);
  }

  // The portable routine's interior row.
  void PortableRow(std::size_t y) const {
    InteriorPixels<PortableMeans>(y, 1, frame_.width - 1);
    EdgeColumns(y);
  }

  // The row of an accelerated kernel: it forms its first and last pixel by its own
  // formulas, the missing column replaced by the one present.
  template <typename Means>
  void KernelRow(std::size_t y) const {
    const std::size_t last = frame_.width - 1;
    InteriorPixels<Means>(y, 1, last);
    const RowKind kind = KindOfRow(bayer_phase_, y);
    const ThreeRows rows = RowsAround(y);
    Store(y, 0, InteriorPixel<Form, Means>(rows, kind.IsGreen(0), 0, 1, 1));
    Store(y, last, InteriorPixel<Form, Means>(rows, kind.IsGreen(last), last, last - 1, last - 1));
  }

 private:
  ThreeRows RowsAround(std::size_t y) const {
    return {frame_.SourceRow(y - 1), frame_.SourceRow(y), frame_.SourceRow(y + 1)};
  }

  template <typename Means>
  void InteriorPixels(std::size_t y, std::size_t begin, std::size_t end) const {
    const RowKind kind = KindOfRow(bayer_phase_, y);
    const ThreeRows rows = RowsAround(y);
    for (std::size_t x = begin; x < end; ++x) {
      Store(y, x, InteriorPixel<Form, Means>(rows, kind.IsGreen(x), x, x - 1, x + 1));
    }
  }

  void EdgeColumns(std::size_t y) const {
    const RowKind kind = KindOfRow(bayer_phase_, y);
    const std::uint8_t* row = frame_.SourceRow(y);
    const std::uint8_t* partner = PartnerRow(frame_, y);
    const std::size_t last = frame_.width - 1;
    // A frame of a single column serves as its own neighbour.
    const std::size_t second = last > 0 ? 1 : 0;
    Store(y, 0, EdgeColumnPixel<Form>(row, partner, kind.IsGreen(0), 0, second));
    Store(y, last,
          EdgeColumnPixel<Form>(row, partner, kind.IsGreen(last), last, last - (last > 0)));
  }

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
  driver.EdgeRow(0);
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
  driver.EdgeRow(frame.height - 1);
}

template void Bilinear(const Frame<Form8To24>&, std::uint32_t, Rounding);
template void Bilinear(const Frame<Form16To24>&, std::uint32_t, Rounding);
template void Bilinear(const Frame<Form16To48>&, std::uint32_t, Rounding);

}  // namespace ormidex::convert
