// ormidex: the cameras from the command line.
#include <algorithm>
#include <cstdio>
#include <exception>
#include <system_error>

#include "camera.h"
#include "commands.h"
#include "exit_code.h"
#include "settings.h"

namespace ormidex_tool {

namespace {

bool quiet = false;
bool verbose = false;

std::vector<std::string> program_words;

}  // namespace

bool IsQuiet() { return quiet; }
bool IsVerbose() { return verbose; }

const std::vector<std::string>& ProgramWords() { return program_words; }

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
          ->type_name("[DESCRIPTION]");
}

void CameraOptions::Apply() const {
  if (simulate_option->count() != 0) UseSimulator(simulate);
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
  SayDetail("opened camera {}, serial number {}", opened.index(), opened.SerialText());
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

// Whether all of "key[=value],..." are settings of a camera.
bool NamesSettings(const std::string& text) {
  std::size_t start = 0;
  while (start <= text.size()) {
    const std::size_t end = std::min(text.find(',', start), text.size());
    const std::string item = text.substr(start, end - start);
    bool known = false;
    for (const Setting& setting : Settings()) {
      known = known || item.substr(0, item.find('=')) == setting.name;
    }
    if (!known) return false;
    start = end + 1;
  }
  return true;
}

// The word behind --simulate is a description when it is a number or has key=value,
// unless its keys are settings: 'set --simulate exposure=10' sets the exposure.
bool IsDescription(const std::string& word) {
  const bool number = !word.empty() && word.find_first_not_of("0123456789;") == std::string::npos;
  return number || (word.find('=') != std::string::npos && word[0] != '-' && !NamesSettings(word));
}

// Ties each --simulate to its description, or to the default one, so that it never
// takes an argument of the command for its own.
std::vector<std::string> TieDescriptions(int argc, char** argv) {
  std::vector<std::string> words(argv + 1, argv + argc);
  for (std::size_t i = 0; i < words.size() && words[i] != "--"; ++i) {
    if (words[i] != "--simulate") continue;
    const bool described = i + 1 < words.size() && IsDescription(words[i + 1]);
    words[i] += "=" + (described ? words[i + 1] : std::string("1"));
    if (described) words.erase(words.begin() + static_cast<std::ptrdiff_t>(i) + 1);
  }
  return words;
}

// Takes the words behind "--" for a program, of the commands that run one; to the
// others "--" means that no option follows.
void SplitProgram(std::vector<std::string>& words) {
  const auto command = std::find_if(words.begin(), words.end(), [](const std::string& word) {
    return !word.empty() && word[0] != '-';
  });
  if (command == words.end() || (*command != "trace" && *command != "simulate")) return;
  const auto mark = std::find(words.begin(), words.end(), "--");
  if (mark == words.end()) return;
  if (mark + 1 == words.end()) FailUsage("no program is named behind '--'");
  program_words.assign(mark + 1, words.end());
  words.erase(mark, words.end());
}

int Run(int argc, char** argv) {
  CLI::App app{"Control cameras on an IEEE 1394 bus"};
  app.name("ormidex");
  app.footer(kFooter);
  app.require_subcommand(1);
  app.fallthrough();
  app.set_version_flag("--version", "ormidex " ORMIDEX_TOOL_VERSION);
  app.add_flag("-q,--quiet", quiet, "Say nothing but errors");
  app.add_flag("-v,--verbose", verbose, "Say more of what is done");
  AddCommands(app);
  try {
    std::vector<std::string> words = TieDescriptions(argc, argv);
    SplitProgram(words);
    std::reverse(words.begin(), words.end());  // the parser takes them from the back
    app.parse(words);
  } catch (const CLI::ParseError& error) {
    const int code = app.exit(error);
    return code == 0 ? kExitOk : kExitUsage;
  }
  if (std::fflush(stdout) != 0) {
    throw ToolError(kExitIncomplete, "standard output is not complete: the disk may be full");
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
    fmt::print(stderr, "ormidex: {}\n", error.what());
    return error.code();
  } catch (const std::system_error& error) {
    fmt::print(stderr, "ormidex: the output is not complete: {}\n", error.code().message());
    return kExitIncomplete;
  } catch (const std::exception& error) {
    fmt::print(stderr, "ormidex: {}\n", error.what());
    return kExitFailure;
  }
}
