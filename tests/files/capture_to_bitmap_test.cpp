// A still captured, converted and written in one call.
#include <gtest/gtest.h>

#include <bit>

#include "files/image_files.h"
#include "support/scripted_gateway.h"

namespace ormidex::testing {
namespace {

using namespace device;

class CaptureToBitmap : public ::testing::Test {
 protected:
  CaptureToBitmap() { driver.frame_byte = 0x64; }
  ~CaptureToBitmap() override { platform::ClearFaults(); }

  Status Capture(FilesSession& session, const char* path, std::uint32_t correct = 0,
                 std::int32_t amount = 0, std::uint32_t option = 1) {
    return session->CaptureFrameToBitmap(10.0f, 0, 0, 0, 0, 0, path, correct, amount, option);
  }
  std::string Pixels() const {
    const Bytes content = file.Content();
    return Hex(Slice(content, 54, content.size() - 54));
  }

  ModelGateway driver;
  TemporaryFile file{"capture.bmp"};
};

TEST_F(CaptureToBitmap, MonochromeFramesOf8And16Bits) {
  for (const std::uint32_t bytes : {1u, 2u}) {
    FilesSession session(driver, kImagerMono, 2, 2, bytes);
    EXPECT_EQ(Capture(session, file.path()), kOk);
    EXPECT_EQ(file.Content().size(), 66u);
    EXPECT_EQ(Pixels(), Hex("646464 646464 646464 646464"));
  }
}

TEST_F(CaptureToBitmap, ColourFramesOf8And16BitsUseTheOption) {
  for (const std::uint32_t bytes : {1u, 2u}) {
    FilesSession session(driver, kImagerColour, 2, 2, bytes);
    EXPECT_EQ(Capture(session, file.path(), 0, 0, 255), kOk);
    // Each sample in its own channel; the bottom row, green and blue, comes first.
    EXPECT_EQ(Pixels(), Hex("006400 640000 000064 006400"));
  }
}

TEST_F(CaptureToBitmap, ColourFramesAreCorrectedWhenAskedFor) {
  FilesSession session(driver, kImagerColour, 2, 2, 1);
  EXPECT_EQ(Capture(session, file.path(), 1, 100, 255), kOk);
  // Amount 100 doubles a channel and takes half of the others off: 100 becomes 200.
  EXPECT_EQ(Pixels(), Hex("00c800 c80000 0000c8 00c800"));
}

// The correction refuses monochrome cameras with 12; here it is not even asked.
TEST_F(CaptureToBitmap, MonochromeFramesIgnoreTheColourCorrection) {
  FilesSession session(driver, kImagerMono, 2, 1, 1);
  EXPECT_EQ(Capture(session, file.path(), 1, 100), kOk);
  EXPECT_EQ(Pixels(), Hex("646464 646464"));
}

TEST_F(CaptureToBitmap, TheTimesReachTheStillAsTheFloatsTheirBitsAre) {
  ScriptedGateway scripted;
  ModelGateway unused;
  FilesSession session(unused, kImagerMono, 2, 1, 1);
  session->link.gateway = &scripted;
  session->stream.running.store(1);
  session->geometry.video_mode = 0;
  scripted.ExpectEcho(0x2220A0, "00000000 14500000 01000000 0a280000 00000002 0000157c fffffe0c");
  scripted.Expect(0x222045, "", "0102");
  EXPECT_EQ(
      session->CaptureFrameToBitmap(20.5f, 1, std::bit_cast<std::uint32_t>(10.25f), 2,
                                    std::bit_cast<std::uint32_t>(5.5f),
                                    std::bit_cast<std::uint32_t>(-0.5f), file.path(), 0, 0, 1),
      kOk);
  EXPECT_EQ(Pixels(), Hex("010101 020202"));
}

TEST_F(CaptureToBitmap, ChecksThePathBeforeTheDevice) {
  FilesSession session(driver, kImagerMono, 2, 1, 1);
  session->link.handle = nullptr;
  EXPECT_EQ(Capture(session, nullptr), kNullPointer);
  EXPECT_EQ(Capture(session, file.path()), kNoCamera);
}

TEST_F(CaptureToBitmap, AFailedAllocationIs9AndNothingIsSent) {
  FilesSession session(driver, kImagerMono, 2, 1, 1);
  for (int granted = 0; granted < 2; ++granted) {
    platform::RefuseOnceAfter(platform::FaultPoint::kAllocation, granted);
    EXPECT_EQ(Capture(session, file.path()), kOutOfMemory);
  }
  EXPECT_TRUE(driver.Requests().empty());
  EXPECT_FALSE(file.Exists());
}

TEST_F(CaptureToBitmap, AnImageThatCannotBeCountedIs9) {
  FilesSession session(driver, kImagerMono, 0x10000, 0x10000, 1);
  EXPECT_EQ(Capture(session, file.path()), kOutOfMemory);
}

TEST_F(CaptureToBitmap, AFailedStillIsReturnedAndNoFileIsWritten) {
  FilesSession session(driver, kImagerMono, 2, 1, 1);
  session->trigger.active.store(1);
  EXPECT_EQ(Capture(session, file.path()), kWrongState);
  session->trigger.active.store(0);
  driver.fail_codes.insert(CAM_IOCTL_STILL_FRAME);
  EXPECT_EQ(Capture(session, file.path()), kRequestFailed);
  EXPECT_FALSE(file.Exists());
}

TEST_F(CaptureToBitmap, AFailedConversionIsReturnedAndNoFileIsWritten) {
  FilesSession colour(driver, kImagerColour, 2, 2, 1);
  EXPECT_EQ(Capture(colour, file.path(), 1, 100, 6), kOutOfRange);
  FilesSession unknown(driver, kImagerUnknown, 2, 2, 1);
  EXPECT_EQ(Capture(unknown, file.path()), kNotSupported);
  EXPECT_FALSE(file.Exists());
}

TEST_F(CaptureToBitmap, AFileThatCannotBeOpenedIs6) {
  FilesSession session(driver, kImagerMono, 2, 1, 1);
  const std::string path = FilePath("no_such_folder") + "/image.bmp";
  EXPECT_EQ(Capture(session, path.c_str()), kFileNotOpened);
}

std::uint32_t ORMIDEX_CALLBACK BlackenFirstByte(void*, void* image, std::uint32_t, std::uint32_t,
                                                std::uint32_t) {
  *static_cast<std::uint8_t*>(image) = 0;
  return 0;
}

TEST_F(CaptureToBitmap, TheSavingOverlayDrawsIntoTheImage) {
  FilesSession session(driver, kImagerMono, 2, 1, 1);
  EXPECT_EQ(session->SetOverlayCallBack(0, 1, BlackenFirstByte), kOk);
  EXPECT_EQ(Capture(session, file.path()), kOk);
  EXPECT_EQ(Pixels(), Hex("006464 646464"));
}

}  // namespace
}  // namespace ormidex::testing
