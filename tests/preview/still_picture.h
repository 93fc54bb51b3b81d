// A driver whose frames are all the same picture, and what the screen should show.
#ifndef ORMIDEX_TESTS_PREVIEW_STILL_PICTURE_H_
#define ORMIDEX_TESTS_PREVIEW_STILL_PICTURE_H_

#include <vector>

#include "device/session.h"
#include "preview/frame_source.h"

namespace ormidex::testing {

// Neighbouring samples differ, and so do rows and columns.
inline std::uint8_t SampleOf(std::size_t index) {
  return static_cast<std::uint8_t>((index * 2654435761u) >> 13);
}

class StillPicture : public FrameSource {
 public:
  bool Control(device::DriverHandle handle, const device::DriverRequest& request,
               std::uint32_t* returned) override {
    if (!FrameSource::Control(handle, request, returned)) return false;
    if (request.code != device::CAM_IOCTL_READ_FRAME) return true;
    auto* bytes = static_cast<std::uint8_t*>(request.out);
    for (std::size_t i = 0; i < request.out_bytes; ++i) bytes[i] = SampleOf(i);
    return true;
  }
};

struct Colour {
  std::uint32_t red = 0;
  std::uint32_t green = 0;
  std::uint32_t blue = 0;
};

// The picture in a client area of this size: of each pixel the nearest of the frame
// towards the upper left, rows from the top.
inline std::vector<Colour> ExpectedPicture(device::CameraSession& session, int width, int height) {
  const auto frame_width = static_cast<std::size_t>(session.geometry.width);
  const auto frame_height = static_cast<std::size_t>(session.geometry.height);
  std::vector<std::uint8_t> raw(session.geometry.frame_bytes);
  for (std::size_t i = 0; i < raw.size(); ++i) raw[i] = SampleOf(i);
  std::vector<std::uint8_t> rgb(frame_width * frame_height * 3);
  session.ConvertRawTo24Bpp(raw.data(), rgb.data(), session.preview.conversion.load());
  std::vector<Colour> expected;
  for (int y = 0; y < height; ++y) {
    for (int x = 0; x < width; ++x) {
      const auto row =
          static_cast<std::size_t>(y) * frame_height / static_cast<std::size_t>(height);
      const auto column =
          static_cast<std::size_t>(x) * frame_width / static_cast<std::size_t>(width);
      const std::uint8_t* bgr = rgb.data() + ((frame_height - 1 - row) * frame_width + column) * 3;
      expected.push_back({bgr[2], bgr[1], bgr[0]});
    }
  }
  return expected;
}

}  // namespace ormidex::testing

#endif  // ORMIDEX_TESTS_PREVIEW_STILL_PICTURE_H_
