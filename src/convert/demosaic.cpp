// From an algorithm code to its routine.
#include "convert/bilinear.h"
#include "convert/convert.h"
#include "convert/routines.h"
#include "convert/samples.h"

namespace ormidex::convert {
namespace {

template <typename Form>
Status Demosaic(const Frame<Form>& frame, std::uint32_t algorithm, std::uint32_t bayer_phase,
                Rounding rounding) {
  switch (algorithm) {
    case kBilinear:
      Bilinear(frame, bayer_phase, rounding);
      return kOk;
    case kReplication:
      Replicate(frame);
      return kOk;
    case kEdgeBilinear:
      EdgeBilinear(frame);
      return kOk;
    case kEdgePlane:
      return EdgePlane(frame);
    case kLaplacianPlane:
      return LaplacianPlane(frame);
    case kVariableGradients:
      VariableGradients(frame);
      return kOk;
    case kGreyHorizontal:
      GreyFromHorizontalGreen(frame);
      return kOk;
    case kGreyEdge:
      GreyFromEdgeGreen(frame);
      return kOk;
    case kGreyLaplacian:
      GreyFromLaplacianGreen(frame);
      return kOk;
    default:
      ShowMosaic(frame);
      return kOk;
  }
}

}  // namespace

Status DemosaicTo24From8(const std::uint8_t* source, std::uint32_t width, std::uint32_t height,
                         std::uint8_t* destination, std::uint32_t algorithm,
                         std::uint32_t bayer_phase) {
  return Demosaic(Frame<Form8To24>{source, destination, width, height}, algorithm, bayer_phase,
                  RoundingFor8Bit(width));
}

Status DemosaicTo24From16(const std::uint8_t* source, std::uint32_t width, std::uint32_t height,
                          std::uint8_t* destination, std::uint32_t algorithm,
                          std::uint32_t bayer_phase) {
  return Demosaic(Frame<Form16To24>{source, destination, width, height}, algorithm, bayer_phase,
                  RoundingFor16Bit(width));
}

Status DemosaicTo48From16(const std::uint8_t* source, std::uint32_t width, std::uint32_t height,
                          std::uint8_t* destination, std::uint32_t algorithm,
                          std::uint32_t bayer_phase) {
  return Demosaic(Frame<Form16To48>{source, destination, width, height}, algorithm, bayer_phase,
                  Rounding::kPortable);
}

}  // namespace ormidex::convert
