#include <cstdio>
#include <memory>
#include <nlohmann/json.hpp>

#include "camera.h"
#include "commands.h"
#include "exit_code.h"

namespace ormidex_tool {

namespace {

void PrintTable(OrmidexUInt32 count) {
  fmt::print("{:<7} {:<11} {:<11} {}\n", "camera", "serial", "firmware", "imager");
  for (OrmidexUInt32 index = 0; index < count; ++index) {
    const Camera camera(index);
    fmt::print("{:<7} {:<11} {:<11} {}\n", index, camera.SerialText(), camera.FirmwareText(),
               camera.TypeText());
  }
}

void PrintJson(OrmidexUInt32 count) {
  nlohmann::ordered_json document = {{"schema", "ormidex-list"}, {"version", 1}};
  document["cameras"] = nlohmann::ordered_json::array();
  for (OrmidexUInt32 index = 0; index < count; ++index) {
    const Camera camera(index);
    document["cameras"].push_back({{"camera", index},
                                   {"serial", camera.SerialText()},
                                   {"firmware", camera.FirmwareText()},
                                   {"imager", camera.TypeText()}});
  }
  fmt::print("{}\n", document.dump(2));
}

}  // namespace

void AddList(CLI::App& app) {
  CLI::App* command = app.add_subcommand("list", "List the cameras");
  auto options = std::make_shared<CameraOptions>();
  auto json = std::make_shared<bool>(false);
  options->AddSimulateTo(*command);
  command->add_flag("--json", *json, "Print JSON");
  command->callback([options, json] {
    options->Apply();
    const OrmidexUInt32 count = CountCameras();
    if (*json) {
      PrintJson(count);
    } else if (count != 0) {
      PrintTable(count);
    }
    if (count == 0) FailNoCamera();
  });
}

}  // namespace ormidex_tool
