// Conversion of raw frames into RGB images, and colour correction of images.
//
// Pure functions on the caller's buffers: no session, no state, one thread (the
// caller's). Any number of conversions may run at once on different buffers.
//
// Raw frame: width x height samples, rows top-down, no padding. 16-bit samples are
// little-endian with the significant bits on top; no alignment is needed.
// RGB image: blue, green, red; rows bottom-up, no padding; 3 bytes a pixel, or three
// little-endian 16-bit words. The buffers must hold those sizes and not overlap.
//
// Advice on speed: reuse the destination. Memory that was never touched costs the
// operating system about ten times the time of the conversion itself.
#ifndef ORMIDEX_CONVERT_CONVERT_H_
#define ORMIDEX_CONVERT_CONVERT_H_

#include <cstddef>
#include <cstdint>

#include "frame/status.h"

namespace ormidex::convert {

enum AlgorithmCode : std::uint32_t {
  kReplication = 0,
  kBilinear = 1,
  kEdgeBilinear = 2,
  kEdgePlane = 3,
  kLaplacianPlane = 4,
  kVariableGradients = 5,
  kGreyHorizontal = 16,
  kGreyEdge = 17,
  kGreyLaplacian = 18,
  kRawMosaic = 255,
};

// Whether the code names an algorithm.
constexpr bool IsConversionCode(std::uint32_t code) {
  return code <= 5 || (code >= 16 && code <= 18) || code == kRawMosaic;
}

// Demosaics a frame. `algorithm` must satisfy IsConversionCode. `bayer_phase` is 0
// (red first), 1 (green, red first) or anything else (blue first); only the
// bilinear code looks at it, the others take the frame as phase 0, deliberately.
// Returns kOk, or kOutOfMemory with an untouched destination (codes 3 and 4).
Status DemosaicTo24From8(const std::uint8_t* source, std::uint32_t width, std::uint32_t height,
                         std::uint8_t* destination, std::uint32_t algorithm,
                         std::uint32_t bayer_phase);
// As above; reads the high byte of each 16-bit sample.
Status DemosaicTo24From16(const std::uint8_t* source, std::uint32_t width, std::uint32_t height,
                          std::uint8_t* destination, std::uint32_t algorithm,
                          std::uint32_t bayer_phase);
// Whole 16-bit samples into 6 bytes a pixel.
Status DemosaicTo48From16(const std::uint8_t* source, std::uint32_t width, std::uint32_t height,
                          std::uint8_t* destination, std::uint32_t algorithm,
                          std::uint32_t bayer_phase);

// Monochrome frames into grey 24-bit images; the 16-bit form keeps the high bytes.
void ExpandMono8(const std::uint8_t* source, std::uint32_t width, std::uint32_t height,
                 std::uint8_t* destination);
void ExpandMono16(const std::uint8_t* source, std::uint32_t width, std::uint32_t height,
                  std::uint8_t* destination);

// Strengthens (amount > 0) or weakens the colours of `pixels` pixels in place.
// `wide`: three 16-bit words a pixel instead of three bytes.
void ColorCorrect(void* image, std::size_t pixels, std::int32_t amount, bool wide);

}  // namespace ormidex::convert

#endif  // ORMIDEX_CONVERT_CONVERT_H_
