// The preview's window on X11.
//
// Each window has a display connection and an event thread of its own. Handler
// calls, from that thread or from SendMessageSync, are serialised by one re-entrant
// lock; drawing has a lock of its own, so that a handler call may wait for the
// thread that draws.
#include "platform/window.h"

#include <fcntl.h>
#include <poll.h>
#include <unistd.h>

#include <atomic>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <new>

#include "platform/critical_section.h"
#include "platform/linux/pixels.h"
#include "platform/linux/xcb_library.h"
#include "platform/native_window.h"
#include "platform/thread.h"

namespace ormidex::platform {

namespace {

constexpr std::uint32_t kStyleChild = 0x40000000;  // WS_CHILD
constexpr std::uint32_t kIconicState = 3;          // of the WM_STATE property

template <typename T>
using Reply = std::unique_ptr<T, decltype(&std::free)>;

template <typename T>
Reply<T> Own(T* reply) {
  return Reply<T>(reply, &std::free);
}

class X11Window : public NativeWindow {
 public:
  X11Window(const XcbLibrary& xcb, WindowHandler& handler) : xcb_(xcb), handler_(handler) {
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
  enum Atom {
    kWmState,
    kNetWmState,
    kMaximisedVert,
    kMaximisedHorz,
    kWmProtocols,
    kDeleteWindow,
    kFrameExtents,
    kAtomCount
  };

  bool Connect();
  bool ChooseVisual();
  bool CreateXWindow(const WindowArguments& arguments);
  void InternAtoms();
  void SetTitle(const char* title);
  void LimitSize();
  bool StartEventThread();
  void StopEventThread();
  static void RunEvents(void* self);
  void HandleEvents();
  void Handle(const xcb_generic_event_t& event);
  void Gone();
  bool IsThere() const { return there_.load(); }
  bool HasNetState(xcb_atom_t atom);
  bool IsIconified();
  struct Borders {
    std::int32_t left = 0, right = 0, top = 0, bottom = 0;
  };
  Borders ReadBorders();
  void PutRows(std::int32_t width, std::int32_t height);

  const XcbLibrary& xcb_;
  WindowHandler& handler_;
  CriticalSection handler_lock_;
  CriticalSection draw_lock_;
  xcb_connection_t* connection_ = nullptr;
  xcb_screen_t* screen_ = nullptr;
  xcb_window_t window_ = 0;
  xcb_gcontext_t context_ = 0;
  xcb_atom_t atoms_[kAtomCount] = {};
  std::uint8_t depth_ = 24;
  std::unique_ptr<PixelStretcher> stretcher_;
  std::atomic<bool> there_{false};
  std::atomic<bool> events_running_{false};
  int wake_[2] = {-1, -1};
};

X11Window::~X11Window() {
  Destroy();
  StopEventThread();
  if (connection_ != nullptr) xcb_.xcb_disconnect_(connection_);
  draw_lock_.Delete();
  handler_lock_.Delete();
}

bool X11Window::Connect() {
  int screen_number = 0;
  connection_ = xcb_.xcb_connect_(nullptr, &screen_number);
  if (xcb_.xcb_connection_has_error_(connection_) != 0) return false;
  xcb_screen_iterator_t screens = xcb_.xcb_setup_roots_iterator_(xcb_.xcb_get_setup_(connection_));
  for (int i = 0; i < screen_number && screens.rem > 1; ++i) xcb_.xcb_screen_next_(&screens);
  screen_ = screens.data;
  return screens.rem > 0;
}

// The root's visual: 16, 24 or 30 bits deep, with masks for the three channels.
bool X11Window::ChooseVisual() {
  PixelFormat format;
  bool found = false;
  for (auto depths = xcb_.xcb_screen_allowed_depths_iterator_(screen_); depths.rem > 0;
       xcb_.xcb_depth_next_(&depths)) {
    for (auto visuals = xcb_.xcb_depth_visuals_iterator_(depths.data); visuals.rem > 0;
         xcb_.xcb_visualtype_next_(&visuals)) {
      if (visuals.data->visual_id != screen_->root_visual) continue;
      found = visuals.data->_class == XCB_VISUAL_CLASS_TRUE_COLOR;
      format.red_mask = visuals.data->red_mask;
      format.green_mask = visuals.data->green_mask;
      format.blue_mask = visuals.data->blue_mask;
    }
  }
  depth_ = screen_->root_depth;
  const xcb_setup_t* setup = xcb_.xcb_get_setup_(connection_);
  for (auto formats = xcb_.xcb_setup_pixmap_formats_iterator_(setup); formats.rem > 0;
       xcb_.xcb_format_next_(&formats)) {
    if (formats.data->depth == depth_) format.bits_per_pixel = formats.data->bits_per_pixel;
  }
  format.swap_bytes = setup->image_byte_order != XCB_IMAGE_ORDER_LSB_FIRST;
  if (!found || (format.bits_per_pixel != 16 && format.bits_per_pixel != 32)) return false;
  stretcher_.reset(new (std::nothrow) PixelStretcher(format));
  return stretcher_ != nullptr;
}

bool X11Window::CreateXWindow(const WindowArguments& arguments) {
  const bool child = (arguments.style & kStyleChild) != 0 && arguments.parent != nullptr;
  const auto parent =
      child ? static_cast<xcb_window_t>(reinterpret_cast<std::uintptr_t>(arguments.parent))
            : screen_->root;
  window_ = xcb_.xcb_generate_id_(connection_);
  const std::uint32_t values[] = {screen_->black_pixel,
                                  XCB_EVENT_MASK_EXPOSURE | XCB_EVENT_MASK_STRUCTURE_NOTIFY};
  const auto cookie = xcb_.xcb_create_window_checked_(
      connection_, XCB_COPY_FROM_PARENT, window_, parent, static_cast<std::int16_t>(arguments.x),
      static_cast<std::int16_t>(arguments.y), 1, 1, 0, XCB_WINDOW_CLASS_INPUT_OUTPUT,
      XCB_COPY_FROM_PARENT, XCB_CW_BACK_PIXEL | XCB_CW_EVENT_MASK, values);
  return Own(xcb_.xcb_request_check_(connection_, cookie)) == nullptr;
}

void X11Window::InternAtoms() {
  static constexpr const char* kNames[kAtomCount] = {"WM_STATE",
                                                     "_NET_WM_STATE",
                                                     "_NET_WM_STATE_MAXIMIZED_VERT",
                                                     "_NET_WM_STATE_MAXIMIZED_HORZ",
                                                     "WM_PROTOCOLS",
                                                     "WM_DELETE_WINDOW",
                                                     "_NET_FRAME_EXTENTS"};
  for (int i = 0; i < kAtomCount; ++i) {
    const auto cookie = xcb_.xcb_intern_atom_(
        connection_, 0, static_cast<std::uint16_t>(std::strlen(kNames[i])), kNames[i]);
    const auto reply = Own(xcb_.xcb_intern_atom_reply_(connection_, cookie, nullptr));
    atoms_[i] = reply != nullptr ? reply->atom : 0;
  }
}

void X11Window::SetTitle(const char* title) {
  xcb_.xcb_change_property_(connection_, XCB_PROP_MODE_REPLACE, window_, XCB_ATOM_WM_NAME,
                            XCB_ATOM_STRING, 8, static_cast<std::uint32_t>(std::strlen(title)),
                            title);
  // The window manager must ask before it closes the window; the answer is no: the
  // preview belongs to the application, as on Windows, where it has no close button.
  xcb_.xcb_change_property_(connection_, XCB_PROP_MODE_REPLACE, window_, atoms_[kWmProtocols],
                            XCB_ATOM_ATOM, 32, 1, &atoms_[kDeleteWindow]);
}

// The maximum size and the wish to be placed where the application said, in the
// layout of WM_NORMAL_HINTS.
void X11Window::LimitSize() {
  constexpr std::uint32_t kUserPosition = 1u << 0;
  constexpr std::uint32_t kMaximumSize = 1u << 5;
  std::uint32_t hints[18] = {};
  hints[0] = kUserPosition | kMaximumSize;
  hints[7] = kMaxTrackWidth;
  hints[8] = kMaxTrackHeight;
  xcb_.xcb_change_property_(connection_, XCB_PROP_MODE_REPLACE, window_, XCB_ATOM_WM_NORMAL_HINTS,
                            XCB_ATOM_WM_SIZE_HINTS, 32, 18, hints);
}

bool X11Window::Create(const WindowArguments& arguments) {
  if (!Connect() || !ChooseVisual() || !CreateXWindow(arguments)) return false;
  there_.store(true);
  InternAtoms();
  SetTitle(arguments.title);
  LimitSize();
  xcb_.xcb_flush_(connection_);
  if (StartEventThread()) return true;
  there_.store(false);
  return false;
}

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

// Ends when it is woken through the pipe or the display goes away. Takes the
// handler lock for each event.
void X11Window::RunEvents(void* self) {
  auto& window = *static_cast<X11Window*>(self);
  pollfd sources[2] = {{window.xcb_.xcb_get_file_descriptor_(window.connection_), POLLIN, 0},
                       {window.wake_[0], POLLIN, 0}};
  for (;;) {
    window.HandleEvents();
    if (window.xcb_.xcb_connection_has_error_(window.connection_) != 0) {
      window.Gone();
      break;
    }
    // The time-out is for events that another thread's reply read from the socket.
    if (poll(sources, 2, 50) < 0 && errno != EINTR) break;
    if (sources[1].revents != 0) break;
  }
  window.events_running_.store(false);
}

void X11Window::HandleEvents() {
  while (const auto event = Own(xcb_.xcb_poll_for_event_(connection_))) Handle(*event);
}

void X11Window::Handle(const xcb_generic_event_t& event) {
  ScopedLock lock(handler_lock_);
  switch (event.response_type & 0x7Fu) {
    case XCB_EXPOSE:
      if (IsThere()) handler_.OnPaint();
      break;
    case XCB_CONFIGURE_NOTIFY: {
      const auto& configure = reinterpret_cast<const xcb_configure_notify_event_t&>(event);
      if (IsThere()) handler_.OnSize(configure.width, configure.height);
      break;
    }
    case XCB_DESTROY_NOTIFY:
      Gone();
      break;
    default:
      break;
  }
}

// The window went without being asked: with its parent, or with the display.
void X11Window::Gone() {
  ScopedLock lock(handler_lock_);
  if (there_.exchange(false)) handler_.OnDestroy();
}

bool X11Window::Destroy() {
  ScopedLock lock(handler_lock_);
  if (!there_.exchange(false)) return false;
  handler_.OnDestroy();
  xcb_.xcb_destroy_window_(connection_, window_);
  xcb_.xcb_flush_(connection_);
  return true;
}

void X11Window::SendMessageSync(std::uint32_t message, std::uintptr_t first,
                                std::uintptr_t second) {
  ScopedLock lock(handler_lock_);
  if (IsThere()) handler_.OnMessage(message, first, second);
}

bool X11Window::IsIconified() {
  const auto cookie = xcb_.xcb_get_property_(connection_, 0, window_, atoms_[kWmState],
                                             XCB_GET_PROPERTY_TYPE_ANY, 0, 2);
  const auto reply = Own(xcb_.xcb_get_property_reply_(connection_, cookie, nullptr));
  if (reply == nullptr || xcb_.xcb_get_property_value_length_(reply.get()) < 4) return false;
  return *static_cast<const std::uint32_t*>(xcb_.xcb_get_property_value_(reply.get())) ==
         kIconicState;
}

bool X11Window::HasNetState(xcb_atom_t atom) {
  const auto cookie =
      xcb_.xcb_get_property_(connection_, 0, window_, atoms_[kNetWmState], XCB_ATOM_ATOM, 0, 32);
  const auto reply = Own(xcb_.xcb_get_property_reply_(connection_, cookie, nullptr));
  if (reply == nullptr) return false;
  const auto* states = static_cast<const xcb_atom_t*>(xcb_.xcb_get_property_value_(reply.get()));
  const int count = xcb_.xcb_get_property_value_length_(reply.get()) / 4;
  for (int i = 0; i < count; ++i) {
    if (states[i] == atom) return true;
  }
  return false;
}

// What the window manager puts around the window; nothing without one.
X11Window::Borders X11Window::ReadBorders() {
  const auto cookie = xcb_.xcb_get_property_(connection_, 0, window_, atoms_[kFrameExtents],
                                             XCB_ATOM_CARDINAL, 0, 4);
  const auto reply = Own(xcb_.xcb_get_property_reply_(connection_, cookie, nullptr));
  if (reply == nullptr || xcb_.xcb_get_property_value_length_(reply.get()) < 16) return {};
  const auto* sides = static_cast<const std::int32_t*>(xcb_.xcb_get_property_value_(reply.get()));
  return {sides[0], sides[1], sides[2], sides[3]};
}

bool X11Window::ReadClientSize(std::int32_t* width, std::int32_t* height) {
  if (!IsThere()) return false;
  const auto cookie = xcb_.xcb_get_geometry_(connection_, window_);
  const auto reply = Own(xcb_.xcb_get_geometry_reply_(connection_, cookie, nullptr));
  if (reply == nullptr) return false;
  *width = reply->width;
  *height = reply->height;
  return true;
}

bool X11Window::ReadWindowSize(std::int32_t* width, std::int32_t* height) {
  if (!ReadClientSize(width, height)) return false;
  const Borders borders = ReadBorders();
  *width += borders.left + borders.right;
  *height += borders.top + borders.bottom;
  return true;
}

bool X11Window::ReadPlacement(WindowPlacement* placement) {
  std::int32_t width = 0;
  std::int32_t height = 0;
  if (!ReadWindowSize(&width, &height)) return false;
  const auto cookie = xcb_.xcb_translate_coordinates_(connection_, window_, screen_->root, 0, 0);
  const auto reply = Own(xcb_.xcb_translate_coordinates_reply_(connection_, cookie, nullptr));
  if (reply == nullptr) return false;
  const Borders borders = ReadBorders();
  const std::int32_t left = reply->dst_x - borders.left;
  const std::int32_t top = reply->dst_y - borders.top;
  *placement = {kShowNormal, left, top, left, top, {left, top, left + width, top + height}};
  if (IsIconified()) {
    placement->show_state = kShowMinimised;
  } else if (HasNetState(atoms_[kMaximisedVert]) && HasNetState(atoms_[kMaximisedHorz])) {
    placement->show_state = kShowMaximised;
  }
  return true;
}

void X11Window::Place(const WindowRect& position) {
  if (!IsThere()) return;
  const Borders borders = ReadBorders();
  const auto size = [](std::int32_t length, std::int32_t border) {
    return static_cast<std::uint32_t>(length > border ? length - border : 1);
  };
  const std::uint32_t values[] = {static_cast<std::uint32_t>(position.left),
                                  static_cast<std::uint32_t>(position.top),
                                  size(position.Width(), borders.left + borders.right),
                                  size(position.Height(), borders.top + borders.bottom)};
  xcb_.xcb_configure_window_(connection_, window_,
                             XCB_CONFIG_WINDOW_X | XCB_CONFIG_WINDOW_Y | XCB_CONFIG_WINDOW_WIDTH |
                                 XCB_CONFIG_WINDOW_HEIGHT,
                             values);
  xcb_.xcb_map_window_(connection_, window_);
  xcb_.xcb_flush_(connection_);
  ScopedLock lock(handler_lock_);
  handler_.OnSize(static_cast<std::int32_t>(values[2]), static_cast<std::int32_t>(values[3]));
}

// Asks the window manager to take the maximised state back.
void X11Window::ShowNormal() {
  if (!IsThere()) return;
  xcb_client_message_event_t message = {};
  message.response_type = XCB_CLIENT_MESSAGE;
  message.format = 32;
  message.window = window_;
  message.type = atoms_[kNetWmState];
  message.data.data32[0] = 0;  // remove
  message.data.data32[1] = atoms_[kMaximisedVert];
  message.data.data32[2] = atoms_[kMaximisedHorz];
  xcb_.xcb_send_event_(connection_, 0, screen_->root,
                       XCB_EVENT_MASK_SUBSTRUCTURE_REDIRECT | XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY,
                       reinterpret_cast<const char*>(&message));
  xcb_.xcb_map_window_(connection_, window_);
  xcb_.xcb_flush_(connection_);
}

bool X11Window::AcquireContext() {
  context_ = xcb_.xcb_generate_id_(connection_);
  xcb_.xcb_create_gc_(connection_, context_, window_, 0, nullptr);
  return xcb_.xcb_connection_has_error_(connection_) == 0;
}

void X11Window::ReleaseContext() {
  ScopedLock lock(draw_lock_);
  if (context_ != 0) xcb_.xcb_free_gc_(connection_, context_);
  context_ = 0;
}

// One request holds as many rows as the display takes at a time.
void X11Window::PutRows(std::int32_t width, std::int32_t height) {
  constexpr std::uint32_t kRequestOverhead = 64;
  const std::uint64_t limit =
      std::uint64_t{xcb_.xcb_get_maximum_request_length_(connection_)} * 4 - kRequestOverhead;
  const std::uint32_t stride = stretcher_->Stride();
  const auto rows_at_once = static_cast<std::int32_t>(limit / stride);
  for (std::int32_t y = 0; y < height && rows_at_once > 0; y += rows_at_once) {
    const std::int32_t rows = height - y < rows_at_once ? height - y : rows_at_once;
    xcb_.xcb_put_image_(connection_, XCB_IMAGE_FORMAT_Z_PIXMAP, window_, context_,
                        static_cast<std::uint16_t>(width), static_cast<std::uint16_t>(rows), 0,
                        static_cast<std::int16_t>(y), 0, depth_,
                        stride * static_cast<std::uint32_t>(rows), stretcher_->Row(y));
  }
  xcb_.xcb_flush_(connection_);
}

void X11Window::Draw(const WindowImage& image, std::int32_t destination_width,
                     std::int32_t destination_height) {
  if (!IsThere() || image.width <= 0 || image.height <= 0 || destination_width <= 0 ||
      destination_height <= 0) {
    return;
  }
  ScopedLock lock(draw_lock_);
  if (context_ == 0) return;
  stretcher_->Stretch(image, destination_width, destination_height);
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
