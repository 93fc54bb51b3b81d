#include "files/tiff.h"

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

struct TiffBuffers {
  Buffer demosaiced;  // as the conversion makes it
  Buffer reordered;   // as the file wants it
  Buffer copy;        // of a monochrome frame

  bool Allocate(std::uint32_t rgb_bytes, std::uint32_t frame_bytes) {
    demosaiced = Buffer::Uncleared(rgb_bytes);
    reordered = Buffer::Uncleared(rgb_bytes);
    copy = Buffer::Uncleared(frame_bytes);
    return demosaiced && reordered && copy;
  }
  void Leak() {
    demosaiced.Leak();
    reordered.Leak();
    copy.Leak();
  }
};

struct ColourCorrection {
  bool wanted = false;
  std::int32_t amount = 0;
};

void WriteTiff(const imager::GeometryState& geometry, files::TiffForm form, const void* pixels,
               files::OutputFile& file) {
  const auto header = files::MakeTiffHeader(geometry.width, geometry.height, form);
  const std::size_t pixel_count = std::size_t{geometry.width} * geometry.height;
  file.Write(&header, sizeof(header));
  file.Write(pixels, pixel_count * files::TiffBytesPerPixel(form));
}

// The overlay draws into the image as the conversions make it, bottom-up and blue
// first, which is what its callers know.
Status WriteColour(CameraSession& session, const std::uint8_t* frame, std::uint32_t option,
                   const ColourCorrection& correction, TiffBuffers& buffers,
                   files::OutputFile& file) {
  const imager::GeometryState& geometry = session.geometry;
  const bool wide = geometry.bytes_per_pixel == 2;
  const auto demosaic =
      wide ? &CameraSession::ConvertColor16BppTo48Bpp : &CameraSession::ConvertColor8BppTo24Bpp;
  const Status status = (session.*demosaic)(frame, geometry.width, geometry.height,
                                            buffers.demosaiced.Bytes(), option);
  if (status != kOk) return status;  // no memory for the algorithm's own plane
  files::DrawSavingOverlay(session, buffers.demosaiced.Bytes(),
                           wide ? OverlayFormat::kRgb48 : OverlayFormat::kRgb24);
  files::MakeTopDownRgb(buffers.demosaiced.Bytes(), geometry.width, geometry.height, wide,
                        buffers.reordered.Bytes());
  if (correction.wanted) {
    session.ColorCorrectRgb(geometry.width, geometry.height, buffers.reordered.Bytes(),
                            correction.amount, wide ? 1 : 0);
  }
  WriteTiff(geometry, {wide ? 16u : 8u, 3}, buffers.reordered.Bytes(), file);
  return kOk;
}

void WriteMonochrome(CameraSession& session, const void* frame, TiffBuffers& buffers,
                     files::OutputFile& file) {
  const imager::GeometryState& geometry = session.geometry;
  std::memcpy(buffers.copy.Bytes(), frame, geometry.frame_bytes);
  files::DrawSavingOverlay(session, buffers.copy.Bytes(),
                           static_cast<OverlayFormat>(geometry.bytes_per_pixel));
  WriteTiff(geometry, {8 * geometry.bytes_per_pixel, 1}, buffers.copy.Bytes(), file);
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
  TiffBuffers buffers;
  if (!buffers.Allocate(geometry.rgb_bytes * channel_bytes, geometry.frame_bytes)) {
    buffers.Leak();  // those that could be had are kept, deliberately: see docs/files.md
    return kOutOfMemory;
  }
  files::OutputFile file(path);
  if (!file) return kFileNotOpened;
  if (identity.imager_type == kImagerColour) {
    return WriteColour(*this, static_cast<const std::uint8_t*>(frame), option,
                       {colour_correct != 0, amount}, buffers, file);
  }
  WriteMonochrome(*this, frame, buffers, file);
  return kOk;
}

}  // namespace ormidex::device
