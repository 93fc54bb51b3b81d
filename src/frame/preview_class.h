// The window class of the live preview. Windows only.
#ifndef ORMIDEX_FRAME_PREVIEW_CLASS_H_
#define ORMIDEX_FRAME_PREVIEW_CLASS_H_

#include <windows.h>

namespace ormidex::frame {

inline constexpr WORD kPreviewIconResource = 131;
// CS_VREDRAW | CS_HREDRAW | CS_OWNDC | CS_NOCLOSE
inline constexpr UINT kPreviewClassStyle = 0x223;

// Neither a missing icon nor a failed registration is noticed: then only opening a
// preview fails, and everything else works.
void RegisterPreviewClass(HINSTANCE module) noexcept;
// Not before the last preview window is gone.
void UnregisterPreviewClass() noexcept;

// For CreateWindowEx; the class belongs to PreviewClassModule().
const char* PreviewClassName() noexcept;
HINSTANCE PreviewClassModule() noexcept;

// Every message to a preview window goes to this procedure, from WM_NCCREATE on;
// null restores the system's default procedure.
void SetPreviewWindowProcedure(WNDPROC procedure) noexcept;

}  // namespace ormidex::frame

#endif  // ORMIDEX_FRAME_PREVIEW_CLASS_H_
