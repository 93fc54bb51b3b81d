// Drives row kernels over a frame, with the scalar formulas for what they leave.
#ifndef ORMIDEX_CONVERT_KERNEL_ROWS_H_
#define ORMIDEX_CONVERT_KERNEL_ROWS_H_

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <type_traits>

#include "convert/mosaic.h"
#include "convert/neighbourhood.h"
#include "convert/routines.h"
#include "convert/row_target.h"
#include "convert/samples.h"
#include "convert/tiers.h"

namespace ormidex::convert {

// What every code brings to the drive, with the defaults of most. A code adds
//   RowKernel Kernel(const Kernels&, y)    the kernel for row y
//   void Pixels(y, begin, end, out)        the scalar formulas for some columns, of
//                                          which `out` is the first one's place
// and may add
//   TwoRowsKernel TwoRows(const Kernels&)  the kernel for two interior rows
//   bool TwoRowsEnds()                     its first and last columns are right, too
//   void Ends(y, out)                      quicker scalar formulas for them than Pixels
template <typename Form>
struct CodeBase {
  Frame<Form> frame;

  // Bytes written for each column.
  static constexpr std::size_t kOutBytes = 3 * Form::kChannelBytes;

  RowKind Kind(std::size_t y) const { return KindOfRow(kFixedPhase, y); }
  std::size_t Rows() const { return frame.height; }
  std::size_t Columns() const { return frame.width; }
  std::uint8_t* Out(std::size_t y) const { return frame.ImageRow(y); }
  bool TwoRowsEnds() const { return false; }
  bool IsEdgeRow(std::size_t y) const { return y == 0 || y + 1 == frame.height; }

  static RowKernel OfForm(const RowKernels& kernels) {
    return Form::kChannelBytes == 1 ? kernels.narrow : kernels.wide;
  }
  static TwoRowsKernel OfForm(const TwoRowsKernels& kernels) {
    return Form::kChannelBytes == 1 ? kernels.narrow : kernels.wide;
  }
};

// The rows that a kernel sees of a frame: all of it, as it is, each row with the next
// one as its margin.
template <typename Form>
class DirectRows {
 public:
  explicit DirectRows(const Frame<Form>& frame) : frame_(frame) {}

  const std::uint8_t* Row(std::size_t y) const { return frame_.SourceRow(y); }
  std::size_t FirstColumn() const { return 0; }
  std::size_t Width() const { return frame_.width; }
  bool HasMargin() const { return true; }
  bool IsWholeRows() const { return true; }

 private:
  Frame<Form> frame_;
};

// The high bytes of 16-bit rows, a strip of columns at a time, in a ring of a few
// rows on the stack. The strip has a margin for the kernels' neighbours.
class NarrowedRows {
 public:
  static constexpr std::size_t kStripColumns = 4096;
  static constexpr std::size_t kMargin = 8;

  NarrowedRows(const Frame<Form16To24>& frame, const Kernels& kernels, std::size_t begin,
               std::size_t end)
      : frame_(frame),
        kernels_(kernels),
        first_(begin > kMargin ? begin - kMargin : 0),
        width_(std::min(end + kMargin, frame.width) - first_) {}

  // Rows must be asked for in ascending order, a few at a time.
  const std::uint8_t* Row(std::size_t y) {
    for (; next_ <= y; ++next_) {
      kernels_.high_bytes(frame_.SourceRow(next_) + 2 * first_, width_, Place(next_));
    }
    return Place(y);
  }
  std::size_t FirstColumn() const { return first_; }
  std::size_t Width() const { return width_; }
  bool HasMargin() const { return false; }
  bool IsWholeRows() const { return width_ == frame_.width; }

 private:
  // Three rows are looked at; the next power of two makes the ring's place cheap.
  static constexpr std::size_t kRing = 4;
  static constexpr std::size_t kPadding = 64;

  std::uint8_t* Place(std::size_t y) { return ring_[y % kRing] + kPadding; }

