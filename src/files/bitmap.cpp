#include "files/bitmap.h"

#include <algorithm>
#include <bit>
#include <cstring>

#include "device/session.h"
#include "files/output_file.h"
#include "files/overlay.h"
#include "platform/memory.h"

namespace ormidex::files {

BitmapFileHeader MakeBitmapFileHeader(std::uint32_t pixel_offset, std::uint32_t pixel_bytes) {
  const std::uint32_t file_bytes = pixel_offset + pixel_bytes;
  BitmapFileHeader header = {{'B', 'M'}};
  std::memcpy(header.bytes + 2, &file_bytes, sizeof(file_bytes));
  std::memcpy(header.bytes + 10, &pixel_offset, sizeof(pixel_offset));
  return header;
}

namespace {

// With more than 256 colours the ramp begins anew, deliberately: viewers of the
// 16-bit form have always shown the low eight of the ten bits with it.
template <std::size_t kColours>
void FillGreyRamp(ColourEntry (&colours)[kColours]) {
  for (std::size_t i = 0; i < kColours; ++i) {
    const auto grey = static_cast<std::uint8_t>(i);
    colours[i] = {grey, grey, grey, 0};
  }
}

}  // namespace

// The image size stays that of the 24-bit image, deliberately: readers of these files
// take the number of bytes from the file header.
void FillGrey8Header(const BitmapInfoHeader& session_header, Grey8Header* header) {
  header->info = session_header;
  header->info.bits_per_pixel = 8;
  FillGreyRamp(header->colours);
}

void FillGrey16Header(const BitmapInfoHeader& session_header, Grey16Header* header) {
  header->info = session_header;
  header->info.bits_per_pixel = 16;
  header->info.compression = 0;
  header->info.colours_used = 1024;
  FillGreyRamp(header->colours);
}

void MoveTenBitsDown(const std::uint8_t* samples, std::size_t bytes, std::uint8_t* result) {
  static_assert(std::endian::native == std::endian::little);
  const std::size_t whole = bytes & ~std::size_t{1};
  for (std::size_t i = 0; i < whole; i += 2) {
    std::uint16_t sample;
    std::memcpy(&sample, samples + i, sizeof(sample));
    sample = static_cast<std::uint16_t>(sample >> 6);
    std::memcpy(result + i, &sample, sizeof(sample));
  }
  if (whole != bytes) result[whole] = static_cast<std::uint8_t>(samples[whole] >> 6);
}

}  // namespace ormidex::files

namespace ormidex::device {

using files::OutputFile;
using files::OverlayFormat;

Status CameraSession::SaveFrameAsBitmap(void* image, const char* path) {
  if (!HasDevice()) return kNoCamera;
  if (path == nullptr || image == nullptr) return kNullPointer;
  files::DrawSavingOverlay(*this, image, OverlayFormat::kRgb24);
  OutputFile file(path);
  if (!file) return kFileNotOpened;
  const auto header = files::MakeBitmapFileHeader(files::kRgbPixelOffset, geometry.rgb_bytes);
  file.Write(&header, sizeof(header));
  file.Write(&bitmap_header, sizeof(bitmap_header));
  file.Write(image, geometry.rgb_bytes);
  return kOk;
}

// Without memory for the header nothing is written and the status is 0, deliberately:
// applications that save in a loop go on to the next frame.
Status CameraSession::SaveFrameAsMono8(void* frame, const char* path) {
  if (!HasDevice()) return kNoCamera;
  if (path == nullptr || frame == nullptr) return kNullPointer;
  files::DrawSavingOverlay(*this, frame, OverlayFormat::kGrey8);
  platform::Buffer memory(sizeof(files::Grey8Header));
  if (!memory) return kOk;
  auto* header = reinterpret_cast<files::Grey8Header*>(memory.Bytes());
  files::FillGrey8Header(bitmap_header, header);
  OutputFile file(path);
  if (!file) {
    memory.Leak();  // kept on this path, deliberately: see docs/files.md
    return kFileNotOpened;
  }
  const auto file_header =
      files::MakeBitmapFileHeader(files::kGrey8PixelOffset, geometry.frame_bytes);
  file.Write(&file_header, sizeof(file_header));
  file.Write(header, sizeof(*header));
  file.Write(frame, geometry.frame_bytes);
  return kOk;
}

namespace {

// The pixels of a 16-bit grey file. The buffer has room for the whole frame, but
// touching fresh memory costs more than converting: the whole frame is converted into
// it only when it must be kept from what the overlay draws, else some at a time.
class Grey16Pixels {
 public:
  Grey16Pixels(const void* frame, std::uint32_t bytes)
      : frame_(static_cast<const std::uint8_t*>(frame)),
        bytes_(bytes),
        buffer_(platform::Buffer::Uncleared(bytes)) {}

  bool HasBuffer() const { return static_cast<bool>(buffer_); }
  void Leak() { buffer_.Leak(); }
  void ConvertNow() {
    files::MoveTenBitsDown(frame_, bytes_, buffer_.Bytes());
    converted_ = true;
  }
  template <std::size_t kPieceBytes>
  void WriteTo(OutputFile& file, std::uint8_t (&piece)[kPieceBytes]) const {
    if (converted_) return file.Write(buffer_.Bytes(), bytes_);
    for (std::size_t done = 0; done < bytes_; done += kPieceBytes) {
      const std::size_t count = std::min(kPieceBytes, bytes_ - done);
      files::MoveTenBitsDown(frame_ + done, count, piece);
      file.Write(piece, count);
    }
  }

 private:
  const std::uint8_t* frame_;
  std::size_t bytes_;
  platform::Buffer buffer_;
  bool converted_ = false;
};

// One allocation that the C library serves from memory in use, not from fresh pages.
struct Grey16Memory {
  files::Grey16Header header;
  std::uint8_t piece[96 * 1024];
};

Status WriteGrey16(const CameraSession& session, const Grey16Pixels& pixels, const char* path) {
  auto memory = platform::Buffer::Uncleared(sizeof(Grey16Memory));
  if (!memory) return kOk;  // silent, deliberately: as in the 8-bit form
  auto& work = *reinterpret_cast<Grey16Memory*>(memory.Bytes());
  files::FillGrey16Header(session.bitmap_header, &work.header);
  OutputFile file(path);
  if (!file) return kFileNotOpened;
  const auto file_header =
      files::MakeBitmapFileHeader(files::kGrey16PixelOffset, session.geometry.frame_bytes);
  file.Write(&file_header, sizeof(file_header));
  file.Write(&work.header, sizeof(work.header));
  pixels.WriteTo(file, work.piece);
  return kOk;
}

}  // namespace

// The overlay is called with the frame as it was given and with the format of a
// 24-bit image, deliberately: as the frame counts as converted already, what
// applications draw appears in their frame and not in the file.
Status CameraSession::SaveFrameAsMono16(void* frame, const char* path) {
  Grey16Pixels pixels(frame, geometry.frame_bytes);
  if (!HasDevice() || path == nullptr || frame == nullptr) {
    pixels.Leak();  // kept on these paths, deliberately: see docs/files.md
    return !HasDevice() ? kNoCamera : kNullPointer;
  }
  const bool has_buffer = pixels.HasBuffer();
  if (files::HasSavingOverlay(*this)) {
    if (has_buffer) pixels.ConvertNow();
    files::DrawSavingOverlay(*this, frame, OverlayFormat::kRgb24);
  }
  return has_buffer ? WriteGrey16(*this, pixels, path) : kOutOfMemory;
}

}  // namespace ormidex::device
