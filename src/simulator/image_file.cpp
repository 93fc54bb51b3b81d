// The only file that sees the image decoder. Its vector code and its formats that
// nobody photographs with are left out, and so is its error text, whose
// thread-local storage the 32-bit Windows build would have to emulate.
#include "simulator/image_file.h"

#define STB_IMAGE_IMPLEMENTATION
#define STB_IMAGE_STATIC
#define STBI_NO_SIMD
#define STBI_ONLY_PNG
#define STBI_ONLY_JPEG
#define STBI_ONLY_PNM
#define STBI_NO_THREAD_LOCALS
#define STBI_NO_FAILURE_STRINGS
#include <stb_image.h>

namespace ormidex::simulator {

ImageFile::~ImageFile() { stbi_image_free(pixels_); }

bool ImageFile::Load(const char* path) {
  int channels = 0;
  pixels_ = stbi_load(path, &width_, &height_, &channels, 3);
  return pixels_ != nullptr && width_ > 0 && height_ > 0;
}

}  // namespace ormidex::simulator
