// The exported conversions: their checks, in order, then the pure routines.
#include "convert/convert.h"
#include "device/session.h"

namespace ormidex::device {
namespace {

using ColorRoutine = Status (*)(const std::uint8_t*, std::uint32_t, std::uint32_t, std::uint8_t*,
                                std::uint32_t, std::uint32_t);
using MonoRoutine = void (*)(const std::uint8_t*, std::uint32_t, std::uint32_t, std::uint8_t*);

Status ConvertColorTo24(const CameraSession& session, ColorRoutine routine,
                        const std::uint8_t* source, std::uint32_t width, std::uint32_t height,
                        std::uint8_t* destination, std::uint32_t algorithm) {
  if (!session.HasDevice()) {
    return kNoCamera;
  }
  if (source == nullptr || destination == nullptr) {
    return kNullPointer;
  }
  if (session.identity.imager_type != kImagerColour) {
    return kNotSupported;
  }
  if (!convert::IsConversionCode(algorithm)) {
    return kOutOfRange;
  }
  return routine(source, width, height, destination, algorithm, session.geometry.bayer_phase);
}

Status ConvertMono(const CameraSession& session, MonoRoutine routine, const std::uint8_t* source,
                   std::uint32_t width, std::uint32_t height, std::uint8_t* destination) {
  if (!session.HasDevice()) {
    return kNoCamera;
  }
  if (source == nullptr || destination == nullptr) {
    return kNullPointer;
  }
  if (session.identity.imager_type != kImagerMono) {
    return kNotSupported;
  }
  if (height == 0) {
    return kOk;
  }
  routine(source, width, height, destination);
  return kOk;
}

}  // namespace

Status CameraSession::ConvertColor8BppTo24Bpp(const std::uint8_t* source, std::uint32_t width,
                                              std::uint32_t height, std::uint8_t* destination,
                                              std::uint32_t algorithm) {
  return ConvertColorTo24(*this, convert::DemosaicTo24From8, source, width, height, destination,
                          algorithm);
}

Status CameraSession::ConvertColor16BppTo24Bpp(const std::uint8_t* source, std::uint32_t width,
                                               std::uint32_t height, std::uint8_t* destination,
                                               std::uint32_t algorithm) {
  return ConvertColorTo24(*this, convert::DemosaicTo24From16, source, width, height, destination,
                          algorithm);
}

// Deliberately fewer checks than its siblings, and 7 where they say 2: applications
// convert stored 16-bit frames with it on any session, whatever its imager and with
// no device open.
Status CameraSession::ConvertColor16BppTo48Bpp(const std::uint8_t* source, std::uint32_t width,
                                               std::uint32_t height, std::uint8_t* destination,
                                               std::uint32_t algorithm) {
  if (source == nullptr || destination == nullptr || !convert::IsConversionCode(algorithm)) {
    return kOutOfRange;
  }
  return convert::DemosaicTo48From16(source, width, height, destination, algorithm,
                                     geometry.bayer_phase);
}

Status CameraSession::ConvertMono8BppTo24Bpp(const std::uint8_t* source, std::uint32_t width,
                                             std::uint32_t height, std::uint8_t* destination) {
  return ConvertMono(*this, convert::ExpandMono8, source, width, height, destination);
}

Status CameraSession::ConvertMono16BppTo24Bpp(const std::uint8_t* source, std::uint32_t width,
                                              std::uint32_t height, std::uint8_t* destination) {
  return ConvertMono(*this, convert::ExpandMono16, source, width, height, destination);
}

Status CameraSession::ColorCorrectRgb(std::uint32_t width, std::uint32_t height, void* image,
                                      std::int32_t amount, std::uint32_t wide) {
  if (!HasDevice()) {
    return kNoCamera;
  }
  if (image == nullptr) {
    return kNullPointer;
  }
  if (identity.imager_type == kImagerMono) {
    return kNotSupported;
  }
  // The size is counted in 32 bits, so an absurd one wraps to a small number of
  // pixels instead of running past the buffer.
  const std::uint32_t channels = width * height * 3u;
  if (channels == 0) {
    return kOk;
  }
  const bool wide_pixels = geometry.bytes_per_pixel != 1 && wide != 0;
  convert::ColorCorrect(image, (channels + 2u) / 3u, amount, wide_pixels);
  return kOk;
}

}  // namespace ormidex::device
