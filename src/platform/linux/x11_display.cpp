#include "platform/linux/x11_display.h"

#include <algorithm>
#include <cstring>

namespace ormidex::platform {

namespace {

constexpr std::uint32_t kIconicState = 3;  // of the WM_STATE property

constexpr const char* kAtomNames[static_cast<int>(X11Atom::kCount)] = {
    "WM_STATE",
    "_NET_WM_STATE",
    "_NET_WM_STATE_MAXIMIZED_VERT",
    "_NET_WM_STATE_MAXIMIZED_HORZ",
    "WM_PROTOCOLS",
    "WM_DELETE_WINDOW",
    "_NET_FRAME_EXTENTS",
    "_MOTIF_WM_HINTS"};

}  // namespace

X11Display::~X11Display() {
  if (connection_ != nullptr) xcb_.xcb_disconnect_(connection_);
}

bool X11Display::Open() {
  int screen_number = 0;
  connection_ = xcb_.xcb_connect_(nullptr, &screen_number);
  if (IsBroken() || !ReadScreen(screen_number) || !ReadPixelFormat()) return false;
  InternAtoms();
  return true;
}

bool X11Display::ReadScreen(int number) {
  auto screens = xcb_.xcb_setup_roots_iterator_(xcb_.xcb_get_setup_(connection_));
  for (int i = 0; i < number && screens.rem > 1; ++i) xcb_.xcb_screen_next_(&screens);
  screen_ = screens.data;
  return screens.rem > 0;
}

// Of the root's visual, whose depth is 16, 24 or 30 bits on today's displays.
bool X11Display::ReadPixelFormat() {
  bool found = false;
  for (auto depths = xcb_.xcb_screen_allowed_depths_iterator_(screen_); depths.rem > 0;
       xcb_.xcb_depth_next_(&depths)) {
    for (auto visuals = xcb_.xcb_depth_visuals_iterator_(depths.data); visuals.rem > 0;
         xcb_.xcb_visualtype_next_(&visuals)) {
      if (visuals.data->visual_id != screen_->root_visual) continue;
      found = visuals.data->_class == XCB_VISUAL_CLASS_TRUE_COLOR;
      format_.red_mask = visuals.data->red_mask;
      format_.green_mask = visuals.data->green_mask;
      format_.blue_mask = visuals.data->blue_mask;
    }
  }
  const xcb_setup_t* setup = xcb_.xcb_get_setup_(connection_);
  for (auto formats = xcb_.xcb_setup_pixmap_formats_iterator_(setup); formats.rem > 0;
       xcb_.xcb_format_next_(&formats)) {
    if (formats.data->depth == screen_->root_depth) {
      format_.bits_per_pixel = formats.data->bits_per_pixel;
    }
  }
  format_.swap_bytes = setup->image_byte_order != XCB_IMAGE_ORDER_LSB_FIRST;
  return found && (format_.bits_per_pixel == 16 || format_.bits_per_pixel == 32);
}

void X11Display::InternAtoms() {
  constexpr int kCount = static_cast<int>(X11Atom::kCount);
  xcb_intern_atom_cookie_t cookies[kCount];
  for (int i = 0; i < kCount; ++i) {
    const auto length = static_cast<std::uint16_t>(std::strlen(kAtomNames[i]));
    cookies[i] = xcb_.xcb_intern_atom_(connection_, 0, length, kAtomNames[i]);
  }
  for (int i = 0; i < kCount; ++i) {
    const auto reply = Own(xcb_.xcb_intern_atom_reply_(connection_, cookies[i], nullptr));
    if (reply != nullptr) atoms_[i] = reply->atom;
  }
}

std::uint32_t X11Display::ReadProperty(xcb_window_t window, X11Atom property, std::uint32_t* words,
                                       std::uint32_t count) const {
  const auto cookie = xcb_.xcb_get_property_(connection_, 0, window, atom(property),
                                             XCB_GET_PROPERTY_TYPE_ANY, 0, count);
  const auto reply = Own(xcb_.xcb_get_property_reply_(connection_, cookie, nullptr));
  if (reply == nullptr || reply->format != 32) return 0;
  const auto bytes = static_cast<std::uint32_t>(xcb_.xcb_get_property_value_length_(reply.get()));
  const std::uint32_t read = std::min<std::uint32_t>(count, bytes / 4);
  std::memcpy(words, xcb_.xcb_get_property_value_(reply.get()), std::size_t{read} * 4);
  return read;
}

void X11Display::Settle() {
  const auto cookie = xcb_.xcb_get_geometry_(connection_, screen_->root);
  Own(xcb_.xcb_get_geometry_reply_(connection_, cookie, nullptr));
}

bool X11Display::IsIconified(xcb_window_t window) const {
  std::uint32_t state = 0;
  return ReadProperty(window, X11Atom::kWmState, &state, 1) == 1 && state == kIconicState;
}

bool X11Display::IsMaximised(xcb_window_t window) const {
  std::uint32_t states[32];
  const std::uint32_t* const first = states;
  const std::uint32_t* const end =
      first + ReadProperty(window, X11Atom::kNetWmState, states, std::size(states));
  return std::find(first, end, atom(X11Atom::kMaximisedVertically)) != end &&
         std::find(first, end, atom(X11Atom::kMaximisedHorizontally)) != end;
}

X11Borders X11Display::ReadBorders(xcb_window_t window) const {
  std::uint32_t sides[4];
  if (ReadProperty(window, X11Atom::kFrameExtents, sides, 4) != 4) return {};
  const auto side = [&](int i) { return static_cast<std::int32_t>(sides[i]); };
  return {side(0), side(1), side(2), side(3)};
}

void X11Display::SetProperty(xcb_window_t window, xcb_atom_t property, xcb_atom_t type,
                             const std::uint32_t* words, std::uint32_t count) {
  xcb_.xcb_change_property_(connection_, XCB_PROP_MODE_REPLACE, window, property, type, 32, count,
                            words);
}

}  // namespace ormidex::platform
