#include "convert/convert.h"
#include "convert/row_target.h"
#include "convert/samples.h"
#include "convert/tiers.h"

namespace ormidex::convert {
namespace {

using GreyKernel = void (*)(const GreyJob& job);

template <typename Form>
void Expand(const Frame<Form>& frame, GreyKernel Kernels::*kernel) {
  const Kernels* kernels = KernelsOf(ActiveTier());
  if (kernels != nullptr) {
    // From the bottom row on: the image is then written from its first byte to its last.
    RowTarget target(*kernels, 3 * frame.width * frame.height, 3 * frame.width);
    for (std::size_t y = frame.height; y-- > 0;) {
      GreyJob job{};
      job.samples = frame.SourceRow(y);
      job.next_samples = y > 0 ? frame.SourceRow(y - 1) : nullptr;
      job.out = target.Begin(frame.ImageRow(y), 1);
      job.next_out = target.Prefetches() && y > 0 ? frame.ImageRow(y - 1) : nullptr;
      job.stream = target.Underway();
      job.width = frame.width;
      (kernels->*kernel)(job);
      target.Finish();
    }
    return;
  }
  for (std::size_t y = 0; y < frame.height; ++y) {
    const std::uint8_t* row = frame.SourceRow(y);
    std::uint8_t* image_row = frame.ImageRow(y);
    for (std::size_t x = 0; x < frame.width; ++x) {
      const Sample grey = Form::Load(row, x);
      StorePixel<Form>(image_row, x, {grey, grey, grey});
    }
  }
}

}  // namespace

void ExpandMono8(const std::uint8_t* source, std::uint32_t width, std::uint32_t height,
                 std::uint8_t* destination) {
  Expand(Frame<Form8To24>{source, destination, width, height}, &Kernels::expand_grey8);
}

void ExpandMono16(const std::uint8_t* source, std::uint32_t width, std::uint32_t height,
                  std::uint8_t* destination) {
  Expand(Frame<Form16To24>{source, destination, width, height}, &Kernels::expand_grey16);
}

}  // namespace ormidex::convert
