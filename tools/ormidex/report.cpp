// Everything that a bug report should hold, as one JSON document.
#include <cstdio>
#include <memory>

#ifndef _WIN32
#include <sys/utsname.h>
#endif

#include "camera.h"
#include "commands.h"
#include "exit_code.h"
#include "output.h"
#include "settings.h"
#include "temporary_file.h"
#include "trace_file.h"

namespace ormidex_tool {

namespace {

using Json = nlohmann::ordered_json;

Json SystemFacts() {
#ifdef _WIN32
  return {{"system", "Windows, 32-bit library"}};
#else
  utsname name = {};
  uname(&name);
  return {{"system", name.sysname}, {"release", name.release}, {"machine", name.machine}};
#endif
}

// A camera that cannot be read is part of the report, not the end of it.
Json CameraFacts(OrmidexUInt32 index) {
  Json facts = {{"camera", index}};
  try {
    Camera camera(index);
    OrmidexHardwareVersion version = {};
    Check(OrmidexGetHardwareVersion(camera.handle(), &version), "reading the hardware version");
    facts["description"] = version.description;
    facts["serial"] = camera.SerialText();
    facts["firmware"] = camera.FirmwareText();
    facts["generation"] = version.imagerGeneration;
    facts["settings"] = ReadAll(camera);
    std::vector<unsigned char> frame(camera.ReadGeometry().FrameBytes());
    camera.StartStream();
    camera.ReadFrame(frame);
    facts["frame"] = "read";
  } catch (const ToolError& error) {
    facts["failed"] = error.what();
  }
  return facts;
}

void RunReport(const CameraOptions& options, const std::string& output, bool force) {
  if (!output.empty()) RefuseOverwriting(output, force);
  const TemporaryFile trace;
  options.Apply();
  SetEnvironment("ORMIDEX_TRACE", trace.path());
  Json document = {{"schema", "ormidex-report"}, {"version", 1}, {"tool", ORMIDEX_TOOL_VERSION}};
  document["system"] = SystemFacts();
  document["cameras"] = Json::array();
  const OrmidexUInt32 count = CountCameras();
  for (OrmidexUInt32 index = 0; index < count; ++index) {
    document["cameras"].push_back(CameraFacts(index));
  }
  document["trace"] = Json::array();
  for (const auto& request : ReadTrace(trace.path())) document["trace"].push_back(Json(request));
  if (output.empty()) {
    fmt::print("{}\n", document.dump(1));
    return;
  }
  WriteFile(output, document.dump(1) + '\n');
  Say("the report is in {}", output);
}

}  // namespace

void AddReport(CLI::App& app) {
  CLI::App* command =
      app.add_subcommand("report", "Gather versions, system, cameras and a trace for a bug report");
  auto options = std::make_shared<CameraOptions>();
  auto output = std::make_shared<std::string>();
  auto force = std::make_shared<bool>(false);
  options->AddSimulateTo(*command);
  command->add_option("-o,--output", *output, "File to write instead of standard output");
  command->add_flag("--force", *force, "Replace a file that exists");
  command->callback([options, output, force] { RunReport(*options, *output, *force); });
}

}  // namespace ormidex_tool
