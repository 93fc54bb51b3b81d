#include "files/bitmap.h"

#include <cstring>

#include "device/session.h"
#include "files/output_file.h"

namespace ormidex::files {

BitmapFileHeader MakeBitmapFileHeader(std::uint32_t pixel_offset, std::uint32_t pixel_bytes) {
  const std::uint32_t file_bytes = pixel_offset + pixel_bytes;
  BitmapFileHeader header = {{'B', 'M'}};
  std::memcpy(header.bytes + 2, &file_bytes, sizeof(file_bytes));
  std::memcpy(header.bytes + 10, &pixel_offset, sizeof(pixel_offset));
  return header;
}

}  // namespace ormidex::files

namespace ormidex::device {

namespace {

constexpr std::uint32_t kOverlayRgb24 = 3;

}  // namespace

Status CameraSession::SaveFrameAsBitmap(void* image, const char* path) {
  if (!HasDevice()) return kNoCamera;
  if (path == nullptr || image == nullptr) return kNullPointer;
  {
    platform::ScopedLock lock(image_lock);
    if (overlay.saving != nullptr) {
      overlay.saving(this, image, geometry.width, geometry.height, kOverlayRgb24);
    }
  }
  files::OutputFile file(path);
  if (!file) return kFileNotOpened;
  const auto header = files::MakeBitmapFileHeader(files::kRgbPixelOffset, geometry.rgb_bytes);
  file.Write(&header, sizeof(header));
  file.Write(&bitmap_header, sizeof(bitmap_header));
  file.Write(image, geometry.rgb_bytes);
  return kOk;
}

}  // namespace ormidex::device
