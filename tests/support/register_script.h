// Register requests as the tests of the imager write them down: address and value.
// The records behind them, byte for byte, are the request layer's own tests.
#ifndef ORMIDEX_TESTS_SUPPORT_REGISTER_SCRIPT_H_
#define ORMIDEX_TESTS_SUPPORT_REGISTER_SCRIPT_H_

#include <cstdint>
#include <cstdio>
#include <string>

#include "support/scripted_gateway.h"

namespace ormidex::testing {

class RegisterScript {
 public:
  RegisterScript(ScriptedGateway& driver, std::uint32_t bus_address)
      : driver_(driver), bus_(bus_address) {}

  // One register, read or written on its own: a record of 20 bytes.
  void Reads(std::uint32_t address, std::uint32_t value) {
    const std::string head = "00000000" + Word(bus_) + Word(address) + Word(1);
    driver_.Expect(0x222000, head + "00000000", head + Byte(value) + "000000");
  }
  void Writes(std::uint32_t address, std::uint32_t value) {
    driver_.Expect(0x222004,
                   "ff000000" + Word(bus_) + Word(address) + Word(1) + Byte(value) + "000000",
                   "00000000");
  }
  // High byte, low byte, each read on its own.
  void ReadsPair(std::uint32_t address, std::uint32_t value) {
    Reads(address, value >> 8);
    Reads(address + 1, value & 0xFF);
  }
  // Several registers in one record, which is as long as they need.
  void WritesBlock(std::uint32_t address, const std::string& hex) {
    const auto count = static_cast<std::uint32_t>(FromHex(hex).size());
    driver_.Expect(0x222004, "00000000" + Word(bus_) + Word(address) + Word(count) + hex,
                   "00000000");
  }
  // Command registers, by the address as it travels.
  void ReadsCommand(std::uint32_t address, std::uint32_t value) {
    const std::string head = "00000000 01000000" + BigWord(address);
    driver_.Expect(0x2223FC, head + "00000000", head + BigWord(value));
  }
  void WritesCommand(std::uint32_t address, std::uint32_t value) {
    driver_.ExpectEcho(0x2223FC, "00000000 02000000" + BigWord(address) + BigWord(value));
  }

  void Stops() { driver_.Expect(0x222048, ""); }
  // A start at 640 x 480, 8 bits.
  void Starts() {
    driver_.Expect(0x222040, "00000000 80020000 e0010000 00b00400 00000000 00000000");
  }
  void Pauses() { driver_.Expect(0x222054, "00000000"); }
  void Resumes() { driver_.Expect(0x222058, "00000000"); }

 private:
  static std::string Byte(std::uint32_t value) {
    char text[4];
    std::snprintf(text, sizeof(text), "%02x", value & 0xFFu);
    return text;
  }
  static std::string Word(std::uint32_t value) {
    return Byte(value) + Byte(value >> 8) + Byte(value >> 16) + Byte(value >> 24);
  }
  static std::string BigWord(std::uint32_t value) {
    return Byte(value >> 24) + Byte(value >> 16) + Byte(value >> 8) + Byte(value);
  }

  ScriptedGateway& driver_;
  std::uint32_t bus_;
};

}  // namespace ormidex::testing

#endif  // ORMIDEX_TESTS_SUPPORT_REGISTER_SCRIPT_H_
