#include "trace_file.h"

#include <fstream>
#include <iterator>

#include "exit_code.h"
#include "trace_words.h"

namespace ormidex_tool {

using Json = nlohmann::json;

std::string Essence(const Json& request) {
  Json essence = request;
  essence.erase("t");
  essence.erase("us");
  return essence.dump();
}

Json TraceReader::Parse(const std::string& line) {
  ++lines_;
  Json request = Json::parse(line, nullptr, false);
  if (!IsRequest(request)) {
    FailUsage(fmt::format("'{}' line {} is no request; is it a trace?", path_, lines_));
  }
  return request;
}

std::vector<Json> TraceReader::ReadNew() {
  std::vector<Json> requests;
  std::ifstream file(path_, std::ios::binary);
  if (!file.seekg(offset_)) return requests;
  std::string text((std::istreambuf_iterator<char>(file)), std::istreambuf_iterator<char>());
  std::size_t start = 0;
  for (std::size_t end = text.find('\n'); end != std::string::npos; end = text.find('\n', start)) {
    requests.push_back(Parse(text.substr(start, end - start)));
    start = end + 1;
  }
  offset_ += static_cast<std::streamoff>(start);
  return requests;
}

std::vector<Json> ReadTrace(const std::string& path) {
  if (!std::ifstream(path)) FailUsage(fmt::format("the trace '{}' cannot be read", path));
  return TraceReader(path).ReadNew();
}

}  // namespace ormidex_tool
