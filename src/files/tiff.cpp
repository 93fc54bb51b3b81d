#include "files/tiff.h"

#include <algorithm>
#include <cstring>

#include "convert/convert.h"
#include "device/session.h"
#include "files/image_size.h"
#include "files/output_file.h"
#include "files/overlay.h"
#include "files/pixel_order.h"
#include "platform/memory.h"

namespace ormidex::files {

namespace {

enum TiffTag : std::uint16_t {
  kNewSubfileType = 254,
  kImageWidth = 256,
  kImageLength = 257,
  kBitsPerSample = 258,
  kCompression = 259,
  kPhotometricInterpretation = 262,
  kStripOffsets = 273,
  kSamplesPerPixel = 277,
  kRowsPerStrip = 278,
  kStripByteCounts = 279,
  kResolutionUnit = 296,
};

constexpr TiffEntry ShortEntry(TiffTag tag, std::uint32_t value) {
  return {tag, 3, 1, value & 0xFFFFu};
}
constexpr TiffEntry LongEntry(TiffTag tag, std::uint32_t value) { return {tag, 4, 1, value}; }

constexpr std::uint32_t kUncompressed = 1;
constexpr std::uint32_t kBlackIsZero = 1;
constexpr std::uint32_t kRgb = 2;
constexpr std::uint32_t kNoUnit = 1;

}  // namespace

// BitsPerSample has one value even for three samples a pixel, and strip offset and
// rows are SHORT, deliberately: files are compared byte for byte, and readers take
// the one value for all samples.
TiffHeader MakeTiffHeader(std::uint32_t width, std::uint32_t height, TiffForm form) {
  const bool colour = form.samples_per_pixel == 3;
  const TiffEntry entries[kTiffEntries] = {
      LongEntry(kNewSubfileType, 0),
      LongEntry(kImageWidth, width),
      LongEntry(kImageLength, height),
      ShortEntry(kBitsPerSample, form.bits_per_sample),
      ShortEntry(kCompression, kUncompressed),
      ShortEntry(kPhotometricInterpretation, colour ? kRgb : kBlackIsZero),
      ShortEntry(kStripOffsets, sizeof(TiffHeader)),
      ShortEntry(kSamplesPerPixel, form.samples_per_pixel),
      ShortEntry(kRowsPerStrip, height),
      LongEntry(kStripByteCounts, width * height * TiffBytesPerPixel(form)),
      ShortEntry(kResolutionUnit, kNoUnit),
  };
  TiffHeader header;
  std::memcpy(header.entries, entries, sizeof(entries));
  return header;
}

}  // namespace ormidex::files

namespace ormidex::device {

namespace {

using files::OverlayFormat;
using platform::Buffer;

// Rows are put into the file's order in pieces of this size, which stay in the cache.
constexpr std::size_t kBandBytes = 64 * 1024;

// What one file takes of memory. Fresh memory costs more time than all the rest, so
// there is none that is not needed.
struct TiffBuffers {
  Buffer image;  // colour: demosaiced; monochrome: the copy that the overlay draws into
  Buffer band;   // colour: some rows as the file wants them

