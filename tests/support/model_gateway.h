// A driver with a small camera behind it: registers that keep what is written to
// them, every request written down, and any request made to fail on demand. It
// knows no imager; tests put into its registers what they want to be read.
#ifndef ORMIDEX_TESTS_SUPPORT_MODEL_GATEWAY_H_
#define ORMIDEX_TESTS_SUPPORT_MODEL_GATEWAY_H_

#include <algorithm>
#include <atomic>
#include <cstdio>
#include <cstring>
#include <map>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "device/driver_gateway.h"
#include "device/driver_protocol.h"
#include "platform/critical_section.h"
#include "support/hex.h"

namespace ormidex::testing {

class ModelGateway : public device::DriverGateway {
 public:
  ModelGateway() { lock_.Initialise(); }
  ~ModelGateway() override { lock_.Delete(); }

  // ---- What the camera is ----
  std::uint32_t serial = 0x00012345;
  std::uint32_t firmware = 0x03012200;
  std::string description = "Torvenal(tm) 1394 Camera";
  std::string type_name = "Torvenal(tm) 1394 Camera";
  std::uint32_t bus_address = 0x66;  // where the imager answers; elsewhere requests fail
  std::map<std::uint32_t, std::uint8_t> registers;
  std::map<std::uint32_t, std::uint8_t> stuck_registers;    // read so whatever is written
  std::map<std::uint32_t, std::uint8_t> command_registers;  // by the address as sent
  std::uint32_t status_word = 0;  // written into the first word of every reply
  std::map<std::uint32_t, std::uint32_t> status_words;  // the same for one control code
  std::vector<std::string> friendly_names = {"Torvenal(tm) 1394 Camera"};
  std::string device_list;  // the reply to the device-list request
  bool enumerator_available = true;
  std::uint8_t frame_byte = 0x80;  // every byte of every frame

  // ---- What happens to it ----
  int fail_request = -1;  // this request, counted from 0, fails
  std::set<std::uint32_t> fail_codes;
  bool open_fails = false;
  bool close_fails = false;

  // ---- What it was sent: "0x222040 [24] 00000000 80020000 ..." ----
  std::vector<std::string> Requests() {
    platform::ScopedLock lock(lock_);
    return requests_;
  }
  void ClearRequests() {
    platform::ScopedLock lock(lock_);
    requests_.clear();
  }
  std::vector<std::string> opened_paths;
  std::vector<device::DriverShare> opened_shares;
  int closed = 0;

  device::DriverHandle Open(const char* path, device::DriverShare share) override {
    opened_paths.push_back(path);
    opened_shares.push_back(share);
    return open_fails ? nullptr : this;
  }
  bool Close(device::DriverHandle) override {
    ++closed;
    return !close_fails;
  }
  device::EnumerationResult Enumerate(device::DeviceVisitor& visitor) override {
    if (!enumerator_available) return device::EnumerationResult::kUnavailable;
    if (friendly_names.empty()) return device::EnumerationResult::kEmptyCategory;
    for (std::size_t i = 0; i < friendly_names.size(); ++i) {
      Entry entry(friendly_names[i], "path" + std::to_string(i));
      if (!visitor.Visit(entry)) break;
    }
    return device::EnumerationResult::kListed;
  }

  bool Control(device::DriverHandle, const device::DriverRequest& request,
               std::uint32_t* returned) override {
    platform::ScopedLock lock(lock_);
    const int number = static_cast<int>(requests_.size());
    requests_.push_back(Describe(request));
    if (number == fail_request || fail_codes.count(request.code) != 0) return false;
    if (request.out_bytes != 0 && request.in == request.out && request.out_bytes >= 4) {
      const auto own = status_words.find(request.code);
      std::memcpy(request.out, own != status_words.end() ? &own->second : &status_word, 4);
    }
    *returned = request.out_bytes;
    return Answer(request, returned);
  }

