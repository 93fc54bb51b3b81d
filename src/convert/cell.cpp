// Codes 0, 16 and 255: what the mosaic's cells say without an estimate of edges.
#include <cstring>

#include "convert/kernel_rows.h"
#include "convert/mosaic.h"
#include "convert/routines.h"

namespace ormidex::convert {
namespace {

// The 2 x 2 block whose top left corner is (x, y).
template <typename Form>
Rgb BlockColours(const Frame<Form>& frame, std::size_t x, std::size_t y) {
  const RowKind kind = KindOfRow(kFixedPhase, y);
  // In the upper row the row colour and a green, in the lower a green and the other
  // colour, on the diagonals of the block.
  const std::size_t colour_x = kind.IsGreen(x) ? x + 1 : x;
  const std::size_t green_x = kind.IsGreen(x) ? x : x + 1;
  return ToRgb(kind, {.row_colour = frame.At(colour_x, y),
                      .green = Mean(frame.At(green_x, y), frame.At(colour_x, y + 1)),
                      .other_colour = frame.At(green_x, y + 1)});
}

// The same in a frame of one row or one column, where half of the block is missing:
// a colour that is not there takes the green, or the only sample.
template <typename Form>
Rgb HalfBlockColours(const Frame<Form>& frame, std::size_t x, std::size_t y) {
  const std::size_t x2 = x + 1 < frame.width ? x + 1 : x;
  const std::size_t y2 = y + 1 < frame.height ? y + 1 : y;
  const bool first_is_green = KindOfRow(kFixedPhase, y).IsGreen(x);
  const Sample first = frame.At(x, y);
  const Sample second = frame.At(x2, y2);
  const Sample green = first_is_green ? first : second;
  const Sample colour = first_is_green ? second : first;
  const std::size_t colour_row = first_is_green ? y2 : y;
  return ToRgb(KindOfRow(kFixedPhase, colour_row), {colour, green, green});
}

// Row y is the row of blocks whose top is source row y.
template <typename Form>
struct ReplicateCode : CodeBase<Form> {
  using CodeBase<Form>::frame;

  std::size_t Rows() const { return frame.height - 1; }
  std::uint8_t* Out(std::size_t y) const { return frame.ImageRow(y + 1); }
  RowKernel Kernel(const Kernels& kernels, std::size_t) const {
    return this->OfForm(kernels.replicate);
  }

  void Pixels(std::size_t y, std::size_t begin, std::size_t end, std::uint8_t* out) const {
    const std::size_t last = frame.width - 1;
    for (std::size_t x = begin; x < end; ++x) {
      StorePixel<Form>(out, x - begin, BlockColours(frame, x < last ? x : last - 1, y));
    }
  }
};

template <typename Form>
struct GreyHorizontalCode : CodeBase<Form> {
  using CodeBase<Form>::frame;

  std::size_t Columns() const { return frame.width / 4 * 4; }
  RowKernel Kernel(const Kernels& kernels, std::size_t) const {
    return this->OfForm(kernels.grey_horizontal);
  }

  void Pixels(std::size_t y, std::size_t begin, std::size_t end, std::uint8_t* out) const {
    const RowKind kind = this->Kind(y);
    const std::uint8_t* row = frame.SourceRow(y);
    for (std::size_t x = begin; x < end; ++x) {
      Sample grey = Form::Load(row, x);
      if (!kind.IsGreen(x)) {
        const std::size_t left = x > 0 ? x - 1 : x + 1;
        const std::size_t right = x + 1 < frame.width ? x + 1 : x - 1;
        grey = Mean(Form::Load(row, left), Form::Load(row, right));
      }
      StorePixel<Form>(out, x - begin, {grey, grey, grey});
    }
  }
};

template <typename Form>
struct MosaicCode : CodeBase<Form> {
  using CodeBase<Form>::frame;

  RowKind Kind(std::size_t y) const {
    const bool odd_width = frame.width % 2 != 0;
    const bool even_row = y % 2 == 0;
    return {.has_red = even_row, .starts_green = even_row == odd_width};
  }
  RowKernel Kernel(const Kernels& kernels, std::size_t) const {
    return this->OfForm(kernels.mosaic);
  }

  void Pixels(std::size_t y, std::size_t begin, std::size_t end, std::uint8_t* out) const {
    const RowKind kind = Kind(y);
    const std::uint8_t* row = frame.SourceRow(y);
    for (std::size_t x = begin; x < end; ++x) {
      const Sample sample = Form::Load(row, x);
      const RolePixel pixel = kind.IsGreen(x) ? RolePixel{0, sample, 0} : RolePixel{sample, 0, 0};
      StorePixel<Form>(out, x - begin, ToRgb(kind, pixel));
    }
  }
};

// The last pixel of the line and the one before are alike, as in a full frame.
template <typename Form>
void ReplicateLine(const Frame<Form>& frame) {
  for (std::size_t y = 0; y < frame.height; ++y) {
    for (std::size_t x = 0; x < frame.width; ++x) {
      const std::size_t block_x = x + 1 < frame.width || x == 0 ? x : x - 1;
      const std::size_t block_y = y > 0 ? y - 1 : 0;
      StorePixel<Form>(frame.ImageRow(y), x, HalfBlockColours(frame, block_x, block_y));
    }
  }
}

}  // namespace

// The block of source row y is stored as the image row of source row y + 1, and the
// top row repeats: the picture sits one row low. Deliberate: overlays that
// applications draw on such pictures count on it.
template <typename Form>
void Replicate(const Frame<Form>& frame) {
  if (frame.IsEmpty()) {
    return;
  }
  if (frame.width == 1 || frame.height == 1) {
    ReplicateLine(frame);
    return;
  }
  Drive(ReplicateCode<Form>{{frame}});
  std::memcpy(frame.ImageRow(0), frame.ImageRow(1), frame.width * 3 * Form::kChannelBytes);
}

// The routine takes four samples at a time: up to three pixels at the end of a row
// stay as they were. Deliberate; applications that use it crop to a multiple of 4.
template <typename Form>
void GreyFromHorizontalGreen(const Frame<Form>& frame) {
  Drive(GreyHorizontalCode<Form>{{frame}});
}

// The column phase depends on the width, deliberately: with an odd width each row
// starts with the other colour than the mosaic has there.
template <typename Form>
void ShowMosaic(const Frame<Form>& frame) {
  Drive(MosaicCode<Form>{{frame}});
}

ORMIDEX_INSTANTIATE_FORMS(Replicate)
ORMIDEX_INSTANTIATE_FORMS(GreyFromHorizontalGreen)
ORMIDEX_INSTANTIATE_FORMS(ShowMosaic)

}  // namespace ormidex::convert
