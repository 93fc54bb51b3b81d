// Conformance: what any camera must do, real or simulated.
#include <cmath>
#include <cstdio>
#include <functional>
#include <memory>

#include "camera.h"
#include "commands.h"
#include "exit_code.h"

namespace ormidex_tool {

namespace {

// One case; it throws a ToolError that says what was expected and what came.
struct Case {
  const char* name;
  std::function<void(Camera&)> run;
};

void Expect(bool holds, const std::string& what) {
  if (!holds) throw ToolError(kExitFailure, what);
}

void ExpectStatus(OrmidexStatus status, OrmidexStatus expected, const std::string& what) {
  Expect(status == expected,
         what + ": status " + std::to_string(status) + ", expected " + std::to_string(expected));
}

void SizesAreKept(Camera& camera) {
  for (const OrmidexUInt32 width : {320u, 640u}) {
    const OrmidexUInt32 height = width * 3 / 4;
    ExpectStatus(OrmidexSetSubWindow(camera.handle(), 1, 0, 0, width, height), ORMIDEX_OK,
                 "setting " + std::to_string(width) + " pixels");
    const Geometry geometry = camera.ReadGeometry();
    Expect(geometry.width == width && geometry.height == height,
           "the size reads back as " + std::to_string(geometry.width) + "x" +
               std::to_string(geometry.height));
  }
}

void SubSamplingDivides(Camera& camera) {
  ExpectStatus(OrmidexSetSubWindow(camera.handle(), 2, 0, 0, 640, 480), ORMIDEX_OK,
               "sub-sampling by 2");
  const Geometry geometry = camera.ReadGeometry();
  Expect(geometry.width == 320 && geometry.height == 240, "sub-sampling does not halve the frame");
  ExpectStatus(OrmidexSetSubWindow(camera.handle(), 1, 0, 0, 640, 480), ORMIDEX_OK,
               "going back to full sampling");
}

void BadGeometryIsRefused(Camera& camera) {
  ExpectStatus(OrmidexSetSubWindow(camera.handle(), 1, 0, 0, 1288, 480), ORMIDEX_OUT_OF_RANGE,
               "a sub-window wider than the imager");
  ExpectStatus(OrmidexSetSubWindowSize(camera.handle(), 1, 24, 480), ORMIDEX_OUT_OF_RANGE,
               "a sub-window of 24 columns");
}

void ExposureIsKept(Camera& camera) {
  for (const float wanted : {5.0f, 20.0f}) {
    float reached = 0.0f;
    ExpectStatus(OrmidexSetExposureTime(camera.handle(), wanted, 0), ORMIDEX_OK,
                 "setting the exposure time");
    ExpectStatus(OrmidexGetExposureTime(camera.handle(), &reached), ORMIDEX_OK,
                 "reading the exposure time");
    Expect(std::fabs(reached - wanted) <= 0.25f, "an exposure of " + std::to_string(wanted) +
                                                     " ms reads back as " +
                                                     std::to_string(reached));
  }
}

void FramesFlow(Camera& camera) {
  std::vector<unsigned char> frame(camera.ReadGeometry().FrameBytes());
  camera.StartStream();
  for (int i = 0; i < 5; ++i) camera.ReadFrame(frame);
  ExpectStatus(OrmidexStartVideoStream(camera.handle()), ORMIDEX_WRONG_STATE,
               "starting a stream that runs");
  ExpectStatus(OrmidexReturnVideoData(camera.handle(), 1, frame.data()), ORMIDEX_OUT_OF_RANGE,
               "a buffer of the wrong size");
  ExpectStatus(OrmidexStopVideoStream(camera.handle()), ORMIDEX_OK, "stopping the stream");
  ExpectStatus(OrmidexReturnVideoData(camera.handle(), static_cast<OrmidexUInt32>(frame.size()),
                                      frame.data()),
               ORMIDEX_WRONG_STATE, "reading from a stopped stream");
}

void SixteenBitsDoubleTheFrame(Camera& camera) {
  const std::size_t bytes = camera.ReadGeometry().FrameBytes();
  const OrmidexStatus status = OrmidexSetDataTransferSize(camera.handle(), 16);
  Expect(status == ORMIDEX_OK || status == ORMIDEX_CLOCKING_CHANGED,
         "16-bit transfer: status " + std::to_string(status));
  Expect(camera.ReadGeometry().FrameBytes() == 2 * bytes, "a 16-bit frame is not twice as long");
  FramesFlow(camera);
  ExpectStatus(OrmidexSetDataTransferSize(camera.handle(), 8), ORMIDEX_OK, "8-bit transfer");
}

void ConversionsAgreeWithTheImager(Camera& camera) {
  const Geometry geometry = camera.ReadGeometry();
  const std::vector<unsigned char> frame(geometry.FrameBytes(), 128);
  std::vector<unsigned char> image(geometry.ImageBytes());
  camera.Convert(frame, geometry, ORMIDEX_BILINEAR, image);
  for (const unsigned char level : image) Expect(level == 128, "a grey frame does not stay grey");
  const auto other =
      camera.IsColour()
          ? OrmidexConvertMono8BppTo24Bpp(camera.handle(), frame.data(), geometry.width,
                                          geometry.height, image.data())
          : OrmidexConvertColor8BppTo24Bpp(camera.handle(), frame.data(), geometry.width,
                                           geometry.height, image.data(), ORMIDEX_BILINEAR);
  ExpectStatus(other, ORMIDEX_NOT_SUPPORTED, "the conversion of the other kind of imager");
}

void FlipsAreKept(Camera& camera) {
  OrmidexUInt32 horizontal = 0;
  OrmidexUInt32 vertical = 0;
  ExpectStatus(OrmidexImageFlip(camera.handle(), 1, 1), ORMIDEX_OK, "flipping");
  ExpectStatus(OrmidexGetImageFlip(camera.handle(), &horizontal, &vertical), ORMIDEX_OK,
               "reading the flips");
  Expect(horizontal == 1 && vertical == 1, "the flips do not read back");
  ExpectStatus(OrmidexImageFlip(camera.handle(), -1, -1), ORMIDEX_OK, "flipping back");
}

void GainsAreKept(Camera& camera) {
  OrmidexUInt32 gain = 0;
  const bool colour = camera.IsColour();
  const auto set = colour ? OrmidexSetRedGain : OrmidexSetMonoGain;
  const auto get = colour ? OrmidexGetRedGain : OrmidexGetMonoGain;
  ExpectStatus(set(camera.handle(), 64), ORMIDEX_OUT_OF_RANGE, "a gain of 64");
  ExpectStatus(set(camera.handle(), 21), ORMIDEX_OK, "a gain of 21");
  ExpectStatus(get(camera.handle(), &gain), ORMIDEX_OK, "reading the gain");
  Expect(gain == 21, "the gain reads back as " + std::to_string(gain));
}

void NullIsRefused(Camera& camera) {
  ExpectStatus(OrmidexGetImagerType(camera.handle(), nullptr), ORMIDEX_NULL_POINTER,
               "a null pointer");
  ExpectStatus(OrmidexGetImagerType(nullptr, nullptr), ORMIDEX_NO_CAMERA, "a null handle");
}

const Case kCases[] = {
    {"null handles and pointers are refused", NullIsRefused},
    {"frames flow, and the stream knows its states", FramesFlow},
    {"sizes read back as they were set", SizesAreKept},
    {"sub-sampling divides the frame", SubSamplingDivides},
    {"geometry beyond the imager is refused", BadGeometryIsRefused},
    {"exposure times read back", ExposureIsKept},
    {"gains read back", GainsAreKept},
    {"flips read back", FlipsAreKept},
    {"16-bit frames are twice as long, and flow", SixteenBitsDoubleTheFrame},
    {"conversions fit the imager", ConversionsAgreeWithTheImager},
};

// Each case has the camera freshly opened.
bool RunCase(const Case& test, OrmidexUInt32 index) {
  try {
    Camera camera(index);
    test.run(camera);
    fmt::print("ok      {}\n", test.name);
    return true;
  } catch (const ToolError& error) {
    fmt::print("FAILED  {}: {}\n", test.name, error.what());
    return false;
  }
}

void RunSelftest(const CameraOptions& options) {
  options.Apply();
  const OrmidexUInt32 index = FindCamera(options.camera);
  { const Camera camera(index); }  // whether there is one is no case of the test
  int passed = 0;
  int failed = 0;
  for (const Case& test : kCases) ++(RunCase(test, index) ? passed : failed);
  fmt::print("{} passed, {} failed\n", passed, failed);
  if (failed != 0) throw ToolError(kExitFailure, fmt::format("{} cases failed", failed));
}

}  // namespace

void AddSelftest(CLI::App& app) {
  CLI::App* command = app.add_subcommand("selftest", "Check that a camera does what any must do");
  auto options = std::make_shared<CameraOptions>();
  options->AddTo(*command);
  command->callback([options] { RunSelftest(*options); });
}

}  // namespace ormidex_tool
