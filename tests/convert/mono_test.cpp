#include "convert/pictures.h"

namespace ormidex::convert {
namespace {

TEST(Mono, EachByteIsWrittenThreeTimesBottomRowFirst) {
  const std::uint8_t frame[] = {1, 2, 3, 4, 5, 6};
  GuardedBuffer image(18);
  ExpandMono8(frame, 3, 2, image.Data());
  const std::vector<std::uint8_t> expected{4, 4, 4, 5, 5, 5, 6, 6, 6, 1, 1, 1, 2, 2, 2, 3, 3, 3};
  EXPECT_EQ(image.Contents(), expected);
  image.ExpectGuardsIntact();
}

TEST(Mono, SixteenBitSamplesKeepTheirHighByteWithoutRounding) {
  const std::uint8_t frame[] = {0xFF, 0x80, 0xFF, 0x01};
  GuardedBuffer image(6);
  ExpandMono16(frame, 2, 1, image.Data());
  EXPECT_EQ(image.Contents(), (std::vector<std::uint8_t>{0x80, 0x80, 0x80, 1, 1, 1}));
  image.ExpectGuardsIntact();
}

TEST(Mono, FramesOfNoRowsWriteNothing) {
  GuardedBuffer image(6);
  ExpandMono8(image.Data(), 2, 0, image.Data());
  ExpandMono16(image.Data(), 0, 2, image.Data());
  EXPECT_EQ(image.Contents(), std::vector<std::uint8_t>(6, kUntouched));
}

}  // namespace
}  // namespace ormidex::convert
