#include <cstdio>
#include <memory>

#include "camera.h"
#include "commands.h"
#include "exit_code.h"

namespace ormidex_tool {

namespace {

void RunList() {
  const OrmidexUInt32 count = CountCameras();
  if (count == 0) {
    throw ToolError(kExitNoCamera,
                    "no camera is connected; plug one in, or try --simulate for a simulated one");
  }
  std::printf("%-7s %-11s %-11s %-11s\n", "camera", "serial", "firmware", "imager");
  for (OrmidexUInt32 index = 0; index < count; ++index) {
    const Camera camera(index);
    std::printf("%-7u %-11s %-11s %-11s\n", index, camera.SerialText().c_str(),
                camera.FirmwareText().c_str(), camera.TypeText().c_str());
  }
}

}  // namespace

void AddList(CLI::App& app) {
  CLI::App* command = app.add_subcommand("list", "List the cameras");
  auto options = std::make_shared<CameraOptions>();
  options->AddTo(*command, false);
  command->callback([options] {
    options->Apply();
    RunList();
  });
}

}  // namespace ormidex_tool
