// A single frame with an exposure of its own.
#include "acquisition/capture.h"
#include "device/session.h"

namespace ormidex::device {

namespace {

// A frame that was never exposed is not waited for.
Status RequestStill(CameraSession& session, const CaptureTiming& timing, void* buffer) {
  StillRecord record;
  record.timing = timing;
  const std::uint32_t bytes = session.IsReducedFirmware() ? kStillRecordShortBytes : sizeof(record);
  if (!session.Control(CAM_IOCTL_STILL_FRAME, &record, bytes, &record, bytes)) {
    return kRequestFailed;
  }
  const bool read =
      session.Control(CAM_IOCTL_READ_FRAME, nullptr, 0, buffer, session.geometry.frame_bytes);
  return read ? kOk : kRequestFailed;
}

}  // namespace

Status CameraSession::ReturnStillFrame(void* buffer, float exposure_time,
                                       std::uint32_t first_output_flag, float first_output_time,
                                       std::uint32_t second_output_flag, float second_output_time_a,
                                       float second_output_time_b) {
  const acquisition::CaptureArguments arguments{exposure_time,        first_output_flag,
                                                first_output_time,    second_output_flag,
                                                second_output_time_a, second_output_time_b};
  if (!HasDevice()) return kNoCamera;
  if (buffer == nullptr) return kNullPointer;
  if (IsTriggerActive()) return kWrongState;
  if (!IsFirstOutputAccepted(arguments)) return kOutOfRange;
  if (!IsSecondOutputAccepted(arguments)) return kOutOfRange;

  acquisition::CaptureSurroundings surroundings(*this);
  Status result = kOk;
  {
    platform::ScopedLock lock(stream_lock);
    // Another thread may have armed the trigger since the check above.
    if (IsTriggerActive()) return kWrongState;
    if (Status status = surroundings.StartStream(); status != kOk) return status;
    result = RequestStill(*this, MakeCaptureTiming(arguments, identity.firmware_version), buffer);
    surroundings.StopStreamAgain();
  }
  surroundings.RestoreModeAndPreview();
  return result;
}

}  // namespace ormidex::device
