// The preview's operations on a camera session.
#include <new>

#include "device/session.h"
#include "ormidex.h"
#include "preview/live_window.h"

namespace ormidex::device {

using preview::LiveWindow;
using preview::PreviewWindow;

namespace {

constexpr std::uint32_t kSizeOfFrame = 0xFFFFFFFFu;
constexpr std::uint32_t kShowStateNotNormal = 2;  // bit of the show state

bool IsConversionOption(std::uint32_t option) {
  return option <= 5 || (option >= 16 && option <= 18) || option == 255;
}

std::int32_t Signed(std::uint32_t value) { return static_cast<std::int32_t>(value); }

// The client area: the size asked for, or the frame's when either side asks for it.
Status ChooseSize(CameraSession& session, std::uint32_t* width, std::uint32_t* height) {
  if (*width != kSizeOfFrame && *height != kSizeOfFrame) return kOk;
  std::uint32_t factor = 1;
  if (Status status = session.GetSubWindowSize(&factor, width, height); status != kOk) {
    return status;
  }
  *width /= factor;
  *height /= factor;
  return kOk;
}

}  // namespace

Status CameraSession::StartPreview(const char* title, std::uint32_t style, std::uint32_t x,
                                   std::uint32_t y, std::uint32_t width, std::uint32_t height,
                                   void* parent, std::uint32_t identifier) {
  if (title == nullptr) return kNullPointer;
  if (!HasDevice()) return kNoCamera;
  if (IsTriggerActive() || geometry.video_mode == 0) return kWrongState;
  {
    platform::ScopedLock lock(stream_lock);
    if (stream.running.load() == 0) {
      if (Status status = StartVideoStream(); status != kOk) return status;
    }
  }
  if (preview.window.load() != nullptr) return PausePreview(0);
  if (Status status = ChooseSize(*this, &width, &height); status != kOk) return status;

  const platform::WindowRect rectangle{Signed(x), Signed(y), Signed(x + width), Signed(y + height)};
  auto* window = new (std::nothrow) LiveWindow(*this, rectangle);
  if (window == nullptr) return kOutOfRange;
  if (!window->Create({title, style, Signed(x), Signed(y), parent, identifier})) {
    delete window;
    return kOutOfRange;
  }
  preview.window.store(window);
  preview.started_x = x;
  preview.started_y = y;
  return kOk;
}

Status CameraSession::StopPreview() {
  if (!HasDevice()) return kNoCamera;
  PreviewWindow* window = preview.window.load();
  if (window == nullptr) return kNoPreview;
  const bool destroyed = window->DestroyWindow();
  preview.window.store(nullptr);
  delete window;
  return destroyed ? kOk : kNoCamera;
}

Status CameraSession::PausePreview(std::uint32_t suspend) { return NotifyPreview(suspend); }

Status CameraSession::SetPreviewColorConversion(std::uint32_t option) {
  if (!HasDevice()) return kNoCamera;
  if (identity.imager_type == kImagerMono) return kNotSupported;
  if (!IsConversionOption(option)) return kOutOfRange;
  preview.conversion.store(option);
  return kOk;
}

Status CameraSession::GetPreviewWindowPos(std::uint32_t* x, std::uint32_t* y) {
  if (!HasDevice()) return kNoCamera;
  if (x == nullptr || y == nullptr) return kNullPointer;
  PreviewWindow* window = preview.window.load();
  if (window == nullptr) return kNoPreview;
  platform::WindowPlacement placement;
  if (!window->ReadPlacement(&placement)) return kGeneralFailure;
  std::int32_t left = placement.normal.left;
  std::int32_t top = placement.normal.top;
  if (placement.show_state == platform::kShowMinimised) {
    left = placement.minimised_x;
    top = placement.minimised_y;
  } else if (placement.show_state == platform::kShowMaximised) {
    left = placement.maximised_x;
    top = placement.maximised_y;
  }
  *x = static_cast<std::uint32_t>(left);
  *y = static_cast<std::uint32_t>(top);
  return kOk;
}

// A window that has gone has a client area of nothing; the call itself succeeds.
Status CameraSession::GetPreviewWindowSize(std::uint32_t* width, std::uint32_t* height) {
  if (!HasDevice()) return kNoCamera;
  if (width == nullptr || height == nullptr) return kNullPointer;
  PreviewWindow* window = preview.window.load();
  if (window == nullptr) return kNoPreview;
  std::int32_t client_width = 0;
  std::int32_t client_height = 0;
  window->ReadClientSize(&client_width, &client_height);
  *width = static_cast<std::uint32_t>(client_width);
  *height = static_cast<std::uint32_t>(client_height);
  return kOk;
}

Status CameraSession::SetPreviewWindow(const OrmidexRect* rectangle) {
  if (!HasDevice()) return kNoCamera;
  if (rectangle == nullptr) return kNullPointer;
  // Remembered even when there is no preview yet: OrmidexResetPreviewWindow uses it.
  preview.origin_x = static_cast<std::uint32_t>(rectangle->left);
  preview.origin_y = static_cast<std::uint32_t>(rectangle->top);
  PreviewWindow* window = preview.window.load();
  if (window == nullptr) return kNoPreview;
  static_assert(sizeof(OrmidexRect) == sizeof(platform::WindowRect));
  window->SendMessageSync(preview::kMessagePlace, reinterpret_cast<std::uintptr_t>(rectangle), 0);
  return kOk;
}

Status CameraSession::ResetPreviewWindow() {
  if (!HasDevice()) return kNoCamera;
  PreviewWindow* window = preview.window.load();
  if (window == nullptr) return kNoPreview;
  platform::WindowPlacement placement;
  if (!window->ReadPlacement(&placement)) return kGeneralFailure;
  std::int32_t left = placement.normal.left;
  std::int32_t top = placement.normal.top;
  if ((placement.show_state & kShowStateNotNormal) != 0) {
    left = Signed(preview.origin_x);
    top = Signed(preview.origin_y);
  }
  const OrmidexRect rectangle = {left, top, left + Signed(geometry.width),
                                 top + Signed(geometry.height)};
  if (Status status = SetPreviewWindow(&rectangle); status != kOk) return status;
  if (!window->ReadPlacement(&placement)) return kGeneralFailure;
  if (placement.show_state == platform::kShowMaximised) window->ShowNormal();
  return kOk;
}

}  // namespace ormidex::device
