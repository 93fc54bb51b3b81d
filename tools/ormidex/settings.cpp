#include "settings.h"

#include <cmath>
#include <cstdlib>
#include <fstream>

#include "exit_code.h"
#include "output.h"

namespace ormidex_tool {

namespace {

constexpr int kSettingsVersion = 1;

// ---- Texts and numbers. A text that is no number is out of range. ----

bool Parse(const std::string& text, OrmidexUInt32* value) {
  char* end = nullptr;
  if (text.empty() || text[0] == '-') return false;
  const unsigned long long number = std::strtoull(text.c_str(), &end, 0);
  *value = static_cast<OrmidexUInt32>(number);
  return *end == '\0' && number <= 0xFFFFFFFFull;
}

bool Parse(const std::string& text, float* value) {
  char* end = nullptr;
  *value = std::strtof(text.c_str(), &end);
  return !text.empty() && *end == '\0' && std::isfinite(*value);
}

std::string Text(OrmidexUInt32 value) { return std::to_string(value); }

std::string Text(float value) { return fmt::format("{:.6g}", value); }

template <typename Value, OrmidexStatus(ORMIDEX_CALL* function)(OrmidexHandle, Value*)>
OrmidexStatus Read(OrmidexHandle camera, std::string* text) {
  Value value{};
  const OrmidexStatus status = function(camera, &value);
  if (status == ORMIDEX_OK) *text = Text(value);
  return status;
}

template <typename Value, OrmidexStatus(ORMIDEX_CALL* function)(OrmidexHandle, Value)>
OrmidexStatus Write(OrmidexHandle camera, const std::string& text) {
  Value value{};
  return Parse(text, &value) ? function(camera, value) : OrmidexStatus{ORMIDEX_OUT_OF_RANGE};
}

// ---- Settings that are not one number of one function ----

OrmidexStatus WriteExposure(OrmidexHandle camera, const std::string& text) {
  float milliseconds = 0.0f;
  if (!Parse(text, &milliseconds)) return ORMIDEX_OUT_OF_RANGE;
  return OrmidexSetExposureTime(camera, milliseconds, 0);
}

OrmidexStatus WriteBits(OrmidexHandle camera, const std::string& text) {
  OrmidexUInt32 bits = 0;
  if (!Parse(text, &bits)) return ORMIDEX_OUT_OF_RANGE;
  const OrmidexStatus status = OrmidexSetDataTransferSize(camera, bits);
  return status == ORMIDEX_CLOCKING_CHANGED ? OrmidexStatus{ORMIDEX_OK} : status;
}

OrmidexStatus ReadWindow(OrmidexHandle camera, std::string* text) {
  OrmidexUInt32 factor = 0, column = 0, row = 0, width = 0, height = 0;
  const OrmidexStatus status = OrmidexGetSubWindow(camera, &factor, &column, &row, &width, &height);
  if (status == ORMIDEX_OK) {
    *text = Text(width) + "x" + Text(height) + "+" + Text(column) + "+" + Text(row) + "/" +
            Text(factor);
  }
  return status;
}

// WIDTHxHEIGHT[+COLUMN+ROW][/FACTOR]
OrmidexStatus WriteWindow(OrmidexHandle camera, const std::string& text) {
  unsigned width = 0, height = 0, column = 0, row = 0, factor = 1;
  int used = 0;
  const char* rest = text.c_str();
  if (std::sscanf(rest, "%ux%u%n", &width, &height, &used) != 2) return ORMIDEX_OUT_OF_RANGE;
  rest += used;
  if (*rest == '+') {
    if (std::sscanf(rest, "+%u+%u%n", &column, &row, &used) != 2) return ORMIDEX_OUT_OF_RANGE;
    rest += used;
  }
  if (*rest == '/') {
    if (std::sscanf(rest, "/%u%n", &factor, &used) != 1) return ORMIDEX_OUT_OF_RANGE;
    rest += used;
  }
  if (*rest != '\0') return ORMIDEX_OUT_OF_RANGE;
  return OrmidexSetSubWindow(camera, factor, column, row, width, height);
}

OrmidexStatus ReadFlip(OrmidexHandle camera, bool vertical, std::string* text) {
  OrmidexUInt32 flags[2] = {};
  const OrmidexStatus status = OrmidexGetImageFlip(camera, &flags[0], &flags[1]);
  if (status == ORMIDEX_OK) *text = Text(flags[vertical ? 1 : 0]);
  return status;
}

OrmidexStatus WriteFlip(OrmidexHandle camera, bool vertical, const std::string& text) {
  OrmidexUInt32 on = 0;
  if (!Parse(text, &on) || on > 1) return ORMIDEX_OUT_OF_RANGE;
  const OrmidexInt32 change = on != 0 ? 1 : -1;
  return OrmidexImageFlip(camera, vertical ? 0 : change, vertical ? change : 0);
}

OrmidexStatus ReadName(OrmidexHandle camera, std::string* text) {
  char name[ORMIDEX_IMAGER_NAME_BYTES] = {};
  const OrmidexStatus status = OrmidexGetImagerName(camera, name);
  if (status == ORMIDEX_OK) *text = name;
  return status;
}

OrmidexStatus WriteName(OrmidexHandle camera, const std::string& text) {
  return OrmidexSetImagerName(camera, text.c_str());
}

template <OrmidexUInt32 line>
OrmidexStatus ReadGpo(OrmidexHandle camera, std::string* text) {
  OrmidexUInt32 level = 0;
  const OrmidexStatus status = OrmidexGetGpo(camera, &level, line);
  if (status == ORMIDEX_OK) *text = Text(level);
  return status;
}

template <OrmidexUInt32 line>
OrmidexStatus WriteGpo(OrmidexHandle camera, const std::string& text) {
  OrmidexUInt32 level = 0;
  if (!Parse(text, &level) || level > 1) return ORMIDEX_OUT_OF_RANGE;
  return OrmidexSetGpo(camera, level, 0.0f, line);
}

using U32 = OrmidexUInt32;

std::vector<Setting> MakeSettings() {
  return {
      {"name", "", "up to 80 characters", "name of the imager", ReadName, WriteName},
      {"video-mode", "", "a mode of the driver, 1 as opened", "video mode",
       Read<U32, OrmidexGetVideoMode>, Write<U32, OrmidexSetVideoMode>},
      {"bits", "bits", "8 or 16", "bits of a sample; 16 slows the clock down where needed",
       Read<U32, OrmidexGetDataTransferSize>, WriteBits},
      {"clocking", "code", "128, 0, 129, 1, 130, 2: 24, 16, 12, 8, 6, 4 MHz",
       "pixel clock of the imager", Read<U32, OrmidexGetImagerClocking>,
       Write<U32, OrmidexSetImagerClocking>},
      {"window", "pixels", "WIDTHxHEIGHT[+COLUMN+ROW][/FACTOR] within 1280x1024",
       "sub-window and sub-sampling (1, 2 or 4)", ReadWindow, WriteWindow},
      {"flip-horizontal", "", "0 or 1", "mirror left and right",
       [](OrmidexHandle c, std::string* t) { return ReadFlip(c, false, t); },
       [](OrmidexHandle c, const std::string& t) { return WriteFlip(c, false, t); }},
      {"flip-vertical", "", "0 or 1", "mirror top and bottom",
       [](OrmidexHandle c, std::string* t) { return ReadFlip(c, true, t); },
       [](OrmidexHandle c, const std::string& t) { return WriteFlip(c, true, t); }},
      {"exposure", "ms", "0 or longer, as the clock allows", "exposure time",
       Read<float, OrmidexGetExposureTime>, WriteExposure},
      {"exposure-value", "", "0 to 2047", "raw exposure of a first-generation imager",
       Read<U32, OrmidexGetExposure>, nullptr},
      {"exposure-gain", "", "0.483 to 7.488", "analogue gain of a second-generation imager",
       Read<float, OrmidexGetExposureGain>, Write<float, OrmidexSetExposureGain>},
      {"gain-red", "code", "0 to 63", "red gain of a colour camera", Read<U32, OrmidexGetRedGain>,
       Write<U32, OrmidexSetRedGain>},
      {"gain-green", "code", "0 to 63", "green gain of a colour camera",
       Read<U32, OrmidexGetGreenGain>, Write<U32, OrmidexSetGreenGain>},
      {"gain-blue", "code", "0 to 63", "blue gain of a colour camera",
       Read<U32, OrmidexGetBlueGain>, Write<U32, OrmidexSetBlueGain>},
      {"gain-mono", "code", "0 to 63", "gain of a monochrome camera", Read<U32, OrmidexGetMonoGain>,
       Write<U32, OrmidexSetMonoGain>},
      {"gamma", "", "0 or above; 0 and 1 turn the table off", "gamma of the camera's table",
       Read<float, OrmidexGetGamma>, Write<float, OrmidexSetGamma>},
      {"saturation", "", "0 to 255", "colour saturation", Read<U32, OrmidexGetSaturation>,
       Write<U32, OrmidexSetSaturation>},
      {"light-source", "", "1 to 4", "kind of light, second generation",
       Read<U32, OrmidexGetLightSource>, Write<U32, OrmidexSetLightSource>},
      {"timeout", "driver units", "any, 4000 as opened", "time-out of the driver",
       Read<U32, OrmidexGetTimeout>, Write<U32, OrmidexSetTimeout>},
      {"gpo1", "", "0 or 1", "level of output line 1", ReadGpo<1>, WriteGpo<1>},
      {"gpo2", "", "0 or 1", "level of output line 2", ReadGpo<2>, WriteGpo<2>},
  };
}

std::string KnownNames() {
  std::string names;
  for (const Setting& setting : Settings()) {
    names += (names.empty() ? "" : ", ") + std::string(setting.name);
  }
  return names;
}

void ApplyOne(const Camera& camera, const Setting& setting, const std::string& value) {
  if (setting.write == nullptr) {
    FailUsage("'" + std::string(setting.name) + "' can be read but not be set");
  }
  const OrmidexStatus status = setting.write(camera.handle(), value);
  if (status == ORMIDEX_OUT_OF_RANGE) {
    FailUsage("'" + value + "' is not possible for '" + setting.name + "': " + setting.range);
  }
  if (status == ORMIDEX_NOT_SUPPORTED) {
    FailUsage("this camera has no setting '" + std::string(setting.name) +
              "'; 'ormidex get' lists those it has");
  }
  Check(status, "setting '" + std::string(setting.name) + "'");
}

}  // namespace

const std::vector<Setting>& Settings() {
  static const std::vector<Setting> settings = MakeSettings();
  return settings;
}

const Setting& FindSetting(const std::string& name) {
  for (const Setting& setting : Settings()) {
    if (name == setting.name) return setting;
  }
  FailUsage("there is no setting '" + name + "'; there are " + KnownNames());
}

Assignments ParseAssignments(const std::string& text) {
  Assignments assignments;
  std::size_t start = 0;
  while (start <= text.size()) {
    const std::size_t end = std::min(text.find(',', start), text.size());
    const std::string item = text.substr(start, end - start);
    const std::size_t equals = item.find('=');
    if (equals == std::string::npos) FailUsage("'" + item + "': give settings as key=value");
    FindSetting(item.substr(0, equals));
    assignments.emplace_back(item.substr(0, equals), item.substr(equals + 1));
    start = end + 1;
  }
  return assignments;
}

void Apply(const Camera& camera, const Assignments& assignments) {
  for (const Setting& setting : Settings()) {
    for (const auto& [name, value] : assignments) {
      if (name == setting.name) ApplyOne(camera, setting, value);
    }
  }
}

nlohmann::ordered_json ReadAll(const Camera& camera) {
  nlohmann::ordered_json values = nlohmann::ordered_json::object();
  for (const Setting& setting : Settings()) {
    std::string value;
    const OrmidexStatus status = setting.read(camera.handle(), &value);
    // Wrong state: an exposure gain that the camera itself controls.
    if (status == ORMIDEX_NOT_SUPPORTED || status == ORMIDEX_WRONG_STATE) continue;
    Check(status, "reading '" + std::string(setting.name) + "'");
    values[setting.name] = value;
  }
  return values;
}

void SaveSettings(const Camera& camera, const std::string& path) {
  nlohmann::ordered_json document;
  document["schema"] = "ormidex-settings";
  document["version"] = kSettingsVersion;
  document["settings"] = ReadAll(camera);
  WriteFile(path, document.dump(2) + '\n');
}

Assignments LoadSettings(const std::string& path) {
  std::ifstream file(path);
  if (!file) FailUsage("the settings file '" + path + "' cannot be read");
  const auto document = nlohmann::ordered_json::parse(file, nullptr, false);
  if (document.is_discarded() || !document.is_object() ||
      document.value("schema", "") != "ormidex-settings" || !document["settings"].is_object()) {
    FailUsage("'" + path + "' is not a settings file; 'ormidex set --save' writes one");
  }
  Assignments assignments;
  for (const auto& [name, value] : document["settings"].items()) {
    if (!value.is_string()) FailUsage("'" + path + "': the value of '" + name + "' is no text");
    if (FindSetting(name).write != nullptr) assignments.emplace_back(name, value);
  }
  return assignments;
}

}  // namespace ormidex_tool
