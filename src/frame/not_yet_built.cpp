// The operations that this version does not have yet, all in one place. They
// return the general failure, touch nothing and need no camera. An operation
// leaves this file when its room implements it; then the file goes.
#include "device/session.h"

namespace ormidex::device {

// Automatic control
Status CameraSession::AutoExposure(std::uint32_t, std::uint32_t, std::uint32_t, std::uint32_t,
                                   std::uint32_t, std::uint32_t) {
  return kGeneralFailure;
}
Status CameraSession::WhiteBalance(std::uint32_t, std::uint32_t, std::uint32_t, std::uint32_t,
                                   std::uint32_t, std::uint32_t, std::uint32_t, std::uint32_t) {
  return kGeneralFailure;
}

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

// Files
Status CameraSession::SaveFrameAsMono8(void*, const char*) { return kGeneralFailure; }
Status CameraSession::SaveFrameAsMono16(void*, const char*) { return kGeneralFailure; }
Status CameraSession::SaveFrameAsTiff(const void*, const char*, std::uint32_t, std::int32_t,
                                      std::uint32_t) {
  return kGeneralFailure;
}
Status CameraSession::SaveFrameAsJpeg(const void*, const char*) { return kGeneralFailure; }
Status CameraSession::CaptureFrameToBitmap(float, std::uint32_t, std::uint32_t, std::uint32_t,
                                           std::uint32_t, std::uint32_t, const char*, std::uint32_t,
                                           std::int32_t, std::uint32_t) {
  return kGeneralFailure;
}
Status CameraSession::SetOverlayCallBack(std::uint32_t, std::uint32_t, OverlayCallback) {
  return kGeneralFailure;
}

}  // namespace ormidex::device
