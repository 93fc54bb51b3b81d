// The routines behind the algorithm codes, one template per code over the three
// forms. All but the bilinear one take the frame as Bayer phase 0, deliberately:
// applications compensate for it themselves, and stored pictures depend on it.
#ifndef ORMIDEX_CONVERT_ROUTINES_H_
#define ORMIDEX_CONVERT_ROUTINES_H_

#include <cstdint>

#include "convert/samples.h"
#include "frame/status.h"

namespace ormidex::convert {

inline constexpr std::uint32_t kFixedPhase = 0;

template <typename Form>
void Replicate(const Frame<Form>& frame);  // code 0
template <typename Form>
void EdgeBilinear(const Frame<Form>& frame);  // code 2
template <typename Form>
Status EdgePlane(const Frame<Form>& frame);  // code 3
template <typename Form>
Status LaplacianPlane(const Frame<Form>& frame);  // code 4
template <typename Form>
void VariableGradients(const Frame<Form>& frame);  // code 5
template <typename Form>
void GreyFromHorizontalGreen(const Frame<Form>& frame);  // code 16
template <typename Form>
void GreyFromEdgeGreen(const Frame<Form>& frame);  // code 17
template <typename Form>
void GreyFromLaplacianGreen(const Frame<Form>& frame);  // code 18
template <typename Form>
void ShowMosaic(const Frame<Form>& frame);  // code 255

// For the file that defines a routine.
#define ORMIDEX_INSTANTIATE_FORMS(routine)         \
  template void routine(const Frame<Form8To24>&);  \
  template void routine(const Frame<Form16To24>&); \
  template void routine(const Frame<Form16To48>&);

}  // namespace ormidex::convert

#endif  // ORMIDEX_CONVERT_ROUTINES_H_
