// The preview's window on X11.
//
// Each window has a display connection and an event thread of its own. Handler
// calls, from that thread or from SendMessageSync, are serialised by one re-entrant
// lock; drawing has a lock of its own, so that a handler call may wait for the
// thread that draws.
//
// Of the style bits of Windows these count here: child windows live in their
// parent, other windows with a parent stay in front of it, and the limit of the
// window's size holds for the same windows as there.
#include "platform/window.h"

#include <errno.h>
#include <fcntl.h>
#include <poll.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <cstring>
#include <new>

#include "platform/critical_section.h"
#include "platform/linux/broken_pipe_guard.h"
#include "platform/linux/pixels.h"
#include "platform/linux/x11_display.h"
#include "platform/native_window.h"
#include "platform/thread.h"

namespace ormidex::platform {

namespace {

constexpr std::uint32_t kStylePopup = 0x80000000;       // WS_POPUP
constexpr std::uint32_t kStyleChild = 0x40000000;       // WS_CHILD
constexpr std::uint32_t kStyleThickFrame = 0x00040000;  // WS_THICKFRAME

class X11Window : public NativeWindow {
 public:
  X11Window(const XcbLibrary& xcb, WindowHandler& handler)
      : xcb_(xcb), display_(xcb), handler_(handler) {
    handler_lock_.Initialise();
    draw_lock_.Initialise();
  }
  ~X11Window() override;

  bool Create(const WindowArguments& arguments);

  bool Destroy() override;
  void SendMessageSync(std::uint32_t message, std::uintptr_t first, std::uintptr_t second) override;
  bool ReadPlacement(WindowPlacement* placement) override;
  bool ReadClientSize(std::int32_t* width, std::int32_t* height) override;
  bool ReadWindowSize(std::int32_t* width, std::int32_t* height) override;
  void Place(const WindowRect& position) override;
  void ShowNormal() override;
  bool AcquireContext() override;
  void ReleaseContext() override;
  void Draw(const WindowImage& image, std::int32_t destination_width,
            std::int32_t destination_height) override;

 private:
  bool CreateXWindow(const WindowArguments& arguments);
  void DescribeToWindowManager(const WindowArguments& arguments);
  void LimitSize(const X11Borders& borders);
  bool StartEventThread();
  void StopEventThread();
  static void RunEvents(void* self);
  void RunEvents();
  void Handle(const xcb_generic_event_t& event);
  void Resized(std::int32_t width, std::int32_t height);
  void Gone();
  bool IsThere() const { return there_.load(); }
  bool ReadGeometry(std::int32_t* width, std::int32_t* height);
  void Configure();
  void PutRows(std::int32_t width, std::int32_t height);

  const XcbLibrary& xcb_;
  X11Display display_;
  WindowHandler& handler_;
  CriticalSection handler_lock_;
  CriticalSection draw_lock_;
  xcb_window_t window_ = 0;
  xcb_window_t parent_ = 0;  // the root, unless the window is a child
  bool size_is_limited_ = false;
  xcb_gcontext_t context_ = 0;
  std::unique_ptr<PixelStretcher> stretcher_;
  std::atomic<bool> there_{false};

  // Guarded by the handler lock.
  bool mapped_before_ = false;
  WindowRect placed_;             // as last asked for, borders included
  std::int32_t shown_width_ = 1;  // of the client area
  std::int32_t shown_height_ = 1;

