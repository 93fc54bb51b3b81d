#include <chrono>
#include <cstdio>
#include <memory>

#include "camera.h"
#include "commands.h"
#include "exit_code.h"
#include "frame_statistics.h"
#include "output.h"

namespace ormidex_tool {

namespace {

struct CaptureOptions {
  CameraOptions camera;
  std::string output;
  OrmidexUInt32 algorithm = ORMIDEX_BILINEAR;
  OrmidexUInt32 frames = 1;
  bool still = false;
  float exposure_ms = 25.0f;
  bool statistics = false;
  bool json = false;
  bool force = false;
  bool no_header = false;
};

// A setting reaches the frames two exposures later at the most.
constexpr int kSettlingFrames = 2;

// Reads the frames of a running stream; returns the rate at which they came.
double ReadStream(Camera& camera, OrmidexUInt32 frames, std::vector<unsigned char>& frame) {
  camera.StartStream();
  for (int i = 0; i < kSettlingFrames; ++i) camera.ReadFrame(frame);
  const auto start = std::chrono::steady_clock::now();
  for (OrmidexUInt32 i = 0; i < frames; ++i) camera.ReadFrame(frame);
  const std::chrono::duration<double> elapsed = std::chrono::steady_clock::now() - start;
  return elapsed.count() > 0.0 ? frames / elapsed.count() : 0.0;
}

void ReadStill(Camera& camera, float exposure_ms, std::vector<unsigned char>& frame) {
  Check(OrmidexReturnStillFrame(camera.handle(), frame.data(), exposure_ms, 0, 0.0f, 0, 0.0f, 0.0f),
        "taking the still frame");
}

// A still has no rate.
void PrintRow(const Camera& camera, const Geometry& geometry, const CaptureOptions& options,
              double reached) {
  if (!options.no_header) {
    fmt::print("{:<7} {:<11} {:<11} {:<10} {:<10} {}\n", "camera", "imager", "frame", "asked/s",
               "reached/s", "file");
  }
  fmt::print("{:<7} {:<11} {:<11} {:<10.1f} {:<10} {}\n", camera.index(), camera.TypeText(),
             fmt::format("{}x{}", geometry.width, geometry.height), camera.FrameRateAsked(),
             options.still ? "-" : fmt::format("{:.1f}", reached), options.output);
}

void PrintStatistics(const FrameStatistics& statistics) {
  fmt::print("mean {:.2f}, lowest {}, highest {}, black {}, clipped {}, focus {:.1f}\n",
             statistics.mean, statistics.lowest, statistics.highest, statistics.black,
             statistics.clipped, statistics.focus);
  std::uint64_t most = 1;
  for (const std::uint64_t count : statistics.histogram) most = std::max(most, count);
  for (std::size_t i = 0; i < statistics.histogram.size(); ++i) {
    fmt::print("{:3}-{:<3} {:9} {:#<{}}\n", i * 16, i * 16 + 15, statistics.histogram[i], "",
               statistics.histogram[i] * 50 / most);
  }
}

void PrintJson(const Camera& camera, const Geometry& geometry, const CaptureOptions& options,
               double reached, const FrameStatistics& statistics) {
  nlohmann::ordered_json document = {{"schema", "ormidex-capture"},
                                     {"version", 1},
                                     {"camera", camera.index()},
                                     {"imager", camera.TypeText()},
                                     {"width", geometry.width},
                                     {"height", geometry.height},
                                     {"asked", camera.FrameRateAsked()},
                                     {"reached", reached},
                                     {"file", options.output}};
  if (options.statistics) document["statistics"] = ToJson(statistics);
  fmt::print("{}\n", document.dump(2));
}

// What is printed would mix with a picture on standard output.
void Report(const Camera& camera, const Geometry& geometry, const CaptureOptions& options,
            double reached, const std::vector<unsigned char>& frame) {
  if (options.output == "-" || IsQuiet()) return;
  FrameStatistics statistics;
  if (options.statistics) statistics = Measure(frame, geometry);
  if (options.json) {
    PrintJson(camera, geometry, options, reached, statistics);
    return;
  }
  PrintRow(camera, geometry, options, reached);
  if (options.statistics) PrintStatistics(statistics);
}

void RunCapture(const CaptureOptions& options) {
  const Format format = FormatOf(options.output);
  RefuseOverwriting(options.output, options.force);
  Camera camera = options.camera.Open();
  const Geometry geometry = camera.ReadGeometry();
  std::vector<unsigned char> frame(geometry.FrameBytes());
  double reached = 0.0;
  if (options.still) {
    ReadStill(camera, options.exposure_ms, frame);
  } else {
    reached = ReadStream(camera, options.frames, frame);
  }
  FrameWriter writer(camera, geometry, {format, options.algorithm});
  writer.Write(frame, options.output);
  Report(camera, geometry, options, reached, frame);
}

}  // namespace

void AddCapture(CLI::App& app) {
  CLI::App* command = app.add_subcommand("capture", "Take one picture");
  auto options = std::make_shared<CaptureOptions>();
  options->camera.AddTo(*command);
  command
      ->add_option("-o,--output", options->output,
                   "File to write: *.bmp, *.tif, *.jpg, *.ppm, *.raw, or - for a raw frame on "
                   "standard output")
      ->required();
  command->add_option("--algorithm", options->algorithm, "Demosaic algorithm code")
      ->capture_default_str();
  command->add_option("--frames", options->frames, "Frames to stream; the last one is written")
      ->check(CLI::PositiveNumber)
      ->capture_default_str();
  command->add_flag("--still", options->still, "A still frame instead of one of the stream");
  command->add_option("--still-exposure", options->exposure_ms, "Exposure of the still, in ms")
      ->check(CLI::NonNegativeNumber)
      ->capture_default_str();
  command->add_flag("--statistics", options->statistics,
                    "Print levels, histogram, clipped samples and a focus figure");
  command->add_flag("--json", options->json, "Print JSON");
  command->add_flag("--force", options->force, "Replace a file that exists");
  command->add_flag("--no-header", options->no_header, "Print the table's row only");
  command->callback([options] { RunCapture(*options); });
}

}  // namespace ormidex_tool