  bool Allocate(const imager::GeometryState& geometry, bool colour) {
    if (!colour) {
      image = Buffer::Uncleared(geometry.frame_bytes);
      return static_cast<bool>(image);
    }
    const std::size_t pixel_bytes = geometry.bytes_per_pixel == 2 ? 6 : 3;
    image = Buffer::Uncleared(std::size_t{geometry.width} * geometry.height * pixel_bytes);
    band = Buffer::Uncleared(std::max(kBandBytes, geometry.width * pixel_bytes));
    return image && band;
  }
  void Leak() {
    image.Leak();
    band.Leak();
  }
};

struct ColourCorrection {
  bool wanted = false;
  std::int32_t amount = 0;
};

void WriteHeader(const imager::GeometryState& geometry, files::TiffForm form,
                 files::OutputFile& file) {
  const auto header = files::MakeTiffHeader(geometry.width, geometry.height, form);
  file.Write(&header, sizeof(header));
}

// Correcting and reordering work on each pixel alone, so they can be done by bands.
void WriteReordered(CameraSession& session, const TiffBuffers& buffers, bool wide,
                    const ColourCorrection& correction, files::OutputFile& file) {
  const std::uint32_t width = session.geometry.width;
  const std::uint32_t height = session.geometry.height;
  const std::size_t row_bytes = std::size_t{width} * (wide ? 6 : 3);
  if (row_bytes == 0) return;
  const std::size_t band_rows = std::max<std::size_t>(kBandBytes / row_bytes, 1);
  for (std::uint32_t left = height; left != 0;) {
    const auto rows = static_cast<std::uint32_t>(std::min<std::size_t>(band_rows, left));
    left -= rows;
    // The band that comes next in the file lies at the end of what is left.
    files::MakeTopDownRgb(buffers.image.Bytes() + left * row_bytes, width, rows, wide,
                          buffers.band.Bytes());
    if (correction.wanted) {
      session.ColorCorrectRgb(width, rows, buffers.band.Bytes(), correction.amount, wide ? 1 : 0);
    }
    file.Write(buffers.band.Bytes(), rows * row_bytes);
  }
}

// The overlay draws into the image as the conversions make it, bottom-up and blue
// first, which is what its callers know.
Status WriteColour(CameraSession& session, const std::uint8_t* frame, std::uint32_t option,
                   const ColourCorrection& correction, const TiffBuffers& buffers,
                   files::OutputFile& file) {
  const imager::GeometryState& geometry = session.geometry;
  const bool wide = geometry.bytes_per_pixel == 2;
  const auto demosaic =
      wide ? &CameraSession::ConvertColor16BppTo48Bpp : &CameraSession::ConvertColor8BppTo24Bpp;
  const Status status =
      (session.*demosaic)(frame, geometry.width, geometry.height, buffers.image.Bytes(), option);
  if (status != kOk) return status;  // no memory for the algorithm's own plane
  files::DrawSavingOverlay(session, buffers.image.Bytes(),
                           wide ? OverlayFormat::kRgb48 : OverlayFormat::kRgb24);
  WriteHeader(geometry, {wide ? 16u : 8u, 3}, file);
  WriteReordered(session, buffers, wide, correction, file);
  return kOk;
}

// The caller's frame is not drawn into; without an overlay it needs no copy.
void WriteMonochrome(CameraSession& session, const void* frame, const TiffBuffers& buffers,
                     files::OutputFile& file) {
  const imager::GeometryState& geometry = session.geometry;
  const void* pixels = frame;
  if (files::HasSavingOverlay(session)) {
    std::memcpy(buffers.image.Bytes(), frame, geometry.frame_bytes);
    files::DrawSavingOverlay(session, buffers.image.Bytes(),
                             static_cast<OverlayFormat>(geometry.bytes_per_pixel));
    pixels = buffers.image.Bytes();
  }
  WriteHeader(geometry, {8 * geometry.bytes_per_pixel, 1}, file);
  file.Write(pixels, geometry.frame_bytes);
}

}  // namespace

Status CameraSession::SaveFrameAsTiff(const void* frame, const char* path,
                                      std::uint32_t colour_correct, std::int32_t amount,
                                      std::uint32_t option) {
  if (!HasDevice()) return kNoCamera;
  if (path == nullptr || frame == nullptr) return kNullPointer;
  if (!convert::IsConversionCode(option)) return kOutOfRange;
  const std::uint32_t channel_bytes = geometry.bytes_per_pixel == 1 ? 1 : 2;
  if (!files::FitsInMemory(geometry.width, geometry.height, 3 * channel_bytes)) {
    return kOutOfMemory;
  }
  const bool colour = identity.imager_type == kImagerColour;
  TiffBuffers buffers;
  if (!buffers.Allocate(geometry, colour)) {
    buffers.Leak();  // those that could be had are kept, deliberately: see docs/files.md
    return kOutOfMemory;
  }
  files::OutputFile file(path);
  if (!file) return kFileNotOpened;
  if (colour) {
    return WriteColour(*this, static_cast<const std::uint8_t*>(frame), option,
                       {colour_correct != 0, amount}, buffers, file);
  }
  WriteMonochrome(*this, frame, buffers, file);
  return kOk;
}

}  // namespace ormidex::device
