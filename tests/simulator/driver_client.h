// Talks to a simulated camera as a host's driver layer would: in request records.
#ifndef ORMIDEX_TESTS_SIMULATOR_DRIVER_CLIENT_H_
#define ORMIDEX_TESTS_SIMULATOR_DRIVER_CLIENT_H_

#include <gtest/gtest.h>

#include <cstring>
#include <memory>
#include <string>
#include <vector>

#include "device/driver_protocol.h"
#include "simulator/simulator.h"

namespace ormidex::simulator {

inline std::unique_ptr<Simulator> MakeSimulator(const char* text, Clock* clock = nullptr) {
  std::string error;
  std::unique_ptr<Simulator> simulator = Simulator::Create(text, &error, clock);
  EXPECT_EQ(error, "");
  return simulator;
}

// The device paths that an enumeration offers.
class PathCollector : public device::DeviceVisitor {
 public:
  bool Visit(device::DeviceEntry& entry) override {
    char text[device::kDeviceTextBytes] = {};
    EXPECT_TRUE(entry.FriendlyName(text));
    names.push_back(text);
    EXPECT_TRUE(entry.DevicePath(text));
    paths.push_back(text);
    return true;
  }
  std::vector<std::string> names;
  std::vector<std::string> paths;
};

// An open camera.
class DriverClient {
 public:
  explicit DriverClient(Simulator& simulator, std::size_t index = 0) : simulator_(simulator) {
    PathCollector collector;
    simulator.Enumerate(collector);
    if (index < collector.paths.size()) path_ = collector.paths[index];
    Open();
  }
  ~DriverClient() { Close(); }
  DriverClient(const DriverClient&) = delete;
  DriverClient& operator=(const DriverClient&) = delete;

  bool Open(device::DriverShare share = device::DriverShare::kShared) {
    handle_ = simulator_.Open(path_.c_str(), share);
    return handle_ != nullptr;
  }
  void Close() {
    if (handle_ != nullptr) simulator_.Close(handle_);
    handle_ = nullptr;
  }
  device::DriverHandle Handle() const { return handle_; }
  const std::string& Path() const { return path_; }
  std::uint32_t Returned() const { return returned_; }

  bool Request(std::uint32_t code, const void* in, std::uint32_t in_bytes, void* out,
               std::uint32_t out_bytes) {
    const device::DriverRequest request = {code, in, in_bytes, out, out_bytes};
    return simulator_.Control(handle_, request, &returned_);
  }
  bool Request(std::uint32_t code) { return Request(code, nullptr, 0, nullptr, 0); }
  template <typename Record>
  bool Exchange(std::uint32_t code, Record* record) {
    return Request(code, record, sizeof(Record), record, sizeof(Record));
  }
  // A three-word request; its status word and result.
  bool Words(std::uint32_t code, device::ThreeWordRecord* record) { return Exchange(code, record); }

  // -1 when the request fails.
  int ReadRegister(std::uint32_t bus_address, std::uint32_t reg) {
    std::uint8_t bytes[20] = {};
    device::RegisterBlockRecord record = {255, bus_address, reg, 1};
    std::memcpy(bytes, &record, sizeof record);
    if (!Request(device::CAM_IOCTL_READ_REGISTERS, bytes, 20, bytes, 20)) return -1;
    std::memcpy(&record, bytes, sizeof record);
    status_ = record.status;
    return bytes[16];
  }
  bool WriteRegisters(std::uint32_t bus_address, std::uint32_t reg,
                      const std::vector<std::uint8_t>& data) {
    std::vector<std::uint8_t> bytes(16 + data.size());
    device::RegisterBlockRecord record = {255, bus_address, reg,
                                          static_cast<std::uint32_t>(data.size())};
    std::memcpy(bytes.data(), &record, sizeof record);
    std::memcpy(bytes.data() + 16, data.data(), data.size());
    const std::uint32_t size = static_cast<std::uint32_t>(bytes.size());
    const bool done =
        Request(device::CAM_IOCTL_WRITE_REGISTERS, bytes.data(), size, bytes.data(), size);
    std::memcpy(&record, bytes.data(), sizeof record);
    status_ = record.status;
    return done;
  }
  std::uint32_t Status() const { return status_; }

