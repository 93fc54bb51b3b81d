// The operations that this version does not have yet, all in one place. They
// return the general failure, touch nothing and need no camera. An operation
// leaves this file when its room implements it; then the file goes.
#include "device/session.h"

namespace ormidex::device {

// Live preview
Status CameraSession::StartPreview(const char*, std::uint32_t, std::uint32_t, std::uint32_t,
                                   std::uint32_t, std::uint32_t, void*, std::uint32_t) {
  return kGeneralFailure;
}
Status CameraSession::StopPreview() { return kGeneralFailure; }
Status CameraSession::PausePreview(std::uint32_t) { return kGeneralFailure; }
Status CameraSession::SetPreviewColorConversion(std::uint32_t) { return kGeneralFailure; }
Status CameraSession::GetPreviewWindowPos(std::uint32_t*, std::uint32_t*) {
  return kGeneralFailure;
}
Status CameraSession::GetPreviewWindowSize(std::uint32_t*, std::uint32_t*) {
  return kGeneralFailure;
}
Status CameraSession::SetPreviewWindow(const OrmidexRect*) { return kGeneralFailure; }
Status CameraSession::ResetPreviewWindow() { return kGeneralFailure; }

}  // namespace ormidex::device
