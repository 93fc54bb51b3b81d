// ormidex: the cameras from the command line.
#include <cstdio>
#include <exception>

#include "camera.h"
#include "commands.h"
#include "exit_code.h"

namespace ormidex_tool {

void CameraOptions::AddTo(CLI::App& command, bool with_camera) {
  if (with_camera) {
    command.add_option("--camera", camera, "Number of the camera, or its serial number (0x...)")
        ->capture_default_str();
  }
  simulate_option =
      command.add_option("--simulate", simulate, "Use simulated cameras, as described")
          ->expected(0, 1);
}

void CameraOptions::Apply() const {
  if (simulate_option->count() != 0) UseSimulator(simulate == "{}" ? "" : simulate);
}

namespace {

int Run(int argc, char** argv) {
  CLI::App app{"Control cameras on an IEEE 1394 bus"};
  app.require_subcommand(1);
  AddList(app);
  AddInfo(app);
  AddCapture(app);
  try {
    app.parse(argc, argv);
  } catch (const CLI::ParseError& error) {
    const int code = app.exit(error);
    return code == 0 ? kExitOk : kExitUsage;
  } catch (const ToolError& error) {
    std::fprintf(stderr, "ormidex: %s\n", error.what());
    return error.code();
  }
  return kExitOk;
}

}  // namespace
}  // namespace ormidex_tool

int main(int argc, char** argv) {
  try {
    return ormidex_tool::Run(argc, argv);
  } catch (const std::exception& error) {
    std::fprintf(stderr, "ormidex: %s\n", error.what());
    return ormidex_tool::kExitFailure;
  }
}
