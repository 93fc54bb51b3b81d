#include "files/overlay.h"

namespace ormidex::files {

bool HasSavingOverlay(device::CameraSession& session) {
  platform::ScopedLock lock(session.image_lock);
  return session.overlay.saving != nullptr;
}

void DrawSavingOverlay(device::CameraSession& session, void* image, OverlayFormat format) {
  platform::ScopedLock lock(session.image_lock);
  if (session.overlay.saving == nullptr) return;
  session.overlay.saving(&session, image, session.geometry.width, session.geometry.height,
                         static_cast<std::uint32_t>(format));
}

}  // namespace ormidex::files

namespace ormidex::device {

Status CameraSession::SetOverlayCallBack(std::uint32_t for_preview, std::uint32_t for_saving,
                                         OverlayCallback callback) {
  if (!HasDevice()) return kNoCamera;
  if (for_preview == 0 && for_saving == 0) return kOutOfRange;
  platform::ScopedLock lock(image_lock);
  if (for_preview != 0) overlay.preview = callback;
  if (for_saving != 0) overlay.saving = callback;
  return kOk;
}

}  // namespace ormidex::device
