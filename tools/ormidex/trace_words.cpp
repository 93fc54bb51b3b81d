#include "trace_words.h"

#include <fmt/format.h>

#include <algorithm>
#include <map>
#include <vector>

namespace ormidex_tool {

namespace {

using Json = nlohmann::json;
using Bytes = std::vector<unsigned>;

unsigned Digit(char c) {
  if (c >= '0' && c <= '9') return static_cast<unsigned>(c - '0');
  if (c >= 'a' && c <= 'f') return static_cast<unsigned>(c - 'a') + 10;
  return 16;
}

bool IsHex(const std::string& text) {
  return text.size() % 2 == 0 &&
         std::all_of(text.begin(), text.end(), [](char c) { return Digit(c) < 16; });
}

Bytes FromHex(const std::string& text) {
  Bytes bytes;
  for (std::size_t i = 0; i + 1 < text.size(); i += 2) {
    bytes.push_back(Digit(text[i]) << 4 | Digit(text[i + 1]));
  }
  return bytes;
}

unsigned Little(const Bytes& bytes, std::size_t at) {
  if (at + 4 > bytes.size()) return 0;
  return bytes[at] | bytes[at + 1] << 8 | bytes[at + 2] << 16 | bytes[at + 3] << 24;
}

unsigned Big(const Bytes& bytes, std::size_t at) {
  if (at + 4 > bytes.size()) return 0;
  return bytes[at] << 24 | bytes[at + 1] << 16 | bytes[at + 2] << 8 | bytes[at + 3];
}

std::string Hex(unsigned value) { return fmt::format("0x{:02X}", value); }

// Names of imager registers, by generation: the bus address tells which it is.
const std::map<unsigned, const char*> kFirstGeneration = {{0, "chip"},
                                                          {1, "orientation"},
                                                          {4, "window position"},
                                                          {8, "window size"},
                                                          {18, "exposure high"},
                                                          {19, "exposure low"},
                                                          {20, "red gain"},
                                                          {21, "green gain"},
                                                          {22, "blue gain"},
                                                          {145, "clocking value"},
                                                          {0xFF00, "fixed-pattern noise"}};
const std::map<unsigned, const char*> kSecondGeneration = {{0, "green 1 gain"},
                                                           {1, "red gain"},
                                                           {2, "blue gain"},
                                                           {3, "green 2 gain"},
                                                           {15, "chip"},
                                                           {16, "exposure gain"},
                                                           {34, "gain control"},
                                                           {65, "sub-sampling"},
                                                           {69, "window row"},
                                                           {71, "frame height"},
                                                           {72, "frame height low"},
                                                           {73, "window column"},
                                                           {75, "frame width"},
                                                           {76, "frame width low"},
                                                           {78, "exposure rows"},
                                                           {79, "exposure rows low"},
                                                           {80, "frame length"},
                                                           {81, "frame length low"},
                                                           {82, "row length"},
                                                           {83, "row length low"},
                                                           {87, "flip"},
                                                           {95, "blanking"},
                                                           {96, "blanking"},
                                                           {0xFF00, "fixed-pattern noise"}};

std::string RegisterName(unsigned bus_address, unsigned address) {
  const auto& names = bus_address == 0x66 ? kSecondGeneration : kFirstGeneration;
  const auto name = names.find(address);
  return name != names.end() ? fmt::format("{} ({})", address, name->second)
                             : std::to_string(address);
}

std::string Values(const Bytes& bytes, std::size_t from, std::size_t count) {
  const std::size_t end = std::min(bytes.size(), from + count);
  if (from >= end) return "?";
  return fmt::format("0x{:02X}",
                     fmt::join(bytes.begin() + static_cast<std::ptrdiff_t>(from),
                               bytes.begin() + static_cast<std::ptrdiff_t>(end), " 0x"));
}

std::string ExplainRegisters(const Bytes& in, const Bytes& out, bool write) {
  const std::string name = RegisterName(Little(in, 4), Little(in, 8));
  const unsigned count = Little(in, 12);
  return fmt::format("register {} {} {}", name, write ? "<-" : "->",
                     Values(write ? in : out, 16, count));
}

const std::map<unsigned, const char*> kOperations = {
    {6, "output line 1"},   {7, "hardware version"}, {8, "I2C"},
    {9, "output line 2"},   {17, "block"},           {20, "set saturation"},
    {21, "get saturation"}, {22, "light source"},    {24, "continuous auto exposure"}};

std::string ExplainCommand(const Bytes& in, const Bytes& out) {
  const unsigned operation = Little(in, 4);
  const std::string address = Hex(Big(in, 8));
  const bool answered = out.size() >= 16;
  if (operation == 1) {
    return fmt::format("command register {} -> {}", address,
                       answered ? Hex(Big(out, 12) & 255u) : "?");
  }
  if (operation == 2) return fmt::format("command register {} <- {}", address, Hex(Big(in, 12)));
  const auto name = kOperations.find(operation);
  const std::string text =
      name != kOperations.end() ? name->second : fmt::format("operation {}", operation);
  if (operation == 8) return fmt::format("{} <- {}", text, Values(in, 8, in.size()));
  if (operation == 7 || operation == 17 || operation == 21) {
    return fmt::format("{} {} -> {}", text, address, Values(out, 8, out.size()));
  }
  return fmt::format("{} <- {}", text, address);
}

std::string ExplainFrame(const Json& out) {
  if (!out.is_object()) return "";
  return fmt::format("-> {} bytes, CRC {}", out.value("length", 0u), out.value("crc32", ""));
}

std::string Text(const Bytes& bytes) {
  std::string text;
  for (std::size_t i = 0; i < bytes.size() && bytes[i] != 0; ++i) {
    text += bytes[i] < 0x20 || bytes[i] > 0x7E ? '?' : static_cast<char>(bytes[i]);
  }
  return text;
}

// What travels in the other records: to the driver, or back from it.
std::string ExplainRecord(const std::string& name, const Bytes& in, const Bytes& out) {
  constexpr std::size_t kMostBytes = 32;
  if (name == "START_STREAM") {
    return fmt::format("<- {} x {}, {} bytes", Little(in, 4), Little(in, 8), Little(in, 12));
  }
  if (name == "LOAD_LOOKUP_TABLE") {
    return fmt::format("<- depth {}, {} bytes", Little(in, 4), in.size());
  }
  if (name.rfind("GET_NAME_STRING", 0) == 0) return fmt::format("-> \"{}\"", Text(out));
  if (name.rfind("GET_", 0) == 0) {
    if (out.size() == 12) return fmt::format("-> {}", Hex(Little(out, 8)));
    return fmt::format("-> {}", Values(out, 8, kMostBytes));
  }
  if (name == "READ_COMMAND") return fmt::format("-> {}", Values(out, 8, Little(out, 4)));
  if (name == "WRITE_COMMAND") return fmt::format("<- {}", Values(in, 8, Little(in, 4)));
  if (in.size() == 12) return fmt::format("<- {}", Little(in, 8));
  return in.empty() ? "" : fmt::format("<- {}", Values(in, 0, kMostBytes));
}

std::string ExplainDetail(const std::string& name, const Json& request) {
  const Bytes in = FromHex(request.value("in", ""));
  const Json& out = request["out"];
  const Bytes returned = out.is_string() ? FromHex(out.get<std::string>()) : Bytes();
  if (name == "READ_FRAME") return ExplainFrame(out);
  if (name == "READ_REGISTERS") return ExplainRegisters(in, returned, false);
  if (name == "WRITE_REGISTERS") return ExplainRegisters(in, returned, true);
  if (name == "COMMAND_REGISTER") return ExplainCommand(in, returned);
  return ExplainRecord(name, in, returned);
}

}  // namespace

bool IsRequest(const Json& line) {
  const auto has = [&](const char* key, bool (Json::*is)() const noexcept) {
    return line.contains(key) && (line[key].*is)();
  };
  if (!line.is_object() || !has("code", &Json::is_string) || !has("name", &Json::is_string) ||
      !has("in", &Json::is_string) || !IsHex(line["in"].get<std::string>()) ||
      !has("ok", &Json::is_boolean) || !has("t", &Json::is_number) ||
      !has("us", &Json::is_number_unsigned)) {
    return false;
  }
  if (has("out", &Json::is_string)) return IsHex(line["out"].get<std::string>());
  return has("out", &Json::is_object) && line["out"].contains("length") &&
         line["out"]["length"].is_number_unsigned() && line["out"].contains("crc32") &&
         line["out"]["crc32"].is_string();
}

std::string Explain(const Json& request) {
  constexpr char kPrefix[] = "CAM_IOCTL_";
  std::string name = request.value("name", "");
  if (name.rfind(kPrefix, 0) == 0) name = name.substr(sizeof(kPrefix) - 1);
  if (name.empty() || name == "unknown") name = request.value("code", "");
  const std::string detail = ExplainDetail(name, request);
  const std::string text = detail.empty() ? name : fmt::format("{:<20} {}", name, detail);
  return request.value("ok", false) ? text : text + "  FAILED";
}

}  // namespace ormidex_tool
