// Camera registers: single, block and asynchronous access, and the controller's
// 8-bit command registers.
#include <cstring>

#include "device/session.h"
#include "platform/memory.h"
#include "platform/thread.h"

namespace ormidex::device {

namespace {

constexpr std::uint32_t kWriteStatusPreset = 255;
constexpr std::uint32_t kAsynchronousWriteLimit = 255;

// Requests for a single register are padded to five words; blocks are not.
constexpr std::uint32_t kSingleRegisterBytes = 20;

std::uint64_t BlockBytes(std::uint32_t count) {
  return std::uint64_t{sizeof(RegisterBlockRecord)} + count;
}

// A register record and its data in one allocation.
class RegisterRequest {
 public:
  RegisterRequest(const RegisterBlockRecord& header, std::uint64_t bytes)
      : bytes_(static_cast<std::uint32_t>(bytes)),
        buffer_(bytes <= 0xFFFFFFFFu ? platform::Buffer(static_cast<std::size_t>(bytes))
                                     : platform::Buffer()) {
    if (buffer_) Header() = header;
  }
  explicit operator bool() const { return static_cast<bool>(buffer_); }
  RegisterBlockRecord& Header() { return *reinterpret_cast<RegisterBlockRecord*>(buffer_.Bytes()); }
  std::uint8_t* Data() { return buffer_.Bytes() + sizeof(RegisterBlockRecord); }
  bool Send(const CameraSession& session, ControlCode code) {
    return session.Control(code, buffer_.Bytes(), bytes_, buffer_.Bytes(), bytes_);
  }

