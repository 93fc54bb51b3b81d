#include "platform/window.h"

#include <windows.h>

#include <atomic>
#include <new>

#include "platform/native_window.h"

namespace ormidex::platform {

namespace {

constexpr char kClassName[] = "OrmidexPreview";
constexpr WORD kIconResource = 131;
// CS_VREDRAW | CS_HREDRAW | CS_OWNDC | CS_NOCLOSE
constexpr UINT kClassStyle = 0x223;
constexpr UINT kFirstOwnMessage = WM_USER + 1;
constexpr UINT kLastOwnMessage = WM_USER + 3;
// To a window that another thread wants to be rid of.
constexpr UINT kRetireMessage = WM_USER + 0x100;

HINSTANCE class_module = nullptr;

class Win32Window : public NativeWindow {
 public:
  explicit Win32Window(WindowHandler& handler) : handler_(handler) {}
  ~Win32Window() override { Destroy(); }

  bool Create(const WindowArguments& arguments) {
    const HWND window = CreateWindowExA(
        0, kClassName, arguments.title, arguments.style, arguments.x, arguments.y, 0, 0,
        static_cast<HWND>(arguments.parent),
        reinterpret_cast<HMENU>(static_cast<UINT_PTR>(arguments.identifier)), class_module, this);
    return window != nullptr;
  }

  // Only the thread that created a window can destroy it. For any other the window
  // is cut off from its handler, and goes by itself when its thread next looks at
  // its messages; the refusal is reported.
  bool Destroy() override {
    const HWND window = window_.load();
    if (window == nullptr) return false;
    if (DestroyWindow(window)) return true;
    if (IsWindow(window)) {
      SendMessageA(window, kRetireMessage, 0, 0);
    } else {
      Retire();  // it went with its thread, which no longer handles messages
      window_.store(nullptr);
    }
    return false;
  }

  void SendMessageSync(std::uint32_t message, std::uintptr_t first,
                       std::uintptr_t second) override {
    const HWND window = window_.load();
    if (window != nullptr) SendMessageA(window, message, first, static_cast<LPARAM>(second));
  }

  bool ReadPlacement(WindowPlacement* placement) override {
    WINDOWPLACEMENT native = {};
    native.length = sizeof(native);
    if (!GetWindowPlacement(window_.load(), &native)) return false;
    const RECT& normal = native.rcNormalPosition;
    *placement = {native.showCmd,         native.ptMinPosition.x,
                  native.ptMinPosition.y, native.ptMaxPosition.x,
                  native.ptMaxPosition.y, {normal.left, normal.top, normal.right, normal.bottom}};
    return true;
  }

  bool ReadClientSize(std::int32_t* width, std::int32_t* height) override {
    RECT client = {};
    if (!GetClientRect(window_.load(), &client)) return false;
    *width = client.right;
    *height = client.bottom;
    return true;
  }

  bool ReadWindowSize(std::int32_t* width, std::int32_t* height) override {
    RECT window = {};
    if (!GetWindowRect(window_.load(), &window)) return false;
    *width = window.right - window.left;
    *height = window.bottom - window.top;
    return true;
  }

  void Place(const WindowRect& position) override {
    const HWND window = window_.load();
    WINDOWPLACEMENT native = {};
    native.length = sizeof(native);
    if (!GetWindowPlacement(window, &native)) return;
    native.rcNormalPosition = {position.left, position.top, position.right, position.bottom};
    SetWindowPlacement(window, &native);
    MoveWindow(window, position.left, position.top, position.Width(), position.Height(), TRUE);
  }

  void ShowNormal() override {
    const HWND window = window_.load();
    if (window != nullptr) ShowWindow(window, SW_SHOWNORMAL);
  }

  bool AcquireContext() override {
    context_ = GetDC(window_.load());
    if (context_ == nullptr) return false;
    SetStretchBltMode(context_, COLORONCOLOR);
    return true;
  }

  void ReleaseContext() override {
    if (context_ != nullptr) ReleaseDC(window_.load(), context_);
    context_ = nullptr;
  }

  void Draw(const WindowImage& image, std::int32_t destination_width,
            std::int32_t destination_height) override {
    if (context_ == nullptr) return;
    StretchDIBits(context_, 0, 0, destination_width, destination_height, 0, 0, image.width,
                  image.height, image.pixels, static_cast<const BITMAPINFO*>(image.header),
                  DIB_RGB_COLORS, SRCCOPY);
    GdiFlush();
  }

