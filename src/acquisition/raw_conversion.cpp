#include "device/session.h"

namespace ormidex::device {

Status CameraSession::ConvertRawTo24Bpp(const void* raw, void* rgb, std::uint32_t algorithm) {
  const auto* source = static_cast<const std::uint8_t*>(raw);
  auto* destination = static_cast<std::uint8_t*>(rgb);
  const std::uint32_t width = geometry.width;
  const std::uint32_t height = geometry.height;
  const bool wide = geometry.bytes_per_pixel == 2;
  if (identity.imager_type != kImagerColour) {
    return wide ? ConvertMono16BppTo24Bpp(source, width, height, destination)
                : ConvertMono8BppTo24Bpp(source, width, height, destination);
  }
  return wide ? ConvertColor16BppTo24Bpp(source, width, height, destination, algorithm)
              : ConvertColor8BppTo24Bpp(source, width, height, destination, algorithm);
}

}  // namespace ormidex::device
