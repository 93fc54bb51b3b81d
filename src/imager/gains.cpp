// The imager's analogue gains, one for each colour.
#include <cstring>

#include "device/session.h"
#include "imager/registers.h"

namespace ormidex::device {

using namespace imager;

namespace {

constexpr std::uint32_t kGainMax = 63;

// Checks common to the setters. A gain that is already set is not written again, so
// on a fresh session 0 writes nothing; deliberate, the registers power up at 0.
Status CheckGain(const CameraSession& session, std::uint32_t required_type, std::uint32_t gain) {
  if (!session.HasDevice()) return kNoCamera;
  if (session.identity.imager_type != required_type) return kNotSupported;
  return gain > kGainMax ? kOutOfRange : kOk;
}

Status GetGain(const CameraSession& session, std::uint32_t required_type, std::uint32_t stored,
               std::uint32_t* gain) {
  if (gain == nullptr) return kNullPointer;
  if (!session.HasDevice()) return kNoCamera;
  if (session.identity.imager_type != required_type) return kNotSupported;
  *gain = stored;
  return kOk;
}

}  // namespace

Status CameraSession::SetRedGain(std::uint32_t gain) {
  if (Status status = CheckGain(*this, kImagerColour, gain); status != kOk) return status;
  if (gain == gains.red) return kOk;
  const std::uint32_t address = IsSecondGeneration() ? second::kRedGain : first::kRedGain;
  const Status status = WriteRegister(address, static_cast<std::uint8_t>(gain), 0);
  if (status == kOk) gains.red = gain;
  return status;
}

Status CameraSession::SetGreenGain(std::uint32_t gain) {
  if (Status status = CheckGain(*this, kImagerColour, gain); status != kOk) return status;
  if (gain == gains.green) return kOk;
  const auto code = static_cast<std::uint8_t>(gain);
  Status status = kOk;
  if (IsSecondGeneration()) {
    status = WriteRegister(second::kGreen1Gain, code, 0);
    if (status == kOk) status = WriteRegister(second::kGreen2Gain, code, 0);
  } else {
    status = WriteRegister(first::kGreenGain, code, 0);
  }
  if (status == kOk) gains.green = gain;
  return status;
}

Status CameraSession::SetBlueGain(std::uint32_t gain) {
  if (Status status = CheckGain(*this, kImagerColour, gain); status != kOk) return status;
  if (gain == gains.blue) return kOk;
  const std::uint32_t address = IsSecondGeneration() ? second::kBlueGain : first::kBlueGain;
  const Status status = WriteRegister(address, static_cast<std::uint8_t>(gain), 0);
  if (status == kOk) gains.blue = gain;
  return status;
}

Status CameraSession::SetMonoGain(std::uint32_t gain) {
  if (Status status = CheckGain(*this, kImagerMono, gain); status != kOk) return status;
  if (gain == gains.mono) return kOk;
  std::uint8_t codes[4];
  std::memset(codes, static_cast<int>(gain), sizeof(codes));
  const Status status = IsSecondGeneration() ? WriteMultRegister(second::kGreen1Gain, 4, codes, 0)
                                             : WriteMultRegister(first::kRedGain, 3, codes, 0);
  if (status == kOk) gains.mono = gain;
  return status;
}

Status CameraSession::GetRedGain(std::uint32_t* gain) {
  return GetGain(*this, kImagerColour, gains.red, gain);
}

Status CameraSession::GetGreenGain(std::uint32_t* gain) {
  return GetGain(*this, kImagerColour, gains.green, gain);
}

Status CameraSession::GetBlueGain(std::uint32_t* gain) {
  return GetGain(*this, kImagerColour, gains.blue, gain);
}

Status CameraSession::GetMonoGain(std::uint32_t* gain) {
  return GetGain(*this, kImagerMono, gains.mono, gain);
}

}  // namespace ormidex::device
