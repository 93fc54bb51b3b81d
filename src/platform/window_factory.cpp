#include <atomic>

#include "platform/native_window.h"
#include "platform/window.h"

namespace ormidex::platform {

namespace {
constinit std::atomic<WindowFactory> replacement{nullptr};
}

NativeWindow* CreateNativeWindow(const WindowArguments& arguments, WindowHandler& handler) {
  const WindowFactory factory = replacement.load();
  return factory != nullptr ? factory(arguments, handler) : CreateSystemWindow(arguments, handler);
}

void ReplaceWindowFactoryForTesting(WindowFactory factory) noexcept { replacement.store(factory); }

}  // namespace ormidex::platform
