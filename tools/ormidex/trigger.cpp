// Frames on a trigger.
#include <atomic>
#include <chrono>
#include <cstdio>
#include <memory>

#include "camera.h"
#include "commands.h"
#include "exit_code.h"
#include "interrupt.h"
#include "output.h"
#include "pause.h"

namespace ormidex_tool {

namespace {

struct TriggerOptions {
  CameraOptions camera;
  std::string output;
  OrmidexUInt32 frames = 1;
  float exposure_ms = 10.0f;
  double timeout = 10.0;
  OrmidexUInt32 algorithm = ORMIDEX_BILINEAR;
  bool force = false;
};

// The library calls back on a thread of its own and with no pointer of ours, so the
// mailbox is the program's one. A frame that comes while the last one is still
// being taken is dropped.
struct Mailbox {
  std::vector<unsigned char> frame;
  std::atomic<bool> full{false};
  std::atomic<OrmidexUInt32> dropped{0};
};
Mailbox mailbox;

OrmidexUInt32 ORMIDEX_CALL OnFrame(OrmidexHandle, void* buffer) {
  if (mailbox.full.load()) {
    mailbox.dropped.fetch_add(1);
    return 0;
  }
  const auto* bytes = static_cast<const unsigned char*>(buffer);
  std::copy(bytes, bytes + mailbox.frame.size(), mailbox.frame.begin());
  mailbox.full.store(true);
  return 0;
}

// False when none came in time.
bool AwaitFrame(double timeout) {
  const auto start = std::chrono::steady_clock::now();
  while (!mailbox.full.load()) {
    const std::chrono::duration<double> waited = std::chrono::steady_clock::now() - start;
    if (waited.count() >= timeout || Interrupted()) return false;
    PauseMilliseconds(1);
  }
  return true;
}

[[noreturn]] void FailTrigger(const Camera& camera, const TriggerOptions& options,
                              OrmidexUInt32 taken) {
  const std::string came = fmt::format("{} of {} frames came", taken, options.frames);
  if (Interrupted()) throw ToolError(kExitIncomplete, came + " until the interrupt");
  if (!camera.Answers()) {
    throw ToolError(kExitCameraLost,
                    came + "; the camera no longer answers, check that it is still plugged in");
  }
  throw ToolError(taken == 0 ? kExitTimeout : kExitIncomplete,
                  came + "; check the trigger line, or wait longer (--timeout)");
}

void TakeFrames(const Camera& camera, FrameWriter& writer, const TriggerOptions& options) {
  std::vector<unsigned char> frame(mailbox.frame.size());
  for (OrmidexUInt32 i = 0; i < options.frames; ++i) {
    if (!AwaitFrame(options.timeout)) FailTrigger(camera, options, i);
    frame.swap(mailbox.frame);
    mailbox.full.store(false);
    const std::string file = NumberedPath(options.output, i);
    RefuseOverwriting(file, options.force);
    writer.Write(frame, file);
    if (file != "-") Say("{}", file);
  }
}

// Leaves trigger mode however the command ends: the library's thread must not
// outlive the buffers.
class Armed {
 public:
  Armed(const Camera& camera, std::vector<unsigned char>& raw, float exposure_ms)
      : camera_(camera) {
    Check(OrmidexReturnFrameAfterTrigger(camera.handle(), exposure_ms, 0, 0.0f, 0, 0.0f, 0.0f,
                                         &OnFrame, 0, raw.data(), nullptr, ORMIDEX_BILINEAR),
          "arming the trigger");
  }
  ~Armed() { OrmidexStopTriggerMode(camera_.handle()); }
  Armed(const Armed&) = delete;
  Armed& operator=(const Armed&) = delete;

 private:
  const Camera& camera_;
};

void RunTrigger(const TriggerOptions& options) {
  const Format format = FormatOf(options.output);
  if (options.frames > 1 && options.output != "-" && !IsPattern(options.output)) {
    FailUsage("'" + options.output +
              "' has no place for the frame number: write it as "
              "frame-####.bmp or frame-%04d.bmp");
  }
  const Camera camera = options.camera.Open();
  const Geometry geometry = camera.ReadGeometry();
  std::vector<unsigned char> raw(geometry.FrameBytes());
  mailbox.frame.resize(raw.size());
  FrameWriter writer(camera, geometry, {format, options.algorithm});
  CatchInterrupts();
  const Armed armed(camera, raw, options.exposure_ms);
  TakeFrames(camera, writer, options);
  if (mailbox.dropped.load() != 0) Say("{} frames came too fast", mailbox.dropped.load());
}

}  // namespace

void AddTrigger(CLI::App& app) {
  CLI::App* command = app.add_subcommand("trigger", "Wait for triggered frames and write them");
  auto options = std::make_shared<TriggerOptions>();
  options->camera.AddTo(*command);
  command
      ->add_option("-o,--output", options->output,
                   "Files to write, with #### or %04d for the number when there are several")
      ->required();
  command->add_option("-n,--frames", options->frames, "Frames to wait for")
      ->check(CLI::PositiveNumber)
      ->capture_default_str();
  command->add_option("--exposure", options->exposure_ms, "Exposure time in ms")
      ->check(CLI::PositiveNumber)
      ->capture_default_str();
  command->add_option("--timeout", options->timeout, "Seconds to wait for each frame")
      ->check(CLI::PositiveNumber)
      ->capture_default_str();
  command->add_option("--algorithm", options->algorithm, "Demosaic algorithm code")
      ->capture_default_str();
  command->add_flag("--force", options->force, "Replace files that exist");
  command->callback([options] { RunTrigger(*options); });
}

}  // namespace ormidex_tool