 private:
  std::uint32_t bytes_;
  platform::Buffer buffer_;
};

// Nothing is stored when the request fails, while a status word that reports a
// failure comes with the bytes as the driver left them.
Status Read(CameraSession& session, const RegisterBlockRecord& header, std::uint64_t bytes,
            std::uint8_t* data) {
  RegisterRequest request(header, bytes);
  if (!request) return kOutOfMemory;
  if (!request.Send(session, CAM_IOCTL_READ_REGISTERS)) return kRequestFailed;
  std::memcpy(data, request.Data(), header.byte_count);
  return MapDriverStatus(request.Header().status);
}

Status Write(CameraSession& session, const RegisterBlockRecord& header, std::uint64_t bytes,
             const std::uint8_t* data) {
  RegisterRequest request(header, bytes);
  if (!request) return kOutOfMemory;
  std::memcpy(request.Data(), data, header.byte_count);
  if (!request.Send(session, CAM_IOCTL_WRITE_REGISTERS)) return kRequestFailed;
  return MapDriverStatus(request.Header().status);
}

struct AsynchronousWrite {
  std::uint32_t address;
  std::uint8_t data[256];
  std::uint32_t count;
  CameraSession* session;
};

// Runs on its own thread and takes no lock; nobody learns how it ended. The
// session must outlive it.
void RunAsynchronousWrite(void* argument) {
  auto* job = static_cast<AsynchronousWrite*>(argument);
  const RegisterBlockRecord header{0, job->session->link.bus_address, job->address, job->count};
  Write(*job->session, header, BlockBytes(job->count), job->data);
  platform::Release(job);
}

AsynchronousWrite* AllocateAsynchronousWrite() {
  return static_cast<AsynchronousWrite*>(platform::Allocate(sizeof(AsynchronousWrite)));
}

Status StartAsynchronousWrite(AsynchronousWrite* job) {
  if (platform::StartThread(RunAsynchronousWrite, job)) return kOk;
  platform::Release(job);
  return kGeneralFailure;
}

}  // namespace

Status CameraSession::ReadRegister(std::uint32_t address, std::uint8_t* value) {
  if (value == nullptr) return kNullPointer;
  if (!HasDevice()) return kNoCamera;
  return Read(*this, {0, link.bus_address, address, 1}, kSingleRegisterBytes, value);
}

Status CameraSession::ReadMultRegister(std::uint32_t address, std::uint32_t count,
                                       std::uint8_t* data) {
  if (data == nullptr) return kNullPointer;
  if (!HasDevice()) return kNoCamera;
  return Read(*this, {0, link.bus_address, address, count}, BlockBytes(count), data);
}

Status CameraSession::WriteRegister(std::uint32_t address, std::uint8_t value,
                                    std::uint32_t asynchronous) {
  if (!HasDevice()) return kNoCamera;
  if (asynchronous == 0) {
    return Write(*this, {kWriteStatusPreset, link.bus_address, address, 1}, kSingleRegisterBytes,
                 &value);
  }
  AsynchronousWrite* job = AllocateAsynchronousWrite();
  if (job == nullptr) return kOutOfMemory;
  job->address = address;
  job->data[0] = value;
  job->count = 1;
  job->session = this;
  return StartAsynchronousWrite(job);
}

Status CameraSession::WriteMultRegister(std::uint32_t address, std::uint32_t count,
                                        const std::uint8_t* data, std::uint32_t asynchronous) {
  if (data == nullptr) return kNullPointer;
  if (!HasDevice()) return kNoCamera;
  if (asynchronous == 0) {
    return Write(*this, {0, link.bus_address, address, count}, BlockBytes(count), data);
  }

  // The job is allocated before the count is checked and is not given back when
  // the check fails: deliberate, long-standing behaviour of this call.
  AsynchronousWrite* job = AllocateAsynchronousWrite();
  if (count > kAsynchronousWriteLimit) return kOutOfRange;
  if (job == nullptr) return kOutOfMemory;
  job->address = address;
  std::memcpy(job->data, data, count);
  job->count = count;
  job->session = this;
  return StartAsynchronousWrite(job);
}

Status CameraSession::ReadExtI2CRegister(std::uint32_t bus_address, std::uint32_t address,
                                         std::uint8_t* value) {
  if (value == nullptr) return kNullPointer;
  if (!HasDevice()) return kNoCamera;
  return Read(*this, {0, bus_address, address, 1}, kSingleRegisterBytes, value);
}

Status CameraSession::WriteExtI2CRegister(std::uint32_t bus_address, std::uint32_t address,
                                          std::uint8_t value) {
  if (!HasDevice()) return kNoCamera;
  return Write(*this, {0, bus_address, address, 1}, kSingleRegisterBytes, &value);
}

Status CameraSession::WriteRegisterPair(std::uint32_t address, std::uint32_t value) {
  const std::uint8_t bytes[2] = {static_cast<std::uint8_t>(value >> 8),
                                 static_cast<std::uint8_t>(value)};
  return WriteMultRegister(address, 2, bytes, 0);
}

Status CameraSession::ReadRegisterPair(std::uint32_t high, std::uint32_t high_mask,
                                       std::uint32_t* value) {
  std::uint8_t bytes[2] = {};
  if (Status status = ReadRegister(high, &bytes[0]); status != kOk) return status;
  if (Status status = ReadRegister(high + 1, &bytes[1]); status != kOk) return status;
  *value = (bytes[0] & high_mask) * 256u + bytes[1];
  return kOk;
}

namespace {

// Controllers before firmware 3.0 keep these registers on page 0x88.
std::uint32_t RemapCommandRegister(const CameraSession& session, std::uint32_t address) {
  return session.HasCommandRegisterMap3() ? address : address | 0x8800u;
}

}  // namespace

Status CameraSession::ReadCommandRegister(std::uint32_t address, std::uint8_t* value) {
  CommandRegisterRecord record;
  record.operation = kCommandReadRegister;
  record.first = BigEndian32(RemapCommandRegister(*this, address));
  if (!Exchange(CAM_IOCTL_COMMAND_REGISTER, record)) return kRequestFailed;
  *value = static_cast<std::uint8_t>(record.second.Value());
  return kOk;
}

Status CameraSession::WriteCommandRegister(std::uint32_t address, std::uint8_t value) {
  CommandRegisterRecord record;
  record.operation = kCommandWriteRegister;
  record.first = BigEndian32(RemapCommandRegister(*this, address));
  record.second = BigEndian32(value);
  return Exchange(CAM_IOCTL_COMMAND_REGISTER, record) ? kOk : kRequestFailed;
}

Status CameraSession::ReadCommandBlock(std::uint32_t address, std::uint32_t count,
                                       std::uint8_t* data) {
  platform::Buffer buffer(sizeof(CommandRegisterRecord) + std::size_t{count});
  if (!buffer) return kOutOfMemory;
  auto& record = *reinterpret_cast<CommandRegisterRecord*>(buffer.Bytes());
  record.operation = kCommandReadBlock;
  record.first = BigEndian32(RemapCommandRegister(*this, address));
  record.second = BigEndian32(count);
  const auto bytes = static_cast<std::uint32_t>(sizeof(record) + count);
  if (!Control(CAM_IOCTL_COMMAND_REGISTER, buffer.Bytes(), bytes, buffer.Bytes(), bytes)) {
    return kRequestFailed;
  }
  std::memcpy(data, buffer.Bytes() + sizeof(record), count);
  return kOk;
}

}  // namespace ormidex::device
