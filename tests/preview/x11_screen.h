// The X11 display as a user sees it: windows found by their titles, pixels read
// back, windows closed and minimised from outside.
#ifndef ORMIDEX_TESTS_PREVIEW_X11_SCREEN_H_
#define ORMIDEX_TESTS_PREVIEW_X11_SCREEN_H_

#include <xcb/xcb.h>

#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <string>
#include <vector>

namespace ormidex::testing {

class X11Screen {
 public:
  X11Screen() : connection_(xcb_connect(nullptr, nullptr)) {
    if (!IsThere()) return;
    screen_ = xcb_setup_roots_iterator(xcb_get_setup(connection_)).data;
    for (auto depths = xcb_screen_allowed_depths_iterator(screen_); depths.rem > 0;
         xcb_depth_next(&depths)) {
      for (auto visuals = xcb_depth_visuals_iterator(depths.data); visuals.rem > 0;
           xcb_visualtype_next(&visuals)) {
        if (visuals.data->visual_id == screen_->root_visual) visual_ = visuals.data;
      }
    }
  }
  ~X11Screen() { xcb_disconnect(connection_); }
  X11Screen(const X11Screen&) = delete;
  X11Screen& operator=(const X11Screen&) = delete;

  bool IsThere() const { return xcb_connection_has_error(connection_) == 0; }
  int Depth() const { return screen_->root_depth; }
  xcb_window_t Root() const { return screen_->root; }
  xcb_connection_t* connection() const { return connection_; }

  // The pixel value of a colour: each channel scaled to its mask's width.
  std::uint32_t PixelOf(std::uint32_t red, std::uint32_t green, std::uint32_t blue) const {
    return Channel(red, visual_->red_mask) | Channel(green, visual_->green_mask) |
           Channel(blue, visual_->blue_mask);
  }

  // 0 when no child of the parent has this title.
  xcb_window_t Find(const std::string& title, xcb_window_t parent) const {
    const auto tree =
        Own(xcb_query_tree_reply(connection_, xcb_query_tree(connection_, parent), nullptr));
    if (tree == nullptr) return 0;
    const xcb_window_t* children = xcb_query_tree_children(tree.get());
    for (int i = 0; i < xcb_query_tree_children_length(tree.get()); ++i) {
      if (Title(children[i]) == title) return children[i];
    }
    return 0;
  }
  xcb_window_t Find(const std::string& title) const { return Find(title, Root()); }

  struct Rectangle {
    int x = 0, y = 0, width = 0, height = 0;
  };
  // Position in the parent.
  Rectangle Geometry(xcb_window_t window) const {
    const auto reply =
        Own(xcb_get_geometry_reply(connection_, xcb_get_geometry(connection_, window), nullptr));
    if (reply == nullptr) return {};
    return {reply->x, reply->y, reply->width, reply->height};
  }

  // The window's pixel values, row by row from the top; empty when it is not wholly
  // on the screen.
  std::vector<std::uint32_t> Pixels(xcb_window_t window) const {
    const Rectangle size = Geometry(window);
    const auto reply =
        Own(xcb_get_image_reply(connection_,
                                xcb_get_image(connection_, XCB_IMAGE_FORMAT_Z_PIXMAP, window, 0, 0,
                                              static_cast<std::uint16_t>(size.width),
                                              static_cast<std::uint16_t>(size.height), 0xFFFFFFFFu),
                                nullptr));
    if (reply == nullptr) return {};
    const std::uint8_t* data = xcb_get_image_data(reply.get());
    const auto rows = static_cast<std::size_t>(size.height);
    const auto columns = static_cast<std::size_t>(size.width);
    const auto stride = static_cast<std::size_t>(xcb_get_image_data_length(reply.get())) / rows;
    const std::size_t bytes = Depth() > 16 ? 4 : 2;
    const std::uint32_t used = visual_->red_mask | visual_->green_mask | visual_->blue_mask;
    std::vector<std::uint32_t> pixels;
    pixels.reserve(rows * columns);
    for (std::size_t y = 0; y < rows; ++y) {
      for (std::size_t x = 0; x < columns; ++x) {
        std::uint32_t pixel = 0;
        std::memcpy(&pixel, data + y * stride + x * bytes, bytes);
        pixels.push_back(pixel & used);
      }
    }
    return pixels;
  }

