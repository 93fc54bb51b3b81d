// The exchange of the first and third channel, in every tier and at every length.
#include <gtest/gtest.h>

#include "files/image_files.h"
#include "files/pixel_order.h"
#include "platform/processor.h"

namespace ormidex::testing {
namespace {

using files::SwapRow;

// Unequal bytes all around show any that is written too many.
void ExpectSwapped(SwapRow swap, std::size_t channel_bytes, std::size_t pixels) {
  const std::size_t pixel_bytes = 3 * channel_bytes;
  const Bytes source = Noise(pixels * pixel_bytes, static_cast<std::uint32_t>(pixels) + 1);
  Bytes destination(pixels * pixel_bytes + 64, 0xA5);
  swap(source.data(), destination.data() + 32, pixels);
  for (std::size_t i = 0; i < 32; ++i) {
    ASSERT_EQ(destination[i], 0xA5) << "before the row, " << pixels << " pixels";
    ASSERT_EQ(destination[destination.size() - 1 - i], 0xA5) << "behind " << pixels << " pixels";
  }
  for (std::size_t i = 0; i < pixels * pixel_bytes; ++i) {
    const std::size_t channel = i % pixel_bytes / channel_bytes;
    const std::size_t from =
        i / pixel_bytes * pixel_bytes + (2 - channel) * channel_bytes + i % channel_bytes;
    ASSERT_EQ(destination[32 + i], source[from]) << "byte " << i << " of " << pixels << " pixels";
  }
}

TEST(PixelOrder, PortableRoutinesAtEveryLength) {
  for (std::size_t pixels = 0; pixels < 70; ++pixels) {
    ExpectSwapped(files::SwapRow24Portable, 1, pixels);
    ExpectSwapped(files::SwapRow48Portable, 2, pixels);
  }
}

#if defined(__x86_64__)
// Not a property of every processor that runs this, but of every one since 2006.
TEST(PixelOrder, Ssse3RoutinesAtEveryLength) {
  ASSERT_TRUE(platform::DetectVectorFeatures().ssse3);
  for (std::size_t pixels = 0; pixels < 70; ++pixels) {
    ExpectSwapped(files::SwapRow24Ssse3, 1, pixels);
    ExpectSwapped(files::SwapRow48Ssse3, 2, pixels);
  }
}
#endif

TEST(PixelOrder, RowsAreTurnedUpsideDown) {
  const Bytes image = FromHex("000102 101112  202122 303132");
  Bytes result(12);
  files::MakeTopDownRgb(image.data(), 2, 2, false, result.data());
  EXPECT_EQ(Hex(result), Hex("222120 323130  020100 121110"));
}

TEST(PixelOrder, WideRowsAreTurnedUpsideDown) {
  const Bytes image = FromHex("000102030405  202122232425");
  Bytes result(12);
  files::MakeTopDownRgb(image.data(), 1, 2, true, result.data());
  EXPECT_EQ(Hex(result), Hex("242522232021  040502030001"));
}

}  // namespace
}  // namespace ormidex::testing
