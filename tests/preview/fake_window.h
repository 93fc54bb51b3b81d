// Windows without a system behind them: what the preview does to its window is
// written down, and the test plays the user.
#ifndef ORMIDEX_TESTS_PREVIEW_FAKE_WINDOW_H_
#define ORMIDEX_TESTS_PREVIEW_FAKE_WINDOW_H_

#include <atomic>
#include <cstring>
#include <string>
#include <vector>

#include "platform/critical_section.h"
#include "platform/window.h"
#include "preview/preview_window.h"

namespace ormidex::testing {

// An image as it was drawn.
struct DrawnImage {
  std::vector<std::uint8_t> header;
  std::vector<std::uint8_t> pixels;
  platform::WindowImage image;
  std::int32_t destination_width = 0;
  std::int32_t destination_height = 0;
};

class FakeWindow;

// The system's side, in place for the object's lifetime. One window at a time.
class FakeScreen {
 public:
  FakeScreen();
  ~FakeScreen();
  FakeScreen(const FakeScreen&) = delete;
  FakeScreen& operator=(const FakeScreen&) = delete;

  // What the system does next.
  bool refuses_windows = false;
  bool refuses_contexts = false;
  bool refuses_destruction = false;
  bool hides_placement = false;
  bool keeps_images = true;  // draws are copied; without, they cost nothing
  platform::WindowPlacement placement;
  std::int32_t border_width = 8;
  std::int32_t border_height = 27;
  std::int32_t client_width = 0;
  std::int32_t client_height = 0;

  // What the preview did.
  int windows_created = 0;
  int windows_alive = 0;
  std::vector<std::string> calls;
  std::string title;
  platform::WindowArguments arguments;
  std::vector<platform::WindowRect> places;
  FakeWindow* window = nullptr;
  std::atomic<int> draws{0};

  DrawnImage LastDrawn();
  void Remember(const platform::WindowImage& image, std::int32_t width, std::int32_t height);

  // The user's and the system's doings.
  void Expose();
  void Resize(std::int32_t width, std::int32_t height);
  void DestroyWithParent();

 private:
  platform::CriticalSection lock_;
  DrawnImage last_;
};

class FakeWindow : public platform::NativeWindow {
 public:
  FakeWindow(FakeScreen& screen, platform::WindowHandler& handler)
      : screen_(screen), handler_(handler) {
    lock_.Initialise();
    screen_.window = this;
    ++screen_.windows_alive;
  }
  ~FakeWindow() override {
    if (there_) FakeWindow::Destroy();
    lock_.Delete();
    screen_.window = nullptr;
    --screen_.windows_alive;
  }

  bool Create() {
    platform::ScopedLock lock(lock_);
    there_ = true;
    if (handler_.OnCreate(*this)) return true;
    GoAway();
    return false;
  }
  bool Destroy() override {
    platform::ScopedLock lock(lock_);
    if (!there_) return false;
    GoAway();
    return !screen_.refuses_destruction;
  }
  void GoAway() {
    platform::ScopedLock lock(lock_);
    if (!there_) return;
    there_ = false;
    screen_.calls.push_back("destroy");
    handler_.OnDestroy();
  }
  void SendMessageSync(std::uint32_t message, std::uintptr_t first,
                       std::uintptr_t second) override {
    platform::ScopedLock lock(lock_);
    if (there_) handler_.OnMessage(message, first, second);
  }
  bool ReadPlacement(platform::WindowPlacement* placement) override {
    if (!there_ || screen_.hides_placement) return false;
    *placement = screen_.placement;
    return true;
  }
  bool ReadClientSize(std::int32_t* width, std::int32_t* height) override {
    if (!there_) return false;
    *width = screen_.client_width;
    *height = screen_.client_height;
    return true;
  }
  bool ReadWindowSize(std::int32_t* width, std::int32_t* height) override {
    if (!there_) return false;
    *width = screen_.client_width + screen_.border_width;
    *height = screen_.client_height + screen_.border_height;
    return true;
  }
  void Place(const platform::WindowRect& position) override {
    screen_.calls.push_back("place");
    screen_.places.push_back(position);
    screen_.placement.normal = position;
    screen_.client_width = position.Width() - screen_.border_width;
    screen_.client_height = position.Height() - screen_.border_height;
    handler_.OnSize(screen_.client_width, screen_.client_height);
  }
  void ShowNormal() override { screen_.calls.push_back("show normal"); }
  bool AcquireContext() override {
    if (screen_.refuses_contexts) return false;
    screen_.calls.push_back("acquire context");
    has_context_ = true;
    return true;
  }
  void ReleaseContext() override {
    if (has_context_) screen_.calls.push_back("release context");
    has_context_ = false;
  }
  void Draw(const platform::WindowImage& image, std::int32_t width, std::int32_t height) override {
    if (screen_.keeps_images) screen_.Remember(image, width, height);
    screen_.draws.fetch_add(1);
  }

  platform::WindowHandler& handler() { return handler_; }
  platform::CriticalSection& lock() { return lock_; }

 private:
  FakeScreen& screen_;
  platform::WindowHandler& handler_;
  platform::CriticalSection lock_;
  bool there_ = false;
  bool has_context_ = false;
};

namespace fake_screen_detail {
inline FakeScreen* current = nullptr;
inline platform::NativeWindow* Create(const platform::WindowArguments& arguments,
                                      platform::WindowHandler& handler) {
  FakeScreen& screen = *current;
  if (screen.refuses_windows) return nullptr;
  ++screen.windows_created;
  screen.arguments = arguments;
  screen.title = arguments.title;
  auto* window = new FakeWindow(screen, handler);
  if (window->Create()) return window;
  delete window;
  return nullptr;
}
}  // namespace fake_screen_detail

inline FakeScreen::FakeScreen() {
  lock_.Initialise();
  fake_screen_detail::current = this;
  platform::ReplaceWindowFactoryForTesting(&fake_screen_detail::Create);
}
inline FakeScreen::~FakeScreen() {
  platform::ReplaceWindowFactoryForTesting(nullptr);
  lock_.Delete();
}
inline DrawnImage FakeScreen::LastDrawn() {
  platform::ScopedLock lock(lock_);
  return last_;
}
inline void FakeScreen::Remember(const platform::WindowImage& image, std::int32_t width,
                                 std::int32_t height) {
  platform::ScopedLock lock(lock_);
  const auto* header = static_cast<const std::uint8_t*>(image.header);
  const auto* pixels = static_cast<const std::uint8_t*>(image.pixels);
  const auto count = static_cast<std::size_t>(image.width * image.height);
  last_.header.assign(header, header + (image.bits_per_pixel == 8 ? 1064 : 40));
  last_.pixels.assign(pixels, pixels + count * (image.bits_per_pixel / 8));
  last_.image = image;
  last_.destination_width = width;
  last_.destination_height = height;
}
inline void FakeScreen::Expose() {
  platform::ScopedLock lock(window->lock());
  window->handler().OnPaint();
}
inline void FakeScreen::Resize(std::int32_t width, std::int32_t height) {
  platform::ScopedLock lock(window->lock());
  client_width = width;
  client_height = height;
  window->handler().OnSize(width, height);
}
inline void FakeScreen::DestroyWithParent() { window->GoAway(); }

}  // namespace ormidex::testing

#endif  // ORMIDEX_TESTS_PREVIEW_FAKE_WINDOW_H_
