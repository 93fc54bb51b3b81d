// Reading the traces that the library writes, one JSON object a line.
#ifndef ORMIDEX_TOOLS_TRACE_FILE_H_
#define ORMIDEX_TOOLS_TRACE_FILE_H_

#include <nlohmann/json.hpp>
#include <string>
#include <vector>

namespace ormidex_tool {

// Throws a ToolError that names the line which is none.
std::vector<nlohmann::json> ReadTrace(const std::string& path);

// One request in words: its name, and for register requests which register and what
// value.
std::string Explain(const nlohmann::json& request);

// What two runs must have in common to be the same: everything but times.
std::string Essence(const nlohmann::json& request);

}  // namespace ormidex_tool

#endif  // ORMIDEX_TOOLS_TRACE_FILE_H_
