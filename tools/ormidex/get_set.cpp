#include <cstdio>
#include <memory>

#include "commands.h"
#include "exit_code.h"
#include "settings.h"

namespace ormidex_tool {

namespace {

struct GetOptions {
  CameraOptions camera;
  std::vector<std::string> names;
  bool json = false;
  bool explain = false;
};

void PrintValues(const nlohmann::ordered_json& values, bool json) {
  if (json) {
    const nlohmann::ordered_json document = {
        {"schema", "ormidex-settings"}, {"version", 1}, {"settings", values}};
    fmt::print("{}\n", document.dump(2));
    return;
  }
  for (const auto& [name, value] : values.items()) {
    fmt::print("{}={}\n", name, value.get<std::string>());
  }
}

void ExplainJson() {
  nlohmann::ordered_json document = {{"schema", "ormidex-settings-help"}, {"version", 1}};
  document["settings"] = nlohmann::ordered_json::array();
  for (const Setting& setting : Settings()) {
    document["settings"].push_back({{"name", setting.name},
                                    {"unit", setting.unit},
                                    {"range", setting.range},
                                    {"help", setting.help},
                                    {"can-be-set", setting.write != nullptr}});
  }
  fmt::print("{}\n", document.dump(2));
}

void Explain() {
  for (const Setting& setting : Settings()) {
    const std::string unit = *setting.unit != '\0' ? fmt::format(" [{}]", setting.unit) : "";
    fmt::print("{}{}\n    {}: {}{}\n", setting.name, unit, setting.help, setting.range,
               setting.write == nullptr ? " (cannot be set)" : "");
  }
}

void RunGet(const GetOptions& options) {
  if (options.explain) {
    options.json ? ExplainJson() : Explain();
    return;
  }
  for (const std::string& name : options.names) FindSetting(name);
  const Camera camera = options.camera.Open();
  if (options.names.empty()) {
    PrintValues(ReadAll(camera), options.json);
    return;
  }
  nlohmann::ordered_json values = nlohmann::ordered_json::object();
  for (const std::string& name : options.names) {
    std::string value;
    Check(FindSetting(name).read(camera.handle(), &value), "reading '" + name + "'");
    values[name] = value;
  }
  PrintValues(values, options.json);
}

struct SetOptions {
  CameraOptions camera;
  std::vector<std::string> assignments;
  std::string save;
  bool json = false;
};

void RunSet(const SetOptions& options) {
  if (options.assignments.empty() && options.save.empty() && options.camera.load.empty()) {
    FailUsage(
        "nothing to set: give key=value, --load or --save; 'ormidex get --explain' lists "
        "the settings");
  }
  Assignments assignments;
  for (const std::string& text : options.assignments) {
    for (auto& assignment : ParseAssignments(text)) assignments.push_back(assignment);
  }
  const Camera camera = options.camera.Open();
  Apply(camera, assignments);
  if (!options.save.empty()) SaveSettings(camera, options.save);
  PrintValues(ReadAll(camera), options.json);
}

}  // namespace

void AddGet(CLI::App& app) {
  CLI::App* command = app.add_subcommand("get", "Read settings of a camera");
  auto options = std::make_shared<GetOptions>();
  options->camera.AddTo(*command);
  command->add_option("settings", options->names, "Settings to read; all of them if none is named");
  command->add_flag("--json", options->json, "Print JSON");
  command->add_flag("--explain", options->explain, "Explain all settings, units and ranges");
  command->callback([options] { RunGet(*options); });
}

void AddSet(CLI::App& app) {
  CLI::App* command = app.add_subcommand(
      "set", "Make settings, check that the camera takes them, save and load them");
  command->footer(
      "Opening a camera puts it into its default state, so that settings last as long as the\n"
      "camera is open. To take pictures with settings, save them here and give --load FILE to\n"
      "'capture' or 'record', or give --set key=value,... there.");
  auto options = std::make_shared<SetOptions>();
  options->camera.AddTo(*command);
  command->add_option("assignments", options->assignments, "key=value,...");
  command->add_option("--save", options->save, "Write all settings to this file afterwards");
  command->add_flag("--json", options->json, "Print JSON");
  command->callback([options] { RunSet(*options); });
}

}  // namespace ormidex_tool
