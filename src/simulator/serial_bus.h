// The camera's two-wire serial bus: the imager and a small memory are on it.
#ifndef ORMIDEX_SIMULATOR_SERIAL_BUS_H_
#define ORMIDEX_SIMULATOR_SERIAL_BUS_H_

#include <cstdint>

#include "simulator/imager.h"

namespace ormidex::simulator {

// Bus addresses are written as eight bits, the lowest of which says read.
inline constexpr std::uint8_t kMemoryAddress = 0xA0;

class SerialBus {
 public:
  explicit SerialBus(Imager& imager) : imager_(imager) {}

  enum class Answer { kDone, kNoDevice, kBadRegister };

  // Block access as the controller does it; the register address counts up.
  Answer Read(std::uint32_t bus_address, std::uint32_t register_address, std::uint8_t* data,
              std::uint32_t count);
  Answer Write(std::uint32_t bus_address, std::uint32_t register_address, const std::uint8_t* data,
               std::uint32_t count);

  // Plain transactions: the first byte written selects the register that the
  // following bytes, written or read, begin at. False: no device answers.
  bool Send(std::uint8_t address, const std::uint8_t* data, std::uint32_t count);
  bool Receive(std::uint8_t address, std::uint8_t* data, std::uint32_t count);

 private:
  bool IsImager(std::uint32_t address) const { return (address & ~1u) == imager_.BusAddress(); }
  static bool IsMemory(std::uint32_t address) { return (address & ~1u) == kMemoryAddress; }
  std::uint8_t ReadByte(std::uint32_t address, std::uint32_t reg) const;
  void WriteByte(std::uint32_t address, std::uint32_t reg, std::uint8_t value);

  Imager& imager_;
  std::uint8_t memory_[256] = {};  // keeps its content without power
  std::uint8_t selected_[2] = {};  // of the imager, of the memory
  // The maker's trim values for the six pixel clocks, behind the imager's
  // register space.
  std::uint8_t trim_[256] = {27, 19, 19, 19, 19, 19};
};

}  // namespace ormidex::simulator

#endif  // ORMIDEX_SIMULATOR_SERIAL_BUS_H_
