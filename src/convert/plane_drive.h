// Drives the kernels of codes 3 and 4, whose second pass follows the first by a row.
#ifndef ORMIDEX_CONVERT_PLANE_DRIVE_H_
#define ORMIDEX_CONVERT_PLANE_DRIVE_H_

#include <cstddef>
#include <cstdint>
#include <cstring>

#include "convert/mosaic.h"
#include "convert/neighbourhood.h"
#include "convert/routines.h"
#include "convert/row_target.h"
#include "convert/site_rows.h"

namespace ormidex::convert {

// What a code brings to the drive:
//   Frame<Form> frame
//   DifferencesKernels Kernels::* kDifferences its first pass
//   std::int32_t Difference(x, y)              the same for one site, by the scalar formulas
//   void Pixel(x, y, out)                      the second pass for one pixel, the same
//
// Of the plane only the rows in use are kept, and with them the frame's rows in pairs, so
// that both stay in the cache.
template <typename Form, typename Code>
class PlaneDrive {
 public:
  static std::size_t MemoryBytes(std::size_t width) {
    return kDifferenceRows * SiteRows<Form>::Stride(width) + SiteRows<Form>::MemoryBytes(width) +
           kAlignment;
  }

  // `memory` has MemoryBytes(width) bytes.
  PlaneDrive(const Code& code, const Kernels& kernels, std::uint8_t* memory)
      : code_(code),
        kernels_(kernels),
        width_(code.frame.width),
        height_(code.frame.height),
        stride_(SiteRows<Form>::Stride(width_)),
        memory_(Aligned(memory)),
        rows_(code.frame, kernels, memory_ + kDifferenceRows * stride_),
        target_(kernels, width_ * height_ * kOutBytes, width_ * kOutBytes) {}

  void Run() {
    std::size_t made = 0;
    for (std::size_t y = 0; y < height_; ++y) {
      for (; made <= y + 1 && made < height_; made += 2) {
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
  // Three are looked at, and two are made at once.
  static constexpr std::size_t kDifferenceRows = 4;
  static constexpr std::size_t kPaddingBytes = SiteRows<Form>::kPaddingBytes;
  static constexpr std::size_t kAlignment = 64;

  static std::uint8_t* Aligned(std::uint8_t* memory) {
    return memory + (0 - reinterpret_cast<std::uintptr_t>(memory)) % kAlignment;
  }

  std::uint8_t* Differences(std::size_t y, std::ptrdiff_t step) const {
    return Place(Reflect(static_cast<std::ptrdiff_t>(y) + step, height_));
  }
  std::uint8_t* Place(std::size_t row) const {
    return memory_ + (row % kDifferenceRows) * stride_ + kPaddingBytes;
  }

  static std::ptrdiff_t PairOf(std::size_t y) { return static_cast<std::ptrdiff_t>(y / 2); }

  // Of rows y, an even one, and y + 1, which may be beyond the frame.
  void MakeDifferences(std::size_t y) {
    const auto& kernels = kernels_.*Code::kDifferences;
    DifferencesJob job{};
    job.above = rows_.At(PairOf(y) - 1);
    job.pair = rows_.At(PairOf(y));
    job.below = rows_.At(PairOf(y) + 1);
    job.differences = Place(y);
    job.differences_of_second = Place(y + 1);
    job.width = width_;
    (kLane == 1 ? kernels.narrow : kernels.wide)(job);
    Pad(y, job.differences);
    if (y + 1 < height_) {
      Pad(y + 1, job.differences_of_second);
    }
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
    job.pair = rows_.At(PairOf(y));
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
  SiteRows<Form> rows_;
  RowTarget target_;
};

}  // namespace ormidex::convert

#endif  // ORMIDEX_CONVERT_PLANE_DRIVE_H_
