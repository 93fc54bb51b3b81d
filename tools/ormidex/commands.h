// The subcommands. Each Add function declares one; its action runs when the command
// line has been read.
#ifndef ORMIDEX_TOOLS_COMMANDS_H_
#define ORMIDEX_TOOLS_COMMANDS_H_

#include <fmt/format.h>

#include <CLI/CLI.hpp>
#include <cstdio>
#include <string>
#include <utility>
#include <vector>

#include "camera.h"

namespace ormidex_tool {

// Options that every subcommand which opens a camera has.
struct CameraOptions {
  std::string camera = "0";
  std::string simulate;
  std::string trace;
  std::vector<std::string> settings;  // each "key=value,..."
  std::string load;
  CLI::Option* simulate_option = nullptr;

  void AddTo(CLI::App& command);
  // For a subcommand that looks at all cameras.
  void AddSimulateTo(CLI::App& command);
  // Puts simulator and trace in place if asked for; call before anything else.
  void Apply() const;
  // Applies, opens the camera and makes the settings.
  Camera Open() const;
};

bool IsQuiet();
bool IsVerbose();

// Said unless --quiet; details only with --verbose. Both on standard error.
template <typename... Arguments>
void Say(fmt::format_string<Arguments...> format, Arguments&&... arguments) {
  if (IsQuiet()) return;
  fmt::print(stderr, "{}\n", fmt::format(format, std::forward<Arguments>(arguments)...));
}
template <typename... Arguments>
void SayDetail(fmt::format_string<Arguments...> format, Arguments&&... arguments) {
  if (IsVerbose()) Say(format, std::forward<Arguments>(arguments)...);
}

// The words behind "--" of 'trace' and 'simulate': a program and its arguments.
const std::vector<std::string>& ProgramWords();

void AddList(CLI::App& app);
void AddInfo(CLI::App& app);
void AddGet(CLI::App& app);
void AddSet(CLI::App& app);
void AddCapture(CLI::App& app);
void AddRecord(CLI::App& app);
void AddPreview(CLI::App& app);
void AddConvert(CLI::App& app);
void AddTrigger(CLI::App& app);
void AddAuto(CLI::App& app);
void AddRegister(CLI::App& app);
void AddTrace(CLI::App& app);
void AddSimulate(CLI::App& app);
void AddBench(CLI::App& app);
void AddSelftest(CLI::App& app);
void AddReport(CLI::App& app);

}  // namespace ormidex_tool

#endif  // ORMIDEX_TOOLS_COMMANDS_H_