 private:
  class Entry : public device::DeviceEntry {
   public:
    Entry(std::string name, std::string path) : name_(std::move(name)), path_(std::move(path)) {}
    // A device named "?" has an unreadable name; "!" as last character of the name
    // makes the path unreadable.
    bool FriendlyName(char (&name)[device::kDeviceTextBytes]) override {
      if (name_ == "?") return false;
      const std::string plain = Unreadable() ? name_.substr(0, name_.size() - 1) : name_;
      std::snprintf(name, sizeof(name), "%s", plain.c_str());
      return true;
    }
    bool DevicePath(char (&path)[device::kDeviceTextBytes]) override {
      if (Unreadable()) return false;
      std::snprintf(path, sizeof(path), "%s", path_.c_str());
      return true;
    }

   private:
    bool Unreadable() const { return !name_.empty() && name_.back() == '!'; }
    std::string name_;
    std::string path_;
  };

  static std::string Describe(const device::DriverRequest& request) {
    char head[32];
    std::snprintf(head, sizeof(head), "0x%06X [%u]", request.code, request.in_bytes);
    if (request.in_bytes == 0) return head;
    return std::string(head) + " " + ToHex(request.in, request.in_bytes);
  }

  bool Answer(const device::DriverRequest& request, std::uint32_t* returned) {
    auto* out = static_cast<std::uint8_t*>(request.out);
    switch (request.code) {
      case device::CAM_IOCTL_READ_REGISTERS:
      case device::CAM_IOCTL_WRITE_REGISTERS:
        return AnswerRegisters(request);
      case device::CAM_IOCTL_GET_HARDWARE_WORD:
        std::memcpy(out + 8, &serial, 4);
        return true;
      case device::CAM_IOCTL_GET_FIRMWARE_VERSION:
        std::memcpy(out + 8, &firmware, 4);
        return true;
      case device::CAM_IOCTL_GET_NAME_STRING_1:
        std::snprintf(static_cast<char*>(request.out), request.out_bytes, "%s",
                      description.c_str());
        return true;
      case device::CAM_IOCTL_GET_NAME_STRING_2:
        std::snprintf(static_cast<char*>(request.out), request.out_bytes, "%s", type_name.c_str());
        return true;
      case device::CAM_IOCTL_READ_FRAME:
        std::memset(out, frame_byte, request.out_bytes);
        return true;
      case device::CAM_IOCTL_ENUMERATE:
        std::memcpy(out, device_list.data(), std::min<std::size_t>(device_list.size(), 1024));
        *returned = static_cast<std::uint32_t>(device_list.size());
        return true;
      case device::CAM_IOCTL_COMMAND_REGISTER:
        return AnswerCommandRegister(request);
      default:
        return true;
    }
  }

  bool AnswerRegisters(const device::DriverRequest& request) {
    device::RegisterBlockRecord record;
    std::memcpy(&record, request.in, sizeof(record));
    if (record.bus_address != bus_address) return false;
    auto* data = static_cast<std::uint8_t*>(request.out) + sizeof(record);
    for (std::uint32_t i = 0; i < record.byte_count; ++i) {
      if (request.code == device::CAM_IOCTL_READ_REGISTERS) {
        const auto stuck = stuck_registers.find(record.register_address + i);
        data[i] =
            stuck != stuck_registers.end() ? stuck->second : registers[record.register_address + i];
      } else {
        registers[record.register_address + i] = data[i];
      }
    }
    return true;
  }

  bool AnswerCommandRegister(const device::DriverRequest& request) {
    auto* out = static_cast<std::uint8_t*>(request.out);
    if (request.out_bytes < sizeof(device::CommandRegisterRecord)) return true;
    device::CommandRegisterRecord record;
    std::memcpy(&record, out, sizeof(record));
    const std::uint32_t address = record.first.Value();
    if (record.operation == device::kCommandReadRegister) {
      record.second = device::BigEndian32(command_registers[address]);
      std::memcpy(out, &record, sizeof(record));
    } else if (record.operation == device::kCommandWriteRegister) {
      command_registers[address] = static_cast<std::uint8_t>(record.second.Value());
    } else if (record.operation == device::kCommandReadBlock) {
      for (std::uint32_t i = 0; i < record.second.Value(); ++i) {
        out[sizeof(record) + i] = command_registers[address + i];
      }
    }
    return true;
  }

  platform::CriticalSection lock_;
  std::vector<std::string> requests_;
};

}  // namespace ormidex::testing

#endif  // ORMIDEX_TESTS_SUPPORT_MODEL_GATEWAY_H_
