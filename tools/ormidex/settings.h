// The settings of a camera under the names that the tool gives them: one table for
// reading, writing, saving and explaining them.
#ifndef ORMIDEX_TOOLS_SETTINGS_H_
#define ORMIDEX_TOOLS_SETTINGS_H_

#include <nlohmann/json.hpp>
#include <string>
#include <utility>
#include <vector>

#include "camera.h"

namespace ormidex_tool {

struct Setting {
  const char* name;
  const char* unit;   // "" for none
  const char* range;  // in words
  const char* help;
  // Null when the setting cannot be read, or not be set. Reading returns a status
  // so that what a camera lacks can be told from what fails.
  OrmidexStatus (*read)(OrmidexHandle camera, std::string* value);
  OrmidexStatus (*write)(OrmidexHandle camera, const std::string& value);
};

const std::vector<Setting>& Settings();
const Setting& FindSetting(const std::string& name);

using Assignments = std::vector<std::pair<std::string, std::string>>;

// Splits "key=value,key=value"; throws a ToolError for anything else.
Assignments ParseAssignments(const std::string& text);

// Sets them in the table's order, whatever order they were given in: the transfer
// size and the clock come before the exposure, for example.
void Apply(const Camera& camera, const Assignments& assignments);

// All settings that this camera has, as an object of strings.
nlohmann::ordered_json ReadAll(const Camera& camera);

void SaveSettings(const Camera& camera, const std::string& path);
Assignments LoadSettings(const std::string& path);

}  // namespace ormidex_tool

#endif  // ORMIDEX_TOOLS_SETTINGS_H_
