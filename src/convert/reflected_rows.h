// Drives the kernels of the codes that reflect the frame at its borders: all columns
// of a row come from the kernel, without scalar formulas at the ends.
//
// The rows pass through a ring of padded copies on the stack, a strip of columns at a
// time; the padding holds the neighbouring columns, or their reflections.
#ifndef ORMIDEX_CONVERT_REFLECTED_ROWS_H_
#define ORMIDEX_CONVERT_REFLECTED_ROWS_H_

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>

#include "convert/kernel_rows.h"
#include "convert/neighbourhood.h"
#include "convert/samples.h"
#include "convert/tiers.h"

namespace ormidex::convert {

// A ring of padded copies of rows, in the width that a tier's kernels read.
template <typename Form>
class PaddedRows {
 public:
  static constexpr std::size_t kLane = Form::kChannelBytes;
  // Columns around the copied ones that hold samples: a vector that reaches two columns
  // further is loaded from the second of a pair.
  static constexpr std::size_t kMargin = 4;
  // Frames must be wider than the reflections of both sides.
  static constexpr std::size_t kMinWidth = 2 * kMargin;
  // Five rows are looked at and one made ahead; the next power of two makes the ring's
  // place cheap.
  static constexpr std::size_t kRows = 8;
  // Bytes that a row of `columns` takes in the ring.
  static constexpr std::size_t Stride(std::size_t columns) {
    return (columns * kLane + 2 * kPaddingBytes + 63) / 64 * 64;
  }

  // Columns [begin, end); `memory` has kRows rows of Stride(end - begin) bytes.
  PaddedRows(const Frame<Form>& frame, const Kernels& kernels, std::size_t begin, std::size_t end,
             std::uint8_t* memory)
      : frame_(frame),
        kernels_(kernels),
        begin_(begin),
        end_(end),
        stride_(Stride(end - begin)),
        memory_(memory) {}

  // The place of column `begin` of the row `step` rows below row y, reflected. Rows must
  // be asked for in ascending order, a few at a time.
  const std::uint8_t* At(std::size_t y, std::ptrdiff_t step) {
    const std::size_t row = Reflect(static_cast<std::ptrdiff_t>(y) + step, frame_.height);
    // One row ahead, so that what is loaded is not still on its way from the store.
    for (; next_ <= row + 1 && next_ < frame_.height; ++next_) {
      Fill(next_);
    }
    return Place(row);
  }

  // The five rows around row y.
  void SetRows(std::size_t y, RowJob& job) {
    job.above2 = At(y, -2);
    job.above = At(y, -1);
    job.row = At(y, 0);
    job.below = At(y, 1);
    job.below2 = At(y, 2);
  }

 private:
  static constexpr std::size_t kPaddingBytes = 64;

  std::uint8_t* Place(std::size_t y) const {
    return memory_ + (y % kRows) * stride_ + kPaddingBytes;
  }

  void Fill(std::size_t y) {
    const std::size_t first = begin_ > kMargin ? begin_ - kMargin : 0;
    const std::size_t last = std::min(end_ + kMargin, frame_.width);
    std::uint8_t* const place = Place(y);
    Copy(frame_.SourceRow(y) + first * Form::kSampleBytes, last - first,
         place - (begin_ - first) * kLane);
    if (begin_ == 0) {
      for (std::size_t k = 1; k <= kMargin; ++k) {
        std::memcpy(place - k * kLane, place + k * kLane, kLane);
      }
    }
    if (last == frame_.width) {
      std::uint8_t* const edge = place + (frame_.width - 1 - begin_) * kLane;
      for (std::size_t k = 1; k <= kMargin; ++k) {
        std::memcpy(edge + k * kLane, edge - k * kLane, kLane);
      }
    }
  }

