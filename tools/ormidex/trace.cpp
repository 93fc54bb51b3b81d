// Driver requests in words: of a file, of a file that is being written, of a camera
// and of another program.
#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <optional>

#include "camera.h"
#include "child.h"
#include "commands.h"
#include "exit_code.h"
#include "interrupt.h"
#include "pause.h"
#include "temporary_file.h"
#include "trace_file.h"
#include "trace_words.h"

namespace ormidex_tool {

namespace {

constexpr unsigned kPollMilliseconds = 20;

struct TraceOptions {
  CameraOptions camera;
  std::string file;
  std::string compare;
  bool follow = false;
  OrmidexUInt32 frames = 1;
  CLI::Option* frames_option = nullptr;
};

void Print(const std::vector<nlohmann::json>& requests) {
  for (const auto& request : requests) {
    fmt::print("{:10.6f} {:6} us  {}\n", request.value("t", 0.0), request.value("us", 0u),
               Explain(request));
  }
  if (!requests.empty()) std::fflush(stdout);  // whoever watches wants each at once
}

// The first difference, and how many requests each run has.
void Compare(const TraceOptions& options) {
  const auto first = ReadTrace(options.file);
  const auto second = ReadTrace(options.compare);
  const std::size_t common = std::min(first.size(), second.size());
  for (std::size_t i = 0; i < common; ++i) {
    if (Essence(first[i]) == Essence(second[i])) continue;
    fmt::print("request {} differs:\n  {}\n  {}\n", i + 1, Explain(first[i]), Explain(second[i]));
    throw ToolError(kExitFailure, "the traces differ");
  }
  if (first.size() != second.size()) {
    throw ToolError(kExitFailure,
                    fmt::format("the traces are the same for {} requests; one has {}, the other {}",
                                common, first.size(), second.size()));
  }
  fmt::print("the traces are the same: {} requests\n", common);
}

void Follow(const std::string& path) {
  CatchInterrupts();
  TraceReader reader(path);
  while (!Interrupted()) {
    Print(reader.ReadNew());
    PauseMilliseconds(kPollMilliseconds);
  }
  Print(reader.ReadNew());
}

// Where the requests of this run go: to the file that is asked for, or to one that
// does not outlive it.
class RunTrace {
 public:
  explicit RunTrace(const std::string& wanted) {
    CatchBrokenPipe();
    if (wanted.empty()) temporary_.emplace();
    if (!wanted.empty()) std::remove(wanted.c_str());  // requests of an earlier run
    path_ = wanted.empty() ? temporary_->path() : wanted;
    SetEnvironment("ORMIDEX_TRACE", path_);
  }
  const std::string& path() const { return path_; }

 private:
  std::optional<TemporaryFile> temporary_;
  std::string path_;
};

// Opens a camera, reads frames and closes it; after each step its requests.
void TraceCamera(const TraceOptions& options) {
  const RunTrace trace(options.camera.trace);
  TraceReader reader(trace.path());
  {
    Camera camera = options.camera.Open();
    Print(reader.ReadNew());
    std::vector<unsigned char> frame(camera.ReadGeometry().FrameBytes());
    if (options.frames != 0) camera.StartStream();
    for (OrmidexUInt32 i = 0; i < options.frames; ++i) {
      camera.ReadFrame(frame);
      Print(reader.ReadNew());
    }
  }
  Print(reader.ReadNew());
}

// Returns the program's exit code.
int TraceProgram(const TraceOptions& options) {
  const CameraOptions& camera = options.camera;
  if (!options.file.empty() || !camera.settings.empty() || !camera.load.empty() ||
      options.frames_option->count() != 0) {
    FailUsage("a program opens cameras itself: only --simulate and --trace go with it");
  }
  const RunTrace trace(camera.trace);
  camera.Apply();
  CatchInterrupts();  // they are for the program; what it did until then is printed
  Child program(ProgramWords());
  TraceReader reader(trace.path());
  std::size_t count = 0;
  for (bool ended = false; !ended;) {
    ended = program.Wait(kPollMilliseconds);
    const auto requests = reader.ReadNew();
    Print(requests);
    count += requests.size();
  }
  if (count == 0) Say("'{}' made no request to a camera", ProgramWords()[0]);
  return program.exit_code();
}

void RunTraceCommand(const TraceOptions& options) {
  if (!ProgramWords().empty()) {
    const int code = TraceProgram(options);
    if (code != 0) std::exit(code);
  } else if (!options.compare.empty()) {
    if (options.file.empty()) FailUsage("give the two traces: trace FILE --compare OTHER");
    Compare(options);
  } else if (options.follow) {
    if (options.file.empty()) FailUsage("give the trace to follow: trace --follow FILE");
    Follow(options.file);
  } else if (!options.file.empty()) {
    Print(ReadTrace(options.file));
  } else {
    TraceCamera(options);
  }
}

}  // namespace

void AddTrace(CLI::App& app) {
  CLI::App* command = app.add_subcommand(
      "trace", "Print driver requests in words: of a file, a camera or another program");
  command->footer(
      "<- goes to the camera, -> comes from it.\n\n"
      "  ormidex trace                  open a camera, read frames, print each request\n"
      "  ormidex trace -- PROGRAM ...   run a program, print its requests as it makes them\n"
      "  ormidex trace FILE             print a trace\n"
      "  ormidex trace --follow FILE    print a trace while it is written, until Ctrl-C\n"
      "  ormidex trace FILE --compare OTHER\n\n"
      "Every command writes a trace with --trace FILE, every program with ORMIDEX_TRACE=FILE\n"
      "in its environment.");
  auto options = std::make_shared<TraceOptions>();
  options->camera.AddTo(*command);
  command->add_option("file", options->file, "Trace to print");
  CLI::Option* compare = command->add_option("--compare", options->compare,
                                             "Another trace, to find the first difference");
  command->add_flag("-f,--follow", options->follow, "Go on while the trace is written")
      ->excludes(compare);
  options->frames_option =
      command->add_option("-n,--frames", options->frames, "Frames to read")->capture_default_str();
  command->callback([options] { RunTraceCommand(*options); });
}

}  // namespace ormidex_tool
