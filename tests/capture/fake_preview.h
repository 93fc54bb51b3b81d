// A preview window that only obeys and remembers.
#ifndef ORMIDEX_TESTS_CAPTURE_FAKE_PREVIEW_H_
#define ORMIDEX_TESTS_CAPTURE_FAKE_PREVIEW_H_

#include <vector>

#include "device/session.h"
#include "preview/preview_window.h"

namespace ormidex::testing {

class FakePreview : public preview::PreviewWindow {
 public:
  explicit FakePreview(device::CameraSession& session) : session_(session) {
    session_.preview.window.store(this);
  }
  ~FakePreview() override { session_.preview.window.store(nullptr); }

  // The parameters of the suspend messages: 1 pause, 0 resume.
  std::vector<std::uintptr_t> messages;

  bool DestroyWindow() override { return true; }
  void SendMessageSync(std::uint32_t message, std::uintptr_t first, std::uintptr_t) override {
    if (message != preview::kMessageSuspend) return;
    messages.push_back(first);
    session_.preview.suspended.store(static_cast<std::uint32_t>(first));
  }

 private:
  device::CameraSession& session_;
};

}  // namespace ormidex::testing

#endif  // ORMIDEX_TESTS_CAPTURE_FAKE_PREVIEW_H_
