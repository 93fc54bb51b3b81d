// Compiled for processors with SSSE3; called only where the processor has it.
#include <tmmintrin.h>

#include "files/pixel_order.h"

namespace ormidex::files {

// 16 bytes are loaded and stored but only whole pixels of them count; the next round
// writes over the rest. So the last bytes of a row are left to the portable routine.
void SwapRow24Ssse3(const std::uint8_t* source, std::uint8_t* destination, std::size_t pixels) {
  const __m128i order = _mm_setr_epi8(2, 1, 0, 5, 4, 3, 8, 7, 6, 11, 10, 9, 14, 13, 12, 15);
  for (; pixels >= 6; pixels -= 5, source += 15, destination += 15) {
    const __m128i in = _mm_loadu_si128(reinterpret_cast<const __m128i*>(source));
    _mm_storeu_si128(reinterpret_cast<__m128i*>(destination), _mm_shuffle_epi8(in, order));
  }
  SwapRow24Portable(source, destination, pixels);
}

void SwapRow48Ssse3(const std::uint8_t* source, std::uint8_t* destination, std::size_t pixels) {
  const __m128i order = _mm_setr_epi8(4, 5, 2, 3, 0, 1, 10, 11, 8, 9, 6, 7, 12, 13, 14, 15);
  for (; pixels >= 3; pixels -= 2, source += 12, destination += 12) {
    const __m128i in = _mm_loadu_si128(reinterpret_cast<const __m128i*>(source));
    _mm_storeu_si128(reinterpret_cast<__m128i*>(destination), _mm_shuffle_epi8(in, order));
  }
  SwapRow48Portable(source, destination, pixels);
}

}  // namespace ormidex::files
