// Where the rows of a conversion are written.
#ifndef ORMIDEX_CONVERT_ROW_TARGET_H_
#define ORMIDEX_CONVERT_ROW_TARGET_H_

#include <cstddef>
#include <cstdint>

#include "convert/tiers.h"

namespace ormidex::convert {

// From this size on an image does not stay in a processor core's caches between its
// rows, and the next output row is fetched while one is computed.
inline constexpr std::size_t kPrefetchFromBytes = std::size_t{8} << 20;
// From this size on it does not stay in any cache: fetching its lines only to overwrite
// them costs more than writing past the caches. What a virtual machine says of its
// caches is no guide, so both sizes are fixed.
inline constexpr std::size_t kStreamFromBytes = std::size_t{24} << 20;

// Hands out the place of a row, or of two neighbouring ones. The rows of a very large
// image are made in a buffer first and copied past the caches when they are complete:
// such stores need aligned places, which the rows of an image seldom are.
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
      kernels_.end_stream();
    }
  }

  // Where to write what belongs at `out`; `slot` is 0, or 1 for the second of two rows.
  std::uint8_t* Begin(std::uint8_t* out, std::size_t slot) { return streams_ ? rows_[slot] : out; }
  void Finish(std::uint8_t* out, std::size_t slot) {
    if (streams_) {
      kernels_.stream_bytes(rows_[slot], row_bytes_, out);
    }
  }
  bool prefetches() const { return prefetches_; }

 private:
  // Two rows of 4096 pixels of 6 bytes.
  static constexpr std::size_t kRowBytes = 24576;

  const Kernels& kernels_;
  std::size_t row_bytes_;
  bool streams_;
  bool prefetches_;
  alignas(64) std::uint8_t rows_[2][kRowBytes];
};

}  // namespace ormidex::convert

#endif  // ORMIDEX_CONVERT_ROW_TARGET_H_
