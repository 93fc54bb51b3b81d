// What the rest of the library needs of a preview window.
#ifndef ORMIDEX_PREVIEW_PREVIEW_WINDOW_H_
#define ORMIDEX_PREVIEW_PREVIEW_WINDOW_H_

#include <cstdint>

#include "platform/window.h"

namespace ormidex::preview {

enum WindowMessage : std::uint32_t {
  kMessageSuspend = 0x401,   // first parameter: non-zero suspends, zero resumes
  kMessageGeometry = 0x402,  // the frame geometry changed: reallocate the buffers
  kMessagePlace = 0x403,     // first parameter: pointer to the wanted client rectangle
};

class PreviewWindow {
 public:
  virtual ~PreviewWindow() = default;
  // Ends the threads and the window; false when the system reports a failure.
  virtual bool DestroyWindow() = 0;
  // Delivers a message and returns when the window has handled it.
  virtual void SendMessageSync(std::uint32_t message, std::uintptr_t first,
                               std::uintptr_t second) = 0;
  // Where the window is. A preview that is nowhere on a screen cannot tell.
  virtual bool ReadPlacement(platform::WindowPlacement*) { return false; }
  virtual bool ReadClientSize(std::int32_t* /*width*/, std::int32_t* /*height*/) { return false; }
  virtual void ShowNormal() {}
};

}  // namespace ormidex::preview

#endif  // ORMIDEX_PREVIEW_PREVIEW_WINDOW_H_