  Frame<Form16To24> frame_;
  const Kernels& kernels_;
  std::size_t first_;
  std::size_t width_;
  std::size_t next_ = 0;
  alignas(64) std::uint8_t ring_[kRing][kStripColumns + 2 * kMargin + 2 * kPadding];
};

template <typename Form, typename Code, typename Rows>
class RowDrive {
 public:
  RowDrive(const Code& code, const Kernels& kernels, Rows& rows, std::size_t begin, std::size_t end)
      : code_(code),
        kernels_(kernels),
        rows_(rows),
        begin_(begin),
        end_(end),
        target_(kernels, code.frame.width * code.frame.height * Code::kOutBytes,
                rows.IsWholeRows() ? (end - begin) * Code::kOutBytes : RowTarget::kPartOfRow) {}

  void Run() {
    std::size_t y = 0;
    while (y < code_.Rows()) {
      const std::size_t paired = PairsOfRows(y);
      y += paired > 0 ? paired : OneRow(y);
    }
  }

 private:
  // Columns and rows looked at on each side.
  static constexpr std::size_t kReach = 1;

  std::uint8_t* Out(std::size_t y) const { return code_.Out(y) + begin_ * Code::kOutBytes; }

  std::size_t OneRow(std::size_t y) {
    // Away from the frame's ends the rows before and after lie on either side.
    const bool has_margin = rows_.HasMargin() && y >= 3 && y + 3 < code_.frame.height;
    const bool past_cache = has_margin && target_.TakesDirectly(Out(y));
    std::uint8_t* const out = past_cache ? target_.BeginDirectly(Out(y)) : target_.Begin(Out(y), 1);
    RowJob job = JobFor(y, out);
    job.has_margin = has_margin;
    job.past_cache = past_cache;
    ColumnSpan done = code_.Kernel(kernels_, y)(job);
    for (const Kernels* lower = LowerTier(&kernels_); done.begin == done.end && lower != nullptr;
         lower = LowerTier(lower)) {
      job.past_cache = false;
      done = code_.Kernel(*lower, y)(job);
    }
    FinishRow(y, done, out);
    if (!past_cache) {
      target_.Finish();
    }
    return 1;
  }

  // What a kernel wrote within its reach of the frame's ends is not valid.
  void FinishRow(std::size_t y, const ColumnSpan& done, std::uint8_t* out) const {
    const std::size_t first = rows_.FirstColumn();
    const std::size_t valid_begin = std::max(first + done.begin, kReach);
    const std::size_t valid_end = std::min(first + done.end, code_.frame.width - kReach);
    const bool any = done.begin < done.end && valid_begin < valid_end;
    const std::size_t left_end = any ? std::clamp(valid_begin, begin_, end_) : end_;
    Pixels(y, begin_, left_end, out);
    Pixels(y, any ? std::clamp(valid_end, left_end, end_) : end_, end_, out);
  }

  // The number of rows from y on that were made in pairs: none where the code has no
  // such kernel or the rows do not suit it.
  std::size_t PairsOfRows(std::size_t y) {
    if constexpr (requires { code_.TwoRows(kernels_); }) {
      const std::size_t width = code_.frame.width;
      const bool interior = y >= 1 && y + 2 < code_.frame.height;
      const bool whole_rows = rows_.IsWholeRows() && end_ == width && width % 2 == 0;
      if (!interior || !whole_rows || code_.Kind(y).starts_green) {
        return 0;
      }
      const TwoRowsJob job = TwoRowsJobFor(y);
      for (const Kernels* kernels = &kernels_; kernels != nullptr; kernels = LowerTier(kernels)) {
        if (code_.TwoRows(*kernels)(job)) {
          FinishPairs(y, job);
          return 2 * job.pairs;
        }
      }
    }
    return 0;
  }

  void FinishPairs(std::size_t y, const TwoRowsJob& job) {
    if (!code_.TwoRowsEnds()) {
      std::uint8_t* out_below = job.out_below;
      for (std::size_t pair = 0; pair < job.pairs; ++pair, out_below += job.out_step) {
        Ends(y + 2 * pair, out_below + target_.RowBytes());
        Ends(y + 2 * pair + 1, out_below);
      }
    }
    if (!job.past_cache) {
      target_.Finish();
    }
  }

  void Ends(std::size_t y, std::uint8_t* out) const {
    if constexpr (requires { code_.Ends(y, out); }) {
      code_.Ends(y, out);
    } else {
      const std::size_t last = code_.frame.width - 1;
      code_.Pixels(y, 0, 1, out);
      code_.Pixels(y, last, last + 1, out + last * Code::kOutBytes);
    }
  }

