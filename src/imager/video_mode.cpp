// Video mode and the width of the samples that the camera sends.
#include "acquisition/reconfiguration.h"
#include "device/session.h"
#include "imager/formulas.h"
#include "platform/thread.h"

namespace ormidex::device {

using namespace imager;

namespace {

void WaitForFrame(const CameraSession& session) {
  const PixelClock* clock = FindPixelClock(session.exposure.clocking);
  if (clock == nullptr) return;
  platform::SleepMilliseconds(
      SettleMilliseconds(session.geometry.width, session.geometry.height, *clock));
}

}  // namespace

Status CameraSession::SetVideoMode(std::uint32_t mode) {
  if (!HasDevice()) return kNoCamera;
  if (IsTriggerActive()) return kWrongState;
  if (mode == geometry.video_mode) return kOk;

  acquisition::StreamReconfiguration reconfiguration(*this);
  if (Status status = reconfiguration.Begin(); status != kOk) return status;
  // Stored before the request, deliberately: after a failure applications repeat the
  // call with another mode, and the same mode again is then taken as set.
  geometry.video_mode = mode;
  ThreeWordRecord record;
  record.word2 = mode;
  if (!Exchange(CAM_IOCTL_SET_VIDEO_MODE, record)) return kRequestFailed;
  if (IsSecondGeneration()) WaitForFrame(*this);
  if (Status status = reconfiguration.RestartStream(); status != kOk) return status;
  reconfiguration.LeaveLock();
  if (reconfiguration.PausedPreview()) NotifyPreview(0);
  return MapDriverStatus(record.status);
}

Status CameraSession::GetVideoMode(std::uint32_t* mode) {
  if (!HasDevice()) return kNoCamera;
  if (mode == nullptr) return kNullPointer;
  *mode = geometry.video_mode;
  return kOk;
}

namespace {

constexpr std::uint32_t kFirstFirmwareWithWidthBit = 0x02020001;
constexpr std::uint32_t kLastFirmwareWithWidthBit = 0x02FFFFFF;

// 16-bit transfer is too much for the bus at the two fastest clocks.
Status SlowClockFor16Bits(CameraSession& session, bool* changed) {
  const std::uint32_t clocking = session.exposure.clocking;
  if (clocking != 0 && clocking != 128) return kOk;
  const Status status = session.SetImagerClocking(clocking == 0 ? 1 : 129);
  *changed = status == kOk;
  return status;
}

// These controllers also want to be told by a bit of command register 7.
Status TellControllerWidth(CameraSession& session, bool wide) {
  const std::uint32_t firmware = session.identity.firmware_version;
  if (session.IsSecondGeneration() || firmware < kFirstFirmwareWithWidthBit ||
      firmware > kLastFirmwareWithWidthBit) {
    return kOk;
  }
  std::uint8_t value = 0;
  if (Status status = session.ReadCommandRegister(7, &value); status != kOk) return status;
  value = static_cast<std::uint8_t>(wide ? value | 1u : value & 0xFEu);
  return session.WriteCommandRegister(7, value);
}

// The part between stopping and restarting the stream. The shortest row depends on
// the sample width, so a second-generation exposure is set again.
Status ChangeTransferSize(CameraSession& session, std::uint32_t bits) {
  float milliseconds = 0.0f;
  if (session.IsSecondGeneration()) {
    if (Status status = session.GetExposureTime(&milliseconds); status != kOk) return status;
  }
  ThreeWordRecord record;
  record.word1 = session.link.bus_address;
  record.word2 = bits;
  if (!session.Exchange(CAM_IOCTL_SET_TRANSFER_SIZE, record)) return kRequestFailed;
  session.geometry.bytes_per_pixel = bits / 8;
  session.RecomputeFrameSizes();
  return session.IsSecondGeneration() ? session.SetExposureTime(milliseconds, 0) : kOk;
}

}  // namespace

Status CameraSession::SetDataTransferSize(std::uint32_t bits) {
  if (!HasDevice()) return kNoCamera;
  if (IsTriggerActive()) return kWrongState;
  if (bits != 8 && bits != 16) return kOutOfRange;

  acquisition::StreamReconfiguration reconfiguration(*this);
  reconfiguration.PausePreview();
  bool clocking_changed = false;
  if (bits == 16) {
    if (Status status = SlowClockFor16Bits(*this, &clocking_changed); status != kOk) {
      return status;
    }
  }
  if (Status status = TellControllerWidth(*this, bits == 16); status != kOk) return status;
  if (Status status = reconfiguration.EnterAndStop(); status != kOk) return status;
  if (Status status = ChangeTransferSize(*this, bits); status != kOk) return status;
  if (Status status = reconfiguration.RestartStream(); status != kOk) return status;
  reconfiguration.LeaveLock();
  NotifyPreviewGeometry();
  reconfiguration.RestorePreview();

  const Status status = SetGamma(options.gamma);
  return status == kOk && clocking_changed ? kClockingChanged : status;
}

Status CameraSession::GetDataTransferSize(std::uint32_t* bits) {
  if (!HasDevice()) return kNoCamera;
  if (bits == nullptr) return kNullPointer;
  *bits = geometry.bytes_per_pixel * 8;
  return kOk;
}

}  // namespace ormidex::device
