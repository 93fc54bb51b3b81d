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
#include <type_traits>

#include "convert/kernel_rows.h"
#include "convert/neighbourhood.h"
#include "convert/samples.h"
#include "convert/tiers.h"

namespace ormidex::convert {

inline constexpr std::size_t kStripBytes = 2048;

// Rows of `Form`'s samples in the width that its kernels read.
template <typename Form>
class PaddedRows {
 public:
  static constexpr std::size_t kLane = Form::kChannelBytes;
  static constexpr std::size_t kStripColumns = kStripBytes / kLane;
  // Columns around the strip that hold samples.
  static constexpr std::size_t kMargin = 4;

  PaddedRows(std::size_t width, std::size_t height, std::size_t begin, std::size_t end,
             std::size_t first_row)
      : width_(width), height_(height), begin_(begin), end_(end), next_(first_row) {}

  // The place of column `begin` of row y. `copy(row, first, count, place)` copies
  // samples; rows must be asked for in ascending order, a few at a time.
  template <typename Copy>
  const std::uint8_t* Row(std::size_t y, const Copy& copy) {
    // One row ahead, so that what is loaded is not still on its way from the store.
    for (; next_ <= y + 1 && next_ < height_; ++next_) {
      Fill(next_, copy);
    }
    return Place(y);
  }

 private:
  // Five rows are looked at and one made ahead; the next power of two makes the
  // ring's place cheap.
  static constexpr std::size_t kRing = 8;
  static constexpr std::size_t kPaddingBytes = 64;

  std::uint8_t* Place(std::size_t y) { return ring_[y % kRing] + kPaddingBytes; }

  template <typename Copy>
  void Fill(std::size_t y, const Copy& copy) {
    const std::size_t first = begin_ > kMargin ? begin_ - kMargin : 0;
    const std::size_t last = std::min(end_ + kMargin, width_);
    std::uint8_t* place = Place(y);
    copy(y, first, last - first, place - (begin_ - first) * kLane);
    // Frames are at least twice the margin wide here, so one reflection is enough.
    if (begin_ == 0) {
      for (std::size_t k = 1; k <= kMargin; ++k) {
        std::memcpy(place - k * kLane, place + k * kLane, kLane);
      }
    }
    if (last == width_) {
      std::uint8_t* const edge = place + (width_ - 1 - begin_) * kLane;
      for (std::size_t k = 1; k <= kMargin; ++k) {
        std::memcpy(edge + k * kLane, edge - k * kLane, kLane);
      }
    }
  }

  std::size_t width_;
  std::size_t height_;
  std::size_t begin_;
  std::size_t end_;
  std::size_t next_;
  alignas(64) std::uint8_t ring_[kRing][kStripBytes + 2 * kPaddingBytes];
};

// A code brings what CodeBase names, and GreenRow(y) where its kernel reads the plane.
template <typename Form, typename Code>
class ReflectedDrive {
 public:
  // Columns [begin, end) of rows [top, bottom).
  ReflectedDrive(const Code& code, const Kernels& kernels, std::size_t begin, std::size_t end,
                 std::size_t top, std::size_t bottom)
      : code_(code),
        kernels_(kernels),
        begin_(begin),
        end_(end),
        top_(top),
        bottom_(bottom),
        raw_(code.frame.width, code.frame.height, begin, end, top > 2 ? top - 2 : 0),
        green_(code.frame.width, code.frame.height, begin, end, top > 2 ? top - 2 : 0),
        target_(kernels, code.frame.width * code.frame.height * Code::kOutBytes,
                (end - begin) * Code::kOutBytes) {}

  void Run() {
    for (std::size_t y = top_; y < bottom_; ++y) {
      Row(y);
    }
  }

 private:
  static constexpr std::size_t kLane = Form::kChannelBytes;

  // Kernels write pairs of columns from a red or blue site on. A first column that is
  // green, and a last one that is not, have half of their pair outside of the strip.
  void Row(std::size_t y) {
    std::uint8_t* const place = code_.Out(y) + begin_ * Code::kOutBytes;
    std::uint8_t* const out = target_.Begin(place, 1);
    Columns(y, out);
    target_.Finish();
  }

  void Columns(std::size_t y, std::uint8_t* out) {
    const std::size_t columns = end_ - begin_;
    const RowJob job = JobFor(y, out);
    for (const Kernels* kernels = &kernels_; kernels != nullptr; kernels = LowerTier(kernels)) {
      const RowKernel kernel = code_.Kernel(*kernels, y);
      const ColumnSpan done = kernel(job);
      if (done.begin < done.end) {
        const std::size_t lanes = kernels->vector_bytes / kLane;
        if (done.begin > 0) {
          HalfPair(kernel, job, -1, lanes, 0);
        }
        if (done.end < columns) {
          const auto start = static_cast<std::ptrdiff_t>(columns + 1 - lanes);
          HalfPair(kernel, job, start, lanes, columns - 1);
        }
        return;
      }
    }
    code_.Pixels(y, begin_, end_, out);
  }

