// Lines of traces: whatever is a request is put into words.
#include <cstdint>
#include <cstdlib>
#include <nlohmann/json.hpp>
#include <string>

#include "trace_words.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const auto request = nlohmann::json::parse(data, data + size, nullptr, false);
  if (ormidex_tool::IsRequest(request) && ormidex_tool::Explain(request).empty()) std::abort();
  return 0;
}
