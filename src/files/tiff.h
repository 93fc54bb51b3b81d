// Bytes of an uncompressed little-endian TIFF file: a header with its directory, then
// the pixels in one strip.
#ifndef ORMIDEX_FILES_TIFF_H_
#define ORMIDEX_FILES_TIFF_H_

#include <cstddef>
#include <cstdint>

namespace ormidex::files {

// A 32-bit word where only 16-bit alignment can be had.
struct TiffWord {
  constexpr TiffWord() = default;
  constexpr TiffWord(std::uint32_t value)
      : low(static_cast<std::uint16_t>(value)), high(static_cast<std::uint16_t>(value >> 16)) {}
  std::uint16_t low = 0;
  std::uint16_t high = 0;
};

struct TiffEntry {
  std::uint16_t tag = 0;
  std::uint16_t type = 0;
  TiffWord count;
  TiffWord value;
};
static_assert(sizeof(TiffEntry) == 12 && offsetof(TiffEntry, value) == 8);

inline constexpr std::uint16_t kTiffEntries = 11;

struct TiffHeader {
  char byte_order[2] = {'I', 'I'};
  std::uint16_t magic = 42;
  TiffWord directory_offset = 8;
  std::uint16_t entry_count = kTiffEntries;
  TiffEntry entries[kTiffEntries];
  TiffWord next_directory = 0;
};
static_assert(sizeof(TiffHeader) == 146);
static_assert(offsetof(TiffHeader, entry_count) == 8 && offsetof(TiffHeader, entries) == 10 &&
              offsetof(TiffHeader, next_directory) == 142);

struct TiffForm {
  std::uint32_t bits_per_sample = 0;    // 8 or 16
  std::uint32_t samples_per_pixel = 0;  // 1 grey, 3 red-green-blue
};

constexpr std::uint32_t TiffBytesPerPixel(TiffForm form) {
  return form.bits_per_sample / 8 * form.samples_per_pixel;
}

// The size of the image must have been checked to fit into 32 bits.
TiffHeader MakeTiffHeader(std::uint32_t width, std::uint32_t height, TiffForm form);

}  // namespace ormidex::files

#endif  // ORMIDEX_FILES_TIFF_H_