  std::atomic<bool> events_running_{false};
  int wake_[2] = {-1, -1};
};

X11Window::~X11Window() {
  Destroy();
  StopEventThread();
  draw_lock_.Delete();
  handler_lock_.Delete();
}

// ---- Creation ----------------------------------------------------------------

// The root's visual by name, and not the parent's: an application's parent may have
// another, which the pixels would not fit. The server erases nothing, so that the
// stretched image does not flicker.
bool X11Window::CreateXWindow(const WindowArguments& arguments) {
  const xcb_screen_t& screen = display_.screen();
  const bool is_child = (arguments.style & kStyleChild) != 0 && arguments.parent != nullptr;
  parent_ = is_child ? static_cast<xcb_window_t>(reinterpret_cast<std::uintptr_t>(arguments.parent))
                     : screen.root;
  size_is_limited_ = (arguments.style & kStyleThickFrame) != 0 ||
                     (arguments.style & (kStylePopup | kStyleChild)) == 0;
  window_ = xcb_.xcb_generate_id_(display_.connection());
  const std::uint32_t values[] = {XCB_BACK_PIXMAP_NONE, screen.black_pixel,
                                  XCB_EVENT_MASK_EXPOSURE | XCB_EVENT_MASK_STRUCTURE_NOTIFY,
                                  screen.default_colormap};
  const auto cookie = xcb_.xcb_create_window_checked_(
      display_.connection(), screen.root_depth, window_, parent_,
      static_cast<std::int16_t>(arguments.x), static_cast<std::int16_t>(arguments.y), 1, 1, 0,
      XCB_WINDOW_CLASS_INPUT_OUTPUT, screen.root_visual,
      XCB_CW_BACK_PIXMAP | XCB_CW_BORDER_PIXEL | XCB_CW_EVENT_MASK | XCB_CW_COLORMAP, values);
  return Own(xcb_.xcb_request_check_(display_.connection(), cookie)) == nullptr &&
         !display_.IsBroken();
}

void X11Window::DescribeToWindowManager(const WindowArguments& arguments) {
  xcb_.xcb_change_property_(
      display_.connection(), XCB_PROP_MODE_REPLACE, window_, XCB_ATOM_WM_NAME, XCB_ATOM_STRING, 8,
      static_cast<std::uint32_t>(std::strlen(arguments.title)), arguments.title);
  // As on Windows, the preview belongs to the application and has no close button:
  // of the window's functions closing is left out, and a manager that offers it all
  // the same must ask first, which gets no answer.
  constexpr std::uint32_t kFunctionsOnly = 1;
  constexpr std::uint32_t kAllButClose = 2 | 4 | 8 | 16;
  const std::uint32_t motif_hints[5] = {kFunctionsOnly, kAllButClose};
  const xcb_atom_t motif = display_.atom(X11Atom::kMotifHints);
  display_.SetProperty(window_, motif, motif, motif_hints, 5);
  const std::uint32_t delete_window = display_.atom(X11Atom::kDeleteWindow);
  display_.SetProperty(window_, display_.atom(X11Atom::kWmProtocols), XCB_ATOM_ATOM, &delete_window,
                       1);
  if (parent_ == display_.screen().root && arguments.parent != nullptr) {
    const auto owner =
        static_cast<std::uint32_t>(reinterpret_cast<std::uintptr_t>(arguments.parent));
    display_.SetProperty(window_, XCB_ATOM_WM_TRANSIENT_FOR, XCB_ATOM_WINDOW, &owner, 1);
  }
  LimitSize({});
}

// The maximum size and the wish to be placed where the application says, in the
// layout of WM_NORMAL_HINTS.
void X11Window::LimitSize(const X11Borders& borders) {
  constexpr std::uint32_t kUserPosition = 1u << 0;
  constexpr std::uint32_t kMaximumSize = 1u << 5;
  std::uint32_t hints[18] = {};
  hints[0] = kUserPosition;
  if (size_is_limited_) {
    hints[0] |= kMaximumSize;
    hints[7] = static_cast<std::uint32_t>(kMaxTrackWidth - borders.left - borders.right);
    hints[8] = static_cast<std::uint32_t>(kMaxTrackHeight - borders.top - borders.bottom);
  }
  display_.SetProperty(window_, XCB_ATOM_WM_NORMAL_HINTS, XCB_ATOM_WM_SIZE_HINTS, hints, 18);
}

bool X11Window::Create(const WindowArguments& arguments) {
  const BrokenPipeGuard guard;
  if (!display_.Open()) return false;
  stretcher_.reset(new (std::nothrow) PixelStretcher(display_.format()));
  if (stretcher_ == nullptr || !CreateXWindow(arguments)) return false;
  DescribeToWindowManager(arguments);
  ScopedLock lock(handler_lock_);
  there_.store(true);
  if (StartEventThread() && handler_.OnCreate(*this) && IsThere()) return true;
  Destroy();
  return false;
}

// ---- Events ------------------------------------------------------------------

bool X11Window::StartEventThread() {
  if (pipe2(wake_, O_CLOEXEC) != 0) return false;
  events_running_.store(true);
  if (StartThread(&RunEvents, this)) return true;
  events_running_.store(false);
  return false;
}

void X11Window::StopEventThread() {
  if (wake_[1] >= 0) {
    const char byte = 0;
    [[maybe_unused]] const auto written = write(wake_[1], &byte, 1);
  }
  while (events_running_.load()) SleepMilliseconds(1);
  for (int& end : wake_) {
    if (end >= 0) close(end);
    end = -1;
  }
}

void X11Window::RunEvents(void* self) {
  auto& window = *static_cast<X11Window*>(self);
  {
    const BrokenPipeGuard guard;
    window.RunEvents();
  }
  window.events_running_.store(false);
}

// Ends when it is woken through the pipe or the display goes away. Takes the
// handler lock for each event.
void X11Window::RunEvents() {
  // For events that another thread's reply took from the socket meanwhile.
  constexpr int kLookAgainMs = 50;
  pollfd sources[2] = {{xcb_.xcb_get_file_descriptor_(display_.connection()), POLLIN, 0},
                       {wake_[0], POLLIN, 0}};
  for (;;) {
    while (const auto event = Own(xcb_.xcb_poll_for_event_(display_.connection()))) Handle(*event);
    if (display_.IsBroken()) {
      Gone();
      return;
    }
    if (poll(sources, 2, kLookAgainMs) < 0 && errno != EINTR) return;
    if (sources[1].revents != 0) return;
  }
}

void X11Window::Handle(const xcb_generic_event_t& event) {
  ScopedLock lock(handler_lock_);
  if (!IsThere()) return;
  switch (event.response_type & 0x7Fu) {
    case XCB_EXPOSE:
      // Of several exposed areas the last one brings the whole image back.
      if (reinterpret_cast<const xcb_expose_event_t&>(event).count == 0) handler_.OnPaint();
      break;
    case XCB_CONFIGURE_NOTIFY: {
      const auto& configure = reinterpret_cast<const xcb_configure_notify_event_t&>(event);
      Resized(configure.width, configure.height);
      break;
    }
    case XCB_UNMAP_NOTIFY:
      handler_.OnSize(0, 0);
      break;
    case XCB_MAP_NOTIFY:
      handler_.OnSize(shown_width_, shown_height_);
      break;
    case XCB_DESTROY_NOTIFY:
      Gone();
      break;
    default:
      break;
  }
}

void X11Window::Resized(std::int32_t width, std::int32_t height) {
  shown_width_ = width;
  shown_height_ = height;
  handler_.OnSize(width, height);
}

// The window went without being asked: with its parent, or with the display.
void X11Window::Gone() {
  ScopedLock lock(handler_lock_);
  if (there_.exchange(false)) handler_.OnDestroy();
}

bool X11Window::Destroy() {
  const BrokenPipeGuard guard;
  ScopedLock lock(handler_lock_);
  if (!there_.exchange(false)) return false;
  handler_.OnDestroy();
  xcb_.xcb_destroy_window_(display_.connection(), window_);
  display_.Settle();
  return true;
}

void X11Window::SendMessageSync(std::uint32_t message, std::uintptr_t first,
                                std::uintptr_t second) {
  ScopedLock lock(handler_lock_);
  if (IsThere()) handler_.OnMessage(message, first, second);
}

// ---- Placement ---------------------------------------------------------------

bool X11Window::ReadGeometry(std::int32_t* width, std::int32_t* height) {
  const BrokenPipeGuard guard;
  if (!IsThere()) return false;
  const auto cookie = xcb_.xcb_get_geometry_(display_.connection(), window_);
  const auto reply = Own(xcb_.xcb_get_geometry_reply_(display_.connection(), cookie, nullptr));
  if (reply == nullptr) return false;
  *width = reply->width;
  *height = reply->height;
  return true;
}

// A minimised window has no client area to speak of, as on Windows.
bool X11Window::ReadClientSize(std::int32_t* width, std::int32_t* height) {
  if (!ReadGeometry(width, height)) return false;
  const BrokenPipeGuard guard;
  if (display_.IsIconified(window_)) *width = *height = 0;
  return true;
}

bool X11Window::ReadWindowSize(std::int32_t* width, std::int32_t* height) {
  if (!ReadGeometry(width, height)) return false;
  const BrokenPipeGuard guard;
  const X11Borders borders = display_.ReadBorders(window_);
  *width += borders.left + borders.right;
  *height += borders.top + borders.bottom;
  return true;
}

// X11 has one position, whatever the show state.
bool X11Window::ReadPlacement(WindowPlacement* placement) {
  std::int32_t width = 0;
  std::int32_t height = 0;
  if (!ReadWindowSize(&width, &height)) return false;
  const BrokenPipeGuard guard;
  const auto cookie =
      xcb_.xcb_translate_coordinates_(display_.connection(), window_, parent_, 0, 0);
  const auto reply =
      Own(xcb_.xcb_translate_coordinates_reply_(display_.connection(), cookie, nullptr));
  if (reply == nullptr) return false;
  const X11Borders borders = display_.ReadBorders(window_);
  const std::int32_t left = reply->dst_x - borders.left;
  const std::int32_t top = reply->dst_y - borders.top;
  *placement = {kShowNormal, left, top, left, top, {left, top, left + width, top + height}};
  if (display_.IsIconified(window_)) {
    placement->show_state = kShowMinimised;
  } else if (display_.IsMaximised(window_)) {
    placement->show_state = kShowMaximised;
  }
  return true;
}

void X11Window::Place(const WindowRect& position) {
  const BrokenPipeGuard guard;
  ScopedLock lock(handler_lock_);
  if (!IsThere()) return;
  placed_ = position;
  Configure();
  // Once only: to map a minimised window would bring it back.
  if (!mapped_before_) xcb_.xcb_map_window_(display_.connection(), window_);
  mapped_before_ = true;
  display_.Settle();
}

void X11Window::Configure() {
  const X11Borders borders = display_.ReadBorders(window_);
  LimitSize(borders);
  const std::int32_t width =
      size_is_limited_ ? std::min(placed_.Width(), kMaxTrackWidth) : placed_.Width();
  const std::int32_t height =
      size_is_limited_ ? std::min(placed_.Height(), kMaxTrackHeight) : placed_.Height();
  // A window of no size does not exist on X11.
  const std::int32_t client_width = std::max(1, width - borders.left - borders.right);
  const std::int32_t client_height = std::max(1, height - borders.top - borders.bottom);
  const std::uint32_t values[] = {
      static_cast<std::uint32_t>(placed_.left), static_cast<std::uint32_t>(placed_.top),
      static_cast<std::uint32_t>(client_width), static_cast<std::uint32_t>(client_height)};
  xcb_.xcb_configure_window_(display_.connection(), window_,
                             XCB_CONFIG_WINDOW_X | XCB_CONFIG_WINDOW_Y | XCB_CONFIG_WINDOW_WIDTH |
                                 XCB_CONFIG_WINDOW_HEIGHT,
                             values);
  Resized(client_width, client_height);  // a window manager that disagrees will say so
}

// Asks the window manager to take the maximised state back. The manager then puts
// the window where it was before; it belongs where it was last placed.
void X11Window::ShowNormal() {
  const BrokenPipeGuard guard;
  ScopedLock lock(handler_lock_);
  if (!IsThere()) return;
  xcb_client_message_event_t message = {};
  message.response_type = XCB_CLIENT_MESSAGE;
  message.format = 32;
  message.window = window_;
  message.type = display_.atom(X11Atom::kNetWmState);
  message.data.data32[0] = 0;  // remove
  message.data.data32[1] = display_.atom(X11Atom::kMaximisedVertically);
  message.data.data32[2] = display_.atom(X11Atom::kMaximisedHorizontally);
  xcb_.xcb_send_event_(display_.connection(), 0, display_.screen().root,
                       XCB_EVENT_MASK_SUBSTRUCTURE_REDIRECT | XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY,
                       reinterpret_cast<const char*>(&message));
  xcb_.xcb_map_window_(display_.connection(), window_);
  Configure();
  display_.Settle();
}

// ---- Drawing -----------------------------------------------------------------

bool X11Window::AcquireContext() {
  const BrokenPipeGuard guard;
  ScopedLock lock(draw_lock_);
  context_ = xcb_.xcb_generate_id_(display_.connection());
  xcb_.xcb_create_gc_(display_.connection(), context_, window_, 0, nullptr);
  return !display_.IsBroken();
}

void X11Window::ReleaseContext() {
  const BrokenPipeGuard guard;
  ScopedLock lock(draw_lock_);
  if (context_ != 0) xcb_.xcb_free_gc_(display_.connection(), context_);
  context_ = 0;
}

// One request holds as many rows as the display takes at a time.
void X11Window::PutRows(std::int32_t width, std::int32_t height) {
  constexpr std::uint32_t kRequestOverhead = 64;
  const std::uint64_t limit =
      std::uint64_t{xcb_.xcb_get_maximum_request_length_(display_.connection())} * 4;
  const std::uint32_t stride = stretcher_->Stride();
  if (limit < kRequestOverhead + stride) return;
  const auto rows_at_once = static_cast<std::int32_t>(
      std::min<std::uint64_t>((limit - kRequestOverhead) / stride, 0x7FFF));
  for (std::int32_t y = 0; y < height; y += rows_at_once) {
    const std::int32_t rows = std::min(height - y, rows_at_once);
    xcb_.xcb_put_image_(display_.connection(), XCB_IMAGE_FORMAT_Z_PIXMAP, window_, context_,
                        static_cast<std::uint16_t>(width), static_cast<std::uint16_t>(rows), 0,
                        static_cast<std::int16_t>(y), 0, display_.screen().root_depth,
                        stride * static_cast<std::uint32_t>(rows), stretcher_->Row(y));
  }
  display_.Flush();
}

void X11Window::Draw(const WindowImage& image, std::int32_t destination_width,
                     std::int32_t destination_height) {
  if (!IsThere() || image.width <= 0 || image.height <= 0 || destination_width <= 0 ||
      destination_height <= 0) {
    return;
  }
  const BrokenPipeGuard guard;
  ScopedLock lock(draw_lock_);
  if (context_ == 0) return;
  if (!stretcher_->Stretch(image, destination_width, destination_height)) return;
  PutRows(destination_width, destination_height);
}

}  // namespace

NativeWindow* CreateSystemWindow(const WindowArguments& arguments, WindowHandler& handler) {
  const XcbLibrary* xcb = LoadXcb();
  if (xcb == nullptr) return nullptr;
  auto* window = new (std::nothrow) X11Window(*xcb, handler);
  if (window == nullptr) return nullptr;
  if (window->Create(arguments)) return window;
  delete window;
  return nullptr;
}

}  // namespace ormidex::platform
