// Where the rows of a conversion are written.
#ifndef ORMIDEX_CONVERT_ROW_TARGET_H_
#define ORMIDEX_CONVERT_ROW_TARGET_H_

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>

#include "convert/tiers.h"

namespace ormidex::convert {

// From this size on an image does not stay in a processor core's own cache, of 1 or 2 MiB,
// between its rows, and the next output row is fetched while one is computed.
inline constexpr std::size_t kPrefetchFromBytes = std::size_t{3} << 19;
// From this size on it does not stay in any cache: fetching its lines only to overwrite
// them costs more than writing past the caches. What a virtual machine says of its
// caches is no guide, so both sizes are fixed.
inline constexpr std::size_t kStreamFromBytes = std::size_t{24} << 20;

// Hands out the places of rows. Those of a very large image are made in a buffer first
// and moved past the caches while the next ones are made: such stores need aligned
// places, which rows seldom have.
class RowTarget {
 public:
  // Columns before and after what belongs to a row are written, too.
  static constexpr std::size_t kPartOfRow = SIZE_MAX;

  // `row_bytes` are written for a row, of an image of `image_bytes`.
  RowTarget(const Kernels& kernels, std::size_t image_bytes, std::size_t row_bytes)
      : kernels_(kernels),
        row_bytes_(row_bytes),
        streams_(image_bytes >= kStreamFromBytes && row_bytes <= kRowBytes),
        prefetches_(image_bytes >= kPrefetchFromBytes && !streams_) {}
  RowTarget(const RowTarget&) = delete;
  RowTarget& operator=(const RowTarget&) = delete;
  ~RowTarget() {
    if (streams_) {
      EndStream();
      kernels_.end_stream();
    }
  }

  // Whether kernels can write all rows past the caches themselves: in steps along a row
  // from some pixel on they meet places that are aligned, and do so in the next row, too.
  // Vectors must fill a line, or the lines of both rows are stored by halves.
  bool TakesDirectly(const std::uint8_t* out) const {
    return streams_ && kernels_.vector_bytes == kAlignment &&
           reinterpret_cast<std::uintptr_t>(out) % 4 == 0 && row_bytes_ % kAlignment == 0;
  }
  // Where to write `rows` rows, one or two, that belong at `out` one after the other.
  std::uint8_t* Begin(std::uint8_t* out, std::size_t rows) {
    if (!streams_) {
      return out;
    }
    out_ = out;
    bytes_ = rows * row_bytes_;
    // The lines that the ends share with other rows go through the cache: wanted soon.
    __builtin_prefetch(out, 1);
    __builtin_prefetch(out + bytes_ - 1, 1);
    return rows_[slot_];
  }
  // The same for one row that a kernel writes past the caches itself.
  std::uint8_t* BeginDirectly(std::uint8_t* out) const {
    __builtin_prefetch(out - row_bytes_, 1);
    __builtin_prefetch(out - 1, 1);
    return out;
  }
  // What was begun is complete.
  void Finish() {
    if (streams_) {
      EndStream();
      StartStream();
      slot_ = 1 - slot_;
    }
  }
  // For the kernels, to move on while they work; or null.
  Stream* Underway() { return streams_ ? &stream_ : nullptr; }
  bool Streams() const { return streams_; }
  bool Prefetches() const { return prefetches_; }
  std::size_t RowBytes() const { return row_bytes_; }

 private:
  // A row of 4096 pixels of 6 bytes.
  static constexpr std::size_t kRowBytes = 24576;
  static constexpr std::size_t kAlignment = 64;

  void StartStream() {
    const std::size_t head =
        std::min(bytes_, (0 - reinterpret_cast<std::uintptr_t>(out_)) % kAlignment);
    std::memcpy(out_, rows_[slot_], head);
    stream_ = {rows_[slot_] + head, out_ + head, bytes_ - head};
  }
  // What the kernels left of it.
  void EndStream() {
    if (stream_.bytes > 0) {
      kernels_.stream_bytes(stream_.from, stream_.bytes, stream_.to);
    }
    stream_.bytes = 0;
  }

  const Kernels& kernels_;
  std::size_t row_bytes_;
  bool streams_;
  bool prefetches_;
  std::uint8_t* out_ = nullptr;
  std::size_t bytes_ = 0;
  std::size_t slot_ = 0;
  Stream stream_{};
  // Half a page apart: a load looks like it depended on a store at the same place of
  // another page.
  alignas(kAlignment) std::uint8_t rows_[2][2 * kRowBytes + 2048];
};

}  // namespace ormidex::convert

#endif  // ORMIDEX_CONVERT_ROW_TARGET_H_
