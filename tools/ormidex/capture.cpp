#include <chrono>
#include <cstdio>
#include <memory>

#include "camera.h"
#include "commands.h"
#include "exit_code.h"

namespace ormidex_tool {

namespace {

struct CaptureOptions {
  CameraOptions camera;
  std::string output;
  OrmidexUInt32 algorithm = 1;
  OrmidexUInt32 frames = 1;
  float exposure_ms = -1.0f;
  std::string size;
  bool no_header = false;
};

// A setting reaches the frames two exposures later at the most.
constexpr int kSettlingFrames = 2;

void ApplySize(const Camera& camera, const std::string& size) {
  unsigned width = 0;
  unsigned height = 0;
  char rest = '\0';
  if (std::sscanf(size.c_str(), "%ux%u%c", &width, &height, &rest) != 2) {
    throw ToolError(kExitUsage, "'" + size + "' is no size: give WIDTHxHEIGHT, as 1280x1024");
  }
  Check(OrmidexSetSubWindow(camera.handle(), 1, 0, 0, width, height),
        "setting the size to " + size);
}

void CheckEnding(const std::string& path) {
  const std::size_t dot = path.rfind('.');
  std::string ending = dot == std::string::npos ? "" : path.substr(dot);
  for (char& c : ending) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
  if (ending != ".bmp") {
    throw ToolError(kExitUsage, "'" + path + "': only bitmap files are written, name it *.bmp");
  }
}

void PrintRow(const Camera& camera, const Geometry& geometry, const CaptureOptions& options,
              double reached) {
  const std::string size = std::to_string(geometry.width) + "x" + std::to_string(geometry.height);
  if (!options.no_header) {
    std::printf("%-7s %-11s %-11s %-10s %-10s %s\n", "camera", "imager", "frame", "asked/s",
                "reached/s", "file");
  }
  std::printf("%-7u %-11s %-11s %-10.1f %-10.1f %s\n", camera.index(), camera.TypeText().c_str(),
              size.c_str(), camera.FrameRateAsked(), reached, options.output.c_str());
}

void RunCapture(const CaptureOptions& options) {
  CheckEnding(options.output);
  Camera camera(FindCamera(options.camera.camera));
  if (!options.size.empty()) ApplySize(camera, options.size);
  if (options.exposure_ms >= 0.0f) {
    Check(OrmidexSetExposureTime(camera.handle(), options.exposure_ms, 1),
          "setting the exposure time");
  }
  const Geometry geometry = camera.ReadGeometry();
  std::vector<unsigned char> frame(geometry.FrameBytes());
  std::vector<unsigned char> image(geometry.ImageBytes());
  camera.StartStream();
  for (int i = 0; i < kSettlingFrames; ++i) camera.ReadFrame(frame);
  const auto start = std::chrono::steady_clock::now();
  for (OrmidexUInt32 i = 0; i < options.frames; ++i) camera.ReadFrame(frame);
  const std::chrono::duration<double> elapsed = std::chrono::steady_clock::now() - start;
  camera.Convert(frame, geometry, options.algorithm, image);
  Check(OrmidexSaveFrameAsBitmap(camera.handle(), image.data(), options.output.c_str()),
        "writing '" + options.output + "'");
  PrintRow(camera, geometry, options, options.frames / elapsed.count());
}

}  // namespace

void AddCapture(CLI::App& app) {
  CLI::App* command = app.add_subcommand("capture", "Take a picture from the live stream");
  auto options = std::make_shared<CaptureOptions>();
  options->camera.AddTo(*command);
  command->add_option("-o,--output", options->output, "File to write, *.bmp")->required();
  command->add_option("--algorithm", options->algorithm, "Demosaic algorithm code")
      ->capture_default_str();
  command->add_option("--frames", options->frames, "Frames to read; the last one is written")
      ->check(CLI::PositiveNumber)
      ->capture_default_str();
  command->add_option("--exposure", options->exposure_ms, "Exposure time in ms")
      ->check(CLI::NonNegativeNumber);
  command->add_option("--size", options->size, "Sub-window size, WIDTHxHEIGHT");
  command->add_flag("--no-header", options->no_header, "Print the table's row only");
  command->callback([options] {
    options->camera.Apply();
    RunCapture(*options);
  });
}

}  // namespace ormidex_tool
