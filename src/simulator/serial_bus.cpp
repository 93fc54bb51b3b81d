#include "simulator/serial_bus.h"

namespace ormidex::simulator {
namespace {

constexpr std::uint32_t kTrimPage = 0xFF00;

bool ValidRegister(std::uint32_t address) {
  return address < 0x100 || (address & 0xFFFFFF00u) == kTrimPage;
}

// The address counter of a device is eight bits wide and wraps around.
std::uint32_t Next(std::uint32_t reg, std::uint32_t step) {
  return (reg & 0xFF00u) | ((reg + step) & 0xFFu);
}

}  // namespace

std::uint8_t SerialBus::ReadByte(std::uint32_t address, std::uint32_t reg) const {
  if (IsMemory(address)) return memory_[reg & 0xFF];
  return reg < 0x100 ? imager_.Read(static_cast<std::uint8_t>(reg)) : trim_[reg & 0xFF];
}

void SerialBus::WriteByte(std::uint32_t address, std::uint32_t reg, std::uint8_t value) {
  if (IsMemory(address)) {
    memory_[reg & 0xFF] = value;
  } else if (reg < 0x100) {
    imager_.Write(static_cast<std::uint8_t>(reg), value);
  }  // the trim page is read-only
}

SerialBus::Answer SerialBus::Read(std::uint32_t bus_address, std::uint32_t register_address,
                                  std::uint8_t* data, std::uint32_t count) {
  if (!IsImager(bus_address) && !IsMemory(bus_address)) return Answer::kNoDevice;
  if (!ValidRegister(register_address)) return Answer::kBadRegister;
  for (std::uint32_t i = 0; i < count; ++i) {
    data[i] = ReadByte(bus_address, Next(register_address, i));
  }
  return Answer::kDone;
}

SerialBus::Answer SerialBus::Write(std::uint32_t bus_address, std::uint32_t register_address,
                                   const std::uint8_t* data, std::uint32_t count) {
  if (!IsImager(bus_address) && !IsMemory(bus_address)) return Answer::kNoDevice;
  if (!ValidRegister(register_address)) return Answer::kBadRegister;
  for (std::uint32_t i = 0; i < count; ++i) {
    WriteByte(bus_address, Next(register_address, i), data[i]);
  }
  return Answer::kDone;
}

bool SerialBus::Send(std::uint8_t address, const std::uint8_t* data, std::uint32_t count) {
  if (!IsImager(address) && !IsMemory(address)) return false;
  std::uint8_t& selected = selected_[IsMemory(address) ? 1 : 0];
  for (std::uint32_t i = 0; i < count; ++i) {
    if (i == 0) {
      selected = data[0];
    } else {
      WriteByte(address, selected++, data[i]);
    }
  }
  return true;
}

bool SerialBus::Receive(std::uint8_t address, std::uint8_t* data, std::uint32_t count) {
  if (!IsImager(address) && !IsMemory(address)) return false;
  std::uint8_t& selected = selected_[IsMemory(address) ? 1 : 0];
  for (std::uint32_t i = 0; i < count; ++i) data[i] = ReadByte(address, selected++);
  return true;
}

}  // namespace ormidex::simulator
