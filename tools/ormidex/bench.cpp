// How fast this machine and this camera are.
#include <algorithm>
#include <chrono>
#include <cstdio>
#include <memory>

#include "camera.h"
#include "commands.h"
#include "exit_code.h"

namespace ormidex_tool {

namespace {

constexpr OrmidexUInt32 kAlgorithms[] = {0, 1, 2, 3, 4, 5, 16, 17, 18, 255};
constexpr int kRounds = 7;

template <typename Call>
double MedianSeconds(Call call) {
  std::vector<double> seconds;
  for (int round = 0; round < kRounds; ++round) {
    const auto start = std::chrono::steady_clock::now();
    call();
    seconds.push_back(
        std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count());
  }
  std::sort(seconds.begin(), seconds.end());
  return seconds[seconds.size() / 2];
}

void BenchCalls(const Camera& camera) {
  constexpr int kCalls = 1000;
  OrmidexUInt8 value = 0;
  const double seconds = MedianSeconds([&] {
    for (int i = 0; i < kCalls; ++i) OrmidexReadRegister(camera.handle(), 0, &value);
  });
  fmt::print("{:<28} {:10.2f} us\n", "register read", seconds / kCalls * 1e6);
}

void BenchFrames(Camera& camera, std::vector<unsigned char>& frame, OrmidexUInt32 frames) {
  camera.StartStream();
  camera.ReadFrame(frame);
  const auto start = std::chrono::steady_clock::now();
  for (OrmidexUInt32 i = 0; i < frames; ++i) camera.ReadFrame(frame);
  const std::chrono::duration<double> elapsed = std::chrono::steady_clock::now() - start;
  fmt::print("{:<28} {:10.1f} frames/s, {:.1f} asked\n", "stream", frames / elapsed.count(),
             camera.FrameRateAsked());
}

void BenchConversions(const Camera& camera, const Geometry& geometry,
                      const std::vector<unsigned char>& frame) {
  std::vector<unsigned char> image(geometry.ImageBytes());
  const double megapixels = geometry.width * geometry.height / 1e6;
  if (!camera.IsColour()) {
    const double seconds = MedianSeconds([&] { camera.Convert(frame, geometry, 0, image); });
    fmt::print("{:<28} {:10.1f} Mpixel/s\n", "monochrome expansion", megapixels / seconds);
    return;
  }
  for (const OrmidexUInt32 algorithm : kAlgorithms) {
    const double seconds =
        MedianSeconds([&] { camera.Convert(frame, geometry, algorithm, image); });
    fmt::print("{:<28} {:10.1f} Mpixel/s\n", fmt::format("conversion code {}", algorithm),
               megapixels / seconds);
  }
}

}  // namespace

void AddBench(CLI::App& app) {
  CLI::App* command =
      app.add_subcommand("bench", "Measure calls, stream and conversions with a camera");
  auto options = std::make_shared<CameraOptions>();
  auto frames = std::make_shared<OrmidexUInt32>(60);
  options->AddTo(*command);
  command->add_option("-n,--frames", *frames, "Frames to stream")
      ->check(CLI::PositiveNumber)
      ->capture_default_str();
  command->callback([options, frames] {
    Camera camera = options->Open();
    const Geometry geometry = camera.ReadGeometry();
    std::vector<unsigned char> frame(geometry.FrameBytes());
    fmt::print("{:<28} {}x{}, {} bits\n", "frame", geometry.width, geometry.height,
               geometry.bytes_per_pixel * 8);
    BenchCalls(camera);
    BenchFrames(camera, frame, *frames);
    BenchConversions(camera, geometry, frame);
  });
}

}  // namespace ormidex_tool
