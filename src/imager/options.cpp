// The camera's lookup table, colour saturation and light source.
#include <cstring>

#include "device/session.h"
#include "imager/formulas.h"

namespace ormidex::device {

using namespace imager;

namespace {

constexpr std::uint32_t kFirmwareWithSaturation = 0x02020000;
constexpr std::uint32_t kFirmwareWithSaturationOperation = 0x03011101;
constexpr std::uint32_t kLightSourceMax = 4;

template <typename Record>
Status LoadTable(const CameraSession& session, Record& record) {
  if (!session.Exchange(CAM_IOCTL_LOAD_LOOKUP_TABLE, record)) return kRequestFailed;
  return MapDriverStatus(record.status);
}

Status TurnTableOff(const CameraSession& session) {
  LookupTableOffRecord record;
  return LoadTable(session, record);
}

Status LoadTable8(const CameraSession& session, double gamma) {
  const GammaCurve curve(gamma, 255.0, 51.0);
  LookupTable8Record record;
  for (std::uint32_t i = 0; i < 256; ++i) {
    record.entries[i] = static_cast<std::uint8_t>(curve.Entry(i, i));
  }
  return LoadTable(session, record);
}

Status LoadTable10(const CameraSession& session, double gamma) {
  const GammaCurve curve(gamma, 65535.0, 13107.0);
  LookupTable10Record record;
  for (std::uint32_t i = 0; i < 1024; ++i) {
    const std::uint32_t entry = curve.Entry(i, i * 64.0);
    record.entries[2 * i] = static_cast<std::uint8_t>(entry);
    record.entries[2 * i + 1] = static_cast<std::uint8_t>(entry >> 8);
  }
  return LoadTable(session, record);
}

}  // namespace

Status CameraSession::SetGamma(float gamma) {
  if (!HasDevice()) return kNoCamera;
  if (!(gamma >= 0.0f)) return kOutOfRange;
  options.gamma = gamma;
  if (gamma == 0.0f || gamma == 1.0f) return TurnTableOff(*this);
  return geometry.bytes_per_pixel == 2 ? LoadTable10(*this, static_cast<double>(gamma))
                                       : LoadTable8(*this, static_cast<double>(gamma));
}

Status CameraSession::GetGamma(float* gamma) {
  if (!HasDevice()) return kNoCamera;
  if (gamma == nullptr) return kNullPointer;
  *gamma = options.gamma;
  return kOk;
}

namespace {

bool HasSaturationOperation(const CameraSession& session) {
  return session.IsSecondGeneration() &&
         session.identity.firmware_version >= kFirmwareWithSaturationOperation;
}

std::uint32_t SaturationRegister(const CameraSession& session) {
  return session.HasCommandRegisterMap3() ? 14 : 6;
}

}  // namespace

Status CameraSession::SetSaturation(std::uint32_t saturation) {
  if (!HasDevice()) return kNoCamera;
  if (FirmwareGeneration() < kFirmwareWithSaturation) return kNotSupported;
  if (!HasSaturationOperation(*this)) {
    return WriteCommandRegister(SaturationRegister(*this), static_cast<std::uint8_t>(saturation));
  }
  CommandArgumentRecord record;
  record.operation = kCommandSetSaturation;
  record.argument = BigEndian32(saturation);
  return Exchange(CAM_IOCTL_COMMAND_REGISTER, record) ? kOk : kRequestFailed;
}

Status CameraSession::GetSaturation(std::uint32_t* saturation) {
  if (!HasDevice()) return kNoCamera;
  if (saturation == nullptr) return kNullPointer;
  if (FirmwareGeneration() < kFirmwareWithSaturation) return kNotSupported;
  if (!HasSaturationOperation(*this)) {
    std::uint8_t value = 0;
    const Status status = ReadCommandRegister(SaturationRegister(*this), &value);
    if (status == kOk) *saturation = value;
    return status;
  }
  CommandArgumentRecord record;
  record.operation = kCommandGetSaturation;
  if (!Exchange(CAM_IOCTL_COMMAND_REGISTER, record)) return kRequestFailed;
  *saturation = record.argument.Value();
  return kOk;
}

Status CameraSession::SetLightSource(std::uint32_t source) {
  if (!IsSecondGeneration()) return kNotSupported;
  if (!HasDevice()) return kNoCamera;
  if (source == 0 || source > kLightSourceMax) return kOutOfRange;
  CommandArgumentRecord record;
  record.operation = kCommandSetLightSource;
  record.argument = BigEndian32(source);
  if (!Exchange(CAM_IOCTL_COMMAND_REGISTER, record)) return kRequestFailed;
  options.light_source = source;
  return kOk;
}

Status CameraSession::GetLightSource(std::uint32_t* source) {
  if (!HasDevice()) return kNoCamera;
  if (source == nullptr) return kNullPointer;
  *source = options.light_source;
  return kOk;
}

}  // namespace ormidex::device