  void Copy(const std::uint8_t* samples, std::size_t count, std::uint8_t* place) const {
    if constexpr (Form::kSampleBytes == kLane) {
      std::memcpy(place, samples, count * kLane);
    } else {
      kernels_.high_bytes(samples, count, place);
    }
  }

  Frame<Form> frame_;
  const Kernels& kernels_;
  std::size_t begin_;
  std::size_t end_;
  std::size_t stride_;
  std::uint8_t* memory_;
  std::size_t next_ = 0;
};

// The tier's kernels, or those of a lower one whose vectors are no wider than a row;
// null where there are none.
template <typename Form>
const Kernels* KernelsForWidth(std::size_t width) {
  const Kernels* kernels = KernelsOf(ActiveTier());
  while (kernels != nullptr &&
         kernels->vector_bytes / Form::kChannelBytes > (width & ~std::size_t{1})) {
    kernels = LowerTier(kernels);
  }
  return width < PaddedRows<Form>::kMinWidth ? nullptr : kernels;
}

// Columns [begin, end) of a code that brings what CodeBase names.
template <typename Form, typename Code>
class ReflectedDrive {
 public:
  static constexpr std::size_t kStripColumns = 4096 / Form::kChannelBytes;

  ReflectedDrive(const Code& code, const Kernels& kernels, std::size_t begin, std::size_t end)
      : code_(code),
        kernels_(kernels),
        begin_(begin),
        end_(end),
        rows_(code.frame, kernels, begin, end, ring_),
        target_(kernels, code.frame.width * code.frame.height * Code::kOutBytes,
                (end - begin) * Code::kOutBytes) {}

  void Run() {
    for (std::size_t y = 0; y < code_.Rows(); ++y) {
      const bool past_cache = target_.TakesDirectly(Out(y));
      std::uint8_t* const out =
          past_cache ? target_.BeginDirectly(Out(y)) : target_.Begin(Out(y), 1);
      Row(y, out, past_cache);
      if (!past_cache) {
        target_.Finish();
      }
    }
  }

 private:
  std::uint8_t* Out(std::size_t y) const { return code_.Out(y) + begin_ * Code::kOutBytes; }

  void Row(std::size_t y, std::uint8_t* out, bool past_cache) {
    RowJob job{};
    job.past_cache = past_cache;
    rows_.SetRows(y, job);
    job.out = out;
    job.next_out = target_.Prefetches() && y + 1 < code_.Rows() ? Out(y + 1) : nullptr;
    job.stream = target_.Underway();
    job.width = end_ - begin_;
    job.has_red = code_.Kind(y).has_red;
    const std::size_t done = code_.Kernel(kernels_, y)(job).end;
    if (done < end_ - begin_) {
      code_.Pixels(y, begin_ + done, end_, out + done * Code::kOutBytes);
    }
  }

  const Code& code_;
  const Kernels& kernels_;
  std::size_t begin_;
  std::size_t end_;
  alignas(64) std::uint8_t ring_[PaddedRows<Form>::kRows * PaddedRows<Form>::Stride(kStripColumns)];
  PaddedRows<Form> rows_;
  RowTarget target_;
};

template <typename Form, template <typename> typename Code>
void DriveReflected(const Code<Form>& code) {
  const std::size_t width = code.frame.width;
  const Kernels* kernels = KernelsForWidth<Form>(width);
  if (kernels == nullptr) {
    for (std::size_t y = 0; y < code.Rows(); ++y) {
      code.Pixels(y, 0, width, code.Out(y));
    }
    return;
  }
  constexpr std::size_t kStripColumns = ReflectedDrive<Form, Code<Form>>::kStripColumns;
  for (std::size_t begin = 0; begin < width; begin += kStripColumns) {
    const std::size_t end = std::min(begin + kStripColumns, width);
    ReflectedDrive<Form, Code<Form>>(code, *kernels, begin, end).Run();
  }
}

}  // namespace ormidex::convert

#endif  // ORMIDEX_CONVERT_REFLECTED_ROWS_H_
