// Frames on a trigger: arming, the thread that delivers them, and stopping.
#include "acquisition/capture.h"
#include "convert/convert.h"
#include "device/session.h"
#include "platform/thread.h"

namespace ormidex::device {

namespace {

using acquisition::TriggerState;

constexpr std::uint32_t kArm = 1;
constexpr std::uint32_t kStopTestMilliseconds = 1;
constexpr std::uint32_t kEndPollMilliseconds = 10;

bool StopRequested(TriggerState& trigger) { return trigger.stop_event.Wait(kStopTestMilliseconds); }

void DeliverFrame(CameraSession& session) {
  const TriggerState& trigger = session.trigger;
  void* frame = trigger.raw_buffer;
  if (trigger.convert != 0) {
    session.ConvertRawTo24Bpp(trigger.raw_buffer, trigger.output_buffer, trigger.algorithm);
    frame = trigger.output_buffer;
  }
  if (trigger.callback != nullptr) trigger.callback(&session, frame);
}

// The worker takes no lock of the session, the stream lock least of all: whoever
// stops it holds that one while waiting for its end. The settings it reads cannot
// change while the trigger is armed.
void RunTriggerWorker(void* argument) {
  CameraSession& session = *static_cast<CameraSession*>(argument);
  TriggerState& trigger = session.trigger;
  while (!StopRequested(trigger)) {
    const bool read = session.Control(CAM_IOCTL_READ_FRAME, nullptr, 0, trigger.raw_buffer,
                                      session.geometry.frame_bytes);
    if (StopRequested(trigger)) break;
    if (read) {
      DeliverFrame(session);
    } else {
      platform::SleepMilliseconds(0);
    }
  }
  trigger.active.store(0);
}

// With the stream lock held. The flag is up before the worker runs, so that a
// callback already finds the trigger armed.
Status StartTriggerWorker(CameraSession& session) {
  TriggerState& trigger = session.trigger;
  if (!trigger.stop_event.Create(false)) return kGeneralFailure;
  trigger.active.store(1);
  if (platform::StartThread(RunTriggerWorker, &session, platform::ThreadPriority::kBelowNormal)) {
    return kOk;
  }
  trigger.active.store(0);
  trigger.stop_event.Close();
  return kGeneralFailure;
}

bool RequestArming(CameraSession& session, const CaptureTiming& timing) {
  TriggerRecord record;
  record.operation = kArm;
  record.timing = timing;
  const std::uint32_t bytes =
      session.IsReducedFirmware() ? kTriggerRecordShortBytes : sizeof(record);
  return session.Control(CAM_IOCTL_TRIGGER_MODE, &record, bytes, &record, bytes);
}

// Makes a camera that waits for its trigger let go of the pending frame. The
// version is compared with 0x30000000 here, not with 0x03000000 as everywhere else,
// deliberately: all cameras in the field have been stopped through register 3. A
// register that cannot be read is left alone, for its other bits are not known.
void PulseTriggerReset(CameraSession& session) {
  const std::uint32_t address = session.identity.firmware_version >= 0x30000000u ? 10 : 3;
  std::uint8_t value = 0;
  if (session.ReadCommandRegister(address, &value) != kOk) return;
  session.WriteCommandRegister(address, static_cast<std::uint8_t>(value | 1u));
  session.WriteCommandRegister(address, static_cast<std::uint8_t>(value & 0xFEu));
}

void EndTriggerWorker(CameraSession& session) {
  TriggerState& trigger = session.trigger;
  if (trigger.active.load() == 0) return;
  trigger.stop_event.Signal();
  PulseTriggerReset(session);
  while (trigger.active.load() != 0) platform::SleepMilliseconds(kEndPollMilliseconds);
  trigger.stop_event.Close();
}

}  // namespace

// After a failure past the checks the stream stays on, the video mode 0 and the
// preview paused; StopTriggerMode gives them back.
Status CameraSession::ReturnFrameAfterTrigger(float exposure_time, std::uint32_t first_output_flag,
                                              float first_output_time,
                                              std::uint32_t second_output_flag,
                                              float second_output_time_a,
                                              float second_output_time_b, TriggerCallback callback,
                                              std::uint32_t convert, void* raw_buffer,
                                              void* output_buffer, std::uint32_t algorithm) {
  const acquisition::CaptureArguments arguments{exposure_time,        first_output_flag,
                                                first_output_time,    second_output_flag,
                                                second_output_time_a, second_output_time_b};
  if (!HasDevice()) return kNoCamera;
  if (IsTriggerActive()) return kWrongState;
  if (raw_buffer == nullptr) return kNullPointer;
  if (convert != 0 && output_buffer == nullptr) return kNullPointer;
  if (!IsFirstOutputAccepted(arguments)) return kOutOfRange;
  if (exposure_time == 0.0f) return kOutOfRange;
  if (!IsSecondOutputAccepted(arguments)) return kOutOfRange;
  if (!convert::IsConversionCode(algorithm)) return kOutOfRange;

  acquisition::CaptureSurroundings surroundings(*this);
  platform::ScopedLock lock(stream_lock);
  // Another thread may have armed the trigger since the check above.
  if (IsTriggerActive()) return kWrongState;
  trigger.algorithm = algorithm;
  if (Status status = surroundings.StartStream(); status != kOk) return status;
  trigger.raw_buffer = raw_buffer;
  trigger.output_buffer = output_buffer;
  trigger.convert = convert;
  trigger.callback = callback;
  if (!RequestArming(*this, MakeCaptureTiming(arguments, identity.firmware_version))) {
    return kRequestFailed;
  }
  return StartTriggerWorker(*this);
}

// Without an armed trigger the camera is told all the same, and the state before
// the last capture is restored, deliberately: this is the way back from an arming
// that failed half way.
Status CameraSession::StopTriggerMode() {
  if (!HasDevice()) return kNoCamera;
  stream_lock.Enter();
  EndTriggerWorker(*this);
  TriggerRecord leaving;  // operation 0, in the long form on every firmware
  const bool left = Exchange(CAM_IOCTL_TRIGGER_MODE, leaving);
  auto surroundings = acquisition::CaptureSurroundings::OfLastCapture(*this);
  surroundings.StopStreamAgain();
  stream_lock.Leave();
  surroundings.RestoreModeAndPreview();
  return left ? kOk : kRequestFailed;
}

}  // namespace ormidex::device
