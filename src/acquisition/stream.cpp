// The video stream: start, stop, pause, frames, and word to an attached preview.
#include "device/session.h"
#include "platform/memory.h"
#include "preview/preview_window.h"

namespace ormidex::device {

Status CameraSession::StartVideoStream() {
  platform::ScopedLock lock(stream_lock);
  if (!HasDevice()) return kNoCamera;
  if (stream.running.load() != 0 || IsTriggerActive()) return kWrongState;
  platform::Buffer buffer(sizeof(StartStreamRecord));
  if (!buffer) return kOutOfMemory;
  auto& record = *reinterpret_cast<StartStreamRecord*>(buffer.Bytes());
  record.width = geometry.width;
  record.height = geometry.height;
  record.frame_bytes = geometry.width * geometry.height * geometry.bytes_per_pixel;
  if (!Control(CAM_IOCTL_START_STREAM, &record, sizeof(record), nullptr, 0)) {
    return kRequestFailed;
  }
  stream.running.store(1);
  return kOk;
}

// Sent whether or not the stream runs: an earlier user may have left one running.
Status CameraSession::StopVideoStream() {
  platform::ScopedLock lock(stream_lock);
  if (!HasDevice()) return kNoCamera;
  if (IsTriggerActive()) return kWrongState;
  if (!Control(CAM_IOCTL_STOP_STREAM, nullptr, 0, nullptr, 0)) return kRequestFailed;
  stream.running.store(0);
  return kOk;
}

Status CameraSession::PauseVideoStream(std::uint32_t pause) {
  platform::ScopedLock lock(stream_lock);
  if (!HasDevice()) return kNoCamera;
  if (IsTriggerActive() || stream.running.load() == 0) return kWrongState;
  const std::uint8_t record[kPauseRecordBytes] = {};
  const std::uint32_t code = pause != 0 ? CAM_IOCTL_PAUSE_STREAM : CAM_IOCTL_RESUME_STREAM;
  return Control(code, record, sizeof(record), nullptr, 0) ? kOk : kRequestFailed;
}

// Blocks for as long as the driver waits for a frame; takes no lock, so that the
// stream can be stopped meanwhile.
Status CameraSession::ReturnVideoData(std::uint32_t buffer_bytes, void* buffer) {
  if (buffer == nullptr) return kNullPointer;
  if (buffer_bytes == 0) return kOutOfRange;
  if (buffer_bytes != geometry.width * geometry.height * geometry.bytes_per_pixel) {
    return kOutOfRange;
  }
  if (!HasDevice()) return kNoCamera;
  if (IsTriggerActive() || stream.running.load() == 0 || geometry.video_mode == 0) {
    return kWrongState;
  }
  return Control(CAM_IOCTL_READ_FRAME, nullptr, 0, buffer, buffer_bytes) ? kOk : kRequestFailed;
}

Status CameraSession::NotifyPreview(std::uint32_t pause) {
  if (!HasDevice()) return kNoCamera;
  preview::PreviewWindow* window = preview.window.load();
  if (window == nullptr) return kNoPreview;
  if (pause == 0 && IsTriggerActive()) return kWrongState;
  window->SendMessageSync(preview::kMessageSuspend, pause != 0 ? 1 : 0, 0);
  const bool suspended = preview.suspended.load() != 0;
  return suspended == (pause != 0) ? kOk : kGeneralFailure;
}

void CameraSession::NotifyPreviewGeometry() {
  if (preview::PreviewWindow* window = preview.window.load()) {
    window->SendMessageSync(preview::kMessageGeometry, 0, 0);
  }
}

}  // namespace ormidex::device
