// Every writer on a path that is no place for a file.
#include <gtest/gtest.h>

#include "files/image_files.h"

namespace ormidex::testing {
namespace {

using namespace device;

constexpr std::uint32_t kSide = 64;

struct Writer {
  const char* name;
  Status unopened;  // what a path that cannot be opened gives
  Status (*save)(CameraSession& session, Bytes& image, const char* path);
};

class EveryWriter : public ::testing::TestWithParam<Writer> {
 protected:
  EveryWriter() : session(driver, kImagerColour, kSide, kSide, 2), image(kSide * kSide * 3, 0x40) {
    image = Noise(image.size(), 3);  // too much for any buffer of the run-time library
  }
  ModelGateway driver;
  FilesSession session;
  Bytes image;
};

INSTANTIATE_TEST_SUITE_P(All, EveryWriter,
                         ::testing::Values(Writer{"Bitmap", kFileNotOpened,
                                                  [](CameraSession& s, Bytes& i, const char* p) {
                                                    return s.SaveFrameAsBitmap(i.data(), p);
                                                  }},
                                           Writer{"Mono8", kFileNotOpened,
                                                  [](CameraSession& s, Bytes& i, const char* p) {
                                                    return s.SaveFrameAsMono8(i.data(), p);
                                                  }},
                                           Writer{"Mono16", kFileNotOpened,
                                                  [](CameraSession& s, Bytes& i, const char* p) {
                                                    return s.SaveFrameAsMono16(i.data(), p);
                                                  }},
                                           Writer{"Tiff", kFileNotOpened,
                                                  [](CameraSession& s, Bytes& i, const char* p) {
                                                    return s.SaveFrameAsTiff(i.data(), p, 0, 0,
                                                                             255);
                                                  }},
                                           Writer{"Capture", kFileNotOpened,
                                                  [](CameraSession& s, Bytes&, const char* p) {
                                                    return s.CaptureFrameToBitmap(1.0f, 0, 0, 0, 0,
                                                                                  0, p, 0, 0, 255);
                                                  }},
                                           Writer{"Jpeg", kOk,
                                                  [](CameraSession& s, Bytes& i, const char* p) {
                                                    return s.SaveFrameAsJpeg(i.data(), p);
                                                  }}),
                         [](const auto& instance) { return std::string(instance.param.name); });

TEST_P(EveryWriter, AFolderAsPath) {
  EXPECT_EQ(GetParam().save(*session, image, ::testing::TempDir().c_str()), GetParam().unopened);
}

TEST_P(EveryWriter, AnEmptyPath) {
  EXPECT_EQ(GetParam().save(*session, image, ""), GetParam().unopened);
}

TEST_P(EveryWriter, APathOfTenThousandCharacters) {
  const std::string path(10000, 'a');
  EXPECT_EQ(GetParam().save(*session, image, path.c_str()), GetParam().unopened);
}

#ifdef __linux__
// Opening succeeds there and every write fails, which no writer reports.
TEST_P(EveryWriter, AFullDiskIsNotReportedAndHurtsNobody) {
  EXPECT_EQ(GetParam().save(*session, image, "/dev/full"), kOk);
}
#endif

}  // namespace
}  // namespace ormidex::testing
