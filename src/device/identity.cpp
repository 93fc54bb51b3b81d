// Who the camera is: serial number, firmware, names, imager kind and generation.
#include <cstring>

#include "device/session.h"
#include "platform/memory.h"
#include "platform/message_box.h"

namespace ormidex::device {

namespace {

constexpr std::uint8_t kFlagExternalOscillator = 0x01;
constexpr std::uint8_t kFlagMonochrome = 0x08;
constexpr std::uint8_t kFlagCmyFilter = 0x10;

constexpr std::uint8_t kFirstGenerationSignature = 0x30;   // register 0 reads "0"
constexpr std::uint8_t kSecondGenerationSignature = 0x50;  // register 0x0F reads "P"

constexpr char kCmyWarning[] =
    "Warning: You are still using a CMY imager.  Please get upgraded to RGB.";

// How the imager type of a camera is known.
enum class TypeSource { kMono, kColour, kFlags, kFlagsRequired };

struct KnownTypeName {
  const char* name;
  TypeSource source;
};

constexpr KnownTypeName kKnownTypeNames[] = {
    {"Torvenal(tm) - VSN4410", TypeSource::kMono},
    {"Torvenal(tm) - VSN4410C", TypeSource::kColour},
    {"Torvenal(tm) - QV-H520", TypeSource::kFlags},
    {"Torvenal(tm) 1394 Camera", TypeSource::kFlags},
    {"Arlen Imaging Module", TypeSource::kFlags},
};

TypeSource SourceForName(const char* name) {
  for (const KnownTypeName& known : kKnownTypeNames) {
    if (std::strcmp(name, known.name) == 0) return known.source;
  }
  return TypeSource::kFlagsRequired;
}

// One of the requests whose record is a status, a parameter and a result. The
// result is stored whenever the request itself succeeded.
Status ReadIdentityWord(const CameraSession& session, ControlCode code, std::uint32_t parameter,
                        std::uint32_t* result) {
  platform::Buffer buffer(sizeof(ThreeWordRecord));
  if (!buffer) return kOutOfMemory;
  auto& record = *reinterpret_cast<ThreeWordRecord*>(buffer.Bytes());
  record.word1 = parameter;
  if (!session.Exchange(code, record)) return kRequestFailed;
  *result = record.word2;
  return MapDriverStatus(record.status);
}

}  // namespace

Status CameraSession::ReadSerialNumber() {
  if (!HasDevice()) return kNoCamera;
  return ReadIdentityWord(*this, CAM_IOCTL_GET_HARDWARE_WORD, 1, &identity.serial_number);
}

Status CameraSession::ReadFirmwareVersion() {
  if (!HasDevice()) return kNoCamera;
  return ReadIdentityWord(*this, CAM_IOCTL_GET_FIRMWARE_VERSION, 1, &identity.firmware_version);
}

Status CameraSession::ReadIdentityStrings() {
  if (!HasDevice()) return kNoCamera;
  std::memset(identity.device_description, 0, sizeof(identity.device_description));
  std::memset(identity.device_type_name, 0, sizeof(identity.device_type_name));
  if (!Control(CAM_IOCTL_GET_NAME_STRING_1, nullptr, 0, identity.device_description,
               kNameStringBytes) ||
      !Control(CAM_IOCTL_GET_NAME_STRING_2, nullptr, 0, identity.device_type_name,
               kNameStringBytes)) {
    return kRequestFailed;
  }
  identity.device_description[kNameStringBytes - 1] = '\0';
  identity.device_type_name[kNameStringBytes - 1] = '\0';
  return CheckImagerIdentity();
}

Status CameraSession::ReadImagerFlags(std::uint8_t* flags) {
  if (IsReducedFirmware()) {
    *flags = identity.imager_type != kImagerColour ? kFlagMonochrome : 0;
    return kOk;
  }
  if (!HasDevice()) return kNoCamera;
  *flags = 0;
  return ReadCommandRegister(HasCommandRegisterMap3() ? 9 : 4, flags);
}

Status CameraSession::CheckImagerIdentity() {
  std::uint8_t flags = 0;
  const TypeSource source = SourceForName(identity.device_type_name);
  link.bus_address = kFirstGenerationBusAddress;
  if (source == TypeSource::kMono) {
    identity.imager_type = kImagerMono;
  } else if (source == TypeSource::kColour) {
    identity.imager_type = kImagerColour;
  } else {
    const Status flags_status = ReadImagerFlags(&flags);
    if (source == TypeSource::kFlagsRequired && flags_status != kOk) {
      identity.imager_type = kImagerUnknown;
      return kImagerNotAccepted;
    }
    identity.imager_type = (flags & kFlagMonochrome) != 0 ? kImagerMono : kImagerColour;
  }

  std::uint8_t signature = 0;
  if (ReadRegister(0, &signature) == kOk) {
    return signature == kFirstGenerationSignature ? kOk : kImagerNotAccepted;
  }
  link.bus_address = kSecondGenerationBusAddress;
  // A camera whose imager answers at neither address opens as a first-generation
  // one, deliberately: its register accesses then fail one by one.
  if (ReadRegister(0x0F, &signature) != kOk) return kOk;
  if (signature != kSecondGenerationSignature) return kImagerNotAccepted;
  identity.second_generation = 1;
  if ((flags & kFlagCmyFilter) != 0 && identity.imager_type == kImagerColour) {
    platform::ShowMessage(kCmyWarning, nullptr);
  }
  return kOk;
}

Status CameraSession::GetSerialNumber(std::uint32_t* serial) {
  if (!HasDevice()) return kNoCamera;
  if (serial == nullptr) return kNullPointer;
  if (identity.serial_number == 0) return kNoCamera;
  *serial = identity.serial_number;
  return kOk;
}

Status CameraSession::GetSoftwareVersion(std::uint32_t* version) {
  if (!HasDevice()) return kNoCamera;
  if (version == nullptr) return kNullPointer;
  if (identity.firmware_version == 0) return kNoCamera;
  *version = identity.firmware_version;
  return kOk;
}

Status CameraSession::GetImagerType(std::uint32_t* type) {
  if (!HasDevice()) return kNoCamera;
  if (type == nullptr) return kNullPointer;
  *type = identity.imager_type;
  return kOk;
}

Status CameraSession::GetImagerName(char* name) {
  if (!HasDevice()) return kNoCamera;
  if (name == nullptr) return kNullPointer;
  std::memcpy(name, identity.imager_name, std::strlen(identity.imager_name) + 1);
  return kOk;
}

Status CameraSession::SetImagerName(const char* name) {
  if (!HasDevice()) return kNoCamera;
  if (name == nullptr) return kNullPointer;
  const std::size_t length = std::strlen(name);
  if (length >= sizeof(identity.imager_name)) return kOutOfRange;
  std::memcpy(identity.imager_name, name, length + 1);
  return kOk;
}

Status CameraSession::GetImagerChipId(std::uint32_t* id) {
  if (id == nullptr) return kNullPointer;
  if (!HasDevice()) return kNoCamera;
  return ReadIdentityWord(*this, CAM_IOCTL_GET_IMAGER_CHIP_ID, link.bus_address, id);
}

Status CameraSession::GetLockValue(std::uint32_t* value) {
  if (value == nullptr) return kNullPointer;
  if (!HasDevice()) return kNoCamera;
  if (!HasCommandRegisterMap3()) return kNotSupported;
  std::uint8_t byte = 0;
  *value = 0;
  const Status status = ReadCommandRegister(0xFFFF, &byte);
  *value = byte;
  return status;
}

Status CameraSession::IsExtOscillator(std::uint32_t* is_external) {
  if (IsSecondGeneration()) return kNotSupported;
  if (is_external == nullptr) return kNullPointer;
  if (!HasDevice()) return kNoCamera;
  std::uint8_t flags = 0;
  if (Status status = ReadImagerFlags(&flags); status != kOk) return status;
  *is_external = flags & kFlagExternalOscillator;
  return kOk;
}

}  // namespace ormidex::device
