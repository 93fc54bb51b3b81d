// Auto exposure and white balance.
#include <cstdio>
#include <memory>

#include "camera.h"
#include "commands.h"
#include "exit_code.h"
#include "frame_statistics.h"
#include "output.h"
#include "settings.h"

namespace ormidex_tool {

namespace {

struct AutoOptions {
  CameraOptions camera;
  OrmidexUInt32 target = 50;
  std::string rectangle;
  std::string white = "1:1:1";
  std::string output;
  std::string save;
  bool force = false;
};

struct Rectangle {
  OrmidexUInt32 use = 0, left = 0, top = 0, width = 0, height = 0;
};

Rectangle ParseRectangle(const std::string& text) {
  Rectangle rectangle;
  if (text.empty()) return rectangle;
  char rest = '\0';
  rectangle.use = 1;
  if (std::sscanf(text.c_str(), "%ux%u+%u+%u%c", &rectangle.width, &rectangle.height,
                  &rectangle.left, &rectangle.top, &rest) != 4) {
    FailUsage("'" + text + "' is no rectangle: give WIDTHxHEIGHT+LEFT+TOP");
  }
  return rectangle;
}

void Expose(const Camera& camera, const AutoOptions& options) {
  const Rectangle r = ParseRectangle(options.rectangle);
  Check(
      OrmidexAutoExposure(camera.handle(), options.target, r.use, r.left, r.top, r.width, r.height),
      "auto exposure");
}

void Balance(const Camera& camera, const AutoOptions& options) {
  unsigned red = 0, green = 0, blue = 0;
  char rest = '\0';
  if (std::sscanf(options.white.c_str(), "%u:%u:%u%c", &red, &green, &blue, &rest) != 3) {
    FailUsage("'" + options.white + "' is no white: give RED:GREEN:BLUE, as 1:1:1");
  }
  const Rectangle r = ParseRectangle(options.rectangle);
  Check(OrmidexWhiteBalance(camera.handle(), r.use, r.left, r.top, r.width, r.height, red, green,
                            blue),
        "white balance");
}

void RunAuto(const AutoOptions& options, void (*control)(const Camera&, const AutoOptions&)) {
  if (!options.output.empty()) {
    FormatOf(options.output);
    RefuseOverwriting(options.output, options.force);
  }
  Camera camera = options.camera.Open();
  const Geometry geometry = camera.ReadGeometry();
  std::vector<unsigned char> frame(geometry.FrameBytes());
  camera.StartStream();
  control(camera, options);
  for (int i = 0; i < 3; ++i) camera.ReadFrame(frame);
  const nlohmann::ordered_json settings = ReadAll(camera);
  for (const auto& [name, value] : settings.items()) {
    if (name.rfind("exposure", 0) == 0 || name.rfind("gain", 0) == 0) {
      fmt::print("{}={}\n", name, value.get<std::string>());
    }
  }
  Say("mean level {:.1f} of 255", Measure(frame, geometry).mean);
  if (!options.save.empty()) SaveSettings(camera, options.save);
  if (options.output.empty()) return;
  FrameWriter(camera, geometry, {FormatOf(options.output), ORMIDEX_BILINEAR})
      .Write(frame, options.output);
}

CLI::App* AddControl(CLI::App& parent, const char* name, const char* description,
                     const std::shared_ptr<AutoOptions>& options,
                     void (*control)(const Camera&, const AutoOptions&)) {
  CLI::App* command = parent.add_subcommand(name, description);
  options->camera.AddTo(*command);
  command->add_option("--rectangle", options->rectangle,
                      "Part of the frame that counts, WIDTHxHEIGHT+LEFT+TOP");
  command->add_option("--save", options->save, "Write the settings found to this file");
  command->add_option("-o,--output", options->output, "Write a picture taken afterwards");
  command->add_flag("--force", options->force, "Replace a file that exists");
  command->callback([options, control] { RunAuto(*options, control); });
  return command;
}

}  // namespace

void AddAuto(CLI::App& app) {
  CLI::App* command = app.add_subcommand("auto", "Run auto exposure or white balance");
  command->require_subcommand(1);
  auto exposure = std::make_shared<AutoOptions>();
  AddControl(*command, "exposure", "Find the exposure", exposure, &Expose)
      ->add_option("--target", exposure->target, "Mean level to reach, in percent")
      ->check(CLI::Range(0, 100))
      ->capture_default_str();
  auto balance = std::make_shared<AutoOptions>();
  AddControl(*command, "white-balance", "Find the colour gains", balance, &Balance)
      ->add_option("--white", balance->white, "Colour that counts as white, RED:GREEN:BLUE")
      ->capture_default_str();
}

}  // namespace ormidex_tool
