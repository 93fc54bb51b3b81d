// The rows of a frame in pairs, an even one and the odd one below it, for the kernels of
// codes 3 and 4. The red and blue sites of both are woven into one row and their greens
// into another: where each row uses every other lane of a vector, the pair uses all.
#ifndef ORMIDEX_CONVERT_SITE_ROWS_H_
#define ORMIDEX_CONVERT_SITE_ROWS_H_

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <type_traits>

#include "convert/neighbourhood.h"
#include "convert/samples.h"
#include "convert/tiers.h"

namespace ormidex::convert {

// A ring of woven pairs with some columns of padding, which hold the reflections.
template <typename Form>
class SiteRows {
 public:
  static constexpr std::size_t kLane = Form::kChannelBytes;
  static constexpr std::size_t kPaddingBytes = 64;

  // Bytes that a row of `columns` takes.
  static constexpr std::size_t Stride(std::size_t columns) {
    return (columns * kLane + 2 * kPaddingBytes + 63) / 64 * 64;
  }
  static constexpr std::size_t MemoryBytes(std::size_t columns) {
    return (2 * kPairs + kNarrowedRows) * Stride(columns);
  }

  // `memory` has MemoryBytes(the frame's width) bytes.
  SiteRows(const Frame<Form>& frame, const Kernels& kernels, std::uint8_t* memory)
      : frame_(frame), kernels_(kernels), stride_(Stride(frame.width)), memory_(memory) {}

  // Pair k holds rows 2 k and 2 k + 1, reflected where the frame has none. Pairs must be
  // asked for in ascending order, from -1 on; the two before the last one stay.
  SitePair At(std::ptrdiff_t k) {
    // One pair ahead, so that what is loaded is not still on its way from the store.
    for (; next_ <= k + 1; ++next_) {
      Fill(next_);
    }
    return {Place(k), Place(k) + stride_};
  }

 private:
  static constexpr std::ptrdiff_t kPairs = 4;
  static constexpr bool kNarrows = Form::kSampleBytes != kLane;
  static constexpr std::size_t kNarrowedRows = kNarrows ? 2 : 0;
  // Columns around the frame's that are looked at.
  static constexpr std::size_t kReach = 2;

  std::uint8_t* Place(std::ptrdiff_t k) const {
    return memory_ + static_cast<std::size_t>((k + kPairs) % kPairs) * 2 * stride_ + kPaddingBytes;
  }

  // The samples of a row; `slot` is 0 or 1.
  const std::uint8_t* Samples(std::ptrdiff_t row, std::size_t slot) const {
    const std::uint8_t* const samples = frame_.SourceRow(Reflect(row, frame_.height));
    if constexpr (kNarrows) {
      std::uint8_t* const narrowed = memory_ + (2 * kPairs + slot) * stride_ + kPaddingBytes;
      kernels_.high_bytes(samples, frame_.width, narrowed);
      return narrowed;
    } else {
      return samples;
    }
  }

  void Fill(std::ptrdiff_t k) {
    const WeaveKernel weave = kLane == 1 ? kernels_.weave_narrow : kernels_.weave_wide;
    std::uint8_t* const sites = Place(k);
    std::uint8_t* const greens = sites + stride_;
    weave(Samples(2 * k, 0), Samples(2 * k + 1, 1), frame_.width, sites, greens);
    Pad(sites);
    Pad(greens);
  }

  void Pad(std::uint8_t* place) const {
    std::uint8_t* const edge = place + (frame_.width - 1) * kLane;
    for (std::size_t i = 1; i <= kReach; ++i) {
      std::memcpy(place - i * kLane, place + i * kLane, kLane);
      std::memcpy(edge + i * kLane, edge - i * kLane, kLane);
    }
  }

  Frame<Form> frame_;
  const Kernels& kernels_;
  std::size_t stride_;
  std::uint8_t* memory_;
  std::ptrdiff_t next_ = -1;
};

}  // namespace ormidex::convert

#endif  // ORMIDEX_CONVERT_SITE_ROWS_H_
