// The subcommands. Each Add function declares one; its action runs when the command
// line has been read.
#ifndef ORMIDEX_TOOLS_COMMANDS_H_
#define ORMIDEX_TOOLS_COMMANDS_H_

#include <CLI/CLI.hpp>
#include <string>

namespace ormidex_tool {

// Options that every subcommand which opens a camera has.
struct CameraOptions {
  std::string camera = "0";
  std::string simulate;
  CLI::Option* simulate_option = nullptr;

  void AddTo(CLI::App& command, bool with_camera = true);
  // Puts the simulator in place if asked for; call before anything else.
  void Apply() const;
};

void AddList(CLI::App& app);
void AddInfo(CLI::App& app);
void AddCapture(CLI::App& app);

}  // namespace ormidex_tool

#endif  // ORMIDEX_TOOLS_COMMANDS_H_
