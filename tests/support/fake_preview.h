// A preview window without a window: it answers suspend and resume as the real one
// does, and says in which order it was spoken to.
#ifndef ORMIDEX_TESTS_SUPPORT_FAKE_PREVIEW_H_
#define ORMIDEX_TESTS_SUPPORT_FAKE_PREVIEW_H_

#include <string>
#include <vector>

#include "device/session.h"
#include "preview/preview_window.h"
#include "support/scripted_gateway.h"

namespace ormidex::testing {

class FakePreview : public preview::PreviewWindow {
 public:
  // Attached to the session, running. With a script, each message has its place
  // there: "suspend", "resume", "geometry".
  explicit FakePreview(device::CameraSession& session, ScriptedGateway* script = nullptr)
      : session_(session), script_(script) {
    session_.preview.window.store(this);
  }
  ~FakePreview() override { session_.preview.window.store(nullptr); }

  bool deaf = false;  // neither suspends nor resumes
  std::vector<std::string> messages;

  bool DestroyWindow() override { return true; }
  void SendMessageSync(std::uint32_t message, std::uintptr_t first,
                       std::uintptr_t second) override {
    // Placement belongs to the preview's own tests.
    if (message == preview::kMessagePlace) return;
    Note(Describe(message, first, second));
    if (message == 0x401 && !deaf) session_.preview.suspended.store(first != 0 ? 1 : 0);
  }

 private:
  static std::string Describe(std::uint32_t message, std::uintptr_t first, std::uintptr_t second) {
    if (message == 0x401 && first == 1 && second == 0) return "suspend";
    if (message == 0x401 && first == 0 && second == 0) return "resume";
    if (message == 0x402 && first == 0 && second == 0) return "geometry";
    return "message " + std::to_string(message) + ' ' + std::to_string(first) + ' ' +
           std::to_string(second);
  }
  void Note(const std::string& text) {
    messages.push_back(text);
    if (script_ != nullptr) script_->Met(text);
  }

  device::CameraSession& session_;
  ScriptedGateway* script_;
};

}  // namespace ormidex::testing

#endif  // ORMIDEX_TESTS_SUPPORT_FAKE_PREVIEW_H_
