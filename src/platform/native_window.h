// What each back end provides for window.h.
#ifndef ORMIDEX_PLATFORM_NATIVE_WINDOW_H_
#define ORMIDEX_PLATFORM_NATIVE_WINDOW_H_

#include "platform/window.h"

namespace ormidex::platform {

NativeWindow* CreateSystemWindow(const WindowArguments& arguments, WindowHandler& handler);

}  // namespace ormidex::platform

#endif  // ORMIDEX_PLATFORM_NATIVE_WINDOW_H_
