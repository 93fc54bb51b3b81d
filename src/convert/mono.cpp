#include "convert/convert.h"
#include "convert/samples.h"

namespace ormidex::convert {
namespace {

template <typename Form>
void Expand(const Frame<Form>& frame) {
  for (std::size_t y = 0; y < frame.height; ++y) {
    const std::uint8_t* row = frame.SourceRow(y);
    std::uint8_t* image_row = frame.ImageRow(y);
    for (std::size_t x = 0; x < frame.width; ++x) {
      const Sample grey = Form::Load(row, x);
      StorePixel<Form>(image_row, x, {grey, grey, grey});
    }
  }
}

}  // namespace

void ExpandMono8(const std::uint8_t* source, std::uint32_t width, std::uint32_t height,
                 std::uint8_t* destination) {
  Expand(Frame<Form8To24>{source, destination, width, height});
}

void ExpandMono16(const std::uint8_t* source, std::uint32_t width, std::uint32_t height,
                  std::uint8_t* destination) {
  Expand(Frame<Form16To24>{source, destination, width, height});
}

}  // namespace ormidex::convert
