#include <cstdio>
#include <memory>

#include "camera.h"
#include "commands.h"
#include "exit_code.h"

namespace ormidex_tool {

namespace {

void Row(const char* name, const std::string& value) {
  std::printf("%-18s %s\n", name, value.c_str());
}

std::string ExposureText(const Camera& camera) {
  float milliseconds = 0.0f;
  Check(OrmidexGetExposureTime(camera.handle(), &milliseconds), "reading the exposure time");
  char text[32];
  std::snprintf(text, sizeof(text), "%.3f ms", static_cast<double>(milliseconds));
  return text;
}

std::string GainText(const Camera& camera) {
  OrmidexUInt32 red = 0;
  OrmidexUInt32 green = 0;
  OrmidexUInt32 blue = 0;
  if (!camera.IsColour()) {
    Check(OrmidexGetMonoGain(camera.handle(), &red), "reading the gain");
    return std::to_string(red);
  }
  Check(OrmidexGetRedGain(camera.handle(), &red), "reading the red gain");
  Check(OrmidexGetGreenGain(camera.handle(), &green), "reading the green gain");
  Check(OrmidexGetBlueGain(camera.handle(), &blue), "reading the blue gain");
  return "red " + std::to_string(red) + ", green " + std::to_string(green) + ", blue " +
         std::to_string(blue);
}

void RunInfo(OrmidexUInt32 index) {
  const Camera camera(index);
  OrmidexHardwareVersion version = {};
  Check(OrmidexGetHardwareVersion(camera.handle(), &version), "reading the hardware version");
  char name[81] = {};
  Check(OrmidexGetImagerName(camera.handle(), name), "reading the imager name");
  const Geometry geometry = camera.ReadGeometry();

  Row("camera", std::to_string(index));
  Row("description", version.description);
  Row("name", name);
  Row("serial number", camera.SerialText());
  Row("firmware", camera.FirmwareText());
  Row("imager", camera.TypeText() + ", generation " + std::to_string(version.imagerGeneration));
  Row("frame", std::to_string(geometry.width) + " x " + std::to_string(geometry.height) + ", " +
                   std::to_string(geometry.bytes_per_pixel * 8) + " bits");
  Row("sub-window", "column " + std::to_string(geometry.column) + ", row " +
                        std::to_string(geometry.row) + ", sub-sampling " +
                        std::to_string(geometry.factor));
  Row("exposure", ExposureText(camera));
  Row("gain", GainText(camera));
}

}  // namespace

void AddInfo(CLI::App& app) {
  CLI::App* command = app.add_subcommand("info", "Show what a camera is and how it is set");
  auto options = std::make_shared<CameraOptions>();
  options->AddTo(*command);
  command->callback([options] {
    options->Apply();
    RunInfo(FindCamera(options->camera));
  });
}

}  // namespace ormidex_tool
