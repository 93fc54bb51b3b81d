// Driver requests in words.
#include <cstdio>
#include <memory>

#include "camera.h"
#include "commands.h"
#include "exit_code.h"
#include "trace_file.h"

namespace ormidex_tool {

namespace {

struct TraceOptions {
  CameraOptions camera;
  std::string file;
  std::string compare;
  OrmidexUInt32 frames = 1;
};

void Print(const nlohmann::json& request) {
  std::printf("%10.6f %6u us  %s\n", request.value("t", 0.0), request.value("us", 0u),
              Explain(request).c_str());
}

// The first difference, and how many requests each run has.
void Compare(const TraceOptions& options) {
  const auto first = ReadTrace(options.file);
  const auto second = ReadTrace(options.compare);
  const std::size_t common = std::min(first.size(), second.size());
  for (std::size_t i = 0; i < common; ++i) {
    if (Essence(first[i]) == Essence(second[i])) continue;
    std::printf("request %zu differs:\n  %s\n  %s\n", i + 1, Explain(first[i]).c_str(),
                Explain(second[i]).c_str());
    throw ToolError(kExitFailure, "the traces differ");
  }
  if (first.size() != second.size()) {
    throw ToolError(kExitFailure, "the traces are the same for " + std::to_string(common) +
                                      " requests; one has " + std::to_string(first.size()) +
                                      ", the other " + std::to_string(second.size()));
  }
  std::printf("the traces are the same: %zu requests\n", common);
}

// Opens a camera, reads frames and closes it, with the trace going to a file that
// is printed afterwards.
void Record(const TraceOptions& options) {
  const std::string path =
      options.camera.trace.empty() ? "ormidex-trace.json" : options.camera.trace;
  TraceOptions traced = options;
  traced.camera.trace = path;
  {
    Camera camera = traced.camera.Open();
    std::vector<unsigned char> frame(camera.ReadGeometry().FrameBytes());
    if (options.frames != 0) camera.StartStream();
    for (OrmidexUInt32 i = 0; i < options.frames; ++i) camera.ReadFrame(frame);
  }
  for (const auto& request : ReadTrace(path)) Print(request);
  if (options.camera.trace.empty()) std::remove(path.c_str());
}

void RunTrace(const TraceOptions& options) {
  if (!options.compare.empty()) {
    if (options.file.empty()) FailUsage("give the two traces: trace FILE --compare OTHER");
    Compare(options);
  } else if (!options.file.empty()) {
    for (const auto& request : ReadTrace(options.file)) Print(request);
  } else {
    Record(options);
  }
}

}  // namespace

void AddTrace(CLI::App& app) {
  CLI::App* command =
      app.add_subcommand("trace", "Print driver requests in words, from a file or of a camera");
  command->footer(
      "Without a file the camera is opened, frames are read, and all requests of that run are\n"
      "printed. Every command writes a trace with --trace FILE.");
  auto options = std::make_shared<TraceOptions>();
  options->camera.AddTo(*command);
  command->add_option("file", options->file, "Trace to print");
  command->add_option("--compare", options->compare, "Another trace, to find the first difference");
  command->add_option("-n,--frames", options->frames, "Frames to read")->capture_default_str();
  command->callback([options] { RunTrace(*options); });
}

}  // namespace ormidex_tool
