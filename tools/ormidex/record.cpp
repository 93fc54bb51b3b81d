// Recording a sequence of frames with a line of metadata for each.
#include <chrono>
#include <cstdio>
#include <cstring>
#include <fstream>
#include <memory>
#include <nlohmann/json.hpp>

#include "camera.h"
#include "commands.h"
#include "exit_code.h"
#include "interrupt.h"
#include "output.h"
#include "progress.h"
#include "settings.h"

namespace ormidex_tool {

namespace {

using Clock = std::chrono::steady_clock;

struct RecordOptions {
  CameraOptions camera;
  std::string output;
  std::string metadata;
  OrmidexUInt32 frames = 0;
  double seconds = 0.0;
  OrmidexUInt32 algorithm = ORMIDEX_BILINEAR;
  bool force = false;
};

// What does not change from frame to frame.
struct Setup {
  Geometry geometry;
  std::string bayer;
  nlohmann::ordered_json settings;
};

// The controller counts frames in one byte. Frames that it counted and the stream
// did not deliver are lost; a camera that does not count leaves the figure at 0.
class LossCounter {
 public:
  OrmidexUInt32 Next(OrmidexHandle camera) {
    OrmidexUInt8 counter = 0;
    OrmidexUInt32 counters[2] = {};
    if (OrmidexGetFrameNumber(camera, &counter, counters) != ORMIDEX_OK) return 0;
    const auto step = static_cast<OrmidexUInt8>(counter - last_);
    const OrmidexUInt32 lost = known_ && step > 1 ? step - 1u : 0u;
    last_ = counter;
    known_ = true;
    return lost;
  }

 private:
  bool known_ = false;
  OrmidexUInt8 last_ = 0;
};

class Recording {
 public:
  Recording(Camera& camera, const RecordOptions& options);
  void Run();

 private:
  bool Finished() const;
  void RecordFrame();
  void WriteMetadata(OrmidexUInt32 lost, double seconds, const std::string& file);
  void Summarise() const;

