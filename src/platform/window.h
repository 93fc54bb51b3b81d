// A window that shows an image: a platform window on Windows, an X11 window on
// Linux (loaded at run time; without a display creation fails).
//
// Contract for implementers. Handler calls are serialised: one at a time per
// window, on the thread that handles the window's messages. On Windows that is the
// thread that created it; on Linux a thread of the window's own handles the
// display's events, and SendMessageSync runs the handler on the caller's thread.
// Draw may be called from any one thread at a time, also during a handler call.
#ifndef ORMIDEX_PLATFORM_WINDOW_H_
#define ORMIDEX_PLATFORM_WINDOW_H_

#include <cstdint>

namespace ormidex::platform {

struct WindowRect {
  std::int32_t left = 0;
  std::int32_t top = 0;
  std::int32_t right = 0;
  std::int32_t bottom = 0;
  std::int32_t Width() const { return right - left; }
  std::int32_t Height() const { return bottom - top; }
};

inline constexpr std::uint32_t kShowNormal = 1;
inline constexpr std::uint32_t kShowMinimised = 2;
inline constexpr std::uint32_t kShowMaximised = 3;

// Where a window is and how it is shown.
struct WindowPlacement {
  std::uint32_t show_state = kShowNormal;
  std::int32_t minimised_x = 0;
  std::int32_t minimised_y = 0;
  std::int32_t maximised_x = 0;
  std::int32_t maximised_y = 0;
  WindowRect normal;  // position when neither minimised nor maximised, borders included
};

class NativeWindow;

// What happens to a window.
class WindowHandler {
 public:
  virtual ~WindowHandler() = default;
  // The window exists, before anything else is told of it. False: it goes again and
  // its creation fails.
  virtual bool OnCreate(NativeWindow& window) = 0;
  // A message of the application's own, 0x401 and above.
  virtual void OnMessage(std::uint32_t message, std::uintptr_t first, std::uintptr_t second) = 0;
  virtual void OnPaint() = 0;
  // The client area's size changed; 0 x 0 while the window is minimised.
  virtual void OnSize(std::int32_t width, std::int32_t height) = 0;
  // The window is about to go or has just gone, for whatever reason; called once,
  // also after an OnCreate that failed.
  virtual void OnDestroy() = 0;
};

// An image as it is drawn: a bitmap information header with its colour table
// behind it, and rows from bottom to top, each a multiple of four bytes long.
struct WindowImage {
  const void* header = nullptr;
  const void* pixels = nullptr;
  std::int32_t width = 0;
  std::int32_t height = 0;
  std::uint32_t bits_per_pixel = 24;  // 8 (with a table of 256 entries) or 24
};

class NativeWindow {
 public:
  // Deleting a window that is still there destroys it first.
  virtual ~NativeWindow() = default;

  // False when there is no window any more, or when the system refuses because the
  // window belongs to another thread; its handler is then told OnDestroy all the
  // same, and nothing after it.
  virtual bool Destroy() = 0;
  // Runs the handler's OnMessage and returns when it has. Does nothing when there
  // is no window any more.
  virtual void SendMessageSync(std::uint32_t message, std::uintptr_t first,
                               std::uintptr_t second) = 0;
  virtual bool ReadPlacement(WindowPlacement* placement) = 0;
  virtual bool ReadClientSize(std::int32_t* width, std::int32_t* height) = 0;
  // Size of the whole window, borders included.
  virtual bool ReadWindowSize(std::int32_t* width, std::int32_t* height) = 0;
  // Sets the normal position (borders included) and moves the window there.
  virtual void Place(const WindowRect& position) = 0;
  virtual void ShowNormal() = 0;

  // Takes the drawing context; drawing is possible until it is given back. Neither
  // may be called while a thread draws.
  virtual bool AcquireContext() = 0;
  virtual void ReleaseContext() = 0;
  // Stretches the image over destination_width x destination_height pixels from the
  // client area's corner on; pixels are repeated or left out, never blended.
  virtual void Draw(const WindowImage& image, std::int32_t destination_width,
                    std::int32_t destination_height) = 0;
};

// The largest window, borders included, that a user can pull the preview to.
inline constexpr std::int32_t kMaxTrackWidth = 1330;
inline constexpr std::int32_t kMaxTrackHeight = 1074;

struct WindowArguments {
  const char* title = "";
  std::uint32_t style = 0;  // the style bits of Windows; see linux/window.cpp
  std::int32_t x = 0;
  std::int32_t y = 0;
  void* parent = nullptr;        // window handle, or on Linux an X11 window id
  std::uint32_t identifier = 0;  // of the menu, or of a child window
};

// Creates a window of size 0 x 0 (on X11, which has none such, 1 x 1). Null when the
// system refuses. The handler must outlive the window.
NativeWindow* CreateNativeWindow(const WindowArguments& arguments, WindowHandler& handler);

// Tests: creates the windows instead of the system; null restores it.
using WindowFactory = NativeWindow* (*)(const WindowArguments& arguments, WindowHandler& handler);
void ReplaceWindowFactoryForTesting(WindowFactory factory) noexcept;

#ifdef _WIN32
// The preview's window class: registered when the library is loaded. Neither a
// missing icon nor a failed registration is noticed; then only previews fail.
void RegisterPreviewClass(void* module) noexcept;
// Not before the last preview window is gone.
void UnregisterPreviewClass() noexcept;
const char* PreviewClassName() noexcept;
#endif

}  // namespace ormidex::platform

#endif  // ORMIDEX_PLATFORM_WINDOW_H_
