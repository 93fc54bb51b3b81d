// Driver requests in words.
#ifndef ORMIDEX_TOOLS_TRACE_WORDS_H_
#define ORMIDEX_TOOLS_TRACE_WORDS_H_

#include <nlohmann/json.hpp>
#include <string>

namespace ormidex_tool {

// Whether a line of a trace has what a request has.
bool IsRequest(const nlohmann::json& line);

// One request of a trace: its name, what goes to the camera ("<-") or comes from it
// ("->"), and for register requests which register it is.
std::string Explain(const nlohmann::json& request);

}  // namespace ormidex_tool

#endif  // ORMIDEX_TOOLS_TRACE_WORDS_H_
