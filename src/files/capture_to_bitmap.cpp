// A still straight into a bitmap file.
#include <bit>

#include "device/session.h"
#include "files/image_size.h"
#include "platform/memory.h"

namespace ormidex::device {

Status CameraSession::CaptureFrameToBitmap(float exposure_time, std::uint32_t first_output_flag,
                                           std::uint32_t first_output_time_bits,
                                           std::uint32_t second_output_flag,
                                           std::uint32_t second_output_time_a_bits,
                                           std::uint32_t second_output_time_b_bits,
                                           const char* path, std::uint32_t colour_correct,
                                           std::int32_t amount, std::uint32_t option) {
  if (path == nullptr) return kNullPointer;
  if (!HasDevice()) return kNoCamera;
  if (!files::FitsInMemory(geometry.width, geometry.height, 3)) return kOutOfMemory;
  platform::Buffer raw(geometry.frame_bytes);
  if (!raw) return kOutOfMemory;
  platform::Buffer rgb(geometry.rgb_bytes);
  if (!rgb) return kOutOfMemory;
  const Status captured = ReturnStillFrame(
      raw.Bytes(), exposure_time, first_output_flag, std::bit_cast<float>(first_output_time_bits),
      second_output_flag, std::bit_cast<float>(second_output_time_a_bits),
      std::bit_cast<float>(second_output_time_b_bits));
  if (captured != kOk) return captured;
  const Status converted = ConvertRawTo24Bpp(raw.Bytes(), rgb.Bytes(), option);
  if (converted != kOk) return converted;
  if (identity.imager_type == kImagerColour && colour_correct != 0) {
    ColorCorrectRgb(geometry.width, geometry.height, rgb.Bytes(), amount, 0);
  }
  return SaveFrameAsBitmap(rgb.Bytes(), path);
}

}  // namespace ormidex::device
