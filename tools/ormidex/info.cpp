#include <cstdio>
#include <memory>

#include "camera.h"
#include "commands.h"
#include "exit_code.h"
#include "settings.h"

namespace ormidex_tool {

namespace {

using Json = nlohmann::ordered_json;

Json Identity(const Camera& camera) {
  OrmidexHardwareVersion version = {};
  Check(OrmidexGetHardwareVersion(camera.handle(), &version), "reading the hardware version");
  return {{"camera", camera.index()},
          {"description", version.description},
          {"serial", camera.SerialText()},
          {"firmware", camera.FirmwareText()},
          {"firmware-version", version.firmwareVersion},
          {"hardware-revision", version.hardwareRevision},
          {"imager", camera.TypeText()},
          {"generation", version.imagerGeneration}};
}

Json FrameFacts(const Camera& camera) {
  const Geometry geometry = camera.ReadGeometry();
  return {{"width", geometry.width},
          {"height", geometry.height},
          {"bits", geometry.bytes_per_pixel * 8},
          {"bytes", geometry.FrameBytes()},
          {"frames-a-second", camera.FrameRateAsked()}};
}

void PrintSection(const Json& section) {
  for (const auto& [name, value] : section.items()) {
    const std::string text = value.is_string() ? value.get<std::string>() : value.dump();
    fmt::print("{:<18} {}\n", name, text);
  }
}

}  // namespace

void AddInfo(CLI::App& app) {
  CLI::App* command = app.add_subcommand("info", "Show what a camera is and how it is set");
  auto options = std::make_shared<CameraOptions>();
  auto json = std::make_shared<bool>(false);
  options->AddTo(*command);
  command->add_flag("--json", *json, "Print JSON");
  command->callback([options, json] {
    const Camera camera = options->Open();
    Json document = {{"schema", "ormidex-info"}, {"version", 1}};
    document["identity"] = Identity(camera);
    document["frame"] = FrameFacts(camera);
    document["settings"] = ReadAll(camera);
    if (*json) {
      fmt::print("{}\n", document.dump(2));
      return;
    }
    PrintSection(document["identity"]);
    PrintSection(document["frame"]);
    PrintSection(document["settings"]);
  });
}

}  // namespace ormidex_tool
