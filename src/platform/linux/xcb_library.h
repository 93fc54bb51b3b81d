// The X11 client library, loaded when the first window is wanted, so that the
// library works on machines without it.
#ifndef ORMIDEX_PLATFORM_LINUX_XCB_LIBRARY_H_
#define ORMIDEX_PLATFORM_LINUX_XCB_LIBRARY_H_

#include <xcb/xcb.h>

namespace ormidex::platform {

// Every function that the X11 window uses.
#define ORMIDEX_XCB_FUNCTIONS(X)        \
  X(xcb_connect)                        \
  X(xcb_disconnect)                     \
  X(xcb_connection_has_error)           \
  X(xcb_get_file_descriptor)            \
  X(xcb_get_setup)                      \
  X(xcb_setup_roots_iterator)           \
  X(xcb_screen_next)                    \
  X(xcb_screen_allowed_depths_iterator) \
  X(xcb_depth_next)                     \
  X(xcb_depth_visuals_iterator)         \
  X(xcb_visualtype_next)                \
  X(xcb_setup_pixmap_formats_iterator)  \
  X(xcb_format_next)                    \
  X(xcb_get_maximum_request_length)     \
  X(xcb_generate_id)                    \
  X(xcb_create_window_checked)          \
  X(xcb_request_check)                  \
  X(xcb_destroy_window)                 \
  X(xcb_map_window)                     \
  X(xcb_configure_window)               \
  X(xcb_change_property)                \
  X(xcb_send_event)                     \
  X(xcb_intern_atom)                    \
  X(xcb_intern_atom_reply)              \
  X(xcb_get_property)                   \
  X(xcb_get_property_reply)             \
  X(xcb_get_property_value)             \
  X(xcb_get_property_value_length)      \
  X(xcb_get_geometry)                   \
  X(xcb_get_geometry_reply)             \
  X(xcb_translate_coordinates)          \
  X(xcb_translate_coordinates_reply)    \
  X(xcb_create_gc)                      \
  X(xcb_free_gc)                        \
  X(xcb_put_image)                      \
  X(xcb_poll_for_event)                 \
  X(xcb_flush)

struct XcbLibrary {
#define ORMIDEX_XCB_MEMBER(name) decltype(&::name) name##_ = nullptr;
  ORMIDEX_XCB_FUNCTIONS(ORMIDEX_XCB_MEMBER)
#undef ORMIDEX_XCB_MEMBER
};

// Null when the machine has no X11 client library.
const XcbLibrary* LoadXcb();

}  // namespace ormidex::platform

#endif  // ORMIDEX_PLATFORM_LINUX_XCB_LIBRARY_H_
