// Bytes of a device-independent bitmap file: a file header, an information header, a
// colour table for the grey forms, the pixels.
#ifndef ORMIDEX_FILES_BITMAP_H_
#define ORMIDEX_FILES_BITMAP_H_

#include <cstddef>
#include <cstdint>

#include "files/state.h"

namespace ormidex::files {

// The first 14 bytes of the file; not a multiple of four, hence bytes.
struct BitmapFileHeader {
  std::uint8_t bytes[14];
};

// pixel_offset: where the pixels begin; pixel_bytes: how many follow.
BitmapFileHeader MakeBitmapFileHeader(std::uint32_t pixel_offset, std::uint32_t pixel_bytes);

struct ColourEntry {
  std::uint8_t blue;
  std::uint8_t green;
  std::uint8_t red;
  std::uint8_t unused;
};
static_assert(sizeof(ColourEntry) == 4);

// What stands between the file header and the pixels of a grey file.
template <std::size_t kColours>
struct GreyHeader {
  BitmapInfoHeader info;
  ColourEntry colours[kColours];
};
using Grey8Header = GreyHeader<256>;
using Grey16Header = GreyHeader<1024>;
static_assert(sizeof(Grey8Header) == 1064 && sizeof(Grey16Header) == 4136);

// Fill the header of a grey file from that of the session's 24-bit images.
void FillGrey8Header(const BitmapInfoHeader& session_header, Grey8Header* header);
void FillGrey16Header(const BitmapInfoHeader& session_header, Grey16Header* header);

// Moves the upper 10 bits of left-aligned 16-bit little-endian samples down to bits 0
// to 9. A last odd byte counts as the low byte of a sample whose high byte is 0.
void MoveTenBitsDown(const std::uint8_t* samples, std::size_t bytes, std::uint8_t* result);

inline constexpr std::uint32_t kRgbPixelOffset =
    sizeof(BitmapFileHeader) + sizeof(BitmapInfoHeader);
inline constexpr std::uint32_t kGrey8PixelOffset = sizeof(BitmapFileHeader) + sizeof(Grey8Header);
inline constexpr std::uint32_t kGrey16PixelOffset = sizeof(BitmapFileHeader) + sizeof(Grey16Header);
static_assert(kRgbPixelOffset == 54 && kGrey8PixelOffset == 1078 && kGrey16PixelOffset == 4150);

}  // namespace ormidex::files

#endif  // ORMIDEX_FILES_BITMAP_H_
