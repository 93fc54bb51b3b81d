#include "trace_file.h"

#include <cstdio>
#include <fstream>
#include <map>

#include "exit_code.h"

namespace ormidex_tool {

namespace {

using Json = nlohmann::json;
using Bytes = std::vector<unsigned>;

Bytes FromHex(const std::string& text) {
  Bytes bytes;
  for (std::size_t i = 0; i + 1 < text.size(); i += 2) {
    bytes.push_back(static_cast<unsigned>(std::stoul(text.substr(i, 2), nullptr, 16)));
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

std::string Hex(unsigned value) {
  char text[16];
  std::snprintf(text, sizeof(text), "0x%02X", value);
  return text;
}

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
  std::string text = std::to_string(address);
  if (name != names.end()) text.append(" (").append(name->second).append(")");
  return text;
}

std::string Values(const Bytes& bytes, std::size_t from, std::size_t count) {
  std::string text;
  for (std::size_t i = from; i < from + count && i < bytes.size(); ++i) {
    if (!text.empty()) text += ' ';
    text += Hex(bytes[i]);
  }
  return text;
}

std::string ExplainRegisters(const Bytes& in, const Bytes& out, bool write) {
  const std::string name = RegisterName(Little(in, 4), Little(in, 8));
  const unsigned count = Little(in, 12);
  if (write) return "register " + name + " <- " + Values(in, 16, count);
  return "register " + name + " -> " + (out.empty() ? "?" : Values(out, 16, count));
}

const std::map<unsigned, const char*> kOperations = {
    {6, "output line 1"},   {7, "hardware version"}, {8, "I2C"},
    {9, "output line 2"},   {17, "read block"},      {20, "set saturation"},
    {21, "get saturation"}, {22, "light source"},    {24, "continuous auto exposure"}};

std::string ExplainCommand(const Bytes& in, const Bytes& out) {
  const unsigned operation = Little(in, 4);
  const std::string address = Hex(Big(in, 8));
  if (operation == 1) {
    return "command register " + address + " -> " + (out.empty() ? "?" : Hex(Big(out, 12) & 255u));
  }
  if (operation == 2) return "command register " + address + " <- " + Hex(Big(in, 12));
  const auto name = kOperations.find(operation);
  const std::string text =
      name != kOperations.end() ? name->second : "operation " + std::to_string(operation);
  return operation == 8 ? text + " " + Values(in, 8, in.size()) : text + " " + address;
}

std::string ExplainFrame(const Json& out) {
  if (!out.is_object()) return "";
  return std::to_string(out.value("length", 0u)) + " bytes, CRC " + out.value("crc32", "");
}

// The words of the small records that carry one value.
std::string ExplainWord(const std::string& name, const Bytes& in, const Bytes& out) {
  if (name == "CAM_IOCTL_START_STREAM") {
    return std::to_string(Little(in, 4)) + " x " + std::to_string(Little(in, 8)) + ", " +
           std::to_string(Little(in, 12)) + " bytes";
  }
  const bool result = name.find("_GET_") != std::string::npos;
  if (result && out.size() == 12) return "-> " + Hex(Little(out, 8));
  if (!result && in.size() == 12) return "<- " + std::to_string(Little(in, 8));
  return "";
}

}  // namespace

std::string Explain(const Json& request) {
  const std::string code = request.value("code", "");
  const Bytes in = FromHex(request.value("in", ""));
  const Json& out = request["out"];
  const Bytes returned = out.is_string() ? FromHex(out.get<std::string>()) : Bytes();
  std::string text;
  if (code == "0x222000" || code == "0x222004") {
    text = ExplainRegisters(in, returned, code == "0x222004");
  } else if (code == "0x2223FC") {
    text = ExplainCommand(in, returned);
  } else {
    std::string name = request.value("name", code);
    if (name.rfind("CAM_IOCTL_", 0) == 0) name = name.substr(10);
    const std::string detail = code == "0x222045"
                                   ? ExplainFrame(out)
                                   : ExplainWord(request.value("name", ""), in, returned);
    text = name + (detail.empty() ? "" : " " + detail);
  }
  return request.value("ok", false) ? text : text + "  FAILED";
}

std::string Essence(const Json& request) {
  Json essence = request;
  essence.erase("t");
  essence.erase("us");
  return essence.dump();
}

std::vector<Json> ReadTrace(const std::string& path) {
  std::ifstream file(path);
  if (!file) FailUsage("the trace '" + path + "' cannot be read");
  std::vector<Json> requests;
  std::string line;
  while (std::getline(file, line)) {
    Json request = Json::parse(line, nullptr, false);
    if (request.is_discarded() || !request.is_object() || !request.contains("code") ||
        !request.contains("out")) {
      FailUsage("'" + path + "' line " + std::to_string(requests.size() + 1) +
                " is no request; is it a trace?");
    }
    requests.push_back(std::move(request));
  }
  return requests;
}

}  // namespace ormidex_tool