  // Makes one vector of columns from `start` on beside the image, and copies `column`.
  void HalfPair(RowKernel kernel, RowJob job, std::ptrdiff_t start, std::size_t lanes,
                std::size_t column) {
    constexpr std::size_t kOutBytes = Code::kOutBytes;
    std::uint8_t* const place = job.out + column * kOutBytes;
    Shift(job, start);
    job.width = lanes;
    job.starts_green = false;
    job.next_out = nullptr;
    job.out = beside_;
    static_cast<void>(kernel(job));
    const auto index = static_cast<std::size_t>(static_cast<std::ptrdiff_t>(column) - start);
    std::memcpy(place, beside_ + index * kOutBytes, kOutBytes);
  }

  RowJob JobFor(std::size_t y, std::uint8_t* out) {
    RowJob job{};
    job.above2 = RawAt(y, -2);
    job.above = RawAt(y, -1);
    job.row = RawAt(y, 0);
    job.below = RawAt(y, 1);
    job.below2 = RawAt(y, 2);
    if constexpr (requires { code_.GreenRow(y); }) {
      job.green_above = GreenAt(y, -1);
      job.green_row = GreenAt(y, 0);
      job.green_below = GreenAt(y, 1);
    }
    job.next_out = target_.prefetches() && y + 1 < code_.frame.height
                       ? code_.Out(y + 1) + begin_ * Code::kOutBytes
                       : nullptr;
    job.has_red = code_.Kind(y).has_red;
    job.starts_green = code_.Kind(y).IsGreen(begin_);
    job.has_margin = true;
    job.out = out;
    job.width = end_ - begin_;
    return job;
  }

  static void Shift(RowJob& job, std::ptrdiff_t columns) {
    for (const std::uint8_t** row : {&job.above2, &job.above, &job.row, &job.below, &job.below2,
                                     &job.green_above, &job.green_row, &job.green_below}) {
      if (*row != nullptr) {
        *row += columns * static_cast<std::ptrdiff_t>(kLane);
      }
    }
  }

  std::size_t Reflected(std::size_t y, std::ptrdiff_t step) const {
    return Reflect(static_cast<std::ptrdiff_t>(y) + step, code_.frame.height);
  }

  const std::uint8_t* RawAt(std::size_t y, std::ptrdiff_t step) {
    const auto copy = [this](std::size_t row, std::size_t first, std::size_t count,
                             std::uint8_t* place) {
      const std::uint8_t* samples = code_.frame.SourceRow(row) + first * Form::kSampleBytes;
      if constexpr (Form::kSampleBytes == kLane) {
        std::memcpy(place, samples, count * kLane);
      } else {
        kernels_.high_bytes(samples, count, place);
      }
    };
    return raw_.Row(Reflected(y, step), copy);
  }

  const std::uint8_t* GreenAt(std::size_t y, std::ptrdiff_t step) {
    const auto copy = [this](std::size_t row, std::size_t first, std::size_t count,
                             std::uint8_t* place) {
      std::memcpy(place, code_.GreenRow(row) + first * kLane, count * kLane);
    };
    return green_.Row(Reflected(y, step), copy);
  }

  const Code& code_;
  const Kernels& kernels_;
  std::size_t begin_;
  std::size_t end_;
  std::size_t top_;
  std::size_t bottom_;
  PaddedRows<Form> raw_;
  PaddedRows<Form> green_;
  RowTarget target_;
  alignas(64) std::uint8_t beside_[3 * 64];
};

// Rows [top, bottom) of a frame.
template <typename Form, template <typename> typename Code>
void DriveReflected(const Code<Form>& code, std::size_t top, std::size_t bottom) {
  const Kernels* kernels = KernelsOf(ActiveTier());
  const std::size_t width = code.frame.width;
  if (kernels == nullptr || width < 2 * PaddedRows<Form>::kMargin) {
    for (std::size_t y = top; y < bottom; ++y) {
      code.Pixels(y, 0, width, code.Out(y));
    }
    return;
  }
  constexpr std::size_t kStripColumns = PaddedRows<Form>::kStripColumns;
  for (std::size_t begin = 0; begin < width; begin += kStripColumns) {
    const std::size_t end = std::min(begin + kStripColumns, width);
    ReflectedDrive<Form, Code<Form>>(code, *kernels, begin, end, top, bottom).Run();
  }
}

template <typename Form, template <typename> typename Code>
void DriveReflected(const Code<Form>& code) {
  DriveReflected(code, 0, code.frame.height);
}

}  // namespace ormidex::convert

#endif  // ORMIDEX_CONVERT_REFLECTED_ROWS_H_
