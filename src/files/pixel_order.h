// From the library's order of pixels (blue, green, red; rows bottom-up) to that of
// most file formats (red, green, blue; rows top-down).
#ifndef ORMIDEX_FILES_PIXEL_ORDER_H_
#define ORMIDEX_FILES_PIXEL_ORDER_H_

#include <cstddef>
#include <cstdint>

namespace ormidex::files {

// Exchanges the first and third channel of `pixels` pixels on their way from source
// to destination, which must not overlap.
using SwapRow = void (*)(const std::uint8_t* source, std::uint8_t* destination, std::size_t pixels);

// The fastest routine that the processor has; 3 bytes or 3 words a pixel.
SwapRow FindSwapRow24();
SwapRow FindSwapRow48();

void SwapRow24Portable(const std::uint8_t* source, std::uint8_t* destination, std::size_t pixels);
void SwapRow48Portable(const std::uint8_t* source, std::uint8_t* destination, std::size_t pixels);
void SwapRow24Ssse3(const std::uint8_t* source, std::uint8_t* destination, std::size_t pixels);
void SwapRow48Ssse3(const std::uint8_t* source, std::uint8_t* destination, std::size_t pixels);

// A whole image: row r of the destination is row height - 1 - r of the source.
// Not wide: 3 bytes a pixel; wide: 6.
void MakeTopDownRgb(const std::uint8_t* source, std::uint32_t width, std::uint32_t height,
                    bool wide, std::uint8_t* destination);

}  // namespace ormidex::files

#endif  // ORMIDEX_FILES_PIXEL_ORDER_H_
