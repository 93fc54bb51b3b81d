// Pictures from files: PNG, JPEG, PGM and PPM.
#ifndef ORMIDEX_SIMULATOR_IMAGE_FILE_H_
#define ORMIDEX_SIMULATOR_IMAGE_FILE_H_

#include <cstddef>
#include <cstdint>

namespace ormidex::simulator {

// An image of 8-bit red, green and blue, rows top-down.
class ImageFile {
 public:
  ImageFile() = default;
  ~ImageFile();
  ImageFile(const ImageFile&) = delete;
  ImageFile& operator=(const ImageFile&) = delete;

  bool Load(const char* path);
  int Width() const { return width_; }
  int Height() const { return height_; }
  const std::uint8_t* Pixel(int x, int y) const {
    return pixels_ + (static_cast<std::size_t>(y) * static_cast<std::size_t>(width_) +
                      static_cast<std::size_t>(x)) *
                         3;
  }

 private:
  std::uint8_t* pixels_ = nullptr;
  int width_ = 0;
  int height_ = 0;
};

}  // namespace ormidex::simulator

#endif  // ORMIDEX_SIMULATOR_IMAGE_FILE_H_
