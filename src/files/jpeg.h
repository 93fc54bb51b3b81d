// JPEG files through libjpeg.
#ifndef ORMIDEX_FILES_JPEG_H_
#define ORMIDEX_FILES_JPEG_H_

#include <cstdint>

#include "frame/status.h"

namespace ormidex::files {

// Writes a 24-bit image (blue, green, red; rows bottom-up) as a baseline file of
// quality 95. kOutOfMemory, or kOk whatever became of the file.
Status WriteJpeg(const std::uint8_t* image, std::uint32_t width, std::uint32_t height,
                 const char* path);

}  // namespace ormidex::files

#endif  // ORMIDEX_FILES_JPEG_H_
