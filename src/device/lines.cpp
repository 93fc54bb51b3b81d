// The camera's other lines to the outside: I2C, GPIO, GPO, the frame counter, the
// driver's time-out and flush, and the request for continuous auto exposure.
#include <bit>
#include <cstring>

#include "device/session.h"
#include "device/time_scale.h"
#include "platform/memory.h"

namespace ormidex::device {

namespace {

// Transactions count their bytes in one byte each.
constexpr std::uint32_t kI2cCountMask = 0xFF;

// Fills the first two words and the part that both transactions share; returns the
// position behind it.
std::uint8_t* StartI2cTransaction(std::uint8_t* record, std::uint8_t kind,
                                  std::uint8_t device_address, const std::uint8_t* data,
                                  std::uint32_t count) {
  const std::uint32_t operation = kCommandI2c;
  std::memcpy(record + 4, &operation, sizeof(operation));
  record[8] = kind;
  record[9] = static_cast<std::uint8_t>(count + 1);
  record[10] = device_address & 0xFEu;
  std::memcpy(record + 11, data, count);
  return record + 11 + count;
}

}  // namespace

Status CameraSession::I2cRead(std::uint8_t device_address, const std::uint8_t* write_data,
                              std::int32_t write_count, std::uint8_t* read_data,
                              std::int32_t read_count) {
  if (!HasDevice()) return kNoCamera;
  if (write_data == nullptr || read_data == nullptr) return kNullPointer;
  const std::uint32_t w = static_cast<std::uint32_t>(write_count) & kI2cCountMask;
  const std::uint32_t r = static_cast<std::uint32_t>(read_count) & kI2cCountMask;
  const std::uint32_t bytes = w + r + kI2cReadOverhead;
  // The request buffer is never given back: deliberate, long-standing behaviour that
  // a test pins.
  auto* record = static_cast<std::uint8_t*>(platform::Allocate(bytes));
  if (record == nullptr) return kRequestFailed;  // nothing could be sent
  std::uint8_t* tail = StartI2cTransaction(record, 3, device_address, write_data, w);
  tail[0] = 1;
  tail[1] = static_cast<std::uint8_t>(r + 1);
  tail[2] = device_address | 1u;
  if (!Control(CAM_IOCTL_COMMAND_REGISTER, record, bytes, record, bytes)) return kRequestFailed;
  std::memcpy(read_data, tail + 3, r);
  return kOk;
}

Status CameraSession::I2cWrite(std::uint8_t device_address, const std::uint8_t* data,
                               std::uint32_t count) {
  if (!HasDevice()) return kNoCamera;
  if (data == nullptr) return kNullPointer;
  const std::uint32_t w = count & kI2cCountMask;
  const std::uint32_t bytes = w + kI2cWriteOverhead;
  auto* record = static_cast<std::uint8_t*>(platform::Allocate(bytes));  // kept, as in I2cRead
  if (record == nullptr) return kRequestFailed;
  StartI2cTransaction(record, 2, device_address, data, w);
  return Control(CAM_IOCTL_COMMAND_REGISTER, record, bytes, record, bytes) ? kOk : kRequestFailed;
}

Status CameraSession::ReadGpio(std::uint32_t* value) {
  if (value == nullptr) return kNullPointer;
  if (!HasDevice()) return kNoCamera;
  GpioRecord record;
  record.selector = BigEndian32(kGpioSelector);
  if (!Exchange(CAM_IOCTL_GPIO, record)) return kRequestFailed;
  *value = record.value;
  return kOk;
}

Status CameraSession::WriteGpio(std::uint32_t value) {
  if (!HasDevice()) return kNoCamera;
  GpioRecord record;
  record.selector = BigEndian32(kGpioSelector);
  record.value = std::bit_cast<std::uint32_t>(BigEndian32(value));
  return Exchange(CAM_IOCTL_GPIO, record) ? kOk : kRequestFailed;
}

Status CameraSession::GetGpo(std::uint32_t* level, std::uint32_t line) {
  if (!HasDevice()) return kNoCamera;
  if (level == nullptr) return kNullPointer;
  if (IsReducedFirmware()) return kNotSupported;
  if (line != 1 && line != 2) return kOutOfRange;
  *level = link.gpo_level[line - 1];
  return kOk;
}

Status CameraSession::SetGpo(std::uint32_t level, float duration, std::uint32_t line) {
  if (IsReducedFirmware()) return kNotSupported;
  if (!HasDevice()) return kNoCamera;
  if (!(duration >= 0.0f)) return kOutOfRange;
  if (line != 1 && line != 2) return kOutOfRange;
  CommandRegisterRecord record;
  record.operation = line == 1 ? kCommandGpo1 : kCommandGpo2;
  record.first = BigEndian32(level);
  record.second = BigEndian32(RequestTime(duration, identity.firmware_version));
  if (!Exchange(CAM_IOCTL_COMMAND_REGISTER, record)) return kRequestFailed;
  // A pulse ends at the opposite level.
  link.gpo_level[line - 1] = duration == 0.0f ? level : (level != 0 ? 0u : 1u);
  return kOk;
}

Status CameraSession::RequestContinuousAutoExposure(std::uint32_t mode, std::uint32_t parameter) {
  if (!IsSecondGeneration()) return kNotSupported;
  CommandRegisterRecord record;
  record.operation = kCommandContinuousAutoExposure;
  record.first = BigEndian32(mode);
  record.second = BigEndian32(parameter);
  if (!Exchange(CAM_IOCTL_COMMAND_REGISTER, record)) return kRequestFailed;
  exposure.continuous_auto = mode;
  return kOk;
}

Status CameraSession::FlushVideoData() {
  if (!HasDevice()) return kNoCamera;
  if (IsTriggerActive() || stream.running.load() == 0 || geometry.video_mode == 0) {
    return kWrongState;
  }
  return Control(CAM_IOCTL_FLUSH, nullptr, 0, nullptr, 0) ? kOk : kRequestFailed;
}

Status CameraSession::GetFrameNumber(std::uint8_t* frame_counter, std::uint32_t* counters) {
  if (!HasDevice()) return kNoCamera;
  platform::Buffer buffer(sizeof(FrameNumberRecord));
  if (!buffer) return kOutOfMemory;
  auto& record = *reinterpret_cast<FrameNumberRecord*>(buffer.Bytes());
  record.bus_address = link.bus_address;
  if (!Exchange(CAM_IOCTL_GET_FRAME_NUMBER, record)) return kRequestFailed;
  if (frame_counter != nullptr) *frame_counter = record.frame_counter;
  if (counters != nullptr) std::memcpy(counters, record.counters, sizeof(record.counters));
  // The driver's own word, not mapped: applications compare it with the driver's
  // constants.
  return record.status;
}

Status CameraSession::SetTimeout(std::uint32_t timeout) {
  if (!HasDevice()) return kNoCamera;
  ThreeWordRecord record;
  record.word2 = timeout;
  if (!Exchange(CAM_IOCTL_SET_TIMEOUT, record)) return kRequestFailed;
  link.timeout = timeout;
  return kOk;
}

Status CameraSession::GetTimeout(std::uint32_t* timeout) {
  if (!HasDevice()) return kNoCamera;
  if (timeout == nullptr) return kNullPointer;
  *timeout = link.timeout;
  return kOk;
}

}  // namespace ormidex::device