  int ReadCommandRegister(std::uint32_t address) {
    device::CommandRegisterRecord record;
    record.operation = device::kCommandReadRegister;
    record.first = device::BigEndian32(address);
    if (!Exchange(device::CAM_IOCTL_COMMAND_REGISTER, &record)) return -1;
    return static_cast<int>(record.second.Value());
  }
  bool WriteCommandRegister(std::uint32_t address, std::uint32_t value) {
    device::CommandRegisterRecord record;
    record.operation = device::kCommandWriteRegister;
    record.first = device::BigEndian32(address);
    record.second = device::BigEndian32(value);
    return Exchange(device::CAM_IOCTL_COMMAND_REGISTER, &record);
  }

  // A window of 640 x 480 at (0, 0) and the nominal exposure, as a host sets up
  // the second generation: 693 clocks a row, 579 rows exposed.
  void PrepareSecond() {
    WriteRegisters(0x66, 69, {0, 16, 479 >> 8, 479 & 255, 0, 9, 639 >> 8, 639 & 255});
    WriteRegisters(0x66, 80, {579 >> 8, 579 & 255, 650 >> 8, 650 & 255});
    SetSecondExposure(579);
  }
  void SetSecondExposure(int rows) {
    toggle_ = !toggle_;
    WriteRegisters(0x66, 79, {static_cast<std::uint8_t>(rows)});
    WriteRegisters(0x66, 78, {static_cast<std::uint8_t>(rows >> 8 | (toggle_ ? 0x40 : 0))});
  }
  // The same of the first generation: 1664 clocks a row, 479 rows exposed.
  void PrepareFirst() {
    WriteRegisters(0x60, 4, {0, 4, 0, 4, 640 / 8, 480 / 8});
    SetFirstExposure(479, 480);
  }
  void SetFirstExposure(int rows, int height) {
    const int value = rows + 2047 - height;
    WriteRegisters(0x60, 18,
                   {static_cast<std::uint8_t>(value >> 8), static_cast<std::uint8_t>(value)});
  }

  // --- Streaming ---

  bool SetVideoMode(std::uint32_t mode) {
    device::ThreeWordRecord record = {0, 0, mode};
    return Words(device::CAM_IOCTL_SET_VIDEO_MODE, &record) && record.status == 0;
  }
  bool SetTransferSize(std::uint32_t bus_address, std::uint32_t bits) {
    device::ThreeWordRecord record = {0, bus_address, bits};
    return Words(device::CAM_IOCTL_SET_TRANSFER_SIZE, &record);
  }
  bool SetTimeout(std::uint32_t milliseconds) {
    device::ThreeWordRecord record = {0, 0, milliseconds};
    return Words(device::CAM_IOCTL_SET_TIMEOUT, &record);
  }
  bool Start(std::uint32_t width, std::uint32_t height, std::uint32_t bytes_per_pixel = 1) {
    const device::StartStreamRecord record = {0, width, height, width * height * bytes_per_pixel,
                                              0, 0};
    return Request(device::CAM_IOCTL_START_STREAM, &record, sizeof record, nullptr, 0);
  }
  // Flushes what was exposed before and reads a frame that began after this call.
  std::vector<std::uint8_t> FreshFrame(std::uint32_t bytes) {
    std::vector<std::uint8_t> frame(bytes);
    EXPECT_TRUE(Request(device::CAM_IOCTL_FLUSH));
    EXPECT_TRUE(ReadFrame(&frame));
    EXPECT_TRUE(ReadFrame(&frame));
    EXPECT_EQ(Returned(), bytes);
    return frame;
  }
  bool Stop() { return Request(device::CAM_IOCTL_STOP_STREAM); }
  bool ReadFrame(std::vector<std::uint8_t>* frame) {
    return Request(device::CAM_IOCTL_READ_FRAME, nullptr, 0, frame->data(),
                   static_cast<std::uint32_t>(frame->size()));
  }

 private:
  Simulator& simulator_;
  std::string path_;
  device::DriverHandle handle_ = nullptr;
  std::uint32_t returned_ = 0;
  std::uint32_t status_ = 0;
  bool toggle_ = false;
};

}  // namespace ormidex::simulator

#endif  // ORMIDEX_TESTS_SIMULATOR_DRIVER_CLIENT_H_