  static Win32Window* Of(HWND window) {
    return reinterpret_cast<Win32Window*>(GetWindowLongA(window, GWL_USERDATA));
  }
  // Windows of this class that somebody else creates have no object, and then no
  // preview's behaviour.
  static void Attach(HWND window, LPARAM creation) {
    auto* self =
        static_cast<Win32Window*>(reinterpret_cast<const CREATESTRUCTA*>(creation)->lpCreateParams);
    if (self == nullptr) return;
    self->window_.store(window);
    SetWindowLongA(window, GWL_USERDATA, reinterpret_cast<LONG>(self));
  }
  void Detach() {
    Retire();
    SetWindowLongA(window_.load(), GWL_USERDATA, 0);
    window_.store(nullptr);
  }
  // Says good-bye to the handler, once.
  void Retire() {
    if (retired_) return;
    retired_ = true;
    handler_.OnDestroy();
  }
  void Paint() {
    const HWND window = window_.load();
    PAINTSTRUCT paint;
    BeginPaint(window, &paint);
    handler_.OnPaint();
    EndPaint(window, &paint);
  }
  WindowHandler& handler() { return handler_; }

 private:
  WindowHandler& handler_;
  std::atomic<HWND> window_{nullptr};
  bool retired_ = false;  // of the window's thread
  HDC context_ = nullptr;
};

void LimitTracking(LPARAM information) {
  auto* limits = reinterpret_cast<MINMAXINFO*>(information);
  limits->ptMaxTrackSize = {kMaxTrackWidth, kMaxTrackHeight};
}

LRESULT Dispatch(Win32Window& self, HWND window, UINT message, WPARAM first, LPARAM second) {
  if (message >= kFirstOwnMessage && message <= kLastOwnMessage) {
    self.handler().OnMessage(message, first, static_cast<std::uintptr_t>(second));
    return 0;
  }
  switch (message) {
    case WM_CREATE:
      return self.handler().OnCreate(self) ? 0 : -1;
    case WM_PAINT:
      self.Paint();
      return 0;
    case WM_ERASEBKGND:
      return 1;  // done: the stretched image covers everything, and must not flicker
    case WM_SIZE:
      self.handler().OnSize(LOWORD(second), HIWORD(second));
      return 0;
    case WM_GETMINMAXINFO:
      LimitTracking(second);
      return 0;
    case WM_DESTROY:
      self.Retire();
      return 0;
    case kRetireMessage:
      self.Detach();
      PostMessageA(window, WM_CLOSE, 0, 0);
      return 0;
    case WM_NCDESTROY:  // the first sign of its end that a failed creation gives
      self.Detach();
      return DefWindowProcA(window, message, first, second);
    default:
      return DefWindowProcA(window, message, first, second);
  }
}

// The stack may be aligned to 4 bytes only: the caller is the system.
__attribute__((force_align_arg_pointer)) LRESULT CALLBACK WindowProcedure(HWND window, UINT message,
                                                                          WPARAM first,
                                                                          LPARAM second) {
  if (message == WM_NCCREATE) Win32Window::Attach(window, second);
  Win32Window* self = Win32Window::Of(window);
  return self != nullptr ? Dispatch(*self, window, message, first, second)
                         : DefWindowProcA(window, message, first, second);
}

}  // namespace

void RegisterPreviewClass(void* module) noexcept {
  class_module = static_cast<HINSTANCE>(module);
  WNDCLASSA window_class = {};
  window_class.hIcon = LoadIconA(class_module, MAKEINTRESOURCEA(kIconResource));
  window_class.style = kClassStyle;
  window_class.lpfnWndProc = &WindowProcedure;
  window_class.hInstance = class_module;
  window_class.hCursor = nullptr;
  window_class.hbrBackground = static_cast<HBRUSH>(GetStockObject(BLACK_BRUSH));
  window_class.lpszClassName = kClassName;
  RegisterClassA(&window_class);
}

const char* PreviewClassName() noexcept { return kClassName; }

void UnregisterPreviewClass() noexcept { UnregisterClassA(kClassName, class_module); }

NativeWindow* CreateSystemWindow(const WindowArguments& arguments, WindowHandler& handler) {
  auto* window = new (std::nothrow) Win32Window(handler);
  if (window == nullptr) return nullptr;
  if (window->Create(arguments)) return window;
  delete window;
  return nullptr;
}

}  // namespace ormidex::platform
