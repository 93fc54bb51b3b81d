// Every member of the C++ layer, on a colour and on a monochrome camera.
#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <ormidex.hpp>
#include <string>
#include <utility>

namespace {

// The library reads its cameras' description once.
const bool kCamerasAreDescribed =
    setenv("ORMIDEX_SIMULATOR", "pace=fast,serial=0xABC;pace=fast,imager=mono;fault=busy", 1) == 0;

class TemporaryPath {
 public:
  explicit TemporaryPath(const char* name)
      : path_(std::filesystem::temp_directory_path() /
              ("ormidex-" + std::to_string(getpid()) + "-" + name)) {}
  ~TemporaryPath() { std::filesystem::remove(path_); }
  std::string Text() const { return path_.string(); }
  std::uintmax_t Size() const { return std::filesystem::file_size(path_); }

 private:
  std::filesystem::path path_;
};

TEST(Wrapper, CountsAndOpensCameras) {
  ASSERT_TRUE(kCamerasAreDescribed);
  EXPECT_EQ(ormidex::Camera::Count(), 3u);
  const ormidex::Camera camera;
  EXPECT_NE(camera.handle(), nullptr);
  EXPECT_EQ(camera.SerialNumber(), 0xABCu);
  EXPECT_EQ(camera.SoftwareVersion(), 0x03012305u);
  EXPECT_EQ(camera.HardwareVersion().imagerGeneration, 2u);
  EXPECT_TRUE(camera.IsColour());
  EXPECT_FALSE(ormidex::Camera(1).IsColour());
}

TEST(Wrapper, ThrowsWhatTheFunctionReturned) {
  try {
    ormidex::Camera camera(2);
    FAIL() << "the camera is busy";
  } catch (const ormidex::Error& error) {
    EXPECT_EQ(error.status(), OrmidexStatus{ORMIDEX_NO_CAMERA});
    EXPECT_STREQ(error.what(), "OrmidexInitialize: no camera is open, or it could not be opened");
  }
  EXPECT_THROW(ormidex::Camera(9), ormidex::Error);
  EXPECT_STREQ(ormidex::Describe(ORMIDEX_CLOCKING_CHANGED),
               "success, with a slower imager clocking");
  EXPECT_STREQ(ormidex::Describe(ORMIDEX_CLOCKING_CHANGED + 1), "the driver's own status");
}

TEST(Wrapper, TryReturnsStatusesInsteadOfThrowing) {
  ormidex::Camera camera;
  const auto frame = ormidex::Try([&] { return camera.ReadFrame(); });
  EXPECT_FALSE(frame);
  EXPECT_EQ(frame.status(), OrmidexStatus{ORMIDEX_WRONG_STATE});
  EXPECT_EQ(ormidex::Try([&] { camera.StartStream(); }), OrmidexStatus{ORMIDEX_OK});
  auto second = ormidex::Try([&] { return camera.ReadFrame(); });
  ASSERT_TRUE(second);
  EXPECT_EQ(second.status(), OrmidexStatus{ORMIDEX_OK});
  EXPECT_EQ(second->width, 640u);
  EXPECT_EQ((*second).data.size(), 640u * 480u);
}

TEST(Wrapper, ClosesWhenItIsMovedToOrDestroyed) {
  ormidex::Camera camera;
  const OrmidexHandle handle = camera.handle();
  ormidex::Camera other(std::move(camera));
  EXPECT_EQ(other.handle(), handle);
  EXPECT_EQ(camera.handle(), nullptr);  // NOLINT: what is left of it
  ormidex::Camera third(1);
  third = std::move(other);
  EXPECT_EQ(third.handle(), handle);
  EXPECT_TRUE(third.IsColour());
}

TEST(Wrapper, MakesAndReadsSettings) {
  ormidex::Camera camera;
  camera.SetGains({21, 22, 23});
  EXPECT_EQ(camera.Gains().red, 21u);
  EXPECT_EQ(camera.Gains().green, 22u);
  EXPECT_EQ(camera.Gains().blue, 23u);
  EXPECT_THROW(camera.SetGains({64, 0, 0}), ormidex::Error);
  camera.SetExposureTime(10.0f);
  EXPECT_NEAR(camera.ExposureTime(), 10.0f, 0.1f);
  camera.SetGamma(1.8f);
  camera.SetClocking(ORMIDEX_CLOCK_16_MHZ);
  camera.SetSubWindow({2, 128, 64, 640, 480});
  const ormidex::SubWindow window = camera.SubWindow();
  EXPECT_EQ(window.factor, 2u);
  EXPECT_EQ(window.column, 128u);
  EXPECT_EQ(window.row, 64u);
  EXPECT_EQ(window.width, 640u);
  EXPECT_EQ(window.height, 480u);
  EXPECT_EQ(camera.MakeFrame().width, 320u);
}

TEST(Wrapper, SaysWhenWideFramesNeedASlowerClock) {
  ormidex::Camera camera;
  camera.SetClocking(ORMIDEX_CLOCK_24_MHZ);
  EXPECT_TRUE(camera.SetBitsPerPixel(16));
  EXPECT_FALSE(camera.SetBitsPerPixel(16));
  EXPECT_EQ(camera.MakeFrame().data.size(), 640u * 480u * 2u);
}

TEST(Wrapper, ReadsConvertsAndSaves) {
  ormidex::Camera camera;
  camera.StartStream();
  ormidex::Frame frame = camera.MakeFrame();
  camera.ReadFrame(frame);
  const ormidex::Image image = camera.Convert(frame);
  EXPECT_EQ(image.data.size(), 640u * 480u * 3u);
  const TemporaryPath bitmap("a.bmp");
  camera.SaveBitmap(image, bitmap.Text());
  EXPECT_EQ(bitmap.Size(), 54u + 640 * 480 * 3);
  const TemporaryPath tiff("a.tif");
  camera.SaveTiff(frame, tiff.Text());
  EXPECT_GT(tiff.Size(), 640u * 480u * 3u);
  const TemporaryPath jpeg("a.jpg");
  camera.SaveJpeg(image, jpeg.Text());
  EXPECT_GT(jpeg.Size(), 1000u);
  camera.StopStream();
  EXPECT_THROW(camera.ReadFrame(frame), ormidex::Error);
}

TEST(Wrapper, ExpandsMonochromeFrames) {
  ormidex::Camera camera(1);
  camera.StartStream();
  const ormidex::Frame frame = camera.ReadFrame();
  const ormidex::Image image = camera.Convert(frame);
  const std::size_t last_row = std::size_t{479} * 640;  // images run from bottom to top
  EXPECT_EQ(image.data[0], frame.data[last_row]);
  EXPECT_EQ(image.data[1], frame.data[last_row]);
  EXPECT_EQ(image.data[2], frame.data[last_row]);
}

TEST(Wrapper, ControlsAutomatically) {
  ormidex::Camera camera;
  camera.StartStream();
  const float before = camera.ExposureTime();
  camera.AutoExposure(20);
  EXPECT_LT(camera.ExposureTime(), before);
  camera.WhiteBalance();
}

}  // namespace
