// Simulated cameras: what can be described, and whether a description is right.
#include <cstdio>
#include <cstdlib>
#include <memory>

#include "camera.h"
#include "commands.h"
#include "exit_code.h"

namespace ormidex_tool {

namespace {

struct SimulateOptions {
  std::string description;
  std::vector<std::string> program;
};

constexpr char kHelp[] =
    "Cameras are separated by ';', each a list of key=value separated by ','; a number N stands\n"
    "for N default cameras (colour, second generation). For example:\n\n"
    "  ormidex simulate '2'                                  two cameras\n"
    "  ormidex simulate 'generation=1,imager=mono'           a monochrome one\n"
    "  ormidex simulate 'scene=grey:128,noise=2,seed=7'      noisy grey\n"
    "  ormidex simulate 'fault=unplug:400'                   pulled at its 400th request\n\n"
    "docs/simulator.md lists all keys. After '--' a program can be named; it is run with these\n"
    "cameras and no others.";

std::string Quoted(const std::string& word) {
#ifdef _WIN32
  return "\"" + word + "\"";
#else
  std::string quoted = "'";
  for (const char c : word) quoted += c == '\'' ? std::string("'\\''") : std::string(1, c);
  return quoted + "'";
#endif
}

int RunProgram(const std::vector<std::string>& program) {
  std::string line;
  for (const std::string& word : program) line += (line.empty() ? "" : " ") + Quoted(word);
  const int status = std::system(line.c_str());
  if (status == -1) throw ToolError(kExitFailure, "'" + program[0] + "' could not be started");
#ifdef _WIN32
  return status;
#else
  return status > 255 ? status >> 8 : status == 0 ? 0 : 1;
#endif
}

void RunSimulate(const SimulateOptions& options) {
  UseSimulator(options.description);
  if (!options.program.empty()) {
    const int code = RunProgram(options.program);
    if (code != 0) std::exit(code);
    return;
  }
  const OrmidexUInt32 count = CountCameras();
  if (count == 0) FailUsage("the description gives no camera");
  std::printf("the description gives %u camera%s\n", count, count == 1 ? "" : "s");
}

}  // namespace

void AddSimulate(CLI::App& app) {
  CLI::App* command = app.add_subcommand(
      "simulate", "Check a description of simulated cameras, or run a program with them");
  command->footer(kHelp);
  auto options = std::make_shared<SimulateOptions>();
  command->add_option("description", options->description, "The cameras")->required();
  command->add_option("program", options->program, "Program to run, with its arguments");
  command->positionals_at_end(false);
  command->callback([options] { RunSimulate(*options); });
}

}  // namespace ormidex_tool