  xcb_window_t CreateParent(int width, int height) {
    const xcb_window_t window = xcb_generate_id(connection_);
    xcb_create_window(connection_, XCB_COPY_FROM_PARENT, window, Root(), 50, 60,
                      static_cast<std::uint16_t>(width), static_cast<std::uint16_t>(height), 0,
                      XCB_WINDOW_CLASS_INPUT_OUTPUT, XCB_COPY_FROM_PARENT, 0, nullptr);
    xcb_map_window(connection_, window);
    Sync();
    return window;
  }
  void Destroy(xcb_window_t window) {
    xcb_destroy_window(connection_, window);
    Sync();
  }
  void Kill(xcb_window_t window) {
    xcb_kill_client(connection_, window);
    Sync();
  }
  // What a window manager does to a window that it minimises.
  void Iconify(xcb_window_t window, bool iconic) {
    const std::uint32_t state[2] = {iconic ? 3u : 1u, 0};
    const xcb_atom_t property = Atom("WM_STATE");
    xcb_change_property(connection_, XCB_PROP_MODE_REPLACE, window, property, property, 32, 2,
                        state);
    if (iconic) {
      xcb_unmap_window(connection_, window);
    } else {
      xcb_map_window(connection_, window);
    }
    Sync();
  }
  void MarkMaximised(xcb_window_t window) {
    const xcb_atom_t states[2] = {Atom("_NET_WM_STATE_MAXIMIZED_VERT"),
                                  Atom("_NET_WM_STATE_MAXIMIZED_HORZ")};
    xcb_change_property(connection_, XCB_PROP_MODE_REPLACE, window, Atom("_NET_WM_STATE"),
                        XCB_ATOM_ATOM, 32, 2, states);
    Sync();
  }
  void SetFrame(xcb_window_t window, std::uint32_t left, std::uint32_t right, std::uint32_t top,
                std::uint32_t bottom) {
    const std::uint32_t extents[4] = {left, right, top, bottom};
    xcb_change_property(connection_, XCB_PROP_MODE_REPLACE, window, Atom("_NET_FRAME_EXTENTS"),
                        XCB_ATOM_CARDINAL, 32, 4, extents);
    Sync();
  }
  void Move(xcb_window_t window, std::uint32_t x, std::uint32_t y, std::uint32_t width,
            std::uint32_t height) {
    const std::uint32_t values[4] = {x, y, width, height};
    xcb_configure_window(connection_, window, 15, values);
    Sync();
  }
  // Everything asked for has been done.
  void Sync() {
    Own(xcb_get_input_focus_reply(connection_, xcb_get_input_focus(connection_), nullptr));
  }

 private:
  struct Release {
    void operator()(void* memory) const { std::free(memory); }
  };
  template <typename T>
  static std::unique_ptr<T, Release> Own(T* memory) {
    return std::unique_ptr<T, Release>(memory);
  }
  static std::uint32_t Channel(std::uint32_t value, std::uint32_t mask) {
    std::uint32_t shift = 0;
    while ((mask >> shift & 1u) == 0) ++shift;
    const std::uint32_t full = mask >> shift;
    return (2 * value * full + 255) / 510 << shift;  // rounded to the nearest
  }
  std::string Title(xcb_window_t window) const {
    const auto reply = Own(xcb_get_property_reply(
        connection_,
        xcb_get_property(connection_, 0, window, XCB_ATOM_WM_NAME, XCB_ATOM_STRING, 0, 64),
        nullptr));
    if (reply == nullptr) return "";
    return {static_cast<const char*>(xcb_get_property_value(reply.get())),
            static_cast<std::size_t>(xcb_get_property_value_length(reply.get()))};
  }
  xcb_atom_t Atom(const std::string& name) const {
    const auto reply = Own(xcb_intern_atom_reply(
        connection_,
        xcb_intern_atom(connection_, 0, static_cast<std::uint16_t>(name.size()), name.c_str()),
        nullptr));
    return reply != nullptr ? reply->atom : 0;
  }

  xcb_connection_t* connection_;
  xcb_screen_t* screen_ = nullptr;
  xcb_visualtype_t* visual_ = nullptr;
};

}  // namespace ormidex::testing

#endif  // ORMIDEX_TESTS_PREVIEW_X11_SCREEN_H_
