// Drives the kernels of codes 3 and 4, whose second pass follows the first by a row.
#ifndef ORMIDEX_CONVERT_PLANE_DRIVE_H_
#define ORMIDEX_CONVERT_PLANE_DRIVE_H_

#include <cstddef>
#include <cstdint>
#include <cstring>

#include "convert/reflected_rows.h"
#include "convert/row_target.h"

namespace ormidex::convert {

// What a code brings to the drive:
//   Frame<Form> frame
//   RowKernels Kernels::* kDifferences         its first pass
//   std::int32_t Difference(x, y)              the same for one site, by the scalar formulas
//   void Pixel(x, y, out)                      the second pass for one pixel, the same
//
// Of the plane only the rows in use are kept, and with them the padded copies of the
// frame's rows, so that both stay in the cache.
template <typename Form, typename Code>
class PlaneDrive {
 public:
  static std::size_t MemoryBytes(std::size_t width) {
    return (PaddedRows<Form>::kRows + kDifferenceRows) * PaddedRows<Form>::Stride(width) +
           kAlignment;
  }

  // `memory` has MemoryBytes(width) bytes.
  PlaneDrive(const Code& code, const Kernels& kernels, std::uint8_t* memory)
      : code_(code),
        kernels_(kernels),
        width_(code.frame.width),
        height_(code.frame.height),
        stride_(PaddedRows<Form>::Stride(width_)),
        memory_(Aligned(memory)),
        rows_(code.frame, kernels, 0, width_, memory_ + kDifferenceRows * stride_),
        target_(kernels, width_ * height_ * kOutBytes, width_ * kOutBytes) {}

  void Run() {
    std::size_t made = 0;
    for (std::size_t y = 0; y < height_; ++y) {
      for (; made <= y + 1 && made < height_; ++made) {
        MakeDifferences(made);
      }
      std::uint8_t* const place = code_.frame.ImageRow(y);
      const bool past_cache = target_.TakesDirectly(place);
      MakePixels(y, past_cache ? target_.BeginDirectly(place) : target_.Begin(place, 1),
                 past_cache);
      if (!past_cache) {
        target_.Finish();
      }
    }
  }

 private:
  static constexpr std::size_t kLane = Form::kChannelBytes;
  static constexpr std::size_t kDifferenceBytes = 2 * kLane;
  static constexpr std::size_t kOutBytes = 3 * kLane;
  // Three are looked at; the next power of two makes the ring's place cheap.
  static constexpr std::size_t kDifferenceRows = 4;
  static constexpr std::size_t kPaddingBytes = 64;
  static constexpr std::size_t kAlignment = 64;

  static std::uint8_t* Aligned(std::uint8_t* memory) {
    return memory + (0 - reinterpret_cast<std::uintptr_t>(memory)) % kAlignment;
  }

  static RowKernel OfForm(const RowKernels& kernels) {
    return Form::kChannelBytes == 1 ? kernels.narrow : kernels.wide;
  }

  std::uint8_t* Differences(std::size_t y, std::ptrdiff_t step) const {
    const std::size_t row = Reflect(static_cast<std::ptrdiff_t>(y) + step, height_);
    return memory_ + (row % kDifferenceRows) * stride_ + kPaddingBytes;
  }

  void MakeDifferences(std::size_t y) {
    RowJob job{};
    rows_.SetRows(y, job);
    job.out = Differences(y, 0);
    job.width = width_;
    job.has_red = KindOfRow(kFixedPhase, y).has_red;
    static_cast<void>(OfForm(kernels_.*Code::kDifferences)(job));
    Pad(y, job.out);
  }

  // The reflections of the first and last site. With an odd width rows with red have a
  // site more than pairs.
  void Pad(std::size_t y, std::uint8_t* differences) {
    std::uint8_t* const end = differences + width_ / 2 * kDifferenceBytes;
    std::memcpy(differences - kDifferenceBytes, differences, kDifferenceBytes);
    std::memcpy(end, end - kDifferenceBytes, kDifferenceBytes);
    if (width_ % 2 != 0 && KindOfRow(kFixedPhase, y).has_red) {
      const std::int32_t difference = code_.Difference(width_ - 1, y);
      std::memcpy(end, &difference, kDifferenceBytes);  // the low bytes come first
    }
  }

  void MakePixels(std::size_t y, std::uint8_t* out, bool past_cache) {
    ColourJob job{};
    job.past_cache = past_cache;
    job.row = rows_.At(y, 0);
    job.differences_above = Differences(y, -1);
    job.differences = Differences(y, 0);
    job.differences_below = Differences(y, 1);
    job.out = out;
    job.next_out = target_.Prefetches() && y + 1 < height_ ? code_.frame.ImageRow(y + 1) : nullptr;
    job.stream = target_.Underway();
    job.width = width_;
    job.has_red = KindOfRow(kFixedPhase, y).has_red;
    const ColourKernel kernel = kLane == 1 ? kernels_.colour_narrow : kernels_.colour_wide;
    for (std::size_t x = kernel(job).end; x < width_; ++x) {
      code_.Pixel(x, y, out + x * kOutBytes);
    }
  }

  const Code& code_;
  const Kernels& kernels_;
  std::size_t width_;
  std::size_t height_;
  std::size_t stride_;
  std::uint8_t* memory_;
  PaddedRows<Form> rows_;
  RowTarget target_;
};

}  // namespace ormidex::convert

#endif  // ORMIDEX_CONVERT_PLANE_DRIVE_H_
