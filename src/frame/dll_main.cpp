// Load and unload of the Windows library.
#include <windows.h>

#include "frame/startup.h"
#include "platform/message_box.h"
#include "platform/window.h"

namespace {

HINSTANCE library_module = nullptr;

constexpr ormidex::frame::StartUpSystem kSystem = {
    [] { ormidex::platform::RegisterPreviewClass(library_module); },
    &ormidex::platform::ReadSystemVersion,
    &ormidex::platform::ShowMessage,
};

}  // namespace

// Under the system's loader lock: only start-up, which uses user32 and kernel32
// and starts no thread. The system does not remove the classes of an unloaded
// library; at the end of the process (reserved is not null) nothing needs to go.
extern "C" __attribute__((force_align_arg_pointer)) BOOL WINAPI DllMain(HINSTANCE module,
                                                                        DWORD reason,
                                                                        LPVOID reserved) {
  switch (reason) {
    case DLL_PROCESS_ATTACH:
      library_module = module;
      return ormidex::frame::StartUp(kSystem) ? TRUE : FALSE;
    case DLL_PROCESS_DETACH:
      if (reserved == nullptr) ormidex::platform::UnregisterPreviewClass();
      return TRUE;
    default:
      return TRUE;
  }
}
