#include "platform/linux/xcb_library.h"

#include <dlfcn.h>

namespace ormidex::platform {

namespace {

template <typename Function>
bool Find(void* library, const char* name, Function* function) {
  *function = reinterpret_cast<Function>(dlsym(library, name));
  return *function != nullptr;
}

const XcbLibrary* Load() {
  static XcbLibrary functions;
  void* library = dlopen("libxcb.so.1", RTLD_NOW | RTLD_LOCAL);
  if (library == nullptr) return nullptr;
#define ORMIDEX_XCB_FIND(name) \
  if (!Find(library, #name, &functions.name##_)) return nullptr;
  ORMIDEX_XCB_FUNCTIONS(ORMIDEX_XCB_FIND)
#undef ORMIDEX_XCB_FIND
  return &functions;
}

}  // namespace

const XcbLibrary* LoadXcb() {
  static const XcbLibrary* const library = Load();
  return library;
}

}  // namespace ormidex::platform