  Camera& camera_;
  const RecordOptions& options_;
  Setup setup_;
  FrameWriter writer_;
  std::vector<unsigned char> frame_;
  std::ofstream metadata_;
  LossCounter losses_;
  Progress progress_;
  Clock::time_point start_;
  std::uint64_t written_ = 0;
  std::uint64_t lost_ = 0;
};

// The mosaic phase as the library takes it: from register 1 of a first-generation
// imager, and always 0 on a second-generation one.
std::string BayerPhase(const Camera& camera) {
  if (!camera.IsColour()) return "none";
  if (camera.ImagerGeneration() != 1) return "0";
  OrmidexUInt8 orientation = 0;
  Check(OrmidexReadRegister(camera.handle(), 1, &orientation), "reading the orientation");
  if ((orientation & 0x18u) == 0x18u) return "2";
  return (orientation & 0x10u) != 0 ? "1" : "0";
}

Setup ReadSetup(const Camera& camera) {
  return {camera.ReadGeometry(), BayerPhase(camera), ReadAll(camera)};
}

Recording::Recording(Camera& camera, const RecordOptions& options)
    : camera_(camera),
      options_(options),
      setup_(ReadSetup(camera)),
      writer_(camera, setup_.geometry, {FormatOf(options.output), options.algorithm}),
      frame_(setup_.geometry.FrameBytes()),
      progress_(options.frames) {
  const std::string path =
      options.metadata.empty() ? MetadataPath(options.output) : options.metadata;
  RefuseOverwriting(path, options.force);
  metadata_.open(path, std::ios::trunc);
  if (!metadata_) throw ToolError(kExitFailure, "'" + path + "' cannot be written");
}

double Since(Clock::time_point start) {
  return std::chrono::duration<double>(Clock::now() - start).count();
}

bool Recording::Finished() const {
  if (Interrupted()) return true;
  if (options_.frames != 0) return written_ >= options_.frames;
  return Since(start_) >= options_.seconds;
}

void Recording::WriteMetadata(OrmidexUInt32 lost, double seconds, const std::string& file) {
  const nlohmann::ordered_json line = {{"frame", written_},
                                       {"file", file},
                                       {"seconds", seconds},
                                       {"lost-before", lost},
                                       {"width", setup_.geometry.width},
                                       {"height", setup_.geometry.height},
                                       {"bits", setup_.geometry.bytes_per_pixel * 8},
                                       {"bayer-phase", setup_.bayer},
                                       {"settings", setup_.settings}};
  metadata_ << line.dump() << '\n';
}

void Recording::RecordFrame() {
  camera_.ReadFrame(frame_);
  const double seconds = Since(start_);
  const OrmidexUInt32 lost = losses_.Next(camera_.handle());
  const std::string file = NumberedPath(options_.output, written_);
  RefuseOverwriting(file, options_.force);
  writer_.Write(frame_, file);
  WriteMetadata(lost, seconds, file);
  ++written_;
  lost_ += lost;
  progress_.Show(written_, Since(start_), lost_);
}

void Recording::Summarise() const {
  const double seconds = Since(start_);
  Say("{} frames in {:.1f} s, {:.1f} frames/s, {} lost", written_, seconds,
      seconds > 0.0 ? static_cast<double>(written_) / seconds : 0.0, lost_);
}

// What is recorded stays, however the recording ends.
void Recording::Run() {
  CatchInterrupts();
  camera_.StartStream();
  start_ = Clock::now();
  try {
    while (!Finished()) RecordFrame();
  } catch (const ToolError& error) {
    progress_.End();
    Summarise();
    throw ToolError(written_ != 0 && error.code() == kExitFailure ? kExitIncomplete : error.code(),
                    fmt::format("{}; {} frames were recorded", error.what(), written_));
  }
  progress_.End();
  metadata_.close();
  if (!metadata_) throw ToolError(kExitIncomplete, "the metadata are not complete");
  Summarise();
  if (options_.frames != 0 && written_ < options_.frames) {
    throw ToolError(kExitIncomplete,
                    fmt::format("interrupted after {} of {} frames", written_, options_.frames));
  }
}

void RunRecord(const RecordOptions& options) {
  if ((options.frames == 0) == (options.seconds == 0.0)) {
    FailUsage("give --frames or --seconds");
  }
  FormatOf(options.output);
  if (options.output == "-" || !IsPattern(options.output)) {
    FailUsage("'" + options.output +
              "' has no place for the frame number: write it as frame-####.raw or frame-%04d.raw");
  }
  Camera camera = options.camera.Open();
  Recording(camera, options).Run();
}

}  // namespace

void AddRecord(CLI::App& app) {
  CLI::App* command = app.add_subcommand("record", "Record a sequence of frames");
  command->footer(
      "Each frame has a line of JSON in the metadata file: its number, file, time, the frames\n"
      "lost before it, geometry and settings. Ctrl-C ends the recording after the frame in\n"
      "progress.");
  auto options = std::make_shared<RecordOptions>();
  options->camera.AddTo(*command);
  command
      ->add_option("-o,--output", options->output,
                   "Files to write, with #### or %04d for the number: *.raw, *.tif, *.bmp, *.jpg, "
                   "*.ppm")
      ->required();
  command->add_option("-n,--frames", options->frames, "Frames to record");
  command->add_option("-t,--seconds", options->seconds, "Seconds to record")
      ->check(CLI::NonNegativeNumber);
  command->add_option("--metadata", options->metadata,
                      "Metadata file; by default named after the frames, *.jsonl");
  command->add_option("--algorithm", options->algorithm, "Demosaic algorithm code")
      ->capture_default_str();
  command->add_flag("--force", options->force, "Replace files that exist");
  command->callback([options] { RunRecord(*options); });
}

}  // namespace ormidex_tool
