// What still and triggered captures have in common: their timing arguments, and
// the state of stream, video mode and preview around them.
#ifndef ORMIDEX_ACQUISITION_CAPTURE_H_
#define ORMIDEX_ACQUISITION_CAPTURE_H_

#include <cstdint>

#include "device/session.h"

namespace ormidex::acquisition {

// Times are in the caller's unit.
struct CaptureArguments {
  float exposure = 0.0f;
  std::uint32_t first_output_flag = 0;
  float first_output_time = 0.0f;
  std::uint32_t second_output_flag = 0;
  float second_output_time_a = 0.0f;
  float second_output_time_b = 0.0f;
};

// The first output must come within the exposure.
bool IsFirstOutputAccepted(const CaptureArguments& arguments);
// The second output may begin before the exposure, never after it.
bool IsSecondOutputAccepted(const CaptureArguments& arguments);

device::CaptureTiming MakeCaptureTiming(const CaptureArguments& arguments,
                                        std::uint32_t firmware_version);

// How the camera was working before a capture, and the way into one and back.
// A capture runs outside video mode 1, with the stream on and the preview paused.
class CaptureSurroundings {
 public:
  // Notes the state, pauses the preview and leaves video mode 1. Without the
  // stream lock, as the preview's own thread may need it.
  explicit CaptureSurroundings(device::CameraSession& session);

  // With the stream lock held: keeps the state for the end of the capture and
  // starts the stream if it is off.
  Status StartStream();
  // With the stream lock held.
  void StopStreamAgain();
  // Without the lock.
  void RestoreModeAndPreview();

  // The surroundings of the last capture, to be read with the stream lock held.
  static CaptureSurroundings OfLastCapture(device::CameraSession& session);

 private:
  struct Saved {
    std::uint32_t stream_running = 0;
    std::uint32_t video_mode = 0;
    std::uint32_t preview_suspended = 0;
  };
  CaptureSurroundings(device::CameraSession& session, const Saved& saved)
      : session_(session), saved_(saved) {}

  device::CameraSession& session_;
  Saved saved_;
};

}  // namespace ormidex::acquisition

#endif  // ORMIDEX_ACQUISITION_CAPTURE_H_
