// The checks of the conversions, in their order.
#include "device/session.h"

#include "convert/pictures.h"

namespace ormidex::device {
namespace {

class SessionConversions : public testing::Test {
 protected:
  void SetUp() override {
    session_ = CameraSession::Create();
    ASSERT_NE(session_, nullptr);
    session_->link.handle = this;
    session_->identity.imager_type = kImagerColour;
    session_->geometry.bytes_per_pixel = 2;
  }
  void TearDown() override { CameraSession::FreeStorage(session_); }

  Status To24From8(std::uint32_t algorithm) {
    return session_->ConvertColor8BppTo24Bpp(frame_, 4, 4, image_, algorithm);
  }
  Status To24From16(std::uint32_t algorithm) {
    return session_->ConvertColor16BppTo24Bpp(frame_, 4, 4, image_, algorithm);
  }
  Status To48From16(std::uint32_t algorithm) {
    return session_->ConvertColor16BppTo48Bpp(frame_, 4, 4, image_, algorithm);
  }

  CameraSession* session_ = nullptr;
  std::uint8_t frame_[32] = {};
  std::uint8_t image_[96] = {};
};

TEST_F(SessionConversions, MosaicDisplayIsAcceptedAndItsNeighboursAreNot) {
  EXPECT_EQ(To24From8(255), kOk);
  EXPECT_EQ(To24From8(254), kOutOfRange);
  EXPECT_EQ(To24From8(256), kOutOfRange);
  EXPECT_EQ(To24From16(255), kOk);
  EXPECT_EQ(To24From16(254), kOutOfRange);
  EXPECT_EQ(To48From16(255), kOk);
  EXPECT_EQ(To48From16(254), kOutOfRange);
  EXPECT_EQ(To48From16(256), kOutOfRange);
}

TEST_F(SessionConversions, CodesSixToFifteenAndFromNineteenAreInvalid) {
  for (const std::uint32_t code : {6u, 15u, 19u, 100u, 1000u}) {
    EXPECT_EQ(To24From8(code), kOutOfRange);
    EXPECT_EQ(To24From16(code), kOutOfRange);
    EXPECT_EQ(To48From16(code), kOutOfRange);
  }
}

TEST_F(SessionConversions, MonochromeSessionConvertsOnlyTo48Bits) {
  session_->identity.imager_type = kImagerMono;
  EXPECT_EQ(To24From8(1), kNotSupported);
  EXPECT_EQ(To24From16(1), kNotSupported);
  EXPECT_EQ(To24From8(77), kNotSupported) << "the imager is looked at before the code";
  EXPECT_EQ(To48From16(1), kOk);
  session_->identity.imager_type = kImagerUnknown;
  EXPECT_EQ(To24From8(1), kNotSupported);
}

TEST_F(SessionConversions, DeviceIsCheckedBeforeBuffersAndBuffersBeforeTheImager) {
  session_->identity.imager_type = kImagerMono;
  EXPECT_EQ(session_->ConvertColor8BppTo24Bpp(nullptr, 4, 4, image_, 1), kNullPointer);
  EXPECT_EQ(session_->ConvertColor16BppTo24Bpp(frame_, 4, 4, nullptr, 1), kNullPointer);
  session_->link.handle = nullptr;
  EXPECT_EQ(session_->ConvertColor8BppTo24Bpp(nullptr, 4, 4, image_, 1), kNoCamera);
  EXPECT_EQ(session_->ConvertColor16BppTo24Bpp(nullptr, 4, 4, image_, 1), kNoCamera);
}

TEST_F(SessionConversions, FortyEightBitConversionNeedsNoDeviceAndSaysSevenForNull) {
  session_->link.handle = nullptr;
  session_->identity.imager_type = kImagerUnknown;
  EXPECT_EQ(To48From16(1), kOk);
  EXPECT_EQ(session_->ConvertColor16BppTo48Bpp(nullptr, 4, 4, image_, 1), kOutOfRange);
  EXPECT_EQ(session_->ConvertColor16BppTo48Bpp(frame_, 4, 4, nullptr, 1), kOutOfRange);
}

TEST_F(SessionConversions, BayerPhaseOfTheSessionReachesTheBilinearCode) {
  frame_[0] = 200;
  session_->geometry.bayer_phase = 2;
  ASSERT_EQ(To24From8(1), kOk);
  const std::size_t top_left = 3 * 4 * 3;
  EXPECT_EQ(image_[top_left], 200) << "blue at the top left";
  session_->geometry.bayer_phase = 0;
  ASSERT_EQ(To24From8(1), kOk);
  EXPECT_EQ(image_[top_left + 2], 200) << "red at the top left";
}

TEST_F(SessionConversions, MonoConversionsWantAMonochromeImager) {
  EXPECT_EQ(session_->ConvertMono8BppTo24Bpp(frame_, 4, 4, image_), kNotSupported);
  EXPECT_EQ(session_->ConvertMono16BppTo24Bpp(frame_, 4, 4, image_), kNotSupported);
  session_->identity.imager_type = kImagerMono;
  EXPECT_EQ(session_->ConvertMono8BppTo24Bpp(frame_, 4, 4, image_), kOk);
  EXPECT_EQ(session_->ConvertMono16BppTo24Bpp(frame_, 4, 4, image_), kOk);
  EXPECT_EQ(session_->ConvertMono8BppTo24Bpp(frame_, 4, 0, image_), kOk);
  EXPECT_EQ(session_->ConvertMono8BppTo24Bpp(nullptr, 4, 4, image_), kNullPointer);
  EXPECT_EQ(session_->ConvertMono16BppTo24Bpp(frame_, 4, 4, nullptr), kNullPointer);
  session_->link.handle = nullptr;
  EXPECT_EQ(session_->ConvertMono8BppTo24Bpp(nullptr, 4, 4, image_), kNoCamera);
}

TEST_F(SessionConversions, ColorCorrectionRefusesMonochromeOnly) {
  EXPECT_EQ(session_->ColorCorrectRgb(4, 4, image_, 10, 0), kOk);
  EXPECT_EQ(session_->ColorCorrectRgb(4, 4, nullptr, 10, 0), kNullPointer);
  session_->identity.imager_type = kImagerUnknown;
  EXPECT_EQ(session_->ColorCorrectRgb(4, 4, image_, 10, 0), kOk);
  session_->identity.imager_type = kImagerMono;
  EXPECT_EQ(session_->ColorCorrectRgb(4, 4, image_, 10, 0), kNotSupported);
  EXPECT_EQ(session_->ColorCorrectRgb(4, 4, nullptr, 10, 0), kNullPointer);
  session_->link.handle = nullptr;
  EXPECT_EQ(session_->ColorCorrectRgb(4, 4, nullptr, 10, 0), kNoCamera);
}

TEST_F(SessionConversions, ColorCorrectionIsWideOnlyForWideImagesOfWideFrames) {
  // 0x0064, 0x0032, 0 as words; the bytes 100, 0, 50 as a narrow pixel.
  const auto red_after = [this](std::uint32_t bytes_per_pixel, std::uint32_t wide) {
    const std::uint8_t pixel[6] = {200, 0, 100, 0, 0, 0};
    std::copy(std::begin(pixel), std::end(pixel), image_);
    session_->geometry.bytes_per_pixel = bytes_per_pixel;
    EXPECT_EQ(session_->ColorCorrectRgb(1, 1, image_, 100, wide), kOk);
    return image_[0] + 256 * image_[1];
  };
  EXPECT_EQ(red_after(2, 1), 350);  // 2 * 200 - 100 / 2
  EXPECT_EQ(red_after(1, 1), 255);  // narrow: 400 - 50 limited
  EXPECT_EQ(red_after(2, 0), 255);
}

TEST_F(SessionConversions, ColorCorrectionOfNoPixelsChangesNothing) {
  image_[0] = 9;
  image_[1] = 200;
  EXPECT_EQ(session_->ColorCorrectRgb(0, 4, image_, 100, 0), kOk);
  EXPECT_EQ(session_->ColorCorrectRgb(0x10000, 0x10000, image_, 100, 0), kOk);
  EXPECT_EQ(image_[0], 9);
  EXPECT_EQ(image_[1], 200);
}

}  // namespace
}  // namespace ormidex::device
