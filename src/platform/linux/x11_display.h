// A connection to an X11 display: what a window needs to know of it.
#ifndef ORMIDEX_PLATFORM_LINUX_X11_DISPLAY_H_
#define ORMIDEX_PLATFORM_LINUX_X11_DISPLAY_H_

#include <cstdint>
#include <cstdlib>
#include <memory>

#include "platform/linux/pixels.h"
#include "platform/linux/xcb_library.h"

namespace ormidex::platform {

// Replies and events come from the C library's memory.
struct ReleaseXcbMemory {
  void operator()(void* memory) const { std::free(memory); }
};
template <typename T>
using XcbMemory = std::unique_ptr<T, ReleaseXcbMemory>;

template <typename T>
XcbMemory<T> Own(T* memory) {
  return XcbMemory<T>(memory);
}

enum class X11Atom {
  kWmState,
  kNetWmState,
  kMaximisedVertically,
  kMaximisedHorizontally,
  kWmProtocols,
  kDeleteWindow,
  kFrameExtents,
  kMotifHints,
  kCount
};

// What a window manager puts around a window.
struct X11Borders {
  std::int32_t left = 0;
  std::int32_t right = 0;
  std::int32_t top = 0;
  std::int32_t bottom = 0;
};

class X11Display {
 public:
  explicit X11Display(const XcbLibrary& xcb) : xcb_(xcb) {}
  ~X11Display();
  X11Display(const X11Display&) = delete;
  X11Display& operator=(const X11Display&) = delete;

  // The display that the environment names. False when there is none, or when its
  // pixels are not true colours of 16 or 32 bits each.
  bool Open();

  const XcbLibrary& xcb() const { return xcb_; }
  xcb_connection_t* connection() const { return connection_; }
  const xcb_screen_t& screen() const { return *screen_; }
  const PixelFormat& format() const { return format_; }
  xcb_atom_t atom(X11Atom atom) const { return atoms_[static_cast<int>(atom)]; }
  bool IsBroken() const { return xcb_.xcb_connection_has_error_(connection_) != 0; }
  void Flush() { xcb_.xcb_flush_(connection_); }
  // Returns when the display has done what it was asked.
  void Settle();

  bool IsIconified(xcb_window_t window) const;
  bool IsMaximised(xcb_window_t window) const;
  // Nothing without a window manager.
  X11Borders ReadBorders(xcb_window_t window) const;
  void SetProperty(xcb_window_t window, xcb_atom_t property, xcb_atom_t type,
                   const std::uint32_t* words, std::uint32_t count);

 private:
  // The first words of a property's value, and how many there are.
  std::uint32_t ReadProperty(xcb_window_t window, X11Atom property, std::uint32_t* words,
                             std::uint32_t count) const;
  bool ReadScreen(int number);
  bool ReadPixelFormat();
  void InternAtoms();

  const XcbLibrary& xcb_;
  xcb_connection_t* connection_ = nullptr;
  xcb_screen_t* screen_ = nullptr;
  PixelFormat format_;
  xcb_atom_t atoms_[static_cast<int>(X11Atom::kCount)] = {};
};

}  // namespace ormidex::platform

#endif  // ORMIDEX_PLATFORM_LINUX_X11_DISPLAY_H_
