#include "device/hardware_version.h"

#include <cstdio>
#include <cstring>

#include "device/session.h"
#include "ormidex.h"

namespace ormidex::device {

void FormatHex(std::uint32_t value, char* text) { std::snprintf(text, 9, "%x", value); }

void FormatVersionBytes(std::uint32_t value, char* text) {
  std::snprintf(text, 12, "%x.%x.%x.%x", value >> 24, (value >> 16) & 0xFFu, (value >> 8) & 0xFFu,
                value & 0xFFu);
}

namespace {

void UnpackModelText(std::uint32_t word, char (&text)[5]) {
  for (int i = 0; i < 4; ++i) text[i] = static_cast<char>(word >> (24 - 8 * i));
  text[4] = '\0';
}

constexpr std::uint32_t kReducedModelText = 0x30333641;  // "036A"

}  // namespace

void DescribeCamera(const HardwareVersionWords& words, std::uint32_t firmware_version,
                    char (&text)[64]) {
  const char* colour = (words.model & 1u) != 0 ? "Monochrome" : "Color";
  const char* ec = (words.model & 2u) != 0 ? " EC" : "";
  if ((firmware_version & 0xFFFF0000u) >= 0x02020000u) {
    std::snprintf(text, sizeof(text), "Torvenal 1394 Camera (%s%s)", colour, ec);
    return;
  }
  char model[5];
  UnpackModelText(words.model_text, model);
  std::snprintf(text, sizeof(text), "QV-%s Series %s%s%s Module", model, colour, ec,
                (words.model & 4u) == 0 ? " with IFE" : "");
}

namespace {

// Reduced firmware has no version block: the session knows most of it. Its model is
// the imager type less one, deliberately: bit 0 then says "Monochrome" of a colour
// imager and "Color" of a monochrome one, and applications know these cameras by
// exactly those texts.
Status ReadReducedVersion(CameraSession& session, HardwareVersionWords* words) {
  std::uint8_t revision = 0;
  const Status status = session.ReadCommandRegister(1, &revision);
  *words = {session.identity.imager_type - 1u, session.identity.serial_number, kReducedModelText,
            session.identity.firmware_version, revision};
  return status;
}

Status ReadVersionBlock(CameraSession& session, HardwareVersionWords* words) {
  HardwareVersionRecord record;
  if (!session.Exchange(CAM_IOCTL_COMMAND_REGISTER, record)) return kRequestFailed;
  *words = {record.words[0].Value(), record.words[1].Value(), record.words[2].Value(),
            record.words[3].Value(), record.words[4].Value()};
  return kOk;
}

}  // namespace

Status CameraSession::GetHardwareVersion(OrmidexHardwareVersion* info) {
  if (info == nullptr) return kNullPointer;
  if (!HasDevice()) return kNoCamera;
  HardwareVersionWords words;
  const Status status =
      IsReducedFirmware() ? ReadReducedVersion(*this, &words) : ReadVersionBlock(*this, &words);
  if (status != kOk) return status;
  std::memset(info, 0, sizeof(*info));
  FormatHex(words.model, info->model);
  FormatHex(words.serial_number, info->serialNumber);
  UnpackModelText(words.model_text, info->modelText);
  FormatVersionBytes(words.firmware_version, info->firmwareVersion);
  FormatVersionBytes(words.hardware_revision, info->hardwareRevision);
  DescribeCamera(words, identity.firmware_version, info->description);
  info->imagerGeneration = IsSecondGeneration() ? 2 : 1;
  return kOk;
}

}  // namespace ormidex::device
