// Code 1: bilinear interpolation, the conversion of live pictures.
#ifndef ORMIDEX_CONVERT_BILINEAR_H_
#define ORMIDEX_CONVERT_BILINEAR_H_

#include <cstdint>

#include "convert/samples.h"

namespace ormidex::convert {

// How means of two and four neighbours are rounded. The three differ by at most 1
// and the difference is kept: an application compares pictures with ones that the
// same kind of processor made before.
enum class Rounding {
  kPortable,  // a sum of four divided by 4, a sum of two by 2
  kMmx,       // means of two rounded down; of four: the mean of two such means
  kExtended,  // means of two rounded up; of four: the mean, rounded down, of two such means
};

// The rounding for 8-bit samples, and for the high bytes of 16-bit samples, by the
// frame width and what the processor says of itself at this call.
Rounding RoundingFor8Bit(std::size_t width);
Rounding RoundingFor16Bit(std::size_t width);

template <typename Form>
void Bilinear(const Frame<Form>& frame, std::uint32_t bayer_phase, Rounding rounding);

extern template void Bilinear(const Frame<Form8To24>&, std::uint32_t, Rounding);
extern template void Bilinear(const Frame<Form16To24>&, std::uint32_t, Rounding);
extern template void Bilinear(const Frame<Form16To48>&, std::uint32_t, Rounding);

}  // namespace ormidex::convert

#endif  // ORMIDEX_CONVERT_BILINEAR_H_
