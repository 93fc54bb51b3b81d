#include "frame/preview_class.h"

#include <atomic>

namespace ormidex::frame {

namespace {

constexpr char kClassName[] = "OrmidexPreview";

constinit std::atomic<WNDPROC> preview_procedure{nullptr};
HINSTANCE class_module = nullptr;

// The stack may be aligned to 4 bytes only: the caller is the system.
__attribute__((force_align_arg_pointer)) LRESULT CALLBACK DispatchMessageToPreview(HWND window,
                                                                                   UINT message,
                                                                                   WPARAM first,
                                                                                   LPARAM second) {
  const WNDPROC procedure = preview_procedure.load();
  return procedure != nullptr ? procedure(window, message, first, second)
                              : DefWindowProcA(window, message, first, second);
}

}  // namespace

void RegisterPreviewClass(HINSTANCE module) noexcept {
  class_module = module;
  WNDCLASSA window_class = {};
  window_class.hIcon = LoadIconA(module, MAKEINTRESOURCEA(kPreviewIconResource));
  window_class.style = kPreviewClassStyle;
  window_class.lpfnWndProc = &DispatchMessageToPreview;
  window_class.hInstance = module;
  window_class.hCursor = nullptr;
  window_class.hbrBackground = static_cast<HBRUSH>(GetStockObject(BLACK_BRUSH));
  window_class.lpszClassName = kClassName;
  RegisterClassA(&window_class);
}

void UnregisterPreviewClass() noexcept { UnregisterClassA(kClassName, class_module); }

const char* PreviewClassName() noexcept { return kClassName; }

HINSTANCE PreviewClassModule() noexcept { return class_module; }

void SetPreviewWindowProcedure(WNDPROC procedure) noexcept { preview_procedure.store(procedure); }

}  // namespace ormidex::frame
