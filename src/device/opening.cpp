// Opening a camera: finding its device, learning who it is, and putting it into the
// default state. The order of the requests is part of the contract with cameras
// and drivers of the field.
#include <cstdio>
#include <cstring>
#include <initializer_list>

#include "device/discovery.h"
#include "device/session.h"
#include "frame/startup.h"

namespace ormidex::device {

namespace {

constexpr std::uint32_t kDefaultWidth = 640;
constexpr std::uint32_t kDefaultHeight = 480;
constexpr std::uint32_t kDefaultTimeout = 4000;
constexpr std::uint32_t kClocking16MHz = 0;
constexpr std::uint32_t kClocking12MHz = 0x81;            // for controllers that refuse 16 MHz
constexpr std::uint32_t kFlipUnchangedOff = 0xFFFFFFFFu;  // negative: turn off
constexpr std::uint32_t kDefaultExposureValue = 2046;
constexpr float kDefaultExposureTime = 25.1f;  // ms, 0x41C8CCCD
// No gain has this code, so that the first setting is always written.
constexpr std::uint32_t kGainNeverSet = 65535;

}  // namespace

// A failure leaves the device handle open: deliberate, the record is then freed
// without teardown, and applications that retry rely on nothing being sent.
Status CameraSession::Open(const char* device_type_name, std::uint32_t device_index) {
  if (device_type_name == nullptr) return kNullPointer;
  const char* name = ResolveDeviceTypeName(device_type_name);
  Status status = kOk;
  switch (frame::OperatingSystemKind()) {
    case 1:
    case 3:
      status = OpenByEnumeration(name, device_index);
      break;
    case 2:
      status = OpenByList(ResolveDriverName(name), device_index);
      break;
    default:
      return kUnknownSystem;
  }
  if (status != kOk) return status;
  if (!HasDevice()) return kNoCamera;

  if (status = ReadIdentity(); status != kOk) return status;
  if (status = ApplyDefaultGeometry(); status != kOk) return status;
  if (status = ApplyDefaultImagerSettings(device_index); status != kOk) return status;
  if (status = ApplyDefaultExposure(); status != kOk) return status;
  if (status = ReadInitialGains(); status != kOk) return status;
  PrepareWorkers();
  StopVideoStream();  // one that an earlier user left running
  return kOk;
}

// Here the driver itself lists the cameras, and devices are not shared.
Status CameraSession::OpenByList(const char* name, std::uint32_t device_index) {
  link.handle = link.gateway->Open(name, DriverShare::kExclusive);
  if (!HasDevice()) return kNoCamera;
  DeviceList list;
  char path[kDeviceTextBytes] = {};
  Status status = kOk;
  if (!list.Read(*link.gateway, link.handle) || !list.HasLines()) {
    status = kNoCamera;
  } else if (!list.DevicePath(device_index, path)) {
    status = kCameraNotFound;
  }
  link.gateway->Close(link.handle);
  link.handle = nullptr;
  if (status == kOk) link.handle = link.gateway->Open(path, DriverShare::kExclusive);
  return status;
}

// Here the system lists the cameras; the device is shared, deliberately unlike in
// OpenByList, so that a driver's property page can look at a camera in use.
Status CameraSession::OpenByEnumeration(const char* name, std::uint32_t device_index) {
  char path[kDeviceTextBytes] = {};
  if (Status status = FindCameraPath(*link.gateway, name, device_index, path); status != kOk) {
    return status;
  }
  link.handle = link.gateway->Open(path, DriverShare::kShared);
  return kOk;
}

Status CameraSession::ReadIdentity() {
  geometry.bytes_per_pixel = 1;
  geometry.width = kDefaultWidth;
  geometry.height = kDefaultHeight;
  if (Status status = ReadSerialNumber(); status != kOk) return status;
  if (Status status = ReadFirmwareVersion(); status != kOk) return status;
  LoadFpnValues();
  return ReadIdentityStrings();
}

Status CameraSession::ApplyDefaultGeometry() {
  open.imager_mode = 1;
  if (Status status = SetVideoMode(1); status != kOk) return status;
  Status status = SetImagerClocking(kClocking16MHz);
  if (status == kOutOfRange) status = SetImagerClocking(kClocking12MHz);
  if (status != kOk) return status;
  if (status = SetDataTransferSize(8); status != kOk) return status;
  return SetSubWindow(1, 0, 0, kDefaultWidth, kDefaultHeight);
}

Status CameraSession::ApplyDefaultImagerSettings(std::uint32_t device_index) {
  if (Status status = SetTimeout(kDefaultTimeout); status != kOk) return status;
  if (Status status = SetGamma(1.0f); status != kOk) return status;
  const auto off = static_cast<std::int32_t>(kFlipUnchangedOff);
  if (Status status = ImageFlip(off, off); status != kOk) return status;
  if (IsSecondGeneration()) {
    if (Status status = SetLightSource(options.light_source); status != kOk) return status;
  }
  // The index is printed as signed, as it always was.
  std::snprintf(identity.imager_name, sizeof(identity.imager_name), "Imager%d",
                static_cast<int>(device_index));
  if (IsSecondGeneration()) return kOk;

  std::uint8_t orientation = 0;
  if (Status status = ReadRegister(1, &orientation); status != kOk) return status;
  if ((orientation & 0x18u) == 0x18u) {
    geometry.bayer_phase = 2;
  } else if ((orientation & 0x10u) != 0) {
    geometry.bayer_phase = 1;
  }
  return kOk;
}

Status CameraSession::ApplyDefaultExposure() {
  SetGpo(open.gpo_level, 0.0f, 1);  // cameras without GPO lines refuse: no matter
  if (IsSecondGeneration()) return SetExposureTime(kDefaultExposureTime, 0);
  SetExposure(kDefaultExposureValue);
  return kOk;
}

namespace {

struct GainRegister {
  std::uint32_t address;
  std::uint32_t* gain;
};

Status ReadGainRegister(CameraSession& session, GainRegister source) {
  std::uint8_t value = 0;
  if (Status status = session.ReadRegister(source.address, &value); status != kOk) return status;
  *source.gain = value;
  return kOk;
}

// Bit 0 of this command register holds the colour gains under the controller's
// own control; the library takes them over.
void TakeColourGainControl(CameraSession& session) {
  const std::uint32_t address = session.HasCommandRegisterMap3() ? 0x0F : 7;
  std::uint8_t value = 0;
  session.ReadCommandRegister(address, &value);
  session.WriteCommandRegister(address, value & 0xFEu);
}

}  // namespace

Status CameraSession::ReadInitialGains() {
  gains.mono = kGainNeverSet;
  if (identity.imager_type == kImagerMono) {
    SetMonoGain(0);
    return kOk;
  }
  if (!IsSecondGeneration()) {
    for (const GainRegister& source :
         {GainRegister{0x14, &gains.red}, GainRegister{0x15, &gains.green},
          GainRegister{0x16, &gains.blue}}) {
      if (Status status = ReadGainRegister(*this, source); status != kOk) return status;
    }
    TakeColourGainControl(*this);
    return kOk;
  }
  std::uint32_t green1 = 0;
  std::uint32_t green2 = 0;
  for (const GainRegister& source : {GainRegister{1, &gains.red}, GainRegister{2, &gains.blue},
                                     GainRegister{0, &green1}, GainRegister{3, &green2}}) {
    if (Status status = ReadGainRegister(*this, source); status != kOk) return status;
  }
  gains.green = (green1 + green2) / 2;
  return kOk;
}

void CameraSession::PrepareWorkers() {
  bitmap_header.header_bytes = sizeof(bitmap_header);
  bitmap_header.planes = 1;
  bitmap_header.bits_per_pixel = 24;
  bitmap_header.compression = 0;
  RecomputeFrameSizes();
  overlay.preview = nullptr;
  overlay.saving = nullptr;
  command.active_workers.store(0);
  command.channel_event.Create(true);
  command.cancel_event.Create(false);
  command.done_event.Create(false);
}

}  // namespace ormidex::device
