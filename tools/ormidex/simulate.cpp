// Simulated cameras: what can be described, and whether a description is right.
#include <cstdio>
#include <cstdlib>
#include <memory>

#include "camera.h"
#include "child.h"
#include "commands.h"
#include "exit_code.h"

namespace ormidex_tool {

namespace {

constexpr char kHelp[] =
    "Cameras are separated by ';', each a list of key=value separated by ','; a number N stands\n"
    "for N default cameras (colour, second generation). For example:\n\n"
    "  ormidex simulate '2'                                  two cameras\n"
    "  ormidex simulate 'generation=1,imager=mono'           a monochrome one\n"
    "  ormidex simulate 'scene=grey:128,noise=2,seed=7'      noisy grey\n"
    "  ormidex simulate 'fault=unplug:400'                   pulled at its 400th request\n\n"
    "docs/simulator.md lists all keys. After '--' a program can be named; it is run with these\n"
    "cameras and no others.";

void RunSimulate(const std::string& description) {
  UseSimulator(description);
  if (!ProgramWords().empty()) {
    Child child(ProgramWords());
    while (!child.Wait(1000)) {
    }
    if (child.exit_code() != 0) std::exit(child.exit_code());
    return;
  }
  const OrmidexUInt32 count = CountCameras();
  if (count == 0) FailUsage("the description gives no camera");
  fmt::print("the description gives {} camera{}\n", count, count == 1 ? "" : "s");
}

}  // namespace

void AddSimulate(CLI::App& app) {
  CLI::App* command = app.add_subcommand(
      "simulate", "Check a description of simulated cameras, or run a program with them");
  command->footer(kHelp);
  auto description = std::make_shared<std::string>();
  command->add_option("description", *description, "The cameras")->required();
  command->callback([description] { RunSimulate(*description); });
}

}  // namespace ormidex_tool
