// A model camera whose frames and statistics blocks are given in advance, one after
// the other, as a run of auto exposure or white balance reads them.
#ifndef ORMIDEX_TESTS_AUTOMATION_PASS_GATEWAY_H_
#define ORMIDEX_TESTS_AUTOMATION_PASS_GATEWAY_H_

#include <cstdint>
#include <cstdio>
#include <cstring>
#include <string>
#include <vector>

#include "support/model_gateway.h"
#include "support/test_session.h"

namespace ormidex::automation {

// Levels of a frame's 2 x 2 cell in Bayer phase 0: red, green, green, blue.
struct Cell {
  std::uint8_t site[4];
};

class PassGateway : public testing::ModelGateway {
 public:
  // The last of each is repeated.
  std::vector<Cell> frames;
  std::vector<std::vector<std::uint8_t>> blocks;
  std::uint32_t frame_width = 640;
  std::uint32_t sample_bytes = 1;  // at 2 the level is the upper byte

  int frames_read = 0;

  bool Control(device::DriverHandle handle, const device::DriverRequest& request,
               std::uint32_t* returned) override {
    if (IsBlockRead(request)) PutBlock(request);
    if (!ModelGateway::Control(handle, request, returned)) return false;
    if (request.code == device::CAM_IOCTL_READ_FRAME) FillFrame(request);
    return true;
  }

 private:
  static device::CommandRegisterRecord Record(const device::DriverRequest& request) {
    device::CommandRegisterRecord record;
    std::memcpy(&record, request.in, sizeof(record));
    return record;
  }
  static bool IsBlockRead(const device::DriverRequest& request) {
    return request.code == device::CAM_IOCTL_COMMAND_REGISTER &&
           request.in_bytes >= sizeof(device::CommandRegisterRecord) &&
           Record(request).operation == device::kCommandReadBlock;
  }
  void PutBlock(const device::DriverRequest& request) {
    if (blocks.empty()) return;
    const auto& block = blocks[std::min(blocks_read_++, blocks.size() - 1)];
    const std::uint32_t address = Record(request).first.Value();
    for (std::size_t i = 0; i < block.size(); ++i) {
      command_registers[address + static_cast<std::uint32_t>(i)] = block[i];
    }
  }
  void FillFrame(const device::DriverRequest& request) {
    const auto index = static_cast<std::size_t>(frames_read++);
    if (frames.empty()) return;
    const Cell& cell = frames[std::min(index, frames.size() - 1)];
    auto* out = static_cast<std::uint8_t*>(request.out);
    for (std::uint32_t i = 0; i < request.out_bytes; ++i) {
      const std::uint32_t sample = i / sample_bytes;
      const std::uint32_t x = sample % frame_width;
      const std::uint32_t y = sample / frame_width;
      out[i] = i % sample_bytes + 1 == sample_bytes ? cell.site[(y & 1) * 2 + (x & 1)] : 0xFF;
    }
  }

  std::size_t blocks_read_ = 0;
};

using Lines = std::vector<std::string>;

inline Lines operator+(Lines a, const Lines& b) {
  a.insert(a.end(), b.begin(), b.end());
  return a;
}

// Requests as literals. Addresses and values fit in one byte.
namespace requests {

inline const Lines kFlush = {"0x222170 [0]"};
inline const Lines kFrame = {"0x222045 [0]"};
inline const Lines kPause = {"0x222054 [4] 00000000"};
inline const Lines kResume = {"0x222058 [4] 00000000"};

inline std::string Hex2(unsigned byte) {
  char text[3];
  std::snprintf(text, sizeof(text), "%02x", byte & 0xFFu);
  return text;
}

// Controller's registers; `page` is 88 for firmware below 3.0.
inline Lines ReadCommand(unsigned address, const char* page = "00") {
  return {std::string("0x2223FC [16] 00000000 01000000 0000") + page + Hex2(address) + " 00000000"};
}
inline Lines WriteCommand(unsigned address, unsigned value, const char* page = "00") {
  return {std::string("0x2223FC [16] 00000000 02000000 0000") + page + Hex2(address) + " 000000" +
          Hex2(value)};
}

// The imager's registers at `bus`.
inline Lines ReadImager(const char* bus, unsigned address) {
  return {std::string("0x222000 [20] 00000000 ") + bus + "000000 " + Hex2(address) +
          "000000 01000000 00000000"};
}
// The driver's status word is preset to 255.
inline Lines WriteImager(const char* bus, unsigned address, unsigned value) {
  return {std::string("0x222004 [20] ff000000 ") + bus + "000000 " + Hex2(address) +
          "000000 01000000 " + Hex2(value) + "000000"};
}
inline Lines WriteImagerPair(const char* bus, unsigned address, unsigned high, unsigned low) {
  return {std::string("0x222004 [18] 00000000 ") + bus + "000000 " + Hex2(address) +
          "000000 02000000 " + Hex2(high) + Hex2(low)};
}

}  // namespace requests

}  // namespace ormidex::automation

#endif  // ORMIDEX_TESTS_AUTOMATION_PASS_GATEWAY_H_
