#include "acquisition/capture.h"

#include "device/time_scale.h"

namespace ormidex::acquisition {

using device::BigEndian32;
using device::RequestTime;

bool IsFirstOutputAccepted(const CaptureArguments& arguments) {
  return arguments.first_output_flag == 0 || !(arguments.exposure < arguments.first_output_time);
}

// Time B must not be positive, deliberately: applications give the delay of the
// second output's end as 0 or as a negative number.
bool IsSecondOutputAccepted(const CaptureArguments& arguments) {
  if (arguments.second_output_flag == 0) return true;
  return !(arguments.second_output_time_a > arguments.exposure) &&
         !(arguments.second_output_time_b > 0.0f);
}

device::CaptureTiming MakeCaptureTiming(const CaptureArguments& arguments,
                                        std::uint32_t firmware_version) {
  const auto time = [firmware_version](float value) {
    return RequestTime(value, firmware_version);
  };
  device::CaptureTiming timing;
  timing.exposure = time(arguments.exposure);
  timing.first_output_flag = arguments.first_output_flag;
  timing.first_output_time = time(arguments.first_output_time);
  timing.second_output_flag = BigEndian32(arguments.second_output_flag);
  timing.second_output_time_a = BigEndian32(time(arguments.second_output_time_a));
  timing.second_output_time_b = BigEndian32(time(arguments.second_output_time_b));
  return timing;
}

CaptureSurroundings::CaptureSurroundings(device::CameraSession& session) : session_(session) {
  saved_.stream_running = session.stream.running.load();
  saved_.video_mode = session.geometry.video_mode;
  if (session.preview.window.load() != nullptr) {
    saved_.preview_suspended = session.preview.suspended.load();
    if (saved_.preview_suspended == 0) session.NotifyPreview(1);
  }
  if (saved_.video_mode == 1) session.SetVideoMode(0);
}

Status CaptureSurroundings::StartStream() {
  session_.trigger.saved_stream_running = saved_.stream_running;
  session_.trigger.saved_video_mode = saved_.video_mode;
  session_.trigger.saved_preview_suspended = saved_.preview_suspended;
  return session_.stream.running.load() != 0 ? kOk : session_.StartVideoStream();
}

void CaptureSurroundings::StopStreamAgain() {
  if (saved_.stream_running == 0) session_.StopVideoStream();
}

void CaptureSurroundings::RestoreModeAndPreview() {
  if (saved_.video_mode == 1) session_.SetVideoMode(1);
  if (session_.preview.window.load() != nullptr) session_.NotifyPreview(saved_.preview_suspended);
}

CaptureSurroundings CaptureSurroundings::OfLastCapture(device::CameraSession& session) {
  const TriggerState& trigger = session.trigger;
  return {session, Saved{trigger.saved_stream_running, trigger.saved_video_mode,
                         trigger.saved_preview_suspended}};
}

}  // namespace ormidex::acquisition
