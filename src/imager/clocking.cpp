// The imager's pixel clock.
#include "device/session.h"
#include "imager/formulas.h"
#include "imager/registers.h"

namespace ormidex::device {

using namespace imager;

namespace {

constexpr std::uint32_t kClocking24MHz = 128;
constexpr std::uint32_t kClocking16MHz = 0;
constexpr std::uint8_t kSlowImagerLetter = 0x4A;  // "J" in command register 0

Status WriteClocking(CameraSession& session, std::uint32_t code) {
  const std::uint32_t address = session.HasCommandRegisterMap3() ? 12 : 5;
  const Status status = session.WriteCommandRegister(address, static_cast<std::uint8_t>(code));
  if (status == kOk) session.exposure.clocking = code;
  return status;
}

// The exposure is counted in rows, so its time is read before the clock changes and
// set again afterwards.
Status ChangeClockKeepingExposure(CameraSession& session, std::uint32_t code) {
  platform::ScopedLock lock(session.stream_lock);
  const bool was_running = session.stream.running.load() != 0;
  if (was_running) {
    if (Status status = session.StopVideoStream(); status != kOk) return status;
  }
  float milliseconds = 0.0f;
  if (Status status = session.GetExposureTime(&milliseconds); status != kOk) return status;
  const Status status = WriteClocking(session, code);
  session.SetExposureTime(milliseconds, 0);
  if (was_running) session.StartVideoStream();
  return status;
}

}  // namespace

Status CameraSession::SetImagerClocking(std::uint32_t code) {
  if (!HasDevice()) return kNoCamera;
  const bool fast = code == kClocking24MHz || code == kClocking16MHz;
  if (IsSecondGeneration()) {
    std::uint8_t letter = 0;
    if (Status status = ReadCommandRegister(0, &letter); status != kOk) return status;
    if (letter == kSlowImagerLetter && fast) return kOutOfRange;
  }
  const PixelClock* clock = FindPixelClock(code);
  if (clock == nullptr) return kOutOfRange;
  if (fast && geometry.bytes_per_pixel > 1) return kOutOfRange;
  if (IsSecondGeneration()) return ChangeClockKeepingExposure(*this, code);
  if (Status status = WriteClocking(*this, code); status != kOk) return status;
  return WriteRegister(first::kClockingValue, exposure.clocking_register_values[clock->fpn_index],
                       0);
}

Status CameraSession::GetImagerClocking(std::uint32_t* clocking) {
  if (!HasDevice()) return kNoCamera;
  if (clocking == nullptr) return kNullPointer;
  *clocking = exposure.clocking;
  return kOk;
}

}  // namespace ormidex::device