  // Pairs that one call may do: all in a frame that is read where it stands and written
  // where it belongs, but few where the ends are done afterwards, for the cache's sake.
  std::size_t PairsFrom(std::size_t y) const {
    if (!rows_.HasMargin() || (target_.Streams() && !target_.TakesDirectly(Out(y)))) {
      return 1;
    }
    const std::size_t all = (code_.frame.height - 1 - y) / 2;
    return code_.TwoRowsEnds() ? all : std::min<std::size_t>(all, 8);
  }

  // `out` is the place of column `begin_`.
  void Pixels(std::size_t y, std::size_t begin, std::size_t end, std::uint8_t* out) const {
    if (begin < end) {
      code_.Pixels(y, begin, end, out + (begin - begin_) * Code::kOutBytes);
    }
  }

  TwoRowsJob TwoRowsJobFor(std::size_t y) {
    TwoRowsJob job{};
    job.above = rows_.Row(y - 1);
    job.row = rows_.Row(y);
    job.below = rows_.Row(y + 1);
    job.below2 = rows_.Row(y + 2);
    job.past_cache = target_.TakesDirectly(Out(y + 1));
    job.out_below = job.past_cache ? Out(y + 1) : target_.Begin(Out(y + 1), 2);
    job.out = job.out_below + target_.RowBytes();
    if (target_.Prefetches() && y + 3 < code_.Rows()) {
      job.next_out = Out(y + 2);
      job.next_out_below = Out(y + 3);
    }
    job.stream = target_.Underway();
    job.width = code_.frame.width;
    job.has_red = code_.Kind(y).has_red;
    job.pairs = PairsFrom(y);
    job.rows_step = 2 * (job.below - job.row);
    job.out_step = 2 * (job.out_below - job.out);
    return job;
  }

  // A kernel may write outside of [begin_, end_) only where that is the image.
  RowJob JobFor(std::size_t y, std::uint8_t* out) {
    const std::size_t first = rows_.FirstColumn();
    const RowKind kind = code_.Kind(y);
    RowJob job{};
    job.above = RowAt(y, -1);
    job.row = RowAt(y, 0);
    job.below = RowAt(y, 1);
    job.out = out - (begin_ - first) * Code::kOutBytes;
    job.next_out = target_.Prefetches() && y + 1 < code_.Rows()
                       ? Out(y + 1) - (begin_ - first) * Code::kOutBytes
                       : nullptr;
    job.stream = target_.Underway();
    job.width = std::min(rows_.Width(), code_.Columns() - first);
    job.has_red = kind.has_red;
    job.starts_green = kind.IsGreen(first);
    return job;
  }

  std::size_t Reflected(std::size_t y, std::ptrdiff_t step) const {
    return Reflect(static_cast<std::ptrdiff_t>(y) + step, code_.frame.height);
  }
  const std::uint8_t* RowAt(std::size_t y, std::ptrdiff_t step) {
    return rows_.Row(Reflected(y, step));
  }

  const Code& code_;
  const Kernels& kernels_;
  Rows& rows_;
  std::size_t begin_;
  std::size_t end_;
  RowTarget target_;
};

template <typename Form, template <typename> typename Code>
void Drive(const Code<Form>& code) {
  const Kernels* kernels = KernelsOf(ActiveTier());
  const std::size_t columns = code.Columns();
  const bool is_tiny = code.frame.width < 8 || code.frame.height < 2;
  if (kernels == nullptr || is_tiny) {
    for (std::size_t y = 0; y < code.Rows(); ++y) {
      code.Pixels(y, 0, columns, code.Out(y));
    }
    return;
  }
  if constexpr (std::is_same_v<Form, Form16To24>) {
    for (std::size_t begin = 0; begin < columns; begin += NarrowedRows::kStripColumns) {
      const std::size_t end = std::min(begin + NarrowedRows::kStripColumns, columns);
      NarrowedRows rows(code.frame, *kernels, begin, end);
      RowDrive<Form, Code<Form>, NarrowedRows>(code, *kernels, rows, begin, end).Run();
    }
  } else {
    DirectRows<Form> rows(code.frame);
    RowDrive<Form, Code<Form>, DirectRows<Form>>(code, *kernels, rows, 0, columns).Run();
  }
}

}  // namespace ormidex::convert

#endif  // ORMIDEX_CONVERT_KERNEL_ROWS_H_
