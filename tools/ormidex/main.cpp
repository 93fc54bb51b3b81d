// ormidex: the cameras from the command line.
#include <cstdarg>
#include <cstdio>
#include <exception>

#include "camera.h"
#include "commands.h"
#include "exit_code.h"
#include "settings.h"

namespace ormidex_tool {

namespace {

bool quiet = false;
bool verbose = false;

void SayTo(bool wanted, const char* format, std::va_list arguments) {
  if (!wanted) return;
  std::vfprintf(stderr, format, arguments);
  std::fputc('\n', stderr);
}

}  // namespace

bool IsQuiet() { return quiet; }

void Say(const char* format, ...) {
  std::va_list arguments;
  va_start(arguments, format);
  SayTo(!quiet, format, arguments);
  va_end(arguments);
}

void SayDetail(const char* format, ...) {
  std::va_list arguments;
  va_start(arguments, format);
  SayTo(verbose && !quiet, format, arguments);
  va_end(arguments);
}

void CameraOptions::AddTo(CLI::App& command) {
  command.add_option("--camera", camera, "Number of the camera, or its serial number (0x...)")
      ->capture_default_str();
  AddSimulateTo(command);
  command.add_option("--trace", trace, "Write every driver request to this file");
  command.add_option("--set", settings, "Settings to make first: key=value,...")
      ->allow_extra_args(false);
  command.add_option("--load", load, "Settings file to load first");
}

void CameraOptions::AddSimulateTo(CLI::App& command) {
  simulate_option =
      command.add_option("--simulate", simulate, "Use simulated cameras, as described")
          ->expected(0, 1);
}

void CameraOptions::Apply() const {
  if (simulate_option->count() != 0) UseSimulator(simulate == "{}" ? "" : simulate);
  if (!trace.empty()) SetEnvironment("ORMIDEX_TRACE", trace);
}

Camera CameraOptions::Open() const {
  Apply();
  Assignments assignments;
  if (!load.empty()) assignments = LoadSettings(load);
  for (const std::string& text : settings) {
    for (auto& assignment : ParseAssignments(text)) assignments.push_back(assignment);
  }
  Camera opened(FindCamera(camera));
  SayDetail("opened camera %u, serial number %s", opened.index(), opened.SerialText().c_str());
  ormidex_tool::Apply(opened, assignments);
  return opened;
}

namespace {

constexpr char kFooter[] =
    "Exit codes: 0 ok, 1 failure, 2 usage, 3 no camera, 4 camera busy or no permission,\n"
    "5 time-out, 6 camera lost, 7 incomplete. 'ormidex COMMAND --help' explains a command.";

void AddCommands(CLI::App& app) {
  AddList(app);
  AddInfo(app);
  AddGet(app);
  AddSet(app);
  AddCapture(app);
  AddRecord(app);
  AddPreview(app);
  AddConvert(app);
  AddTrigger(app);
  AddAuto(app);
  AddRegister(app);
  AddTrace(app);
  AddSimulate(app);
  AddBench(app);
  AddSelftest(app);
  AddReport(app);
}

int Run(int argc, char** argv) {
  CLI::App app{"Control cameras on an IEEE 1394 bus"};
  app.name("ormidex");
  app.footer(kFooter);
  app.require_subcommand(1);
  app.set_version_flag("--version", "ormidex " ORMIDEX_TOOL_VERSION);
  app.add_flag("-q,--quiet", quiet, "Say nothing but errors");
  app.add_flag("-v,--verbose", verbose, "Say more of what is done");
  AddCommands(app);
  try {
    app.parse(argc, argv);
  } catch (const CLI::ParseError& error) {
    const int code = app.exit(error);
    return code == 0 ? kExitOk : kExitUsage;
  }
  return kExitOk;
}

}  // namespace
}  // namespace ormidex_tool

int main(int argc, char** argv) {
  using namespace ormidex_tool;
  try {
    return Run(argc, argv);
  } catch (const ToolError& error) {
    std::fprintf(stderr, "ormidex: %s\n", error.what());
    return error.code();
  } catch (const std::exception& error) {
    std::fprintf(stderr, "ormidex: %s\n", error.what());
    return kExitFailure;
  }
}
