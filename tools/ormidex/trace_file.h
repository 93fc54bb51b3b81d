// Traces that the library writes, one JSON object a line.
#ifndef ORMIDEX_TOOLS_TRACE_FILE_H_
#define ORMIDEX_TOOLS_TRACE_FILE_H_

#include <ios>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

namespace ormidex_tool {

// Reads a trace while it is written.
class TraceReader {
 public:
  explicit TraceReader(const std::string& path) : path_(path) {}
  // The requests whose lines were completed since the last call; none as long as the
  // file is not there. Throws a ToolError that names a line which is no request.
  std::vector<nlohmann::json> ReadNew();

 private:
  nlohmann::json Parse(const std::string& line);

  std::string path_;
  std::streamoff offset_ = 0;
  std::size_t lines_ = 0;
};

// All of a trace, which must be there.
std::vector<nlohmann::json> ReadTrace(const std::string& path);

// What two runs must have in common to be the same: everything but times.
std::string Essence(const nlohmann::json& request);

}  // namespace ormidex_tool

#endif  // ORMIDEX_TOOLS_TRACE_FILE_H_
