#include "device/discovery.h"

#include <algorithm>
#include <cstring>

#include "device/driver_protocol.h"
#include "frame/startup.h"

namespace ormidex::device {

namespace {

constexpr char kModelSeriesName[] = "QV-H520 Series Imaging Module";
constexpr char kImagingModuleName[] = "Torvenal(tm) Imaging Module";
constexpr char kLegacyDevicePath[] = "\\\\.\\QV1394CAM";
constexpr char kModelDevicePath[] = "\\\\.\\QV-H520";
constexpr char kCameraFriendlyName[] = "Torvenal(tm) 1394 Camera";
constexpr char kDevicePathPrefix[] = "//./";

}  // namespace

// The name is replaced as soon as it differs from one of four names, and none can
// equal them all: deliberately, every caller ends up with the friendly name, so
// that applications written for any member of the family find all cameras.
const char* ResolveDeviceTypeName(const char* device_type_name) {
  for (const char* known :
       {kModelSeriesName, kImagingModuleName, kLegacyDevicePath, kModelDevicePath}) {
    if (std::strcmp(device_type_name, known) != 0) return kCameraFriendlyName;
  }
  return device_type_name;
}

const char* ResolveDriverName(const char* resolved_name) {
  return std::strcmp(resolved_name, kCameraFriendlyName) == 0 ? resolved_name : kLegacyDevicePath;
}

bool DeviceList::Read(DriverGateway& gateway, DriverHandle handle) {
  static_assert(sizeof(text_) == kDeviceListBytes);
  const DriverRequest request{CAM_IOCTL_ENUMERATE, text_, sizeof(text_), text_, sizeof(text_)};
  if (!gateway.Control(handle, request, &used_bytes_)) return false;
  used_bytes_ = std::min<std::uint32_t>(used_bytes_, sizeof(text_));
  const void* feed = std::memchr(text_, '\n', used_bytes_);
  if (feed != nullptr) {
    line_bytes_ = static_cast<std::uint32_t>(static_cast<const char*>(feed) - text_) + 1;
  }
  return true;
}

bool DeviceList::DevicePath(std::uint32_t index, char (&path)[kDeviceTextBytes]) const {
  constexpr std::size_t kPrefix = sizeof(kDevicePathPrefix) - 1;
  const std::uint64_t start = std::uint64_t{line_bytes_} * index;
  const std::uint32_t name_bytes = line_bytes_ - 1;
  if (start + name_bytes > used_bytes_) return false;
  const std::size_t copied = std::min<std::size_t>(name_bytes, kDeviceTextBytes - kPrefix - 1);
  std::memcpy(path, kDevicePathPrefix, kPrefix);
  std::memcpy(path + kPrefix, text_ + start, copied);
  path[kPrefix + copied] = '\0';
  return true;
}

namespace {

// Counts devices with the wanted name and, for one of them, takes its path.
class CameraVisitor : public DeviceVisitor {
 public:
  static constexpr std::uint64_t kCountOnly = ~std::uint64_t{0};

  CameraVisitor(const char* name, std::uint64_t wanted_index)
      : name_(name), wanted_index_(wanted_index) {}

  bool Visit(DeviceEntry& entry) override {
    char friendly_name[kDeviceTextBytes] = {};
    if (!entry.FriendlyName(friendly_name) || std::strcmp(friendly_name, name_) != 0) return true;
    if (wanted_index_ != kCountOnly && !entry.DevicePath(path_)) {
      path_unreadable_ = true;
      return false;
    }
    if (count_ == wanted_index_) {
      found_ = true;
      return false;
    }
    ++count_;
    return true;
  }

  std::uint32_t count() const { return count_; }
  bool found() const { return found_; }
  bool path_unreadable() const { return path_unreadable_; }
  const char (&path() const)[kDeviceTextBytes] { return path_; }

 private:
  const char* name_;
  std::uint64_t wanted_index_;
  std::uint32_t count_ = 0;
  bool found_ = false;
  bool path_unreadable_ = false;
  char path_[kDeviceTextBytes] = {};
};

Status CountByEnumeration(DriverGateway& gateway, const char* name, std::uint32_t* count) {
  CameraVisitor visitor(name, CameraVisitor::kCountOnly);
  switch (gateway.Enumerate(visitor)) {
    case EnumerationResult::kUnavailable:
      return kEnumerationFailed;
    case EnumerationResult::kEmptyCategory:
      return kOk;
    case EnumerationResult::kListed:
      break;
  }
  *count = visitor.count();
  return kOk;
}

// A machine without the driver simply has no cameras, so nothing here is an error.
Status CountByList(DriverGateway& gateway, const char* name, std::uint32_t* count) {
  const DriverHandle handle = gateway.Open(name, DriverShare::kExclusive);
  if (handle == nullptr) return kOk;
  DeviceList list;
  if (list.Read(gateway, handle)) *count = list.CameraCount();
  gateway.Close(handle);
  return kOk;
}

}  // namespace

Status CountCameras(std::uint32_t* count) {
  const char* name = ResolveDeviceTypeName("");
  DriverGateway& gateway = ProcessGateway();
  *count = 0;
  switch (frame::OperatingSystemKind()) {
    case 1:
    case 3:
      return CountByEnumeration(gateway, name, count);
    case 2:
      return CountByList(gateway, ResolveDriverName(name), count);
    default:
      return kUnknownSystem;
  }
}

Status FindCameraPath(DriverGateway& gateway, const char* name, std::uint32_t index,
                      char (&path)[kDeviceTextBytes]) {
  CameraVisitor visitor(name, index);
  if (gateway.Enumerate(visitor) != EnumerationResult::kListed || visitor.path_unreadable()) {
    return kNoCamera;
  }
  if (!visitor.found()) return kCameraNotFound;
  std::memcpy(path, visitor.path(), sizeof(path));
  return kOk;
}

}  // namespace ormidex::device
