#include "device/request_trace.h"

#include <array>
#include <cstring>
#include <string>

#include "device/driver_protocol.h"
#include "platform/timer.h"

namespace ormidex::device {

const char* ControlCodeName(std::uint32_t code) {
#define ORMIDEX_NAME(name) \
  case name:               \
    return #name
  switch (code) {
    ORMIDEX_NAME(CAM_IOCTL_READ_REGISTERS);
    ORMIDEX_NAME(CAM_IOCTL_WRITE_REGISTERS);
    ORMIDEX_NAME(CAM_IOCTL_GPIO);
    ORMIDEX_NAME(CAM_IOCTL_SET_TRANSFER_SIZE);
    ORMIDEX_NAME(CAM_IOCTL_GET_FIRMWARE_VERSION);
    ORMIDEX_NAME(CAM_IOCTL_GET_IMAGER_CHIP_ID);
    ORMIDEX_NAME(CAM_IOCTL_GET_HARDWARE_WORD);
    ORMIDEX_NAME(CAM_IOCTL_LOAD_LOOKUP_TABLE);
    ORMIDEX_NAME(CAM_IOCTL_SET_TIMEOUT);
    ORMIDEX_NAME(CAM_IOCTL_GET_NAME_STRING_1);
    ORMIDEX_NAME(CAM_IOCTL_GET_NAME_STRING_2);
    ORMIDEX_NAME(CAM_IOCTL_START_STREAM);
    ORMIDEX_NAME(CAM_IOCTL_READ_FRAME);
    ORMIDEX_NAME(CAM_IOCTL_STOP_STREAM);
    ORMIDEX_NAME(CAM_IOCTL_PAUSE_STREAM);
    ORMIDEX_NAME(CAM_IOCTL_RESUME_STREAM);
    ORMIDEX_NAME(CAM_IOCTL_SET_VIDEO_MODE);
    ORMIDEX_NAME(CAM_IOCTL_STILL_FRAME);
    ORMIDEX_NAME(CAM_IOCTL_TRIGGER_MODE);
    ORMIDEX_NAME(CAM_IOCTL_GET_FRAME_NUMBER);
    ORMIDEX_NAME(CAM_IOCTL_READ_COMMAND);
    ORMIDEX_NAME(CAM_IOCTL_WRITE_COMMAND);
    ORMIDEX_NAME(CAM_IOCTL_SET_FLIP);
    ORMIDEX_NAME(CAM_IOCTL_FLUSH);
    ORMIDEX_NAME(CAM_IOCTL_ENUMERATE);
    ORMIDEX_NAME(CAM_IOCTL_COMMAND_REGISTER);
    default:
      return "unknown";
  }
#undef ORMIDEX_NAME
}

namespace {

constexpr std::array<std::uint32_t, 256> MakeCrcTable() {
  std::array<std::uint32_t, 256> table{};
  for (std::uint32_t i = 0; i < 256; ++i) {
    std::uint32_t value = i;
    for (int bit = 0; bit < 8; ++bit) value = (value >> 1) ^ ((value & 1u) ? 0xEDB88320u : 0u);
    table[i] = value;
  }
  return table;
}

constexpr auto kCrcTable = MakeCrcTable();

std::string Hex(const void* data, std::size_t bytes) {
  static constexpr char kDigits[] = "0123456789abcdef";
  std::string text;
  text.reserve(bytes * 2);
  const auto* byte = static_cast<const std::uint8_t*>(data);
  for (std::size_t i = 0; i < bytes; ++i) {
    text += kDigits[byte[i] >> 4];
    text += kDigits[byte[i] & 15];
  }
  return text;
}

// Device paths hold backslashes; nothing else in them needs care but control bytes.
std::string JsonText(const std::string& text) {
  std::string quoted = "\"";
  for (const char c : text) {
    if (c == '"' || c == '\\') quoted += '\\';
    quoted += static_cast<unsigned char>(c) < 0x20 ? '?' : c;
  }
  return quoted + '"';
}

}  // namespace

std::uint32_t Crc32(const void* data, std::size_t bytes) {
  std::uint32_t crc = 0xFFFFFFFFu;
  const auto* byte = static_cast<const std::uint8_t*>(data);
  for (std::size_t i = 0; i < bytes; ++i) crc = kCrcTable[(crc ^ byte[i]) & 0xFFu] ^ (crc >> 8);
  return ~crc;
}

RequestTrace::RequestTrace(DriverGateway& inner, const char* path)
    : inner_(inner), start_us_(platform::MonotonicMicroseconds()) {
  lock_.Initialise();
  file_ = std::strcmp(path, "stderr") == 0 ? stderr : std::fopen(path, "w");
  if (file_ == nullptr) {
    std::fprintf(stderr, "ormidex: cannot write the request trace to \"%s\"\n", path);
  }
}

RequestTrace::~RequestTrace() {
  if (file_ != nullptr && file_ != stderr) std::fclose(file_);
  lock_.Delete();
}

DriverHandle RequestTrace::Open(const char* path, DriverShare share) {
  DriverHandle handle = inner_.Open(path, share);
  if (handle != nullptr) {
    platform::ScopedLock lock(lock_);
    cameras_[handle] = path;
  }
  return handle;
}

bool RequestTrace::Close(DriverHandle handle) {
  {
    platform::ScopedLock lock(lock_);
    cameras_.erase(handle);
  }
  return inner_.Close(handle);
}

EnumerationResult RequestTrace::Enumerate(DeviceVisitor& visitor) {
  return inner_.Enumerate(visitor);
}

struct RequestTrace::Completed {
  std::string in;  // hex, taken before the request: most records are answered in place
  bool ok;
  std::uint32_t returned;
  std::uint64_t start_us;
  std::uint64_t end_us;
};

bool RequestTrace::Control(DriverHandle handle, const DriverRequest& request,
                           std::uint32_t* returned) {
  if (file_ == nullptr) return inner_.Control(handle, request, returned);
  Completed completed{Hex(request.in, request.in_bytes), false, 0,
                      platform::MonotonicMicroseconds(), 0};
  completed.ok = inner_.Control(handle, request, returned);
  completed.end_us = platform::MonotonicMicroseconds();
  completed.returned = completed.ok ? *returned : 0;
  Write(handle, request, completed);
  return completed.ok;
}

void RequestTrace::Write(DriverHandle handle, const DriverRequest& request,
                         const Completed& completed) {
  std::string out;
  if (request.code == CAM_IOCTL_READ_FRAME) {
    char frame[64];
    std::snprintf(frame, sizeof(frame), "{\"length\":%u,\"crc32\":\"0x%08x\"}", completed.returned,
                  Crc32(request.out, completed.returned));
    out = frame;
  } else {
    out = '"' + Hex(request.out, completed.returned) + '"';
  }
  platform::ScopedLock lock(lock_);
  const auto camera = cameras_.find(handle);
  std::fprintf(file_,
               "{\"t\":%.6f,\"camera\":%s,\"code\":\"0x%06X\",\"name\":\"%s\",\"in\":\"%s\","
               "\"out\":%s,\"ok\":%s,\"returned\":%u,\"us\":%u}\n",
               static_cast<double>(completed.start_us - start_us_) / 1e6,
               camera != cameras_.end() ? JsonText(camera->second).c_str() : "null", request.code,
               ControlCodeName(request.code), completed.in.c_str(), out.c_str(),
               completed.ok ? "true" : "false", completed.returned,
               static_cast<unsigned>(completed.end_us - completed.start_us));
  std::fflush(file_);
}

}  // namespace ormidex::device
